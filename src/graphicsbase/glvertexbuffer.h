#pragma once
// A vertex array with its vertex buffer and optional index buffer, drawn with one primitive mode.

#include <graphicsbase/graphicsbase_export.h>

#include <cstddef>

namespace GraphicsBase {

/// Usage: declare the attributes in shader location order with addAttribute, call finishLayout once
/// (creates the GL objects), upload vertices (and indices) with upload, then draw. Attribute i is
/// fed to shader location i, interleaved in declaration order. Move-only: owns its VAO, VBO and IBO.
class GRAPHICSBASE_EXPORT GLVertexBuffer {
public:
    /// Primitive modes accepted by draw. The numbering is this library's own and differs from the GL
    /// enums for strips and loops; 4 is unused.
    enum Mode : int {
        Points = 0,
        Lines = 1,
        LineStrip = 2,
        LineLoop = 3, ///< a closed outline: the last vertex joins the first
        TriangleStrip = 5,
        TriangleFan = 6,
        Triangles = 7 ///< a plain triangle list
    };

    /// How often the contents are expected to change; chooses the GL usage hint.
    enum class Usage { Static, Dynamic, Stream };

    static constexpr int kMaxAttributes = 8;

    GLVertexBuffer() = default;
    ~GLVertexBuffer();

    GLVertexBuffer(const GLVertexBuffer&) = delete;
    GLVertexBuffer& operator=(const GLVertexBuffer&) = delete;
    GLVertexBuffer(GLVertexBuffer&& other) noexcept;
    GLVertexBuffer& operator=(GLVertexBuffer&& other) noexcept;

    /// Appends an attribute of `components` (1-4) values of `type` (GL_FLOAT, GL_UNSIGNED_BYTE, ...).
    /// `normalise` maps integer values to 0..1 (or -1..1); `integer` feeds integer types to the
    /// shader unconverted (ivec/uvec inputs). False once the layout is finished or when the
    /// arguments are out of range.
    bool addAttribute(int components, unsigned int type = 0x1406 /* GL_FLOAT */, bool normalise = false,
                      bool integer = false);
    /// Creates the GL objects and records the layout in the vertex array. False without attributes,
    /// when called twice, or when GL gives no names.
    bool finishLayout();
    /// Copies `vertexCount` vertices (and, when given, `indexCount` 32-bit indices) to the GPU. The
    /// storage is reused while the new data fits.
    bool upload(const void* vertices, int vertexCount, const unsigned int* indices = nullptr,
                int indexCount = 0, Usage usage = Usage::Static);
    /// Draws everything uploaded (indexed when indices were uploaded) with a Mode value. False for an
    /// unknown mode or before the layout is finished.
    bool draw(int mode) const;
    /// Draws `count` vertices (or indices) starting at `first`.
    bool draw(int mode, int first, int count) const;

    /// The GL primitive for a Mode value, or GL_NONE for an unknown value.
    static unsigned int ToGLMode(int mode);

    int vertexCount() const { return vertexCount_; }
    int indexCount() const { return indexCount_; }
    int stride() const { return stride_; }
    bool isReady() const { return vao_ != 0; }
    unsigned int vertexArray() const { return vao_; }

private:
    struct Attribute {
        int components;
        unsigned int type;
        bool normalise;
        bool integer;
        int offset;
    };
    void release();

    Attribute attributes_[kMaxAttributes] = {};
    int attributeCount_ = 0;
    int stride_ = 0;
    unsigned int vao_ = 0;
    unsigned int vbo_ = 0;
    unsigned int ibo_ = 0;
    std::size_t vertexCapacity_ = 0;
    std::size_t indexCapacity_ = 0;
    int vertexCount_ = 0;
    int indexCount_ = 0;
};

} // namespace GraphicsBase
