#include "features/EdgeFold.h"

#include <cmath>

namespace gravlin {
namespace {

constexpr float third = 1.0F / 3.0F;

Vec3 roundedToFloat(const Vec3& a) {
  return {static_cast<float>(a.x), static_cast<float>(a.y), static_cast<float>(a.z)};
}

Vec3 centroid(const TriangleMesh& mesh, int f) {
  const auto c = mesh.corners(f);
  const Vec3 sum = mesh.position(c[0]) + mesh.position(c[1]) + mesh.position(c[2]);
  return roundedToFloat(sum * static_cast<double>(third));
}

}  // namespace

float normalCosine(const TriangleMesh& mesh, int f, int g) {
  return static_cast<float>(dot(mesh.faceNormal(f), mesh.faceNormal(g)));
}

EdgeFold edgeFold(const TriangleMesh& mesh, int f, int g) {
  const Vec3 d = roundedToFloat(centroid(mesh, g) - centroid(mesh, f));
  const double distance = length(d);
  const double sum = std::acos(-dot(mesh.faceNormal(g), d) / distance) +
                     std::acos(dot(mesh.faceNormal(f), d) / distance);
  return {normalCosine(mesh, f, g), static_cast<float>(sum), distance != 0.0};
}

}  // namespace gravlin
