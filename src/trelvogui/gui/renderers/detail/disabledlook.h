#pragma once
// How a disabled data control or scene widget is drawn: faded, and leaving picking to what is behind.

namespace GUI::Renderer::detail {

/// While one is alive, whatever is drawn into the current target comes out at kOpacity of itself
/// (constant-alpha blending over what the shaders compose) and leaves the id attachment as it was,
/// so the pointer reaches what lies behind. Nests; gives back the GL state it found.
class DisabledLook {
public:
    static constexpr float kOpacity = 0.45f;

    DisabledLook();
    ~DisabledLook();
    DisabledLook(const DisabledLook&) = delete;
    DisabledLook& operator=(const DisabledLook&) = delete;

    /// Whether one is alive: draws that turn blending off for themselves keep it on then.
    static bool Active();

private:
    bool blend_ = false;
    int functions_[4] = {};
    float color_[4] = {};
    bool idMask_[4] = {};
};

/// Turns blending off for a draw that composes in its shader, unless a DisabledLook is fading it.
void DisableBlending();

} // namespace GUI::Renderer::detail
