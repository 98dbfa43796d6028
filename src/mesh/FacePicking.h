#pragma once

#include <optional>

#include "mesh/TriangleMesh.h"

namespace gravlin {

/// A line of sight in mesh coordinates.
struct Ray {
  Vec3 origin;
  Vec3 direction;  ///< unit length
};

/// The face that the line of sight meets first, or nothing. A face counts as met when the point
/// where the line crosses its plane lies on the inner side of all three edges, the edges included.
/// Of faces equally near the one with the lowest index wins. The line has no beginning: a face
/// behind the origin is met as well, and wins over any in front of it.
/// Requires the face normals; invalid and degenerate faces are never met. Linear in F.
std::optional<int> faceOnRay(const TriangleMesh& mesh, const Ray& ray);

}  // namespace gravlin
