#include <trelvogui/manipulatorrenderer.h>

#include <trelvogui/gui/renderers/detail/targetbarrier.h>
#include <trelvogui/gui/renderers/detail/uniforms.h>

#include <graphicsbase/camera.h>
#include <graphicsbase/glerror.h>
#include <graphicsbase/glscopedsetter.h>
#include <graphicsbase/glslprogram.h>
#include <graphicsbase/glvertexbuffer.h>
#include <graphicsbase/logfile.h>

#include <glm/gtc/matrix_transform.hpp>
#include <glm/gtc/type_ptr.hpp>

#include <GL/glew.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

using namespace GraphicsBase;

namespace {
constexpr const char* kFile = "manipulatorrenderer";
constexpr float kPi = 3.14159265f;
// Distances of the handles from the projected centre, in pixels, for an axis across the view.
constexpr float kArrowDistance = 60.f;
constexpr float kBoxDistance = 120.f;
constexpr float kRingRadius = 100.f;
// The plane squares: the distance of a square's centre from the projected centre along each of its
// two axes, and its half size, for axes across the view.
constexpr float kPlaneHandleDistance = 38.f;
constexpr float kPlaneHandleHalfSize = 8.f;
// A dimmed gizmo: how far its colours go towards grey, and its opacity (at most half, so that it
// writes no ids).
constexpr float kDimmedGreyMix = 0.6f;
constexpr float kDimmedAlpha = 0.45f;

using GUI::Renderer::detail::UniformLocationQuiet;

/// A location, logging `reported` at debug level when the program lacks `name`.
GLint LoggedLocation(GLuint program, const char* name, const char* reported) {
    GLint location = UniformLocationQuiet(program, name);
    if (location == -1)
        LogFile::Instance().AddLine(LogLevel::Debug, "Could not get index for %s\n", reported);
    return location;
}

std::unique_ptr<GLVertexBuffer> MakeMesh(const std::vector<float>& xy, const std::vector<GLuint>& indices) {
    std::vector<float> positions;
    positions.reserve(xy.size() / 2 * 3);
    for (size_t i = 0; i + 1 < xy.size(); i += 2)
        positions.insert(positions.end(), {xy[i], xy[i + 1], 0.f});
    auto mesh = std::make_unique<GLVertexBuffer>();
    if (!mesh->addAttribute(3) || !mesh->finishLayout())
        return nullptr;
    if (!mesh->upload(positions.data(), static_cast<int>(positions.size() / 3),
                      indices.empty() ? nullptr : indices.data(), static_cast<int>(indices.size())))
        return nullptr;
    return mesh;
}

/// Inner/outer point pairs of a band, for a triangle strip.
std::vector<float> Band(int pairs, float startAngle, float sweep, float innerStart, float innerEnd) {
    std::vector<float> xy;
    for (int i = 0; i < pairs; ++i) {
        float f = static_cast<float>(i) / static_cast<float>(pairs - 1);
        float a = f * sweep + startAngle;
        float r = innerStart + (innerEnd - innerStart) * f;
        xy.insert(xy.end(), {r * std::cos(a), r * std::sin(a), std::cos(a), std::sin(a)});
    }
    return xy;
}

glm::mat4 PlaceInPlane(const glm::vec2& at, float angle, float sx, float sy) {
    glm::mat4 m = glm::translate(glm::mat4(1.f), glm::vec3(at, 0.f));
    m = glm::rotate(m, angle, glm::vec3(0.f, 0.f, 1.f));
    return glm::scale(m, glm::vec3(sx, sy, 1.f));
}
} // namespace

ManipulatorRenderer::ManipulatorRenderer(std::shared_ptr<Camera> camera) : GLRendererBase(std::move(camera)) {
    // Nothing is drawn until the owning control has initialised and shown it.
    SetVisible(false);
}

ManipulatorRenderer::~ManipulatorRenderer() = default;

void ManipulatorRenderer::setVisibleTranslate(bool x, bool y, bool z) {
    handles_[0] = x;
    handles_[1] = y;
    handles_[2] = z;
}

void ManipulatorRenderer::setVisibleRotate(bool x, bool y, bool z) {
    handles_[3] = x;
    handles_[4] = y;
    handles_[5] = z;
}

void ManipulatorRenderer::setVisibleScale(bool x, bool y, bool z) {
    handles_[6] = x;
    handles_[7] = y;
    handles_[8] = z;
}

void ManipulatorRenderer::setDOFMask(unsigned int mask) {
    dofMask_ = mask;
    for (int i = 0; i < 9; ++i)
        handles_[i] = ((mask >> i) & 1u) == 0;
}

void ManipulatorRenderer::modelMatrix(glm::mat4& m) const {
    m = glm::mat4_cast(frame_.getOrientation());
    m[3] = glm::vec4(translation_, 1.f);
}

bool ManipulatorRenderer::loadShaders() {
    // A stale error from the host must not be blamed on the shader build.
    while (glGetError() != GL_NO_ERROR) {
    }
    program_ = std::make_unique<GLSLProgram>();
    if (!program_->addShader("PolygonManipulator.vs") || !program_->addShader("PolygonManipulator.fs"))
        return false;
    program_->linkProgram();
    GUI::Renderer::detail::BuildFetchProgram(fetchProgram_, "PolygonManipulator.vs", "PolygonManipulator.fs");
    return true;
}

bool ManipulatorRenderer::Initialize() {
    if (!loadShaders() || !program_->isLinked()) {
        program_.reset();
        fetchProgram_.reset();
        directProgram_.reset();
        return false;
    }
    arrowHead_ = MakeMesh({-1.f, 0.f, 1.f, 0.f, 0.f, 1.f}, {0, 1, 2});
    scaleBox_ = MakeMesh({-1.f, -1.f, 1.f, -1.f, 1.f, 1.f, -1.f, 1.f}, {0, 1, 2, 0, 2, 3});
    // From pi/16 over 3pi/8; no width at the start, 0.15 at the end.
    rotationArc_ = MakeMesh(Band(50, 0.19634955f, 1.1780972f, 1.f, 0.85f), {});
    roundRing_ = MakeMesh(Band(50, 0.f, 6.2831855f, 0.5f, 0.5f), {});
    hexRing_ = MakeMesh(Band(7, 0.f, 6.2831855f, 0.5f, 0.5f), {});
    if (!arrowHead_ || !scaleBox_ || !rotationArc_ || !roundRing_ || !hexRing_) {
        program_.reset();
        fetchProgram_.reset();
        directProgram_.reset();
        return false;
    }
    return true;
}

tgeom::vec ManipulatorRenderer::axisVector(int axis) const {
    if (worldAxes_) {
        tgeom::vec world(0.f);
        world[axisIndex_[axis]] = 1.f;
        return world;
    }
    return localAxis(axis);
}

tgeom::vec ManipulatorRenderer::localAxis(int axis) const {
    switch (axisIndex_[axis]) {
    case 0:
        return frame_.xvector();
    case 1:
        return frame_.yvector();
    default:
        return frame_.zvector();
    }
}

bool ManipulatorRenderer::projectAxis(const tgeom::vec& axis, glm::vec2& origin, glm::vec2& direction) const {
    const Camera* camera = GetCamera().get();
    const tgeom::vec& o = frame_.getPosition();
    tgeom::vec tip = o + axis;
    float z = 0.f;
    glm::vec2 end;
    if (!camera->ProjectPoint(o.x, o.y, o.z, &origin.x, &origin.y, &z) ||
        !camera->ProjectPoint(tip.x, tip.y, tip.z, &end.x, &end.y, &z))
        return false;
    glm::vec2 v = end - origin;
    float length = glm::length(v);
    // An axis seen end-on has no screen direction; its handles are faded out anyway.
    direction = length > 1e-6f ? v / length : glm::vec2(0.f, 1.f);
    return true;
}

glm::vec4 ManipulatorRenderer::handleColor(int axis, unsigned int id) const {
    glm::vec4 base = axis < 0 ? neutralColor_ : axisColor_[axis];
    if (dimmed_) {
        const float grey = (base.r + base.g + base.b) / 3.f;
        base = glm::vec4(glm::mix(glm::vec3(base), glm::vec3(grey), kDimmedGreyMix), kDimmedAlpha);
    }
    if (highlightDof_ != id || dimmed_)
        return base;
    float w = highlightColor_.a;
    glm::vec4 mixed = w * highlightColor_ + (1.f - w) * base;
    mixed.a = base.a;
    return mixed;
}

void ManipulatorRenderer::drawMesh(const GLVertexBuffer& mesh, const glm::mat4& model, const glm::vec4& color,
                                   unsigned int id, const glm::vec2& colorpos) {
    // The handles are drawn from Draw, which picks the build; called on their own they use the literal one.
    GLSLProgram* drawing = active_ != nullptr ? active_ : program_.get();
    if (drawing == nullptr)
        return;
    GLuint program = drawing->getProgram();
    glUniform4fv(UniformLocationQuiet(program, "color"), 1, glm::value_ptr(color));
    GB_CHECK_GL(kFile);
    // The direct build writes no ids: it has no such uniform.
    if (!GUI::Renderer::detail::DirectTarget())
        glUniform1ui(LoggedLocation(program, "secondaryId", "secondaryId"), id);
    GB_CHECK_GL(kFile);
    // The message names the other matrix; hosts grep their logs for it as it is.
    glUniformMatrix4fv(LoggedLocation(program, "ModelMatrix", "ModelViewMatrix"), 1, GL_FALSE,
                       glm::value_ptr(model));
    GB_CHECK_GL(kFile);
    glUniform2fv(UniformLocationQuiet(program, "colorpos"), 1, glm::value_ptr(colorpos));
    GB_CHECK_GL(kFile);
    // Strips of inner/outer pairs for the bands, plain triangle lists for the head and the box.
    int mode = mesh.indexCount() > 0 ? GLVertexBuffer::Triangles : GLVertexBuffer::TriangleStrip;
    GUI::Renderer::detail::TargetBarrier(drawing == program_.get());
    mesh.draw(mode);
}

void ManipulatorRenderer::drawAxis(int axis) {
    const bool arrow = handles_[axis];
    const bool box = handles_[6 + axis];
    if (!arrow && !box)
        return;
    const unsigned int arrowId = static_cast<unsigned int>(axis + 1);
    const unsigned int boxId = static_cast<unsigned int>(axis + 7);
    // With world axes the arrow follows the world axis and the box stays on the frame's.
    const tgeom::vec arrowAxis = axisVector(axis);
    const tgeom::vec boxAxis = localAxis(axis);
    const glm::vec2 flat(1.f, 1.f);
    // Where, which way and how opaque the handles along `v` are; false when nothing is to be drawn.
    auto place = [&](const tgeom::vec& v, glm::vec2& o, float& turn, float& s, glm::vec2& u, float& alpha) {
        if (!projectAxis(v, o, u))
            return false;
        float along = glm::dot(v, GetCamera()->ViewDir());
        s = std::sqrt(std::max(0.f, 1.f - along * along));
        float threshold = 1.f - fadeStart_;
        alpha = s >= threshold ? 1.f : 1.f - (threshold - s) * fadeSlope_;
        turn = std::atan2(u.y, u.x) - kPi / 2.f;
        return alpha > 0.f; // invisible and, below half coverage, unpickable: nothing to draw
    };
    glm::vec2 o, u;
    float turn = 0.f, s = 0.f, alpha = 0.f;
    if (arrow && place(arrowAxis, o, turn, s, u, alpha)) {
        glm::vec4 color = handleColor(axis, arrowId);
        color.a = std::min(color.a, alpha);
        // A thin shaft from the centre handle to the head reads as an arrow and widens the grip.
        float from = centreSize_ * kRingRadius;
        float to = s * kArrowDistance;
        if (to > from)
            drawMesh(*scaleBox_, PlaceInPlane(o + u * (0.5f * (from + to)), turn, 1.5f, 0.5f * (to - from)),
                     color, arrowId, flat);
        drawMesh(*arrowHead_, PlaceInPlane(o + u * (s * kArrowDistance), turn, 10.f, 30.f * s), color,
                 arrowId, flat);
    }
    if (box && place(boxAxis, o, turn, s, u, alpha)) {
        glm::vec4 color = handleColor(axis, boxId);
        color.a = std::min(color.a, alpha);
        drawMesh(*scaleBox_, PlaceInPlane(o + u * (s * kBoxDistance), turn, 10.f, 10.f * s), color, boxId,
                 flat);
    }
}

void ManipulatorRenderer::drawRing(int axis) {
    if (!handles_[3 + axis])
        return;
    // The ring of an axis lies in the plane of the other two. Its projection is the unit circle mapped
    // onto their projected directions, each as long as the sine of that axis against the line of
    // sight; the band sits in the quarter between them that faces the viewer.
    const int first = (axis + 1) % 3;
    const int second = (axis + 2) % 3;
    const tgeom::vec view = GetCamera()->ViewDir();
    glm::vec2 o, u1, u2;
    tgeom::vec a1 = axisVector(first);
    tgeom::vec a2 = axisVector(second);
    if (!projectAxis(a1, o, u1) || !projectAxis(a2, o, u2))
        return;
    auto extent = [&](const tgeom::vec& a, const glm::vec2& u) {
        float along = glm::dot(a, view);
        float s = std::max(std::sqrt(std::max(0.f, 1.f - along * along)), ringMinimumThickness_);
        return u * (kRingRadius * s * (along > 0.f ? -1.f : 1.f));
    };
    glm::vec2 b1 = extent(a1, u1);
    glm::vec2 b2 = extent(a2, u2);
    glm::mat4 model(1.f);
    model[0] = glm::vec4(b1, 0.f, 0.f);
    model[1] = glm::vec4(b2, 0.f, 0.f);
    model[3] = glm::vec4(o, 0.f, 1.f);
    const unsigned int id = static_cast<unsigned int>(axis + 4);
    drawMesh(*rotationArc_, model, handleColor(axis, id), id, glm::vec2(bandShade_, 1.f));
}

void ManipulatorRenderer::drawPlane(int normal) {
    const unsigned int id = static_cast<unsigned int>(normal + 11);
    if (!handleEnabled(static_cast<int>(id)))
        return;
    // A square in the plane of the other two axes, seen in perspective as a parallelogram spanned by
    // their projected directions, in the quarter between them that faces the viewer (as the rings).
    const int first = (normal + 1) % 3;
    const int second = (normal + 2) % 3;
    const tgeom::vec view = GetCamera()->ViewDir();
    glm::vec2 o, u1, u2;
    const tgeom::vec a1 = axisVector(first), a2 = axisVector(second);
    if (!projectAxis(a1, o, u1) || !projectAxis(a2, o, u2))
        return;
    // Seen edge-on the square fades out as an arrow seen end-on does.
    const float facing = std::abs(glm::dot(axisVector(normal), view));
    const float threshold = 1.f - fadeStart_;
    const float alpha = facing >= threshold ? 1.f : 1.f - (threshold - facing) * fadeSlope_;
    if (alpha <= 0.f)
        return;
    auto extent = [&](const tgeom::vec& a, const glm::vec2& u) {
        float along = glm::dot(a, view);
        return u * (std::sqrt(std::max(0.f, 1.f - along * along)) * (along > 0.f ? -1.f : 1.f));
    };
    const glm::vec2 b1 = extent(a1, u1), b2 = extent(a2, u2);
    glm::mat4 model(1.f);
    model[0] = glm::vec4(b1 * kPlaneHandleHalfSize, 0.f, 0.f);
    model[1] = glm::vec4(b2 * kPlaneHandleHalfSize, 0.f, 0.f);
    model[3] = glm::vec4(o + (b1 + b2) * kPlaneHandleDistance, 0.f, 1.f);
    // The colour of the axis the plane is normal to, as the ring about that axis.
    glm::vec4 color = handleColor(normal, id);
    color.a = std::min(color.a, alpha);
    drawMesh(*scaleBox_, model, color, id, glm::vec2(1.f, 1.f));
}

void ManipulatorRenderer::drawAxisX() {
    drawAxis(0);
}
void ManipulatorRenderer::drawAxisY() {
    drawAxis(1);
}
void ManipulatorRenderer::drawAxisZ() {
    drawAxis(2);
}
void ManipulatorRenderer::drawRingX() {
    drawRing(0);
}
void ManipulatorRenderer::drawRingY() {
    drawRing(1);
}
void ManipulatorRenderer::drawRingZ() {
    drawRing(2);
}

void ManipulatorRenderer::DrawCircle() {
    if (!centre_)
        return;
    glm::vec2 o, u;
    if (!projectAxis(frame_.xvector(), o, u))
        return;
    float radius = centreSize_ * kRingRadius;
    drawMesh(polyCircle_ ? *hexRing_ : *roundRing_, PlaceInPlane(o, 0.f, radius, radius), handleColor(-1, 10),
             10, glm::vec2(1.f, 1.f));
}

GUI::Geometry::Rectangle ManipulatorRenderer::LayerFootprint(int layerWidth, int layerHeight) const {
    const Camera* camera = GetCamera().get();
    const tgeom::vec& p = frame_.getPosition();
    float sx = 0.f, sy = 0.f, sz = 0.f;
    // What Draw skips draws nothing.
    if (!program_ || !Visible() || !camera || camera->Width() <= 0 || camera->Height() <= 0 ||
        !camera->ProjectPoint(p.x, p.y, p.z, &sx, &sy, &sz) || !(sz >= 0.f && sz <= 1.f) ||
        !std::isfinite(sx) || !std::isfinite(sy))
        return {0, 0, 0, 0};
    // Every handle lies within this reach of the centre, in the camera's pixels: a ring is the unit
    // circle mapped onto two projected axes of at most kRingRadius each, a scale box sits at
    // kBoxDistance with a half-diagonal under 15, and the centre ring's radius is centreSize times
    // half of kRingRadius. Two pixels more for rasterisation at the edges.
    const float reach =
        std::max({2.f * kRingRadius, kBoxDistance + 15.f, centreSize_ * kRingRadius}) * pixelScale_ + 2.f;
    // The pixel projection spans the camera's size; the layer's viewport may be another size.
    const float fx = static_cast<float>(layerWidth) / static_cast<float>(camera->Width());
    const float fy = static_cast<float>(layerHeight) / static_cast<float>(camera->Height());
    auto at = [](float v, bool up) {
        v = std::clamp(v, -3e7f, 3e7f);
        return GUI::Geometry::ClampCoordinate(static_cast<int64_t>(up ? std::ceil(v) : std::floor(v)));
    };
    return {at((sx - reach) * fx, false), at((sx + reach) * fx, true), at((sy - reach) * fy, false),
            at((sy + reach) * fy, true)};
}

void ManipulatorRenderer::Draw() {
    const Camera* camera = GetCamera().get();
    if (!program_ || !Visible() || !camera || camera->Width() <= 0 || camera->Height() <= 0)
        return;
    // A centre outside the depth range is behind the viewer or clipped: its projection means nothing.
    const tgeom::vec& p = frame_.getPosition();
    float sx = 0.f, sy = 0.f, sz = 0.f;
    if (!camera->ProjectPoint(p.x, p.y, p.z, &sx, &sy, &sz) || !(sz >= 0.f && sz <= 1.f))
        return;
    translation_ = p;

    GL::GLScopedSetter state(GL::Disable{GL_CULL_FACE}, GL::Disable{GL_DEPTH_TEST});
    active_ = &GUI::Renderer::detail::DrawingProgram(*program_, fetchProgram_.get(), directProgram_,
                                                     "PolygonManipulator.vs", "PolygonManipulator.fs");
    active_->begin();
    GLuint program = active_->getProgram();
    glUniform1ui(UniformLocationQuiet(program, "pid"), pid_);
    GB_CHECK_GL(kFile);
    glm::mat4 local;
    modelMatrix(local);
    glUniformMatrix4fv(UniformLocationQuiet(program, "LocalModelViewMatrix"), 1, GL_FALSE,
                       glm::value_ptr(local));
    GB_CHECK_GL(kFile);
    glUniformMatrix4fv(UniformLocationQuiet(program, "ModelViewNoTranslation"), 1, GL_FALSE,
                       glm::value_ptr(camera->ViewMatrix()));
    GB_CHECK_GL(kFile);
    glm::mat4 pixels(1.f);
    pixels[0][0] = 2.f / static_cast<float>(camera->Width());
    pixels[1][1] = 2.f / static_cast<float>(camera->Height());
    pixels[2][2] = -1.f;
    pixels[3] = glm::vec4(-1.f, -1.f, 0.f, 1.f);
    // Every handle is laid out in pixels around the projected centre: the display scale enlarges the
    // whole layout about that point, sizes, distances and widths alike.
    if (pixelScale_ != 1.f) {
        glm::mat4 aboutCentre(1.f);
        aboutCentre[0][0] = aboutCentre[1][1] = pixelScale_;
        aboutCentre[3] = glm::vec4(sx * (1.f - pixelScale_), sy * (1.f - pixelScale_), 0.f, 1.f);
        pixels = pixels * aboutCentre;
    }
    glUniformMatrix4fv(LoggedLocation(program, "ProjectionMatrix", "ProjectionMatrix"), 1, GL_FALSE,
                       glm::value_ptr(pixels));
    GB_CHECK_GL(kFile);
    glUniformMatrix4fv(LoggedLocation(program, "ModelViewMatrix", "ModelViewMatrix"), 1, GL_FALSE,
                       glm::value_ptr(glm::mat4(1.f)));
    GB_CHECK_GL(kFile);
    if (active_ == program_.get())
        GUI::Renderer::detail::SetTargetSamplers(program);

    // Painter's order: the axis pointing furthest away from the viewer is drawn first and its ring
    // last, so the handles nearer the viewer mostly end up on top. Exact ties run more than one branch;
    // drawing twice is harmless.
    const tgeom::vec view = camera->ViewDir();
    const float dX = -glm::dot(axisVector(0), view);
    const float dY = -glm::dot(axisVector(1), view);
    const float dZ = -glm::dot(axisVector(2), view);
    if (dX <= dY && dX <= dZ) {
        drawAxisX();
        DrawCircle();
        if (dZ < dY) {
            drawAxisZ();
            drawAxisY();
            drawRingY();
            drawRingZ();
        } else {
            drawAxisY();
            drawAxisZ();
            drawRingZ();
            drawRingY();
        }
        drawRingX();
    }
    if (dY <= dX && dY <= dZ) {
        drawAxisY();
        DrawCircle();
        if (dZ < dX) {
            drawAxisZ();
            drawAxisX();
            drawRingX();
            drawRingZ();
        } else {
            drawAxisX();
            drawAxisZ();
            drawRingZ();
            drawRingX();
        }
        drawRingY();
    }
    if (dZ <= dY && dZ <= dX) {
        drawAxisZ();
        DrawCircle();
        if (dX < dY) {
            drawAxisX();
            drawAxisY();
            drawRingY();
            drawRingX();
        } else {
            drawAxisY();
            drawAxisX();
            drawRingX();
            drawRingY();
        }
        drawRingZ();
    }
    // Small and between the arrows, they overlap no other handle: no order to keep.
    for (int normal = 0; normal < 3; ++normal)
        drawPlane(normal);
    active_->end();
    active_ = nullptr;
}
