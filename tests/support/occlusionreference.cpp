#include "support/occlusionreference.h"

#include <graphicsbase/camera.h>

#include <algorithm>
#include <cmath>

using namespace GraphicsBase;

namespace trelvo::test {
namespace {

bool hitQuad(const glm::vec3& corner, const glm::vec3& u, const glm::vec3& v, const glm::vec3& o,
             const glm::vec3& d, float& t, glm::vec3& n) {
    n = glm::normalize(glm::cross(u, v));
    float den = glm::dot(d, n);
    if (std::abs(den) < 1e-9f)
        return false;
    t = glm::dot(corner - o, n) / den;
    glm::vec3 p = o + d * t - corner;
    float s = glm::dot(p, u) / glm::dot(u, u), r = glm::dot(p, v) / glm::dot(v, v);
    return s >= 0.f && s <= 1.f && r >= 0.f && r <= 1.f;
}

bool hitBox(const glm::vec3& lo, const glm::vec3& hi, const glm::vec3& o, const glm::vec3& d, float& t,
            glm::vec3& n) {
    float tNear = -1e30f, tFar = 1e30f;
    int axis = 0;
    float sign = 1.f;
    for (int i = 0; i < 3; ++i) {
        if (std::abs(d[i]) < 1e-12f) {
            if (o[i] < lo[i] || o[i] > hi[i])
                return false;
            continue;
        }
        float t0 = (lo[i] - o[i]) / d[i], t1 = (hi[i] - o[i]) / d[i];
        float s = -1.f;
        if (t0 > t1) {
            std::swap(t0, t1);
            s = 1.f;
        }
        if (t0 > tNear) {
            tNear = t0;
            axis = i;
            sign = s;
        }
        tFar = std::min(tFar, t1);
    }
    if (tNear > tFar || tNear < 0.f)
        return false;
    t = tNear;
    n = glm::vec3(0.f);
    n[axis] = sign;
    return true;
}

bool hitSphere(const glm::vec3& c, float r, const glm::vec3& o, const glm::vec3& d, float& t, glm::vec3& n) {
    glm::vec3 oc = o - c;
    float b = glm::dot(oc, d), cc = glm::dot(oc, oc) - r * r, disc = b * b - cc;
    if (disc < 0.f)
        return false;
    t = -b - std::sqrt(disc);
    if (t < 0.f)
        return false;
    n = glm::normalize(o + d * t - c);
    return true;
}

void pushQuad(std::vector<float>& out, glm::vec3 p0, glm::vec3 p1, glm::vec3 p2, glm::vec3 p3, glm::vec3 n) {
    for (const glm::vec3& p : {p0, p1, p2, p0, p2, p3})
        out.insert(out.end(), {p.x, p.y, p.z, n.x, n.y, n.z});
}

} // namespace

AnalyticScene AnalyticScene::BoxOnPlane() {
    AnalyticScene s;
    s.primitives_.push_back({Primitive::Quad, {-8, 0, -8}, {0, 0, 16}, {16, 0, 0}});
    s.primitives_.push_back({Primitive::Box, {-0.5f, 0, -0.5f}, {0.5f, 1, 0.5f}, {}});
    return s;
}

AnalyticScene AnalyticScene::InsideCorner() {
    AnalyticScene s;
    s.primitives_.push_back({Primitive::Quad, {0, 0, 0}, {0, 0, 8}, {8, 0, 0}});
    s.primitives_.push_back({Primitive::Quad, {0, 0, 0}, {0, 8, 0}, {0, 0, 8}});
    s.primitives_.push_back({Primitive::Quad, {0, 0, 0}, {8, 0, 0}, {0, 8, 0}});
    return s;
}

AnalyticScene AnalyticScene::SphereOnPlane() {
    AnalyticScene s;
    s.primitives_.push_back({Primitive::Quad, {-8, 0, -8}, {0, 0, 16}, {16, 0, 0}});
    s.primitives_.push_back({Primitive::Sphere, {0, 0.5f, 0}, {0.5f, 0, 0}, {}});
    return s;
}

bool AnalyticScene::Hit(const glm::vec3& o, const glm::vec3& d, float maxT, float* tOut, glm::vec3* nOut,
                        int* which) const {
    float best = maxT;
    int found = -1;
    glm::vec3 bestN(0.f);
    for (size_t i = 0; i < primitives_.size(); ++i) {
        const Primitive& p = primitives_[i];
        float t = 0.f;
        glm::vec3 n;
        bool hit = p.kind == Primitive::Quad  ? hitQuad(p.a, p.b, p.c, o, d, t, n)
                   : p.kind == Primitive::Box ? hitBox(p.a, p.b, o, d, t, n)
                                              : hitSphere(p.a, p.b.x, o, d, t, n);
        if (hit && t > 0.f && t < best) {
            best = t;
            found = static_cast<int>(i);
            // Quads are seen from either side: the normal faces the ray's origin.
            bestN = glm::dot(n, d) > 0.f ? -n : n;
        }
    }
    if (found < 0)
        return false;
    if (tOut)
        *tOut = best;
    if (nOut)
        *nOut = bestN;
    if (which)
        *which = found;
    return true;
}

float AnalyticScene::DistanceToOthers(const glm::vec3& q, int primitive) const {
    float best = 1e30f;
    for (size_t i = 0; i < primitives_.size(); ++i) {
        if (static_cast<int>(i) == primitive)
            continue;
        const Primitive& p = primitives_[i];
        float d = 0.f;
        if (p.kind == Primitive::Quad) {
            glm::vec3 n = glm::normalize(glm::cross(p.b, p.c));
            d = std::abs(glm::dot(q - p.a, n));
        } else if (p.kind == Primitive::Box) {
            glm::vec3 outside = glm::max(glm::max(p.a - q, q - p.b), glm::vec3(0.f));
            d = glm::length(outside);
        } else {
            d = std::abs(glm::length(q - p.a) - p.b.x);
        }
        best = std::min(best, d);
    }
    return best;
}

std::vector<float> AnalyticScene::Triangles() const {
    std::vector<float> out;
    for (const Primitive& p : primitives_) {
        if (p.kind == Primitive::Quad) {
            pushQuad(out, p.a, p.a + p.b, p.a + p.b + p.c, p.a + p.c, glm::normalize(glm::cross(p.b, p.c)));
        } else if (p.kind == Primitive::Box) {
            const glm::vec3 lo = p.a, hi = p.b;
            for (int axis = 0; axis < 3; ++axis)
                for (float side : {-1.f, 1.f}) {
                    glm::vec3 n(0.f);
                    n[axis] = side;
                    int u = (axis + 1) % 3, v = (axis + 2) % 3;
                    auto corner = [&](float su, float sv) {
                        glm::vec3 c;
                        c[axis] = side > 0 ? hi[axis] : lo[axis];
                        c[u] = su > 0 ? hi[u] : lo[u];
                        c[v] = sv > 0 ? hi[v] : lo[v];
                        return c;
                    };
                    pushQuad(out, corner(-1, -1), corner(1, -1), corner(1, 1), corner(-1, 1), n);
                }
        } else {
            constexpr int kSlices = 64, kStacks = 32;
            const float pi = 3.14159265f;
            auto point = [&](int i, int j) {
                float theta = pi * j / kStacks, phi = 2 * pi * i / kSlices;
                return glm::vec3(std::sin(theta) * std::cos(phi), std::cos(theta),
                                 std::sin(theta) * std::sin(phi));
            };
            for (int j = 0; j < kStacks; ++j)
                for (int i = 0; i < kSlices; ++i) {
                    glm::vec3 q[4] = {point(i, j), point(i + 1, j), point(i + 1, j + 1), point(i, j + 1)};
                    for (int k : {0, 1, 2, 0, 2, 3}) {
                        glm::vec3 v = p.a + q[k] * p.b.x;
                        out.insert(out.end(), {v.x, v.y, v.z, q[k].x, q[k].y, q[k].z});
                    }
                }
        }
    }
    return out;
}

std::vector<ReferencePixel> ReferenceOcclusion(const AnalyticScene& scene, const Camera& camera, int width,
                                               int height, float radius, int rays) {
    std::vector<ReferencePixel> pixels(static_cast<size_t>(width) * height);
    const glm::vec3 eye = camera.Position();
    const glm::vec3 forward = camera.ViewDir();
    const int side = std::max(1, static_cast<int>(std::lround(std::sqrt(static_cast<float>(rays)))));
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            glm::vec3 far;
            camera.UnProjectPoint(x + 0.5f, y + 0.5f, 1.f, &far.x, &far.y, &far.z);
            glm::vec3 d = glm::normalize(far - eye);
            float t = 0.f;
            glm::vec3 n;
            int which = -1;
            ReferencePixel& out = pixels[static_cast<size_t>(y) * width + x];
            if (!scene.Hit(eye, d, 1e30f, &t, &n, &which))
                continue;
            const glm::vec3 p = eye + d * t;
            out.covered = true;
            out.primitive = which;
            out.depth = glm::dot(p - eye, forward);
            out.creaseDistance = scene.DistanceToOthers(p, which);
            glm::vec3 helper = std::abs(n.x) < 0.9f ? glm::vec3(1, 0, 0) : glm::vec3(0, 1, 0);
            glm::vec3 tu = glm::normalize(glm::cross(helper, n)), tv = glm::cross(n, tu);
            const glm::vec3 origin = p + n * 1e-4f;
            int blocked = 0;
            // Stratified cosine-weighted directions: side x side cells in (cos^2 elevation, azimuth).
            for (int i = 0; i < side; ++i)
                for (int j = 0; j < side; ++j) {
                    float u = (i + 0.5f) / side, phi = 6.2831853f * (j + 0.5f) / side;
                    float s = std::sqrt(u);
                    glm::vec3 dir =
                        tu * (s * std::cos(phi)) + tv * (s * std::sin(phi)) + n * std::sqrt(1.f - u);
                    if (scene.Hit(origin, dir, radius))
                        ++blocked;
                }
            out.occlusion = 1.f - static_cast<float>(blocked) / static_cast<float>(side * side);
        }
    return pixels;
}

} // namespace trelvo::test
