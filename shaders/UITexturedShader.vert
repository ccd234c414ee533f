#version 330 core
// Places the unit quad on the rectangle and maps it onto an atlas area.

layout(location = 0) in vec2 position;

uniform mat4 ProjectionMatrix;
uniform ivec2 bboxMin;
uniform ivec2 bboxDim;
uniform vec2 uvMin;
uniform vec2 uvDim;

out vec2 uv;

void main() {
    vec2 pixel = vec2(bboxMin) + position * vec2(bboxDim);
    gl_Position = ProjectionMatrix * vec4(pixel, 0.0, 1.0);
    // Atlas images are stored top row first, so t grows down the image while overlay y grows up:
    // the rectangle's top edge shows uvMin.t and its bottom edge uvMin.t + uvDim.t.
    uv = vec2(uvMin.x + position.x * uvDim.x, uvMin.y + (1.0 - position.y) * uvDim.y);
}
