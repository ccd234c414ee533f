// Interactive demo: the same host and overlay in a real window. Drag panels, click the button,
// toggle the switch, resize the notes panel with its grip. --frames N renders N frames and exits.
#include "demohost.h"

#include <GL/glew.h>
#include <GLFW/glfw3.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {
int buttonsOf(GLFWwindow* window) {
    int b = 0;
    if (glfwGetMouseButton(window, GLFW_MOUSE_BUTTON_LEFT) == GLFW_PRESS)
        b |= VX_UI::BUTTON_LEFT;
    if (glfwGetMouseButton(window, GLFW_MOUSE_BUTTON_RIGHT) == GLFW_PRESS)
        b |= VX_UI::BUTTON_RIGHT;
    if (glfwGetMouseButton(window, GLFW_MOUSE_BUTTON_MIDDLE) == GLFW_PRESS)
        b |= VX_UI::BUTTON_MIDDLE;
    return b;
}

demo::DemoHost* hostOf(GLFWwindow* w) {
    return static_cast<demo::DemoHost*>(glfwGetWindowUserPointer(w));
}
} // namespace

int main(int argc, char** argv) {
    int frames = -1;
    for (int i = 1; i < argc; ++i)
        if (std::strcmp(argv[i], "--frames") == 0 && i + 1 < argc)
            frames = std::atoi(argv[++i]);

    if (!glfwInit()) {
        std::fprintf(stderr, "GLFW could not start (is there a display?)\n");
        return 1;
    }
    glfwWindowHint(GLFW_CONTEXT_VERSION_MAJOR, 3);
    glfwWindowHint(GLFW_CONTEXT_VERSION_MINOR, 3);
    glfwWindowHint(GLFW_OPENGL_PROFILE, GLFW_OPENGL_CORE_PROFILE);
    glfwWindowHint(GLFW_OPENGL_FORWARD_COMPAT, GLFW_TRUE);
    GLFWwindow* window = glfwCreateWindow(960, 600, "TrelvoGUI demo", nullptr, nullptr);
    if (!window) {
        std::fprintf(stderr, "no OpenGL 3.3 core window could be created\n");
        glfwTerminate();
        return 1;
    }
    glfwMakeContextCurrent(window);
    glfwSwapInterval(1);
    glewExperimental = GL_TRUE;
    if (glewInit() != GLEW_OK) {
        std::fprintf(stderr, "glewInit failed\n");
        return 1;
    }
    while (glGetError() != GL_NO_ERROR) {
    }

    int width = 0, height = 0;
    glfwGetFramebufferSize(window, &width, &height);
    int status = 0;
    {
        demo::DemoHost host(width, height);
        if (!host.Initialize()) {
            status = 1;
        } else {
            glfwSetWindowUserPointer(window, &host);
            glfwSetCursorPosCallback(window, [](GLFWwindow* w, double x, double y) {
                hostOf(w)->MouseMove(static_cast<int>(x), static_cast<int>(y), buttonsOf(w));
            });
            glfwSetMouseButtonCallback(window, [](GLFWwindow* w, int, int action, int) {
                double x = 0, y = 0;
                glfwGetCursorPos(w, &x, &y);
                if (action == GLFW_PRESS)
                    hostOf(w)->MousePress(static_cast<int>(x), static_cast<int>(y), buttonsOf(w));
                else
                    hostOf(w)->MouseRelease(static_cast<int>(x), static_cast<int>(y), buttonsOf(w));
                for (const auto& line : hostOf(w)->TakeJournal())
                    std::printf("%s\n", line.c_str());
            });
            glfwSetFramebufferSizeCallback(window, [](GLFWwindow* w, int fw, int fh) {
                if (fw > 0 && fh > 0)
                    hostOf(w)->Resize(fw, fh);
            });
            float angle = 0.f;
            int rendered = 0;
            while (!glfwWindowShouldClose(window) && (frames < 0 || rendered < frames)) {
                if (host.Rotating())
                    angle += 0.5f;
                host.RenderFrame(angle);
                glfwSwapBuffers(window);
                glfwPollEvents();
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
