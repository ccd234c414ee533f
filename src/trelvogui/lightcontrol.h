#pragma once
// The light-direction widget: a lit ball in the lower-right corner that swings the light when dragged.

#include <trelvogui/gui/controlbase.h>
#include <trelvogui/trelvogui_export.h>

#include <graphicsbase/drawflags.h>
#include <graphicsbase/tgeom.h>

#include <boost/signals2/signal.hpp>

#include <memory>

namespace GraphicsBase {
struct DirectionalLight;
}
namespace GraphicsBase {
class GLSLProgram;
}
namespace GraphicsBase {
class GLVertexBuffer;
}

/// Shows how the scene light falls on a ball, in a square viewport 10 pixels from the view's
/// lower-right corner. Dragging turns the light's position about the world x axis (vertical motion)
/// and y axis (horizontal motion) by 0.35 degrees a pixel, keeping its distance from the origin; the
/// manager notices the change at its next update and redraws every widget that shares the light.
///
/// widgetHeight, marginX and marginY are kept for hosts that lay out around the widget; the drawing
/// uses widgetWidth for both sides and 10-pixel margins.
///
/// Disabled (SetEnabled(false)), the widget draws dimmed and writes no ids, so the pointer reaches
/// what lies behind it.
class TRELVOGUI_EXPORT LightControl : public GUI::Controls::Base {
public:
    /// The ball's tile writes this one secondary id.
    static constexpr unsigned int kBall = 0;
    /// The light's position at the press and as it is now (at the release, or at the cancel).
    using DragSignal = boost::signals2::signal<void(const GraphicsBase::tgeom::vec& atPress,
                                                    const GraphicsBase::tgeom::vec& now)>;
    /// A press starts a drag and its release ends it: one undo step per drag for a host.
    DragSignal dragStartedSignal;
    DragSignal dragEndedSignal;
    /// Escape or another button during a drag: the light is back at its press position when this
    /// fires, and no end follows.
    DragSignal dragCancelledSignal;

    explicit LightControl(std::shared_ptr<GraphicsBase::DirectionalLight> light);
    ~LightControl() override;

    /// Draws the widget; nothing before a successful Initialize. Leaves the viewport at (0, 0, w, h)
    /// of the viewport it found.
    bool CanDrawDirect() override { return true; }
    void DrawCustom() override;
    /// The widget's square, 10 pixels in from the lower-right corner.
    bool LayerFootprint(int layerWidth, int layerHeight, GUI::Geometry::Rectangle& area) override;
    /// Turns the light by the drag; returns 33.
    GraphicsBase::DrawFlags OnMouseDrag(GUI::Event* e, int dx, int dy) override;
    GraphicsBase::DrawFlags OnMouseDown(GUI::Event* e) override;
    GraphicsBase::DrawFlags OnMouseUp(GUI::Event* e) override;
    /// Puts the light back where the drag under way found it. Nothing without a drag.
    GraphicsBase::DrawFlags OnCancelDrag(GUI::Event* e) override;
    /// With the GL context current: builds "LightWidget.vs" + "LightWidget.fs" and the quad. False
    /// when a shader fails to load or the program does not link.
    virtual bool Initialize();

    virtual int widgetWidth() { return widgetWidth_; }
    virtual int widgetHeight() { return widgetHeight_; }
    virtual int marginX() { return marginX_; }
    virtual int marginY() { return marginY_; }

    void SetWidgetSize(int width, int height);
    void SetMargins(int x, int y);
    /// The square's side and its gap to the view's right and bottom edges as drawn: widgetWidth and
    /// 10 pixels, times the display scale.
    int Side() const;
    int Margin() const;
    const std::shared_ptr<GraphicsBase::DirectionalLight>& Light() const { return light_; }

    const GraphicsBase::DirectionalLight* SceneLight() const override { return light_.get(); }

private:
    /// The material uniforms every build of the shader gets once.
    static void setMaterial(GraphicsBase::GLSLProgram& program);
    std::shared_ptr<GraphicsBase::GLSLProgram> program_;
    std::unique_ptr<GraphicsBase::GLSLProgram>
        fetchProgram_; // the fast path's build, where the context offers fetch
    // Built on first use, when the manager draws the widget straight into the host's framebuffer.
    std::unique_ptr<GraphicsBase::GLSLProgram> directProgram_;
    std::shared_ptr<GraphicsBase::GLVertexBuffer> quadBuffer_;
    std::shared_ptr<GraphicsBase::DirectionalLight> light_;
    int widgetWidth_ = 75;
    int widgetHeight_ = 75;
    int marginX_ = 10;
    int marginY_ = 10;
    GraphicsBase::tgeom::vec pressPosition_{0.f};
    bool dragging_ = false;
    bool cancelled_ = false; // until the cancelled drag's button comes up
};
