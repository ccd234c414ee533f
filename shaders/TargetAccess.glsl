// How an overlay shader reads the target it draws into, included by those shaders right after their
// header. TARGET_COLOR and TARGET_IDS are the target's colour and ids at the fragment; read them
// before writing fragColor and fragIds. The plain build samples the target (the layer being drawn is
// bound on units 9 and 10). The fast path's build, where the context offers coherent framebuffer
// fetch, defines TARGET_FETCH: the outputs start out holding the target's pixel, the very values the
// samplers return, and no draw needs a barrier.

#ifdef TARGET_FETCH
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
