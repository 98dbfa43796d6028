#include "curvature/DirectionCoherence.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "curvature/DirectionTransport.h"
#include "mesh/Corner.h"

namespace gravlin {
namespace {

/// Radians between the lines of maximum curvature at the two ends of an edge, 0 .. pi / 2.
double turnAlongEdge(const TriangleMesh& mesh, int near, int far) {
  const Vec3 carried = transportDirection(mesh, far, near, vectorAt(mesh.maxDirection, far));
  const double c = std::clamp(dot(carried, vectorAt(mesh.maxDirection, near)), -1.0, 1.0);
  return std::acos(std::abs(c));
}

bool isCoherent(const TriangleMesh& mesh, int face, double threshold) {
  if (!mesh.validFace(face)) return false;
  const auto c = mesh.corners(face);
  for (std::size_t j = 0; j < 3; ++j) {
    const int near = c[j];
    const int far = c[nextCorner(j)];
    const double edge = length(mesh.position(far) - mesh.position(near));
    if (!(threshold * edge >= turnAlongEdge(mesh, near, far))) return false;
  }
  return true;
}

}  // namespace

void markCoherentFaces(TriangleMesh& mesh, float threshold) {
  mesh.coherentFaces.resize(static_cast<std::size_t>(mesh.faceCount));
  for (int f = 0; f < mesh.faceCount; ++f) {
    mesh.coherentFaces[static_cast<std::size_t>(f)] =
        isCoherent(mesh, f, static_cast<double>(threshold)) ? 1 : 0;
  }
}

}  // namespace gravlin
