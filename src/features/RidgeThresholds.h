#pragma once

#include "mesh/TriangleMesh.h"

namespace gravlin {

/// The weaker curvatures that a line may still run through when it is joined across a gap.
struct LowThresholds {
  double ridgeLow = 0.0;   ///< least maximum curvature
  double valleyLow = 0.0;  ///< largest minimum curvature
};

/// Which share of the curvature distribution counts, 0 .. 1; other values end at the extremes.
struct HistogramShares {
  float upper;
  float lower;
};

/// All three need `ridgeMarks`, `valleyMarks` and both curvatures; marks are only ever taken away.

/// Keeps a ridge mark where the maximum curvature is above t and a valley mark where the minimum
/// curvature is below -t, at vertices of every kind.
void thresholdConstant(TriangleMesh& mesh, float t);

/// Keeps a ridge mark where the maximum curvature passes the `upper` share of all positive maximum
/// curvatures, and a valley mark where the minimum curvature is below the mirrored share of all
/// negative minimum curvatures; marks of boundary and non-manifold vertices stay. Returns the
/// values at the `lower` share. The index of `valleyLow` is scaled by the number of positive
/// maximum curvatures. Indices out of range are clamped; an empty distribution gives 0.
LowThresholds thresholdHistogram(TriangleMesh& mesh, HistogramShares shares);

/// Clears a ridge mark where |kmin| > |kmax| and a valley mark where |kmin| < |kmax|.
void compareAbsoluteValues(TriangleMesh& mesh);

}  // namespace gravlin
