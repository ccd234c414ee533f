#version 330 core
// One direction of the depth-aware blur over the occlusion term.

#include "SceneBlur.glsl"

uniform ivec2 Direction;

layout(location = 0) out vec4 result;

void main() {
    result = vec4(BlurOcclusion(ivec2(gl_FragCoord.xy), Direction), 0.0, 1.0);
}
