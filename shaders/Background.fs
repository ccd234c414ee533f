#version 330 core
// The tick band in its vertex colour, composed over the target it draws into; every pixel it
// covers carries the axis's ids, so the band is hit-tested like any control.

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

in vec4 bandColor;

uniform uint pid;
uniform uint sid;

void main() {
    vec4 target = TARGET_COLOR;
    float a = bandColor.a;
    fragColor = vec4(bandColor.rgb * a + target.rgb * (1.0 - a), a + target.a * (1.0 - a));
    fragIds = uvec4(pid, sid, 0u, 0u);
}
