#include "mesh/MeshTopology.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "mesh/Corner.h"
#include "numeric/Index.h"

namespace gravlin {
namespace {

/// Vertices in sets that grow together along edges.
class VertexSets {
 public:
  explicit VertexSets(int vertexCount) : parent(toIndex(vertexCount)) {
    std::iota(parent.begin(), parent.end(), 0);
  }

  int representative(int i) {
    while (parent[toIndex(i)] != i) {
      int& up = parent[toIndex(i)];
      up = parent[toIndex(up)];
      i = up;
    }
    return i;
  }

  /// True when a and b were in different sets.
  bool join(int a, int b) {
    a = representative(a);
    b = representative(b);
    parent[toIndex(std::max(a, b))] = std::min(a, b);
    return a != b;
  }

 private:
  std::vector<int> parent;
};

/// The end points of every side of every valid face, the smaller index first, sorted.
std::vector<std::pair<int, int>> sortedSides(const TriangleMesh& mesh) {
  std::vector<std::pair<int, int>> sides;
  sides.reserve(3 * toIndex(mesh.countValidFaces()));
  for (int f = 0; f < mesh.faceCount; ++f) {
    if (!mesh.validFace(f)) continue;
    const auto c = mesh.corners(f);
    for (std::size_t j = 0; j < 3; ++j) sides.emplace_back(std::minmax(c[j], c[nextCorner(j)]));
  }
  std::sort(sides.begin(), sides.end());
  return sides;
}

}  // namespace

MeshTopology measureTopology(const TriangleMesh& mesh) {
  MeshTopology result;
  result.usedVertices = mesh.countUsedVertices();
  result.validFaces = mesh.countValidFaces();
  // A set that joins another makes one less of them; a vertex new to a boundary makes one more.
  result.components = result.usedVertices;
  VertexSets parts(mesh.vertexCount);
  VertexSets boundary(mesh.vertexCount);
  std::vector<bool> onBoundary(toIndex(mesh.vertexCount), false);

  const std::vector<std::pair<int, int>> sides = sortedSides(mesh);
  for (auto side = sides.begin(); side != sides.end();) {
    const auto next = std::find_if(side, sides.end(), [&](const auto& s) { return s != *side; });
    const auto [a, b] = *side;
    ++result.edges;
    if (parts.join(a, b)) --result.components;
    if (next - side > 2) ++result.nonManifoldEdges;
    if (next - side == 1) {
      ++result.boundaryEdges;
      for (const int end : {a, b}) {
        if (!onBoundary[toIndex(end)]) ++result.boundaryLoops;
        onBoundary[toIndex(end)] = true;
      }
      if (boundary.join(a, b)) --result.boundaryLoops;
    }
    side = next;
  }
  return result;
}

}  // namespace gravlin
