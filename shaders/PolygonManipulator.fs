#version 330 core
// A gizmo handle in one colour, shaded along rotation bands, composed over the target it draws into.
// Where it covers more than half a pixel it owns the pixel for picking: the control's id and the
// handle's id.

#include "TargetAccess.glsl"

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
