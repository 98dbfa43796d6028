#pragma once

#include "mesh/TriangleMesh.h"

namespace gravlin {

/// The shares of edges, 0 .. 1, that are less sharp than a strong and than a weak crease.
struct CreaseShares {
  float hi;
  float low;
};

/// Links the sharpest convex edges in `ridgeLinks` and the sharpest concave ones in `valleyLinks`,
/// both made anew. Thresholds are percentiles of the cosines between face normals, taken for each
/// kind by itself (defaults 0.9 and 0.8: the sharpest 10 and 20 percent). An edge also has to be
/// sharper than the surface to either side of it, two faces away. Weak creases stay where a chain
/// of them leads to a strong one of the same kind. Boundary edges are never linked. Needs
/// `faceNormals` and `faceAdjacency`.
///
/// n log n in the number of edges.
void detectCreasesByHistogram(TriangleMesh& mesh, CreaseShares shares);

}  // namespace gravlin
