#pragma once

#include "mesh/TriangleMesh.h"
#include "numeric/Vec3.h"

namespace gravlin {

/// Area of a triangle of which two edges from the same corner are given.
inline double triangleArea(const Vec3& edge, const Vec3& otherEdge) {
  return 0.5 * length(cross(edge, otherEdge));
}

/// Area of face f; 0 for an invalid face.
inline double faceArea(const TriangleMesh& mesh, int f) {
  if (!mesh.validFace(f)) return 0.0;
  const auto c = mesh.corners(f);
  const Vec3 p = mesh.position(c[0]);
  return triangleArea(p - mesh.position(c[1]), p - mesh.position(c[2]));
}

/// Mean of the corners of face f, which must be valid.
inline Vec3 faceCentroid(const TriangleMesh& mesh, int f) {
  const auto c = mesh.corners(f);
  return (mesh.position(c[0]) + mesh.position(c[1]) + mesh.position(c[2])) * 0.3333333333333333;
}

/// The mean of the corners in single precision: the sums and the product with 0.33333334 are each
/// rounded to float. `f` must be a valid face.
inline Vec3 singleFaceCentroid(const TriangleMesh& mesh, int f) {
  constexpr float third = 0.33333334F;
  const auto c = mesh.corners(f);
  const auto mean = [&](std::size_t axis) {
    const auto at = [&](std::size_t corner) {
      return mesh.vertices[3 * static_cast<std::size_t>(c[corner]) + axis];
    };
    return static_cast<double>((at(0) + at(1) + at(2)) * third);
  };
  return {mean(0), mean(1), mean(2)};
}

/// The position of a surface point on a valid face.
inline Vec3 pointInFace(const TriangleMesh& mesh, const FacePoint& at) {
  const auto c = mesh.corners(at.face);
  return (1.0 - at.a - at.b) * mesh.position(c[0]) + at.a * mesh.position(c[1]) +
         at.b * mesh.position(c[2]);
}

}  // namespace gravlin
