// Headless host: creates a GL context without a window, builds a small control tree and prints it.
#include <graphicsbase/headlesscontext.h>
#include <trelvogui/gui/controlbase.h>
#include <trelvogui/gui/guimanager.h>

#include <cstdio>
#include <memory>
#include <string>

namespace {
void printTree(GUI::Controls::Base* control, int depth) {
    const auto& r = control->GetRectangle();
    std::printf("%*sid %u  global (%d, %d)-(%d, %d)\n", depth * 2, "", control->GetId(), r.xMin, r.yMin, r.xMax,
                r.yMax);
    for (GUI::Controls::Base* child : *control->Children())
        printTree(child, depth + 1);
}
} // namespace

int main() {
    HeadlessGLContext context(640, 480);
    if (!context.Valid()) {
        std::fprintf(stderr, "%s\n", context.Error().c_str());
        return 1;
    }
    std::printf("OpenGL renderer: %s\n", context.Renderer().c_str());

    auto manager = std::make_shared<GUI::GUIManager>(GUI::Renderer::OpenGL);
    GUI::Controls::Base panel, row, left, right;
    panel.SetRectangle({20, 320, 200, 400});
    panel.SetMargins({10, 10, 10, 10});
    row.SetRectangle({0, 280, 0, 60});
    left.SetRectangle({5, 105, 5, 45});
    right.SetRectangle({150, 250, 5, 45});
    panel.AddChild(&row);
    row.AddChild(&left);
    row.AddChild(&right);
    panel.Register(manager);

    printTree(&panel, 0);
    return 0;
}
