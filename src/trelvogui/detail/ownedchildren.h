#pragma once
// Deleting the child controls a composite control owns, from its destructor.

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

} // namespace trelvo::detail
