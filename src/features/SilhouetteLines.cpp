#include "features/SilhouetteLines.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace gravlin {
namespace {

/// The sum over the sides of a line of their length times the mean magnitude of curvature.
double strength(const TriangleMesh& mesh, const Polyline& line,
                const std::vector<double>& curvature) {
  const std::size_t n = line.vertices.size();
  double sum = 0.0;
  for (std::size_t k = 0; k + (line.closed ? 0 : 1) < n; ++k) {
    const int a = line.vertices[k];
    const int b = line.vertices[(k + 1) % n];
    const double mean = (std::abs(curvature[static_cast<std::size_t>(a)]) +
                         std::abs(curvature[static_cast<std::size_t>(b)])) *
                        0.5;
    sum += mean * length(mesh.position(b) - mesh.position(a));
  }
  return sum;
}

template <class Reaches>
std::vector<Polyline> select(const TriangleMesh& mesh, const std::vector<IndexList>& links,
                             const std::vector<double>& curvature, float leastStrength,
                             Reaches reaches) {
  std::vector<Polyline> kept;
  if (curvature.size() != links.size()) return kept;
  for (Polyline& line : chainLinks(links)) {
    const bool everywhere = std::all_of(line.vertices.begin(), line.vertices.end(), [&](int v) {
      return reaches(curvature[static_cast<std::size_t>(v)]);
    });
    const bool strong = strength(mesh, line, curvature) >= static_cast<double>(leastStrength);
    if (everywhere && strong) kept.push_back(std::move(line));
  }
  return kept;
}

}  // namespace

SilhouetteLines selectSilhouetteLines(const TriangleMesh& mesh, const LineSelection& selection) {
  const LowThresholds& low = selection.low;
  return {select(mesh, mesh.ridgeLinks, mesh.maxCurvature, selection.leastStrength,
                 [&](double k) { return k >= low.ridgeLow; }),
          select(mesh, mesh.valleyLinks, mesh.minCurvature, selection.leastStrength,
                 [&](double k) { return k <= low.valleyLow; })};
}

std::vector<Vec3> smoothedAlong(const TriangleMesh& mesh, const Polyline& line, float step) {
  std::vector<Vec3> points;
  const std::size_t n = line.vertices.size();
  for (std::size_t k = 0; k < n; ++k) {
    const Vec3 p = mesh.position(line.vertices[k]);
    const bool end = !line.closed && (k == 0 || k + 1 == n);
    const Vec3 before = mesh.position(line.vertices[(k + n - 1) % n]);
    const Vec3 after = mesh.position(line.vertices[(k + 1) % n]);
    const Vec3 toMiddle = (before + after) * 0.5 - p;
    points.push_back(end ? p : p + static_cast<double>(step) * toMiddle);
  }
  return points;
}

}  // namespace gravlin
