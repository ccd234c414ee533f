#version 330 core
// Places the unit quad at `pos` with the size of the text texture, in overlay pixels.

layout(location = 0) in vec2 position;

uniform mat4 ProjectionMatrix;
uniform ivec2 pos;
uniform uvec2 rect;

// Texel position inside the text image, in pixels from its bottom-left corner.
out vec2 texel;

void main() {
    texel = position * vec2(rect);
    gl_Position = ProjectionMatrix * vec4(vec2(pos) + texel, 0.0, 1.0);
}
