#version 330 core
// The orientation cube turned by the camera's view rotation, shown orthographically so that it keeps
// its size and stays centred in its square whatever the camera's distance.

layout(location = 0) in vec3 position;
layout(location = 1) in vec2 texCoord;
layout(location = 2) in vec3 normal;
layout(location = 3) in vec4 color;
layout(location = 4) in int primaryId;
layout(location = 5) in int face;

uniform mat4 ViewMatrix;
uniform mat3 NormalMatrix;

out vec2 uv;
out vec3 eyeNormal;
out vec4 surface;
flat out int faceId;
out vec3 cubePosition;

// The cube's corners reach sqrt(3)/2 from its centre; this margin keeps them inside the square.
const float kExtent = 0.9;

void main() {
    vec3 eye = mat3(ViewMatrix) * position;
    uv = texCoord;
    eyeNormal = NormalMatrix * normal;
    surface = color;
    faceId = face;
    cubePosition = position;
    gl_Position = vec4(eye.xy / kExtent, -eye.z / kExtent, 1.0);
}
