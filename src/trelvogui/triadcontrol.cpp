#include <trelvogui/triadcontrol.h>

#include <trelvogui/gui/animationsequence.h>
#include <trelvogui/gui/guiclock.h>
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

// Each part's corner of the cube as signs per axis. Faces come first, in the order of the model's
// face numbers; the shader looks a fragment's part up from the signs of its position.
const glm::ivec3 kPartSigns[TriadControl::kPartCount] = {
    {0, -1, 0},  {0, 1, 0},  {0, 0, 1},   {-1, 0, 0},  {0, 0, -1},   {1, 0, 0},  {1, 1, 0},
    {1, -1, 0},  {-1, 1, 0}, {-1, -1, 0}, {1, 0, 1},   {1, 0, -1},   {-1, 0, 1}, {-1, 0, -1},
    {0, 1, 1},   {0, 1, -1}, {0, -1, 1},  {0, -1, -1}, {1, 1, 1},    {1, 1, -1}, {1, -1, 1},
    {1, -1, -1}, {-1, 1, 1}, {-1, 1, -1}, {-1, -1, 1}, {-1, -1, -1},
};
// Beyond this coordinate (the cube spans -0.5..0.5) a point of a face belongs to an edge band.
constexpr float kEdgeBand = 0.35f;
// The pointer travel, in pixels at display scale 1, before a press on the cube becomes an orbit rather than a
// click.
constexpr int kOrbitThreshold = 4;
constexpr float kHalfPi = 1.57079632679f;
constexpr float kPi = 3.14159265359f;

// The camera's rotation: its columns are the view's right, up and backward (target to camera) axes.
glm::quat Orientation(const glm::vec3& backward, const glm::vec3& up) {
    const glm::vec3 b = glm::normalize(backward);
    glm::vec3 right = glm::cross(up, b);
    // A host up vector along the view has no right: any upright turn about the view will do.
    if (glm::length(right) < 1e-6f)
        right = glm::cross(std::abs(b.y) < 0.9f ? glm::vec3(0.f, 1.f, 0.f) : glm::vec3(0.f, 0.f, -1.f), b);
    right = glm::normalize(right);
    return glm::normalize(glm::quat_cast(glm::mat3(right, glm::cross(b, right), b)));
}

// A view upright about world +y at azimuth `a` (about +y, 0 looking from +z) and elevation `e`. The
// up vector is the direction's derivative in e: upright everywhere and continuous through the poles,
// where it points away from the azimuth the camera came from.
void Spherical(float a, float e, glm::vec3& direction, glm::vec3& up) {
    direction = {std::cos(e) * std::sin(a), std::sin(e), std::cos(e) * std::cos(a)};
    up = {-std::sin(e) * std::sin(a), std::cos(e), -std::sin(e) * std::cos(a)};
}

using GUI::Renderer::detail::SetUniformQuiet;
using GUI::Renderer::detail::UniformLocationQuiet;

} // namespace

TriadControl::TriadControl(std::shared_ptr<Camera> camera, std::shared_ptr<DirectionalLight> light)
    : camera_(std::move(camera)), light_(std::move(light)), program_(std::make_unique<GLSLProgram>()) {
    SetUsesCamera(true);
    SetUsesLight(true);
    SetDimsWhenDisabled(true);
}

// Steps the flight once per layer update. It moves no frame, so the manager redraws only what
// follows the camera; the triad's life token guards against a triad deleted under it.
class TriadControl::FlightTicker : public GUI::Animation::Sequence {
public:
    explicit FlightTicker(TriadControl* triad)
        : Sequence(triad, 0.f), triad_(triad), life_(triad->LifeToken()) {}
    void Update() override { done_ = life_.expired() || !triad_->advanceFlight(); }
    bool Done() override { return done_; }
    bool MovesControl() const override { return false; }

    const std::shared_ptr<int> token = std::make_shared<int>(0);

private:
    TriadControl* triad_;
    std::weak_ptr<const void> life_;
    bool done_ = false;
};

glm::vec3 TriadControl::PartDirection(unsigned int part) {
    return part < kPartCount ? glm::normalize(glm::vec3(kPartSigns[part])) : glm::vec3(0.f);
}

glm::vec3 TriadControl::PartUp(unsigned int part) {
    if (part >= kPartCount)
        return glm::vec3(0.f);
    const glm::vec3 d = PartDirection(part);
    // Straight down or up the y axis there is no upright; -z keeps the cube's labels readable.
    if (std::abs(d.y) > 0.999f)
        return {0.f, 0.f, -1.f};
    return glm::normalize(glm::vec3(0.f, 1.f, 0.f) - d.y * d);
}

bool TriadControl::SetFlightTime(float seconds, GUI::Animation::EasingFunction easing) {
    if (!(seconds >= 0.f && seconds <= 10.f)) {
        std::printf("TriadControl::SetFlightTime(): %g seconds is outside 0 to 10; kept %g\n",
                    static_cast<double>(seconds), static_cast<double>(flightSeconds_));
        return false;
    }
    if (!easing) {
        std::printf("TriadControl::SetFlightTime(): the easing curve is null; kept the last one\n");
        return false;
    }
    flightSeconds_ = seconds;
    easing_ = easing;
    return true;
}

void TriadControl::SetEdgesAndCorners(bool on) {
    edgesAndCorners_ = on;
    SetNeedsRedraw(true);
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
    const int minimum = ScaledPixels(static_cast<float>(minimumSize_));
    return std::max(minimum, static_cast<int>(std::floor(shorter / 15.0)));
}

int TriadControl::Margin() const {
    return ScaledPixels(10.f);
}

void TriadControl::prepareProgram(GLSLProgram& build) {
    const GLuint program = build.getProgram();
    GUI::Renderer::detail::SetMaterialUniforms(program, tgeom::vec4(0.5f, 0.5f, 0.5f, 1.f), 40.f);
    // The part of each sign triple (index 9 (x + 1) + 3 (y + 1) + z + 1); the centre, no part, stays 0.
    GLint partOfSigns[27] = {};
    for (unsigned int part = 0; part < kPartCount; ++part) {
        const glm::ivec3 s = kPartSigns[part] + 1;
        partOfSigns[9 * s.x + 3 * s.y + s.z] = static_cast<GLint>(part);
    }
    const GLint partsLocation = UniformLocationQuiet(program, "partOfSigns");
    if (partsLocation != -1) {
        glUniform1iv(partsLocation, 27, partOfSigns);
        GB_CHECK_GL(kFile);
    }
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
    directProgram_.reset();

    if (!program_->addShader("Triad.vs") || !program_->addShader("Triad.fs") || !program_->linkProgram())
        return false;
    program_->begin();
    prepareProgram(*program_);
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
    // At the view's corner, wherever the view starts in the target.
    GLint viewport[4] = {0, 0, 0, 0};
    glGetIntegerv(GL_VIEWPORT, viewport);
    GB_CHECK_GL(kFile);
    const int side = Side();
    glViewport(viewport[0] + Margin(), viewport[1] + Margin(), side, side);
    GB_CHECK_GL(kFile);

    glActiveTexture(GL_TEXTURE0 + kLabelUnit);
    GB_CHECK_GL(kFile);
    glBindTexture(GL_TEXTURE_2D, labelTexture_);
    GB_CHECK_GL(kFile);

    GLSLProgram& drawing = GUI::Renderer::detail::DrawingProgram(*program_, nullptr, directProgram_,
                                                                 "Triad.vs", "Triad.fs", prepareProgram);
    drawing.begin();
    const GLuint program = drawing.getProgram();
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
    // Switched off, no coordinate but the face's own reaches the band: every pixel keeps its face id.
    location = UniformLocationQuiet(program, "hoverPart");
    if (location != -1) {
        glUniform1i(location, hoveredPart_ < kPartCount ? static_cast<GLint>(hoveredPart_) : -1);
        GB_CHECK_GL(kFile);
    }
    location = UniformLocationQuiet(program, "edgeBand");
    if (location != -1) {
        glUniform1f(location, edgesAndCorners_ ? kEdgeBand : 1.f);
        GB_CHECK_GL(kFile);
    }
    // Nothing is read back from the target here, but later draws that compose over the cube must see it.
    GUI::Renderer::detail::TargetBarrier();
    vertexBuffer_->draw(GLVertexBuffer::Triangles);
    drawing.end();
}

DrawFlags TriadControl::OnClick(GUI::Event* e) {
    // The release that ends an orbit is no click on the part it happens to end over.
    if (!e || !camera_ || e->sid >= static_cast<unsigned>(kPartCount) || drag_ == Drag::Orbiting ||
        drag_ == Drag::Cancelled)
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
    const glm::vec3 direction = PartDirection(e->sid), up = PartUp(e->sid);
    GUI::GUIManager* manager = Manager();
    if (flightSeconds_ > 0.f && manager) {
        // From wherever the camera is now, a retarget mid-flight included, so it never jumps.
        flightFrom_ = Orientation(camera_->Position() - target, camera_->UpVector());
        flightTo_ = Orientation(direction, up);
        flightDirection_ = direction;
        flightUp_ = up;
        flightStart_ = GUI::Clock::Ticks();
        flying_ = true;
        if (ticker_.expired()) {
            auto* ticker = new FlightTicker(this);
            ticker->Start();
            ticker_ = ticker->token;
            if (!manager->AddAnimation(ticker)) {
                delete ticker;
                flying_ = false;
            }
        }
        if (flying_)
            return DRAW_TRIAD_FACE | DRAW_OVERLAY;
    }
    moveCamera(target + distance * direction, up);
    return DRAW_TRIAD_FACE | DRAW_OVERLAY;
}

void TriadControl::place(const glm::quat& orientation, float distance) {
    moveCamera(camera_->Target() + distance * (orientation * glm::vec3(0.f, 0.f, 1.f)),
               orientation * glm::vec3(0.f, 1.f, 0.f));
}

bool TriadControl::advanceFlight() {
    if (!flying_)
        return false;
    const float distance = glm::length(camera_->Position() - camera_->Target());
    const float elapsed = static_cast<float>(static_cast<std::int64_t>(GUI::Clock::Ticks() - flightStart_));
    const float t = elapsed / (flightSeconds_ * 1000.f);
    if (!(t < 1.f) || !(distance > 0.f)) {
        flying_ = false;
        // Landing exactly where an instant click puts the camera.
        if (distance > 0.f)
            moveCamera(camera_->Target() + distance * flightDirection_, flightUp_);
        return false;
    }
    place(glm::slerp(flightFrom_, flightTo_, easing_(std::max(t, 0.f))), distance);
    return true;
}

DrawFlags TriadControl::OnMouseDown(GUI::Event* e) {
    dragTravel_ = 0;
    drag_ = Drag::Pending;
    if (camera_) {
        pressPosition_ = camera_->Position();
        pressUp_ = camera_->UpVector();
    }
    return Base::OnMouseDown(e);
}

DrawFlags TriadControl::OnMouseDrag(GUI::Event* event, int dx, int dy) {
    if (!dragOrbits_)
        return Base::OnMouseDrag(event, dx, dy);
    if (!Enabled() || !camera_)
        return DRAW_NOTHING;
    if (drag_ == Drag::Cancelled)
        return DRAW_CONSUMED;
    // The threshold is a hand's jitter: on a dense display it spans as many device pixels more.
    const int threshold = static_cast<int>(std::lround(kOrbitThreshold * DisplayScale()));
    dragTravel_ = std::min(dragTravel_ + std::abs(dx) + std::abs(dy), threshold);
    if (drag_ != Drag::Orbiting && dragTravel_ < threshold)
        return DRAW_CONSUMED;
    const glm::vec3 target = camera_->Target();
    const glm::vec3 offset = camera_->Position() - target;
    const float distance = glm::length(offset);
    if (!(distance > 0.f) || !std::isfinite(distance))
        return DRAW_CONSUMED;
    drag_ = Drag::Orbiting;
    flying_ = false; // a drag takes the camera from any flight
    const glm::vec3 d = offset / distance, up = camera_->UpVector();
    float e = std::asin(std::clamp(d.y, -1.f, 1.f));
    // At a pole the azimuth is where the up vector points away from.
    float a = std::hypot(d.x, d.z) > 1e-4f ? std::atan2(d.x, d.z)
              : d.y > 0.f                  ? std::atan2(-up.x, -up.z)
                                           : std::atan2(up.x, up.z);
    // The cube follows the pointer: half a turn across its square.
    const float perPixel = kPi / static_cast<float>(std::max(Side(), 1));
    a -= static_cast<float>(dx) * perPixel;
    e = std::clamp(e - static_cast<float>(dy) * perPixel, -kHalfPi, kHalfPi);
    glm::vec3 direction, upright;
    Spherical(a, e, direction, upright);
    moveCamera(target + distance * direction, upright);
    return DRAW_CONSUMED | DRAW_TRIAD_FACE | DRAW_OVERLAY;
}

DrawFlags TriadControl::OnCancelDrag(GUI::Event*) {
    if (drag_ != Drag::Orbiting || !camera_)
        return DRAW_NOTHING;
    // The rest of the drag, and the release that ends it, do nothing.
    drag_ = Drag::Cancelled;
    moveCamera(pressPosition_, pressUp_);
    return DRAW_CONSUMED | DRAW_TRIAD_FACE | DRAW_OVERLAY;
}

void TriadControl::moveCamera(const glm::vec3& position, const glm::vec3& up) {
    camera_->SetPosition(position);
    camera_->SetUpVector(up);
    camera_->CalcMatrices();
    SetNeedsRedraw(true);
    // Every widget that follows the camera is stale now, not only the cube; the manager hears it here
    // rather than only when the host passes the news on.
    if (GUI::GUIManager* manager = Manager())
        manager->SetCameraUpdated(true);
}

bool TriadControl::hover(unsigned int part) {
    // Faces look as they always have; the edges and corners, new targets, show where they begin.
    if (part < kEdgePlusXPlusY || part >= kPartCount || !Enabled())
        part = kPartCount;
    if (part == hoveredPart_)
        return false;
    hoveredPart_ = part;
    SetNeedsRedraw(true);
    return true;
}

DrawFlags TriadControl::OnMouseEnter(GUI::Event* e) {
    hover(e ? e->sid : kPartCount);
    return Base::OnMouseEnter(e);
}

DrawFlags TriadControl::OnMouseHover(GUI::Event* e) {
    return hover(e ? e->sid : kPartCount) ? DRAW_OVERLAY : DRAW_NOTHING;
}

DrawFlags TriadControl::OnMouseExit(GUI::Event* e) {
    hover(kPartCount);
    return Base::OnMouseExit(e);
}
