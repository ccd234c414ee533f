// Headless host: draws an overlay over its own 3D scene without a window, replays a scripted mouse
// session through the input manager and writes PNG frames, printing what each event reached.
#include "democharts.h"
#include "demohost.h"
#include "demolegend.h"
#include "skinsheet.h"

#include <trelvogui/gui/button.h>
#include <trelvogui/gui/panel.h>
#include <trelvogui/gui/switchbutton.h>
#include <trelvogui/lightcontrol.h>
#include <trelvogui/manipulatorcontrol.h>
#include <trelvogui/manipulatorrenderer.h>
#include <trelvogui/planecontrol.h>
#include <trelvogui/probecontrol.h>
#include <trelvogui/triadcontrol.h>

#include <graphicsbase/camera.h>
#include <graphicsbase/directionallight.h>

#include <glm/gtc/quaternion.hpp>

#include <graphicsbase/headlesscontext.h>
#include <graphicsbase/pngwriter.h>
#include <trelvogui/xyplotcontrol.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

using namespace GraphicsBase;

namespace {
constexpr int kWidth = 1280;
constexpr int kHeight = 720;

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

    /// Renders and writes a frame; the cube turns on first unless `still`.
    void snapshot(const std::string& name, bool still = false) {
        if (host.Rotating() && !still)
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
    /// Where the gizmo draws one of its handles, in host pixels; exits when it is not drawn.
    glm::ivec2 part(ManipulatorControl* gizmo, unsigned handle) {
        int x = 0, y = 0;
        if (!host.FindPart(gizmo->GetId(), handle, x, y)) {
            std::printf("handle %u of the gizmo is not drawn\n", handle);
            std::exit(1);
        }
        return {x, y};
    }
    /// The unit screen direction, in host pixels (y down), of one of the gizmo frame's axes.
    glm::vec2 axisOnScreen(ManipulatorControl* gizmo, int axis) {
        const LocalFrame& f = gizmo->getFrame();
        glm::vec3 o = f.getPosition();
        glm::vec3 tip = o + (axis == 0 ? f.xvector() : axis == 1 ? f.yvector() : f.zvector());
        float x0, y0, z0, x1, y1, z1;
        host.SceneCamera()->ProjectPoint(o.x, o.y, o.z, &x0, &y0, &z0);
        host.SceneCamera()->ProjectPoint(tip.x, tip.y, tip.z, &x1, &y1, &z1);
        return glm::normalize(glm::vec2(x1 - x0, y0 - y1));
    }
    void printFrame(ManipulatorControl* gizmo) {
        const LocalFrame& f = gizmo->getFrame();
        glm::vec3 p = f.getPosition(), s = f.getScale();
        glm::quat q = f.getOrientation();
        float angle = glm::degrees(glm::angle(q));
        glm::vec3 axis = angle > 0.01f ? glm::axis(q) : glm::vec3(1.f, 0.f, 0.f);
        std::printf(
            "  cube frame: position (%.3f, %.3f, %.3f), turned %.1f degrees about (%.3f, %.3f, %.3f), "
            "scale (%.3f, %.3f, %.3f); snapping %s\n",
            p.x, p.y, p.z, angle, axis.x, axis.y, axis.z, s.x, s.y, s.z,
            gizmo->rotatonIncrementOn() ? "on" : "off");
    }
    /// Where the orientation cube shows one of its faces, in host pixels; exits when it is hidden.
    glm::ivec2 face(unsigned number) {
        int x = 0, y = 0;
        if (!host.FindPart(host.Triad()->GetId(), number, x, y)) {
            std::printf("face %u of the orientation cube is not visible\n", number);
            std::exit(1);
        }
        return {x, y};
    }
    void printCamera() {
        const Camera& c = *host.SceneCamera();
        std::printf("  camera at (%.3f, %.3f, %.3f), up (%.0f, %.0f, %.0f), %.3f from its target\n",
                    c.Position().x, c.Position().y, c.Position().z, c.UpVector().x, c.UpVector().y,
                    c.UpVector().z, glm::length(c.Position() - c.Target()));
    }
    /// The host's own camera move: to `azimuth` degrees about y (0 on +z) and `elevation` above the
    /// target's horizontal plane, at the same distance.
    void orbit(float azimuth, float elevation) {
        Camera& c = *host.SceneCamera();
        const float d = glm::length(c.Position() - c.Target());
        const float a = glm::radians(azimuth), e = glm::radians(elevation);
        c.SetPosition(c.Target() +
                      d * glm::vec3(std::cos(e) * std::sin(a), std::sin(e), std::cos(e) * std::cos(a)));
        c.SetUpVector({0.f, 1.f, 0.f});
        host.CameraChanged();
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
    // The same frame with the scene's ambient occlusion on, and the occlusion term by itself.
    s.host.SetSceneOcclusion(true);
    s.snapshot("occlusion-on", true);
    s.host.SetSceneOcclusion(true, true);
    s.snapshot("occlusion-term", true);
    s.host.SetSceneOcclusion(false);
    std::printf("ambient occlusion on, then its term alone, then off again\n");
    std::printf("legend tick texts:\n");
    for (const std::string& line : host.Legend()->TickTexts())
        std::printf("  %s\n", line.c_str());

    s.move(98, 86);
    s.flush("hover the 'Count click' button (host 98, 86):");
    s.snapshot("hover-button");

    s.click(98, 86);
    s.flush("click the 'Count click' button:");
    s.snapshot("clicked");

    s.click(42, 134);
    s.flush("click the rotation switch (host 42, 134):");
    s.snapshot("switch-off");

    s.drag(kWidth - 20, 191, kWidth - 70, 241);
    s.flush("drag the notes panel's grip by (-50, +50):");
    s.snapshot("notes-resized");

    auto probe = s.host.Probe()->GetLocation();
    int px = probe[0] + 60, py = kHeight - probe[1] - 10;
    s.drag(px, py, px - 320, py - 140);
    s.flush("drag the probe box by (-320, -140):");
    s.snapshot("probe-moved");

    s.drag(320, 30, 380, 110);
    s.flush("drag the tools panel by (+60, +80):");
    s.snapshot("panel-dragged");

    // The gizmo on the cube. Handle ids: 1-3 arrows, 4-6 rings, 7-9 scale boxes, 10 the centre.
    ManipulatorControl* gizmo = s.host.Gizmo();
    glm::ivec2 arrowX = s.part(gizmo, 1);
    s.move(arrowX.x, arrowX.y);
    s.flush("hover the gizmo's X arrow (it lights up):");
    s.snapshot("gizmo-hover");

    glm::vec2 along = s.axisOnScreen(gizmo, 0) * 90.f;
    s.drag(arrowX.x, arrowX.y, arrowX.x + int(along.x), arrowX.y + int(along.y));
    s.flush("drag the X arrow 90 pixels along its axis:");
    s.printFrame(gizmo);
    s.snapshot("gizmo-moved-x");

    glm::ivec2 centre = s.part(gizmo, 10);
    s.click(centre.x, centre.y);
    s.flush("click the gizmo's centre (snapping on, the centre turns hexagonal):");
    s.printFrame(gizmo);
    s.snapshot("gizmo-snapping");

    // Turn the Y ring by about 50 degrees about the projected centre, in steps.
    glm::ivec2 ringY = s.part(gizmo, 5);
    {
        float cx, cy, cz;
        glm::vec3 o = gizmo->getFrame().getPosition();
        s.host.SceneCamera()->ProjectPoint(o.x, o.y, o.z, &cx, &cy, &cz);
        glm::vec2 c(cx, float(kHeight) - cy), r = glm::vec2(ringY) - c;
        s.host.MouseMove(ringY.x, ringY.y);
        s.host.MousePress(ringY.x, ringY.y, 1);
        for (int i = 1; i <= 5; ++i) {
            float a = -glm::radians(10.f * float(i)); // anticlockwise on screen, y down
            glm::vec2 p =
                c + glm::vec2(r.x * std::cos(a) - r.y * std::sin(a), r.x * std::sin(a) + r.y * std::cos(a));
            s.host.MouseMove(int(p.x), int(p.y), 1);
        }
        s.host.MouseRelease(int(c.x + r.x * std::cos(-0.87f) - r.y * std::sin(-0.87f)),
                            int(c.y + r.x * std::sin(-0.87f) + r.y * std::cos(-0.87f)), 0);
    }
    s.flush("turn the Y ring by about 50 degrees with snapping (whole 5-degree steps):");
    s.printFrame(gizmo);
    s.snapshot("gizmo-turned-y");

    glm::ivec2 boxZ = s.part(gizmo, 9);
    glm::vec2 outward = s.axisOnScreen(gizmo, 2) * 70.f;
    s.drag(boxZ.x, boxZ.y, boxZ.x + int(outward.x), boxZ.y + int(outward.y));
    s.flush("drag the Z scale box 70 pixels outward:");
    s.printFrame(gizmo);
    s.snapshot("gizmo-scaled-z");

    centre = s.part(gizmo, 10);
    s.drag(centre.x, centre.y, centre.x - 90, centre.y + 50);
    s.flush("drag the centre by (-90, +50) pixels in the view plane:");
    s.printFrame(gizmo);
    s.snapshot("gizmo-centre-dragged");

    glm::ivec2 ringX = s.part(gizmo, 4);
    s.click(ringX.x, ringX.y);
    s.flush("click the X ring (a quarter turn about the cube's own x axis):");
    s.printFrame(gizmo);
    s.snapshot("gizmo-ring-click");

    // Undo and cancel. A drag on the Y arrow, then Escape while the button is still down: the cube
    // and the gizmo go back to where the press found them.
    {
        glm::ivec2 arrowY = s.part(gizmo, 2);
        glm::vec2 up = s.axisOnScreen(gizmo, 1) * 110.f;
        s.move(arrowY.x, arrowY.y);
        s.host.MousePress(arrowY.x, arrowY.y, 1);
        for (int i = 1; i <= 4; ++i)
            s.move(arrowY.x + int(up.x * float(i) / 4.f), arrowY.y + int(up.y * float(i) / 4.f), 1);
        s.flush("drag the Y arrow 110 pixels along its axis, the button still down:");
        s.printFrame(gizmo);
        s.snapshot("gizmo-before-escape", true);
        s.host.KeyPress(256);
        s.host.MouseRelease(arrowY.x + int(up.x), arrowY.y + int(up.y), 0);
        s.flush("press Escape during the drag (the drag is cancelled):");
        s.printFrame(gizmo);
        s.snapshot("gizmo-escape-cancelled", true);
    }

    // Plane squares between the arrows, on the world's axes: the one between X and Z slides the cube
    // over the floor.
    gizmo->setPlaneHandles(true);
    gizmo->setWorldAxes(true);
    s.host.RenderFrame(s.angle); // the pointer finds what the layers hold
    {
        glm::ivec2 square = s.part(gizmo, ManipulatorControl::kTranslateZX);
        s.drag(square.x, square.y, square.x + 120, square.y + 40);
        s.flush("turn the plane squares and world axes on and drag the X-Z square by (+120, +40) pixels:");
        s.printFrame(gizmo);
        s.snapshot("gizmo-plane-moved", true);
    }
    s.host.UndoGizmoDrag();
    s.flush("undo the last drag (the host's undo, from the gizmo's drag signals):");
    s.printFrame(gizmo);
    s.snapshot("gizmo-undo", true);
    gizmo->setPlaneHandles(false);
    gizmo->setWorldAxes(false);

    // The orientation cube in the lower-left corner: a click on a face looks at the scene from that
    // side at the same distance.
    auto clickFace = [&](int face, const std::string& name) {
        glm::ivec2 at = s.face(face);
        s.click(at.x, at.y);
        s.flush("click the orientation cube's " + name + " face (host " + std::to_string(at.x) + ", " +
                std::to_string(at.y) + "):");
        s.printCamera();
    };
    clickFace(5, "+X");
    s.snapshot("cube-plus-x");

    // Seen straight from +x only that face shows; the user turns the camera a little, and the cube
    // turns with it.
    s.orbit(70.f, 30.f);
    std::printf("the host orbits its camera to 70 degrees round, 30 up:\n");
    s.printCamera();
    s.snapshot("camera-orbited");

    clickFace(1, "+Y");
    s.snapshot("cube-plus-y");

    // The light widget in the lower-right corner: dragging left and down swings the light round to
    // the left and low in front; the scene, the cube's faces and the preview follow the shared light.
    const glm::vec3 before = s.host.SceneLight()->position;
    s.drag(kWidth - 47, kHeight - 47, kWidth - 47 - 200, kHeight - 47 + 120);
    s.flush("drag the light widget by (-200, +120):");
    const glm::vec3 after = s.host.SceneLight()->position;
    std::printf("  light moved from (%.3f, %.3f, %.3f) to (%.3f, %.3f, %.3f)\n", before.x, before.y, before.z,
                after.x, after.y, after.z);
    s.snapshot("light-dragged");

    s.orbit(35.f, 25.f);
    std::printf("the host orbits back to an oblique view of the re-lit scene:\n");
    s.printCamera();
    s.snapshot("relit-oblique");

    // The charts: the pointer over the spike of the million-sample trace reads it out (point index,
    // values and the statistics of what is in view); the wheel there zooms in about it.
    s.host.Charts()->Show(true);
    s.host.RenderFrame(s.angle); // the pointer finds what the layers hold
    {
        XYPlotControl* plot = s.host.Charts()->Plot();
        const ChartView view = plot->View();
        const int spikeX = static_cast<int>(view.PixelX(double(demo::DemoCharts::kSpike)));
        const int spikeY = kHeight - static_cast<int>(view.PixelY(6.0));
        s.move(spikeX, spikeY);
        s.move(spikeX, spikeY + 1);
        s.flush("hover the trace at its spike (host " + std::to_string(spikeX) + ", " +
                std::to_string(spikeY) + "):");
        std::printf("%s", s.host.Charts()->Describe().c_str());
        s.snapshot("chart-hover");
        // Over the x axis's numbers the wheel zooms along x only, about the pointer.
        const int belowPlot = kHeight - (view.plot.yMin - 20);
        s.move(spikeX, belowPlot);
        for (int notch = 0; notch < 12; ++notch)
            s.host.MouseWheel(120);
        s.move(spikeX, spikeY + 2);
        s.move(spikeX, spikeY + 1);
        s.flush("twelve wheel notches over the x axis below the spike zoom in along x about it:");
        std::printf("  x now %.1f .. %.1f\n", plot->XMin(), plot->XMax());
        std::printf("%s", s.host.Charts()->Describe().c_str());
        s.snapshot("chart-zoomed");
    }

    // A window with a device-pixel ratio of 2 tells the manager; the 3D widgets and the axes draw
    // their pixel sizes twice as large (the host's own panels keep the rectangles it gives them, and
    // the charts, laid out for scale 1 here, are put away).
    s.host.Charts()->Show(false);
    s.host.Manager().SetDisplayScale(2.f);
    s.flush("display scale 2 (a high-density display):");
    s.snapshot("display-scale-2", true);
    s.host.Manager().SetDisplayScale(1.f);
    s.host.Charts()->Show(true);

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
