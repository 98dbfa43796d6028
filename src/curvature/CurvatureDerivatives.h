#pragma once

#include "mesh/TriangleMesh.h"

namespace gravlin {

/// Differentiates each principal curvature along its own principal direction and finds the
/// direction in which the zero line of that derivative runs: `maxDerivativeGradient` is the local
/// direction of a ridge, `minDerivativeGradient` that of a valley (double[3V], unit).
///
/// A derivative at a vertex p is that of the parabola through three samples: p itself and the two
/// points where the plane through p, spanned by the normal and the direction, cuts the far edges of
/// the fan. With a sample on one side only it is the one-sided difference, with none it is 0. A
/// triangle whose far edge lies in the plane, or whose crossing point makes no area with p, gives
/// no sample.
///
/// Vertices that are not interior get zero vectors, and their derivatives count as 0 for their
/// neighbours. A gradient of length zero stays zero (a sphere).
///
/// Requires computeCurvatureTensor. The curvatures and directions stay unchanged.
void computeCurvatureDerivatives(TriangleMesh& mesh);

}  // namespace gravlin
