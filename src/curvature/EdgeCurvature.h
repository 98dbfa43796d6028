#pragma once

#include "mesh/TriangleMesh.h"

namespace gravlin {

/// Gives every edge a signed curvature from the angle between its two faces: edge length x angle /
/// (sum of the two areas), 1/length. Convex edges get negative values and concave ones positive:
/// the opposite of the vertex curvatures' sign.
///
/// Fills `edgeCurvatures` (double[3F], numbered as `faceAdjacency`); both faces of an edge hold the
/// same value. Edges on a border, edges of faces without area and entries that no face across
/// writes (at non-manifold edges) are 0. Notes their `edgeCurvatureOrigin`.
///
/// Requires `faceAdjacency`. Computes the face normals when there are none.
void computeEdgeCurvatures(TriangleMesh& mesh);

}  // namespace gravlin
