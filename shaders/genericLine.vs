#version 330 core
// Outlines in the host's 3D scene: a model matrix and the camera's view and projection.

layout(location = 0) in vec3 position;
layout(location = 1) in vec4 color;

uniform mat4 ModelMatrix;
uniform mat4 ViewMatrix;
uniform mat4 ProjectionMatrix;

out vec4 lineColor;

void main() {
    lineColor = color;
    gl_Position = ProjectionMatrix * ViewMatrix * ModelMatrix * vec4(position, 1.0);
}
