#version 330 core
// Solid colour composed over the target it draws into; stamps the current ids.

uniform vec4 color;
uniform uint pid;
uniform uint sid;
uniform sampler2D targetColorSampler;

layout(location = 0) out vec4 fragColor;
layout(location = 1) out uvec4 fragIds;

void main() {
    vec4 target = texelFetch(targetColorSampler, ivec2(gl_FragCoord.xy), 0);
    float a = color.a;
    fragColor = vec4(color.rgb * a + target.rgb * (1.0 - a), a + target.a * (1.0 - a));
    // A filled rectangle is a hit area: it owns every pixel it covers, whatever its opacity. The
    // outline path masks this output off.
    fragIds = uvec4(pid, sid, 0u, 0u);
}
