#version 330 core
// The widget's quad already covers its square viewport; the fragment stage gets the square's own
// coordinates, -1 to 1 on both axes.

layout(location = 0) in vec4 position;

out vec2 local;

void main() {
    local = position.xy;
    gl_Position = position;
}
