#pragma once

#include "mesh/TriangleMesh.h"

namespace gravlin {

/// Turns the marks of both kinds into line graphs along mesh edges, `ridgeLinks` and `valleyLinks`,
/// which are made anew. Needs marks, curvatures and rings.
///
/// From every marked vertex, strongest first, that nothing links to yet, a breadth-first tree grows
/// over the marked vertices; the children of a vertex are visited by how little the curvature along
/// the edge deviates from the seed's. Then branches of one or two vertices are cut off wherever
/// three or more links meet; the branch that the seed grew first is never cut. Vertices of a branch
/// cut off keep their marks and lose their links. n log n in the number of marked vertices.
void buildLineGraph(TriangleMesh& mesh);

}  // namespace gravlin
