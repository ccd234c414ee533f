#version 330 core
// Full-view quad that blends the overlay's colour layer over the host's frame.

// Fixed locations: the plain and the gamma-correcting composite share the manager's quad.
layout(location = 0) in vec2 position;
layout(location = 1) in vec2 texcoord;

uniform mat4 ProjectionMatrix;
uniform mat4 ModelViewMatrix;

out vec2 uv;

void main() {
    uv = texcoord;
    gl_Position = ProjectionMatrix * ModelViewMatrix * vec4(position, 0.0, 1.0);
}
