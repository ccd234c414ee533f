#version 330 core
// Places the unit quad on the colour bar's rectangle and gives each corner its position along the
// ramp. The ramp runs along the rectangle's longer side: bottom to top on a bar taller than wide,
// left to right otherwise.

layout(location = 0) in vec2 position;

uniform mat4 ProjectionMatrix;
uniform ivec2 bboxMin;
uniform ivec2 bboxDim;

out float ramp;

void main() {
    vec2 pixel = vec2(bboxMin) + position * vec2(bboxDim);
    gl_Position = ProjectionMatrix * vec4(pixel, 0.0, 1.0);
    ramp = bboxDim.y > bboxDim.x ? position.y : position.x;
}
