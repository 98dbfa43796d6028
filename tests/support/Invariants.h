#pragma once

#include <string>
#include <vector>

#include "mesh/TriangleMesh.h"

namespace gravlin::test {

/// What TriangleMesh promises and this mesh does not keep, in words: the first such thing, or
/// nothing. Looked at is what has been built:
/// - the extents of all arrays, invalid faces, and corners that are in range and distinct;
/// - kinds and rings, compared with the faces around every vertex: each occurs once, a ring turns
///   as its faces do, and a kind is what the links between the neighbours say;
/// - `faceAdjacency`, compared with the faces that pass each edge the other way round;
/// - normals of unit length or 0, marks of 0 or 1, links that go both ways, and indices in range.
///
/// Takes n log n steps and knows nothing of how rings are built.
std::vector<std::string> brokenInvariants(const TriangleMesh& mesh);

}  // namespace gravlin::test
