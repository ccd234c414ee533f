#pragma once
// Small vector, quaternion and matrix types of the platform layer, backed by GLM.

#include <glm/glm.hpp>
#include <glm/gtc/quaternion.hpp>

namespace GraphicsBase {

namespace tgeom {
using vec = glm::vec3;
using vec4 = glm::vec4;
using quat = glm::quat;
using mat3 = glm::mat3;
using mat4 = glm::mat4;
} // namespace tgeom

} // namespace GraphicsBase
