#pragma once

#include "mesh/TriangleMesh.h"

namespace gravlin {

/// Fills `cornerNeighbourFaces` if it is not built: for every face the faces that meet it at a
/// corner only. A row goes through the face's corners in order and through each corner's incident
/// faces in ring order, leaving out the face itself and its three edge neighbours; of a corner that
/// is not an interior vertex the last incident face is left out too. An invalid face has an empty
/// row.
///
/// Requires buildAdjacency and buildFaceAdjacency. The rows around a vertex of n faces hold n^2
/// entries: throws std::length_error when all rows together would pass the range of an int and
/// std::bad_alloc when memory is refused, and leaves the mesh as it was.
void buildCornerNeighbourFaces(TriangleMesh& mesh);

}  // namespace gravlin
