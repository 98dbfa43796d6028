#pragma once

#include "mesh/TriangleMesh.h"

namespace gravlin {

/// The mesh refined once by Loop's scheme, which approximates: an interior vertex of n neighbours
/// moves by the weight (0.625 - (0.375 + 0.25 cos(2 pi / n))^2) / n of each, a boundary vertex to
/// the uniform cubic spline of its two boundary neighbours, and any other stays. The point of an
/// edge with two faces takes 3/8 of each end and 1/8 of each opposite corner, that of an edge
/// without a second face the midpoint. For numbering, requirements and errors see splitEveryFace.
TriangleMesh loopSubdivision(const TriangleMesh& mesh);

}  // namespace gravlin
