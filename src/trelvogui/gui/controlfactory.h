#pragma once
// Registry of the controls of one manager: hands out ids and maps them back to controls.

#include <trelvogui/trelvogui_export.h>

#include <list>
#include <map>

namespace GUI::Controls {

class Base;

/// Ids start at 1 and are never reused; 0 means "no control" everywhere. The list holds every
/// registered control in drawing order. Owns neither the controls nor their memory.
class TRELVOGUI_EXPORT Factory {
public:
    Factory() = default;
    virtual ~Factory() = default;

    Factory(const Factory&) = delete;
    Factory& operator=(const Factory&) = delete;

    /// The last id handed out.
    unsigned int Counter() const { return counter_; }
    bool Contains(unsigned int id) const;
    GUI::Controls::Base* Find(unsigned int id) const;
    /// Looks the control up by its current id, not its address.
    bool Contains(GUI::Controls::Base* control) const;
    /// The control's id if the registry holds that id, else 0.
    unsigned int Find(GUI::Controls::Base* control) const;
    /// Registered controls in drawing order.
    std::list<GUI::Controls::Base*>& Controls() { return controls_; }

protected:
    friend class GUI::Controls::Base;

    virtual bool AddControl(GUI::Controls::Base* control);
    virtual bool RemoveControl(GUI::Controls::Base* control);

private:
    std::list<GUI::Controls::Base*> controls_;
    unsigned int counter_ = 0;
    std::map<unsigned int, GUI::Controls::Base*> ids_;
};

} // namespace GUI::Controls
