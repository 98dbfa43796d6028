#pragma once

#include <optional>
#include <vector>

#include "mesh/TriangleMesh.h"
#include "numeric/Vec3.h"

namespace gravlin {

/// The point of triangle a, b, c nearest to p, also of a triangle without area.
Vec3 nearestPointOnTriangle(const Vec3& p, const Vec3& a, const Vec3& b, const Vec3& c);

/// Finds the nearest point of a surface, in logarithmic time for points near the surface: a tree of
/// boxes around its faces, each split at the median of the face centroids along its longest side.
///
/// Built from the valid faces with finite corners in O(F log F). Keeps a reference to the mesh,
/// whose positions and faces must not change while it is used.
class SurfaceIndex {
 public:
  explicit SurfaceIndex(const TriangleMesh& indexedMesh);

  struct Nearest {
    int face;
    Vec3 position;
    double distance;
  };
  /// Nothing when there is no such face, or when p is not finite. Of equally near faces it is
  /// always the same one.
  std::optional<Nearest> nearest(const Vec3& p) const;

 private:
  struct Box {
    Vec3 low, high;
    double squaredDistance(const Vec3& p) const;
  };
  /// The left child of an inner node is the next node.
  struct Node {
    Box box;
    int first;  ///< of the node's faces in `order`
    int count;
    int right;  ///< 0 in a leaf
  };

  Box boxAround(int first, int count) const;
  int build(int first, int count);

  const TriangleMesh& mesh;
  std::vector<int> order;
  std::vector<Node> nodes;
};

}  // namespace gravlin
