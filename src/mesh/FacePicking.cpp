#include "mesh/FacePicking.h"

#include "mesh/Corner.h"

namespace gravlin {
namespace {

using Corners = std::array<Vec3, 3>;

bool insideAllEdges(const Vec3& q, const Corners& p, const Vec3& normal) {
  for (std::size_t k = 0; k < 3; ++k) {
    const Vec3 inwards = cross(normal, p[nextCorner(k)] - p[k]);
    const bool inside =
        dot(inwards, p[previousCorner(k)] - p[k]) >= 0.0 && dot(inwards, q - p[k]) >= 0.0;
    if (!inside) return false;
  }
  return true;
}

}  // namespace

std::optional<int> faceOnRay(const TriangleMesh& mesh, const Ray& ray) {
  std::optional<int> nearest;
  double nearestDistance = 1.0e9;
  for (int f = 0; f < mesh.faceCount; ++f) {
    if (!mesh.validFace(f)) continue;
    const Vec3 normal = mesh.faceNormal(f);
    const double slope = dot(normal, ray.direction);
    if (slope == 0.0) continue;
    const auto c = mesh.corners(f);
    const Corners p = {mesh.position(c[0]), mesh.position(c[1]), mesh.position(c[2])};
    const double distance = -dot(normal, ray.origin - p[0]) / slope;
    if (distance < nearestDistance &&
        insideAllEdges(ray.origin + distance * ray.direction, p, normal)) {
      nearest = f;
      nearestDistance = distance;
    }
  }
  return nearest;
}

}  // namespace gravlin
