// The Qt backend on a QOpenGLWidget, driven by QTest's events: clicks reach the overlay, what it
// leaves reaches the widget's own handlers, and misuse is refused. Skipped without a display
// (scripts/test.sh runs it under Xvfb).
#include "support/logcapture.h"

#include <trelvogui/backends/qt/qtbackend.h>
#include <trelvogui/gui/button.h>
#include <trelvogui/gui/guimanager.h>

#include <graphicsbase/camera.h>

#include <QApplication>
#include <QOpenGLWidget>
#include <QOpenGLWindow>
#include <QSurfaceFormat>
#include <QTest>

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

using namespace GraphicsBase;

namespace {

/// What each host view initialises in initializeGL: the overlay and one button on it.
struct Overlay {
    void Start() {
        ASSERT_TRUE(manager->Initialize());
        manager->Resize(256, 256);
        button.SetRectangle({10, 90, 200, 240});
        button.Register(manager);
    }
    std::shared_ptr<GUI::GUIManager> manager = std::make_shared<GUI::GUIManager>();
    GUI::Controls::Button button;
};

/// A widget host (the overlay drawn after its paintGL by the backend) that counts the presses that
/// reach its own handler; it can leave the overlay uninitialised.
class View : public QOpenGLWidget, public Overlay {
public:
    explicit View(bool overlay) : overlay_(overlay) { resize(256, 256); }
    ~View() override { makeCurrent(); }
    void initializeGL() override {
        if (overlay_)
            Start();
    }
    void mousePressEvent(QMouseEvent*) override { ++hostPresses; }
    int hostPresses = 0;

private:
    bool overlay_;
};

/// A window host draws the overlay itself, from paintOverGL.
class WindowView : public QOpenGLWindow, public Overlay {
public:
    WindowView() { resize(256, 256); }
    ~WindowView() override { makeCurrent(); }
    void initializeGL() override { Start(); }
    void paintOverGL() override { input->Paint(); }
    GUI::QtBackend* input = nullptr;
};

class QtBackendTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        if (!std::getenv("DISPLAY") || QApplication::instance())
            return;
        QSurfaceFormat format;
        format.setVersion(3, 3);
        format.setProfile(QSurfaceFormat::CoreProfile);
        QSurfaceFormat::setDefaultFormat(format);
        static int argc = 1;
        static char name[] = "qtbackend_test";
        static char* argv[] = {name, nullptr};
        new QApplication(argc, argv); // lives as long as the test program
    }
    void SetUp() override {
        if (!QApplication::instance())
            GTEST_SKIP() << "no display for Qt";
        log = std::make_unique<trelvo::test::LogCapture>();
    }
    void TearDown() override {
        if (!log)
            return;
        for (const auto& line : log->Lines())
            EXPECT_EQ(line.find("Opengl assert"), std::string::npos) << line;
    }
    template <class V> static bool shown(V& view, GUI::QtBackend& input) {
        view.show();
        return QTest::qWaitForWindowExposed(&view) &&
               QTest::qWaitFor([&] { return input.Frames() > 0; }, 5000);
    }
    std::unique_ptr<trelvo::test::LogCapture> log;
};

TEST_F(QtBackendTest, ClicksReachTheOverlayAndTheRestReachesTheView) {
    View view(true);
    GUI::QtBackend input(&view, *view.manager);
    ASSERT_TRUE(input.Installed());
    ASSERT_TRUE(shown(view, input));
    int clicks = 0;
    view.button.ClickedSignal.connect([&] { ++clicks; });
    DrawFlags seen = DRAW_NOTHING;
    input.DrawFlagsSignal.connect([&](DrawFlags f) { seen |= f; });

    // Overlay y 220 is view y 36; the device-pixel ratio is 1 here (the windowed hosts' test runs 2).
    QTest::mouseClick(&view, Qt::LeftButton, {}, QPoint(50, 36));
    EXPECT_EQ(clicks, 1);
    EXPECT_NE(seen, DRAW_NOTHING) << "the click's result reaches the host";
    EXPECT_EQ(view.hostPresses, 0) << "consumed by the overlay";
    QTest::mouseClick(&view, Qt::LeftButton, {}, QPoint(200, 200));
    EXPECT_EQ(view.hostPresses, 1) << "empty space is the view's";
    EXPECT_TRUE(QTest::qWaitFor([&] { return input.Frames() > 1; }, 5000)) << "the click asked for a frame";

    // A followed camera takes the new framebuffer size before the host paints.
    auto camera = std::make_shared<Camera>();
    input.FollowViewport(camera);
    view.resize(300, 200);
    EXPECT_EQ(std::make_pair(camera->Width(), camera->Height()), std::make_pair(300, 200));

    GUI::QtBackend second(&view, *view.manager);
    EXPECT_FALSE(second.Installed());
    EXPECT_TRUE(log->Contains("QtBackend: the view already has a backend.\n"));
    view.doneCurrent();
    EXPECT_FALSE(input.Paint()) << "no current context";
}

TEST_F(QtBackendTest, AWindowHostGetsTheSameEventsAndPaintsTheOverlayItself) {
    WindowView view;
    GUI::QtBackend input(&view, *view.manager);
    view.input = &input;
    ASSERT_TRUE(shown(view, input));
    int clicks = 0;
    view.button.ClickedSignal.connect([&] { ++clicks; });
    QTest::mouseClick(&view, Qt::LeftButton, {}, QPoint(50, 36));
    EXPECT_EQ(clicks, 1);
}

TEST_F(QtBackendTest, EarlyEventsGoToTheViewAndADestroyedViewDetaches) {
    auto view = std::make_unique<View>(false);
    GUI::GUIManager manager;
    GUI::QtBackend input(view.get(), manager);
    QTest::mouseClick(view.get(), Qt::LeftButton, {}, QPoint(50, 36));
    EXPECT_EQ(view->hostPresses, 1);
    EXPECT_TRUE(log->Contains("QtBackend: input before the manager is initialised goes to the view.\n"));
    view.reset();
    EXPECT_FALSE(input.Installed());
    EXPECT_TRUE(log->Contains("QtBackend: the view was destroyed; the backend is detached.\n"));
}

} // namespace
