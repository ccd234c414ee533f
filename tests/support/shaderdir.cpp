#include "support/shaderdir.h"

#include "support/glfixture.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace trelvo::test {

ShaderDir::ShaderDir()
    : dir_(OutputDir() + "/shaders-" + std::to_string(getpid()) + "-" +
           testing::UnitTest::GetInstance()->current_test_info()->name()) {
    std::filesystem::remove_all(dir_);
    std::filesystem::create_directories(dir_);
    std::string path = "/nonexistent-trelvo-dir:" + dir_;
    setenv("TRELVOGUI_SHADER_PATH", path.c_str(), 1);
}

ShaderDir::~ShaderDir() {
    unsetenv("TRELVOGUI_SHADER_PATH");
    std::filesystem::remove_all(dir_);
}

void ShaderDir::Write(const std::string& name, const std::string& text) const {
    std::ofstream(dir_ + "/" + name) << text;
}

} // namespace trelvo::test
