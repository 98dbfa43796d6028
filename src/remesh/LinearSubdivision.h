#pragma once

#include "mesh/TriangleMesh.h"

namespace gravlin {

/// The mesh refined once without a change of shape: old vertices stay, edge points are midpoints.
/// For numbering, requirements and errors see splitEveryFace.
TriangleMesh linearSubdivision(const TriangleMesh& mesh);

}  // namespace gravlin
