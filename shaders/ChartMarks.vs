#version 330 core
// Chart marks (lines, points, bars, grid) arrive in overlay pixels, worked out on the CPU in double
// precision, so that large or far-off data values lose nothing on the way to the GPU.

layout(location = 0) in vec2 position;

uniform mat4 ProjectionMatrix;

void main() {
    gl_Position = ProjectionMatrix * vec4(position, 0.0, 1.0);
}
