#pragma once

#include <optional>

#include "mesh/TriangleMesh.h"

namespace gravlin {

/// How two faces meet at their common edge, in single precision.
struct EdgeFold {
  float cosine;          ///< of the angle between the two unit normals, not clamped
  float foldSum;         ///< radians: above pi convex, below concave; NaN where undefined
  bool centroidsDiffer;  ///< false where the two faces have the same centroid
};

/// The fold between face `f` and its neighbour `g`: with d the vector between the centroids,
/// foldSum = acos(-(n_g . d) / |d|) + acos((n_f . d) / |d|). The edge of a cube has 3 pi / 2, an
/// inner corner pi / 2. Needs `faceNormals`.
EdgeFold edgeFold(const TriangleMesh& mesh, int f, int g);

/// Whether `foldSum` is above pi, without computing the angles: from the sign of the difference of
/// the two cosines. Nothing where that does not settle it: at an edge that is flat to a millionth,
/// at a face folded back onto the other, and where the sum is not defined.
std::optional<bool> clearlyConvex(const TriangleMesh& mesh, int f, int g);

/// The cosine alone.
float normalCosine(const TriangleMesh& mesh, int f, int g);

}  // namespace gravlin
