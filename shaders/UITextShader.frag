#version 330 core
// Tints the text image's per-channel coverage with the font colour and lays it over the current
// target, which is read back here because blending is off while the overlay draws. Where the text
// covers more than half a pixel the control's ids replace the target's, so a click on the text
// reaches its control.

#include "TargetAccess.glsl"

in vec2 texel;

uniform sampler2D textureSampler;
uniform uint pid;
uniform uint sid;
uniform vec4 fontColor;

void main() {
    // The image is stored top row first; fetch exact texels so the glyphs stay as sharp as rasterised.
    ivec2 size = textureSize(textureSampler, 0);
    ivec2 t = ivec2(floor(texel));
    vec3 ink = texelFetch(textureSampler, ivec2(t.x, size.y - 1 - t.y), 0).rgb;
    float inkMax = max(ink.r, max(ink.g, ink.b));
    vec3 coverage = ink * fontColor.a;
    float alpha = inkMax * fontColor.a;

    vec4 target = TARGET_COLOR;
    uvec4 targetIds = TARGET_IDS;
    fragColor = vec4(mix(target.rgb, fontColor.rgb, coverage), alpha + target.a * (1.0 - alpha));
    fragIds = inkMax > 0.5 ? uvec4(pid, sid, 0u, 0u) : targetIds;
}
