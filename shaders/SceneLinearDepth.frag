#version 330 core
// Linear depth at the occlusion pass's resolution, once per frame: the pass then reads one small
// float per sample instead of the full depth buffer and its linearisation. Background is -1.

#include "SceneDepth.glsl"

// Full-resolution pixels per occlusion pixel along each axis (1 or 2).
uniform int Scale;

layout(location = 0) out vec4 result;

void main() {
    float depth = texelFetch(DepthTexture, ivec2(gl_FragCoord.xy) * Scale, 0).r;
    result = vec4(IsBackground(depth) ? -1.0 : LinearDepth(depth), 0.0, 0.0, 1.0);
}
