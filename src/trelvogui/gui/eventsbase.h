#pragma once
// Lets a control carry one user callback.

#include <trelvogui/trelvogui_export.h>

#include <graphicsbase/drawflags.h>

#include <functional>
#include <memory>

namespace GUI::Events {

/// Holds at most one no-argument callable returning DrawFlags. Set `callback` directly or with
/// SetCallback; null means none.
class TRELVOGUI_EXPORT Base {
public:
    using Callback = std::function<GraphicsBase::DrawFlags()>;

    virtual ~Base();

    void SetCallback(Callback f) { callback = std::make_unique<Callback>(std::move(f)); }

    std::unique_ptr<Callback> callback;
};

} // namespace GUI::Events
