#version 330 core
// Places the axis's tick band: unit-square vertices through the model-view that scales and turns
// the band onto its edge, then the overlay's pixel projection.

layout(location = 0) in vec2 position;
layout(location = 1) in vec4 color;

uniform mat4 ProjectionMatrix;
uniform mat4 ModelViewMatrix;

out vec4 bandColor;

void main() {
    bandColor = color;
    gl_Position = ProjectionMatrix * ModelViewMatrix * vec4(position, 0.0, 1.0);
}
