#pragma once

#include "mesh/TriangleMesh.h"
#include "smoothing/AdaptiveSmoothingParameters.h"

namespace gravlin {

// Smoothing that keeps creases. An outer iteration computes the face normals from the positions,
// filters them `averagingIterations` times, then lets the vertices follow them with
// `integrationIterations` steps of `integrationStep`. What an outer iteration does is taken from
// the parameters; how many there are is the argument, so that a caller may run them in chunks.
//
// Both leave the filtered normals in `faceNormals` and everything else derived from positions
// stale. Require face adjacency; where faces that meet at a corner count, cornerNeighbourFaces is
// built if absent (see buildCornerNeighbourFaces for what it throws).

/// Filters the normals by weighted means: averageNormalsWeighted where `meetAtVertex` is 0, else
/// averageNormalsVertexWeighted.
void adaptiveSmoothing(TriangleMesh& mesh, int iterations,
                       const AdaptiveSmoothingParameters& parameters);

/// Filters the normals by averageNormalsMedian.
void medianSmoothing(TriangleMesh& mesh, int iterations,
                     const AdaptiveSmoothingParameters& parameters);

}  // namespace gravlin
