#pragma once

#include "mesh/TriangleMesh.h"
#include "smoothing/FlowSteps.h"

namespace gravlin {

/// x_i += dt D_i with D_i the umbrella Laplacian, simultaneously for all interior vertices; the
/// others stay. Requires buildAdjacency; normals become stale.
void laplacianFlow(TriangleMesh& mesh, const FlowSteps& steps);

}  // namespace gravlin
