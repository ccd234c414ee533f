// Depth helpers shared by the compositor's passes, included right after their header.

uniform sampler2D DepthTexture;
uniform mat4 InverseProjection;

// A cleared depth means the host drew nothing there: background, never occluded.
bool IsBackground(float depth) {
    return depth >= 1.0;
}

// View-space position of the centre of full-resolution pixel `p` with window depth `depth`.
vec3 ViewPosition(ivec2 p, float depth) {
    vec2 size = vec2(textureSize(DepthTexture, 0));
    vec4 ndc = vec4((vec2(p) + 0.5) / size * 2.0 - 1.0, depth * 2.0 - 1.0, 1.0);
    vec4 v = InverseProjection * ndc;
    return v.xyz / v.w;
}

// Distance in front of the camera; for the host's perspective or orthographic projections it does
// not depend on the position in the view.
float LinearDepth(float depth) {
    vec4 v = InverseProjection * vec4(0.0, 0.0, depth * 2.0 - 1.0, 1.0);
    return -v.z / v.w;
}
