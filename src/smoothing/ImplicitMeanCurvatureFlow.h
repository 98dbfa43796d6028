#pragma once

#include <vector>

#include "mesh/TriangleMesh.h"
#include "numeric/SparseMatrix.h"
#include "smoothing/ImplicitStep.h"

namespace gravlin {

/// Backward Euler steps of Desbrun's mean curvature flow: with A the sum of the ring's triangle
/// areas and alpha, beta the angles opposite the edge to neighbour j,
/// x_i - dt/A sum((cot alpha + cot beta) (x_j - x_i)) = x_i before the step for interior vertices,
/// x_i unchanged for all others and where A is 0. The operator is a quarter of the mean curvature
/// normal that the explicit flow follows. Solved to a relative residual of 1e-5.
class ImplicitMeanCurvatureFlow {
 public:
  /// Sorts the rings, once for all steps. Requires buildAdjacency; the mesh must outlive the flow
  /// and keep its faces.
  ImplicitMeanCurvatureFlow(TriangleMesh& smoothed, float dt);

  /// One time step, with a matrix for the present positions; normals become stale.
  ImplicitStep step();

  /// Fills the matrix for the present positions, as `step` does.
  const SparseMatrix& assemble();

 private:
  TriangleMesh& mesh;
  double timeStep;
  /// Beside vertexNeighbours.items: in each ring the places of its neighbours in rising order.
  std::vector<int> risingPlaces;
  SparseMatrix matrix;
};

}  // namespace gravlin
