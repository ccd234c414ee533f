#version 330 core
// An outline in its vertex colour composed over the target. A one-pixel line is a guide, not a
// handle: it leaves the ids beneath it untouched, so it never steals a press from what it crosses.

in vec4 lineColor;

uniform sampler2D targetColorSampler;
uniform usampler2D targetIDSampler;

layout(location = 0) out vec4 fragColor;
layout(location = 1) out uvec4 fragIds;

void main() {
    ivec2 pixel = ivec2(gl_FragCoord.xy);
    vec4 target = texelFetch(targetColorSampler, pixel, 0);
    float a = clamp(lineColor.a, 0.0, 1.0);
    fragColor = vec4(lineColor.rgb * a + target.rgb * (1.0 - a), a + target.a * (1.0 - a));
    fragIds = texelFetch(targetIDSampler, pixel, 0);
}
