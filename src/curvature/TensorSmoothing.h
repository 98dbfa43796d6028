#pragma once

#include "mesh/TriangleMesh.h"

namespace gravlin {

/// Diffuses the curvature fields of one mesh in place. Every iteration computes all new values from
/// those at its start. The geometry stays as it is.
///
/// Requires a mesh with rings, vertex normals and the fields that an operation names. Iteration
/// counts below 1 do nothing.
class CurvatureTensorSmoother {
 public:
  TriangleMesh* mesh = nullptr;  ///< the document's current mesh

  /// `maxCurvature` and `minCurvature`: (1 - lambda) x value + lambda x mean of the ring. Kinds of
  /// vertices make no difference; a vertex without neighbours ends at 0. The two fields are not
  /// sorted afterwards.
  void smoothCurvatureValues(int iterations, float lambda);

  /// `maxDirection` and `minDirection`: the normalised sum of the neighbours' directions, each
  /// carried into the vertex's tangent plane and weighted with exp(-(angle^2 / distance^2) /
  /// sigma^2), the angle to the vertex's own direction lying in 0 .. pi. Beyond a right angle the
  /// weight is negated but the angle is deliberately not folded. Equal directions have weight 1 at
  /// any distance and any sigma. A sum of zero keeps the old direction.
  ///
  /// After the last iteration the direction of the larger curvature in absolute value (the minimum
  /// in a tie) is normalised and the other rebuilt as its cross product with the normal, which
  /// makes them right-handed, and that one shorter than 1 where the first leans out of the tangent
  /// plane; both become 0 where the trusted one is 0.
  void smoothDirections(int iterations, float sigma);

  /// The iteration of smoothDirections on `maxDerivativeGradient` and `minDerivativeGradient`,
  /// without the repair of frames at the end.
  void smoothDerivativeGradients(int iterations, float sigma);
};

}  // namespace gravlin
