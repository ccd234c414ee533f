// Builds a small control tree against the installed package through the umbrella headers.
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
    return (child.GetId() == 2 && r.xMin == 15 && r.yMin == 25) ? 0 : 1;
}
