#pragma once
// Node of the retained control tree and base class of every control and scene widget.

#include <trelvogui/gui/animationframe.h>
#include <trelvogui/gui/geometry.h>
#include <trelvogui/gui/guitypes.h>
#include <trelvogui/trelvogui_export.h>

#include <graphicsbase/drawflags.h>

#include <boost/signals2/signal.hpp>

#include <list>
#include <memory>
#include <vector>

namespace GraphicsBase {
class Camera;
}
namespace GraphicsBase {
struct DirectionalLight;
}

namespace GUI {
class GUIManager;
namespace Texture {
class Atlas;
class Base;
} // namespace Texture
} // namespace GUI

namespace GUI::Controls {

/// A control: rectangle relative to its parent's content origin, state flags, children (non-owning,
/// in drawing order), a cached colour/id layer pair and two animation frames. The host owns controls;
/// parents, the factory and the manager only point at them.
class TRELVOGUI_EXPORT Base {
public:
    boost::signals2::signal<void()> ClickedSignal;
    boost::signals2::signal<void(GUI::Event*)> MouseDownSignal;
    boost::signals2::signal<void()> MouseEnterSignal;
    boost::signals2::signal<void()> CheckedSignal;
    boost::signals2::signal<void()> RectangleChangedSignal;
    boost::signals2::signal<void(GUI::Event*, int, int)> DragSignal;

    Base();
    virtual ~Base();

    Base(const Base&) = delete;
    Base& operator=(const Base&) = delete;

    /// Renders the subtree into the cached layer when animatable and stale.
    virtual void DrawToTexture(GUI::Texture::Atlas* atlas);
    /// Whether the last DrawToTexture redrew only part of the cached layer, which part (in the
    /// layer's own untransformed coordinates; empty when nothing inside had changed).
    bool RedrewOnlyRegion(GUI::Geometry::Rectangle& region) const {
        region = redrawnRegion_;
        return redrewPartially_;
    }
    /// If visible: DrawControl, DrawCustom, then every child's DrawWithChildren.
    virtual void DrawWithChildren(GUI::Texture::Atlas* atlas);
    /// Top-level drawing: roots only; animatable roots composite their cached layer.
    virtual void Draw(GUI::Texture::Atlas* atlas);
    /// Draws the control's skin from the atlas (nothing here).
    virtual void DrawControl(GUI::Texture::Atlas* atlas);
    /// Free-form drawing with the control's own programs (nothing here).
    virtual void DrawCustom();

    virtual GraphicsBase::DrawFlags OnMouseDown(GUI::Event* e);
    virtual GraphicsBase::DrawFlags OnMouseHover(GUI::Event* e);
    virtual GraphicsBase::DrawFlags OnMouseDrag(GUI::Event* e, int dx, int dy);
    virtual GraphicsBase::DrawFlags OnMouseUp(GUI::Event* e);
    virtual GraphicsBase::DrawFlags OnMouseEnter(GUI::Event* e);
    virtual GraphicsBase::DrawFlags OnMouseExit(GUI::Event* e);
    virtual GraphicsBase::DrawFlags OnClick(GUI::Event* e);
    virtual GraphicsBase::DrawFlags OnDoubleClick(GUI::Event* e);

    virtual bool HasParent();
    virtual bool HasChildren();
    /// Stores the pointer only.
    virtual void SetParent(Base* parent);
    virtual bool AddChild(Base* child);
    virtual bool RemoveChild(Base* child);
    virtual unsigned int GetId();
    virtual void SetId(unsigned int id);

    virtual bool Enabled();
    virtual bool Visible();
    virtual bool Pressed();
    virtual bool Hovered();
    virtual bool Checked();
    virtual bool Checkable();
    virtual bool Draggable();
    virtual bool Sizeable();
    virtual bool Animatable();
    virtual bool NeedsRedraw();
    /// Clears this control's stale flag and nothing else (SetNeedsRedraw(false) still marks the
    /// manager): for the manager once it has drawn a root that has no cached layer, so that the root
    /// counts as changed again only when something marks it.
    void ClearNeedsRedraw() { needsRedraw_ = false; }
    /// For a root drawn straight into the manager's layers (no cached layer): the layer pixels its
    /// drawing can touch in a layer of the given size, when the control knows them. The manager then
    /// redraws only there when the control changes; the default knows nothing, so a change of such a
    /// root redraws the layers whole.
    virtual bool LayerFootprint(int layerWidth, int layerHeight, GUI::Geometry::Rectangle& area);
    virtual bool UsesCamera();
    virtual bool UsesLight();
    /// Disabling or hiding a control cancels the drag it holds (OnCancelDrag).
    virtual void SetEnabled(bool v);
    virtual void SetVisible(bool v);
    virtual void SetPressed(bool v);
    virtual void SetHovered(bool v);
    virtual void SetChecked(bool v);
    virtual void SetCheckable(bool v);
    virtual void SetDraggable(bool v);
    virtual void SetSizeable(bool v);
    /// Marks this control, every ancestor and the manager stale.
    virtual void SetNeedsRedraw(bool v);

    virtual GUI::Geometry::Point& GlobalFrame();
    /// Recomputes global frame + (xMin, yMin) and returns it.
    virtual GUI::Geometry::Point& GlobalPosition();
    virtual GUI::Geometry::Rectangle& MinimumSize();
    virtual GUI::Geometry::Rectangle& BoundingBox();
    virtual GUI::Geometry::Point& Center();
    virtual void CalcGlobalPosition();
    virtual void CalcRenderingBoundingBox(GUI::Texture::Atlas* atlas);
    virtual void CalcBoundingBox(GUI::Texture::Atlas* atlas);
    /// Moves the lower-left corner to (x, y) keeping the size.
    virtual void SetPosition(int x, int y);
    /// Stores width and height as the minimum size; requests no redraw.
    virtual void SetMinSize(int w, int h);
    virtual void SetRectangle(GUI::Geometry::Rectangle r);
    virtual void Translate(int dx, int dy);
    virtual GUI::Geometry::Rectangle& GetControlRectangle();
    virtual GUI::Geometry::Rectangle& GetRenderRectangle();
    /// The rectangle in overlay coordinates.
    virtual GUI::Geometry::Rectangle& GetRectangle();
    /// The area the control's own drawing covers; larger than the rectangle for skins with borders.
    virtual GUI::Geometry::Rectangle GetRenderRectangleStandard(GUI::Texture::Atlas* atlas);
    virtual void ProcessGlobalTransformations();
    virtual GUI::Animation::Frame* GetLocalFrame();
    virtual GUI::Animation::Frame* GetLocalFrameAnimation();
    /// The wheel turned by `delta` (positive away from the user, 120 a notch) with the pointer over
    /// the control at the event's position. DRAW_NOTHING (the default) passes it on to the parent.
    virtual GraphicsBase::DrawFlags OnMouseWheel(GUI::Event* e, int delta);
    /// The host camera and light the control draws with (null where it uses none). The manager
    /// compares their matrices, viewport and values with those of the last update and redraws the
    /// controls that follow a changed one, whether or not the host reported the change.
    virtual const GraphicsBase::Camera* SceneCamera() const { return nullptr; }
    virtual const GraphicsBase::DirectionalLight* SceneLight() const { return nullptr; }
    /// The left-button drag this control holds is to be abandoned: Escape was pressed or another
    /// button went down. DRAW_NOTHING (the default) leaves the event to the manager's usual routing.
    virtual GraphicsBase::DrawFlags OnCancelDrag(GUI::Event* e);
    /// For a stale root drawn straight into the layers whose footprint stays where it was: where its
    /// picture changed since the last update (overlay pixels, appended to `areas`; none for nowhere),
    /// when the control knows that the change is confined there. The manager asks once per update and
    /// the control forgets what it reported. False (the default): the whole footprint is redrawn.
    virtual bool TakeLayerDamage(std::vector<GUI::Geometry::Rectangle>& areas);
    /// The manager's display scale changed (or the control joined a manager whose scale is not 1):
    /// controls that lay out children in pixels lay them out again. Nothing by default.
    virtual void OnDisplayScaleChanged() {}
    /// Whether the manager may draw this root straight into the host's framebuffer, under or over the
    /// composite, instead of into the layers (GUIManager::SetDirectSceneWidgets): its shaders have a
    /// direct build and it draws nothing else. False by default; the scene widgets say true, and a
    /// subclass of one that draws more says false again.
    virtual bool CanDrawDirect() { return false; }

    /// Expires when this control is destroyed. Code that calls out to host code (signals, callbacks)
    /// takes one first and stops touching the control when it has expired: a handler may delete the
    /// control that called it.
    std::weak_ptr<const void> LifeToken() const { return life_; }

    Base* Parent() { return parent_; }
    std::list<Base*>* Children() { return &children_; }
    /// Linear search of the direct children.
    bool IsChild(Base* control);
    GUI::Texture::Base* GetColorTexture() { return colorTexture_; }
    GUI::Texture::Base* GetIDTexture() { return idTexture_; }
    GUI::Alignment::Horizontal::Type GetHorizontalAlignment() { return horizontalAlignment_; }
    void SetHorizontalAlignment(GUI::Alignment::Horizontal::Type a) { horizontalAlignment_ = a; }
    GUI::Alignment::Vertical::Type GetVerticalAlignment() { return verticalAlignment_; }
    void SetVerticalAlignment(GUI::Alignment::Vertical::Type a) { verticalAlignment_ = a; }
    GUI::Policy::Sizing GetHorizontalSizingPolicy() { return horizontalSizing_; }
    void SetHorizontalSizingPolicy(GUI::Policy::Sizing p);
    GUI::Policy::Sizing GetVerticalSizingPolicy() { return verticalSizing_; }
    void SetVerticalSizingPolicy(GUI::Policy::Sizing p);
    GUI::Geometry::Margin& GetMargins() { return margins_; }
    void SetMargins(GUI::Geometry::Margin m);
    bool Registered() { return registered_; }
    /// Enters this control and its subtree into the manager's registry, which assigns the ids. A
    /// control belongs to one manager at a time: registering it with another first removes it from
    /// the registry it was in. Registering again with the same manager changes nothing (false).
    bool Register(std::shared_ptr<GUI::GUIManager> manager);
    /// Clears the registered mark for the subtree; the registry entries stay (see the definition),
    /// but the controls no longer mark that manager stale.
    bool Unregister();
    GUI::GUIManager* Manager() { return manager_.get(); }
    const GUI::GUIManager* Manager() const { return manager_.get(); }
    /// The manager's display scale, 1 while unregistered: what pixel sizes are multiplied by.
    float DisplayScale() const;
    /// A length in pixels at display scale 1, at the current scale (rounded to whole pixels).
    int ScaledPixels(float pixels) const;
    /// Set by the manager while the control is in its registry.
    void SetManagerRedrawFlag(bool* flag) { managerRedrawFlag_ = flag; }
    bool* ManagerRedrawFlag() { return managerRedrawFlag_; }

protected:
    /// The three flags reserved for subclasses.
    bool& SubclassFlagA() { return subclassFlagA_; }
    bool& SubclassFlagB() { return subclassFlagB_; }
    bool& SubclassFlagC() { return subclassFlagC_; }
    GUI::Geometry::Rectangle& SpareRectangle() { return spareRectangle_; }
    GUI::Geometry::Rectangle& MaximumSize() { return maximumSize_; }
    GUI::Texture::Base*& ColorTextureSlot() { return colorTexture_; }
    GUI::Texture::Base*& IdTextureSlot() { return idTexture_; }
    void SetAnimatable(bool v) { animatable_ = v; }
    void SetUsesCamera(bool v) { usesCamera_ = v; }
    /// For controls that draw outside their render rectangle (a 3D widget, an axis whose band sits
    /// beside it): a cached layer that holds one is always redrawn whole.
    void SetDrawsOutsideRenderRectangle(bool v) { drawsOutside_ = v; }
    void SetUsesLight(bool v) { usesLight_ = v; }
    /// For data controls and scene widgets: disabled, the subtree is drawn faded and writes no ids,
    /// so the pointer reaches what lies behind it.
    void SetDimsWhenDisabled(bool v) { dimsWhenDisabled_ = v; }

private:
    /// Removes the subtree from the registry it was entered into (and marks it unregistered).
    void leaveRegistry();
    /// Whether `control` is this control or one of its ancestors.
    bool isSelfOrAncestor(Base* control);
    /// OnCancelDrag for a control being switched off; false when a slot deleted the control.
    bool giveUpDrag();
    /// Marks this control, its ancestors and the manager stale without virtual calls (destructors).
    void markStale();
    /// The union of where the changed controls of this subtree were drawn last time and will be drawn
    /// now. False when only a whole redraw is right: this control itself changed, or a control whose
    /// footprint is not known lies in the subtree.
    bool collectDamage(GUI::Geometry::Rectangle& damage, bool& any);
    /// DrawWithChildren for a partial redraw: subtrees whose render rectangle misses `region` are
    /// skipped (the target is scissored to the region anyway).
    void drawWithChildrenIn(GUI::Texture::Atlas* atlas, const GUI::Geometry::Rectangle& region);
    /// Records the subtree as drawn: where, and that its changes are in the layer.
    void markDrawn();

    std::shared_ptr<const void> life_ = std::make_shared<char>(0);
    std::shared_ptr<GUI::GUIManager> manager_;
    // The registry the control was entered into; its entry outlives Unregister, so the destructor
    // uses this to make sure a destroyed control never stays reachable from it.
    std::weak_ptr<GUI::GUIManager> registry_;
    bool registered_ = false;
    unsigned int id_ = 0;
    Base* parent_ = nullptr;
    std::list<Base*> children_;
    // Removed children that still point here (see RemoveChild).
    std::vector<Base*> released_;
    bool* managerRedrawFlag_ = nullptr;
    GUI::Geometry::Rectangle renderRectangle_{0, 4, 0, 4};
    GUI::Geometry::Rectangle boundingBox_{0, 4, 0, 4};
    GUI::Geometry::Rectangle rectangle_{0, 4, 0, 4};
    GUI::Geometry::Rectangle globalRectangle_{0, 4, 0, 4};
    GUI::Geometry::Rectangle spareRectangle_{0, 4, 0, 4};
    GUI::Geometry::Point center_;
    GUI::Geometry::Rectangle minimumSize_{0, 0, 0, 0};
    GUI::Geometry::Rectangle maximumSize_{0, 1000, 0, 1000};
    GUI::Geometry::Margin margins_;
    GUI::Geometry::Point globalFrame_;
    GUI::Geometry::Point globalPosition_;
    GUI::Policy::Sizing horizontalSizing_ = GUI::Policy::Fixed;
    GUI::Policy::Sizing verticalSizing_ = GUI::Policy::Fixed;
    GUI::Texture::Base* colorTexture_ = nullptr;
    GUI::Texture::Base* idTexture_ = nullptr;
    GUI::Animation::Frame localFrame_;
    GUI::Animation::Frame animationFrame_;
    GUI::Alignment::Horizontal::Type horizontalAlignment_ = GUI::Alignment::Horizontal::Left;
    GUI::Alignment::Vertical::Type verticalAlignment_ = GUI::Alignment::Vertical::Bottom;
    // One byte per flag, in this order.
    bool visible_ = true;
    bool enabled_ = true;
    bool draggable_ = false;
    bool subclassFlagA_ = true;
    bool animatable_ = false;
    bool checkable_ = false;
    bool subclassFlagB_ = true;
    bool subclassFlagC_ = false;
    bool pressed_ = false;
    bool hovered_ = false;
    bool checked_ = false;
    bool usesCamera_ = false;
    bool usesLight_ = false;
    bool sizeable_ = false;
    bool needsRedraw_ = true;
    // Partial redraws of cached layers: whether this control changed itself since it was last drawn
    // (not merely a descendant), and where it was drawn then.
    bool damaged_ = true;
    bool drawn_ = false;
    bool drawsOutside_ = false;
    bool dimsWhenDisabled_ = false;
    bool redrewPartially_ = false;
    GUI::Geometry::Rectangle drawnRectangle_{0, 0, 0, 0};
    GUI::Geometry::Rectangle redrawnRegion_{0, 0, 0, 0};
};

} // namespace GUI::Controls
