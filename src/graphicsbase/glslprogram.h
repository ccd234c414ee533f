#pragma once
// A GLSL program object built from shader files found by name on disk or among embedded resources.

#include <graphicsbase/graphicsbase_export.h>

#include <string>
#include <vector>

namespace GraphicsBase {

/// Shader stages are added by file name and linked into one program. A name is looked up first in
/// the directories of TRELVOGUI_SHADER_PATH (colon-separated), so shaders can be edited without a
/// rebuild, then among the embedded resources of type "SHADER". A line `#include "name"` in a
/// shader takes the text of the named file, looked up the same way (one level deep). Failures print the
/// driver's log with the file name and return false. Move-only: owns its program and shader objects.
class GRAPHICSBASE_EXPORT GLSLProgram {
public:
    GLSLProgram() = default;
    ~GLSLProgram();

    GLSLProgram(const GLSLProgram&) = delete;
    GLSLProgram& operator=(const GLSLProgram&) = delete;
    GLSLProgram(GLSLProgram&& other) noexcept;
    GLSLProgram& operator=(GLSLProgram&& other) noexcept;

    /// Loads and compiles one stage; the stage comes from the name's ending (".vert"/".vs" vertex,
    /// ".frag"/".fs" fragment). False when the file is unknown, the ending is not recognised or the
    /// source does not compile.
    /// `defines` (lines such as `#define NAME 1`) go in right after the source's `#version` line.
    bool addShader(const std::string& fileName, const std::string& defines = {});
    /// Links the stages added so far; false (with the log printed) on failure, and without trying
    /// when an earlier addShader failed (a program missing a stage is not a usable program).
    bool linkProgram();
    bool isLinked() const { return linked_; }
    /// Makes the program current; does nothing until it is linked.
    void begin();
    /// Makes no program current.
    void end();
    unsigned int getProgram() const { return program_; }

    /// Reads a shader's text by name from the override path or the embedded resources. False when
    /// neither has it.
    static bool LoadSource(const std::string& fileName, std::string& source);

private:
    bool compileAndAttach(const std::string& fileName, const std::string& defines);
    void release();

    unsigned int program_ = 0;
    std::vector<unsigned int> shaders_;
    std::vector<std::string> names_;
    std::string failedShader_;
    bool linked_ = false;
};

} // namespace GraphicsBase
