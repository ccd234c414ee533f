#version 330 core
// Places a cached layer's centred quad with the layer's animation transform.

layout(location = 0) in vec2 position;
layout(location = 1) in vec2 texcoord;

uniform mat4 ProjectionMatrix;
uniform mat4 ModelViewMatrix;

out vec2 uv;

void main() {
    gl_Position = ProjectionMatrix * ModelViewMatrix * vec4(position, 0.0, 1.0);
    uv = texcoord;
}
