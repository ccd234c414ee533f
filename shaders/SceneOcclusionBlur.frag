#version 330 core
// One direction of the depth-aware blur over the occlusion term. PatternSize taps span the
// interleaving tile exactly, so two passes gather every direction of it back into each pixel; taps
// on another surface (far in depth) are left out, so nothing bleeds across silhouettes.

// Occlusion in r, linear depth in g (-1 where nothing was drawn).
uniform sampler2D OcclusionTexture;
uniform ivec2 Direction;
uniform int PatternSize;

layout(location = 0) out vec4 result;

void main() {
    ivec2 p = ivec2(gl_FragCoord.xy);
    ivec2 size = textureSize(OcclusionTexture, 0);
    vec2 centre = texelFetch(OcclusionTexture, p, 0).rg;
    if (centre.y < 0.0) {
        result = vec4(1.0, centre.y, 0.0, 1.0);
        return;
    }
    float sum = 0.0, weight = 0.0;
    for (int i = -PatternSize / 2; i < PatternSize / 2; ++i) {
        vec2 tap = texelFetch(OcclusionTexture, clamp(p + Direction * i, ivec2(0), size - 1), 0).rg;
        float w = abs(tap.y - centre.y) < 0.03 * centre.y ? 1.0 : 0.0;
        sum += tap.x * w;
        weight += w;
    }
    result = vec4(sum / weight, centre.y, 0.0, 1.0);
}
