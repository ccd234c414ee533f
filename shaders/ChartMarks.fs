#version 330 core
// One colour over the target; the ids say which chart and which of its data sets was hit.

#include "TargetAccess.glsl"

uniform vec4 markColor;
uniform uint pid;
uniform uint sid;

void main() {
    vec4 target = TARGET_COLOR;
    float a = markColor.a;
    fragColor = vec4(markColor.rgb * a + target.rgb * (1.0 - a), a + target.a * (1.0 - a));
    fragIds = uvec4(pid, sid, 0u, 0u);
}
