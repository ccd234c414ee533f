#include <trelvogui/gui/controlfactory.h>

#include <trelvogui/gui/controlbase.h>

#include <graphicsbase/logfile.h>

#include <algorithm>

using namespace GraphicsBase;

namespace GUI::Controls {

bool Factory::AddControl(GUI::Controls::Base* control) {
    if (!control)
        return false;
    // The same control, not merely the same id: a control that comes from another registry still
    // carries the id it had there.
    if (Find(control->GetId()) == control) {
        LogFile::Instance().AddLine(LogLevel::Warning, "Control already exists in the GUI.\n");
        return false;
    }
    ++counter_;
    control->SetId(counter_);
    controls_.push_back(control);
    ids_.erase(counter_);
    ids_.emplace(counter_, control);
    return true;
}

bool Factory::RemoveControl(GUI::Controls::Base* control) {
    if (!control)
        return false;
    auto entry = ids_.find(control->GetId());
    if (entry == ids_.end() || entry->second != control)
        return false;
    auto it = std::find(controls_.begin(), controls_.end(), control);
    if (it != controls_.end())
        controls_.erase(it);
    ids_.erase(entry);
    return true;
}

bool Factory::Contains(unsigned int id) const {
    return ids_.count(id) != 0;
}

GUI::Controls::Base* Factory::Find(unsigned int id) const {
    auto it = ids_.find(id);
    return it == ids_.end() ? nullptr : it->second;
}

bool Factory::Contains(GUI::Controls::Base* control) const {
    return control && Contains(control->GetId());
}

unsigned int Factory::Find(GUI::Controls::Base* control) const {
    if (!control)
        return 0;
    unsigned int id = control->GetId();
    return Contains(id) ? id : 0;
}

} // namespace GUI::Controls
