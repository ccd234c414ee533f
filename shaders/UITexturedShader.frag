#version 330 core
// Skin piece: atlas colour masked by the stencil's coverage, composed over the target; stamps the
// ids where the piece covers the pixel.

#include "TargetAccess.glsl"

in vec2 uv;

uniform uint pid;
uniform uint sid;
uniform sampler2D textureSampler;
uniform sampler2D stencilSampler;
// Set when the atlas textures are sRGB: sampling returns linear values, while the target holds
// display-encoded colour like every other input of the overlay.
uniform bool textureIsSrgb;
uniform bool stencilIsSrgb;


#include "SrgbEncode.glsl"

void main() {
    vec4 source = texture(textureSampler, uv);
    float coverage = texture(stencilSampler, uv).r;
    if (textureIsSrgb)
        source.rgb = Encode(source.rgb);
    if (stencilIsSrgb)
        coverage = Encode(vec3(coverage)).r;
    float a = source.a * coverage;

    vec4 target = TARGET_COLOR;
    uvec4 targetIds = TARGET_IDS;

    fragColor = vec4(source.rgb * a + target.rgb * (1.0 - a), a + target.a * (1.0 - a));
    fragIds = a > 0.5 ? uvec4(pid, sid, 0u, 0u) : targetIds;
}
