#version 330 core
#extension GL_ARB_texture_gather : enable
// Darkens the scene colour by the blurred occlusion term (or shows the term itself). At full
// resolution this pass is also the blur's second direction. At half resolution, of the four nearest
// occlusion texels those on the pixel's own surface are blended.

#include "SceneDepth.glsl"
#include "SceneBlur.glsl"

uniform sampler2D ColorTexture;
// The occlusion pass's linear depth (half resolution), the same as the occlusion texture's g.
uniform sampler2D LinearDepthTexture;
uniform ivec2 ViewportOrigin;
// Scene pixels per viewport pixel.
uniform vec2 ViewportScale;
uniform int Scale;
uniform bool ShowOcclusion;

layout(location = 0) out vec4 fragColor;

// The four texels around pixel `p` at half resolution, in textureGather's order: (0,1), (1,1),
// (1,0), (0,0) from `corner`.
void blockTexels(ivec2 corner, out vec4 occlusion, out vec4 depth) {
    vec2 size = vec2(textureSize(OcclusionTexture, 0));
#ifdef GL_ARB_texture_gather
    // One fetch gathers each quantity of the whole block.
    vec2 uv = (vec2(corner) + 1.0) / size;
    occlusion = textureGather(OcclusionTexture, uv);
    depth = textureGather(LinearDepthTexture, uv);
#else
    ivec2 last = ivec2(size) - 1;
    ivec2 cells[4] = ivec2[4](corner + ivec2(0, 1), corner + ivec2(1, 1), corner + ivec2(1, 0), corner);
    for (int i = 0; i < 4; ++i) {
        occlusion[i] = texelFetch(OcclusionTexture, clamp(cells[i], ivec2(0), last), 0).r;
        depth[i] = texelFetch(LinearDepthTexture, clamp(cells[i], ivec2(0), last), 0).r;
    }
#endif
}

float upsampled(ivec2 p, float depth) {
    // The block of four texels on the side of its own texel this pixel sits on, with bilinear
    // weights: 9 for its own texel, 3 for the two beside, 1 for the diagonal.
    ivec2 own = p / 2;
    bvec2 after = bvec2((p.x & 1) == 1, (p.y & 1) == 1);
    ivec2 corner = own - ivec2(after.x ? 0 : 1, after.y ? 0 : 1);
    vec4 wx = after.x ? vec4(3.0, 1.0, 1.0, 3.0) : vec4(1.0, 3.0, 3.0, 1.0);
    vec4 wy = after.y ? vec4(1.0, 1.0, 3.0, 3.0) : vec4(3.0, 3.0, 1.0, 1.0);
    vec4 occlusion, texelDepth;
    blockTexels(corner, occlusion, texelDepth);
    float z = LinearDepth(depth);
    vec4 gap = abs(texelDepth - z);
    vec4 w = wx * wy / (1.0 + gap / (0.01 * z));
    w *= w;
    // Where no texel lies on this surface (a sliver thinner than a block), the closest one.
    float nearestGap = min(min(gap.x, gap.y), min(gap.z, gap.w));
    if (nearestGap < 0.03 * z)
        return dot(occlusion, w) / dot(w, vec4(1.0));
    return gap.x == nearestGap ? occlusion.x
         : gap.y == nearestGap ? occlusion.y
         : gap.z == nearestGap ? occlusion.z
                               : occlusion.w;
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
