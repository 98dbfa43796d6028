#pragma once

#include "mesh/TriangleMesh.h"

namespace gravlin {

/// Marks the vertices where the maximum curvature is a local maximum along its own direction
/// (`ridgeMarks`) and those where the minimum curvature is a local minimum along its own
/// (`valleyMarks`).
///
/// At every interior vertex the two planes that hold the normal and one principal direction each
/// are cut with the ring. The curvature at the vertex is compared with the curvatures at the two
/// cuts along its own direction, each raised (ridge) or lowered (valley) by g^2 D / (2 (kmax -
/// kmin)), g being the slope of that curvature across the line and D the squared distance of the
/// cut.
///
/// A plane that misses the ring on one side keeps the cut found there at an earlier vertex, so the
/// vertices are visited in index order; before the first cut all records are 0. Comparisons with a
/// value that is not a number leave no mark. Boundary and non-manifold vertices get no mark.
///
/// Both mark arrays are made anew with V entries. Missing curvature or vertex normals are computed.
void extractExtrema(TriangleMesh& mesh);

}  // namespace gravlin
