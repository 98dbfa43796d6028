#pragma once

#include <vector>

#include "mesh/TriangleMesh.h"

namespace gravlin {

/// What a decimation did.
struct DecimationResult {
  int vertices = 0;            ///< that were removed
  int faces = 0;               ///< that were removed
  bool targetReached = false;  ///< otherwise no edge was left that may collapse
};

/// Positions and faces as `decimate` leaves them; nothing derived but the kinds that vertices had
/// on the way.
struct DecimatedMesh {
  TriangleMesh mesh;
  DecimationResult result;
};

/// Reduces the document's current mesh by collapsing edges, cheapest first: an edge's cost is the
/// least value of the summed error quadrics of its two ends (see vertexQuadrics), and it collapses
/// into the point where that value is taken. Every operation requires a mesh.
///
/// Edges are pairs (i, j) with i > j at first, and i is the end that survives the edge's collapse.
/// When j vanishes into i, other edges that had j have i in the same place of their pair: (m, j)
/// becomes (m, i), which m survives, and (j, m) becomes (i, m).
class Decimator {
 public:
  /// Points to the mesh that the operations work on from now on; null for none, and then none may
  /// be called. The mesh is not owned. Requires buildAdjacency and buildFaceAdjacency.
  void attach(TriangleMesh* current) { mesh = current; }

  /// Collapses edges until no more than (1 - rate) times the number of used vertices, with the
  /// fraction cut off, are left, but at least one edge if any may collapse. Brings the face normals
  /// up to date first. Removed vertices end without a ring, removed faces invalid; rings, kinds and
  /// face adjacency are rebuilt, normals and everything else derived are stale then. When memory
  /// is refused (std::bad_alloc) the mesh is as it was.
  DecimationResult decimate(float rate);

  /// The outcome of `decimate` as a mesh of its own; of the attached one only the face normals
  /// change.
  DecimatedMesh decimatedCopy(float rate);

  /// Collapses edge i-j into vertex i placed at `position`, rounded to single precision, if it
  /// passes the tests of CollapsibleMesh::collapse, and rebuilds rings, kinds and face adjacency.
  /// False when it may not or there is no such edge; then, as when memory is refused, nothing has
  /// changed.
  bool collapseEdge(int i, int j, const Vec3& position);

  /// Finds the creases of the mesh by a constant angle (CreasesByAngle.h) and returns all of them,
  /// [V].
  std::vector<IndexList> detectCreasesByAngle(float cosThreshold);

 private:
  TriangleMesh* mesh = nullptr;
};

}  // namespace gravlin
