#version 330 core
// The composite with explicit gamma correction: the plain composite (see UICompositShaderSimple.frag)
// with the colour raised to 1 / 2.2 for hosts whose framebuffer does no sRGB encoding of its own.

in vec2 uv;

uniform sampler2D texid_UI;

out vec4 fragColor;

void main() {
    vec4 c = texture(texid_UI, uv);
    vec3 rgb = c.a > 0.0 ? c.rgb / c.a : vec3(0.0);
    fragColor = vec4(pow(rgb, vec3(1.0 / 2.2)), c.a);
}
