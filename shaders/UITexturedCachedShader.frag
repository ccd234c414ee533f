#version 330 core
// Composites a cached layer (colour and ids) over the target, faded by the frame's alpha.

in vec2 uv;

uniform float alpha;
uniform sampler2D sourceColorSampler;
uniform usampler2D sourceIDSampler;
uniform sampler2D targetColorSampler;
uniform usampler2D targetIDSampler;

layout(location = 0) out vec4 fragColor;
layout(location = 1) out uvec4 fragIds;

void main() {
    vec4 source = texture(sourceColorSampler, uv);
    uvec4 sourceIds = texture(sourceIDSampler, uv);
    float a = source.a * alpha;

    ivec2 pixel = ivec2(gl_FragCoord.xy);
    vec4 target = texelFetch(targetColorSampler, pixel, 0);
    uvec4 targetIds = texelFetch(targetIDSampler, pixel, 0);

    fragColor = vec4(source.rgb * a + target.rgb * (1.0 - a), a + target.a * (1.0 - a));
    // A layer faded out completely must not stay clickable.
    fragIds = (sourceIds.x != 0u && a > 0.0) ? uvec4(sourceIds.xy, 0u, 0u) : targetIds;
}
