#version 330 core
// Lights the face label with the scene light (taken into the cube's view space) and writes the
// control's id and the part under the pixel (a face, or an edge or corner band), so a click knows
// which view was asked for.

#include "Lighting.glsl"

in vec2 uv;
in vec3 eyeNormal;
in vec4 surface;
flat in int faceId;
in vec3 cubePosition;

uniform Light light;
uniform Material material;
uniform mat4 ViewMatrix;
uniform sampler2D texUnit;
uniform uint pid;
// Beyond this coordinate (the cube spans -0.5..0.5) a point lies in the band along an edge.
uniform float edgeBand;
// The part of each sign triple, indexed 9 (x + 1) + 3 (y + 1) + z + 1.
uniform int partOfSigns[27];
// The edge or corner the pointer is over, -1 for none.
uniform int hoverPart;

// Opaque: nothing of the target is read, only its outputs are declared there.
#include "TargetAccess.glsl"

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

    // The face's own axis is always in the band; one more makes an edge, two more a corner.
    ivec3 signs = ivec3(greaterThan(cubePosition, vec3(edgeBand))) - ivec3(lessThan(cubePosition, vec3(-edgeBand)));
    int bands = abs(signs.x) + abs(signs.y) + abs(signs.z);
    int part = bands >= 2 ? partOfSigns[9 * (signs.x + 1) + 3 * (signs.y + 1) + signs.z + 1] : faceId;
    // The edge or corner under the pointer lights up, showing where it begins.
    if (part == hoverPart)
        rgb = mix(rgb, vec3(1.0, 0.7, 0.25), 0.45);

    fragColor = vec4(Encode(clamp(rgb, 0.0, 1.0)), 1.0);
    fragIds = uvec4(pid, uint(part), 0u, 0u);
}
