#pragma once
// Scoped GL state changes: each entry saves what it changes, the destructor puts it back.

#include <graphicsbase/graphicsbase_export.h>

#include <cstddef>

namespace GraphicsBase {

namespace GL {

struct Enable {
    unsigned int capability;
};
struct Disable {
    unsigned int capability;
};
struct BlendFunc {
    unsigned int source;
    unsigned int destination;
};
struct BlendFuncSeparate {
    unsigned int sourceRgb;
    unsigned int destinationRgb;
    unsigned int sourceAlpha;
    unsigned int destinationAlpha;
};
struct ColorMask {
    bool red;
    bool green;
    bool blue;
    bool alpha;
};
/// Binds `texture` as the 2D texture of texture unit `unit` (0 for GL_TEXTURE0); the active unit is
/// left as it was.
struct BindTexture2D {
    unsigned int unit;
    unsigned int texture;
};

/// Applies state entries in order and restores them in reverse order on destruction, so a drawing
/// pass can live inside any host without leaking state. Holds up to kMaxEntries entries without
/// allocating.
class GRAPHICSBASE_EXPORT GLScopedSetter {
public:
    static constexpr std::size_t kMaxEntries = 16;

    GLScopedSetter() = default;
    template <class... Entries> explicit GLScopedSetter(Entries... entries) { (Apply(entries), ...); }
    ~GLScopedSetter();

    GLScopedSetter(const GLScopedSetter&) = delete;
    GLScopedSetter& operator=(const GLScopedSetter&) = delete;

    void Apply(Enable e);
    void Apply(Disable d);
    void Apply(BlendFunc b);
    void Apply(BlendFuncSeparate b);
    void Apply(ColorMask m);
    void Apply(BindTexture2D t);

    std::size_t Size() const { return count_; }

private:
    enum class Kind { Capability, Blend, ColorMask, Texture };
    struct Record {
        Kind kind;
        unsigned int capability;
        unsigned char wasEnabled;
        // Blend factors, the colour mask, or the unit and the texture it had.
        int blend[4];
    };
    Record* push();
    void setCapability(unsigned int capability, bool on);

    Record records_[kMaxEntries];
    std::size_t count_ = 0;
};

} // namespace GL

} // namespace GraphicsBase
