#pragma once
// Flat-coloured marks of the charts, drawn in overlay pixels and clipped to a plot area.

#include <trelvogui/gui/geometry.h>
#include <trelvogui/gui/guitypes.h>

#include <memory>
#include <vector>

namespace GraphicsBase {
class GLSLProgram;
}
namespace GraphicsBase {
class GLVertexBuffer;
}

namespace trelvo::detail {

/// One program pair ("ChartMarks.vs" + "ChartMarks.fs") and one stream buffer: each chart renderer
/// owns one. Segments wider than a pixel and point marks become triangles on the CPU, since core
/// contexts draw lines one pixel wide only.
class ChartMarks {
public:
    ChartMarks();
    ~ChartMarks();
    ChartMarks(const ChartMarks&) = delete;
    ChartMarks& operator=(const ChartMarks&) = delete;

    /// With the GL context current; false (with the program's own report) when the shaders fail.
    bool Initialize();
    bool Ready() const { return buffer_ != nullptr; }

    /// Draws `xy` (pixel pairs) as GLVertexBuffer lines or triangles in one colour, inside `clip`
    /// (overlay pixels) and inside whatever scissor is already set, which comes back afterwards.
    void Draw(const std::vector<float>& xy, int mode, const GUI::Color& color, unsigned pid, unsigned sid,
              const GUI::Geometry::Rectangle& clip);

    /// Appends the triangles of segment (x0, y0)-(x1, y1), `width` pixels wide.
    static void AppendWideSegment(std::vector<float>& out, float x0, float y0, float x1, float y1,
                                  float width);
    /// Appends the two triangles of an axis-aligned rectangle.
    static void AppendRectangle(std::vector<float>& out, float x0, float y0, float x1, float y1);

private:
    std::unique_ptr<GraphicsBase::GLSLProgram> program_;
    std::unique_ptr<GraphicsBase::GLSLProgram> fetch_;
    std::unique_ptr<GraphicsBase::GLVertexBuffer> buffer_;
};

} // namespace trelvo::detail
