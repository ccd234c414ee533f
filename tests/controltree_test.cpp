// The control tree: parent/child rules, handlers, bubbling, redraw propagation and geometry.
#include "support/logcapture.h"

#include <trelvogui/gui/controlbase.h>
#include <trelvogui/gui/guimanager.h>

#include <gtest/gtest.h>

using namespace GraphicsBase;

using GUI::Controls::Base;
using GUI::Geometry::Rectangle;
using trelvo::test::LogCapture;

namespace {
const char* kAlreadyChildOfThis = "The control is already a child of this control\n";
const char* kAlreadyChildOfOther = "The control is already a child of another control\n";
const char* kNotAChild = "Could not remove child control which is not among the children.\n";

void expectRect(const Rectangle& r, int x0, int x1, int y0, int y1) {
    EXPECT_EQ(r.xMin, x0);
    EXPECT_EQ(r.xMax, x1);
    EXPECT_EQ(r.yMin, y0);
    EXPECT_EQ(r.yMax, y1);
}
} // namespace

TEST(ControlTree, NewControlDefaults) {
    Base c;
    EXPECT_EQ(c.GetId(), 0u);
    EXPECT_FALSE(c.HasParent());
    EXPECT_FALSE(c.HasChildren());
    EXPECT_TRUE(c.Visible());
    EXPECT_TRUE(c.Enabled());
    EXPECT_TRUE(c.NeedsRedraw());
    EXPECT_FALSE(c.Draggable() || c.Animatable() || c.Checkable() || c.Sizeable());
    expectRect(c.GetControlRectangle(), 0, 4, 0, 4);
    expectRect(c.MinimumSize(), 0, 0, 0, 0);
    EXPECT_EQ(c.GetColorTexture(), nullptr);
}

TEST(ControlTree, AddChildRefusalsLogExactMessagesAndChangeNothing) {
    LogCapture log;
    Base parent, other, child;
    ASSERT_TRUE(parent.AddChild(&child));
    // Already ours: the "this control" check comes first although the child also has a parent.
    EXPECT_FALSE(parent.AddChild(&child));
    EXPECT_EQ(log.Count(kAlreadyChildOfThis), 1);
    EXPECT_FALSE(other.AddChild(&child));
    EXPECT_EQ(log.Count(kAlreadyChildOfOther), 1);
    EXPECT_EQ(parent.Children()->size(), 1u);
    EXPECT_FALSE(other.HasChildren());
    EXPECT_EQ(child.Parent(), &parent);
}

TEST(ControlTree, RemovedChildKeepsParentUntilReleased) {
    LogCapture log;
    Base parent, child;
    parent.AddChild(&child);
    ASSERT_TRUE(parent.RemoveChild(&child));
    EXPECT_FALSE(parent.IsChild(&child));
    EXPECT_TRUE(child.HasParent());
    EXPECT_FALSE(parent.AddChild(&child));
    EXPECT_EQ(log.Count(kAlreadyChildOfOther), 1);
    child.SetParent(nullptr);
    EXPECT_TRUE(parent.AddChild(&child));

    EXPECT_FALSE(parent.RemoveChild(&parent));
    EXPECT_EQ(log.Count(kNotAChild), 1);
    EXPECT_EQ(parent.Children()->size(), 1u);
}

TEST(ControlTree, ClickBubblesThroughEveryAncestorAndReturnsRootResult) {
    Base root, mid, leaf;
    root.AddChild(&mid);
    mid.AddChild(&leaf);
    std::string order;
    leaf.ClickedSignal.connect([&] { order += "leaf "; });
    mid.ClickedSignal.connect([&] { order += "mid "; });
    root.ClickedSignal.connect([&] { order += "root"; });
    leaf.SetPressed(true);
    GUI::Event e;
    EXPECT_EQ(leaf.OnClick(&e), DRAW_NOTHING);
    EXPECT_EQ(order, "leaf mid root");
    EXPECT_FALSE(leaf.Pressed());
}

TEST(ControlTree, CheckableClickTogglesSignalsOnlyOnCheckAndDoesNotBubble) {
    Base root, box;
    root.AddChild(&box);
    box.SetCheckable(true);
    int checked = 0, rootClicks = 0;
    box.CheckedSignal.connect([&] { ++checked; });
    root.ClickedSignal.connect([&] { ++rootClicks; });
    GUI::Event e;
    EXPECT_EQ(box.OnClick(&e), DRAW_OVERLAY);
    EXPECT_TRUE(box.Checked());
    EXPECT_EQ(box.OnClick(&e), DRAW_OVERLAY);
    EXPECT_FALSE(box.Checked());
    EXPECT_EQ(checked, 1);
    EXPECT_EQ(rootClicks, 0);
}

TEST(ControlTree, DragMovesNearestDraggableAncestorOrStopsAtListener) {
    Base root, mid, leaf;
    root.AddChild(&mid);
    mid.AddChild(&leaf);
    root.SetDraggable(true);
    root.SetRectangle({0, 50, 0, 50});
    GUI::Event e;
    EXPECT_EQ(leaf.OnMouseDrag(&e, 3, -2), DRAW_CONSUMED | DRAW_OVERLAY);
    expectRect(root.GetControlRectangle(), 3, 53, -2, 48);
    expectRect(leaf.GetRectangle(), 3, 7, -2, 2); // children follow through their global position

    int heard = 0;
    mid.DragSignal.connect([&](GUI::Event*, int dx, int dy) { heard += dx + dy; });
    EXPECT_EQ(leaf.OnMouseDrag(&e, 5, 5), DRAW_NOTHING);
    EXPECT_EQ(heard, 10);
    expectRect(root.GetControlRectangle(), 3, 53, -2, 48);

    Base lonely;
    lonely.DragSignal.connect([&](GUI::Event*, int, int) { ++heard; });
    EXPECT_EQ(lonely.OnMouseDrag(&e, 1, 1), DRAW_NOTHING);
    EXPECT_EQ(heard, 10) << "a root that is not draggable ignores drags even with listeners";
}

TEST(ControlTree, DisabledControlIgnoresEveryHandler) {
    Base c;
    c.SetEnabled(false);
    c.SetDraggable(true);
    int signals = 0;
    c.MouseDownSignal.connect([&](GUI::Event*) { ++signals; });
    c.MouseEnterSignal.connect([&] { ++signals; });
    c.ClickedSignal.connect([&] { ++signals; });
    GUI::Event e;
    EXPECT_EQ(c.OnMouseDown(&e) | c.OnMouseUp(&e) | c.OnMouseEnter(&e) | c.OnMouseExit(&e) | c.OnClick(&e) |
                  c.OnMouseDrag(&e, 4, 4),
              DRAW_NOTHING);
    EXPECT_EQ(signals, 0);
    EXPECT_FALSE(c.Pressed() || c.Hovered());
    expectRect(c.GetControlRectangle(), 0, 4, 0, 4);
}

TEST(ControlTree, PressEnterExitUpDriveFlagsAndSignals) {
    Base c;
    int downs = 0, enters = 0;
    c.MouseDownSignal.connect([&](GUI::Event* e) { downs += e->x; });
    c.MouseEnterSignal.connect([&] { ++enters; });
    GUI::Event e{7, 0, 0, 0};
    EXPECT_EQ(c.OnMouseEnter(&e), DrawFlags(9));
    EXPECT_TRUE(c.Hovered());
    EXPECT_EQ(c.OnMouseDown(&e), DrawFlags(9));
    EXPECT_TRUE(c.Pressed());
    EXPECT_EQ(c.OnMouseUp(&e), DrawFlags(9));
    EXPECT_FALSE(c.Pressed());
    EXPECT_EQ(c.OnMouseExit(&e), DrawFlags(9));
    EXPECT_FALSE(c.Hovered());
    EXPECT_EQ(downs, 7);
    EXPECT_EQ(enters, 1);
    EXPECT_EQ(c.OnMouseHover(&e) | c.OnDoubleClick(&e), DRAW_NOTHING);
}

TEST(ControlTree, RedrawClimbsToRootAndManagerSignalFiresOnce) {
    auto manager = std::make_shared<GUI::GUIManager>();
    Base root, child, grandchild;
    root.AddChild(&child);
    child.AddChild(&grandchild);
    root.Register(manager);
    int requests = 0;
    manager->RedrawRequestSignal.connect([&] { ++requests; });
    EXPECT_TRUE(manager->NeedsRedraw()) << "registering marks the manager";
    EXPECT_EQ(requests, 0);

    // A fresh manager state: only UpdateLayers clears the flag, so test on a second manager.
    auto second = std::make_shared<GUI::GUIManager>();
    Base other;
    int secondRequests = 0;
    second->RedrawRequestSignal.connect([&] { ++secondRequests; });
    other.Register(second);
    EXPECT_TRUE(second->NeedsRedraw()) << "a registered root is drawn by the next update";
    EXPECT_EQ(secondRequests, 1) << "and the host hears of it";
    other.SetNeedsRedraw(false);
    EXPECT_EQ(secondRequests, 1) << "the flag was already raised";
    second->SetNeedsRedraw(false);
    EXPECT_TRUE(second->NeedsRedraw()) << "SetNeedsRedraw(false) never clears the manager flag";

    // Staleness propagates to every ancestor.
    root.DrawToTexture(nullptr); // not animatable: does nothing
    grandchild.SetNeedsRedraw(false);
    EXPECT_FALSE(grandchild.NeedsRedraw());
    EXPECT_TRUE(child.NeedsRedraw());
    EXPECT_TRUE(root.NeedsRedraw());
}

TEST(ControlTree, SettersThatChangeThePictureRequestRedraw) {
    struct Case {
        const char* name;
        std::function<void(Base&)> apply;
        bool redraws;
    };
    const Case cases[] = {
        {"SetMinSize", [](Base& c) { c.SetMinSize(10, 10); }, false},
        {"SetPressed", [](Base& c) { c.SetPressed(true); }, false},
        {"SetHorizontalAlignment",
         [](Base& c) { c.SetHorizontalAlignment(GUI::Alignment::Horizontal::Center); }, false},
        {"SetPosition", [](Base& c) { c.SetPosition(5, 7); }, true},
        {"Translate", [](Base& c) { c.Translate(1, 1); }, true},
        {"SetRectangle",
         [](Base& c) {
             c.SetRectangle({0, 9, 0, 9});
         },
         true},
        {"SetEnabled", [](Base& c) { c.SetEnabled(true); }, true},
        {"SetVisible", [](Base& c) { c.SetVisible(true); }, true},
        {"SetMargins",
         [](Base& c) {
             c.SetMargins({1, 1, 1, 1});
         },
         true},
        {"SetVerticalSizingPolicy", [](Base& c) { c.SetVerticalSizingPolicy(GUI::Policy::FitContent); },
         true},
    };
    for (const Case& k : cases) {
        Base parent, c;
        parent.AddChild(&c);
        c.SetNeedsRedraw(false);
        parent.SetNeedsRedraw(false);
        k.apply(c);
        EXPECT_EQ(c.NeedsRedraw(), k.redraws) << k.name;
        EXPECT_EQ(parent.NeedsRedraw(), k.redraws) << k.name;
    }
}

TEST(ControlGeometry, PositionTranslateAndRectangleSignal) {
    Base c;
    int changed = 0;
    c.RectangleChangedSignal.connect([&] { ++changed; });
    c.SetPosition(5, 7);
    expectRect(c.GetControlRectangle(), 5, 9, 7, 11);
    c.Translate(-10, 3);
    expectRect(c.GetRectangle(), -5, -1, 10, 14);
    EXPECT_EQ(changed, 0) << "only SetRectangle fires the rectangle signal";
    c.SetRectangle({-3, 0, -3, 0});
    EXPECT_EQ(changed, 1);
    EXPECT_EQ(c.Center().x, -1) << "integer division truncates toward zero";
    EXPECT_EQ(c.Center().y, -1);
    c.SetRectangle({10, 2, 0, 4}); // inverted bounds are kept as given
    expectRect(c.GetControlRectangle(), 10, 2, 0, 4);
}

TEST(ControlGeometry, GlobalPositionsFollowParentMarginsAndMoves) {
    Base root, child, grandchild;
    root.SetRectangle({100, 300, 50, 250});
    root.SetMargins({10, 0, 20, 0});
    child.SetRectangle({5, 55, 5, 35});
    child.SetMargins({1, 0, 2, 0});
    grandchild.SetRectangle({0, 10, 0, 10});
    root.AddChild(&child);
    child.AddChild(&grandchild);
    expectRect(child.GetRectangle(), 115, 165, 75, 105);
    EXPECT_EQ(child.GlobalFrame().x, 110);
    EXPECT_EQ(child.GlobalFrame().y, 70);
    expectRect(grandchild.GetRectangle(), 116, 126, 77, 87);
    EXPECT_EQ(grandchild.Center().x, 121);

    root.Translate(-100, -50);
    expectRect(grandchild.GetRectangle(), 16, 26, 27, 37);
    EXPECT_EQ(grandchild.GlobalPosition().x, 16);
}

TEST(ControlGeometry, BoundingBoxGrowsOverChildrenWithFixedPolicy) {
    Base root, a, b;
    root.SetRectangle({10, 50, 10, 50});
    root.SetMargins({5, 0, 5, 0});
    a.SetRectangle({-20, 0, 0, 10});
    b.SetRectangle({30, 70, 30, 60});
    root.AddChild(&a);
    root.AddChild(&b);
    int changed = 0;
    root.RectangleChangedSignal.connect([&] { ++changed; });
    root.CalcBoundingBox(nullptr);
    // Content origin (15, 15): a spans -5..15, b spans 45..85 x 45..75.
    expectRect(root.BoundingBox(), -5, 85, 10, 75);
    expectRect(root.GetControlRectangle(), 10, 50, 10, 50);
    EXPECT_EQ(changed, 0);
    // The child's stored box was shifted into the parent's coordinates.
    expectRect(b.BoundingBox(), 45, 85, 45, 75);
}

TEST(ControlGeometry, FitToContentMovesOnlyUpperBounds) {
    Base root, a;
    root.SetRectangle({10, 500, 10, 500});
    root.SetMargins({5, 7, 5, 3});
    a.SetRectangle({0, 100, 0, 40});
    root.AddChild(&a);
    int changed = 0;
    root.RectangleChangedSignal.connect([&] { ++changed; });
    root.SetHorizontalSizingPolicy(GUI::Policy::FitContent);
    root.CalcBoundingBox(nullptr);
    expectRect(root.GetControlRectangle(), 10, 122, 10, 500);
    EXPECT_EQ(changed, 1);
    root.SetVerticalSizingPolicy(GUI::Policy::FitContent);
    root.CalcBoundingBox(nullptr);
    expectRect(root.GetControlRectangle(), 10, 122, 10, 58);
    expectRect(root.BoundingBox(), 10, 122, 10, 58);

    // Any other policy value reapplies the rectangle unchanged.
    Base other;
    other.SetRectangle({1, 2, 3, 4});
    other.SetHorizontalSizingPolicy(static_cast<GUI::Policy::Sizing>(2));
    int otherChanged = 0;
    other.RectangleChangedSignal.connect([&] { ++otherChanged; });
    other.CalcBoundingBox(nullptr);
    expectRect(other.GetControlRectangle(), 1, 2, 3, 4);
    EXPECT_EQ(otherChanged, 1);
}

TEST(ControlGeometry, RenderRectangleIsUnionOfSubtree) {
    Base root, a, b;
    root.SetRectangle({10, 20, 10, 20});
    a.SetRectangle({-15, -5, 0, 5});
    b.SetRectangle({0, 5, 30, 40});
    root.AddChild(&a);
    a.AddChild(&b);
    root.CalcRenderingBoundingBox(nullptr);
    expectRect(root.GetRenderRectangle(), -5, 20, 10, 50);
}
