#pragma once

#include <span>
#include <vector>

#include "mesh/TriangleMesh.h"

namespace gravlin {

/// Ridges and valleys are mirror images: what is said of one kind holds for the other with these
/// fields exchanged and inequalities between curvatures turned round.
enum class LineKind { Ridge, Valley };

inline constexpr LineKind bothLineKinds[] = {LineKind::Ridge, LineKind::Valley};

/// The arrays of a mesh that one kind of line uses.
struct LineFields {
  LineKind kind;
  std::vector<int>& marks;                    ///< [V] 0 or 1
  std::vector<IndexList>& links;              ///< [V] neighbours along the lines, both ways
  const std::vector<double>& curvature;       ///< [V] maximum for ridges, minimum for valleys
  const std::vector<double>& otherCurvature;  ///< [V] the other principal curvature

  bool marked(int vertex) const { return marks[static_cast<std::size_t>(vertex)] != 0; }
  void mark(int vertex, bool value) { marks[static_cast<std::size_t>(vertex)] = value ? 1 : 0; }
  double curvatureAt(int vertex) const { return curvature[static_cast<std::size_t>(vertex)]; }
  double otherCurvatureAt(int vertex) const {
    return otherCurvature[static_cast<std::size_t>(vertex)];
  }
  IndexList& linksOf(int vertex) const { return links[static_cast<std::size_t>(vertex)]; }

  /// Appends each vertex to the other's list, also when they are linked already.
  void link(int a, int b) const {
    linksOf(a).append(b);
    linksOf(b).append(a);
  }
};

LineFields lineFields(TriangleMesh& mesh, LineKind kind);

/// The value that sorting would bring to `position`, truncated towards zero and clamped into the
/// list; 0 for an empty list. A position that is not a number counts as the first. Reorders the
/// values, none of which may be NaN; linear time.
float valueAtPosition(std::span<float> values, double position);

/// The cost of passing along the edge from a to b on a line whose curvature should be `reference`:
/// the integral of the squared deviation of the linearly varying curvature, up to the mixed term.
double deviationCost(const TriangleMesh& mesh, const LineFields& line, int a, int b,
                     double reference);

}  // namespace gravlin
