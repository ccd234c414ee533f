#version 330 core
// The tick band in its vertex colour, composed over the target it draws into; every pixel it
// covers carries the axis's ids, so the band is hit-tested like any control.

#include "TargetAccess.glsl"

in vec4 bandColor;

uniform uint pid;
uniform uint sid;

void main() {
    vec4 target = TARGET_COLOR;
    float a = bandColor.a;
    fragColor = vec4(bandColor.rgb * a + target.rgb * (1.0 - a), a + target.a * (1.0 - a));
    fragIds = uvec4(pid, sid, 0u, 0u);
}
