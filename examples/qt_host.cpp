// The minimal host's overlay in a QOpenGLWidget, with the transform gizmo on a cube and the view
// cube. The backend draws the overlay after paintGL and asks for frames through update() only when
// something changed, so an idle window draws nothing.
#include "toolsui.h"

#include <trelvogui/backends/qt/qtbackend.h>

#include <glm/gtc/type_ptr.hpp>

#include <QApplication>
#include <QOpenGLExtraFunctions>
#include <QOpenGLShaderProgram>
#include <QOpenGLWidget>

#include <cstdlib>

using namespace GraphicsBase;

// A unit cube as one 14-vertex triangle strip read from bit masks, coloured by position.
const char* kVertex = R"(#version 330 core
uniform mat4 mvp;
out vec3 color;
void main() {
    int b = 1 << gl_VertexID;
    color = vec3((0x287a & b) != 0, (0x02af & b) != 0, (0x31e3 & b) != 0);
    gl_Position = mvp * vec4(color - 0.5, 1.0);
})";
const char* kFragment = R"(#version 330 core
in vec3 color; out vec4 fragColor;
void main() { fragColor = vec4(0.3 + 0.6 * color, 1.0); })";

class View : public QOpenGLWidget, QOpenGLExtraFunctions {
public:
    std::shared_ptr<GUI::GUIManager> manager = std::make_shared<GUI::GUIManager>();
    GUI::QtBackend input{this, *manager}; // pointer, wheel, keys, touch, tablet, size, redraws
    std::shared_ptr<Camera> camera = std::make_shared<Camera>();
    std::shared_ptr<DirectionalLight> light = std::make_shared<DirectionalLight>();
    std::shared_ptr<LocalFrame> cube = std::make_shared<LocalFrame>();
    std::unique_ptr<example::ToolsUI> ui;
    std::unique_ptr<ManipulatorControl> gizmo;
    std::unique_ptr<TriadControl> viewCube;
    QOpenGLShaderProgram program;
    GLuint vao = 0;

    ~View() override {
        makeCurrent(); // the controls, then the manager, go while the context is current
        glDeleteVertexArrays(1, &vao);
    }
    void initializeGL() override {
        initializeOpenGLFunctions();
        program.addShaderFromSourceCode(QOpenGLShader::Vertex, kVertex);
        program.addShaderFromSourceCode(QOpenGLShader::Fragment, kFragment);
        glGenVertexArrays(1, &vao);
        const int w = width() * devicePixelRatio(), h = height() * devicePixelRatio();
        gizmo = std::make_unique<ManipulatorControl>(camera);
        viewCube = std::make_unique<TriadControl>(camera, light); // lower-left corner
        if (!program.link() || !manager->Initialize() || !gizmo->Initialize() || !viewCube->Initialize())
            std::exit(1);
        manager->Resize(w, h); // framebuffer pixels
        camera->SetPosition({2.4f, 1.8f, 3.2f});
        resizeGL(width(), height());
        ui = std::make_unique<example::ToolsUI>(manager, w, h);
        gizmo->attachFrame(cube); // the gizmo moves, turns and scales the cube's frame
        gizmo->Register(manager);
        viewCube->Register(manager);
        // A click on the view cube moves the shared camera; the manager redraws what follows it.
    }
    void resizeGL(int w, int h) override {
        camera->SetViewport(w * devicePixelRatio(), h * devicePixelRatio());
        camera->CalcMatrices();
    }
    void paintGL() override { // the scene only: the backend draws the overlay after it
        glClearColor(0.16f, 0.18f, 0.22f, 1.f);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        glEnable(GL_DEPTH_TEST);
        const glm::mat4 mvp = camera->ProjectionMatrix() * camera->ViewMatrix() * cube->getMatrix();
        program.bind();
        glUniformMatrix4fv(program.uniformLocation("mvp"), 1, GL_FALSE, glm::value_ptr(mvp));
        glBindVertexArray(vao);
        glDrawArrays(GL_TRIANGLE_STRIP, 0, 14);
        glDisable(GL_DEPTH_TEST);
    }
};

int main(int argc, char** argv) {
    QSurfaceFormat format = QSurfaceFormat::defaultFormat(); // OpenGL 3.3 core, depth for the cube
    format.setVersion(3, 3);
    format.setProfile(QSurfaceFormat::CoreProfile);
    format.setDepthBufferSize(24);
    QSurfaceFormat::setDefaultFormat(format);
    QApplication app(argc, argv);
    View view;
    view.setWindowTitle("TrelvoGUI Qt host");
    view.resize(640, 400);
    view.show();
    return app.exec();
}
