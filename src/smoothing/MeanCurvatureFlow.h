#pragma once

#include "mesh/TriangleMesh.h"
#include "smoothing/FlowSteps.h"

namespace gravlin {

/// Desbrun's mean curvature flow: x_i -= dt K_i with K_i the mean curvature normal,
/// simultaneously for all interior vertices; the others stay. K_i is a length to the power -1, so
/// what a step does depends on the size of the mesh. Requires buildAdjacency; normals become stale.
void meanCurvatureFlow(TriangleMesh& mesh, const FlowSteps& steps);

}  // namespace gravlin
