#version 330 core
// A gizmo handle in one colour, shaded along rotation bands, composed over the target it draws into.
// Where it covers more than half a pixel it owns the pixel for picking: the control's id and the
// handle's id.

in float bandPosition;

uniform vec4 color;
// Shade at the start and at the end of a band; (1, 1) leaves the colour as it is.
uniform vec2 colorpos;
uniform uint pid;
uniform uint secondaryId;
uniform sampler2D targetColorSampler;
uniform usampler2D targetIDSampler;

layout(location = 0) out vec4 fragColor;
layout(location = 1) out uvec4 fragIds;

void main() {
    ivec2 pixel = ivec2(gl_FragCoord.xy);
    vec4 target = texelFetch(targetColorSampler, pixel, 0);
    uvec4 targetIds = texelFetch(targetIDSampler, pixel, 0);
    vec3 rgb = color.rgb * mix(colorpos.x, colorpos.y, bandPosition);
    float a = clamp(color.a, 0.0, 1.0);
    fragColor = vec4(rgb * a + target.rgb * (1.0 - a), a + target.a * (1.0 - a));
    fragIds = a > 0.5 ? uvec4(pid, secondaryId, 0u, 0u) : targetIds;
}
