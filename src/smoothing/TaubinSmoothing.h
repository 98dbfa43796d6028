#pragma once

#include "mesh/TriangleMesh.h"

namespace gravlin {

/// How the neighbours of a vertex are weighted in its Laplacian.
enum TaubinWeighting : int {
  UmbrellaWeights = 0,         ///< all alike
  InverseDistanceWeights = 1,  ///< 1 / distance
  CotangentWeights = 2         ///< Desbrun's: sum of the cotangents of the two opposite angles
};

/// A count of iterations below 1 is none.
struct TaubinSteps {
  int iterations = 0;   ///< each is two half-steps
  float lambda = 0.0F;  ///< factor of the shrinking half-step
  float k = 0.0F;       ///< pass-band frequency: the other factor is lambda / (k lambda - 1)
  int weighting = UmbrellaWeights;  ///< a TaubinWeighting; any other number moves nothing
};

/// Taubin's lambda-mu smoothing: a half-step inward with factor lambda, then one outward with
/// factor mu = lambda / (k lambda - 1), each x_i += factor D_i simultaneously for all interior
/// vertices, where D_i is the weighted mean of the edges to the neighbours. Low frequencies pass,
/// so the surface hardly shrinks. Vertices that are not interior stay. Requires buildAdjacency;
/// normals become stale.
void taubinSmoothing(TriangleMesh& mesh, const TaubinSteps& steps);

/// Mean of the edges from interior or boundary vertex i, weighted by 1 / length; edges without
/// length do not count. 0 if no edge counts. Edges are rounded to single precision.
Vec3 inverseDistanceLaplacian(const TriangleMesh& mesh, int i);

/// Mean of the edges from interior vertex i with cotangent weights; triangles without area do not
/// count. 0 if the weights cancel. The y and z components of edges are rounded to single precision.
Vec3 cotangentLaplacian(const TriangleMesh& mesh, int i);

}  // namespace gravlin
