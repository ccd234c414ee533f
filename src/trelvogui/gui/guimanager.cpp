#include <trelvogui/gui/guimanager.h>

#include <trelvogui/gui/animationsequence.h>
#include <trelvogui/gui/controlbase.h>
#include <trelvogui/gui/guiclock.h>
#include <trelvogui/gui/renderers/detail/targetbarrier.h>
#include <trelvogui/gui/renderers/detail/uniforms.h>
#include <trelvogui/gui/renderers/openglrenderer.h>
#include <trelvogui/gui/textureatlas.h>

#include <graphicsbase/camera.h>
#include <graphicsbase/directionallight.h>
#include <graphicsbase/glerror.h>
#include <graphicsbase/glloader.h>
#include <graphicsbase/glscopedbindings.h>
#include <graphicsbase/glscopedsetter.h>
#include <graphicsbase/glslprogram.h>
#include <graphicsbase/logfile.h>

#include <GL/glew.h>

#include <algorithm>
#include <cstdio>
#include <optional>
#include <string>

using namespace GraphicsBase;

namespace GUI {
namespace {
const char* kFile = "gui/guimanager";

GUI::Event controlEvent(const VX_UI::MouseEvent& e) {
    return GUI::Event{e.x, e.y, e.pid, e.sid};
}
} // namespace

GUIManager::GUIManager(GUI::Renderer::Type type) : rendererType_(type) {}

GUIManager::~GUIManager() {
    const bool holdsGL = quadVertexArray_ || quadVertexBuffer_ || layerFramebuffer_ || pickFramebuffer_ ||
                         colorLayer_ || idLayer_ || depthLayer_ || layersFence_;
    if (holdsGL && !GraphicsBase::CanReleaseGL()) {
        // Only the names are forgotten; the context frees the objects when it goes.
        quadVertexArray_ = quadVertexBuffer_ = 0;
        layerFramebuffer_ = pickFramebuffer_ = colorLayer_ = idLayer_ = depthLayer_ = 0;
        layersFence_ = nullptr;
    }
    delete renderer_;
    renderer_ = nullptr;
    delete atlas_;
    atlas_ = nullptr;
    // Sequences still running animate controls that outlive nothing here; free them rather than leak.
    for (GUI::Animation::Sequence* s : animations_)
        delete s;
    animations_.clear();
    for (GUI::Animation::Sequence* s : cancelled_)
        delete s;
    cancelled_.clear();
    compositeProgram_.reset();
    gammaProgram_.reset();
    deleteCompositeQuad();
    deleteLayers();
    deleteLayersFence();
}

bool GUIManager::Initialize() {
    // Loading the GL entry points here means a host needs no loader of its own; without a current
    // context there is nothing to load into, and nothing below could run.
    std::string why;
    if (!GraphicsBase::LoadGL(&why)) {
        LogFile::Instance().AddLine(LogLevel::Warning, "GUIManager::Initialize(): %s\n", why.c_str());
        return false;
    }
    GL::GLScopedBindings hostState;
    delete atlas_;
    atlas_ = nullptr;
    delete renderer_;
    auto* renderer = new GUI::Renderer::OpenglRenderer();
    renderer_ = renderer;
    if (!renderer->Initialize())
        return false;
    renderer->SetLineColor(GUI::Color::FromWord(0xFF000000));
    GLint maxTexture = 0, maxViewport[2] = {0, 0};
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &maxTexture);
    GB_CHECK_GL(kFile);
    glGetIntegerv(GL_MAX_VIEWPORT_DIMS, maxViewport);
    GB_CHECK_GL(kFile);
    maxLayerSize_ = std::max(1, std::min({maxTexture, maxViewport[0], maxViewport[1]}));
    atlas_ = new GUI::Texture::Atlas(renderer_);
    if (!atlas_->LoadControlSet(""))
        return false;
    InitializeRenderer();
    return true;
}

void GUIManager::deleteCompositeQuad() {
    if (quadVertexArray_) {
        glDeleteVertexArrays(1, &quadVertexArray_);
        GB_CHECK_GL(kFile);
    }
    if (quadVertexBuffer_) {
        glDeleteBuffers(1, &quadVertexBuffer_);
        GB_CHECK_GL(kFile);
    }
    quadVertexArray_ = quadVertexBuffer_ = 0;
}

bool GUIManager::InitializeRenderer() {
    GL::GLScopedBindings hostState;
    compositeProgram_ = std::make_unique<GLSLProgram>();
    compositeProgram_->addShader("UICompositShader.vert");
    compositeProgram_->addShader("UICompositShaderSimple.frag");
    compositeProgram_->linkProgram();

    // (x, y, u, v) for the unit square; mirrored v when upside down.
    const float normal[16] = {0, 0, 0, 0, 1, 0, 1, 0, 1, 1, 1, 1, 0, 1, 0, 1};
    const float mirrored[16] = {0, 0, 0, 1, 1, 0, 1, 1, 1, 1, 1, 0, 0, 1, 0, 0};
    deleteCompositeQuad();
    glGenVertexArrays(1, &quadVertexArray_);
    GB_CHECK_GL(kFile);
    glBindVertexArray(quadVertexArray_);
    GB_CHECK_GL(kFile);
    glGenBuffers(1, &quadVertexBuffer_);
    GB_CHECK_GL(kFile);
    glBindBuffer(GL_ARRAY_BUFFER, quadVertexBuffer_);
    GB_CHECK_GL(kFile);
    glBufferData(GL_ARRAY_BUFFER, sizeof normal, upsideDown_ ? mirrored : normal, GL_STATIC_DRAW);
    GB_CHECK_GL(kFile);
    GLuint program = compositeProgram_->getProgram();
    struct Attribute {
        const char* name;
        size_t offset;
    };
    for (Attribute a : {Attribute{"position", 0}, Attribute{"texcoord", 8}}) {
        GLint location = program ? glGetAttribLocation(program, a.name) : -1;
        GB_CHECK_GL(kFile);
        if (location == -1) {
            std::printf("Could not get index for %s\n", a.name);
            continue;
        }
        glEnableVertexAttribArray(static_cast<GLuint>(location));
        GB_CHECK_GL(kFile);
        glVertexAttribPointer(static_cast<GLuint>(location), 2, GL_FLOAT, GL_FALSE, 16,
                              reinterpret_cast<const void*>(a.offset));
        GB_CHECK_GL(kFile);
    }
    glBindVertexArray(0);
    GB_CHECK_GL(kFile);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    GB_CHECK_GL(kFile);
    return true;
}

bool GUIManager::NeedsRedraw() {
    return needsRedraw_;
}

void GUIManager::SetNeedsRedraw(bool v) {
    const bool raised = !needsRedraw_ && v;
    needsRedraw_ = needsRedraw_ || v;
    // A slot that asks NeedsRedraw() sees the raised flag. Marks made by a layer update itself (a
    // camera change restaling widgets) are drawn by that same update and need no new frame.
    if (raised && !updating_)
        RedrawRequestSignal();
}

void GUIManager::SetUpsideDown(bool upsideDown) {
    if (upsideDown != upsideDown_ && directSceneWidgets_) {
        layersWhole_ = true; // which roots are drawn directly changes
        SetNeedsRedraw(true);
    }
    upsideDown_ = upsideDown;
    InitializeRenderer();
}

void GUIManager::SetExplicitGammaCorrection(bool on) {
    if (on != explicitGammaCorrection_ && directSceneWidgets_) {
        layersWhole_ = true;
        SetNeedsRedraw(true);
    }
    explicitGammaCorrection_ = on;
}

void GUIManager::SetDirectSceneWidgets(bool on) {
    if (on == directSceneWidgets_)
        return;
    directSceneWidgets_ = on;
    layersWhole_ = true;
    SetNeedsRedraw(true);
}

void GUIManager::SetCompactIdLayers(bool on) {
    if (on == compactIdLayers_)
        return;
    compactIdLayers_ = on;
    // Every cached id layer is replaced by one of the new layout when its root is drawn again.
    for (GUI::Controls::Base* control : Controls())
        control->SetNeedsRedraw(true);
    SetNeedsRedraw(true);
}

bool GUIManager::drawnDirectly(unsigned int id) const {
    return std::find(directRoots_.begin(), directRoots_.end(), id) != directRoots_.end();
}

void GUIManager::Resize(int width, int height) {
    // A minimised window is 0 x 0: keep no layers, draw and pick nothing until a real size comes.
    width = std::max(width, 0);
    height = std::max(height, 0);
    if (renderer_ && (width > maxLayerSize_ || height > maxLayerSize_)) {
        LogFile::Instance().AddLine(
            LogLevel::Warning,
            "GUIManager::Resize(): %d x %d exceeds the context's limit of %d; the layers are "
            "clamped.\n",
            width, height, maxLayerSize_);
        width = std::min(width, maxLayerSize_);
        height = std::min(height, maxLayerSize_);
    }
    // The layers hold 24 bytes a pixel; far past any display, memory runs out before the side limit.
    if (static_cast<long long>(width) * height > kMaxLayerPixels) {
        LogFile::Instance().AddLine(
            LogLevel::Warning,
            "GUIManager::Resize(): %d x %d exceeds the budget of %lld layer pixels; the "
            "height is clamped.\n",
            width, height, kMaxLayerPixels);
        height = static_cast<int>(kMaxLayerPixels / width);
    }
    int shift = GUI::Geometry::SubSaturated(height, height_);
    // A RectangleChangedSignal slot may delete any control, which changes the registry: walk a copy
    // and skip the roots that are gone.
    std::vector<std::pair<GUI::Controls::Base*, std::weak_ptr<const void>>> roots;
    for (GUI::Controls::Base* control : Controls())
        if (!control->HasParent())
            roots.emplace_back(control, control->LifeToken());
    for (auto& [control, alive] : roots) {
        if (alive.expired())
            continue;
        GUI::Geometry::Rectangle r = control->GetRectangle();
        control->SetHorizontalAlignment(GUI::Alignment::Horizontal::Left);
        control->SetVerticalAlignment(GUI::Alignment::Vertical::Top);
        r.Shift(0, shift);
        control->SetRectangle(r);
    }
    width_ = width;
    height_ = height;
    if (width == 0 || height == 0) {
        deleteLayers();
        return;
    }
    GL::GLScopedBindings hostState;
    if (renderer_)
        renderer_->SetScreen(static_cast<unsigned>(width), static_cast<unsigned>(height));
    InitLayers();
    SetNeedsRedraw(true);
    UpdateLayers();
}

bool GUIManager::SetDisplayScale(float scale) {
    if (!(scale >= kMinDisplayScale && scale <= kMaxDisplayScale)) {
        std::printf("GUIManager::SetDisplayScale(): %g is outside %g to %g; the scale stays %g.\n",
                    static_cast<double>(scale), static_cast<double>(kMinDisplayScale),
                    static_cast<double>(kMaxDisplayScale), static_cast<double>(displayScale_));
        return false;
    }
    if (scale == displayScale_)
        return true;
    displayScale_ = scale;
    // Every pixel size may have changed: the widgets' footprints as much as their pictures.
    // A control's layout may delete or add children, which changes the registry: walk a copy and
    // skip what is gone.
    std::vector<std::pair<GUI::Controls::Base*, std::weak_ptr<const void>>> controls;
    for (GUI::Controls::Base* control : Controls())
        controls.emplace_back(control, control->LifeToken());
    for (auto& [control, alive] : controls) {
        if (alive.expired())
            continue;
        control->OnDisplayScaleChanged();
        if (!alive.expired())
            control->SetNeedsRedraw(true);
    }
    layersWhole_ = true;
    SetNeedsRedraw(true);
    return true;
}

void GUIManager::deleteLayers() {
    if (layerFramebuffer_) {
        glDeleteFramebuffers(1, &layerFramebuffer_);
        GB_CHECK_GL(kFile);
    }
    if (pickFramebuffer_) {
        glDeleteFramebuffers(1, &pickFramebuffer_);
        GB_CHECK_GL(kFile);
    }
    for (GLuint* t : {&colorLayer_, &idLayer_, &depthLayer_}) {
        if (*t) {
            glDeleteTextures(1, t);
            GB_CHECK_GL(kFile);
        }
    }
    layerFramebuffer_ = pickFramebuffer_ = colorLayer_ = idLayer_ = depthLayer_ = 0;
}

void GUIManager::InitLayers() {
    deleteLayers();
    layersWhole_ = true;
    layersCompact_ = compactIdLayers_;
    if (width_ <= 0 || height_ <= 0)
        return;
    GL::GLScopedBindings hostState;
    glGenFramebuffers(1, &layerFramebuffer_);
    GB_CHECK_GL(kFile);
    glBindFramebuffer(GL_FRAMEBUFFER, layerFramebuffer_);
    GB_CHECK_GL(kFile);

    struct Layer {
        GLuint* name;
        GLint internalFormat;
        GLenum format;
        GLenum type;
        GLenum attachment;
    };
    const Layer layers[] = {
        {&colorLayer_, GL_RGBA, GL_RGBA, GL_UNSIGNED_BYTE, GL_COLOR_ATTACHMENT0},
        {&idLayer_, compactIdLayers_ ? GL_RG32UI : GL_RGBA32UI, GL_RGBA_INTEGER, GL_UNSIGNED_INT,
         GL_COLOR_ATTACHMENT1},
        {&depthLayer_, GL_DEPTH_COMPONENT24, GL_DEPTH_COMPONENT, GL_UNSIGNED_INT, GL_DEPTH_ATTACHMENT},
    };
    for (const Layer& l : layers) {
        glGenTextures(1, l.name);
        GB_CHECK_GL(kFile);
        glBindTexture(GL_TEXTURE_2D, *l.name);
        GB_CHECK_GL(kFile);
        glTexImage2D(GL_TEXTURE_2D, 0, l.internalFormat, width_, height_, 0, l.format, l.type, nullptr);
        GB_CHECK_GL(kFile);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        GB_CHECK_GL(kFile);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
        GB_CHECK_GL(kFile);
        glFramebufferTexture2D(GL_FRAMEBUFFER, l.attachment, GL_TEXTURE_2D, *l.name, 0);
        GB_CHECK_GL(kFile);
    }
    glBindTexture(GL_TEXTURE_2D, 0);
    GB_CHECK_GL(kFile);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    GB_CHECK_GL(kFile);

    // The pick framebuffer holds the id layer alone, so that its read buffer is the id layer.
    glGenFramebuffers(1, &pickFramebuffer_);
    GB_CHECK_GL(kFile);
    glBindFramebuffer(GL_FRAMEBUFFER, pickFramebuffer_);
    GB_CHECK_GL(kFile);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, idLayer_, 0);
    GB_CHECK_GL(kFile);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    GB_CHECK_GL(kFile);
}

void GUIManager::UpdateLayers() {
    if (layerFramebuffer_ && layersCompact_ != compactIdLayers_)
        InitLayers();
    updateLayers();
    fireDeferredSignals();
    // A running camera flight changes nothing the host can see until it draws again: ask for it.
    if (std::any_of(animations_.begin(), animations_.end(),
                    [](GUI::Animation::Sequence* s) { return s && !s->MovesControl(); }))
        RedrawRequestSignal();
}

void GUIManager::DeferRectangleSignal(GUI::Controls::Base* control) {
    if (!control)
        return;
    for (const auto& deferred : deferredSignals_)
        if (deferred.first == control && !deferred.second.expired())
            return;
    deferredSignals_.emplace_back(control, control->LifeToken());
}

void GUIManager::fireDeferredSignals() {
    // A slot may delete any control, or change a rectangle again (which then fires at once).
    auto pending = std::move(deferredSignals_);
    deferredSignals_.clear();
    for (auto& [control, alive] : pending)
        if (!alive.expired())
            control->RectangleChangedSignal();
}

void GUIManager::updateLayers() {
    uint64_t t0 = GUI::Clock::Ticks();
    updating_ = true;
    // Animations move and fade roots through their frames without marking them: redraw whole.
    const bool animating = std::any_of(animations_.begin(), animations_.end(),
                                       [](GUI::Animation::Sequence* s) { return s && s->MovesControl(); });

    // A sequence may be cancelled while the sequences run (its control deleted by one of them): the
    // cancelled ones are only unlisted here and deleted after the loop.
    for (size_t i = 0; i < animations_.size(); ++i)
        if (GUI::Animation::Sequence* s = animations_[i])
            s->Update();
    for (size_t i = animations_.size(); i-- > 0;) {
        GUI::Animation::Sequence* s = animations_[i];
        if (!s || s->Done()) {
            animations_[i] = animations_.back();
            animations_.pop_back();
            delete s;
        }
    }
    for (GUI::Animation::Sequence* s : cancelled_)
        delete s;
    cancelled_.clear();

    const bool camera = GetCameraUpdated(), light = GetLightUpdated();
    for (GUI::Controls::Base* control : Controls()) {
        if (!control->UsesCamera() && !control->UsesLight())
            continue;
        // A host that changed its camera or light without saying so still gets a right picture.
        bool stale = (camera && control->UsesCamera()) || (light && control->UsesLight());
        const SceneState now = SceneState::Of(control->SceneCamera(), control->SceneLight());
        SceneState& drawn = sceneStates_[control->GetId()];
        if (!(now == drawn)) {
            drawn = now;
            stale = true;
        }
        if (stale)
            control->SetNeedsRedraw(true);
    }
    SetCameraUpdated(false);
    SetLightUpdated(false);

    updating_ = false;
    if (!NeedsRedraw() || !renderer_ || !atlas_ || !layerFramebuffer_)
        return;
    updating_ = true;

    // Whatever the host had bound (its own framebuffer, program, vertex array) comes back afterwards.
    // Opened when the first GL call comes: an update in which only scene widgets drawn into the
    // host's frame changed makes none, and on a software rasteriser saving and setting the host's
    // state can cost more than such a frame's draws.
    std::optional<GL::GLScopedBindings> hostState;
    auto touchGL = [&hostState] {
        if (hostState)
            return;
        hostState.emplace();
        // A host's scissor would clip the layers; the bindings put it back.
        glDisable(GL_SCISSOR_TEST);
        GB_CHECK_GL(kFile);
    };
    // Without a texture barrier in the context only finishing every draw keeps the target reads
    // defined; with one, barriers are issued where draws overlap and nothing waits.
    const bool strict = strictSynchronisation_ || !GUI::Renderer::detail::TextureBarrierAvailable();
    GUI::Renderer::detail::SetStrictBarriers(strict);
    GUI::Renderer::detail::AllowTargetFetch(framebufferFetch_);

    // Only roots composite a cached layer; a stale animatable child is redrawn inside its root. When
    // only cached roots changed, the layers are redrawn just where they were and are now composited;
    // anything else (a root without a cached layer, a new or removed root, a new order) redraws all.
    bool whole = strict || layersWhole_ || animating;
    GUI::Geometry::Rectangle damage{0, 0, 0, 0};
    bool damaged = false;
    auto include = [](GUI::Geometry::Rectangle& into, bool& any, const GUI::Geometry::Rectangle& r) {
        if (r.Width() <= 0 || r.Height() <= 0)
            return; // covers no pixel
        if (!any)
            into = r;
        into.Include(r);
        any = true;
    };
    // The same pass keeps each cached root's footprint (computed again only when the root changed,
    // or moves under an animation) and the composite's bounds: their union, or the whole view as
    // soon as a visible root draws without a cached layer and without saying where.
    compositeWhole_ = false;
    bool bounded = false;
    // Every visible root in drawing order with where it lands. A root that can be drawn straight
    // into the host's frame keeps its damage aside until it is known whether it will be.
    std::vector<DrawnRoot> drawn;
    const bool direct = directAllowed();
    bool anyStale = false;
    for (GUI::Controls::Base* control : Controls()) {
        if (control->HasParent())
            continue;
        const bool stale = control->NeedsRedraw();
        anyStale = anyStale || stale;
        if (stale && !(direct && !control->Animatable() && control->CanDrawDirect()))
            touchGL();
        control->DrawToTexture(atlas_);
        if (!control->Animatable()) {
            // Drawn below, straight into the layers. A root that says where it draws is redrawn only
            // there; an invisible one draws nothing (an empty footprint); any other redraws all.
            DrawnRoot entry;
            entry.control = control;
            entry.knows = !control->Visible() || control->LayerFootprint(width_, height_, entry.area);
            entry.stale = stale;
            auto known = footprints_.find(control->GetId());
            entry.hadArea = known != footprints_.end();
            if (entry.hadArea)
                entry.before = known->second;
            entry.straight = !control->CanDrawDirect();
            entry.candidate = direct && entry.knows && entry.hadArea && control->Visible() &&
                              control->Enabled() && !control->HasChildren() && !entry.straight;
            if (stale) {
                // Asked whenever the root is stale, so that it forgets what it collected.
                const std::size_t before = damagePieces_.size();
                const bool confined = control->TakeLayerDamage(damagePieces_);
                if (!entry.hadArea || !entry.knows)
                    whole = true;
                else
                    entry.wholeArea = !confined || !control->Visible() || !(entry.area == entry.before);
                if (!entry.wholeArea)
                    entry.pieces.assign(damagePieces_.begin() + static_cast<std::ptrdiff_t>(before),
                                        damagePieces_.end());
                damagePieces_.resize(before);
            }
            if (entry.knows) {
                footprints_.insert_or_assign(control->GetId(), entry.area);
            } else {
                if (known != footprints_.end())
                    footprints_.erase(known);
                compositeWhole_ = true;
            }
            control->ClearNeedsRedraw();
            drawn.push_back(std::move(entry));
            continue;
        }
        auto known = footprints_.find(control->GetId());
        // A root that stays where it was and redrew part of its layer changes only what that part
        // covers in the composite, not its whole footprint.
        GUI::Geometry::Rectangle part{0, 0, 0, 0};
        const bool inPlace =
            stale && known != footprints_.end() && control->Visible() && control->RedrewOnlyRegion(part);
        if (stale && !inPlace) {
            if (known == footprints_.end())
                whole = true;
            else
                include(damage, damaged, known->second);
        }
        if (!control->Visible()) {
            if (known != footprints_.end())
                footprints_.erase(known);
            continue;
        }
        if (stale || animating || known == footprints_.end()) {
            using GUI::Renderer::OpenglRenderer;
            GUI::Animation::Frame& frame = *control->GetLocalFrameAnimation();
            GUI::Geometry::Rectangle now =
                OpenglRenderer::CachedLayerFootprint(frame, control->GetRenderRectangle(), control->Center());
            if (inPlace && now == known->second) {
                if (part.Width() > 0 && part.Height() > 0)
                    include(damage, damaged,
                            OpenglRenderer::CachedLayerFootprint(frame, control->GetRenderRectangle(),
                                                                 control->Center(), &part));
            } else if (stale) {
                include(damage, damaged, now);
                if (inPlace)
                    include(damage, damaged, known->second);
            }
            known = footprints_.insert_or_assign(control->GetId(), now).first;
        }
        drawn.emplace_back();
        drawn.back().control = control;
        drawn.back().area = known->second;
    }
    std::vector<unsigned int> placed;
    const std::size_t placedUnder = placeDirectRoots(drawn, placed);
    std::vector<GUI::Geometry::Rectangle> areas;
    for (DrawnRoot& d : drawn) {
        const bool wasDirect = drawnDirectly(d.control->GetId());
        if (d.candidate) {
            // Its colour is not in the layers: they change only where it leaves them. Its ids are,
            // stale wherever it was or is until something reads them.
            if (!wasDirect)
                include(damage, damaged, d.before);
            if (d.stale || !wasDirect) {
                bool any = staleIds_.Width() > 0 && staleIds_.Height() > 0;
                include(staleIds_, any, d.area);
                include(staleIds_, any, d.before);
            }
            continue;
        }
        if (!d.control->Animatable()) {
            if (wasDirect || d.wholeArea) {
                include(damage, damaged, d.before);
                include(damage, damaged, d.area);
            } else {
                damagePieces_.insert(damagePieces_.end(), d.pieces.begin(), d.pieces.end());
            }
            if (!d.knows)
                continue;
        }
        include(compositeBounds_, bounded, d.area);
        areas.push_back(d.area);
    }
    directUnder_ = placedUnder;
    directRoots_ = std::move(placed);
    if (!bounded)
        compositeBounds_ = {0, 0, 0, 0};
    setCompositeAreas(std::move(areas));
    // Marked with no root stale: the host asks for the layers anew (after changing something the
    // controls cannot see), which the plain update answers by redrawing everything.
    whole = whole || !anyStale;
    layersWhole_ = false;
    regions_.clear();
    if (whole) {
        regions_.push_back({0, width_, 0, height_});
        staleIds_ = {0, 0, 0, 0}; // every root's ids are drawn now
    } else {
        // The damaged pieces, each redrawn in a pass of its own where they cover much less than their
        // bounding box (a hover marker at one end of a chart and its readout at the other); each pass
        // clears and redraws its piece whole, so pieces may overlap.
        auto clipped = [this](const GUI::Geometry::Rectangle& r) {
            return GUI::Geometry::Rectangle{std::max(r.xMin, 0), std::min(r.xMax, width_),
                                            std::max(r.yMin, 0), std::min(r.yMax, height_)};
        };
        auto area = [](const GUI::Geometry::Rectangle& r) {
            return r.Width() > 0 && r.Height() > 0 ? std::int64_t(r.Width()) * r.Height() : std::int64_t(0);
        };
        GUI::Geometry::Rectangle all{0, 0, 0, 0};
        bool any = false;
        std::int64_t covered = 0;
        if (damaged)
            damagePieces_.push_back(damage);
        for (const GUI::Geometry::Rectangle& piece : damagePieces_) {
            const GUI::Geometry::Rectangle r = clipped(piece);
            if (area(r) == 0)
                continue;
            regions_.push_back(r);
            include(all, any, r);
            covered += area(r);
        }
        constexpr std::size_t kMostPasses = 4;
        if (regions_.size() > kMostPasses || (regions_.size() > 1 && covered * 2 > area(all)))
            regions_.assign(1, all);
    }
    damagePieces_.clear();
    if (regions_.empty()) {
        // Only off-screen or invisible changes: the layers stay as they are.
        updating_ = false;
        needsRedraw_ = false;
        return;
    }

    touchGL();
    glBindFramebuffer(GL_FRAMEBUFFER, layerFramebuffer_);
    GB_CHECK_GL(kFile);
    if (glCheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE)
        LogFile::Instance().AddLine(LogLevel::Warning,
                                    "GUIManager::UpdateLayers(): There is a problem with the FBO\n");
    GB_CHECK_GL(kFile);
    glViewport(0, 0, width_, height_);
    GB_CHECK_GL(kFile);
    for (const GUI::Geometry::Rectangle& region : regions_)
        drawLayerRegion(whole ? nullptr : &region, strict);
    {
        if (strict) {
            glFinish();
            GB_CHECK_GL(kFile);
        } else {
            // Nothing waits here; the first pick after this update waits for it instead. (Reading
            // the id layer through the pick framebuffer is not ordered after drawing into it through
            // the layer framebuffer on every driver.)
            deleteLayersFence();
            layersFence_ = glFenceSync(GL_SYNC_GPU_COMMANDS_COMPLETE, 0);
            GB_CHECK_GL(kFile);
        }
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
        GB_CHECK_GL(kFile);
    }
    updating_ = false;
    needsRedraw_ = !animations_.empty();
    layerUpdateTime_ += static_cast<int32_t>(GUI::Clock::Ticks() - t0);
    ++layerUpdateCount_;
}

std::size_t GUIManager::placeDirectRoots(std::vector<DrawnRoot>& drawn, std::vector<unsigned int>& placed) {
    // A root is drawn into the host's frame under the composite when nothing drawn before it into the
    // layers overlaps it, or over the composite when nothing drawn after it does: either way the
    // picture is the one the layers would give. Roots drawn under come first, walking forward; of the
    // rest, those drawn over, walking back. A root under cannot follow an overlapping root over (that
    // one would have had to go under too), so overlapping direct roots keep their order.
    auto clear = [](const std::vector<GUI::Geometry::Rectangle>& drawnAlready,
                    const GUI::Geometry::Rectangle& a) {
        return std::none_of(drawnAlready.begin(), drawnAlready.end(), [&](const GUI::Geometry::Rectangle& b) {
            return a.xMin < b.xMax && b.xMin < a.xMax && a.yMin < b.yMax && b.yMin < a.yMax;
        });
    };
    // Going under also needs every root drawn over it later to compose as one coverage over what
    // it finds, as cached layers and the scene widgets do; a root drawing straight into the layers
    // may not (text takes its coverage per colour channel), so none of those may overlap it.
    std::vector<unsigned int> over; // walking back
    std::vector<GUI::Geometry::Rectangle> others;
    bool anywhere = false; // a root that does not say where it draws covers everything
    for (std::size_t i = 0; i < drawn.size(); ++i) {
        DrawnRoot& d = drawn[i];
        const auto laterOverlaps = [&] {
            for (std::size_t j = i + 1; j < drawn.size(); ++j)
                if (drawn[j].straight && drawn[j].control->Visible() &&
                    (!drawn[j].knows || !clear({drawn[j].area}, d.area)))
                    return true;
            return false;
        };
        if (d.candidate && !anywhere && clear(others, d.area) && !laterOverlaps()) {
            d.under = true;
            placed.push_back(d.control->GetId());
        } else if (!d.knows) {
            anywhere = true;
        } else if (d.control->Visible()) {
            others.push_back(d.area);
        }
    }
    others.clear();
    anywhere = false;
    for (auto it = drawn.rbegin(); it != drawn.rend(); ++it) {
        if (it->under)
            continue;
        if (it->candidate && !anywhere && clear(others, it->area)) {
            over.push_back(it->control->GetId());
            continue;
        }
        it->candidate = false;
        if (!it->knows)
            anywhere = true;
        else if (it->control->Visible())
            others.push_back(it->area);
    }
    const std::size_t under = placed.size();
    placed.insert(placed.end(), over.rbegin(), over.rend());
    return under;
}

void GUIManager::drawLayerRegion(const GUI::Geometry::Rectangle* region, bool strict) {
    if (region) {
        glEnable(GL_SCISSOR_TEST);
        GB_CHECK_GL(kFile);
        glScissor(region->xMin, region->yMin, region->Width(), region->Height());
        GB_CHECK_GL(kFile);
    }

    // The float clear on the integer id layer and the unsigned clear on the colour layer are the
    // established clear sequence; what drawing relies on is ids 0 (no control) and depth 1.0.
    const GLfloat zeros[4] = {0.f, 0.f, 0.f, 0.f};
    const GLfloat farDepth[1] = {1.f};
    const GLuint colorClear[4] = {0, 0, 0, 0xFFFFFFFFu};
    const GLenum idBuffer = GL_COLOR_ATTACHMENT1;
    const GLenum colorBuffer = GL_COLOR_ATTACHMENT0;
    glDrawBuffers(1, &idBuffer);
    GB_CHECK_GL(kFile);
    glClearBufferfv(GL_COLOR, 0, zeros);
    GB_CHECK_GL(kFile);
    glClearBufferfv(GL_DEPTH, 0, farDepth);
    GB_CHECK_GL(kFile);
    glDrawBuffers(1, &colorBuffer);
    GB_CHECK_GL(kFile);
    glClearBufferuiv(GL_COLOR, 0, colorClear);
    GB_CHECK_GL(kFile);

    const GLenum both[2] = {GL_COLOR_ATTACHMENT0, GL_COLOR_ATTACHMENT1};
    glDrawBuffers(2, both);
    GB_CHECK_GL(kFile);
    glActiveTexture(GL_TEXTURE9);
    GB_CHECK_GL(kFile);
    glBindTexture(GL_TEXTURE_2D, colorLayer_);
    GB_CHECK_GL(kFile);
    glActiveTexture(GL_TEXTURE10);
    GB_CHECK_GL(kFile);
    glBindTexture(GL_TEXTURE_2D, idLayer_);
    GB_CHECK_GL(kFile);

    GUI::Renderer::detail::TargetChanged();
    GUI::Renderer::detail::SetDrawRegion(region);
    {
        std::unique_ptr<GL::GLScopedSetter> state = renderer_->SetRenderAttributes();
        for (GUI::Controls::Base* control : Controls()) {
            // A root drawn into the host's frame leaves its colour out of the layers, not its ids: a
            // blend that keeps the target's colour (integer attachments, the ids, are never blended).
            // Not a colour mask: the widgets' own state guards set the full mask.
            const bool idsOnly =
                !directRoots_.empty() && !control->HasParent() && drawnDirectly(control->GetId());
            if (idsOnly) {
                glEnable(GL_BLEND);
                GB_CHECK_GL(kFile);
                glBlendFunc(GL_ZERO, GL_ONE);
                GB_CHECK_GL(kFile);
            }
            control->Draw(atlas_);
            if (idsOnly) {
                glDisable(GL_BLEND);
                GB_CHECK_GL(kFile);
            }
            if (strict) {
                glFlush();
                GB_CHECK_GL(kFile);
            }
        }
    }
}

void GUIManager::Draw() {
    if (!compositeProgram_ || !colorLayer_)
        return;
    drawDirect(true);
    composite();
    drawDirect(false);
}

void GUIManager::drawDirect(bool under) {
    const std::size_t from = under ? 0 : directUnder_, to = under ? directUnder_ : directRoots_.size();
    if (from >= to || !atlas_)
        return;
    // Where picking believes the overlay is, in the host's scissor if it set one.
    GL::GLScopedBindings hostState;
    glViewport(origin_.x, origin_.y, width_, height_);
    GB_CHECK_GL(kFile);
    // The widgets' direct builds compose over transparent black; the blend lays that over the host's
    // pixels as the composite lays the layer (alpha included).
    glEnable(GL_BLEND);
    GB_CHECK_GL(kFile);
    glBlendFuncSeparate(GL_ONE, GL_ONE_MINUS_SRC_ALPHA, GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    GB_CHECK_GL(kFile);
    GUI::Renderer::detail::SetDirectTarget(true);
    for (std::size_t i = from; i < to; ++i)
        if (GUI::Controls::Base* control = addressed(directRoots_[i]))
            control->Draw(atlas_);
    GUI::Renderer::detail::SetDirectTarget(false);
}

void GUIManager::composite() {
    // Only what the overlay holds is composited: where the layer is empty the blend would change
    // nothing, and on a software rasteriser every covered pixel costs.
    const GUI::Geometry::Rectangle view{0, width_, 0, height_};
    // Each area is composited once: they are disjoint, so no pixel is blended twice.
    std::vector<GUI::Geometry::Rectangle> areas;
    if (compositeWhole_) {
        areas.push_back(view);
    } else {
        for (GUI::Geometry::Rectangle b : compositeAreas_) {
            if (upsideDown_) // the composite mirrors the layer vertically
                b = {b.xMin, b.xMax, height_ - b.yMax, height_ - b.yMin};
            const GUI::Geometry::Rectangle area{std::max(b.xMin, 0), std::min(b.xMax, width_),
                                                std::max(b.yMin, 0), std::min(b.yMax, height_)};
            if (area.Width() > 0 && area.Height() > 0)
                areas.push_back(area);
        }
        if (areas.empty())
            return;
    }
    // The host's state, scissor box and viewport included, comes back afterwards. The overlay lands
    // where picking believes it is, whatever viewport the host left bound.
    GL::GLScopedBindings hostState;
    glEnable(GL_BLEND);
    GB_CHECK_GL(kFile);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    GB_CHECK_GL(kFile);
    glViewport(origin_.x, origin_.y, width_, height_);
    GB_CHECK_GL(kFile);
    // Within a scissor the host set for its own reasons.
    GLint box[4] = {0, 0, 0, 0};
    const bool hostScissor = glIsEnabled(GL_SCISSOR_TEST);
    if (hostScissor)
        glGetIntegerv(GL_SCISSOR_BOX, box);
    const bool unscissored = compositeWhole_ && !hostScissor;
    for (GUI::Geometry::Rectangle& area : areas) {
        if (unscissored)
            break;
        using GUI::Geometry::AddSaturated;
        area = {AddSaturated(area.xMin, origin_.x), AddSaturated(area.xMax, origin_.x),
                AddSaturated(area.yMin, origin_.y), AddSaturated(area.yMax, origin_.y)};
        if (hostScissor)
            area = {std::max(area.xMin, box[0]), std::min(area.xMax, box[0] + box[2]),
                    std::max(area.yMin, box[1]), std::min(area.yMax, box[1] + box[3])};
    }
    // Explicit gamma correction is a program of its own, built when first asked for, so that the
    // plain composite carries no per-pixel branch for it.
    GLSLProgram* composite = compositeProgram_.get();
    if (explicitGammaCorrection_) {
        if (!gammaProgram_) {
            gammaProgram_ = std::make_unique<GLSLProgram>();
            gammaProgram_->addShader("UICompositShader.vert");
            gammaProgram_->addShader("UICompositShaderGamma.frag");
            gammaProgram_->linkProgram();
        }
        if (gammaProgram_->isLinked())
            composite = gammaProgram_.get();
    }
    composite->begin();
    GLuint program = composite->getProgram();
    glUniform1i(GUI::Renderer::detail::UniformLocationQuiet(program, "ExplicitGammaCorrection"),
                explicitGammaCorrection_ ? 1 : 0);
    GB_CHECK_GL(kFile);

    // Maps the unit square onto the whole view.
    const GLfloat projection[16] = {2, 0, 0, 0, 0, 2, 0, 0, 0, 0, -1, 0, -1, -1, 0, 1};
    const GLfloat identity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    glUniformMatrix4fv(GUI::Renderer::detail::UniformLocation(program, "ProjectionMatrix"), 1, GL_FALSE,
                       projection);
    GB_CHECK_GL(kFile);
    glUniformMatrix4fv(GUI::Renderer::detail::UniformLocationQuiet(program, "ModelViewMatrix"), 1, GL_FALSE,
                       identity);
    GB_CHECK_GL(kFile);

    glActiveTexture(GL_TEXTURE15);
    GB_CHECK_GL(kFile);
    glBindTexture(GL_TEXTURE_2D, colorLayer_);
    GB_CHECK_GL(kFile);
    glUniform1i(GUI::Renderer::detail::UniformLocation(program, "texid_UI"), 15);
    GB_CHECK_GL(kFile);

    // Hands what the host drew so far to the driver before the layer is sampled: a software rasteriser
    // otherwise finishes the host's pending drawing (its full-view clear, say) on this thread before
    // it lets the layer be read, which made an idle frame cost the host's pixels.
    glFlush();
    GB_CHECK_GL(kFile);
    glBindVertexArray(quadVertexArray_);
    GB_CHECK_GL(kFile);
    for (const GUI::Geometry::Rectangle& area : areas) {
        if (!unscissored && (area.Width() <= 0 || area.Height() <= 0))
            continue;
        if (unscissored) {
            glDisable(GL_SCISSOR_TEST);
        } else {
            glEnable(GL_SCISSOR_TEST);
            glScissor(area.xMin, area.yMin, area.Width(), area.Height());
        }
        GB_CHECK_GL(kFile);
        // Four vertices: the quad's whole contents.
        glDrawArrays(GL_TRIANGLE_FAN, 0, 4);
        GB_CHECK_GL(kFile);
    }
    glBindVertexArray(0);
    GB_CHECK_GL(kFile);
    composite->end();
}

void GUIManager::setCompositeAreas(std::vector<GUI::Geometry::Rectangle> areas) {
    // Overlapping footprints are merged until none overlap; past a handful the union bounds serve.
    constexpr size_t kMostAreas = 8;
    auto overlap = [](const GUI::Geometry::Rectangle& a, const GUI::Geometry::Rectangle& b) {
        return a.xMin < b.xMax && b.xMin < a.xMax && a.yMin < b.yMax && b.yMin < a.yMax;
    };
    areas.erase(
        std::remove_if(areas.begin(), areas.end(),
                       [](const GUI::Geometry::Rectangle& r) { return r.Width() <= 0 || r.Height() <= 0; }),
        areas.end());
    for (bool merged = true; merged && areas.size() <= 4 * kMostAreas;) {
        merged = false;
        for (size_t i = 0; i < areas.size() && !merged; ++i)
            for (size_t j = i + 1; j < areas.size() && !merged; ++j)
                if (overlap(areas[i], areas[j])) {
                    areas[i].Include(areas[j]);
                    areas.erase(areas.begin() + static_cast<std::ptrdiff_t>(j));
                    merged = true;
                }
    }
    if (areas.size() > kMostAreas)
        areas.assign(1, compositeBounds_);
    compositeAreas_ = std::move(areas);
}

void GUIManager::deleteLayersFence() {
    if (layersFence_) {
        glDeleteSync(static_cast<GLsync>(layersFence_));
        GB_CHECK_GL(kFile);
        layersFence_ = nullptr;
    }
}

void GUIManager::WaitForLayers() {
    if (!layersFence_)
        return;
    // Long enough for any real update; a lost context or a hung driver must not hang the host.
    constexpr GLuint64 kTimeout = 5'000'000'000ull;
    glClientWaitSync(static_cast<GLsync>(layersFence_), GL_SYNC_FLUSH_COMMANDS_BIT, kTimeout);
    GB_CHECK_GL(kFile);
    deleteLayersFence();
}

void GUIManager::refreshIds(const GUI::Geometry::Rectangle& region) {
    const GUI::Geometry::Rectangle r{
        std::max(region.xMin, staleIds_.xMin), std::min(region.xMax, staleIds_.xMax),
        std::max(region.yMin, staleIds_.yMin), std::min(region.yMax, staleIds_.yMax)};
    if (r.Width() <= 0 || r.Height() <= 0 || !layerFramebuffer_ || !renderer_ || !atlas_)
        return;
    GL::GLScopedBindings hostState;
    const bool strict = strictSynchronisation_ || !GUI::Renderer::detail::TextureBarrierAvailable();
    GUI::Renderer::detail::SetStrictBarriers(strict);
    GUI::Renderer::detail::AllowTargetFetch(framebufferFetch_);
    glDisable(GL_SCISSOR_TEST);
    GB_CHECK_GL(kFile);
    glBindFramebuffer(GL_FRAMEBUFFER, layerFramebuffer_);
    GB_CHECK_GL(kFile);
    glViewport(0, 0, width_, height_);
    GB_CHECK_GL(kFile);
    // The colour comes out as it was: the same roots redraw it.
    drawLayerRegion(&r, strict);
    deleteLayersFence();
    layersFence_ = glFenceSync(GL_SYNC_GPU_COMMANDS_COMPLETE, 0);
    GB_CHECK_GL(kFile);
    if (r == staleIds_)
        staleIds_ = {0, 0, 0, 0};
}

unsigned int GUIManager::GetIdLayer() const {
    // The ids are a cache of the picture; bringing them up to date changes nothing a caller sees.
    auto* self = const_cast<GUIManager*>(this);
    self->refreshIds(self->staleIds_);
    return idLayer_;
}

bool GUIManager::HitDetect(int x, int y, unsigned int* pid, unsigned int* sid) {
    unsigned int ignored = 0;
    if (!pid)
        pid = &ignored;
    if (!sid)
        sid = &ignored;
    *pid = 0;
    *sid = 0;
    if (x < 0 || x >= width_ || y < 0 || y >= height_ || !pickFramebuffer_)
        return true;
    // The one pixel asked for is enough: scene widgets drawn directly move on every camera change.
    refreshIds({x, x + 1, y, y + 1});
    // Read through the pick framebuffer (the id layer is its read buffer); the host's read framebuffer
    // and pixel-pack state come back afterwards.
    GL::GLScopedBindings hostState;
    glBindFramebuffer(GL_READ_FRAMEBUFFER, pickFramebuffer_);
    GB_CHECK_GL(kFile);
    GLuint texel[4] = {0, 0, 0, 0};
    WaitForLayers();
    glReadPixels(x, y, 1, 1, GL_RGBA_INTEGER, GL_UNSIGNED_INT, texel);
    GB_CHECK_GL(kFile);
    *pid = texel[0];
    *sid = texel[1];
    return true;
}

bool GUIManager::Locate(GUI::Controls::Base* control, unsigned int part, PartLocation& where) {
    if (!control || !Contains(control->GetId()) || Find(control->GetId()) != control) {
        std::printf("GUIManager::Locate(): The control is null or not registered with this manager.\n");
        return false;
    }
    std::vector<GLuint> ids(static_cast<size_t>(width_) * static_cast<size_t>(height_) * 4);
    refreshIds(staleIds_);
    if (pickFramebuffer_ && !ids.empty()) {
        GL::GLScopedBindings hostState;
        glBindFramebuffer(GL_READ_FRAMEBUFFER, pickFramebuffer_);
        GB_CHECK_GL(kFile);
        WaitForLayers();
        glReadPixels(0, 0, width_, height_, GL_RGBA_INTEGER, GL_UNSIGNED_INT, ids.data());
        GB_CHECK_GL(kFile);
    }
    const unsigned int pid = control->GetId();
    auto is = [&](int x, int y) {
        if (x < 0 || x >= width_ || y < 0 || y >= height_)
            return false;
        const GLuint* t = &ids[(static_cast<size_t>(y) * width_ + x) * 4];
        return t[0] == pid && (part == kAnyPart || t[1] == part);
    };
    PartLocation found;
    found.overlay = {width_, 0, height_, 0};
    long long sumX = 0, sumY = 0;
    for (int y = 0; y < height_; ++y)
        for (int x = 0; x < width_; ++x)
            if (is(x, y)) {
                found.overlay = {std::min(found.overlay.xMin, x), std::max(found.overlay.xMax, x + 1),
                                 std::min(found.overlay.yMin, y), std::max(found.overlay.yMax, y + 1)};
                sumX += x, sumY += y, ++found.pixels;
            }
    if (found.pixels == 0) {
        std::printf("GUIManager::Locate(): Control %u draws no pixels with part %u.\n", pid, part);
        return false;
    }
    // The pixel nearest the middle, preferring one whose neighbours two pixels away are the part too,
    // so that a pointer a little off still lands on it.
    const double cx = static_cast<double>(sumX) / found.pixels, cy = static_cast<double>(sumY) / found.pixels;
    double best = -1.0;
    for (int y = found.overlay.yMin; y < found.overlay.yMax; ++y)
        for (int x = found.overlay.xMin; x < found.overlay.xMax; ++x) {
            if (!is(x, y))
                continue;
            const bool deep = is(x + 2, y) && is(x - 2, y) && is(x, y + 2) && is(x, y - 2);
            const double score = (x - cx) * (x - cx) + (y - cy) * (y - cy) + (deep ? 0.0 : 1e12);
            if (best < 0.0 || score < best) {
                best = score;
                found.overlayPixel = {x, y};
            }
        }
    found.host = {found.overlay.xMin, found.overlay.xMax, HostRow(found.overlay.yMax - 1),
                  HostRow(found.overlay.yMin) + 1};
    found.hostPixel = {found.overlayPixel.x, HostRow(found.overlayPixel.y)};
    where = found;
    return true;
}

bool GUIManager::AddAnimation(GUI::Animation::Sequence* sequence) {
    if (!sequence) {
        LogFile::Instance().AddLine(LogLevel::Warning, "GUIManager::AddAnimation(): The sequence is null.\n");
        return false;
    }
    if (std::find(animations_.begin(), animations_.end(), sequence) != animations_.end()) {
        LogFile::Instance().AddLine(LogLevel::Warning,
                                    "GUIManager::AddAnimation(): The sequence is already running.\n");
        return false;
    }
    // Only a control of this registry is sure to cancel its sequences when it is destroyed.
    GUI::Controls::Base* control = sequence->GetControl();
    if (!control || Find(control->GetId()) != control) {
        LogFile::Instance().AddLine(LogLevel::Warning,
                                    "GUIManager::AddAnimation(): The sequence's control is not "
                                    "registered with this manager; the sequence is refused.\n");
        return false;
    }
    animations_.push_back(sequence);
    SetNeedsRedraw(true);
    return true;
}

bool GUIManager::ClearAnimationOnControl(GUI::Controls::Base* control) {
    if (!control)
        return false;
    for (size_t i = animations_.size(); i-- > 0;) {
        GUI::Animation::Sequence* s = animations_[i];
        if (!s || s->GetControl() != control)
            continue;
        if (updating_) {
            // A sequence may be running right now: keep its slot and delete it after the loop.
            animations_[i] = nullptr;
            cancelled_.push_back(s);
        } else {
            animations_[i] = animations_.back();
            animations_.pop_back();
            delete s;
        }
    }
    return true;
}

DrawFlags GUIManager::cancelDrag() {
    if (!(pointer_.buttons & VX_UI::BUTTON_LEFT))
        return DRAW_NOTHING;
    GUI::Controls::Base* captured = addressed(pointer_.pid);
    if (!captured)
        return DRAW_NOTHING;
    GUI::Event event = controlEvent(pointer_);
    return captured->OnCancelDrag(&event);
}

DrawFlags GUIManager::keyPress(VX_UI::KeyEvent* e) {
    constexpr unsigned int kEscapeSdl = 27, kEscapeGlfw = 256, kEscapeQt = 0x01000000;
    if (!e)
        return DRAW_NOTHING;
    modifiers_ = e->modifiers;
    if (e->key != kEscapeSdl && e->key != kEscapeGlfw && e->key != kEscapeQt)
        return DRAW_NOTHING;
    const DrawFlags result = cancelDrag();
    if (result != DRAW_NOTHING)
        e->accepted = 1;
    return result;
}

DrawFlags GUIManager::keyRelease(VX_UI::KeyEvent* e) {
    if (e)
        modifiers_ = e->modifiers;
    return DRAW_NOTHING;
}

DrawFlags GUIManager::mousePressEvent(VX_UI::MouseEvent* e) {
    modifiers_ = static_cast<unsigned int>(e->modifiers);
    // Another button pressed during a left-button drag may cancel it; the drag keeps the pointer.
    if (e->buttons & ~VX_UI::BUTTON_LEFT) {
        const DrawFlags cancelled = cancelDrag();
        if (cancelled != DRAW_NOTHING)
            return cancelled;
    }
    DrawFlags result = DRAW_NOTHING;
    if (e->buttons & VX_UI::BUTTON_LEFT) {
        HitDetect(e->x, OverlayRow(e->y), &e->pid, &e->sid);
        pressTime_ = GUI::Clock::Ticks();
        if (GUI::Controls::Base* control = addressed(e->pid)) {
            GUI::Event event = controlEvent(*e);
            DrawFlags r = control->OnMouseDown(&event);
            // The handler may have deleted the control: look it up again.
            control = addressed(e->pid);
            if (!control) {
                pointer_ = *e;
                return r | DRAW_OVERLAY;
            }
            // Bring the whole tree to the front: the root is drawn last. Widgets of the 3D scene
            // stay where they are, beneath the panels that float over the scene.
            GUI::Controls::Base* root = control;
            while (root->Parent())
                root = root->Parent();
            auto& list = Controls();
            auto it = std::find(list.begin(), list.end(), root);
            if (it != list.end() && !root->UsesCamera() && !root->UsesLight()) {
                list.erase(it);
                list.push_back(root);
                layersWhole_ = true; // a new drawing order
            }
            result = r | DRAW_OVERLAY;
        }
    }
    pointer_ = *e;
    return result;
}

DrawFlags GUIManager::mouseMoveEvent(VX_UI::MouseEvent* e) {
    modifiers_ = static_cast<unsigned int>(e->modifiers);
    DrawFlags result = DRAW_NOTHING;
    if (e->buttons == 0) {
        HitDetect(e->x, OverlayRow(e->y), &e->pid, &e->sid);
        unsigned int last = pointer_.pid;
        if (e->pid != last) {
            if (GUI::Controls::Base* previous = addressed(last)) {
                GUI::Event event = controlEvent(pointer_);
                result |= previous->OnMouseExit(&event);
            }
            if (GUI::Controls::Base* current = addressed(e->pid)) {
                GUI::Event event = controlEvent(*e);
                result |= current->OnMouseEnter(&event);
            }
        } else if (GUI::Controls::Base* current = addressed(e->pid)) {
            GUI::Event event = controlEvent(*e);
            result = current->OnMouseHover(&event);
        }
    } else if (e->buttons == VX_UI::BUTTON_LEFT) {
        // The pressed control captures the pointer until release; no hit test while dragging.
        if (GUI::Controls::Base* captured = addressed(pointer_.pid)) {
            GUI::Event event = controlEvent(pointer_);
            result = captured->OnMouseDrag(&event, GUI::Geometry::SubSaturated(e->x, e->prevX),
                                           GUI::Geometry::SubSaturated(e->prevY, e->y));
            e->pid = pointer_.pid;
            e->sid = pointer_.sid;
        }
    }
    pointer_ = *e;
    return result;
}

DrawFlags GUIManager::mouseReleaseEvent(VX_UI::MouseEvent* e) {
    modifiers_ = static_cast<unsigned int>(e->modifiers);
    DrawFlags result = DRAW_NOTHING;
    if ((pointer_.buttons & VX_UI::BUTTON_LEFT) && pointer_.pid != 0 && Contains(pointer_.pid)) {
        const unsigned int pressed = pointer_.pid;
        GUI::Event event = controlEvent(pointer_);
        // Strictly more than the click window after the press is a plain release; a release exactly
        // at its end is still a click.
        if (GUI::Clock::Ticks() > pressTime_ + clickWindow_) {
            result = Find(pressed)->OnMouseUp(&event);
        } else {
            result = Find(pressed)->OnClick(&event);
            // A click handler may have removed the control.
            if (GUI::Controls::Base* control = addressed(pressed))
                result |= control->OnMouseUp(&event);
        }
        HitDetect(e->x, OverlayRow(e->y), &e->pid, &e->sid);
        if (e->pid != pressed)
            if (GUI::Controls::Base* control = addressed(pressed))
                result |= control->OnMouseExit(&event);
        if (GUI::Controls::Base* current = addressed(e->pid)) {
            GUI::Event entered = controlEvent(*e);
            result |= current->OnMouseEnter(&entered);
        }
    }
    pointer_ = *e;
    return result;
}

DrawFlags GUIManager::mouseWheel(VX_UI::MouseWheelEvent* e) {
    if (!e || e->delta == 0)
        return DRAW_NOTHING;
    VX_UI::MouseEvent at = pointer_;
    HitDetect(at.x, OverlayRow(at.y), &at.pid, &at.sid);
    GUI::Event event = controlEvent(at);
    for (GUI::Controls::Base* control = addressed(at.pid); control;) {
        // The handler may delete the control (and its parents): stop if it did.
        const std::weak_ptr<const void> alive = control->LifeToken();
        const DrawFlags result = control->OnMouseWheel(&event, e->delta);
        if (result != DRAW_NOTHING) {
            e->accepted = 1;
            return result;
        }
        if (alive.expired())
            break;
        control = control->Parent();
    }
    return DRAW_NOTHING;
}

bool GUIManager::AddControl(GUI::Controls::Base* control) {
    if (!control) {
        LogFile::Instance().AddLine(LogLevel::Warning, "GUIManager::AddControl(): The control is null.\n");
        return false;
    }
    layersWhole_ = true;
    control->SetManagerRedrawFlag(&needsRedraw_);
    control->SetNeedsRedraw(true);
    return Factory::AddControl(control);
}

bool GUIManager::RemoveControl(GUI::Controls::Base* control) {
    if (!control) {
        LogFile::Instance().AddLine(LogLevel::Warning, "GUIManager::RemoveControl(): The control is null.\n");
        return false;
    }
    ClearAnimationOnControl(control);
    layersWhole_ = true;
    footprints_.erase(control->GetId());
    sceneStates_.erase(control->GetId());
    control->SetManagerRedrawFlag(nullptr);
    SetNeedsRedraw(true);
    return Factory::RemoveControl(control);
}

GUIManager::SceneState GUIManager::SceneState::Of(const Camera* camera, const DirectionalLight* light) {
    SceneState s;
    float* out = s.values.data();
    if (camera) {
        std::memcpy(out, &camera->ViewMatrix()[0][0], 16 * sizeof(float));
        std::memcpy(out + 16, &camera->ProjectionMatrix()[0][0], 16 * sizeof(float));
        out[32] = static_cast<float>(camera->Width());
        out[33] = static_cast<float>(camera->Height());
    }
    if (light) {
        const tgeom::vec4* parts[] = {&light->ambient, &light->diffuse, &light->specular};
        for (int i = 0; i < 3; ++i)
            std::memcpy(out + 34 + 4 * i, &(*parts[i])[0], 4 * sizeof(float));
        std::memcpy(out + 46, &light->position[0], 3 * sizeof(float));
    }
    out[49] = (camera ? 1.f : 0.f) + (light ? 2.f : 0.f);
    return s;
}
} // namespace GUI
