#version 330 core
// Full-view quad that blends the overlay's colour layer over the host's frame.

in vec2 position;
in vec2 texcoord;

uniform mat4 ProjectionMatrix;
uniform mat4 ModelViewMatrix;

out vec2 uv;

void main() {
    uv = texcoord;
    gl_Position = ProjectionMatrix * ModelViewMatrix * vec4(position, 0.0, 1.0);
}
