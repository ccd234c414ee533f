// Screen-handler registry: id allocation, dispatch order, gates and messages.
#include "support/logcapture.h"

#include <trelvogui/gui/guiinputmanager.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace GraphicsBase;

namespace {
/// Records which entry points ran and answers with a fixed result.
struct RecordingHandler : InputHandler {
    explicit RecordingHandler(DrawFlags answer = DRAW_NOTHING) : answer(answer) {}
    DrawFlags record(const char* what) {
        calls.push_back(what);
        return answer;
    }
    DrawFlags mousePressEvent(VX_UI::MouseEvent* e) override {
        last = *e;
        return record("press");
    }
    DrawFlags mouseReleaseEvent(VX_UI::MouseEvent*) override { return record("release"); }
    DrawFlags mouseMoveEvent(VX_UI::MouseEvent*) override { return record("move"); }
    DrawFlags mouseWheel(VX_UI::MouseWheelEvent* e) override {
        wheel = e->delta;
        return record("wheel");
    }
    DrawFlags keyPress(VX_UI::KeyEvent* e) override {
        key = e->key;
        return record("key");
    }
    DrawFlags keyRelease(VX_UI::KeyEvent*) override { return record("keyup"); }
    DrawFlags touchEvent(VX_UI::TouchEvent*) override { return record("touch"); }

    DrawFlags answer;
    std::vector<std::string> calls;
    VX_UI::MouseEvent last;
    int wheel = 0;
    unsigned key = 0;
};

struct CountingScene : GraphicsScene {
    void SetDrawFlags(DrawFlags f) override {
        received.push_back(f);
        GraphicsScene::SetDrawFlags(f);
    }
    std::vector<DrawFlags> received;
};
} // namespace

TEST(GUIInputManager, IdsCountUpFromOneAndAreNeverReused) {
    CountingScene scene;
    GUI::GUIInputManager input(scene);
    RecordingHandler a, b, c;
    a.setID(77);
    EXPECT_EQ(input.addScreenHandler(&a), 1u);
    EXPECT_EQ(input.addScreenHandler(&b), 2u);
    EXPECT_EQ(a.getID(), 0) << "handlers carry id 0 in their own record";
    trelvo::test::LogCapture log;
    EXPECT_EQ(input.removeScreenHandler(2), &b);
    EXPECT_EQ(log.Count("Removing screen handler 2\n"), 1);
    EXPECT_EQ(input.removeScreenHandler(2), nullptr);
    EXPECT_EQ(log.Lines().size(), 1u) << "removing an unknown id logs nothing";
    EXPECT_EQ(input.addScreenHandler(&c), 3u);
}

TEST(GUIInputManager, ResetRestartsIdsAndKeepsExistingHandlerOnCollision) {
    CountingScene scene;
    GUI::GUIInputManager input(scene);
    RecordingHandler a(DRAW_OVERLAY), b(DrawFlags(9));
    input.addScreenHandler(&a);
    input.Reset();
    EXPECT_EQ(input.addScreenHandler(&b), 1u);
    ASSERT_EQ(input.GetScreenHandlers().size(), 1u);
    EXPECT_EQ(input.GetScreenHandlers().at(1), &a);
    EXPECT_EQ(input.addScreenHandler(&b), 2u);
    input.ClearInputHandlers();
    EXPECT_TRUE(input.GetScreenHandlers().empty());
}

TEST(GUIInputManager, DispatchStopsAtFirstNonZeroInAscendingOrder) {
    CountingScene scene;
    GUI::GUIInputManager input(scene);
    RecordingHandler quiet, first(DrawFlags(9)), second(DRAW_OVERLAY);
    input.addScreenHandler(&quiet);
    input.addScreenHandler(&first);
    input.addScreenHandler(&second);
    EXPECT_TRUE(input.mousePressEvent(10, 20, 11, 21, 1, 4));
    EXPECT_EQ(quiet.calls, std::vector<std::string>{"press"});
    EXPECT_EQ(first.calls, std::vector<std::string>{"press"});
    EXPECT_TRUE(second.calls.empty());
    EXPECT_EQ(scene.received, std::vector<DrawFlags>{DrawFlags(9)});
    // The event carries the arguments unchanged.
    EXPECT_EQ(first.last.type, 2);
    EXPECT_EQ(first.last.x, 10);
    EXPECT_EQ(first.last.y, 20);
    EXPECT_EQ(first.last.prevX, 11);
    EXPECT_EQ(first.last.prevY, 21);
    EXPECT_EQ(first.last.buttons, 1);
    EXPECT_EQ(first.last.modifiers, 4);

    EXPECT_TRUE(input.mouseWheelEvent(-120));
    EXPECT_EQ(first.wheel, -120);
    EXPECT_TRUE(input.keyPressEvent(65, 0));
    EXPECT_EQ(first.key, 65u);
    EXPECT_EQ(scene.received.size(), 3u);
}

TEST(GUIInputManager, NoHandlerAnswersMeansFalseAndNoSceneCallButTouchAlwaysReports) {
    CountingScene scene;
    GUI::GUIInputManager input(scene);
    EXPECT_FALSE(input.keyPressEvent(1, 0));
    RecordingHandler quiet;
    input.addScreenHandler(&quiet);
    EXPECT_FALSE(input.mouseMoveEvent(0, 0, 0, 0, 0, 0));
    EXPECT_FALSE(input.keyReleaseEvent(1, 0));
    EXPECT_TRUE(scene.received.empty());
    VX_UI::TouchEvent touch;
    EXPECT_TRUE(input.touchDispatchToHandlers(&touch));
    EXPECT_EQ(scene.received, std::vector<DrawFlags>{DRAW_NOTHING});
}

TEST(GUIInputManager, BlockedAndPressRefusedGates) {
    CountingScene scene;
    GUI::GUIInputManager input(scene);
    RecordingHandler h(DRAW_OVERLAY);
    input.addScreenHandler(&h);

    input.pressRefused = true;
    EXPECT_FALSE(input.mouseMoveEvent(0, 0, 0, 0, 0, 0));
    EXPECT_FALSE(input.mouseReleaseEvent(0, 0, 0, 0, 1, 0));
    EXPECT_TRUE(input.mouseWheelEvent(1)) << "wheel and keys ignore both gates";
    EXPECT_TRUE(input.mousePressEvent(0, 0, 0, 0, 1, 0));
    EXPECT_FALSE(input.pressRefused) << "an accepted press clears the refusal";
    EXPECT_TRUE(input.mouseMoveEvent(0, 0, 0, 0, 1, 0));

    input.blocked = true;
    input.pressRefused = true;
    EXPECT_FALSE(input.mousePressEvent(0, 0, 0, 0, 1, 0));
    EXPECT_TRUE(input.pressRefused) << "a blocked press does not clear the refusal";
    EXPECT_TRUE(input.keyPressEvent(1, 0));
    EXPECT_EQ(h.calls, (std::vector<std::string>{"wheel", "press", "move", "key"}));
}
