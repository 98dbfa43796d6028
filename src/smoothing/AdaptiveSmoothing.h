#pragma once

#include "mesh/TriangleMesh.h"
#include "smoothing/NormalAveraging.h"

namespace gravlin {

// Smoothing that keeps creases. An outer iteration computes the face normals from the positions,
// filters them `averagingIterations` times, then lets the vertices follow them with
// `integrationIterations` steps of `integrationStep`. What an outer iteration does is taken from
// the options; how many there are is the argument, so that a caller may run them in chunks.
//
// Both leave the filtered normals in `faceNormals` and everything else derived from positions
// stale. Require face adjacency; where faces that meet at a corner count, cornerNeighbourFaces is
// built if absent (see buildCornerNeighbourFaces for what it throws).

/// Which error the integration of face normals reduces.
enum IntegrationError : int {
  DistanceError = 0,   ///< distance of a vertex to the planes of its faces
  DerivativeError = 1  ///< cotangent Laplacian of the ring against that of the flattened ring
};

/// What one outer iteration does. A count below 1 is none.
struct AdaptiveSmoothingOptions {
  float threshold = 1.0F;     ///< T of the weight functions
  float meetAtVertex = 0.5F;  ///< weight of faces that meet at a corner only, 0 .. 1
  IntegrationError integrationError = DerivativeError;
  int integrationIterations = 10;
  float integrationStep = 0.1F;  ///< share of the displacement that one step takes, 0 .. 1
  int averagingIterations = 1;
  WeightShape weightShape = ExponentialWeight;
  int derivativeVariant = 1;   ///< 1: plain sum; else a weighted mean, see NormalIntegration.h
  bool medianWeighted = true;  ///< an edge neighbour counts twice in the median
  NormalDifference normalDifference = AngleDifference;
};

/// Filters the normals by weighted means: averageNormalsWeighted where `meetAtVertex` is 0, else
/// averageNormalsVertexWeighted.
void adaptiveSmoothing(TriangleMesh& mesh, int iterations, const AdaptiveSmoothingOptions& options);

/// Filters the normals by averageNormalsMedian.
void medianSmoothing(TriangleMesh& mesh, int iterations, const AdaptiveSmoothingOptions& options);

}  // namespace gravlin
