// Misuse of the control tree, the registry and the input manager is refused with a message and leaves
// the state as it was.
#include "support/logcapture.h"

#include <trelvogui/gui/animationsequence.h>
#include <trelvogui/gui/controlbase.h>
#include <trelvogui/gui/guiinputmanager.h>
#include <trelvogui/gui/guimanager.h>

#include <graphicsbase/graphicsscene.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

using namespace GraphicsBase;

using GUI::Controls::Base;

TEST(Misuse, RefusedWithAMessageAndNoChange) {
    struct World {
        std::shared_ptr<GUI::GUIManager> manager = std::make_shared<GUI::GUIManager>();
        Base root, child, grandchild, loose;
        GraphicsScene scene;
        GUI::GUIInputManager input{scene};
        World() {
            root.AddChild(&child);
            child.AddChild(&grandchild);
            root.Register(manager);
        }
        /// What must not change: the tree, the registry and the handlers.
        std::string State() {
            std::string s =
                std::to_string(root.Children()->size()) + "/" + std::to_string(child.Children()->size()) +
                "/" + std::to_string(grandchild.Children()->size()) + "/" +
                std::to_string(manager->Controls().size()) + "/" +
                std::to_string(input.GetScreenHandlers().size()) + "/" + (loose.HasParent() ? "p" : "-");
            return s;
        }
    };
    struct Case {
        const char* what;
        std::function<bool(World&)> call;
    };
    const Case cases[] = {
        {"AddChild(nullptr)", [](World& w) { return w.root.AddChild(nullptr); }},
        {"AddChild(this)", [](World& w) { return w.root.AddChild(&w.root); }},
        {"AddChild(ancestor): a cycle", [](World& w) { return w.grandchild.AddChild(&w.root); }},
        {"AddChild of a child twice", [](World& w) { return w.root.AddChild(&w.child); }},
        {"RemoveChild(nullptr)", [](World& w) { return w.root.RemoveChild(nullptr); }},
        {"RemoveChild of a stranger", [](World& w) { return w.root.RemoveChild(&w.loose); }},
        {"Register(nullptr)", [](World& w) { return w.loose.Register(nullptr); }},
        {"AddControl(nullptr)", [](World& w) { return w.manager->AddControl(nullptr); }},
        {"RemoveControl(nullptr)", [](World& w) { return w.manager->RemoveControl(nullptr); }},
        {"AddAnimation(nullptr)", [](World& w) { return w.manager->AddAnimation(nullptr); }},
        {"AddAnimation for an unregistered control",
         [](World& w) {
             auto sequence = std::make_unique<GUI::Animation::Sequence>(&w.loose, 1.f);
             return w.manager->AddAnimation(sequence.get());
         }},
        {"addScreenHandler(nullptr)", [](World& w) { return w.input.addScreenHandler(nullptr) != 0; }},
    };
    for (const Case& c : cases) {
        World w;
        trelvo::test::LogCapture log;
        const std::string before = w.State();
        EXPECT_FALSE(c.call(w)) << c.what;
        EXPECT_EQ(w.State(), before) << c.what;
        EXPECT_EQ(log.Lines().size(), 1u) << c.what << " says why, once";
    }
}

TEST(Misuse, NullOutputsAndDuplicatesAreHarmless) {
    auto manager = std::make_shared<GUI::GUIManager>();
    EXPECT_TRUE(manager->HitDetect(1, 1, nullptr, nullptr));
    unsigned sid = 7;
    EXPECT_TRUE(manager->HitDetect(-5, 1, nullptr, &sid));
    EXPECT_EQ(sid, 0u);

    GraphicsScene scene;
    GUI::GUIInputManager input(scene);
    InputHandler handler;
    unsigned id = input.addScreenHandler(&handler);
    trelvo::test::LogCapture log;
    EXPECT_EQ(input.addScreenHandler(&handler), id) << "registered once; the second call names the first id";
    EXPECT_EQ(input.GetScreenHandlers().size(), 1u);
    EXPECT_TRUE(log.Contains("already registered"));
}
