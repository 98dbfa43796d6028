#pragma once

#include <cstdint>
#include <vector>

#include "mesh/TriangleMesh.h"
#include "numeric/Index.h"

namespace gravlin {

/// An edge that gets a point, seen from the face that numbers it.
struct SplitEdge {
  int a;          ///< corner j of the face
  int b;          ///< corner j + 1
  int c;          ///< the third corner
  int d;          ///< the corner of the neighbouring face that is not on the edge, -1 without one
  int face;       ///< the face
  int side;       ///< j
  int other;      ///< the neighbouring face, -1 without one
  int otherSide;  ///< the edge's number there, which runs from b to a
};

/// Sizes of a mesh of which every face is split into four. `vertices` counts one point for each
/// edge, an edge without a face on the other side once for each face that has it.
struct SplitCounts {
  std::int64_t vertices;
  std::int64_t faces;
  std::int64_t ringEntries;  ///< at most so many neighbours are in all rings together
};
SplitCounts splitCounts(const TriangleMesh& mesh);

/// Throws std::length_error when coordinates, corners or ring entries of a mesh of these counts
/// could pass the range of an int.
void requireIndexable(const SplitCounts& counts);

/// Throws std::bad_alloc when a mesh of these counts with its topology and normals does not fit in
/// memory.
void requireMemoryFor(const SplitCounts& counts);

/// Number of the side of face g that runs from b to a; the faces must share that edge.
inline int sharedSide(const TriangleMesh& mesh, int g, int a, int b) {
  const auto corners = mesh.corners(g);
  if (corners[0] == b && corners[1] == a) return 0;
  return corners[1] == b && corners[2] == a ? 1 : 2;
}

inline Vec3 midpoint(const TriangleMesh& mesh, const SplitEdge& edge) {
  return (mesh.position(edge.a) + mesh.position(edge.b)) * 0.5;
}

/// Calls visit(SplitEdge) for every edge in the order in which edge points are numbered: by the
/// faces in index order and their sides in order, an edge of two faces at the second of them.
template <class Visit>
void visitSplitEdges(const TriangleMesh& mesh, const Visit& visit) {
  for (int f = 0; f < mesh.faceCount; ++f) {
    if (!mesh.validFace(f)) continue;
    const auto corners = mesh.corners(f);
    for (int j = 0; j < 3; ++j) {
      const int g = mesh.faceAdjacency[3 * toIndex(f) + toIndex(j)];
      if (g > f) continue;
      const int a = corners[toIndex(j)];
      const int b = corners[toIndex((j + 1) % 3)];
      const int k = g < 0 ? -1 : sharedSide(mesh, g, a, b);
      const int d = g < 0 ? -1 : mesh.corners(g)[toIndex((k + 2) % 3)];
      visit(SplitEdge{a, b, corners[toIndex((j + 2) % 3)], d, f, j, g, k});
    }
  }
}

/// The split mesh before its topology is built, and how it came from the old one.
struct FaceSplit {
  TriangleMesh mesh;            ///< positions and faces, box and tolerance, nothing derived
  std::vector<int> edgePoints;  ///< [3F of the old mesh] vertex on side j of face f, -1 if invalid
};

/// Rings, kinds and face adjacency of a split mesh, the same as buildAdjacency and
/// buildFaceAdjacency give but, where every vertex is manifold, written directly from the old ones.
void buildSplitTopology(const TriangleMesh& old, FaceSplit& split);

/// Writes the four faces of every old face.
void writeSplitFaces(const TriangleMesh& old, FaceSplit& split);

/// Refines a mesh once: every valid face (c0, c1, c2) with the points e0, e1, e2 on its sides
/// becomes (c0, e0, e2), (c1, e1, e0), (c2, e2, e1), (e0, e1, e2), an invalid one four invalid
/// faces. Old vertices keep their indices and move to vertexPoint(i); edge points follow them in
/// the order of visitSplitEdges at edgePoint(SplitEdge). Both are given as Vec3 from the old
/// positions.
///
/// The result has topology and both normals; nothing else derived is carried over. Requires
/// buildAdjacency and buildFaceAdjacency. Throws std::length_error when the counts could not be
/// indexed and std::bad_alloc when memory is refused; the old mesh is not touched.
template <class VertexPoint, class EdgePoint>
TriangleMesh splitEveryFace(const TriangleMesh& old, const VertexPoint& vertexPoint,
                            const EdgePoint& edgePoint) {
  const SplitCounts counts = splitCounts(old);
  requireIndexable(counts);
  requireMemoryFor(counts);
  FaceSplit split;
  split.mesh.boxMax = old.boxMax;
  split.mesh.boxMin = old.boxMin;
  split.mesh.extentTolerance = old.extentTolerance;
  split.mesh.setVertexCount(static_cast<int>(counts.vertices));
  split.mesh.setFaceCount(static_cast<int>(counts.faces));
  split.edgePoints.assign(old.faces.size(), -1);

  for (int i = 0; i < old.vertexCount; ++i) split.mesh.setPosition(i, vertexPoint(i));
  int next = old.vertexCount;
  visitSplitEdges(old, [&](const SplitEdge& edge) {
    split.mesh.setPosition(next, edgePoint(edge));
    split.edgePoints[3 * toIndex(edge.face) + toIndex(edge.side)] = next;
    if (edge.other >= 0) {
      split.edgePoints[3 * toIndex(edge.other) + toIndex(edge.otherSide)] = next;
    }
    ++next;
  });
  writeSplitFaces(old, split);
  buildSplitTopology(old, split);
  split.edgePoints = {};
  split.mesh.computeFaceNormals();
  split.mesh.computeVertexNormals();
  return std::move(split.mesh);
}

}  // namespace gravlin
