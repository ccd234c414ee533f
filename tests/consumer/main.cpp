// Builds a small control tree against the installed package through the umbrella headers, the way
// an ordinary host includes them: after <syslog.h>, its own GL header and its own classes named like
// the platform layer's (which lives in namespace GraphicsBase, so neither hides the other). It uses no
// symbol of GraphicsBase beyond the camera, so it starts only if the installed TrelvoGUI finds its
// sibling library.
#include <syslog.h>

#include <GL/gl.h>

// A viewer's own types, in the global namespace, each unlike the library's.
class Camera {
public:
    int orbitSteps = 3;
};
struct LocalFrame {
    double origin[3] = {1, 2, 3};
};
struct DirectionalLight {
    const char* name = "key";
};
class InputHandler {
public:
    int Handle() const { return 7; }
};
class GraphicsScene {};
class GLSLProgram {};
enum DrawFlags { DRAW_EVERYTHING = 99 };

#include <graphicsbase/graphicsbase.h>
#include <trelvogui/trelvogui.h>

#include <cstdio>
#include <memory>

int main() {
    auto manager = std::make_shared<GUI::GUIManager>(GUI::Renderer::OpenGL);
    GUI::Controls::Base root;
    GUI::Controls::Base child;
    root.SetRectangle({10, 110, 20, 80});
    child.SetRectangle({5, 25, 5, 15});
    root.AddChild(&child);
    root.Register(manager);
    const auto& r = child.GetRectangle();
    std::printf("consumer: child id %u at (%d, %d, %d, %d)\n", child.GetId(), r.xMin, r.xMax, r.yMin, r.yMax);
    // No context is current here: the manager must refuse to start, not crash.
    const bool started = manager->Initialize();
    const int syslogLevel = LOG_WARNING; // the host's own macro still means what it did

    // The host's classes and the library's live side by side.
    Camera own;
    auto camera = std::make_shared<GraphicsBase::Camera>();
    camera->SetViewport(64, 48);
    ManipulatorControl gizmo(camera);
    const bool ownTypesIntact = own.orbitSteps == 3 && LocalFrame{}.origin[2] == 3 &&
                                DirectionalLight{}.name[0] == 'k' && InputHandler{}.Handle() == 7 &&
                                DRAW_EVERYTHING == 99 && camera->Width() == 64;
    return (child.GetId() == 2 && r.xMin == 15 && r.yMin == 25 && !started && syslogLevel == 4 &&
            ownTypesIntact)
               ? 0
               : 1;
}
