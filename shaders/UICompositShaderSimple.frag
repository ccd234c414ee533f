#version 330 core
// The layer holds colour already weighted by its coverage (drawn "source over" onto transparent
// black); undo that weighting so that the GL blend (source alpha, one minus source alpha) does not
// darken anti-aliased edges twice. Explicit gamma correction has its own program
// (UICompositShaderGamma.frag), so the plain composite pays nothing for it.

in vec2 uv;

uniform sampler2D texid_UI;

out vec4 fragColor;

void main() {
    vec4 c = texture(texid_UI, uv);
    vec3 rgb = c.a > 0.0 ? c.rgb / c.a : vec3(0.0);
    fragColor = vec4(rgb, c.a);
}
