#pragma once

#include "mesh/TriangleMesh.h"
#include "numeric/SparseMatrix.h"
#include "smoothing/ImplicitStep.h"

namespace gravlin {

/// Backward Euler steps of the umbrella Laplacian: (1 + dt) x_i - dt/n sum(x_j) = x_i before the
/// step for interior vertices, x_i unchanged for all others. Solved to a relative residual of
/// 0.001. Any dt >= 0 is stable.
class ImplicitLaplacianFlow {
 public:
  /// Builds the matrix, which depends on the rings and dt only and serves every step. Requires
  /// buildAdjacency; the mesh must outlive the flow and keep its faces.
  ImplicitLaplacianFlow(TriangleMesh& smoothed, float dt);

  /// One time step; normals become stale.
  ImplicitStep step();

  const SparseMatrix& systemMatrix() const { return matrix; }

 private:
  TriangleMesh& mesh;
  SparseMatrix matrix;
};

}  // namespace gravlin
