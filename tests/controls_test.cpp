// Standard controls without drawing: label text rules, button layout, switch,
// panel grip, probe box.
#include "support/logcapture.h"

#include <trelvogui/gui/button.h>
#include <trelvogui/gui/downbutton.h>
#include <trelvogui/gui/guimanager.h>
#include <trelvogui/gui/label.h>
#include <trelvogui/gui/panel.h>
#include <trelvogui/gui/sizehandle.h>
#include <trelvogui/gui/switchbutton.h>
#include <trelvogui/gui/upbutton.h>
#include <trelvogui/probecontrol.h>

#include <gtest/gtest.h>

#include <functional>

using namespace GraphicsBase;

using namespace GUI::Controls;
using GUI::Geometry::Rectangle;

TEST(Label, EmptyTextBecomesSpaceAndUnchangedTextRequestsNothing) {
    Panel parent;
    Label label;
    parent.AddChild(&label);
    EXPECT_EQ(label.GetText(), L"");
    label.SetText(L"");
    EXPECT_EQ(label.GetText(), L" ");
    label.SetText(L"Hello");
    label.SetNeedsRedraw(false);
    parent.SetNeedsRedraw(false);
    label.SetText(L"Hello");
    EXPECT_FALSE(label.NeedsRedraw());
    EXPECT_FALSE(parent.NeedsRedraw());
    label.SetText(L"World");
    EXPECT_TRUE(parent.NeedsRedraw());
    EXPECT_EQ(label.GetTextRecord()->string, L"World");
    EXPECT_EQ(label.FontSize(), 16u);
}

TEST(Label, EnterAndExitGoToTheParent) {
    Button button;
    GUI::Event e;
    EXPECT_EQ(button.GetLabel()->OnMouseEnter(&e), DrawFlags(9));
    EXPECT_TRUE(button.Hovered());
    EXPECT_FALSE(button.GetLabel()->Hovered());
    EXPECT_EQ(button.GetLabel()->OnMouseExit(&e), DrawFlags(9));
    EXPECT_FALSE(button.Hovered());
    Label lonely;
    EXPECT_EQ(lonely.OnMouseEnter(&e), DRAW_NOTHING);
    EXPECT_FALSE(lonely.Hovered());
}

TEST(Label, StylingSettersRequestRedrawOnlyForColour) {
    Label label;
    label.SetNeedsRedraw(false);
    label.SetHorizontalAlignment(2);
    label.SetVerticalAlignment(1);
    label.SetOrientation(1);
    label.SetFontSize(30);
    EXPECT_FALSE(label.NeedsRedraw());
    EXPECT_EQ(label.GetHorizontalAlignment(), 2);
    EXPECT_EQ(label.GetOrientation(), 1);
    label.SetColor(GUI::Color::FromWord(0xFF0000FF));
    EXPECT_TRUE(label.NeedsRedraw());
    EXPECT_EQ(label.GetColor().r, 0xFF);
}

TEST(Button, LabelFillsTheButtonCentred) {
    for (Button* b :
         {new Button(), static_cast<Button*>(new UpButton()), static_cast<Button*>(new DownButton())}) {
        b->SetRectangle({10, 110, 20, 50});
        Label* label = b->GetLabel();
        EXPECT_EQ(label->GetControlRectangle(), (Rectangle{0, 100, 0, 30}));
        EXPECT_EQ(label->GetRectangle(), (Rectangle{10, 110, 20, 50}));
        EXPECT_EQ(label->GetHorizontalAlignment(), 1);
        EXPECT_EQ(label->GetVerticalAlignment(), 1);
        EXPECT_FALSE(b->Draggable());
        EXPECT_EQ(b->Children()->size(), 1u);
        b->SetText(L"");
        EXPECT_EQ(b->GetText(), L" ");
        delete b;
    }
}

TEST(Button, ClickOnLabelReachesButtonAndBubbles) {
    Panel panel;
    Button button;
    panel.AddChild(&button);
    int clicks = 0;
    button.ClickedSignal.connect([&] { ++clicks; });
    GUI::Event e;
    EXPECT_EQ(button.GetLabel()->OnClick(&e), DRAW_NOTHING) << "the panel at the root swallows the click";
    EXPECT_EQ(clicks, 1);
}

TEST(SwitchButton, ClickTogglesAndAddsOneToTheCallbackResult) {
    SwitchButton sw;
    EXPECT_TRUE(sw.IsOn());
    GUI::Event e;
    EXPECT_EQ(sw.OnClick(&e), DRAW_OVERLAY);
    EXPECT_FALSE(sw.IsOn());
    int calls = 0;
    sw.SetCallback([&] {
        ++calls;
        return DRAW_CAMERA;
    });
    EXPECT_EQ(sw.OnClick(&e), DrawFlags(5));
    EXPECT_TRUE(sw.IsOn());
    sw.SetEnabled(false);
    sw.OnClick(&e);
    EXPECT_FALSE(sw.IsOn()) << "the switch does not look at Enabled";
    EXPECT_EQ(calls, 2);
    sw.SetNeedsRedraw(false);
    sw.SetOn(true);
    EXPECT_FALSE(sw.NeedsRedraw());
    sw.callback = std::make_unique<GUI::Events::Base::Callback>();
    EXPECT_THROW(sw.OnClick(&e), std::bad_function_call);
}

TEST(Panel, GripFollowsTheCornerAndGoesAwayWhenNotSizeable) {
    Panel panel;
    panel.SetRectangle({0, 200, 0, 100});
    EXPECT_EQ(panel.GetSizeHandle(), nullptr);
    panel.SetSizeable(true);
    ASSERT_NE(panel.GetSizeHandle(), nullptr);
    EXPECT_EQ(panel.GetSizeHandle()->GetControlRectangle(), (Rectangle{191, 200, 0, 9}));
    EXPECT_TRUE(panel.IsChild(panel.GetSizeHandle()));
    panel.SetRectangle({50, 350, 60, 160});
    EXPECT_EQ(panel.GetSizeHandle()->GetControlRectangle(), (Rectangle{291, 300, 0, 9}));
    EXPECT_EQ(panel.GetSizeHandle()->GetRectangle(), (Rectangle{341, 350, 60, 69}));
    trelvo::test::LogCapture log;
    panel.SetSizeable(true);
    EXPECT_EQ(log.Count("The control is already a child of this control\n"), 1);
    panel.SetSizeable(false);
    EXPECT_EQ(panel.GetSizeHandle(), nullptr);
    EXPECT_FALSE(panel.HasChildren());
    EXPECT_FALSE(panel.Sizeable());
}

TEST(Panel, ClicksAreSwallowedAndTheGripAnswersOne) {
    Panel root, panel;
    root.AddChild(&panel);
    int rootClicks = 0;
    root.ClickedSignal.connect([&] { ++rootClicks; });
    GUI::Event e;
    EXPECT_EQ(panel.OnClick(&e), DRAW_NOTHING);
    EXPECT_EQ(rootClicks, 0);
    panel.SetSizeable(true);
    EXPECT_EQ(panel.GetSizeHandle()->OnClick(&e), DRAW_OVERLAY);
    EXPECT_TRUE(panel.Draggable() && panel.Animatable());
}

TEST(SizeHandle, DragResizesWithXMinAndYMaxFixedAndClampsToMinimum) {
    Panel panel;
    panel.SetRectangle({100, 300, 100, 250});
    panel.SetMinSize(120, 80);
    panel.SetSizeable(true);
    SizeHandle* grip = panel.GetSizeHandle();
    GUI::Event press{295, 400, 0, 0};
    EXPECT_EQ(grip->OnMouseDown(&press), DRAW_OVERLAY);

    // Host y grows downward: dragging down-right by (30, 20) grows the panel
    // downward.
    GUI::Event drag{325, 420, 0, 0};
    EXPECT_EQ(grip->OnMouseDrag(&drag, 999, 999), DRAW_OVERLAY);
    EXPECT_EQ(panel.GetRectangle(), (Rectangle{100, 330, 80, 250}));
    EXPECT_EQ(grip->GetRectangle(), (Rectangle{321, 330, 80, 89}));

    GUI::Event far{-500, -500, 0, 0};
    grip->OnMouseDrag(&far, 0, 0);
    EXPECT_EQ(panel.GetRectangle(), (Rectangle{100, 220, 170, 250}));
}

TEST(ProbeControl, BuildsARegisteredTwoLineBox) {
    auto manager = std::make_shared<GUI::GUIManager>();
    ProbeControl probe(manager);
    ASSERT_TRUE(probe.Initialize());
    EXPECT_EQ(probe.GetLocation(), (std::array<int, 2>{200, 200}));
    EXPECT_EQ(probe.GetSize(), (std::array<int, 2>{250, 40}));
    EXPECT_EQ(manager->Controls().size(), 3u);
    EXPECT_TRUE(probe.GetPanel()->Registered());
    EXPECT_EQ(probe.GetName(), L" ");
    probe.SetName(L"");
    EXPECT_EQ(probe.GetName(), L" ");
    probe.SetName(L"Vessel");
    probe.SetCollapsedText(L"HU 42");
    EXPECT_EQ(probe.GetName(), L"Vessel");
    EXPECT_EQ(probe.GetCollapsedText(), L"HU 42");
    probe.SetLocation(10, 20);
    EXPECT_EQ(probe.GetPanel()->GetRectangle(), (Rectangle{10, 260, 20, 60}));
    EXPECT_EQ(probe.GetLocation(), (std::array<int, 2>{10, 20}));
    probe.Hide();
    EXPECT_FALSE(probe.IsVisible());
    probe.Show();
    EXPECT_TRUE(probe.IsVisible());
}

TEST(ProbeControl, DestructionLeavesNoDanglingRegistryEntries) {
    auto manager = std::make_shared<GUI::GUIManager>();
    {
        ProbeControl probe(manager);
        probe.Initialize();
    }
    EXPECT_TRUE(manager->Controls().empty());
    EXPECT_FALSE(manager->Contains(1u));
}
