#version 330 core
// Looks the colour map up along the bar (colour i of n fills the i-th of n equal slices; a linear
// map blends between slice centres), composes it over the target and owns every pixel of the bar
// in the id layer.

#include "TargetAccess.glsl"

in float ramp;

uniform sampler1D trfunc_texunit;
uniform uint pid;
uniform uint sid;

void main() {
    vec4 source = texture(trfunc_texunit, ramp);
    vec4 target = TARGET_COLOR;
    float a = source.a;
    fragColor = vec4(source.rgb * a + target.rgb * (1.0 - a), a + target.a * (1.0 - a));
    fragIds = uvec4(pid, sid, 0u, 0u);
}
