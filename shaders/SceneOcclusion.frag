#version 330 core
// Ambient occlusion from the scene's linear depth: the share of cosine-weighted hemisphere
// directions around a pixel's normal that meet geometry within Radius. Writes the occlusion term
// and the pixel's linear depth, which the blur and the upsampling weigh by.
//
// Each pixel traces SampleCount directions, turned by its place in a PatternSize x PatternSize
// tile; the blur, whose footprint is one tile, removes the pattern. Interleaved, the tile's pixels
// instead split SampleCount directions among them and the blur gathers them back: a pixel's term
// after the blur still counts all of them, at a fraction of the cost, but in coarser steps.

// Linear depth at this pass's resolution, -1 where nothing was drawn.
uniform sampler2D LinearDepthTexture;
uniform sampler2D NormalTexture;
uniform bool UseNormals;
uniform mat4 Projection;
// World to view rotation, for the host's world-space normals.
uniform mat3 ViewRotation;
uniform float Radius;
uniform float Intensity;
uniform float Bias;
uniform int SampleCount;
// Full-resolution pixels per occlusion pixel along each axis (1 or 2), and the scene's size.
uniform int Scale;
uniform vec2 SceneSize;
// Side of the tile (4 or 2).
uniform int PatternSize;
uniform bool Interleaved;

layout(location = 0) out vec4 result;

// Steps along each ray, and how far behind a surface (in radii) a step may lie to count as having
// entered it.
const int kSteps = 4;
const float kThickness = 0.5;
const float kGoldenAngle = 2.39996323;
// Stands in for background beside a pixel when choosing the tangent on the pixel's own surface.
const float kFar = 1e4;

// View-space position of occlusion pixel `q` at distance `linear` in front of the camera; for the
// host's perspective and orthographic projections alike (no skew terms).
vec3 viewPosition(ivec2 q, float linear) {
    vec2 ndc = (vec2(q * Scale) + 0.5) / SceneSize * 2.0 - 1.0;
    float z = -linear;
    float w = Projection[2][3] * z + Projection[3][3];
    return vec3((ndc.x * w - Projection[2][0] * z - Projection[3][0]) / Projection[0][0],
                (ndc.y * w - Projection[2][1] * z - Projection[3][1]) / Projection[1][1], z);
}

vec3 neighbour(ivec2 q, ivec2 size) {
    q = clamp(q, ivec2(0), size - 1);
    float linear = texelFetch(LinearDepthTexture, q, 0).r;
    return viewPosition(q, linear < 0.0 ? kFar : linear);
}

// Of the two one-sided differences, the one that stays on the pixel's own surface: across a crease
// or a silhouette the other one jumps in depth.
vec3 tangent(vec3 centre, vec3 before, vec3 after) {
    vec3 a = after - centre, b = centre - before;
    return abs(a.z) < abs(b.z) ? a : b;
}

vec3 reconstructNormal(ivec2 q, vec3 centre, ivec2 size) {
    vec3 dx = tangent(centre, neighbour(q - ivec2(1, 0), size), neighbour(q + ivec2(1, 0), size));
    vec3 dy = tangent(centre, neighbour(q - ivec2(0, 1), size), neighbour(q + ivec2(0, 1), size));
    return normalize(cross(dx, dy));
}

// Ordered (Bayer) pattern: each value once per tile, neighbours far apart in value. Computed, not
// looked up: an indexed constant array would live in memory on a software rasteriser.
int pattern(ivec2 q) {
    if (PatternSize == 2)
        return ((q.x & 1) << 1) ^ ((q.y & 1) * 3);
    return (((q.x & 1) << 1) ^ ((q.y & 1) * 3)) * 4 + ((((q.x >> 1) & 1) << 1) ^ (((q.y >> 1) & 1) * 3));
}

void main() {
    ivec2 q = ivec2(gl_FragCoord.xy);
    ivec2 size = textureSize(LinearDepthTexture, 0);
    float linear = texelFetch(LinearDepthTexture, q, 0).r;
    if (linear < 0.0) {
        result = vec4(1.0, -1.0, 0.0, 1.0);
        return;
    }
    vec3 position = viewPosition(q, linear);
    vec3 normal = vec3(0.0);
    if (UseNormals) {
        vec3 written = texelFetch(NormalTexture, q * Scale, 0).xyz;
        if (dot(written, written) > 0.25)
            normal = normalize(ViewRotation * written);
    }
    if (normal == vec3(0.0))
        normal = reconstructNormal(q, position, size);
    // Facing the camera, whichever way the host wound its triangles.
    if (dot(normal, position) > 0.0)
        normal = -normal;

    vec3 helper = abs(normal.x) < 0.9 ? vec3(1.0, 0.0, 0.0) : vec3(0.0, 1.0, 0.0);
    vec3 t = normalize(cross(helper, normal));
    vec3 b = cross(normal, t);
    vec3 origin = position + normal * Bias;
    // Depth is known once per occlusion pixel: on a surface seen at a grazing angle, a step a little
    // above it can still lie behind the depth at the centre of its pixel. Within that tolerance a
    // step counts as on the surface, not behind it.
    float cosine = max(dot(normal, -normalize(position)), 0.05);
    float pixelSize = 2.0 * linear / (Projection[1][1] * SceneSize.y);
    if (Projection[2][3] == 0.0) // orthographic: pixels do not grow with distance
        pixelSize = 2.0 / (Projection[1][1] * SceneSize.y);
    float tolerance = pixelSize * sqrt(1.0 - cosine * cosine) / cosine;

    int cells = PatternSize * PatternSize;
    int perPixel = Interleaved ? max(1, (SampleCount + cells / 2) / cells) : SampleCount;
    // Interleaved, pixel k of the tile takes directions k, k + cells, ...; otherwise it takes all of
    // them, turned and offset in elevation by k in different orders.
    int total = Interleaved ? cells * perPixel : SampleCount;
    int k = pattern(q);
    int first = Interleaved ? k : 0;
    int stride = Interleaved ? cells : 1;
    float rotation = Interleaved ? 0.0 : 6.28318531 * float(k) / float(cells);
    float jitter = Interleaved ? 0.5 : (float((k * 7) & (cells - 1)) + 0.5) / float(cells);
    float step = Radius / float(kSteps);
    vec4 clipOrigin = Projection * vec4(origin, 1.0);
    vec2 toPixel = SceneSize / float(Scale);
    float hits = 0.0;
    for (int n = 0; n < perPixel; ++n) {
        // Stratified in cos^2 of the elevation: cosine-weighted directions, as light falls.
        int i = first + stride * n;
        float u = (float(i) + jitter) / float(total);
        float s = sqrt(u);
        float phi = float(i) * kGoldenAngle + rotation;
        vec3 direction = t * (s * cos(phi)) + b * (s * sin(phi)) + normal * sqrt(1.0 - u);
        // The ray is marched in a few steps and blocked at the first step that lies just behind
        // the visible surface. Right after a ray enters a surface it lies close behind it; a ray
        // that only passes behind a nearer object's silhouette finds that object far in front of
        // it. This range check tells the two apart, so background beside a silhouette stays open.
        // Projection is linear in homogeneous coordinates: the steps interpolate the ends' clip
        // positions.
        vec4 clipStep = Projection * vec4(direction * step, 0.0);
        for (int j = 1; j <= kSteps; ++j) {
            vec4 clip = clipOrigin + clipStep * float(j);
            if (clip.w <= 0.0)
                break;
            ivec2 at = ivec2(floor((clip.xy / clip.w * 0.5 + 0.5) * toPixel));
            if (any(lessThan(at, ivec2(0))) || any(greaterThanEqual(at, size)))
                break;
            float surface = texelFetch(LinearDepthTexture, at, 0).r;
            if (surface < 0.0)
                continue;
            float behind = -(origin.z + direction.z * step * float(j)) - surface;
            if (behind > tolerance && behind < kThickness * Radius) {
                hits += 1.0;
                break;
            }
        }
    }
    float occlusion = clamp(1.0 - Intensity * hits / float(perPixel), 0.0, 1.0);
    result = vec4(occlusion, linear, 0.0, 1.0);
}
