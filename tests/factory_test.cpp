// The control registry: id assignment, lookup and its deliberate quirks.
#include "support/logcapture.h"

#include <trelvogui/gui/controlbase.h>
#include <trelvogui/gui/guimanager.h>

#include <gtest/gtest.h>

using namespace GraphicsBase;

using GUI::Controls::Base;

TEST(ControlFactory, IdsStartAtOneAndAreNeverReused) {
    auto manager = std::make_shared<GUI::GUIManager>();
    Base a, b, c, d;
    for (Base* x : {&a, &b, &c})
        ASSERT_TRUE(x->Register(manager));
    EXPECT_EQ(a.GetId(), 1u);
    EXPECT_EQ(b.GetId(), 2u);
    EXPECT_EQ(c.GetId(), 3u);
    EXPECT_TRUE(manager->RemoveControl(&b));
    EXPECT_TRUE(d.Register(manager));
    EXPECT_EQ(d.GetId(), 4u);
    EXPECT_FALSE(manager->Contains(2u));
    EXPECT_EQ(manager->Find(2u), nullptr);
    EXPECT_EQ(manager->Find(4u), &d);
    EXPECT_EQ(manager->Counter(), 4u);
    EXPECT_EQ(b.GetId(), 2u) << "a removed control keeps its id";
    EXPECT_FALSE(manager->Contains(&b));
    EXPECT_EQ(manager->Find(&b), 0u);
    EXPECT_EQ(manager->Find(&c), 3u);
    std::list<Base*> expected{&a, &c, &d};
    EXPECT_EQ(manager->Controls(), expected);
}

TEST(ControlFactory, DuplicateAddIsRefusedAndRemovingUnknownFails) {
    // Exercise the factory directly so the duplicate path can be reached.
    struct Registry : GUI::Controls::Factory {
        using Factory::AddControl;
        using Factory::RemoveControl;
    } registry;
    trelvo::test::LogCapture log;
    Base a, b, never;
    ASSERT_TRUE(registry.AddControl(&a));
    ASSERT_TRUE(registry.AddControl(&b));
    EXPECT_FALSE(registry.AddControl(&a));
    EXPECT_EQ(log.Count("Control already exists in the GUI.\n"), 1);
    EXPECT_EQ(a.GetId(), 1u);
    EXPECT_EQ(registry.Controls().front(), &a);
    EXPECT_EQ(registry.Controls().size(), 2u);
    EXPECT_FALSE(registry.RemoveControl(&never));
    // A removed control added again gets a fresh id.
    ASSERT_TRUE(registry.RemoveControl(&a));
    ASSERT_TRUE(registry.AddControl(&a));
    EXPECT_EQ(a.GetId(), 3u);
}

TEST(ControlFactory, RegisterCoversSubtreeAndAddChildOnRegisteredParent) {
    auto manager = std::make_shared<GUI::GUIManager>();
    Base root, child, late;
    root.AddChild(&child);
    EXPECT_TRUE(root.Register(manager));
    EXPECT_FALSE(root.Register(manager)) << "already registered";
    EXPECT_TRUE(child.Registered());
    EXPECT_EQ(child.GetId(), 2u);
    root.AddChild(&late);
    EXPECT_TRUE(late.Registered());
    EXPECT_EQ(late.GetId(), 3u);
    EXPECT_EQ(late.Manager(), manager.get());
}

TEST(ControlFactory, UnregisterKeepsRegistryEntries) {
    auto manager = std::make_shared<GUI::GUIManager>();
    Base root, child;
    root.AddChild(&child);
    root.Register(manager);
    ASSERT_TRUE(root.RemoveChild(&child));
    EXPECT_FALSE(child.Registered());
    EXPECT_EQ(child.Manager(), nullptr);
    EXPECT_EQ(manager->Find(child.GetId()), &child);
    EXPECT_EQ(manager->Controls().size(), 2u);
    EXPECT_FALSE(child.Unregister()) << "not registered any more";
    // RemoveControl is what forgets it, and drops the manager's redraw flag pointer.
    EXPECT_NE(child.ManagerRedrawFlag(), nullptr);
    EXPECT_TRUE(manager->RemoveControl(&child));
    EXPECT_EQ(child.ManagerRedrawFlag(), nullptr);
    EXPECT_EQ(manager->Find(child.GetId()), nullptr);
}
