// One direction of the depth-aware blur over the occlusion term, shared by the blur pass and the
// full-resolution apply pass (which folds in the second direction). PatternSize taps span the
// occlusion pass's tile exactly, so two directions gather all of its pixels' directions into each;
// taps on another surface (far in depth) are left out, so nothing bleeds across silhouettes.

// Occlusion in r, linear depth in g (-1 where nothing was drawn).
uniform sampler2D OcclusionTexture;
uniform int PatternSize;

// The blurred term and the pixel's own linear depth. The loops have a constant bound so that they
// unroll and the taps stay in registers; a 2-texel tile leaves the outer two taps out.
vec2 BlurOcclusion(ivec2 p, ivec2 direction) {
    ivec2 last = textureSize(OcclusionTexture, 0) - 1;
    float depth = texelFetch(OcclusionTexture, p, 0).g;
    if (depth < 0.0)
        return vec2(1.0, depth);
    float sum = 0.0, weight = 0.0;
    for (int i = -2; i < 2; ++i) {
        if (i < -PatternSize / 2 || i >= PatternSize / 2)
            continue;
        vec2 tap = texelFetch(OcclusionTexture, clamp(p + direction * i, ivec2(0), last), 0).rg;
        float w = abs(tap.y - depth) < 0.03 * depth ? 1.0 : 0.0;
        sum += tap.x * w;
        weight += w;
    }
    return vec2(sum / weight, depth);
}
