#pragma once

#include "mesh/TriangleMesh.h"

namespace gravlin {

/// The mesh refined once by the modified butterfly scheme, which interpolates: old vertices stay to
/// the bit. The point of an edge between
/// - two interior vertices of valence 6 takes the ten-point stencil of the two faces and their
///   wings;
/// - interior vertices of which one or both have another valence takes the extraordinary rule at
///   that vertex or the mean of the rules at both; at an end of valence 2 it is the midpoint;
/// - boundary vertices, without a second face, takes the four-point rule along the boundary;
/// - any other two vertices is the midpoint.
/// For numbering, requirements and errors see splitEveryFace.
TriangleMesh butterflySubdivision(const TriangleMesh& mesh);

}  // namespace gravlin
