// Headless host: draws an overlay over its own 3D scene without a window, replays a scripted mouse
// session through the input manager and writes PNG frames, printing what each event reached.
#include "demohost.h"
#include "skinsheet.h"

#include <trelvogui/gui/button.h>
#include <trelvogui/gui/panel.h>
#include <trelvogui/gui/switchbutton.h>
#include <trelvogui/probecontrol.h>

#include <graphicsbase/headlesscontext.h>
#include <graphicsbase/pngwriter.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

namespace {
constexpr int kWidth = 960;
constexpr int kHeight = 600;

struct Session {
    demo::DemoHost& host;
    std::string outDir;
    float angle = 20.f;
    int frame = 0;

    void flush(const std::string& what) {
        std::printf("%s\n", what.c_str());
        for (const std::string& line : host.TakeJournal())
            std::printf("%s\n", line.c_str());
    }

    void snapshot(const std::string& name) {
        if (host.Rotating())
            angle += 25.f;
        host.RenderFrame(angle);
        std::vector<uint8_t> pixels(static_cast<size_t>(kWidth) * kHeight * 4);
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
        glReadPixels(0, 0, kWidth, kHeight, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
        char file[64];
        std::snprintf(file, sizeof file, "frame-%02d-%s.png", frame++, name.c_str());
        std::string path = (std::filesystem::path(outDir) / file).string();
        if (GraphicsBase::WritePNG(path, pixels.data(), kWidth, kHeight))
            std::printf("wrote %s\n", std::filesystem::absolute(path).c_str());
        else
            std::printf("could not write %s\n", path.c_str());
    }

    void move(int x, int y, int buttons = 0) { host.MouseMove(x, y, buttons); }
    void click(int x, int y) {
        host.MouseMove(x, y);
        host.MousePress(x, y, 1);
        host.MouseRelease(x, y, 0);
    }
    /// Press, move in steps with the left button held, release: a drag.
    void drag(int x0, int y0, int x1, int y1) {
        host.MouseMove(x0, y0);
        host.MousePress(x0, y0, 1);
        for (int i = 1; i <= 4; ++i)
            host.MouseMove(x0 + (x1 - x0) * i / 4, y0 + (y1 - y0) * i / 4, 1);
        host.MouseRelease(x1, y1, 0);
    }
};
} // namespace

int main(int argc, char** argv) {
    std::string outDir = "demo-output";
    for (int i = 1; i < argc; ++i)
        if (std::strcmp(argv[i], "--out") == 0 && i + 1 < argc)
            outDir = argv[++i];
    std::filesystem::create_directories(outDir);

    HeadlessGLContext context(kWidth, kHeight);
    if (!context.Valid()) {
        std::fprintf(stderr, "%s\n", context.Error().c_str());
        return 1;
    }
    std::printf("OpenGL renderer: %s\n", context.Renderer().c_str());

    demo::DemoHost host(kWidth, kHeight);
    if (!host.Initialize())
        return 1;
    Session s{host, outDir};

    s.snapshot("initial");

    s.move(98, 86);
    s.flush("hover the 'Count click' button (host 98, 86):");
    s.snapshot("hover-button");

    s.click(98, 86);
    s.flush("click the 'Count click' button:");
    s.snapshot("clicked");

    s.click(42, 134);
    s.flush("click the rotation switch (host 42, 134):");
    s.snapshot("switch-off");

    s.drag(kWidth - 20, 191, kWidth - 70, 311);
    s.flush("drag the notes panel's grip by (-50, +120):");
    s.snapshot("notes-resized");

    auto probe = s.host.Probe()->GetLocation();
    int px = probe[0] + 60, py = kHeight - probe[1] - 10;
    s.drag(px, py, px - 320, py - 140);
    s.flush("drag the probe box by (-320, -140):");
    s.snapshot("probe-moved");

    s.drag(320, 30, 380, 110);
    s.flush("drag the tools panel by (+60, +80):");
    s.snapshot("panel-dragged");

    const auto& r = s.host.Toolbar()->GetRectangle();
    std::printf("tools panel now at (%d, %d)-(%d, %d); rotation %s\n", r.xMin, r.yMin, r.xMax, r.yMax,
                s.host.Rotating() ? "on" : "off");

    std::string sheet = (std::filesystem::path(outDir) / "skin-sheet.png").string();
    if (!demo::WriteSkinSheet(sheet)) {
        std::printf("could not write the skin sheet\n");
        return 1;
    }
    std::printf("wrote %s (every standard control in each state)\n",
                std::filesystem::absolute(sheet).c_str());
    return 0;
}
