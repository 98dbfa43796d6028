#pragma once

#include "mesh/TriangleMesh.h"
#include "smoothing/FlowSteps.h"

namespace gravlin {

/// Kobbelt's fairing: the umbrella of the umbrella vectors, divided by its own diagonal. With U the
/// umbrella Laplacian (0 for vertices that are not interior), n the ring's length and the sums over
/// the neighbours j, x_i += dt sum(U_i - U_j) / (n_i + sum(1 / n_j)), simultaneously for all
/// interior vertices whose neighbours are interior too; all others stay, so a band along every
/// boundary is fixed. Requires buildAdjacency; normals become stale.
void bilaplacianFlow(TriangleMesh& mesh, const FlowSteps& steps);

}  // namespace gravlin
