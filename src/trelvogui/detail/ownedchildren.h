#pragma once
// Helpers of the composite data controls: deleting the children they own, and saying where they draw.

#include <trelvogui/gui/controlbase.h>

#include <initializer_list>

namespace trelvo::detail {

/// Takes each child out of `parent`'s child list directly and deletes it: RemoveChild would request
/// a redraw up a parent chain that may already be gone while the host tears its tree down.
inline void DeleteOwnedChildren(GUI::Controls::Base& parent,
                                std::initializer_list<GUI::Controls::Base*> children) {
    for (GUI::Controls::Base* child : children) {
        parent.Children()->remove(child);
        delete child;
    }
}

/// A root's layer footprint: its rectangle grown by `overhang` pixels (labels centred on the ends of
/// an axis reach beyond it), within a layer of the given size.
inline GUI::Geometry::Rectangle GrownFootprint(const GUI::Geometry::Rectangle& r, int overhang,
                                               int layerWidth, int layerHeight) {
    return {r.xMin - overhang < 0 ? 0 : r.xMin - overhang,
            r.xMax + overhang > layerWidth ? layerWidth : r.xMax + overhang,
            r.yMin - overhang < 0 ? 0 : r.yMin - overhang,
            r.yMax + overhang > layerHeight ? layerHeight : r.yMax + overhang};
}

} // namespace trelvo::detail
