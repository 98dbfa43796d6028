#pragma once

#include <cmath>

#include "mesh/TriangleMesh.h"
#include "numeric/Vec3.h"

namespace gravlin {

/// Carries directions from the tangent plane of one unit normal into that of another: the rotation
/// about their cross product that takes the first normal onto the second. Normals closer than 1e-6
/// to parallel, also opposite ones, give the identity.
class DirectionTransport {
 public:
  DirectionTransport(const Vec3& from, const Vec3& to) : axis(cross(from, to)) {
    const double squaredSine = dot(axis, axis);
    if (std::sqrt(squaredSine) < 1e-6) return;
    // The normals are float vectors, of unit length only nearly: their angle is the one between the
    // cross and the dot product, whose sine and cosine need no trigonometry.
    const double cosineLength = dot(from, to);
    const double scale = 1.0 / std::sqrt(squaredSine + cosineLength * cosineLength);
    cosine = cosineLength * scale;
    crossFactor = scale;
    axisFactor = (1.0 - cosine) / squaredSine;
  }

  /// The rotated direction, by Rodrigues' formula.
  Vec3 operator()(const Vec3& v) const {
    return cosine * v + crossFactor * cross(axis, v) + (axisFactor * dot(axis, v)) * axis;
  }

 private:
  Vec3 axis;
  double cosine = 1.0;
  double crossFactor = 0.0;  ///< sine / |axis|
  double axisFactor = 0.0;   ///< (1 - cosine) / |axis|^2
};

/// A direction at vertex `source` carried into the tangent plane of vertex `target`. Requires
/// vertex normals.
inline Vec3 transportDirection(const TriangleMesh& mesh, int source, int target,
                               const Vec3& direction) {
  return DirectionTransport(mesh.vertexNormal(source), mesh.vertexNormal(target))(direction);
}

}  // namespace gravlin
