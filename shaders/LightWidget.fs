#version 330 core
// A shaded ball lit by the scene light, seen from +z with y up, on a dark rounded tile: dragging
// turns the light and the highlight follows. The whole tile carries the control's id, so a drag may
// start anywhere on it.

#include "TargetAccess.glsl"

#include "Lighting.glsl"

in vec2 local;

uniform Light light;
uniform Material material;
uniform uint primaryid;
// Non-zero for a disabled widget: greyed, half transparent and transparent to picking.
uniform int dimmed;

const float kBallRadius = 0.74;
const float kCorner = 0.28;

#include "SrgbEncode.glsl"

void main() {
    float pixel = fwidth(local.x);

    // Tile: a rounded square, partly transparent.
    vec2 q = abs(local) - vec2(1.0 - kCorner);
    float tileDistance = length(max(q, 0.0)) + min(max(q.x, q.y), 0.0) - kCorner;
    float tile = clamp(0.5 - tileDistance / pixel, 0.0, 1.0);
    vec4 source = vec4(0.09, 0.11, 0.14, 0.72 * tile);

    // Ball: a unit sphere's normal under the pixel, lit in world space (the viewer looks down -z).
    float r = length(local) / kBallRadius;
    float ball = clamp(0.5 - (r - 1.0) * kBallRadius / pixel, 0.0, 1.0);
    if (ball > 0.0) {
        vec2 p = local / kBallRadius;
        vec3 n = vec3(p, sqrt(max(1.0 - dot(p, p), 0.0)));
        vec3 l = normalize(light.position.xyz);
        vec3 h = normalize(l + vec3(0.0, 0.0, 1.0));
        float diffuse = max(dot(n, l), 0.0);
        float specular = diffuse > 0.0 ? pow(max(dot(n, h), 0.0), material.shininess) : 0.0;
        // Twice the mid-grey material: a fully lit point shows the light's own colour.
        vec3 lit = 2.0 * (material.ambient.rgb * light.ambient.rgb +
                          material.diffuse.rgb * light.diffuse.rgb * diffuse) +
                   material.specular.rgb * light.specular.rgb * specular;
        vec3 shaded = Encode(clamp(lit * vec3(1.0, 0.93, 0.78), 0.0, 1.0));
        source = vec4(mix(source.rgb, shaded, ball), source.a + (1.0 - source.a) * ball);
    }

    if (dimmed != 0)
        source = vec4(mix(source.rgb, vec3(dot(source.rgb, vec3(1.0 / 3.0))), 0.6), source.a * 0.5);
    vec4 target = TARGET_COLOR;
    float a = source.a;
    fragColor = vec4(source.rgb * a + target.rgb * (1.0 - a), a + target.a * (1.0 - a));
    fragIds = (tile > 0.5 && dimmed == 0) ? uvec4(primaryid, 0u, 0u, 0u) : TARGET_IDS;
}
