#include "features/EdgeFold.h"

#include <cmath>

namespace gravlin {
namespace {

constexpr float third = 1.0F / 3.0F;

Vec3 centroid(const TriangleMesh& mesh, int f) {
  const auto c = mesh.corners(f);
  const Vec3 sum = mesh.position(c[0]) + mesh.position(c[1]) + mesh.position(c[2]);
  return roundedToSingle(sum * static_cast<double>(third));
}

Vec3 betweenCentroids(const TriangleMesh& mesh, int f, int g) {
  return roundedToSingle(centroid(mesh, g) - centroid(mesh, f));
}

}  // namespace

float normalCosine(const TriangleMesh& mesh, int f, int g) {
  return static_cast<float>(dot(mesh.faceNormal(f), mesh.faceNormal(g)));
}

EdgeFold edgeFold(const TriangleMesh& mesh, int f, int g) {
  const Vec3 d = betweenCentroids(mesh, f, g);
  const double distance = length(d);
  const double sum = std::acos(-dot(mesh.faceNormal(g), d) / distance) +
                     std::acos(dot(mesh.faceNormal(f), d) / distance);
  return {normalCosine(mesh, f, g), static_cast<float>(sum), distance != 0.0};
}

// With x and y the arguments of the two arc cosines, acos(x) + acos(y) - pi = acos(x) - acos(-y)
// has the sign of -(x + y) and at least its size. A size of 1e-6 is more than the rounding of the
// sum to single precision takes away; near -2 the sum could come out above 2 pi.
std::optional<bool> clearlyConvex(const TriangleMesh& mesh, int f, int g) {
  constexpr double settled = 1e-6;
  constexpr double foldedBack = 1.99;
  constexpr double almostOne = 1.0 - 1e-12;
  const Vec3 d = betweenCentroids(mesh, f, g);
  const double alongF = dot(mesh.faceNormal(f), d);
  const double alongG = dot(mesh.faceNormal(g), d);
  const double difference = alongG - alongF;  // -(x + y) |d|
  const double squaredLength = dot(d, d);
  const double squaredDifference = difference * difference;
  const bool defined =
      alongF * alongF <= almostOne * squaredLength && alongG * alongG <= almostOne * squaredLength;
  if (!defined || !(squaredDifference > settled * settled * squaredLength) ||
      !(squaredDifference < foldedBack * foldedBack * squaredLength)) {
    return std::nullopt;
  }
  return difference > 0.0;
}

}  // namespace gravlin
