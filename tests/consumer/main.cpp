// Builds a small control tree against the installed package through the umbrella headers, the way
// an ordinary host includes them: after <syslog.h> and its own GL header. It uses no symbol of
// GraphicsBase itself, so it starts only if the installed TrelvoGUI finds its sibling library.
#include <syslog.h>

#include <GL/gl.h>

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
    return (child.GetId() == 2 && r.xMin == 15 && r.yMin == 25 && !started && syslogLevel == 4) ? 0 : 1;
}
