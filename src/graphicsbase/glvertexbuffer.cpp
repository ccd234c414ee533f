#include <graphicsbase/glerror.h>
#include <graphicsbase/glloader.h>
#include <graphicsbase/glvertexbuffer.h>

#include <GL/glew.h>

#include <cstdint>
#include <utility>

namespace GraphicsBase {

namespace {

constexpr const char* kTag = "glvertexbuffer";

int SizeOf(GLenum type) {
    switch (type) {
    case GL_BYTE:
    case GL_UNSIGNED_BYTE:
        return 1;
    case GL_SHORT:
    case GL_UNSIGNED_SHORT:
    case GL_HALF_FLOAT:
        return 2;
    case GL_INT:
    case GL_UNSIGNED_INT:
    case GL_FLOAT:
        return 4;
    case GL_DOUBLE:
        return 8;
    default:
        return 0;
    }
}

bool IsIntegerType(GLenum type) {
    return type == GL_BYTE || type == GL_UNSIGNED_BYTE || type == GL_SHORT || type == GL_UNSIGNED_SHORT ||
           type == GL_INT || type == GL_UNSIGNED_INT;
}

GLenum ToGLUsage(GLVertexBuffer::Usage usage) {
    switch (usage) {
    case GLVertexBuffer::Usage::Dynamic:
        return GL_DYNAMIC_DRAW;
    case GLVertexBuffer::Usage::Stream:
        return GL_STREAM_DRAW;
    case GLVertexBuffer::Usage::Static:
    default:
        return GL_STATIC_DRAW;
    }
}

// Uploads into an existing buffer when the data fits, so that a buffer refreshed every frame keeps its
// storage instead of being reallocated by the driver.
void Store(GLenum target, std::size_t bytes, const void* data, GLenum usage, std::size_t& capacity) {
    if (bytes <= capacity && bytes > 0) {
        glBufferSubData(target, 0, static_cast<GLsizeiptr>(bytes), data);
        GB_CHECK_GL(kTag);
        return;
    }
    glBufferData(target, static_cast<GLsizeiptr>(bytes), data, usage);
    GB_CHECK_GL(kTag);
    capacity = bytes;
}

} // namespace

GLVertexBuffer::~GLVertexBuffer() {
    release();
}

GLVertexBuffer::GLVertexBuffer(GLVertexBuffer&& other) noexcept {
    *this = std::move(other);
}

GLVertexBuffer& GLVertexBuffer::operator=(GLVertexBuffer&& other) noexcept {
    if (this != &other) {
        release();
        for (int i = 0; i < kMaxAttributes; ++i)
            attributes_[i] = other.attributes_[i];
        attributeCount_ = std::exchange(other.attributeCount_, 0);
        stride_ = std::exchange(other.stride_, 0);
        vao_ = std::exchange(other.vao_, 0);
        vbo_ = std::exchange(other.vbo_, 0);
        ibo_ = std::exchange(other.ibo_, 0);
        vertexCapacity_ = std::exchange(other.vertexCapacity_, 0);
        indexCapacity_ = std::exchange(other.indexCapacity_, 0);
        vertexCount_ = std::exchange(other.vertexCount_, 0);
        indexCount_ = std::exchange(other.indexCount_, 0);
    }
    return *this;
}

void GLVertexBuffer::release() {
    if ((ibo_ != 0 || vbo_ != 0 || vao_ != 0) && !GraphicsBase::CanReleaseGL())
        ibo_ = vbo_ = vao_ = 0;
    if (ibo_ != 0) {
        glDeleteBuffers(1, &ibo_);
        GB_CHECK_GL(kTag);
    }
    if (vbo_ != 0) {
        glDeleteBuffers(1, &vbo_);
        GB_CHECK_GL(kTag);
    }
    if (vao_ != 0) {
        glDeleteVertexArrays(1, &vao_);
        GB_CHECK_GL(kTag);
    }
    ibo_ = vbo_ = vao_ = 0;
    vertexCapacity_ = indexCapacity_ = 0;
    vertexCount_ = indexCount_ = 0;
}

GLenum GLVertexBuffer::ToGLMode(int mode) {
    switch (mode) {
    case Points:
        return GL_POINTS;
    case Lines:
        return GL_LINES;
    case LineStrip:
        return GL_LINE_STRIP;
    case LineLoop:
        return GL_LINE_LOOP;
    case TriangleStrip:
        return GL_TRIANGLE_STRIP;
    case TriangleFan:
        return GL_TRIANGLE_FAN;
    case Triangles:
        return GL_TRIANGLES;
    default:
        return GL_NONE;
    }
}

bool GLVertexBuffer::addAttribute(int components, GLenum type, bool normalise, bool integer) {
    if (vao_ != 0 || attributeCount_ >= kMaxAttributes || components < 1 || components > 4)
        return false;
    int size = SizeOf(type);
    if (size == 0 || (integer && !IsIntegerType(type)))
        return false;
    attributes_[attributeCount_++] = Attribute{components, type, normalise, integer, stride_};
    stride_ += components * size;
    return true;
}

bool GLVertexBuffer::finishLayout() {
    if (vao_ != 0 || attributeCount_ == 0)
        return false;
    glGenVertexArrays(1, &vao_);
    GB_CHECK_GL(kTag);
    glGenBuffers(1, &vbo_);
    GB_CHECK_GL(kTag);
    if (vao_ == 0 || vbo_ == 0) {
        release();
        return false;
    }
    glBindVertexArray(vao_);
    GB_CHECK_GL(kTag);
    glBindBuffer(GL_ARRAY_BUFFER, vbo_);
    GB_CHECK_GL(kTag);
    for (int i = 0; i < attributeCount_; ++i) {
        const Attribute& a = attributes_[i];
        const void* offset = reinterpret_cast<const void*>(static_cast<std::uintptr_t>(a.offset));
        glEnableVertexAttribArray(static_cast<GLuint>(i));
        GB_CHECK_GL(kTag);
        if (a.integer)
            glVertexAttribIPointer(static_cast<GLuint>(i), a.components, a.type, stride_, offset);
        else
            glVertexAttribPointer(static_cast<GLuint>(i), a.components, a.type,
                                  a.normalise ? GL_TRUE : GL_FALSE, stride_, offset);
        GB_CHECK_GL(kTag);
    }
    glBindVertexArray(0);
    GB_CHECK_GL(kTag);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    GB_CHECK_GL(kTag);
    return true;
}

bool GLVertexBuffer::upload(const void* vertices, int vertexCount, const GLuint* indices, int indexCount,
                            Usage usage) {
    if (vao_ == 0 || vertexCount < 0 || indexCount < 0 || (vertexCount > 0 && vertices == nullptr) ||
        (indexCount > 0 && indices == nullptr))
        return false;
    GLenum hint = ToGLUsage(usage);
    glBindVertexArray(vao_);
    GB_CHECK_GL(kTag);
    glBindBuffer(GL_ARRAY_BUFFER, vbo_);
    GB_CHECK_GL(kTag);
    Store(GL_ARRAY_BUFFER, static_cast<std::size_t>(vertexCount) * static_cast<std::size_t>(stride_),
          vertices, hint, vertexCapacity_);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    GB_CHECK_GL(kTag);
    if (indexCount > 0) {
        if (ibo_ == 0) {
            glGenBuffers(1, &ibo_);
            GB_CHECK_GL(kTag);
        }
        // The element binding is vertex-array state: bound here, it stays with this VAO.
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, ibo_);
        GB_CHECK_GL(kTag);
        Store(GL_ELEMENT_ARRAY_BUFFER, static_cast<std::size_t>(indexCount) * sizeof(GLuint), indices, hint,
              indexCapacity_);
    }
    glBindVertexArray(0);
    GB_CHECK_GL(kTag);
    vertexCount_ = vertexCount;
    indexCount_ = indexCount;
    return true;
}

bool GLVertexBuffer::draw(int mode) const {
    return draw(mode, 0, indexCount_ > 0 ? indexCount_ : vertexCount_);
}

bool GLVertexBuffer::draw(int mode, int first, int count) const {
    GLenum primitive = ToGLMode(mode);
    if (primitive == GL_NONE || vao_ == 0 || first < 0 || count < 0)
        return false;
    int available = indexCount_ > 0 ? indexCount_ : vertexCount_;
    if (first + count > available)
        return false;
    if (count == 0)
        return true;
    glBindVertexArray(vao_);
    GB_CHECK_GL(kTag);
    if (indexCount_ > 0) {
        const void* offset =
            reinterpret_cast<const void*>(static_cast<std::uintptr_t>(first) * sizeof(GLuint));
        glDrawElements(primitive, count, GL_UNSIGNED_INT, offset);
    } else {
        glDrawArrays(primitive, first, count);
    }
    GB_CHECK_GL(kTag);
    glBindVertexArray(0);
    GB_CHECK_GL(kTag);
    return true;
}

} // namespace GraphicsBase
