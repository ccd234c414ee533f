#version 330 core
// Darkens the scene colour by the blurred occlusion term (or shows the term itself). At full
// resolution this pass is also the blur's second direction. At half resolution, of the four nearest
// occlusion texels those on the pixel's own surface are blended.

#include "SceneDepth.glsl"
#include "SceneBlur.glsl"

uniform sampler2D ColorTexture;
uniform ivec2 ViewportOrigin;
// Scene pixels per viewport pixel.
uniform vec2 ViewportScale;
uniform int Scale;
uniform bool ShowOcclusion;

layout(location = 0) out vec4 fragColor;

float upsampled(ivec2 p, float depth) {
    ivec2 size = textureSize(OcclusionTexture, 0);
    ivec2 own = min(p / 2, size - 1);
    // The neighbours on the side of the block this pixel sits on, with bilinear weights.
    ivec2 side = ivec2((p.x & 1) == 1 ? 1 : -1, (p.y & 1) == 1 ? 1 : -1);
    ivec2 cells[4] = ivec2[4](own, own + ivec2(side.x, 0), own + ivec2(0, side.y), own + side);
    const float bilinear[4] = float[4](9.0, 3.0, 3.0, 1.0);
    float z = LinearDepth(depth);
    float sum = 0.0, weight = 0.0, nearest = 1.0, nearestGap = 1e30;
    for (int i = 0; i < 4; ++i) {
        vec2 tap = texelFetch(OcclusionTexture, clamp(cells[i], ivec2(0), size - 1), 0).rg;
        float gap = abs(tap.y - z);
        if (gap < nearestGap) {
            nearestGap = gap;
            nearest = tap.x;
        }
        float w = bilinear[i] / (1.0 + gap / (0.01 * z));
        w *= w;
        sum += tap.x * w;
        weight += w;
    }
    // Where no texel lies on this surface (a sliver thinner than a block), the closest one.
    return nearestGap < 0.03 * z ? sum / weight : nearest;
}

void main() {
    ivec2 p = ivec2((gl_FragCoord.xy - vec2(ViewportOrigin)) * ViewportScale);
    vec4 colour = texelFetch(ColorTexture, p, 0);
    float occlusion;
    if (Scale == 1) {
        // Background is already 1 in the term; no depth needed.
        occlusion = BlurOcclusion(p, ivec2(0, 1)).x;
    } else {
        float depth = texelFetch(DepthTexture, p, 0).r;
        occlusion = IsBackground(depth) ? 1.0 : upsampled(p, depth);
    }
    fragColor = ShowOcclusion ? vec4(vec3(occlusion), 1.0) : vec4(colour.rgb * occlusion, colour.a);
}
