// Interactive demo: the same host and overlay in a real window. Drag panels, click the button,
// toggle the switch, resize the notes panel with its grip. --frames N renders N frames and exits;
// --still starts with the cube's rotation off. Input reaches the overlay through the GLFW backend
// (TrelvoGUI::GLFW), which lets the loop sleep until something needs drawing.
#include "demohost.h"

#include <trelvogui/backends/glfw/glfwbackend.h>
#include <trelvogui/gui/switchbutton.h>

#include <graphicsbase/glloader.h>

#include <GLFW/glfw3.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

using namespace GraphicsBase;

namespace {
demo::DemoHost* hostOf(GLFWwindow* w) {
    return static_cast<demo::DemoHost*>(glfwGetWindowUserPointer(w));
}
} // namespace

int main(int argc, char** argv) {
    int frames = -1;
    bool still = false;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--frames") == 0 && i + 1 < argc)
            frames = std::atoi(argv[++i]);
        else if (std::strcmp(argv[i], "--still") == 0)
            still = true;
    }

    if (!glfwInit()) {
        std::fprintf(stderr, "GLFW could not start (is there a display?)\n");
        return 1;
    }
    GUI::GLFWBackend::RequestOpenGL33();
    GLFWwindow* window = glfwCreateWindow(960, 600, "TrelvoGUI demo", nullptr, nullptr);
    if (!window) {
        std::fprintf(stderr, "no OpenGL 3.3 core window could be created\n");
        glfwTerminate();
        return 1;
    }
    glfwMakeContextCurrent(window);
    glfwSwapInterval(1);
    // The overlay loads what it needs by itself; this host draws its cube with GL 3.3 calls of its
    // own before the overlay starts, so it has them loaded first.
    std::string why;
    if (!GraphicsBase::LoadGL(&why)) {
        std::fprintf(stderr, "%s\n", why.c_str());
        return 1;
    }

    int width = 0, height = 0;
    glfwGetFramebufferSize(window, &width, &height);
    int status = 0;
    {
        demo::DemoHost host(width, height);
        if (!host.Initialize()) {
            status = 1;
        } else {
            // The host's own size callback (its scene compositor, the legend) goes first; the backend
            // chains to it.
            glfwSetWindowUserPointer(window, &host);
            glfwSetFramebufferSizeCallback(window, [](GLFWwindow* w, int fw, int fh) {
                if (fw > 0 && fh > 0)
                    hostOf(w)->Resize(fw, fh);
            });
            GUI::GLFWBackend input(window, host.Manager());
            // The widgets' camera keeps the framebuffer's size on resizes; the host journals what input
            // did (the view cube and the light widget change the shared camera and light themselves).
            input.FollowViewport(host.SceneCamera());
            input.DrawFlagsSignal.connect([&host](DrawFlags flags) { host.SetDrawFlags(flags); });
            if (still) {
                GUI::Event click{};
                host.RotateSwitch()->OnClick(&click); // what a click on the switch does
            }
            float angle = 0.f;
            int rendered = 0;
            while ((frames < 0 || rendered < frames) && input.WaitForFrame()) {
                // The spinning cube is the host's own animation: it asks for the next frame itself.
                if (host.Rotating()) {
                    angle += 0.5f;
                    input.RequestFrame();
                }
                host.RenderFrame(angle);
                glfwSwapBuffers(window);
                for (const auto& line : host.TakeJournal())
                    std::printf("%s\n", line.c_str());
                ++rendered;
            }
            std::printf("rendered %d frames\n", rendered);
            glfwSetWindowUserPointer(window, nullptr);
        }
    }
    glfwDestroyWindow(window);
    glfwTerminate();
    return status;
}
