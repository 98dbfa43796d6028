#pragma once

#include <vector>

#include "mesh/TriangleMesh.h"

namespace gravlin {

/// Links the ends of every edge whose two faces have normals with a cosine below `cosThreshold`:
/// convex edges in `ridgeLinks`, concave ones in `valleyLinks`. Boundary edges count as convex
/// creases. All of them are returned as well, as one list per vertex. Both link arrays are made
/// anew. Needs `faceNormals` and `faceAdjacency`.
///
/// For an angle between faces, cosThreshold = -cos(angle): -cos(165 degrees) links the edges where
/// the faces meet at less than 165 degrees.
std::vector<IndexList> detectCreasesByAngle(TriangleMesh& mesh, float cosThreshold);

}  // namespace gravlin
