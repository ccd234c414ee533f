#include <graphicsbase/glerror.h>
#include <graphicsbase/glloader.h>
#include <graphicsbase/glslprogram.h>
#include <graphicsbase/resources.h>

#include <GL/glew.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <utility>

namespace GraphicsBase {

namespace {

constexpr const char* kTag = "glslprogram";

bool EndsWith(const std::string& s, const char* suffix) {
    std::string t(suffix);
    return s.size() >= t.size() && s.compare(s.size() - t.size(), t.size(), t) == 0;
}

GLenum StageFor(const std::string& name) {
    if (EndsWith(name, ".vert") || EndsWith(name, ".vs"))
        return GL_VERTEX_SHADER;
    if (EndsWith(name, ".frag") || EndsWith(name, ".fs"))
        return GL_FRAGMENT_SHADER;
    return 0;
}

bool ReadFile(const std::string& path, std::string& out) {
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return false;
    std::ostringstream text;
    text << in.rdbuf();
    out = text.str();
    return true;
}

std::string ShaderLog(GLuint shader) {
    GLint length = 0;
    glGetShaderiv(shader, GL_INFO_LOG_LENGTH, &length);
    GB_CHECK_GL(kTag);
    std::string text(length > 0 ? static_cast<size_t>(length) : 0, '\0');
    if (length > 0)
        glGetShaderInfoLog(shader, length, nullptr, text.data());
    GB_CHECK_GL(kTag);
    return text.c_str();
}

std::string ProgramLog(GLuint program) {
    GLint length = 0;
    glGetProgramiv(program, GL_INFO_LOG_LENGTH, &length);
    GB_CHECK_GL(kTag);
    std::string text(length > 0 ? static_cast<size_t>(length) : 0, '\0');
    if (length > 0)
        glGetProgramInfoLog(program, length, nullptr, text.data());
    GB_CHECK_GL(kTag);
    return text.c_str();
}

/// Replaces each line `#include "name"` with the named file's text, found like any shader: GLSL has
/// no include of its own, and the overlay shaders share how they read their target. One level deep;
/// a #line after each inclusion keeps the driver's messages on the including file's numbering.
bool ExpandIncludes(const std::string& fileName, std::string& source) {
    static const std::string kDirective = "#include \"";
    std::string out;
    size_t start = 0;
    int line = 1;
    while (start < source.size()) {
        size_t end = source.find('\n', start);
        end = end == std::string::npos ? source.size() : end + 1;
        const std::string text = source.substr(start, end - start);
        if (text.compare(0, kDirective.size(), kDirective) == 0) {
            const size_t close = text.find('"', kDirective.size());
            const std::string name =
                text.substr(kDirective.size(), close == std::string::npos ? 0 : close - kDirective.size());
            std::string included;
            if (close == std::string::npos || !GLSLProgram::LoadSource(name, included)) {
                std::printf("GLSLProgram: %s: included file %s not found\n", fileName.c_str(), name.c_str());
                return false;
            }
            out += included;
            if (!included.empty() && included.back() != '\n')
                out += '\n';
            out += "#line " + std::to_string(line + 1) + "\n";
        } else {
            out += text;
        }
        start = end;
        ++line;
    }
    source.swap(out);
    return true;
}

} // namespace

GLSLProgram::~GLSLProgram() {
    release();
}

GLSLProgram::GLSLProgram(GLSLProgram&& other) noexcept
    : program_(std::exchange(other.program_, 0)), shaders_(std::move(other.shaders_)),
      names_(std::move(other.names_)), failedShader_(std::move(other.failedShader_)),
      linked_(std::exchange(other.linked_, false)) {
    other.shaders_.clear();
    other.names_.clear();
    other.failedShader_.clear();
}

GLSLProgram& GLSLProgram::operator=(GLSLProgram&& other) noexcept {
    if (this != &other) {
        release();
        program_ = std::exchange(other.program_, 0);
        shaders_ = std::move(other.shaders_);
        names_ = std::move(other.names_);
        failedShader_ = std::move(other.failedShader_);
        linked_ = std::exchange(other.linked_, false);
        other.shaders_.clear();
        other.names_.clear();
        other.failedShader_.clear();
    }
    return *this;
}

void GLSLProgram::release() {
    if ((program_ != 0 || !shaders_.empty()) && !GraphicsBase::CanReleaseGL()) {
        shaders_.clear();
        program_ = 0;
    }
    for (GLuint shader : shaders_) {
        glDeleteShader(shader);
        GB_CHECK_GL(kTag);
    }
    shaders_.clear();
    names_.clear();
    failedShader_.clear();
    if (program_ != 0) {
        glDeleteProgram(program_);
        GB_CHECK_GL(kTag);
        program_ = 0;
    }
    linked_ = false;
}

bool GLSLProgram::LoadSource(const std::string& fileName, std::string& source) {
    if (const char* path = std::getenv("TRELVOGUI_SHADER_PATH")) {
        std::string dirs(path);
        size_t start = 0;
        while (start <= dirs.size()) {
            size_t end = dirs.find(':', start);
            if (end == std::string::npos)
                end = dirs.size();
            std::string dir = dirs.substr(start, end - start);
            if (!dir.empty() && ReadFile(dir + "/" + fileName, source))
                return true;
            start = end + 1;
        }
    }
    ResourceData embedded = FindResource(fileName, "SHADER");
    if (!embedded)
        return false;
    source.assign(reinterpret_cast<const char*>(embedded.data), embedded.size);
    return true;
}

bool GLSLProgram::addShader(const std::string& fileName, const std::string& defines) {
    bool added = compileAndAttach(fileName, defines);
    if (!added && failedShader_.empty())
        failedShader_ = fileName;
    return added;
}

bool GLSLProgram::compileAndAttach(const std::string& fileName, const std::string& defines) {
    GLenum stage = StageFor(fileName);
    if (stage == 0) {
        std::printf("GLSLProgram: %s: unknown shader stage (expected .vert, .vs, .frag or .fs)\n",
                    fileName.c_str());
        return false;
    }
    std::string source;
    if (!LoadSource(fileName, source)) {
        std::printf("GLSLProgram: %s: shader file not found\n", fileName.c_str());
        return false;
    }
    if (!ExpandIncludes(fileName, source))
        return false;
    if (!defines.empty()) {
        // After the #version line, which must stay first; #line keeps the driver's messages pointing
        // at the file's own line numbers.
        size_t at = source.compare(0, 8, "#version") == 0 ? source.find('\n') : std::string::npos;
        at = at == std::string::npos ? 0 : at + 1;
        size_t lineOfRest =
            static_cast<size_t>(std::count(source.begin(), source.begin() + static_cast<long>(at), '\n')) + 1;
        source.insert(at, defines + "#line " + std::to_string(lineOfRest) + "\n");
    }

    GLuint shader = glCreateShader(stage);
    GB_CHECK_GL(kTag);
    if (shader == 0) {
        std::printf("GLSLProgram: %s: could not create a shader object\n", fileName.c_str());
        return false;
    }
    const char* text = source.c_str();
    GLint length = static_cast<GLint>(source.size());
    glShaderSource(shader, 1, &text, &length);
    GB_CHECK_GL(kTag);
    glCompileShader(shader);
    GB_CHECK_GL(kTag);
    GLint compiled = GL_FALSE;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &compiled);
    GB_CHECK_GL(kTag);
    if (compiled != GL_TRUE) {
        std::printf("GLSLProgram: %s: compile failed:\n%s\n", fileName.c_str(), ShaderLog(shader).c_str());
        glDeleteShader(shader);
        GB_CHECK_GL(kTag);
        return false;
    }
    if (program_ == 0) {
        program_ = glCreateProgram();
        GB_CHECK_GL(kTag);
        if (program_ == 0) {
            std::printf("GLSLProgram: %s: could not create a program object\n", fileName.c_str());
            glDeleteShader(shader);
            GB_CHECK_GL(kTag);
            return false;
        }
    }
    glAttachShader(program_, shader);
    GB_CHECK_GL(kTag);
    shaders_.push_back(shader);
    names_.push_back(fileName);
    linked_ = false;
    return true;
}

bool GLSLProgram::linkProgram() {
    linked_ = false;
    if (!failedShader_.empty()) {
        std::printf("GLSLProgram: link refused: %s failed to load\n", failedShader_.c_str());
        return false;
    }
    if (program_ == 0) {
        std::printf("GLSLProgram: link failed: no shaders were added\n");
        return false;
    }
    glLinkProgram(program_);
    GB_CHECK_GL(kTag);
    GLint linked = GL_FALSE;
    glGetProgramiv(program_, GL_LINK_STATUS, &linked);
    GB_CHECK_GL(kTag);
    if (linked != GL_TRUE) {
        std::string files;
        for (const auto& n : names_)
            files += (files.empty() ? "" : " + ") + n;
        std::printf("GLSLProgram: %s: link failed:\n%s\n", files.c_str(), ProgramLog(program_).c_str());
        return false;
    }
    linked_ = true;
    return true;
}

void GLSLProgram::begin() {
    if (!linked_)
        return;
    glUseProgram(program_);
    GB_CHECK_GL(kTag);
}

void GLSLProgram::end() {
    glUseProgram(0);
    GB_CHECK_GL(kTag);
}

} // namespace GraphicsBase
