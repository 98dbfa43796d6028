#pragma once

#include "mesh/TriangleMesh.h"

namespace gravlin {

/// Closes gaps of one vertex: where two ring neighbours of an unmarked vertex are marked and the
/// one between them is not, the stronger of the vertex and that neighbour becomes marked. Ridges
/// first, then valleys; vertices in index order, later ones see earlier changes; every ring counts
/// as closed. Needs marks, curvatures and rings.
void fillGaps(TriangleMesh& mesh);

}  // namespace gravlin
