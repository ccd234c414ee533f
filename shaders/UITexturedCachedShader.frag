#version 330 core
// Composites a cached layer (colour and ids) over the target, faded by the frame's alpha.

#include "TargetAccess.glsl"

in vec2 uv;

uniform float alpha;
uniform sampler2D sourceColorSampler;
uniform usampler2D sourceIDSampler;

void main() {
    vec4 source = texture(sourceColorSampler, uv);
    uvec4 sourceIds = texture(sourceIDSampler, uv);
    float a = source.a * alpha;

    vec4 target = TARGET_COLOR;
    uvec4 targetIds = TARGET_IDS;

    fragColor = vec4(source.rgb * a + target.rgb * (1.0 - a), a + target.a * (1.0 - a));
    // A layer faded out completely must not stay clickable.
    fragIds = (sourceIds.x != 0u && a > 0.0) ? uvec4(sourceIds.xy, 0u, 0u) : targetIds;
}
