#version 330 core
// Places the unit quad, outline or line on the rectangle given in overlay pixels.

layout(location = 0) in vec2 position;

uniform mat4 ProjectionMatrix;
uniform ivec2 bboxMin;
uniform ivec2 bboxDim;
uniform float thickness;

void main() {
    vec2 pixel = vec2(bboxMin) + position * vec2(bboxDim);
    gl_Position = ProjectionMatrix * vec4(pixel, 0.0, 1.0);
    // Point primitives (the reserved circle samples) take the line thickness as their size.
    gl_PointSize = max(thickness, 1.0);
}
