#pragma once

#include "mesh/TriangleMesh.h"

namespace gravlin {

/// Marks in `coherentFaces` (made anew, [F]) the faces along whose three edges the direction of
/// maximum curvature turns by at most `threshold` radians per unit of length. The direction at the
/// far end of an edge is carried into the tangent plane at its near end first; a direction and its
/// negative are the same line. An edge without length leaves a face coherent only when the
/// directions agree exactly; a turn that is not a number makes it incoherent, as does being
/// invalid.
///
/// Requires `maxDirection` and vertex normals.
void markCoherentFaces(TriangleMesh& mesh, float threshold);

}  // namespace gravlin
