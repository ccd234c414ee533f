#version 330 core
// Lights the face label with the scene light (taken into the cube's view space) and writes the
// control's id and the face number, so a click knows which side was hit.

#include "Lighting.glsl"

in vec2 uv;
in vec3 eyeNormal;
in vec4 surface;
flat in int faceId;

uniform Light light;
uniform Material material;
uniform mat4 ViewMatrix;
uniform sampler2D texUnit;
uniform uint pid;

layout(location = 0) out vec4 fragColor;
layout(location = 1) out uvec4 fragIds;

#include "SrgbEncode.glsl"

void main() {
    vec3 n = normalize(eyeNormal);
    // The light shines from its position towards the origin, in world space like the cube.
    vec3 l = normalize(mat3(ViewMatrix) * light.position.xyz);
    vec3 h = normalize(l + vec3(0.0, 0.0, 1.0));
    float diffuse = max(dot(n, l), 0.0);
    float specular = diffuse > 0.0 ? pow(max(dot(n, h), 0.0), material.shininess) : 0.0;

    // The sRGB texture returns linear values. A mid-grey surface (the model's colour) under the
    // material gives back the label as painted when fully lit; the floor keeps faces turned away
    // from the light legible.
    vec3 label = texture(texUnit, uv).rgb;
    vec3 lighting = material.ambient.rgb * light.ambient.rgb + material.diffuse.rgb * light.diffuse.rgb * diffuse;
    vec3 shade = max(lighting / max(surface.rgb, vec3(0.01)), vec3(0.45));
    vec3 rgb = label * shade + material.specular.rgb * light.specular.rgb * specular * 0.4;

    fragColor = vec4(Encode(clamp(rgb, 0.0, 1.0)), 1.0);
    fragIds = uvec4(pid, uint(faceId), 0u, 0u);
}
