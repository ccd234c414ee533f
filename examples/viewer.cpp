// A 3D viewer of its own (GLFW, GLEW, a lit cube drawn with its own shader, its own camera matrices)
// with the overlay's gizmo on the cube, the view cube, the light widget and a panel with a button.
// The lines that talk to TrelvoGUI sit between "// TrelvoGUI {" and "// TrelvoGUI }" markers;
// scripts/test.sh holds them to at most 60. Optional argument: frames to draw before quitting.
// With TRELVO_VIEWER_STATE=1 the viewer prints, after each frame, its own matrices, the light and
// where the widgets' parts are on screen, so that a script can drive it with real pointer events.
#include <GL/glew.h>

#include <GLFW/glfw3.h>

#include <glm/gtc/matrix_transform.hpp>
#include <glm/gtc/type_ptr.hpp>

#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <vector>

// TrelvoGUI {
#include <trelvogui/backends/glfw/glfwbackend.h>
#include <trelvogui/trelvogui.h>
using namespace GraphicsBase;
using namespace GUI::Controls;
// TrelvoGUI }

namespace {

// The viewer's own camera: an eye orbiting a target, as any viewer keeps it.
struct OrbitCamera {
    glm::vec3 eye{3.2f, 2.4f, 4.2f}, target{0.f}, up{0.f, 1.f, 0.f};
    glm::mat4 View() const { return glm::lookAt(eye, target, up); }
    glm::mat4 Projection(int w, int h) const {
        return glm::perspective(glm::radians(35.f), float(w) / float(h > 0 ? h : 1), 0.1f, 100.f);
    }
};

const char* kVertex = R"(#version 330 core
layout(location = 0) in vec3 position;
layout(location = 1) in vec3 normal;
uniform mat4 model, view, projection;
out vec3 worldNormal;
void main() {
    worldNormal = mat3(transpose(inverse(model))) * normal;
    gl_Position = projection * view * model * vec4(position, 1.0);
})";
const char* kFragment = R"(#version 330 core
in vec3 worldNormal;
uniform vec3 toLight;
out vec4 colour;
void main() {
    float diffuse = max(dot(normalize(worldNormal), toLight), 0.0);
    colour = vec4(vec3(0.85, 0.55, 0.25) * (0.2 + 0.8 * diffuse), 1.0);
})";

GLuint compile(GLenum type, const char* source) {
    GLuint shader = glCreateShader(type);
    glShaderSource(shader, 1, &source, nullptr);
    glCompileShader(shader);
    return shader;
}

// Six faces of a unit cube, two triangles each: position and normal per vertex.
std::vector<float> cubeVertices() {
    std::vector<float> v;
    for (int axis = 0; axis < 3; ++axis)
        for (float side : {-1.f, 1.f}) {
            const int u = (axis + 1) % 3, w = (axis + 2) % 3;
            const float corners[6][2] = {{-1, -1}, {1, -1}, {1, 1}, {-1, -1}, {1, 1}, {-1, 1}};
            for (const auto& c : corners) {
                float p[3], n[3] = {0, 0, 0};
                p[axis] = side * 0.5f;
                p[u] = c[0] * 0.5f * side; // flipped with the side, so both faces wind outwards
                p[w] = c[1] * 0.5f;
                n[axis] = side;
                v.insert(v.end(), {p[0], p[1], p[2], n[0], n[1], n[2]});
            }
        }
    return v;
}

void print(const char* name, const glm::mat4& m) {
    std::printf(" %s", name);
    for (int i = 0; i < 16; ++i)
        std::printf(" %g", glm::value_ptr(m)[i]);
}

} // namespace

int main(int argc, char** argv) {
    const int frames = argc > 1 ? std::atoi(argv[1]) : -1;
    const bool printState = std::getenv("TRELVO_VIEWER_STATE") != nullptr;
    if (!glfwInit())
        return 1;
    glfwWindowHint(GLFW_CONTEXT_VERSION_MAJOR, 3);
    glfwWindowHint(GLFW_CONTEXT_VERSION_MINOR, 3);
    glfwWindowHint(GLFW_OPENGL_PROFILE, GLFW_OPENGL_CORE_PROFILE);
    glfwWindowHint(GLFW_OPENGL_FORWARD_COMPAT, GLFW_TRUE);
    GLFWwindow* window = glfwCreateWindow(800, 600, "TrelvoGUI viewer", nullptr, nullptr);
    if (!window)
        return 1;
    glfwMakeContextCurrent(window);
    glewExperimental = GL_TRUE;
    if (glewInit() != GLEW_OK)
        return 1;
    glGetError(); // GLEW may leave an error from probing a core context

    GLuint program = glCreateProgram();
    glAttachShader(program, compile(GL_VERTEX_SHADER, kVertex));
    glAttachShader(program, compile(GL_FRAGMENT_SHADER, kFragment));
    glLinkProgram(program);
    const std::vector<float> vertices = cubeVertices();
    GLuint vao = 0, vbo = 0;
    glGenVertexArrays(1, &vao);
    glGenBuffers(1, &vbo);
    glBindVertexArray(vao);
    glBindBuffer(GL_ARRAY_BUFFER, vbo);
    glBufferData(GL_ARRAY_BUFFER, GLsizeiptr(vertices.size() * sizeof(float)), vertices.data(),
                 GL_STATIC_DRAW);
    glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, 6 * sizeof(float), nullptr);
    glVertexAttribPointer(1, 3, GL_FLOAT, GL_FALSE, 6 * sizeof(float), (void*)(3 * sizeof(float)));
    glEnableVertexAttribArray(0);
    glEnableVertexAttribArray(1);
    glBindVertexArray(0);

    OrbitCamera orbit;
    glm::vec3 toLight = glm::normalize(glm::vec3(0.3f, 0.9f, 0.5f));
    int w = 0, h = 0;
    glfwGetFramebufferSize(window, &w, &h);
    {
        // TrelvoGUI {
        auto manager = std::make_shared<GUI::GUIManager>();
        manager->SetDirectSceneWidgets(true); // an orbit redraws the scene widgets alone
        if (!manager->Initialize())
            return 1;
        manager->Resize(w, h);
        // One camera and one light shared by the widgets, fed from the viewer's own.
        auto camera = std::make_shared<Camera>();
        camera->SetMatrices(orbit.View(), orbit.Projection(w, h), w, h);
        auto light = std::make_shared<DirectionalLight>();
        light->position = toLight;
        auto cubeFrame = std::make_shared<LocalFrame>(); // the gizmo moves it; the viewer draws with it

        ManipulatorControl gizmo(camera);
        gizmo.Initialize();
        gizmo.attachFrame(cubeFrame);
        gizmo.transformationSignal.connect([] { return DRAW_SCENE; });
        gizmo.Register(manager);
        TriadControl viewCube(camera, light);
        viewCube.Initialize();
        viewCube.Register(manager);
        LightControl lamp(light);
        lamp.Initialize();
        lamp.Register(manager);

        Panel panel;
        panel.SetRectangle({16, 196, h - 76, h - 16});
        Button reset;
        reset.SetRectangle({12, 168, 12, 48});
        reset.SetText(L"Reset cube");
        reset.ClickedSignal.connect([&] {
            cubeFrame->reset();
            gizmo.attachFrame(cubeFrame);
        });
        panel.AddChild(&reset);
        panel.Register(manager);

        GUI::GLFWBackend input(window, *manager);
        // A click on the view cube moves the shared camera: the viewer's own follows it.
        input.DrawFlagsSignal.connect([&](DrawFlags flags) {
            if (flags & DRAW_TRIAD_FACE) {
                orbit.eye = camera->Position();
                orbit.target = camera->Target();
                orbit.up = camera->UpVector();
            }
        });
        // TrelvoGUI }

        for (int n = 0; n != frames && input.WaitForFrame(); ++n) {
            glfwGetFramebufferSize(window, &w, &h);
            const glm::mat4 view = orbit.View(), projection = orbit.Projection(w, h);
            // TrelvoGUI {
            camera->SetMatrices(view, projection, w, h);
            const glm::mat4 model = cubeFrame->getMatrix();
            toLight = light->Direction();
            // TrelvoGUI }

            glViewport(0, 0, w, h);
            glClearColor(0.14f, 0.16f, 0.2f, 1.f);
            glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
            glEnable(GL_DEPTH_TEST);
            glUseProgram(program);
            glUniformMatrix4fv(glGetUniformLocation(program, "model"), 1, GL_FALSE, glm::value_ptr(model));
            glUniformMatrix4fv(glGetUniformLocation(program, "view"), 1, GL_FALSE, glm::value_ptr(view));
            glUniformMatrix4fv(glGetUniformLocation(program, "projection"), 1, GL_FALSE,
                               glm::value_ptr(projection));
            glUniform3fv(glGetUniformLocation(program, "toLight"), 1, glm::value_ptr(toLight));
            glBindVertexArray(vao);
            glDrawArrays(GL_TRIANGLES, 0, GLsizei(vertices.size() / 6));
            glBindVertexArray(0);
            glUseProgram(0);
            glDisable(GL_DEPTH_TEST);

            // TrelvoGUI {
            manager->UpdateLayers();
            manager->Draw();
            // TrelvoGUI }
            glfwSwapBuffers(window);

            if (printState) {
                std::printf("state");
                print("view", view);
                print("model", model);
                std::printf(" light %g %g %g", toLight.x, toLight.y, toLight.z);
                // TrelvoGUI {
                const std::pair<Base*, unsigned> parts[] = {{&gizmo, ManipulatorControl::kCentre},
                                                            {&viewCube, TriadControl::kFacePlusZ},
                                                            {&lamp, LightControl::kBall},
                                                            {&viewCube, GUI::GUIManager::kAnyPart},
                                                            {&lamp, GUI::GUIManager::kAnyPart}};
                for (const auto& part : parts) {
                    GUI::GUIManager::PartLocation where;
                    manager->Locate(part.first, part.second, where);
                    std::printf(" part %d %d %d %d %d %d", where.hostPixel.x, where.hostPixel.y,
                                where.host.xMin, where.host.xMax, where.host.yMin, where.host.yMax);
                }
                // TrelvoGUI }
                std::printf("\n");
                std::fflush(stdout);
            }
        }
    } // the widgets, the backend, then the manager go while the context is current
    glDeleteBuffers(1, &vbo);
    glDeleteVertexArrays(1, &vao);
    glDeleteProgram(program);
    glfwTerminate();
    return 0;
}
