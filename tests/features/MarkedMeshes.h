#pragma once

#include <initializer_list>
#include <utility>

#include "mesh/TriangleMesh.h"

namespace gravlin::test {

/// Gives every vertex the same principal curvatures, empty marks and empty links, as the stages
/// that come after extraction need them.
inline void prepareLines(TriangleMesh& mesh, double kmax, double kmin) {
  const auto V = static_cast<std::size_t>(mesh.vertexCount);
  mesh.maxCurvature.assign(V, kmax);
  mesh.minCurvature.assign(V, kmin);
  mesh.ridgeMarks.assign(V, 0);
  mesh.valleyMarks.assign(V, 0);
  mesh.ridgeLinks.assign(V, IndexList());
  mesh.valleyLinks.assign(V, IndexList());
}

/// Vertices of `grid(columns, rows)` by column and row. Each is joined to its four neighbours and
/// to those at (+1, +1) and (-1, -1):
///
///     o--o--o
///     | /| /|
///     o--o--o
struct GridIndex {
  int columns;
  int operator()(int column, int row) const { return row * (columns + 1) + column; }
};

inline void markRidge(TriangleMesh& mesh, std::initializer_list<int> vertices) {
  for (const int v : vertices) mesh.ridgeMarks[static_cast<std::size_t>(v)] = 1;
}

/// Exchanges the roles of ridges and valleys, curvatures turned round.
inline void mirrorKinds(TriangleMesh& mesh) {
  std::swap(mesh.ridgeMarks, mesh.valleyMarks);
  std::swap(mesh.ridgeLinks, mesh.valleyLinks);
  std::swap(mesh.maxCurvature, mesh.minCurvature);
  std::swap(mesh.maxDirection, mesh.minDirection);
  for (double& k : mesh.maxCurvature) k = -k;
  for (double& k : mesh.minCurvature) k = -k;
}

}  // namespace gravlin::test
