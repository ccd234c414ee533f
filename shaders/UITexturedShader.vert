#version 330 core
// Places the unit quad on the rectangle and maps it onto an atlas area.

layout(location = 0) in vec2 position;

uniform mat4 ProjectionMatrix;
// One entry per piece: a skin's pieces are drawn together as instances of the quad, and a single
// piece is instance 0.
uniform ivec2 bboxMin[9];
uniform ivec2 bboxDim[9];
uniform vec2 uvMin[9];
uniform vec2 uvDim[9];

out vec2 uv;

void main() {
    vec2 pixel = vec2(bboxMin[gl_InstanceID]) + position * vec2(bboxDim[gl_InstanceID]);
    gl_Position = ProjectionMatrix * vec4(pixel, 0.0, 1.0);
    // Atlas images are stored top row first, so t grows down the image while overlay y grows up:
    // the rectangle's top edge shows uvMin.t and its bottom edge uvMin.t + uvDim.t.
    vec2 uvLow = uvMin[gl_InstanceID], uvSize = uvDim[gl_InstanceID];
    uv = vec2(uvLow.x + position.x * uvSize.x, uvLow.y + (1.0 - position.y) * uvSize.y);
}
