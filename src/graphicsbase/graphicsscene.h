#pragma once
// The host's scene as the input layer sees it: the place redraw requests are delivered.

#include <graphicsbase/drawflags.h>
#include <graphicsbase/graphicsbase_export.h>

namespace GraphicsBase {

/// Hosts derive from this (or use it directly) to learn what an input event requires redrawing.
class GRAPHICSBASE_EXPORT GraphicsScene {
public:
    virtual ~GraphicsScene() = default;
    /// Receives the combined result of an input dispatch. The default accumulates it.
    virtual void SetDrawFlags(DrawFlags flags) { flags_ |= flags; }
    DrawFlags GetDrawFlags() const { return flags_; }
    void ClearDrawFlags() { flags_ = DRAW_NOTHING; }

private:
    DrawFlags flags_ = DRAW_NOTHING;
};

} // namespace GraphicsBase
