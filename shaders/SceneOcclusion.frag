#version 330 core
// Ambient occlusion from the scene's depth: the share of cosine-weighted hemisphere directions
// around a pixel's normal that meet geometry within Radius. Writes the occlusion term and the
// pixel's linear depth, which the blur and the upsampling weigh by.

#include "SceneDepth.glsl"

uniform sampler2D NormalTexture;
uniform bool UseNormals;
uniform mat4 Projection;
// World to view rotation, for the host's world-space normals.
uniform mat3 ViewRotation;
uniform float Radius;
uniform float Intensity;
uniform float Bias;
uniform int SampleCount;
// Full-resolution pixels per occlusion pixel along each axis (1 or 2).
uniform int Scale;

layout(location = 0) out vec4 result;

// Steps along each ray, and how far behind a surface (in radii) a step may lie to count as having
// entered it.
const int kSteps = 4;
const float kThickness = 0.5;

const float kGoldenAngle = 2.39996323;
const float kTwoPi = 6.28318531;

vec3 neighbour(ivec2 p, ivec2 size) {
    p = clamp(p, ivec2(0), size - 1);
    return ViewPosition(p, texelFetch(DepthTexture, p, 0).r);
}

// Of the two one-sided differences, the one that stays on the pixel's own surface: across a crease
// or a silhouette the other one jumps in depth.
vec3 tangent(vec3 centre, vec3 before, vec3 after) {
    vec3 a = after - centre, b = centre - before;
    return abs(a.z) < abs(b.z) ? a : b;
}

vec3 reconstructNormal(ivec2 p, vec3 centre) {
    ivec2 size = textureSize(DepthTexture, 0);
    vec3 dx = tangent(centre, neighbour(p - ivec2(1, 0), size), neighbour(p + ivec2(1, 0), size));
    vec3 dy = tangent(centre, neighbour(p - ivec2(0, 1), size), neighbour(p + ivec2(0, 1), size));
    return normalize(cross(dx, dy));
}

// Ordered pattern of PatternSize x PatternSize cells (4 or 2), each value once per tile: the
// blur's footprint of the same size sees all of them.
uniform int PatternSize;

int pattern(ivec2 p) {
    const int bayer[16] = int[16](0, 8, 2, 10, 12, 4, 14, 6, 3, 11, 1, 9, 15, 7, 13, 5);
    return PatternSize == 4 ? bayer[(p.y & 3) * 4 + (p.x & 3)] : (p.y & 1) * 2 + ((p.x ^ p.y) & 1);
}

void main() {
    ivec2 cell = ivec2(gl_FragCoord.xy);
    ivec2 p = cell * Scale;
    float depth = texelFetch(DepthTexture, p, 0).r;
    if (IsBackground(depth)) {
        result = vec4(1.0, 1e30, 0.0, 1.0);
        return;
    }
    vec3 position = ViewPosition(p, depth);
    vec3 normal = vec3(0.0);
    if (UseNormals) {
        vec3 written = texelFetch(NormalTexture, p, 0).xyz;
        if (dot(written, written) > 0.25)
            normal = normalize(ViewRotation * written);
    }
    if (normal == vec3(0.0))
        normal = reconstructNormal(p, position);
    // Facing the camera, whichever way the host wound its triangles.
    if (dot(normal, position) > 0.0)
        normal = -normal;

    vec3 helper = abs(normal.x) < 0.9 ? vec3(1.0, 0.0, 0.0) : vec3(0.0, 1.0, 0.0);
    vec3 t = normalize(cross(helper, normal));
    vec3 b = cross(normal, t);
    int k = pattern(cell);
    // The rotation and the offset along the elevation take different orders of the pattern, so
    // that the pixels of a tile together cover as many distinct directions per sample.
    int cells = PatternSize * PatternSize;
    float rotation = kTwoPi * float(k) / float(cells);
    float jitter = (float((k * 7) & (cells - 1)) + 0.5) / float(cells);
    vec3 origin = position + normal * Bias;
    // Depth is known once per pixel: on a surface seen at a grazing angle, a step a little above it
    // can still lie behind the depth at the centre of its pixel. Within that tolerance a step
    // counts as on the surface, not behind it.
    float cosine = max(dot(normal, -normalize(position)), 0.05);
    float pixelSize = 2.0 * -position.z / (Projection[1][1] * float(textureSize(DepthTexture, 0).y));
    float tolerance = pixelSize * sqrt(1.0 - cosine * cosine) / cosine;
    ivec2 size = textureSize(DepthTexture, 0);
    float hits = 0.0;
    for (int i = 0; i < SampleCount; ++i) {
        // Stratified in cos^2 of the elevation: cosine-weighted directions, as light falls.
        float u = (float(i) + jitter) / float(SampleCount);
        float s = sqrt(u);
        float phi = float(i) * kGoldenAngle + rotation;
        vec3 direction = t * (s * cos(phi)) + b * (s * sin(phi)) + normal * sqrt(1.0 - u);
        // The ray is marched in a few steps and blocked at the first step that lies just behind
        // the visible surface. Right after a ray enters a surface it lies close behind it; a ray
        // that only passes behind a nearer object's silhouette finds that object far in front of
        // it. This range check tells the two apart, so background beside a silhouette stays open.
        // Projection is linear in homogeneous coordinates: the steps interpolate the ends' clip
        // positions.
        float step = Radius / float(kSteps);
        vec4 clipOrigin = Projection * vec4(origin, 1.0);
        vec4 clipStep = Projection * vec4(direction * step, 0.0);
        for (int j = 1; j <= kSteps; ++j) {
            vec4 clip = clipOrigin + clipStep * float(j);
            if (clip.w <= 0.0)
                break;
            ivec2 q = ivec2(floor((clip.xy / clip.w * 0.5 + 0.5) * vec2(size)));
            if (any(lessThan(q, ivec2(0))) || any(greaterThanEqual(q, size)))
                break;
            float surfaceDepth = texelFetch(DepthTexture, q, 0).r;
            if (IsBackground(surfaceDepth))
                continue;
            float surface = LinearDepth(surfaceDepth);
            float behind = -(origin.z + direction.z * step * float(j)) - surface;
            if (behind > tolerance && behind < kThickness * Radius) {
                hits += 1.0;
                break;
            }
        }
    }
    float occlusion = clamp(1.0 - Intensity * hits / float(SampleCount), 0.0, 1.0);
    result = vec4(occlusion, -position.z, 0.0, 1.0);
}
