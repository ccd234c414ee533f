#pragma once
// A private shader override directory for one test: TRELVOGUI_SHADER_PATH points at it meanwhile.

#include <string>

namespace trelvo::test {

/// Points TRELVOGUI_SHADER_PATH at a fresh directory (after one that does not exist, so the search
/// must walk the list) for the lifetime of the object. One directory per process and test: ctest
/// runs tests in parallel processes.
class ShaderDir {
public:
    ShaderDir();
    ~ShaderDir();
    ShaderDir(const ShaderDir&) = delete;
    ShaderDir& operator=(const ShaderDir&) = delete;

    /// Writes a shader file that then overrides the embedded one of that name.
    void Write(const std::string& name, const std::string& text) const;

private:
    std::string dir_;
};

} // namespace trelvo::test
