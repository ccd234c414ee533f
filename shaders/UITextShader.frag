#version 330 core
// Tints the text image's per-channel coverage with the font colour and lays it over the current
// target, which is read back here because blending is off while the overlay draws. Where the text
// covers more than half a pixel the control's ids replace the target's, so a click on the text
// reaches its control.

#ifdef TARGET_FETCH
// The fast path's build where the context offers coherent framebuffer fetch: the outputs start out
// holding the target's pixel, the very values the samplers below return, and no draw needs a barrier.
#extension GL_EXT_shader_framebuffer_fetch : require
layout(location = 0) inout vec4 fragColor;
layout(location = 1) inout uvec4 fragIds;
#define TARGET_COLOR fragColor
#define TARGET_IDS fragIds
#else
uniform sampler2D targetColorSampler;
uniform usampler2D targetIDSampler;
layout(location = 0) out vec4 fragColor;
layout(location = 1) out uvec4 fragIds;
#define TARGET_COLOR texelFetch(targetColorSampler, ivec2(gl_FragCoord.xy), 0)
#define TARGET_IDS texelFetch(targetIDSampler, ivec2(gl_FragCoord.xy), 0)
#endif

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
