#pragma once

#include <span>
#include <vector>

#include "mesh/TriangleMesh.h"

namespace gravlin {

/// A line through mesh vertices. A closed one does not repeat its first vertex at the end.
struct Polyline {
  std::vector<int> vertices;
  bool closed = false;
  bool operator==(const Polyline&) const = default;
};

/// Chains the links of one kind of line into polylines, every linked pair in exactly one of them.
/// Lines run from an end or a junction to the next one; what is left is closed loops. Duplicate
/// links count once. Lines come in the order of their first vertices. n log n in the links.
std::vector<Polyline> chainLinks(std::span<const IndexList> links);

/// Length along the line through the mesh's positions, the closing side included.
double polylineLength(const TriangleMesh& mesh, const Polyline& line);

}  // namespace gravlin
