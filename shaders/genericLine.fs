#version 330 core
// An outline in its vertex colour composed over the target. A one-pixel line is a guide, not a
// handle: it leaves the ids beneath it untouched, so it never steals a press from what it crosses.

#include "TargetAccess.glsl"

in vec4 lineColor;

void main() {
    vec4 target = TARGET_COLOR;
    float a = clamp(lineColor.a, 0.0, 1.0);
    fragColor = vec4(lineColor.rgb * a + target.rgb * (1.0 - a), a + target.a * (1.0 - a));
    fragIds = TARGET_IDS;
}
