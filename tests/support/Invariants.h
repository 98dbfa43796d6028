#pragma once

#include <string>
#include <vector>

#include "mesh/IndexList.h"
#include "mesh/TriangleMesh.h"

namespace gravlin::test {

/// What TriangleMesh promises and this mesh does not keep, in words: the first such thing, or
/// nothing. Looked at is what has been built:
/// - the extents of all arrays, invalid faces, and corners that are in range and distinct;
/// - kinds and rings, compared with the faces around every vertex: each occurs once, a ring turns
///   as its faces do, and a kind is what the links between the neighbours say;
/// - `faceAdjacency`, compared with the faces that pass each edge the other way round;
/// - `cornerNeighbourFaces`: faces that meet the face at a corner and not across an edge;
/// - normals and directions of unit length or 0, marks of 0 or 1, links that go both ways along
///   edges, and indices in range;
/// - arrays that belong together are built together.
///
/// Takes n log n steps and knows nothing of how rings are built.
std::vector<std::string> brokenInvariants(const TriangleMesh& mesh);

/// The same for links [V] along edges of the mesh that are kept elsewhere; none at all are in
/// order.
std::vector<std::string> brokenLinks(const TriangleMesh& mesh, const std::vector<IndexList>& links,
                                     const std::string& name);

}  // namespace gravlin::test
