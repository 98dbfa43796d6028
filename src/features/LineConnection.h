#pragma once

#include "features/RidgeThresholds.h"
#include "mesh/TriangleMesh.h"

namespace gravlin {

/// Joins the ends of lines across gaps. Needs marks, links (LineGraph.h), curvatures and rings.
///
/// Marks without links are cleared. Lines are told apart by flooding the marked vertices over the
/// mesh's edges. Then every line end, those of the strongest lines first, searches the cheapest way
/// to the end of another line (Dijkstra): a way may pass where the curvature reaches `low` and
/// dominates the other one, costs the deviation from curvature 30 (ridges) or -30 (valleys), and
/// may not cost more than `threshold` before its last step. The vertices of a way found become
/// marked and linked. A search touches only what it visits.
void connectLines(TriangleMesh& mesh, float threshold, const LowThresholds& low);

}  // namespace gravlin
