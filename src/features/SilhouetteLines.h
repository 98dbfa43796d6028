#pragma once

#include <vector>

#include "features/RidgeThresholds.h"
#include "mesh/TriangleMesh.h"

namespace gravlin {

/// A line in space, no longer bound to mesh vertices. A closed one does not repeat its first point.
struct SpaceLine {
  std::vector<Vec3> points;
  bool closed = false;
};

/// The lines of a pen drawing that do not depend on where it is seen from.
struct SilhouetteLines {
  std::vector<SpaceLine> ridges;
  std::vector<SpaceLine> valleys;
};

/// Which lines a pen drawing keeps and how far it smooths them.
struct LineSelection {
  float leastStrength;  ///< of |curvature| x length, summed along the line
  float step;           ///< how far each point moves towards the midpoint of its neighbours
  LowThresholds low;    ///< what the curvature must reach at every vertex of a line
};

/// Chains the links of both kinds and keeps the lines that are strong enough everywhere and in all;
/// the kept ones are smoothed once along themselves, ends staying. The mesh is not changed. Needs
/// links and curvatures; without them there are no lines.
SilhouetteLines selectSilhouetteLines(const TriangleMesh& mesh, const LineSelection& selection);

}  // namespace gravlin
