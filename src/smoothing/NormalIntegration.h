#pragma once

#include "mesh/TriangleMesh.h"

namespace gravlin {

// One step of moving the vertices so that the faces follow the normals in `faceNormals`. Every
// displacement is computed from the old positions, then all are added, `step` times, and rounded to
// float. Only interior vertices move; faces and normals stay as they are. Requires buildAdjacency
// and face normals.

/// Pulls a vertex towards the planes through its faces' centroids: the displacement is the mean,
/// weighted by area, of the vectors from the vertex to their feet on those planes.
void integrateDistance(TriangleMesh& mesh, double step);

/// The displacement is the cotangent Laplacian of the ring less that of the same ring with every
/// triangle flattened onto its face's plane through the vertex: the sum over the triangles, divided
/// by their number. A triangle without area adds nothing, before or after flattening.
void integrateDerivative(TriangleMesh& mesh, double step);

/// As `integrateDerivative`, with the difference of every triangle rounded to single precision and
/// weighted by `factor` times the square of the ratio of its area after flattening to that before;
/// the sum is divided by the sum of the weights. A triangle without area is left out; no
/// displacement where the weights sum to 0.
void integrateDerivativeByArea(TriangleMesh& mesh, double step, double factor);

}  // namespace gravlin
