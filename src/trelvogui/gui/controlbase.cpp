#include <trelvogui/gui/controlbase.h>

#include <trelvogui/gui/guimanager.h>
#include <trelvogui/gui/renderers/detail/disabledlook.h>
#include <trelvogui/gui/renderers/renderer.h>
#include <trelvogui/gui/texture.h>
#include <trelvogui/gui/textureatlas.h>

#include <graphicsbase/logfile.h>

#include <algorithm>
#include <cmath>
#include <optional>

using namespace GraphicsBase;

namespace GUI::Controls {
namespace {
// Depth of SetNeedsRedraw calls that climb from a child to its parent: a control marked from below
// is stale, but only the control the call started at has changed its own picture.
int propagationDepth = 0;

bool Overlap(const GUI::Geometry::Rectangle& a, const GUI::Geometry::Rectangle& b) {
    return a.xMin < b.xMax && b.xMin < a.xMax && a.yMin < b.yMax && b.yMin < a.yMax;
}
} // namespace

Base::Base() = default;

Base::~Base() {
    // Nothing may reach this control once it is gone: not its parent's list, not its children, not
    // the registry (which also cancels its animations).
    life_.reset();
    if (parent_) {
        auto& siblings = parent_->children_;
        auto it = std::find(siblings.begin(), siblings.end(), this);
        if (it != siblings.end()) {
            siblings.erase(it);
            // Not the virtual SetNeedsRedraw: the parent may itself be part way through destruction.
            parent_->markStale();
        }
        auto& released = parent_->released_;
        released.erase(std::remove(released.begin(), released.end(), this), released.end());
        parent_ = nullptr;
    }
    // Controls removed from this one still name it as their parent until their owner frees them.
    for (Base* former : released_)
        if (former->parent_ == this)
            former->parent_ = nullptr;
    released_.clear();
    // Children the host still owns become free controls, out of the registry with their subtree.
    for (Base* child : children_) {
        child->parent_ = nullptr;
        child->leaveRegistry();
    }
    children_.clear();
    leaveRegistry();
    delete colorTexture_;
    delete idTexture_;
    colorTexture_ = nullptr;
    idTexture_ = nullptr;
    manager_.reset();
}

void Base::leaveRegistry() {
    for (Base* child : children_)
        child->leaveRegistry();
    if (auto registry = registry_.lock())
        if (registry->Find(id_) == this)
            registry->RemoveControl(this);
    registry_.reset();
    registered_ = false;
    manager_.reset();
    managerRedrawFlag_ = nullptr;
}

bool Base::isSelfOrAncestor(Base* control) {
    for (Base* c = this; c; c = c->parent_)
        if (c == control)
            return true;
    return false;
}

void Base::DrawToTexture(GUI::Texture::Atlas* atlas) {
    if (!animatable_ || !needsRedraw_)
        return;
    GUI::Renderer::Base* renderer = atlas->GetRenderer();
    if (!colorTexture_)
        renderer->GenerateTexture(&colorTexture_, GUI::Texture::Color);
    // The cached ids take the manager's id layout; a change of layout leaves nothing to keep.
    const int32_t idFormat = manager_ && manager_->GetCompactIdLayers() ? GUI::Texture::CompactIdentifier
                                                                        : GUI::Texture::Identifier;
    if (idTexture_ && idTexture_->Format() != idFormat) {
        renderer->DeleteTexture(idTexture_);
        idTexture_ = nullptr;
    }
    const bool freshIds = !idTexture_;
    if (freshIds)
        renderer->GenerateTexture(&idTexture_, idFormat);
    const GUI::Geometry::Rectangle previous = renderRectangle_;
    CalcBoundingBox(atlas);
    CalcRenderingBoundingBox(atlas);
    // When the layer keeps its place and size and only some controls inside changed, only the area
    // they cover (before and after) is cleared and drawn again. Strict synchronisation redraws whole.
    GUI::Geometry::Rectangle damage{0, 0, 0, 0};
    bool any = false;
    const bool partial = !freshIds && drawn_ && !damaged_ && previous == renderRectangle_ &&
                         renderer->SupportsPartialRedraw() && collectDamage(damage, any);
    redrewPartially_ = partial;
    redrawnRegion_ = {0, 0, 0, 0};
    if (partial) {
        GUI::Geometry::Rectangle region{
            std::max(damage.xMin, renderRectangle_.xMin), std::min(damage.xMax, renderRectangle_.xMax),
            std::max(damage.yMin, renderRectangle_.yMin), std::min(damage.yMax, renderRectangle_.yMax)};
        if (any && region.Width() > 0 && region.Height() > 0) {
            redrawnRegion_ = region;
            renderer->SetRenderTargetToTextureRegion(colorTexture_, idTexture_, renderRectangle_, region);
            if (renderer->RenderTargetReady()) {
                drawWithChildrenIn(atlas, region);
                renderer->ClearRenderTargetToTexture();
            } else {
                redrewPartially_ = false;
            }
        }
    } else {
        renderer->SetRenderTargetToTexture(colorTexture_, idTexture_, GetRenderRectangle());
        if (renderer->RenderTargetReady()) {
            DrawWithChildren(atlas);
            renderer->ClearRenderTargetToTexture();
        }
    }
    markDrawn();
    needsRedraw_ = false;
}

void Base::DrawWithChildren(GUI::Texture::Atlas* atlas) {
    if (!Visible())
        return;
    std::optional<GUI::Renderer::detail::DisabledLook> look;
    if (dimsWhenDisabled_ && !Enabled())
        look.emplace();
    DrawControl(atlas);
    DrawCustom();
    for (Base* child : children_)
        child->DrawWithChildren(atlas);
}

void Base::Draw(GUI::Texture::Atlas* atlas) {
    if (!Visible())
        return;
    // Children are drawn by their root's DrawWithChildren.
    if (HasParent())
        return;
    if (Animatable()) {
        atlas->GetRenderer()->RenderTexture(colorTexture_, idTexture_, GetLocalFrameAnimation(),
                                            &GetRenderRectangle(), &Center());
    } else {
        DrawWithChildren(atlas);
    }
}

bool Base::collectDamage(GUI::Geometry::Rectangle& damage, bool& any) {
    if (drawsOutside_ || usesCamera_ || usesLight_)
        return false;
    for (Base* child : children_) {
        if (child->damaged_) {
            const GUI::Geometry::Rectangle& now = child->renderRectangle_;
            damage = any ? damage : now;
            damage.Include(now);
            if (child->drawn_)
                damage.Include(child->drawnRectangle_);
            any = true;
        }
        if (!child->collectDamage(damage, any))
            return false;
    }
    return true;
}

void Base::drawWithChildrenIn(GUI::Texture::Atlas* atlas, const GUI::Geometry::Rectangle& region) {
    if (!Visible())
        return;
    std::optional<GUI::Renderer::detail::DisabledLook> look;
    if (dimsWhenDisabled_ && !Enabled())
        look.emplace();
    DrawControl(atlas);
    DrawCustom();
    for (Base* child : children_)
        if (Overlap(child->renderRectangle_, region))
            child->drawWithChildrenIn(atlas, region);
}

bool Base::LayerFootprint(int, int, GUI::Geometry::Rectangle&) {
    return false;
}

void Base::markDrawn() {
    damaged_ = false;
    drawn_ = true;
    drawnRectangle_ = renderRectangle_;
    for (Base* child : children_)
        child->markDrawn();
}

void Base::DrawControl(GUI::Texture::Atlas*) {}
void Base::DrawCustom() {}

DrawFlags Base::OnMouseDown(GUI::Event* e) {
    if (!Enabled())
        return DRAW_NOTHING;
    pressed_ = true;
    SetNeedsRedraw(true);
    MouseDownSignal(e);
    return DRAW_CONSUMED | DRAW_OVERLAY;
}

DrawFlags Base::OnMouseHover(GUI::Event*) {
    return DRAW_NOTHING;
}

DrawFlags Base::OnMouseDrag(GUI::Event* e, int dx, int dy) {
    if (!Enabled())
        return DRAW_NOTHING;
    if (Draggable()) {
        Translate(dx, dy);
        return DRAW_CONSUMED | DRAW_OVERLAY;
    }
    // A root that is not draggable ignores drags even when DragSignal has listeners.
    if (!HasParent())
        return DRAW_NOTHING;
    if (DragSignal.empty())
        return parent_->OnMouseDrag(e, dx, dy);
    DragSignal(e, dx, dy);
    return DRAW_NOTHING;
}

DrawFlags Base::OnMouseUp(GUI::Event*) {
    if (!Enabled())
        return DRAW_NOTHING;
    pressed_ = false;
    SetNeedsRedraw(true);
    return DRAW_CONSUMED | DRAW_OVERLAY;
}

DrawFlags Base::OnMouseEnter(GUI::Event*) {
    if (!Enabled())
        return DRAW_NOTHING;
    SetHovered(true);
    SetNeedsRedraw(true);
    MouseEnterSignal();
    return DRAW_CONSUMED | DRAW_OVERLAY;
}

DrawFlags Base::OnMouseExit(GUI::Event*) {
    if (!Enabled())
        return DRAW_NOTHING;
    SetHovered(false);
    SetNeedsRedraw(true);
    return DRAW_CONSUMED | DRAW_OVERLAY;
}

DrawFlags Base::OnClick(GUI::Event* e) {
    if (!Enabled())
        return DRAW_NOTHING;
    pressed_ = false;
    if (Checkable()) {
        checked_ = !checked_;
        if (checked_)
            CheckedSignal();
        return DRAW_OVERLAY;
    }
    std::weak_ptr<const void> alive = life_;
    ClickedSignal();
    // A "Close" or "OK" handler may have deleted this control (or its dialog) by now.
    if (alive.expired())
        return DRAW_OVERLAY;
    if (HasParent())
        return parent_->OnClick(e);
    return DRAW_NOTHING;
}

DrawFlags Base::OnDoubleClick(GUI::Event*) {
    return DRAW_NOTHING;
}

bool Base::HasParent() {
    return parent_ != nullptr;
}
bool Base::HasChildren() {
    return !children_.empty();
}
void Base::SetParent(Base* parent) {
    if (parent_ && parent_ != parent) {
        auto& released = parent_->released_;
        released.erase(std::remove(released.begin(), released.end(), this), released.end());
    }
    parent_ = parent;
}

void Base::markStale() {
    damaged_ = true;
    for (Base* c = this; c; c = c->parent_) {
        c->needsRedraw_ = true;
        if (c->manager_)
            c->manager_->SetNeedsRedraw(true);
    }
}

bool Base::AddChild(Base* child) {
    if (!child) {
        LogFile::Instance().AddLine(LogLevel::Warning, "Base::AddChild(): The control is null.\n");
        return false;
    }
    if (isSelfOrAncestor(child)) {
        LogFile::Instance().AddLine(LogLevel::Warning,
                                    "Base::AddChild(): A control cannot be its own child or descendant.\n");
        return false;
    }
    if (IsChild(child)) {
        LogFile::Instance().AddLine(LogLevel::Warning, "The control is already a child of this control\n");
        return false;
    }
    if (child->HasParent()) {
        LogFile::Instance().AddLine(LogLevel::Warning, "The control is already a child of another control\n");
        return false;
    }
    // The subtree joins this control's manager; under an unregistered parent it is no longer a root of
    // the manager it was in, so it leaves that registry.
    if (registered_ && manager_)
        child->Register(manager_);
    else if (child->registry_.lock())
        child->leaveRegistry();
    children_.push_back(child);
    child->SetParent(this);
    child->CalcGlobalPosition();
    SetNeedsRedraw(true);
    return true;
}

bool Base::RemoveChild(Base* child) {
    if (!child) {
        LogFile::Instance().AddLine(LogLevel::Warning, "Base::RemoveChild(): The control is null.\n");
        return false;
    }
    auto it = std::find(children_.begin(), children_.end(), child);
    if (it == children_.end()) {
        LogFile::Instance().AddLine(LogLevel::Warning,
                                    "Could not remove child control which is not among the children.\n");
        return false;
    }
    children_.erase(it);
    if (registered_)
        child->Unregister();
    // The parent pointer stays on purpose: the owner decides when the control is free again by
    // calling SetParent(nullptr). Until then this control clears it should it go first.
    if (std::find(released_.begin(), released_.end(), child) == released_.end())
        released_.push_back(child);
    SetNeedsRedraw(true);
    return true;
}

unsigned int Base::GetId() {
    return id_;
}
void Base::SetId(unsigned int id) {
    id_ = id;
}

bool Base::Enabled() {
    return enabled_;
}
bool Base::Visible() {
    return visible_;
}
bool Base::Pressed() {
    return pressed_;
}
bool Base::Hovered() {
    return hovered_;
}
bool Base::Checked() {
    return checked_;
}
bool Base::Checkable() {
    return checkable_;
}
bool Base::Draggable() {
    return draggable_;
}
bool Base::Sizeable() {
    return sizeable_;
}
bool Base::Animatable() {
    return animatable_;
}
bool Base::NeedsRedraw() {
    return needsRedraw_;
}
bool Base::UsesCamera() {
    return usesCamera_;
}
bool Base::UsesLight() {
    return usesLight_;
}

void Base::SetEnabled(bool v) {
    if (!v && !giveUpDrag())
        return;
    enabled_ = v;
    SetNeedsRedraw(true);
}

void Base::SetVisible(bool v) {
    if (!v && !giveUpDrag())
        return;
    visible_ = v;
    SetNeedsRedraw(true);
}

bool Base::giveUpDrag() {
    // A control switched off in the middle of its drag puts the drag back; a slot may delete it.
    std::weak_ptr<const void> alive = life_;
    OnCancelDrag(nullptr);
    return !alive.expired();
}

void Base::SetPressed(bool v) {
    pressed_ = v;
}
void Base::SetHovered(bool v) {
    hovered_ = v;
}
void Base::SetChecked(bool v) {
    checked_ = v;
}
void Base::SetCheckable(bool v) {
    checkable_ = v;
}
void Base::SetDraggable(bool v) {
    draggable_ = v;
}
void Base::SetSizeable(bool v) {
    sizeable_ = v;
}

void Base::SetNeedsRedraw(bool v) {
    needsRedraw_ = v;
    if (v && propagationDepth == 0)
        damaged_ = true;
    // Any call marks the manager, also one that clears this control's flag, through the manager so
    // that its redraw-request signal fires. An unregistered control has no manager to mark.
    if (manager_)
        manager_->SetNeedsRedraw(true);
    if (parent_) {
        ++propagationDepth;
        parent_->SetNeedsRedraw(true);
        --propagationDepth;
    }
}

GUI::Geometry::Point& Base::GlobalFrame() {
    return globalFrame_;
}

GUI::Geometry::Point& Base::GlobalPosition() {
    globalPosition_ = {globalFrame_.x + rectangle_.xMin, globalFrame_.y + rectangle_.yMin};
    return globalPosition_;
}

GUI::Geometry::Rectangle& Base::MinimumSize() {
    return minimumSize_;
}
GUI::Geometry::Rectangle& Base::BoundingBox() {
    return boundingBox_;
}
GUI::Geometry::Point& Base::Center() {
    return center_;
}

void Base::CalcGlobalPosition() {
    if (!parent_) {
        globalRectangle_ = rectangle_;
        globalPosition_ = {rectangle_.xMin, rectangle_.yMin};
    } else {
        GUI::Geometry::Point p = parent_->GlobalPosition();
        GUI::Geometry::Margin& pm = parent_->GetMargins();
        globalFrame_ = {GUI::Geometry::ClampCoordinate(int64_t{pm.left} + p.x),
                        GUI::Geometry::ClampCoordinate(int64_t{pm.bottom} + p.y)};
        globalRectangle_ = rectangle_;
        globalRectangle_.Shift(globalFrame_.x, globalFrame_.y);
        globalRectangle_ = globalRectangle_.Clamped();
        globalPosition_ = {globalRectangle_.xMin, globalRectangle_.yMin};
    }
    center_ = globalRectangle_.Center();
    for (Base* child : children_)
        child->CalcGlobalPosition();
}

void Base::CalcRenderingBoundingBox(GUI::Texture::Atlas* atlas) {
    renderRectangle_ = GetRenderRectangleStandard(atlas);
    for (Base* child : children_) {
        child->CalcRenderingBoundingBox(atlas);
        renderRectangle_.Include(child->GetRenderRectangle());
    }
}

void Base::CalcBoundingBox(GUI::Texture::Atlas* atlas) {
    GUI::Geometry::Point o{rectangle_.xMin + margins_.left, rectangle_.yMin + margins_.bottom};
    GUI::Geometry::Rectangle extent{o.x, o.x, o.y, o.y};
    for (Base* child : children_) {
        child->CalcBoundingBox(atlas);
        // Shifted in place: the child's stored box stays in our coordinates until it recomputes.
        GUI::Geometry::Rectangle& box = child->BoundingBox();
        box.Shift(o.x, o.y);
        extent.Include(box);
    }
    if (horizontalSizing_ == GUI::Policy::Fixed && verticalSizing_ == GUI::Policy::Fixed) {
        boundingBox_ = rectangle_;
        boundingBox_.Include(extent);
        return;
    }
    GUI::Geometry::Rectangle fitted = rectangle_;
    if (horizontalSizing_ == GUI::Policy::FitContent)
        fitted.xMax = margins_.right + extent.xMax;
    if (verticalSizing_ == GUI::Policy::FitContent)
        fitted.yMax = margins_.top + extent.yMax;
    SetRectangle(fitted);
    boundingBox_ = rectangle_;
}

void Base::SetPosition(int x, int y) {
    int w = rectangle_.Width();
    int h = rectangle_.Height();
    rectangle_ = GUI::Geometry::Rectangle{0, w, 0, h}.Bounded(x, y);
    CalcGlobalPosition();
    SetNeedsRedraw(true);
}

void Base::SetMinSize(int w, int h) {
    minimumSize_.xMax = GUI::Geometry::BoundedSize("Base::SetMinSize()", w, 0);
    minimumSize_.yMax = GUI::Geometry::BoundedSize("Base::SetMinSize()", h, 0);
}

void Base::SetRectangle(GUI::Geometry::Rectangle r) {
    rectangle_ = r.Bounded();
    CalcGlobalPosition();
    SetNeedsRedraw(true);
    // While the manager draws (a panel fitting itself to its contents), a handler that deleted this
    // control would pull it from under the drawing: the signal waits for the end of the update.
    if (GUI::GUIManager* manager = Manager(); manager && manager->Updating()) {
        manager->DeferRectangleSignal(this);
        return;
    }
    // Last: a handler may delete this control.
    RectangleChangedSignal();
}

void Base::Translate(int dx, int dy) {
    rectangle_ = rectangle_.Bounded(dx, dy);
    CalcGlobalPosition();
    SetNeedsRedraw(true);
}

GUI::Geometry::Rectangle& Base::GetControlRectangle() {
    return rectangle_;
}
GUI::Geometry::Rectangle& Base::GetRenderRectangle() {
    return renderRectangle_;
}
GUI::Geometry::Rectangle& Base::GetRectangle() {
    return globalRectangle_;
}
GUI::Geometry::Rectangle Base::GetRenderRectangleStandard(GUI::Texture::Atlas*) {
    return GetRectangle();
}
void Base::ProcessGlobalTransformations() {}
GUI::Animation::Frame* Base::GetLocalFrame() {
    return &localFrame_;
}
GUI::Animation::Frame* Base::GetLocalFrameAnimation() {
    return &animationFrame_;
}

bool Base::IsChild(Base* control) {
    return std::find(children_.begin(), children_.end(), control) != children_.end();
}

void Base::SetHorizontalSizingPolicy(GUI::Policy::Sizing p) {
    horizontalSizing_ = p;
    SetNeedsRedraw(true);
}

void Base::SetVerticalSizingPolicy(GUI::Policy::Sizing p) {
    verticalSizing_ = p;
    SetNeedsRedraw(true);
}

void Base::SetMargins(GUI::Geometry::Margin m) {
    using GUI::Geometry::ClampCoordinate;
    margins_ = {ClampCoordinate(m.left), ClampCoordinate(m.right), ClampCoordinate(m.bottom),
                ClampCoordinate(m.top)};
    SetNeedsRedraw(true);
}

bool Base::Register(std::shared_ptr<GUI::GUIManager> manager) {
    if (!manager) {
        LogFile::Instance().AddLine(LogLevel::Warning, "Base::Register(): The manager is null.\n");
        return false;
    }
    if (registered_ && manager_ == manager)
        return false;
    std::shared_ptr<GUI::GUIManager> previous = registry_.lock();
    if (previous == manager && previous->Find(id_) == this) {
        // Back after Unregister: the entry and the id were kept, only the mark comes back.
        manager_ = manager;
        registered_ = true;
        SetNeedsRedraw(true);
        bool ok = true;
        for (Base* child : children_)
            ok = child->Register(manager) && ok;
        if (manager->GetDisplayScale() != 1.f)
            OnDisplayScaleChanged();
        return ok;
    }
    // One manager at a time: the registry this control was in forgets it (and its subtree) first.
    if (previous)
        leaveRegistry();
    // The manager is known before the registry marks the control stale, so that the mark reaches it
    // (and its redraw-request signal) like any later one.
    manager_ = manager;
    registry_ = manager;
    registered_ = true;
    bool ok = static_cast<GUI::Controls::Factory*>(manager.get())->AddControl(this);
    for (Base* child : children_)
        ok = child->Register(manager) && ok;
    // Laid out before it knew the manager: at scale 1.
    if (manager->GetDisplayScale() != 1.f)
        OnDisplayScaleChanged();
    return ok;
}

bool Base::Unregister() {
    if (!registered_)
        return false;
    for (Base* child : children_)
        child->Unregister();
    registered_ = false;
    // The registry entry stays on purpose: the control keeps its id and Find(id) still returns it.
    // Code that must forget a control calls the manager's RemoveControl. The control stops marking
    // the manager stale (it never writes through the flag pointer the registry handed over).
    manager_.reset();
    return false;
}

DrawFlags Base::OnMouseWheel(GUI::Event*, int) {
    return DRAW_NOTHING;
}

float Base::DisplayScale() const {
    return manager_ ? manager_->GetDisplayScale() : 1.f;
}

int Base::ScaledPixels(float pixels) const {
    return static_cast<int>(std::lround(pixels * DisplayScale()));
}

DrawFlags Base::OnCancelDrag(GUI::Event*) {
    return DRAW_NOTHING;
}

bool Base::TakeLayerDamage(std::vector<GUI::Geometry::Rectangle>&) {
    return false;
}

} // namespace GUI::Controls
