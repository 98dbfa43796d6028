#pragma once

#include <vector>

#include "features/LineChains.h"
#include "features/RidgeThresholds.h"
#include "mesh/TriangleMesh.h"

namespace gravlin {

/// The lines of a pen drawing that do not depend on where it is seen from.
struct SilhouetteLines {
  std::vector<Polyline> ridges;
  std::vector<Polyline> valleys;
};

/// Which lines a pen drawing keeps.
struct LineSelection {
  float leastStrength;  ///< of |curvature| x length, summed along the line
  LowThresholds low;    ///< what the curvature must reach at every vertex of a line
};

/// Chains the links of both kinds and keeps the lines that are strong enough everywhere and in all.
/// Needs links and curvatures; without them there are no lines.
SilhouetteLines selectSilhouetteLines(const TriangleMesh& mesh, const LineSelection& selection);

/// How far the points of a line move when it is drawn with a pen; see smoothedAlong.
inline constexpr float penSmoothingStep = 0.01F;

/// The points of a line smoothed once along itself: each moves by `step` towards the midpoint of
/// its two neighbours, the ends of an open line stay. The mesh is not changed.
std::vector<Vec3> smoothedAlong(const TriangleMesh& mesh, const Polyline& line, float step);

}  // namespace gravlin
