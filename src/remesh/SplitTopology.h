#pragma once

#include <vector>

#include "mesh/TriangleMesh.h"

namespace gravlin {

/// Whether every vertex that a face uses is manifold and no two faces share more than one edge.
/// Then, with every face split into four, the new vertex on an edge has six or four different
/// neighbours and its faces form one fan. Requires buildFaceAdjacency.
bool splitsIntoFans(const TriangleMesh& old);

/// Rings, kinds and face adjacency of a mesh of which every face was split into four (see
/// splitMarkedFaces), element for element the same as buildAdjacency and buildFaceAdjacency give,
/// but written from the old ones, with no search. `edgePoints` [3F of the old mesh] holds the new
/// vertex on side j of face f. Requires splitsIntoFans(old), and counts and faces of `mesh`.
void writeSplitTopology(const TriangleMesh& old, const std::vector<int>& edgePoints,
                        TriangleMesh& mesh);

}  // namespace gravlin
