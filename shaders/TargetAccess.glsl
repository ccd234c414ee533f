// How an overlay shader reads the target it draws into, included by those shaders right after their
// header. TARGET_COLOR and TARGET_IDS are the target's colour and ids at the fragment; read them
// before writing fragColor and fragIds. The plain build samples the target (the layer being drawn is
// bound on units 9 and 10). The fast path's build, where the context offers coherent framebuffer
// fetch, defines TARGET_FETCH: the outputs start out holding the target's pixel, the very values the
// samplers return, and no draw needs a barrier. The direct build (TARGET_DIRECT) draws a scene widget
// straight into the host's framebuffer beside the composite: it composes over transparent black, which
// leaves its colour weighted by coverage, and the GL blend lays that over the host's pixels; the
// host's framebuffer holds no ids, so the ids go nowhere.

#ifdef TARGET_FETCH
#extension GL_EXT_shader_framebuffer_fetch : require
layout(location = 0) inout vec4 fragColor;
layout(location = 1) inout uvec4 fragIds;
#define TARGET_COLOR fragColor
#define TARGET_IDS fragIds
#elif defined(TARGET_DIRECT)
layout(location = 0) out vec4 fragColor;
uvec4 fragIds;
#define TARGET_COLOR vec4(0.0)
#define TARGET_IDS uvec4(0u)
#else
uniform sampler2D targetColorSampler;
uniform usampler2D targetIDSampler;
layout(location = 0) out vec4 fragColor;
layout(location = 1) out uvec4 fragIds;
#define TARGET_COLOR texelFetch(targetColorSampler, ivec2(gl_FragCoord.xy), 0)
#define TARGET_IDS texelFetch(targetIDSampler, ivec2(gl_FragCoord.xy), 0)
#endif
