#pragma once
// Ground truth for ambient occlusion: analytic scenes, their triangles, and occlusion by ray casting.

#include <glm/glm.hpp>

#include <vector>

namespace GraphicsBase {
class Camera;
}

namespace trelvo::test {

/// A few planes, boxes and spheres, exact for ray casting and tessellated for drawing.
class AnalyticScene {
public:
    /// A 1 x 1 x 1 box standing on the floor y = 0.
    static AnalyticScene BoxOnPlane();
    /// The floor y = 0 and the walls x = 0 and z = 0 meeting in a corner at the origin.
    static AnalyticScene InsideCorner();
    /// A sphere of radius 0.5 resting on the floor y = 0.
    static AnalyticScene SphereOnPlane();

    /// The nearest hit along origin + t * direction for t in (0, maxT): its distance, normal and
    /// primitive. False when nothing is hit.
    bool Hit(const glm::vec3& origin, const glm::vec3& direction, float maxT, float* t = nullptr,
             glm::vec3* normal = nullptr, int* primitive = nullptr) const;
    /// Distance from p to the nearest primitive other than `primitive`: small on contact creases.
    float DistanceToOthers(const glm::vec3& p, int primitive) const;
    /// Triangles as position and normal, six floats a vertex, outward normals.
    std::vector<float> Triangles() const;

private:
    struct Primitive {
        enum Kind { Quad, Box, Sphere } kind;
        // Quad: a corner and two edges; box: min and max corner; sphere: centre and (radius, 0, 0).
        glm::vec3 a, b, c;
    };
    std::vector<Primitive> primitives_;
};

/// What the reference says about one pixel.
struct ReferencePixel {
    bool covered = false;
    /// 1 - share of cosine-weighted hemisphere rays that meet geometry within the radius.
    float occlusion = 1.f;
    /// Distance in front of the camera of the visible point.
    float depth = 0.f;
    /// Distance from the visible point to the nearest other primitive.
    float creaseDistance = 1e30f;
    /// Which of the scene's primitives is seen.
    int primitive = -1;
};

/// Casts a primary ray through every pixel centre of a width x height view of `camera` and, from
/// the visible point, `rays` stratified cosine-weighted rays of length `radius`. Rows bottom-up, as
/// glReadPixels returns them.
std::vector<ReferencePixel> ReferenceOcclusion(const AnalyticScene& scene, const GraphicsBase::Camera& camera,
                                               int width, int height, float radius, int rays = 256);

} // namespace trelvo::test
