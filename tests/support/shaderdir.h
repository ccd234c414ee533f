#pragma once
// Shader overrides on disk for one test: TRELVOGUI_SHADER_PATH points at a fresh directory.

#include <string>

namespace trelvo::test {

/// Creates a directory unique to the process and the running test and puts it on the shader search
/// path for the object's lifetime; shaders written there replace the embedded ones of that name.
class ShaderOverrides {
public:
    ShaderOverrides();
    ~ShaderOverrides();
    ShaderOverrides(const ShaderOverrides&) = delete;
    ShaderOverrides& operator=(const ShaderOverrides&) = delete;

    void Write(const std::string& name, const std::string& text) const;

private:
    std::string dir_;
};

} // namespace trelvo::test
