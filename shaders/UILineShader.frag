#version 330 core
// Solid colour composed over the target it draws into; stamps the current ids.

#include "TargetAccess.glsl"

uniform vec4 color;
uniform uint pid;
uniform uint sid;

void main() {
    vec4 target = TARGET_COLOR;
    float a = color.a;
    fragColor = vec4(color.rgb * a + target.rgb * (1.0 - a), a + target.a * (1.0 - a));
    // A filled rectangle is a hit area: it owns every pixel it covers, whatever its opacity. The
    // outline path masks this output off.
    fragIds = uvec4(pid, sid, 0u, 0u);
}
