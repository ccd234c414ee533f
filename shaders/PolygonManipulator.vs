#version 330 core
// Gizmo handles: flat meshes placed in window pixels around the projected centre of the frame.

layout(location = 0) in vec3 position;

uniform mat4 ProjectionMatrix;
uniform mat4 ModelViewMatrix;
uniform mat4 ModelMatrix;

// Where along a rotation band this vertex lies, 0 at the thin start and 1 at the wide end.
out float bandPosition;

void main() {
    const float start = 0.19634955;
    const float sweep = 1.1780972;
    bandPosition = clamp((atan(position.y, position.x) - start) / sweep, 0.0, 1.0);
    gl_Position = ProjectionMatrix * ModelViewMatrix * ModelMatrix * vec4(position, 1.0);
}
