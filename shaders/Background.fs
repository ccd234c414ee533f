#version 330 core
// The tick band in its vertex colour, composed over the target it draws into; every pixel it
// covers carries the axis's ids, so the band is hit-tested like any control.

in vec4 bandColor;

uniform uint pid;
uniform uint sid;
uniform sampler2D targetColorSampler;

layout(location = 0) out vec4 fragColor;
layout(location = 1) out uvec4 fragIds;

void main() {
    vec4 target = texelFetch(targetColorSampler, ivec2(gl_FragCoord.xy), 0);
    float a = bandColor.a;
    fragColor = vec4(bandColor.rgb * a + target.rgb * (1.0 - a), a + target.a * (1.0 - a));
    fragIds = uvec4(pid, sid, 0u, 0u);
}
