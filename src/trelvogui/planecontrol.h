#pragma once
// A gizmo that also shows the plane it moves: a square or circle outline in its own x-y plane.

#include <trelvogui/manipulatorcontrol.h>
#include <trelvogui/planarshaperenderer.h>
#include <trelvogui/trelvogui_export.h>

#include <memory>

/// A ManipulatorControl whose frame carries a flat outline (a clipping or slicing plane, say). The
/// outline shares the gizmo's frame, so it follows every move, turn and scale without updating.
class TRELVOGUI_EXPORT PlaneControl : public ManipulatorControl {
public:
    explicit PlaneControl(std::shared_ptr<GraphicsBase::Camera> camera);
    ~PlaneControl() override;

    void DrawCustom() override;
    /// The gizmo's square and the outline's projected bounds; unknown (false) while part of the
    /// outline lies behind the camera.
    bool LayerFootprint(int layerWidth, int layerHeight, GUI::Geometry::Rectangle& area) override;
    void SetVisible(bool v) override;
    /// The gizmo, then the outline on its frame. False if either fails; the control is then not drawn.
    bool Initialize() override;

    /// Square (the default) or Disc; other values draw no outline while the gizmo still draws.
    PlanarShape GetShape();
    void SetShape(PlanarShape shape);
    PlanarShapeRenderer* GetPlanarRenderer() { return planarRenderer_.get(); }

private:
    std::unique_ptr<PlanarShapeRenderer> planarRenderer_;
    PlanarShape pendingShape_ = Square;
};
