#version 330 core
// A gizmo handle in one colour, shaded along rotation bands, composed over the target it draws into.
// Where it covers more than half a pixel it owns the pixel for picking: the control's id and the
// handle's id.

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

in float bandPosition;

uniform vec4 color;
// Shade at the start and at the end of a band; (1, 1) leaves the colour as it is.
uniform vec2 colorpos;
uniform uint pid;
uniform uint secondaryId;

void main() {
    vec4 target = TARGET_COLOR;
    uvec4 targetIds = TARGET_IDS;
    vec3 rgb = color.rgb * mix(colorpos.x, colorpos.y, bandPosition);
    float a = clamp(color.a, 0.0, 1.0);
    fragColor = vec4(rgb * a + target.rgb * (1.0 - a), a + target.a * (1.0 - a));
    fragIds = a > 0.5 ? uvec4(pid, secondaryId, 0u, 0u) : targetIds;
}
