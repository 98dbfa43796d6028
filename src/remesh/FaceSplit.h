#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "mesh/Corner.h"
#include "mesh/TriangleMesh.h"
#include "numeric/BlockAppender.h"
#include "numeric/Index.h"

namespace gravlin {

// --- Marks: which faces are split into four ---

/// The marks [F] that split every face: all 1.
std::vector<int> markEveryFace(const TriangleMesh& mesh);

/// Marks further faces (with 1; a mark is anything but 0) until every unmarked face has at most one
/// side with a marked face on the other side: a face with more of them becomes marked, which may
/// give its neighbours more. Which faces are marked in the end does not depend on the order. Linear
/// in the faces. Requires buildFaceAdjacency.
void spreadMarks(const TriangleMesh& mesh, std::vector<int>& marks);

// --- Edge points ---

/// An edge that gets a point, seen from the marked face that numbers it.
struct SplitEdge {
  int a;          ///< corner j of the face
  int b;          ///< corner j + 1
  int c;          ///< the third corner
  int d;          ///< the corner of the neighbouring face that is not on the edge, -1 without one
  int face;       ///< the face
  int side;       ///< j
  int other;      ///< the neighbouring face, marked or not, -1 without one
  int otherSide;  ///< the edge's number there, which runs from b to a
};

inline Vec3 midpoint(const TriangleMesh& mesh, const SplitEdge& edge) {
  return (mesh.position(edge.a) + mesh.position(edge.b)) * 0.5;
}

/// Calls visit(SplitEdge) for every side of a marked face in the order in which edge points are
/// numbered: by the marked faces in index order and their sides in order, an edge of two marked
/// faces at the second of them.
template <class Visit>
void visitSplitEdges(const TriangleMesh& mesh, const std::vector<int>& marks, const Visit& visit) {
  for (int f = 0; f < mesh.faceCount; ++f) {
    if (!mesh.validFace(f) || marks[toIndex(f)] == 0) continue;
    const auto corners = mesh.corners(f);
    for (int j = 0; j < 3; ++j) {
      const int g = mesh.faceAdjacency[3 * toIndex(f) + toIndex(j)];
      if (g > f && marks[toIndex(g)] != 0) continue;
      const int a = corners[toIndex(j)];
      const int b = corners[toIndex(nextCorner(j))];
      const int k = g < 0 ? -1 : static_cast<int>(sideOf(mesh.corners(g), {.from = b, .to = a}));
      const int d = g < 0 ? -1 : mesh.corners(g)[toIndex(previousCorner(k))];
      visit(SplitEdge{a, b, corners[toIndex(previousCorner(j))], d, f, j, g, k});
    }
  }
}

// --- Sizes ---

/// Sizes of a split mesh. `vertices` counts one point for each side of a marked face, an edge
/// without a face on the other side once for each face that has it.
struct SplitCounts {
  std::int64_t vertices;
  std::int64_t faces;
  std::int64_t ringEntries;  ///< at most so many neighbours are in all rings together
  bool direct = false;       ///< whether the topology can be written from the old one
};
/// For marks as spreadMarks leaves them.
SplitCounts splitCounts(const TriangleMesh& mesh, const std::vector<int>& marks);

/// Throws std::length_error when coordinates, corners or ring entries of a mesh of these counts
/// could pass the range of an int.
void requireIndexable(const SplitCounts& counts);

// --- The split ---

/// A split mesh on its way, and how it comes from the old one.
struct FaceSplit {
  TriangleMesh mesh;
  std::vector<int> marks;       ///< [F of the old mesh] as spreadMarks leaves them
  std::vector<int> edgePoints;  ///< [3F of the old mesh] vertex on side j of face f, -1 for none
  SplitCounts counts;
};

/// A mesh of the new counts with box and tolerance of the old one, room for its positions, and no
/// edge points. Throws as splitMarkedFaces.
FaceSplit beginSplit(const TriangleMesh& old, std::vector<int> marks);

/// With all positions and edge points there: writes the faces, then normals and topology.
TriangleMesh finishSplit(const TriangleMesh& old, FaceSplit split);

/// Refines the marked faces of a mesh, and as many more as spreadMarks adds so that no edge point
/// comes to lie inside a side of an unsplit face. With the points e0, e1, e2 on its sides a marked
/// face (c0, c1, c2) becomes (c0, e0, e2), (c1, e1, e0), (c2, e2, e1), (e0, e1, e2), an invalid one
/// four invalid faces. An unmarked face with a point e on one side, from c_j to c_(j+1), is halved:
/// (c_j, e, c_(j+2)), (c_(j+1), c_(j+2), e). All others stay as they are. New faces come in the
/// order of the old ones.
///
/// Old vertices keep their indices and move to vertexPoint(i); edge points follow them in the order
/// of visitSplitEdges at edgePoint(SplitEdge). Both are given as Vec3 from the old positions.
///
/// The result has topology and both normals; nothing else derived is carried over. Beside it there
/// is one int for every corner of an old face. Requires buildAdjacency and buildFaceAdjacency, and
/// a mark for every face. Throws std::length_error when the counts could not be indexed and
/// std::bad_alloc when memory is refused; the old mesh is not touched.
template <class VertexPoint, class EdgePoint>
TriangleMesh splitMarkedFaces(const TriangleMesh& old, std::vector<int> marks,
                              const VertexPoint& vertexPoint, const EdgePoint& edgePoint) {
  FaceSplit split = beginSplit(old, std::move(marks));
  {
    BlockAppender<float> positions(split.mesh.vertices);
    for (int i = 0; i < old.vertexCount; ++i) storeVec3(positions.take(3), vertexPoint(i));
    int next = old.vertexCount;
    visitSplitEdges(old, split.marks, [&](const SplitEdge& edge) {
      storeVec3(positions.take(3), edgePoint(edge));
      split.edgePoints[3 * toIndex(edge.face) + toIndex(edge.side)] = next;
      if (edge.other >= 0) {
        split.edgePoints[3 * toIndex(edge.other) + toIndex(edge.otherSide)] = next;
      }
      ++next;
    });
  }
  return finishSplit(old, std::move(split));
}

/// Splits every face into four.
template <class VertexPoint, class EdgePoint>
TriangleMesh splitEveryFace(const TriangleMesh& old, const VertexPoint& vertexPoint,
                            const EdgePoint& edgePoint) {
  return splitMarkedFaces(old, markEveryFace(old), vertexPoint, edgePoint);
}

}  // namespace gravlin
