#include "support/shaderdir.h"

#include "support/glfixture.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace trelvo::test {

// One directory per process and test: ctest runs tests in parallel processes.
ShaderOverrides::ShaderOverrides()
    : dir_(OutputDir() + "/shader-overrides-" + std::to_string(getpid()) + "-" +
           testing::UnitTest::GetInstance()->current_test_info()->name()) {
    std::filesystem::remove_all(dir_);
    std::filesystem::create_directories(dir_);
    setenv("TRELVOGUI_SHADER_PATH", dir_.c_str(), 1);
}

ShaderOverrides::~ShaderOverrides() {
    unsetenv("TRELVOGUI_SHADER_PATH");
    std::filesystem::remove_all(dir_);
}

void ShaderOverrides::Write(const std::string& name, const std::string& text) const {
    std::ofstream(dir_ + "/" + name) << text;
}

} // namespace trelvo::test
