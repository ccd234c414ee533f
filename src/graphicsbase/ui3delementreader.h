#pragma once
// Reads the small Wavefront OBJ models of the 3D widgets into flat vertex records.

#include <graphicsbase/graphicsbase_export.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace GraphicsBase {

/// One vertex as the widgets upload it: 12 floats and 2 integers, 56 bytes, no padding.
struct GRAPHICSBASE_EXPORT UI3DVertex {
    float position[3] = {0.f, 0.f, 0.f};
    float texCoord[2] = {0.f, 0.f};
    float normal[3] = {0.f, 0.f, 0.f};
    float color[4] = {1.f, 1.f, 1.f, 1.f};
    std::int32_t primaryId = 0;
    /// The number of the object (`o` statement, counted from 0 in file order) the vertex belongs to.
    std::int32_t secondaryId = 0;
};
static_assert(sizeof(UI3DVertex) == 14 * 4, "vertex records are uploaded as they are");

/// Parser of the OBJ subset the widget models use.
///
/// Accepted statements, one per line (LF or CRLF): `v x y z`, `vt u v`, `vn x y z`, `o <name>`,
/// `f a b c` with each corner `v`, `v/vt`, `v//vn` or `v/vt/vn` (1-based, or negative for "counted
/// from the last one"), and the ignored `#` comments, `s`, `g`, `usemtl` and `mtllib` lines. Every
/// face must be a triangle and must follow an `o`. Each triangle becomes three records in file order;
/// corners without a texture coordinate or a normal get zeros.
///
/// Everything else is refused: unknown statements, numbers that do not parse or are not finite,
/// missing or extra values, indices that are 0 or outside the lists read so far, a model without
/// faces, and more than kMaxElements entries of any kind (which bounds what a hostile input can make
/// the reader allocate). A refusal returns false and leaves `vertices` empty.
class GRAPHICSBASE_EXPORT UI3DElementReader {
public:
    /// Upper bound for positions, texture coordinates, normals and output vertices alike.
    static constexpr std::size_t kMaxElements = std::size_t(1) << 20;

    /// Parses `size` bytes of OBJ text. On failure returns false with the reason, prefixed with the
    /// line number, in `*error` when given, and printed to standard output otherwise.
    static bool LoadFromASCIIToVertexArray(const unsigned char* data, std::size_t size,
                                           std::vector<UI3DVertex>& vertices, std::string* error = nullptr);
};

} // namespace GraphicsBase
