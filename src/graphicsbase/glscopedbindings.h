#pragma once
// Saves the host's GL state at a library entry point, sets what the library relies on, and puts the
// host's state back at the end of the scope.

#include <graphicsbase/graphicsbase_export.h>

namespace GraphicsBase {

namespace GL {

/// The guard every library entry point that touches GL opens first, so that the library lives inside
/// any host: one that sets its state once and relies on it keeps it, and nothing the host left bound
/// changes what the library draws or picks.
///
/// Saved and restored: the current program, vertex array and array buffer; the active texture unit
/// and, on every unit the library uses (kLibraryUnits), the 1D and 2D textures and the sampler; the
/// draw and read framebuffers and the draw buffer; the viewport and the scissor test and box; blend
/// enable, factors, equations and colour; depth test, mask and function; cull enable, mode and front
/// face; polygon mode; the colour mask of draw buffers 0 and 1; the stencil test; sRGB conversion;
/// pixel pack and unpack alignment, row length and buffer bindings; the renderbuffer; the clear
/// colour.
///
/// Set for the library's own work (only where the host's value differs): no pixel buffers, row
/// length 0 and alignment 4 both ways, sampler 0 on the library's units, the full colour mask, fill
/// polygon mode, no depth test, stencil test or culling, depth writes on, counter-clockwise front
/// faces, additive blend equations, and a library unit active (so that a texture bound in passing
/// never lands on a unit of the host's).
class GRAPHICSBASE_EXPORT GLScopedBindings {
public:
    /// Texture units the library binds textures on: text on 1, widget textures on 8, the targets and
    /// layers on 9 to 12, the skin atlas on 13 and 14, the final composite on 15.
    static constexpr int kLibraryUnits[] = {1, 8, 9, 10, 11, 12, 13, 14, 15};
    static constexpr int kUnitCount = sizeof kLibraryUnits / sizeof kLibraryUnits[0];

    GLScopedBindings();
    ~GLScopedBindings();

    GLScopedBindings(const GLScopedBindings&) = delete;
    GLScopedBindings& operator=(const GLScopedBindings&) = delete;

private:
    struct Unit {
        int texture1D = 0;
        int texture2D = 0;
        int sampler = 0;
    };
    void save();
    void prepare();

    int program_ = 0;
    int vertexArray_ = 0;
    int arrayBuffer_ = 0;
    int activeTexture_ = 0x84C0; // GL_TEXTURE0
    Unit units_[kUnitCount];
    int drawFramebuffer_ = 0;
    int readFramebuffer_ = 0;
    int drawBuffer_ = 0;
    int renderbuffer_ = 0;
    int viewport_[4] = {0, 0, 0, 0};
    int scissor_[4] = {0, 0, 0, 0};
    int blendFactors_[4] = {0, 0, 0, 0}; // source and destination RGB, source and destination alpha
    int blendEquations_[2] = {0, 0};     // RGB, alpha
    float blendColor_[4] = {0, 0, 0, 0};
    float clearColor_[4] = {0, 0, 0, 0};
    int depthFunc_ = 0;
    int cullMode_ = 0;
    int frontFace_ = 0;
    int polygonMode_[2] = {0, 0};
    unsigned char colorMask_[2][4] = {};
    int pixelStore_[4] = {0, 0, 0, 0}; // pack alignment, pack row length, unpack alignment, row length
    int packBuffer_ = 0;
    int unpackBuffer_ = 0;
    unsigned char scissorTest_ = 0;
    unsigned char blend_ = 0;
    unsigned char depthTest_ = 0;
    unsigned char depthMask_ = 0;
    unsigned char cullFace_ = 0;
    unsigned char stencilTest_ = 0;
    unsigned char srgb_ = 0;
};

} // namespace GL

} // namespace GraphicsBase
