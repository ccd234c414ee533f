#pragma once
// One overlay: renderer, skin atlas, control registry, animations and the off-screen layers.

#include <trelvogui/gui/controlfactory.h>
#include <trelvogui/gui/geometry.h>
#include <trelvogui/gui/guitypes.h>
#include <trelvogui/trelvogui_export.h>

#include <graphicsbase/glrendererbase.h>
#include <graphicsbase/inputhandler.h>

#include <boost/signals2/signal.hpp>

#include <array>
#include <cstdint>
#include <cstring>
#include <map>
#include <memory>
#include <vector>

namespace GraphicsBase {
class GLSLProgram;
}
namespace GraphicsBase {
struct DirectionalLight;
}

namespace GUI {
namespace Renderer {
class Base;
}
namespace Texture {
class Atlas;
}
namespace Animation {
class Sequence;
}

/// The manager of one overlay inside the host's GL view. The host holds it in a std::shared_ptr,
/// which controls receive when they register; it never deletes controls.
///
/// Life cycle, with the host's context current: Initialize, Resize (creates the layers; register
/// root controls after it, as Resize keeps existing roots at their distance from the top edge),
/// then per frame UpdateLayers and Draw after the host's own scene. Pointer events arrive through
/// the InputHandler entry points, directly or through a GUIInputManager. Destroy the manager while
/// its context is current.
class TRELVOGUI_EXPORT GUIManager : public GraphicsBase::GLRendererBase,
                                    public GraphicsBase::InputHandler,
                                    public GUI::Controls::Factory {
public:
    /// Fired when the needs-redraw flag goes from false to true: the host's cue to schedule a frame.
    boost::signals2::signal<void()> RedrawRequestSignal;

    explicit GUIManager(GUI::Renderer::Type type = GUI::Renderer::OpenGL);
    ~GUIManager() override;

    /// Loads the GL entry points it needs (the host need not), then creates the OpenGL renderer, the
    /// skin atlas with the built-in control set and the composite program. False, with a message,
    /// when no OpenGL 3.3 context is current, or when the renderer or the atlas cannot be
    /// initialised.
    virtual bool Initialize();
    /// Builds the composite program and quad (again after SetUpsideDown).
    virtual bool InitializeRenderer();
    virtual bool NeedsRedraw();
    /// New view size: roots keep their distance from the top edge; the layers are recreated and
    /// redrawn.
    virtual void Resize(int width, int height);
    /// (Re)creates the layer framebuffer (colour, ids, depth) and the pick framebuffer.
    virtual void InitLayers();
    /// Advances animations and, only when something is stale, re-renders the layers.
    virtual void UpdateLayers();
    /// True while UpdateLayers runs. A control whose rectangle changes then (a panel fitting itself to
    /// its contents while it is drawn) fires its RectangleChangedSignal after the update, where a
    /// slot may delete it without pulling it from under the drawing.
    bool Updating() const { return updating_; }
    /// Fires the control's RectangleChangedSignal at the end of the running update (once, however
    /// often it is asked for, and not at all when the control is gone by then).
    void DeferRectangleSignal(GUI::Controls::Base* control);
    /// Blocks until the last layer update has landed. HitDetect does this itself; a host that reads
    /// the layers back through its own framebuffer (GetLayerFramebuffer) calls it first, since the
    /// fast update returns before the drawing is done.
    void WaitForLayers();
    /// Reads the ids under overlay pixel (x, y), y up; both are 0 outside the view. Always true.
    virtual bool HitDetect(int x, int y, unsigned int* pid, unsigned int* sid);
    /// Where a control or one of its parts is drawn in the id layer, for hosts and tests that script
    /// input. Bounds are half-open pixel rectangles; `overlayPixel` hit-tests to the part (a pixel
    /// deep inside it where there is one, near its middle), `hostPixel` is the same pixel as a pointer
    /// position (x, HostRow of its overlay row). Both follow GetExactPointerRows.
    struct PartLocation {
        GUI::Geometry::Rectangle overlay; ///< y up, 0 at the bottom
        GUI::Geometry::Rectangle host;    ///< y down, as pointer positions (HostRow)
        GUI::Geometry::Point overlayPixel;
        GUI::Geometry::Point hostPixel;
        int pixels = 0; ///< how many pixels carry the ids
    };
    /// Any secondary id: Locate finds the whole control.
    static constexpr unsigned int kAnyPart = ~0u;
    /// Reads the id layer back (one full read: not for every frame) and fills `where` for the pixels
    /// of `control` with secondary id `part` (kAnyPart for all). False, with a message and `where`
    /// unchanged, for a null or unregistered control or one with no such pixels in the last update.
    bool Locate(GUI::Controls::Base* control, unsigned int part, PartLocation& where);
    /// Takes ownership of a started sequence; it is deleted when done.
    virtual bool AddAnimation(GUI::Animation::Sequence* sequence);
    /// Deletes every sequence that animates `control`.
    virtual bool ClearAnimationOnControl(GUI::Controls::Base* control);

    /// Blends the colour layer over the current framebuffer with one quad, at the manager's size and
    /// origin whatever viewport the host left bound, so that the picture lands where picking looks.
    void Draw() override;
    void draw() override { Draw(); }

    GraphicsBase::DrawFlags mousePressEvent(GraphicsBase::VX_UI::MouseEvent* e) override;
    GraphicsBase::DrawFlags mouseMoveEvent(GraphicsBase::VX_UI::MouseEvent* e) override;
    GraphicsBase::DrawFlags mouseReleaseEvent(GraphicsBase::VX_UI::MouseEvent* e) override;
    /// Offers the wheel to the control under the pointer (where the last pointer event left it), then
    /// to its parents, until one consumes it.
    GraphicsBase::DrawFlags mouseWheel(GraphicsBase::VX_UI::MouseWheelEvent* e) override;
    /// Escape during a left-button drag (the Escape codes of the SDL, GLFW and Qt backends) offers
    /// the dragged control a cancel; every other key is ignored.
    GraphicsBase::DrawFlags keyPress(GraphicsBase::VX_UI::KeyEvent* e) override;
    /// Only notes the modifiers (see Modifiers).
    GraphicsBase::DrawFlags keyRelease(GraphicsBase::VX_UI::KeyEvent* e) override;
    /// The modifier bits of the latest pointer or key event, in the host backend's own encoding:
    /// for controls whose drags change with a held key.
    unsigned int Modifiers() const { return modifiers_; }

    /// Raises the flag (firing the signal on a false-to-true change); never clears it.
    void SetNeedsRedraw(bool v);
    bool NeedsRedrawForAnimation() const { return !animations_.empty(); }
    /// Mirrors the composite's texture coordinates vertically (rebuilds the quad).
    void SetUpsideDown(bool upsideDown);
    bool GetUpsideDown() const { return upsideDown_; }
    /// Where the view's lower-left corner lies in the host's framebuffer, in pixels (default 0, 0), for
    /// a view that does not start at the window's corner. Draw composites there; pointer events stay in
    /// the view's own pixels.
    void SetOrigin(int x, int y) { origin_ = {x, y}; }
    GUI::Geometry::Point GetOrigin() const { return origin_; }
    /// A release at most this many milliseconds after the press is a click (default 200). Hosts
    /// whose users hold presses longer, as on touchpads, raise it.
    void SetClickWindow(uint64_t milliseconds) { clickWindow_ = milliseconds; }
    uint64_t GetClickWindow() const { return clickWindow_; }

    /// Gives the control the redraw flag, marks it stale and registers it (assigning its id).
    bool AddControl(GUI::Controls::Base* control) override;
    /// Forgets the control: cancels its animations and drops it from the registry; it keeps its id.
    bool RemoveControl(GUI::Controls::Base* control) override;

    GUI::Renderer::Type GetRendererType() const { return rendererType_; }
    GUI::Renderer::Base* GetRenderer() { return renderer_; }
    GUI::Texture::Atlas* GetTextureAtlas() { return atlas_; }
    int GetWidth() const { return width_; }
    /// Views of more pixels are clamped: the layers alone take 24 bytes a pixel (1.5 GiB here; 16 bytes
    /// with compact id layers).
    static constexpr long long kMaxLayerPixels = 64ll * 1024 * 1024;
    /// The largest layer side the context allows (its texture and viewport limits), known after
    /// Initialize. Views and control layers beyond it are clamped with a message.
    int GetMaxLayerSize() const { return maxLayerSize_; }
    int GetHeight() const { return height_; }
    /// Pointer rows. By default host row y (y down, 0 at the top) is overlay row height - y (y up, 0
    /// at the bottom), deliberately height - y and not height - 1 - y: a host y of 0 lands on overlay
    /// row height, outside the view, and host y height on row 0. The same formula turns an overlay
    /// row back into a host row: host row = height - overlay row. The gizmo casts its ray through
    /// window point (x, height - y).
    int OverlayRow(int hostY) const {
        return GUI::Geometry::SubSaturated(exactPointerRows_ ? height_ - 1 : height_, hostY);
    }
    int HostRow(int overlayY) const { return OverlayRow(overlayY); }
    /// Exact pointer rows (off by default): host row y is overlay row height - 1 - y both ways, so a
    /// control's top and bottom rows are exactly the rows the pointer sees on it, and the gizmo casts
    /// its ray through the pixel centre (x + 0.5, height - y - 0.5).
    void SetExactPointerRows(bool on) { exactPointerRows_ = on; }
    bool GetExactPointerRows() const { return exactPointerRows_; }
    /// Display scale (default 1): the window's device-pixel ratio. The 3D widgets multiply every
    /// pixel size by it (the gizmo's handles and distances, the view cube's and light widget's sizes and
    /// margins, the light's degrees per pixel), and the axis, colour bar and legend their tick lengths
    /// and label sizes, so a picture at scale 2 in a view twice as large is the scale-1 picture
    /// enlarged. Controls laid out by the host keep the rectangles it gives them. Scales outside 0.5 to
    /// 4 are refused (false, a message, the scale unchanged); a change redraws everything.
    bool SetDisplayScale(float scale);
    float GetDisplayScale() const { return displayScale_; }
    static constexpr float kMinDisplayScale = 0.5f;
    static constexpr float kMaxDisplayScale = 4.f;
    /// Strict synchronisation draws the layers the plain way: a texture barrier before every draw,
    /// every control flushed and the update finished. By default barriers are issued only where draws
    /// overlap and nothing is flushed or finished; the layers come out the same (a test compares them
    /// bit for bit), and contexts without a texture barrier always use the strict way.
    void SetStrictSynchronisation(bool on) { strictSynchronisation_ = on; }
    bool GetStrictSynchronisation() const { return strictSynchronisation_; }
    /// Where the context offers coherent framebuffer fetch, the default update reads the target
    /// through it instead of sampling it: no barriers at all, and changes of program or texture
    /// between draws stay cheap (with the target among the samplers, a software rasteriser flushes on
    /// each). The layers are the same either way (tested); switch it off for a driver that
    /// misbehaves. Strict synchronisation never uses it.
    void SetFramebufferFetch(bool allowed) { framebufferFetch_ = allowed; }
    bool GetFramebufferFetch() const { return framebufferFetch_; }
    void SetExplicitGammaCorrection(bool on);
    bool GetExplicitGammaCorrection() const { return explicitGammaCorrection_; }
    /// Milliseconds spent in layer updates that re-rendered, and how many updates there were.
    int32_t GetLayerUpdateTime() const { return layerUpdateTime_; }
    int32_t GetLayerUpdateCount() const { return layerUpdateCount_; }
    /// Scene widgets drawn straight into the host's frame (off by default). The gizmo, plane widget,
    /// view cube and light widget follow the camera, so while the host orbits every frame changes
    /// them. With this on, Draw() draws them into the host's framebuffer with their own draws and
    /// nothing else, under or over the composite of the layers, and the layers keep only their ids,
    /// brought up to date when something reads them (a pointer event's hit test, Locate, GetIdLayer):
    /// a camera move then costs no layer update and no composite. Picks are the same as without it,
    /// and so is the picture's colour, but for rounding at translucent edges (the layer's 8-bit round
    /// trip is skipped); the alpha left in the host's frame may differ. A widget is drawn directly
    /// only while it is visible and enabled and no root drawn into the layers before it, or none drawn
    /// after it, overlaps it; the others are drawn as before, and so are all of them when the
    /// composite is upside down or gamma-corrected. Hosts that composite the colour layer themselves
    /// leave it off: the widgets drawn directly are not in that layer.
    void SetDirectSceneWidgets(bool on);
    bool GetDirectSceneWidgets() const { return directSceneWidgets_; }
    /// Compact id layers (off by default): the view's id layer and the roots' cached id layers hold
    /// the two ids alone (GL_RG32UI, 8 bytes a pixel) instead of four words (GL_RGBA32UI, 16 bytes),
    /// which at 1280 x 720 with 40 cached panels saves some 18 MiB. Pictures and picks are the same;
    /// what changes is what a host reading GetIdLayer itself sees: with GL_RGBA_INTEGER a texel reads
    /// (pid, sid, 0, 1) instead of (pid, sid, 0, 0), and a shader needs a usampler2D and .xy. A change
    /// takes effect at the next UpdateLayers, which then recreates the layers and redraws everything.
    void SetCompactIdLayers(bool on);
    bool GetCompactIdLayers() const { return compactIdLayers_; }
    /// The layer textures (for hosts that composite themselves, and for inspection). The id layer
    /// is brought up to date first where directly drawn scene widgets moved since it was drawn.
    unsigned int GetColorLayer() const { return colorLayer_; }
    unsigned int GetIdLayer() const;
    unsigned int GetLayerFramebuffer() const { return layerFramebuffer_; }

private:
    /// Offers the control holding the left-button drag a cancel; DRAW_NOTHING when none takes it.
    GraphicsBase::DrawFlags cancelDrag();
    void deleteLayers();
    void updateLayers();
    /// Clears the layers in `region` (all of them for null) and draws every control there; the roots
    /// drawn directly leave the colour layer alone and write their ids only.
    void drawLayerRegion(const GUI::Geometry::Rectangle* region, bool strict);
    /// A visible root as an update found it, in drawing order.
    struct DrawnRoot {
        GUI::Controls::Base* control = nullptr;
        GUI::Geometry::Rectangle area{0, 0, 0, 0};
        bool knows = true;      // says where it draws
        bool candidate = false; // can be drawn straight into the host's frame (and is, after placing)
        bool under = false;     // and is, under the composite
        bool straight = false;  // drawn into the layers by shaders of its own, not from a cached layer
        bool stale = false;
        bool hadArea = false; // and where it was
        GUI::Geometry::Rectangle before{0, 0, 0, 0};
        bool wholeArea = false;                       // changed all over its old and new footprints
        std::vector<GUI::Geometry::Rectangle> pieces; // or only there
    };
    /// Decides which candidates are drawn straight into the host's frame: their ids into `placed`,
    /// those under the composite first (their count is returned), then those over it, each part in
    /// drawing order. Clears `candidate` of the rest.
    static std::size_t placeDirectRoots(std::vector<DrawnRoot>& drawn, std::vector<unsigned int>& placed);
    /// Whether the roots that can be drawn directly are drawn that way now.
    bool directAllowed() const { return directSceneWidgets_ && !upsideDown_ && !explicitGammaCorrection_; }
    bool drawnDirectly(unsigned int id) const;
    /// Composites the layers into the bound framebuffer where the overlay holds something.
    void composite();
    /// Draws the directly drawn roots that go under the composite, or those that go over it, into the
    /// bound framebuffer.
    void drawDirect(bool under);
    /// Redraws the layers in `region` (overlay pixels) for the ids of directly drawn roots that
    /// changed since they were last drawn there.
    void refreshIds(const GUI::Geometry::Rectangle& region);
    void fireDeferredSignals();
    void deleteLayersFence();
    void setCompositeAreas(std::vector<GUI::Geometry::Rectangle> areas);
    /// Blocks until the last fast layer update has landed (before reading the id layer back).
    void waitForLayers();
    void deleteCompositeQuad();
    GUI::Controls::Base* addressed(unsigned int id) { return Contains(id) ? Find(id) : nullptr; }

    /// What a camera- or light-following control drew with: view, projection, viewport, light.
    struct SceneState {
        std::array<float, 50> values{};
        static SceneState Of(const GraphicsBase::Camera* camera, const GraphicsBase::DirectionalLight* light);
        bool operator==(const SceneState& o) const {
            return std::memcmp(&values, &o.values, sizeof values) == 0;
        }
    };
    std::map<unsigned int, SceneState> sceneStates_;

    GUI::Renderer::Type rendererType_;
    GUI::Renderer::Base* renderer_ = nullptr;
    GUI::Texture::Atlas* atlas_ = nullptr;
    std::unique_ptr<GraphicsBase::GLSLProgram> compositeProgram_;
    std::unique_ptr<GraphicsBase::GLSLProgram> gammaProgram_;
    unsigned int layerFramebuffer_ = 0;
    unsigned int pickFramebuffer_ = 0;
    unsigned int colorLayer_ = 0;
    unsigned int idLayer_ = 0;
    unsigned int depthLayer_ = 0;
    unsigned int quadVertexArray_ = 0;
    unsigned int quadVertexBuffer_ = 0;
    GraphicsBase::VX_UI::MouseEvent pointer_;
    unsigned int modifiers_ = 0;
    uint64_t pressTime_ = 0;
    uint64_t clickWindow_ = 200;
    int width_ = 100;
    int height_ = 100;
    bool needsRedraw_ = false;
    bool upsideDown_ = false;
    GUI::Geometry::Point origin_;
    std::vector<GUI::Animation::Sequence*> animations_;
    std::vector<GUI::Animation::Sequence*> cancelled_;
    bool updating_ = false;
    std::vector<std::pair<GUI::Controls::Base*, std::weak_ptr<const void>>> deferredSignals_;
    int maxLayerSize_ = 16384;
    int32_t layerUpdateTime_ = 0;
    int32_t layerUpdateCount_ = 0;
    bool explicitGammaCorrection_ = false;
    bool strictSynchronisation_ = false;
    bool exactPointerRows_ = false;
    float displayScale_ = 1.f;
    bool framebufferFetch_ = true;
    // The id layout asked for, and the one the existing layers were made with.
    bool compactIdLayers_ = false;
    bool layersCompact_ = false;
    // A GLsync, kept opaque here so that the header needs no sync types.
    void* layersFence_ = nullptr;
    GUI::Geometry::Rectangle compositeBounds_;
    // The same as disjoint rectangles (a few at most), so that the composite skips the empty gaps.
    std::vector<GUI::Geometry::Rectangle> compositeAreas_;
    // Where each cached root was composited by the last update (by id), and whether the next update
    // must redraw the layers whole.
    std::map<unsigned int, GUI::Geometry::Rectangle> footprints_;
    // Scratch of an update: the pieces roots named as changed, and the regions redrawn.
    std::vector<GUI::Geometry::Rectangle> damagePieces_, regions_;
    bool layersWhole_ = true;
    bool compositeWhole_ = true;
    bool directSceneWidgets_ = false;
    // The roots drawn into the host's frame by the last update (by id): the first directUnder_ under
    // the composite, the rest over it, each part in drawing order; and the bounds of the id layer's
    // pixels that may hold their old ids.
    std::vector<unsigned int> directRoots_;
    std::size_t directUnder_ = 0;
    GUI::Geometry::Rectangle staleIds_{0, 0, 0, 0};
};

} // namespace GUI
