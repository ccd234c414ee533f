// The example hosts in real windows. Untouched, a host draws at most one frame and uses at most 2% of
// a core; real pointer events (xdotool) click a button and resize a panel by its grip, checked in the
// window's pixels, at device-pixel ratio 1 and (Qt) 2. Needs an X display and xdotool, so
// scripts/test.sh runs it under Xvfb; skipped without them. The windows before and after the drag are
// saved to the test output on failure, or always with TRELVO_SAVE_HOST_WINDOWS set.
#include <graphicsbase/pngwriter.h>

#include <gtest/gtest.h>

// After the test framework, whose names Xlib's macros (None, Bool) would replace.
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#undef None
#undef Bool

#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <poll.h>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

using namespace GraphicsBase;

namespace {

using Clock = std::chrono::steady_clock;

void pause(double seconds) {
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
}

bool haveCommand(const char* name) {
    return std::system((std::string("command -v ") + name + " >/dev/null 2>&1").c_str()) == 0;
}

std::string run(const std::string& command) {
    std::string out;
    if (FILE* pipe = popen(command.c_str(), "r")) {
        char buffer[256];
        while (std::fgets(buffer, sizeof buffer, pipe))
            out += buffer;
        pclose(pipe);
    }
    return out;
}

/// A host started with the frame trace on; counts the "frame N" lines it prints.
class HostProcess {
public:
    HostProcess(const std::string& path, const std::vector<std::string>& args,
                const std::vector<std::string>& env) {
        int fds[2];
        if (pipe(fds) != 0)
            return;
        pid_ = fork();
        if (pid_ == 0) {
            dup2(fds[1], STDOUT_FILENO);
            close(fds[0]);
            close(fds[1]);
            setenv("TRELVOGUI_TRACE_FRAMES", "1", 1);
            for (const std::string& e : env)
                putenv(const_cast<char*>(e.c_str()));
            std::vector<char*> argv{const_cast<char*>(path.c_str())};
            for (const std::string& a : args)
                argv.push_back(const_cast<char*>(a.c_str()));
            argv.push_back(nullptr);
            execv(path.c_str(), argv.data());
            _exit(127);
        }
        close(fds[1]);
        out_ = fds[0];
        fcntl(out_, F_SETFL, O_NONBLOCK);
    }
    ~HostProcess() {
        if (pid_ > 0) {
            kill(pid_, SIGTERM);
            int status = 0;
            for (int i = 0; i < 50 && waitpid(pid_, &status, WNOHANG) == 0; ++i)
                pause(0.1);
            if (waitpid(pid_, &status, WNOHANG) == 0) {
                kill(pid_, SIGKILL);
                waitpid(pid_, &status, 0);
            }
        }
        if (out_ >= 0)
            close(out_);
    }
    HostProcess(const HostProcess&) = delete;
    HostProcess& operator=(const HostProcess&) = delete;

    int Frames() {
        char buffer[4096];
        ssize_t n = 0;
        while ((n = read(out_, buffer, sizeof buffer)) > 0)
            text_.append(buffer, static_cast<size_t>(n));
        int frames = 0;
        for (size_t at = text_.find("frame "); at != std::string::npos; at = text_.find("frame ", at + 1))
            frames += (at == 0 || text_[at - 1] == '\n') ? 1 : 0;
        return frames;
    }
    /// True once the host has drawn more than `frames` frames, within `seconds`.
    bool WaitBeyond(int frames, double seconds) {
        const auto end = Clock::now() + std::chrono::duration<double>(seconds);
        while (Clock::now() < end) {
            if (Frames() > frames)
                return true;
            pollfd p{out_, POLLIN, 0};
            poll(&p, 1, 50);
        }
        return Frames() > frames;
    }
    /// User and system CPU time of the whole process (all threads), in seconds.
    double CpuSeconds() const {
        std::ifstream stat("/proc/" + std::to_string(pid_) + "/stat");
        std::string all((std::istreambuf_iterator<char>(stat)), std::istreambuf_iterator<char>());
        std::istringstream fields(all.substr(all.rfind(')') + 2));
        std::string skip;
        for (int i = 0; i < 11; ++i) // state ... cmajflt
            fields >> skip;
        double user = 0, system = 0;
        fields >> user >> system;
        return (user + system) / static_cast<double>(sysconf(_SC_CLK_TCK));
    }
    const std::string& Output() const { return text_; }

private:
    pid_t pid_ = -1;
    int out_ = -1;
    std::string text_;
};

struct HostCase {
    const char* name;
    const char* path; // empty when the host is not built
    std::vector<std::string> args;
    std::vector<std::string> env;
    bool events; // the minimal host's layout: a "First" button and a resizable notes panel
};

void PrintTo(const HostCase& host, std::ostream* os) {
    *os << host.name;
}

/// The host's top-level window on the screen: its pixels and pointer actions in window pixels.
class HostWindow {
public:
    HostWindow(Display* display, Window window) : display_(display), window_(window) {
        XWindowAttributes a{};
        XGetWindowAttributes(display_, window_, &a);
        width_ = a.width;
        height_ = a.height;
        Window child = 0;
        XTranslateCoordinates(display_, window_, DefaultRootWindow(display_), 0, 0, &x_, &y_, &child);
    }
    int Width() const { return width_; }
    bool OnScreen() const {
        return x_ >= 0 && y_ >= 0 && x_ + width_ <= DisplayWidth(display_, DefaultScreen(display_)) &&
               y_ + height_ <= DisplayHeight(display_, DefaultScreen(display_));
    }
    /// Window pixels as 0xRRGGBB, top row first.
    std::vector<uint32_t> Grab() const {
        std::vector<uint32_t> pixels;
        XImage* image =
            XGetImage(display_, DefaultRootWindow(display_), x_, y_, static_cast<unsigned>(width_),
                      static_cast<unsigned>(height_), AllPlanes, ZPixmap);
        if (!image)
            return pixels;
        for (int y = 0; y < height_; ++y)
            for (int x = 0; x < width_; ++x)
                pixels.push_back(static_cast<uint32_t>(XGetPixel(image, x, y)) & 0xFFFFFFu);
        XDestroyImage(image);
        return pixels;
    }
    uint32_t At(const std::vector<uint32_t>& pixels, int x, int y) const {
        return pixels.at(static_cast<size_t>(y * width_ + x));
    }
    /// Pixels that differ between two grabs inside [x0, x1) x [y0, y1).
    int Differences(const std::vector<uint32_t>& a, const std::vector<uint32_t>& b, int x0, int y0, int x1,
                    int y1) const {
        int n = 0;
        for (int y = y0; y < y1; ++y)
            for (int x = x0; x < x1; ++x)
                n += At(a, x, y) != At(b, x, y) ? 1 : 0;
        return n;
    }
    void Pointer(const std::string& actions) const {
        EXPECT_EQ(std::system(("xdotool " + actions).c_str()), 0) << actions;
    }
    std::string MoveTo(int x, int y) const {
        return "mousemove --sync " + std::to_string(x_ + x) + " " + std::to_string(y_ + y) + " ";
    }
    void Save(const std::vector<uint32_t>& pixels, const std::string& name) const {
        std::vector<uint8_t> rgba;
        for (uint32_t p : pixels)
            rgba.insert(rgba.end(), {static_cast<uint8_t>(p >> 16), static_cast<uint8_t>(p >> 8),
                                     static_cast<uint8_t>(p), 255});
        const std::string path = std::string(TRELVO_TEST_OUTPUT_DIR) + "/" + name + ".png";
        if (GraphicsBase::WritePNG(path, rgba.data(), width_, height_, false))
            std::printf("window saved to %s\n", path.c_str());
    }

private:
    Display* display_;
    Window window_;
    int x_ = 0;
    int y_ = 0;
    int width_ = 0;
    int height_ = 0;
};

class WindowedHosts : public ::testing::TestWithParam<HostCase> {
protected:
    static void SetUpTestSuite() { display_ = XOpenDisplay(nullptr); }
    static void TearDownTestSuite() {
        if (display_)
            XCloseDisplay(display_);
        display_ = nullptr;
    }
    void SetUp() override {
        if (!*GetParam().path)
            GTEST_SKIP() << GetParam().name << " is not built";
        if (!display_)
            GTEST_SKIP() << "no X display";
        if (!haveCommand("xdotool"))
            GTEST_SKIP() << "xdotool is not installed";
    }
    static Display* display_;
};

Display* WindowedHosts::display_ = nullptr;

TEST_P(WindowedHosts, IdleCostsNothingAndRealEventsReachTheOverlay) {
    const HostCase& host = GetParam();
    HostProcess process(host.path, host.args, host.env);
    ASSERT_TRUE(process.WaitBeyond(0, 30)) << "no first frame; output:\n" << process.Output();

    // Untouched for 5 s after the first frame.
    const int frames = process.Frames();
    const double cpu = process.CpuSeconds();
    pause(5.0);
    const int idleFrames = process.Frames() - frames;
    const double share = (process.CpuSeconds() - cpu) / 5.0;
    std::printf("%s, 5 s idle: %d frames, %.1f%% of a core\n", host.name, idleFrames, 100.0 * share);
    EXPECT_LE(idleFrames, 1) << "frames drawn while idle";
    EXPECT_LE(share, 0.02) << "share of a core used while idle";
    if (!host.events)
        return;

    const std::string id = run("timeout 10 xdotool search --sync --onlyvisible --name '^TrelvoGUI'");
    ASSERT_FALSE(id.empty()) << "the host's window was not found";
    HostWindow window(display_, static_cast<Window>(std::stoul(id)));
    ASSERT_TRUE(window.OnScreen()) << "the screen is too small for the window";
    const int w = window.Width();
    // Waits for the frame an action causes to reach the screen.
    auto settle = [&](int before) {
        process.WaitBeyond(before, 3);
        pause(0.3);
    };

    // The "First" button (framebuffer pixels 28..136 x 80..112 from the top left, whatever the
    // device-pixel ratio): hover it, then click; its text gains a count.
    int before = process.Frames();
    window.Pointer(window.MoveTo(82, 96));
    settle(before);
    const std::vector<uint32_t> hovered = window.Grab();
    before = process.Frames();
    window.Pointer("click 1");
    settle(before);
    const std::vector<uint32_t> clicked = window.Grab();
    EXPECT_GT(window.Differences(hovered, clicked, 28, 80, 136, 112), 20)
        << "the click did not reach the button";

    // The notes panel's grip (its lower-right 9 x 9 pixels, 16 from the right edge, bottom at 176):
    // dragged 60 pixels down, the panel grows over what was background.
    const int probeX = w - 100, probeY = 206;
    before = process.Frames();
    std::string drag = window.MoveTo(w - 20, 171) + "mousedown 1 ";
    for (int step = 1; step <= 6; ++step)
        drag += "sleep 0.05 " + window.MoveTo(w - 20, 171 + 10 * step);
    window.Pointer(drag + "mouseup 1");
    settle(before);
    const std::vector<uint32_t> dragged = window.Grab();
    EXPECT_NE(window.At(clicked, probeX, probeY), window.At(dragged, probeX, probeY))
        << "the drag did not resize the panel";
    if (HasFailure() || std::getenv("TRELVO_SAVE_HOST_WINDOWS")) {
        window.Save(clicked, std::string(host.name) + "-before-drag");
        window.Save(dragged, std::string(host.name) + "-after-drag");
    }
}

/// One "state" line of the viewer: its own view and model matrices, the direction to its light, and
/// for the gizmo's centre, the view cube's +z face, the light's ball, the whole view cube and the
/// whole light widget: a host pixel and the host bounds (xMin xMax yMin yMax).
struct ViewerState {
    float view[16] = {}, model[16] = {}, light[3] = {};
    int part[5][6] = {};
};

bool LastViewerState(const std::string& trace, ViewerState& state) {
    const std::string output = "\n" + trace;
    const size_t at = output.rfind("\nstate ");
    const size_t end = at == std::string::npos ? at : output.find('\n', at + 1);
    if (end == std::string::npos)
        return false;
    std::istringstream in(output.substr(at + 7, end - at - 7));
    std::string word;
    in >> word;
    for (float& v : state.view)
        in >> v;
    in >> word;
    for (float& v : state.model)
        in >> v;
    in >> word >> state.light[0] >> state.light[1] >> state.light[2];
    for (auto& part : state.part) {
        in >> word;
        for (int& v : part)
            in >> v;
    }
    return !in.fail();
}

// The 3D viewer example (built against the installed package when TRELVO_VIEWER names it) driven by
// real pointer events: a gizmo drag moves its cube, a click on the view cube's +z face turns its own
// camera to look along -z, a drag on the light widget turns its light; each shows in the window.
TEST(ViewerHost, RealPointerEventsMoveTheCubeTurnTheCameraAndTheLight) {
    const char* path = std::getenv("TRELVO_VIEWER") ? std::getenv("TRELVO_VIEWER") : TRELVO_VIEWER_HOST;
    Display* display = XOpenDisplay(nullptr);
    if (!*path || !display || !haveCommand("xdotool")) {
        if (display)
            XCloseDisplay(display);
        GTEST_SKIP() << "needs the viewer, an X display and xdotool";
    }
    HostProcess process(path, {}, {"TRELVO_VIEWER_STATE=1"});
    ASSERT_TRUE(process.WaitBeyond(0, 30)) << "no first frame; output:\n" << process.Output();
    const std::string id = run("timeout 10 xdotool search --sync --onlyvisible --name '^TrelvoGUI viewer'");
    ASSERT_FALSE(id.empty()) << "the viewer's window was not found";
    HostWindow window(display, static_cast<Window>(std::stoul(id)));
    ASSERT_TRUE(window.OnScreen());
    pause(0.5);
    ViewerState states[4];
    std::vector<uint32_t> grabs[4];
    ASSERT_TRUE(LastViewerState(process.Output(), states[0])) << process.Output();
    grabs[0] = window.Grab();
    // Each action: a press on a part, moves of (dx, dy) in steps, a release; then the next state.
    auto act = [&](int step, const int* part, int dx, int dy) {
        const int before = process.Frames();
        // A synchronous move onto the pointer's own position would wait for ever: a click is a click.
        std::string drag = window.MoveTo(part[0], part[1]) + (dx || dy ? "mousedown 1 " : "click 1");
        for (int i = 1; i <= 5 && (dx || dy); ++i)
            drag += "sleep 0.05 " + window.MoveTo(part[0] + dx * i / 5, part[1] + dy * i / 5);
        window.Pointer(drag + (dx || dy ? "mouseup 1" : ""));
        process.WaitBeyond(before, 3);
        pause(0.5);
        process.Frames();
        EXPECT_TRUE(LastViewerState(process.Output(), states[step]));
        grabs[step] = window.Grab();
    };
    // Pixels that changed, outside the view cube and the light widget (which redraw themselves).
    auto sceneChanges = [&](int step) {
        int n = 0;
        for (int y = 0; y < static_cast<int>(grabs[step].size()) / window.Width(); ++y)
            for (int x = 0; x < window.Width(); ++x) {
                bool widget = false;
                for (int p : {3, 4}) {
                    const int* r = states[step].part[p];
                    widget |= x >= r[2] - 2 && x <= r[3] + 2 && y >= r[4] - 2 && y <= r[5] + 2;
                }
                n += !widget && window.At(grabs[step - 1], x, y) != window.At(grabs[step], x, y);
            }
        return n;
    };

    act(1, states[0].part[0], 60, 30); // the gizmo's centre
    const float* m0 = states[0].model + 12;
    const float* m1 = states[1].model + 12;
    EXPECT_GT(std::abs(m1[0] - m0[0]) + std::abs(m1[1] - m0[1]) + std::abs(m1[2] - m0[2]), 0.2f)
        << "the cube did not move";
    EXPECT_GT(sceneChanges(1), 500);

    act(2, states[1].part[1], 0, 0); // a click on the view cube's +z face
    // The view's third row is the camera's backward axis in world space: now +z.
    EXPECT_NEAR(states[2].view[2], 0.f, 1e-3f);
    EXPECT_NEAR(states[2].view[6], 0.f, 1e-3f);
    EXPECT_NEAR(states[2].view[10], 1.f, 1e-3f);
    EXPECT_GT(sceneChanges(2), 500) << "the scene was not redrawn from the new camera";

    act(3, states[2].part[2], 50, 0); // the light's ball
    const float* l2 = states[2].light;
    const float* l3 = states[3].light;
    EXPECT_LT(l2[0] * l3[0] + l2[1] * l3[1] + l2[2] * l3[2], 0.99f) << "the light did not turn";
    EXPECT_GT(sceneChanges(3), 200) << "the cube's lighting did not change";

    EXPECT_EQ(process.Output().find("Opengl assert"), std::string::npos);
    if (HasFailure() || std::getenv("TRELVO_SAVE_HOST_WINDOWS"))
        for (int i = 0; i < 4; ++i)
            window.Save(grabs[i], "viewer-" + std::to_string(i));
    XCloseDisplay(display);
}

const HostCase kHosts[] = {
    {"glfw_minimal", TRELVO_MINIMAL_HOST, {}, {}, true},
    {"glfw_demo", TRELVO_GLFW_DEMO, {"--still"}, {}, false},
    {"sdl_host", TRELVO_SDL_HOST, {}, {}, true},
    {"qt_host", TRELVO_QT_HOST, {}, {"QT_SCALE_FACTOR=1"}, true},
    {"qt_host_ratio_2", TRELVO_QT_HOST, {}, {"QT_SCALE_FACTOR=2"}, true},
};

INSTANTIATE_TEST_SUITE_P(Hosts, WindowedHosts, ::testing::ValuesIn(kHosts),
                         [](const ::testing::TestParamInfo<HostCase>& info) {
                             return std::string(info.param.name);
                         });

} // namespace
