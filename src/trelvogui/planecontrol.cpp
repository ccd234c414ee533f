#include <trelvogui/planecontrol.h>

#include <trelvogui/gui/renderers/detail/disabledlook.h>
#include <trelvogui/manipulatorrenderer.h>

#include <graphicsbase/camera.h>
#include <graphicsbase/glscopedbindings.h>

#include <optional>

using namespace GraphicsBase;

PlaneControl::PlaneControl(std::shared_ptr<Camera> camera) : ManipulatorControl(std::move(camera)) {}

PlaneControl::~PlaneControl() = default;

bool PlaneControl::Initialize() {
    // Only a complete widget keeps an outline: DrawCustom draws nothing without one.
    planarRenderer_.reset();
    if (!ManipulatorControl::Initialize())
        return false;
    GL::GLScopedBindings hostState;
    // The outline holds the gizmo's own frame; the aliasing pointer keeps the gizmo renderer alive
    // for as long as the outline may read it.
    std::shared_ptr<LocalFrame> frame(GetRenderer(), &GetRenderer()->getFrame());
    auto planar = std::make_unique<PlanarShapeRenderer>(frame);
    if (!planar->Initialize())
        return false;
    MaterialInfo material;
    material.color = tgeom::vec4(0.5f, 0.5f, 0.5f, 1.f);
    planar->SetMaterialInfo(material);
    planar->SetVisible(Visible());
    planar->SetShape(pendingShape_);
    planarRenderer_ = std::move(planar);
    return true;
}

void PlaneControl::DrawCustom() {
    if (!planarRenderer_ || !GetCamera() || !GetCamera()->Valid())
        return;
    GL::GLScopedBindings hostState;
    ManipulatorControl::DrawCustom();
    GetCamera()->SetMatrixParams(planarRenderer_.get());
    // The gizmo dims itself; the outline fades with it.
    std::optional<GUI::Renderer::detail::DisabledLook> look;
    if (!Enabled())
        look.emplace();
    planarRenderer_->Draw();
}

bool PlaneControl::LayerFootprint(int layerWidth, int layerHeight, GUI::Geometry::Rectangle& area) {
    area = {0, 0, 0, 0};
    if (!planarRenderer_ || !GetCamera())
        return true; // DrawCustom draws nothing
    GUI::Geometry::Rectangle outline;
    if (!ManipulatorControl::LayerFootprint(layerWidth, layerHeight, area) ||
        !planarRenderer_->LayerFootprint(*GetCamera(), layerWidth, layerHeight, outline))
        return false;
    if (outline.Width() > 0 && outline.Height() > 0) {
        if (area.Width() > 0 && area.Height() > 0)
            area.Include(outline);
        else
            area = outline;
    }
    return true;
}

void PlaneControl::SetVisible(bool v) {
    ManipulatorControl::SetVisible(v);
    if (planarRenderer_)
        planarRenderer_->SetVisible(v);
}

PlanarShape PlaneControl::GetShape() {
    return planarRenderer_ ? planarRenderer_->GetShape() : pendingShape_;
}

void PlaneControl::SetShape(PlanarShape shape) {
    pendingShape_ = shape;
    if (planarRenderer_)
        planarRenderer_->SetShape(shape);
    SetNeedsRedraw(true);
}
