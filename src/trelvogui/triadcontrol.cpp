#include <trelvogui/triadcontrol.h>

#include <trelvogui/gui/guimanager.h>

#include "gui/renderers/detail/targetbarrier.h"
#include "gui/renderers/detail/uniforms.h"

#include <graphicsbase/camera.h>
#include <graphicsbase/directionallight.h>
#include <graphicsbase/glerror.h>
#include <graphicsbase/glloader.h>
#include <graphicsbase/glscopedbindings.h>
#include <graphicsbase/glslprogram.h>
#include <graphicsbase/glvertexbuffer.h>
#include <graphicsbase/logfile.h>
#include <graphicsbase/pngreader.h>
#include <graphicsbase/resources.h>
#include <graphicsbase/ui3delementreader.h>

#include <glm/gtc/type_ptr.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

using namespace GraphicsBase;

namespace {
constexpr const char* kFile = "triadcontrol";
constexpr const char* kModule = "TrelvoGUI.dll";
constexpr GLint kLabelUnit = 8;
constexpr int kCubeVertices = 36;
constexpr int kFaces = 6;

// Where a click on each face puts the camera (a direction from the target) and its up vector.
struct FaceView {
    tgeom::vec direction;
    tgeom::vec up;
};
const FaceView kFaceViews[kFaces] = {
    {{0.f, -1.f, 0.f}, {0.f, 0.f, -1.f}}, {{0.f, 1.f, 0.f}, {0.f, 0.f, -1.f}},
    {{0.f, 0.f, 1.f}, {0.f, 1.f, 0.f}},   {{-1.f, 0.f, 0.f}, {0.f, 1.f, 0.f}},
    {{0.f, 0.f, -1.f}, {0.f, 1.f, 0.f}},  {{1.f, 0.f, 0.f}, {0.f, 1.f, 0.f}},
};

using GUI::Renderer::detail::SetUniformQuiet;
using GUI::Renderer::detail::UniformLocationQuiet;

} // namespace

TriadControl::TriadControl(std::shared_ptr<Camera> camera, std::shared_ptr<DirectionalLight> light)
    : camera_(std::move(camera)), light_(std::move(light)), program_(std::make_unique<GLSLProgram>()) {
    SetUsesCamera(true);
    SetUsesLight(true);
    SetDimsWhenDisabled(true);
}

TriadControl::~TriadControl() {
    if (labelTexture_ != 0 && GraphicsBase::CanReleaseGL()) {
        glDeleteTextures(1, &labelTexture_);
        GB_CHECK_GL(kFile);
    }
}

void TriadControl::SetMinimumSize(int pixels) {
    minimumSize_ = GUI::Geometry::BoundedSize("TriadControl::SetMinimumSize()", pixels, 1);
    SetNeedsRedraw(true);
}

bool TriadControl::LayerFootprint(int, int, GUI::Geometry::Rectangle& area) {
    const int side = ready_ ? Side() : 0;
    const int m = Margin();
    area = {m, m + side, m, m + side};
    return true;
}

int TriadControl::Side() const {
    const int shorter = camera_ ? std::min(camera_->Width(), camera_->Height()) : 0;
    const int minimum = static_cast<int>(std::lround(minimumSize_ * DisplayScale()));
    return std::max(minimum, static_cast<int>(std::floor(shorter / 15.0)));
}

int TriadControl::Margin() const {
    return static_cast<int>(std::lround(10.f * DisplayScale()));
}

bool TriadControl::Initialize() {
    ready_ = false;
    if (!program_ || !camera_ || !light_)
        return false;
    GL::GLScopedBindings hostState;
    // An error left behind by the host must not be reported as ours.
    glGetError();
    // A repeated Initialize builds from a clean program rather than adding stages to the old one.
    *program_ = GLSLProgram();

    if (!program_->addShader("Triad.vs") || !program_->addShader("Triad.fs") || !program_->linkProgram())
        return false;
    program_->begin();
    const GLuint program = program_->getProgram();
    GUI::Renderer::detail::SetMaterialUniforms(program, tgeom::vec4(0.5f, 0.5f, 0.5f, 1.f), 40.f);
    program_->end();

    // Position, texture coordinate, normal, colour, primary id, face number.
    vertexBuffer_ = std::make_unique<GLVertexBuffer>();
    if (!vertexBuffer_->addAttribute(3, GL_FLOAT) || !vertexBuffer_->addAttribute(2, GL_FLOAT, true) ||
        !vertexBuffer_->addAttribute(3, GL_FLOAT, true) || !vertexBuffer_->addAttribute(4, GL_FLOAT) ||
        !vertexBuffer_->addAttribute(1, GL_INT, false, true) ||
        !vertexBuffer_->addAttribute(1, GL_INT, false, true) || !vertexBuffer_->finishLayout())
        return false;

    const ResourceData model = LoadFromResource(kModule, "OBJ_3DWIDGETCUBE", "OBJ");
    std::vector<UI3DVertex> vertices;
    std::string error;
    if (!UI3DElementReader::LoadFromASCIIToVertexArray(model.data, model.size, vertices, &error)) {
        std::printf("TriadControl::Initialize(): the cube model does not load: %s\n", error.c_str());
        return false;
    }
    const bool sixFaces = std::all_of(vertices.begin(), vertices.end(), [](const UI3DVertex& v) {
        return v.secondaryId >= 0 && v.secondaryId < kFaces;
    });
    if (vertices.size() != static_cast<std::size_t>(kCubeVertices) || !sixFaces) {
        std::printf("TriadControl::Initialize(): the cube model has %zu vertices, not %d on %d faces\n",
                    vertices.size(), kCubeVertices, kFaces);
        return false;
    }
    for (UI3DVertex& v : vertices) {
        for (float& p : v.position)
            p *= 0.5f;
        std::fill(std::begin(v.color), std::end(v.color), 0.5f);
        v.color[3] = 1.f;
    }

    const ResourceData image = LoadFromResource(kModule, "TRIAD", "PNG");
    PNGReader reader("TRIAD");
    if (!reader.loadFromMemory(image.data, image.size)) {
        std::printf("Load resource failed\n");
        return false;
    }
    const std::vector<unsigned char> rgba = reader.rgba();

    if (labelTexture_ == 0) {
        glGenTextures(1, &labelTexture_);
        GB_CHECK_GL(kFile);
    }
    glBindTexture(GL_TEXTURE_2D, labelTexture_);
    GB_CHECK_GL(kFile);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    GB_CHECK_GL(kFile);
    // The labels are painted display-encoded: an sRGB texture hands the shader linear values to light.
    glTexImage2D(GL_TEXTURE_2D, 0, GL_SRGB8_ALPHA8, reader.width(), reader.height(), 0, GL_RGBA,
                 GL_UNSIGNED_BYTE, rgba.data());
    GB_CHECK_GL(kFile);
    glGenerateMipmap(GL_TEXTURE_2D);
    GB_CHECK_GL(kFile);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    GB_CHECK_GL(kFile);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    GB_CHECK_GL(kFile);

    // The primary id in the records is whatever the control has now; the shader takes the id from
    // its uniform at each draw, so registering after Initialize is fine.
    std::vector<GLuint> indices(kCubeVertices);
    for (int i = 0; i < kCubeVertices; ++i) {
        indices[static_cast<std::size_t>(i)] = static_cast<GLuint>(i);
        vertices[static_cast<std::size_t>(i)].primaryId = static_cast<std::int32_t>(GetId());
    }
    if (!vertexBuffer_->upload(vertices.data(), kCubeVertices, indices.data(), kCubeVertices))
        return false;
    ready_ = true;
    return true;
}

void TriadControl::DrawCustom() {
    if (!ready_ || !camera_->Valid())
        return;
    // Culling, winding, polygon mode, viewport and the label unit are the host's again afterwards.
    GL::GLScopedBindings hostState;

    // The cube is convex: back-face culling alone hides its far side, no depth buffer needed. The
    // model winds its faces counter-clockwise seen from outside.
    glEnable(GL_CULL_FACE);
    GB_CHECK_GL(kFile);
    glCullFace(GL_BACK);
    GB_CHECK_GL(kFile);
    glFrontFace(GL_CCW);
    GB_CHECK_GL(kFile);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    GB_CHECK_GL(kFile);
    const int side = Side();
    glViewport(Margin(), Margin(), side, side);
    GB_CHECK_GL(kFile);

    glActiveTexture(GL_TEXTURE0 + kLabelUnit);
    GB_CHECK_GL(kFile);
    glBindTexture(GL_TEXTURE_2D, labelTexture_);
    GB_CHECK_GL(kFile);

    program_->begin();
    const GLuint program = program_->getProgram();
    SetUniformQuiet(program, "light.position", tgeom::vec4(light_->position, 1.f));
    SetUniformQuiet(program, "light.ambient", tgeom::vec4(tgeom::vec(light_->ambient), 1.f));
    SetUniformQuiet(program, "light.diffuse", tgeom::vec4(tgeom::vec(light_->diffuse), 1.f));
    SetUniformQuiet(program, "light.specular", tgeom::vec4(tgeom::vec(light_->specular), 1.f));
    const tgeom::mat4& view = camera_->ViewMatrix();
    GLint location = UniformLocationQuiet(program, "ViewMatrix");
    if (location != -1) {
        glUniformMatrix4fv(location, 1, GL_FALSE, glm::value_ptr(view));
        GB_CHECK_GL(kFile);
    }
    // The view's rotation part as it is: a rigid view needs no inverse transpose.
    const glm::mat3 normalMatrix(view);
    location = UniformLocationQuiet(program, "NormalMatrix");
    if (location != -1) {
        glUniformMatrix3fv(location, 1, GL_FALSE, glm::value_ptr(normalMatrix));
        GB_CHECK_GL(kFile);
    }
    location = UniformLocationQuiet(program, "pid");
    if (location != -1) {
        glUniform1ui(location, GetId());
        GB_CHECK_GL(kFile);
    }
    location = UniformLocationQuiet(program, "texUnit");
    if (location != -1) {
        glUniform1i(location, kLabelUnit);
        GB_CHECK_GL(kFile);
    }
    // Nothing is read back from the target here, but later draws that compose over the cube must see it.
    GUI::Renderer::detail::TargetBarrier();
    vertexBuffer_->draw(GLVertexBuffer::Triangles);
    program_->end();
}

DrawFlags TriadControl::OnClick(GUI::Event* e) {
    if (!e || !camera_ || e->sid >= static_cast<unsigned>(kFaces))
        return DRAW_NOTHING;
    const tgeom::vec target = camera_->Target();
    const float distance = glm::length(camera_->Position() - target);
    // With the camera at its target there is no distance to keep: every view would sit at the
    // target and look nowhere.
    if (!(distance > 0.f) || !std::isfinite(distance)) {
        LogFile::Instance().AddLine(LogLevel::Warning,
                                    "TriadControl::OnClick(): The camera is at its target; no view is "
                                    "taken.\n");
        return DRAW_NOTHING;
    }
    const FaceView& view = kFaceViews[e->sid];
    camera_->SetPosition(target + distance * view.direction);
    camera_->SetUpVector(view.up);
    camera_->CalcMatrices();
    SetNeedsRedraw(true);
    // Every widget that follows the camera is stale now, not only the cube; the manager hears it here
    // rather than only when the host passes the news on.
    if (GUI::GUIManager* manager = Manager())
        manager->SetCameraUpdated(true);
    return DRAW_TRIAD_FACE | DRAW_OVERLAY;
}
