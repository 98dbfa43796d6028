#pragma once

#include "mesh/TriangleMesh.h"

namespace gravlin {

/// Estimates the principal curvatures and directions at every vertex from its one-ring: per
/// neighbour the turn of the normal over the distance, gathered with area weights into a symmetric
/// 3 x 3 tensor, which one Jacobi rotation diagonalises in the tangent plane.
///
/// Fills `maxCurvature`, `minCurvature` (double[V], 1/length, positive where the surface is convex
/// as seen from the side that the normals point to) and `maxDirection`, `minDirection` (double[3V],
/// unit, right-handed with the vertex normal: (normal x max) . min >= 0; otherwise free in sign).
/// A vertex with fewer than three neighbours, or whose ring has no area, gets zeros. Notes their
/// `curvatureOrigin`.
///
/// The estimate counts the whole angle between two normals, not its share in the plane of the edge:
/// it is exact on a sphere, and away from umbilics a little different from the surface's normal
/// curvature (on a cylinder of radius r, 10 / (3 pi r) and 2 / (3 pi r)).
///
/// Where the tensor's off-diagonal entry is exactly 0 the directions are the tangent axes turned by
/// 45 degrees. So that this does not depend on rounding luck, every sum and product is evaluated in
/// one documented order.
///
/// Requires `buildAdjacency`. Computes the vertex normals when there are none. Positions that are
/// not finite give values that are not finite; nothing else is affected.
void computeCurvatureTensor(TriangleMesh& mesh);

}  // namespace gravlin
