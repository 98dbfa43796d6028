#pragma once

#include "mesh/TriangleMesh.h"
#include "smoothing/FlowSteps.h"

namespace gravlin {

/// Mean curvature flow that keeps vertices evenly spread: every interior vertex moves along its
/// umbrella vector L, so far that the part along the inward mean curvature normal H is that of
/// mean curvature flow. Where L and H point apart it moves along L mirrored at the plane across H.
/// No vertex moves farther than L is long; that limit, and the move by L where L and H are
/// perpendicular, do not depend on the step. All vertices move simultaneously; those that are not
/// interior stay. Requires buildAdjacency; normals become stale.
void medianCurvatureFlow(TriangleMesh& mesh, const FlowSteps& steps);

/// The displacement of one vertex, from its umbrella vector and its inward mean curvature normal.
/// 0 when their product is not a number.
Vec3 displacementAlongMedian(const Vec3& umbrella, const Vec3& inward, double step);

}  // namespace gravlin
