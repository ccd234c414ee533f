#version 330 core
// Looks the colour map up along the bar (colour i of n fills the i-th of n equal slices; a linear
// map blends between slice centres), composes it over the target and owns every pixel of the bar
// in the id layer.

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

in float ramp;

uniform sampler1D trfunc_texunit;
uniform uint pid;
uniform uint sid;

void main() {
    vec4 source = texture(trfunc_texunit, ramp);
    vec4 target = TARGET_COLOR;
    float a = source.a;
    fragColor = vec4(source.rgb * a + target.rgb * (1.0 - a), a + target.a * (1.0 - a));
    fragIds = uvec4(pid, sid, 0u, 0u);
}
