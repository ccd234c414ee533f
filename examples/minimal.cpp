// A minimal host: a tools panel (a title, two click-counting buttons, a switch) and a resizable panel
// in a GLFW window, with no GL loader. Optional argument: frames to draw before quitting.
#include <trelvogui/backends/glfw/glfwbackend.h>
#include <trelvogui/trelvogui.h>

#include <GLFW/glfw3.h>

#include <cstdio>
#include <cstdlib>

using namespace GUI::Controls;

// A button that shows how often it was clicked.
struct Counter : Button {
    int clicks = 0;
    Counter(Panel& parent, std::wstring name, GUI::Geometry::Rectangle r) {
        SetRectangle(r);
        SetText(name);
        ClickedSignal.connect([this, name] { SetText(name + L" " + std::to_wstring(++clicks)); });
        parent.AddChild(this);
    }
};

int main(int argc, char** argv) {
    const int frames = argc > 1 ? std::atoi(argv[1]) : -1;
    if (!glfwInit())
        return 1;
    GUI::GLFWBackend::RequestOpenGL33();
    GLFWwindow* window = glfwCreateWindow(640, 400, "TrelvoGUI", nullptr, nullptr);
    if (!window)
        return 1;
    glfwMakeContextCurrent(window);
    int w = 0, h = 0;
    glfwGetFramebufferSize(window, &w, &h);
    {
        auto manager = std::make_shared<GUI::GUIManager>();
        if (!manager->Initialize())
            return 1;
        manager->Resize(w, h);

        Panel tools; // children are placed inside the panel's margins, y up
        tools.SetRectangle({16, 276, h - 196, h - 16});
        tools.SetMargins({12, 12, 12, 12});
        Label title;
        title.SetRectangle({0, 236, 128, 156});
        title.SetFontSize(20);
        title.SetText(L"Tools");
        tools.AddChild(&title);
        Counter first(tools, L"First", {0, 108, 72, 104}), second(tools, L"Second", {128, 236, 72, 104});
        SwitchButton toggle;
        toggle.SetRectangle({0, 28, 16, 44});
        toggle.SetCallback([&] {
            std::printf("switch %s\n", toggle.IsOn() ? "on" : "off");
            return GraphicsBase::DRAW_OVERLAY;
        });
        tools.AddChild(&toggle);
        tools.Register(manager); // registers the whole tree

        Panel notes;
        notes.SetRectangle({w - 236, w - 16, h - 176, h - 16});
        notes.SetMinSize(120, 80);
        notes.SetSizeable(true);
        notes.Register(manager);

        GUI::GLFWBackend input(window, *manager); // pointer, buttons, wheel, keys, resizes
        // Sleeps until an event or the overlay asks for a frame: an idle window costs nothing.
        for (int n = 0; n != frames && input.WaitForFrame(); ++n) {
            glfwGetFramebufferSize(window, &w, &h);
            glViewport(0, 0, w, h);
            glClearColor(0.16f, 0.18f, 0.22f, 1.f);
            glClear(GL_COLOR_BUFFER_BIT);
            manager->UpdateLayers(); // re-renders only what changed
            manager->Draw();
            glfwSwapBuffers(window);
        }
    } // controls, then the manager, go while the context is current
    glfwTerminate();
    return 0;
}
