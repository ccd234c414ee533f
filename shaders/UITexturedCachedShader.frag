#version 330 core
// Composites a cached layer (colour and ids) over the target, faded by the frame's alpha.

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

in vec2 uv;

uniform float alpha;
uniform sampler2D sourceColorSampler;
uniform usampler2D sourceIDSampler;

void main() {
    vec4 source = texture(sourceColorSampler, uv);
    uvec4 sourceIds = texture(sourceIDSampler, uv);
    float a = source.a * alpha;

    vec4 target = TARGET_COLOR;
    uvec4 targetIds = TARGET_IDS;

    fragColor = vec4(source.rgb * a + target.rgb * (1.0 - a), a + target.a * (1.0 - a));
    // A layer faded out completely must not stay clickable.
    fragIds = (sourceIds.x != 0u && a > 0.0) ? uvec4(sourceIds.xy, 0u, 0u) : targetIds;
}
