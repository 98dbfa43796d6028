#include "features/SilhouetteLines.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "features/LineChains.h"

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

SpaceLine smoothed(const TriangleMesh& mesh, const Polyline& line, double step) {
  SpaceLine result;
  result.closed = line.closed;
  const std::size_t n = line.vertices.size();
  for (std::size_t k = 0; k < n; ++k) {
    const Vec3 p = mesh.position(line.vertices[k]);
    const bool end = !line.closed && (k == 0 || k + 1 == n);
    const Vec3 before = mesh.position(line.vertices[(k + n - 1) % n]);
    const Vec3 after = mesh.position(line.vertices[(k + 1) % n]);
    result.points.push_back(end ? p : p + step * ((before + after) * 0.5 - p));
  }
  return result;
}

template <class Reaches>
std::vector<SpaceLine> select(const TriangleMesh& mesh, const std::vector<IndexList>& links,
                              const std::vector<double>& curvature, const LineSelection& selection,
                              Reaches reaches) {
  std::vector<SpaceLine> kept;
  if (curvature.size() != links.size()) return kept;
  for (const Polyline& line : chainLinks(links)) {
    const bool everywhere = std::all_of(line.vertices.begin(), line.vertices.end(), [&](int v) {
      return reaches(curvature[static_cast<std::size_t>(v)]);
    });
    const bool strong =
        strength(mesh, line, curvature) >= static_cast<double>(selection.leastStrength);
    if (everywhere && strong) {
      kept.push_back(smoothed(mesh, line, static_cast<double>(selection.step)));
    }
  }
  return kept;
}

}  // namespace

SilhouetteLines selectSilhouetteLines(const TriangleMesh& mesh, const LineSelection& selection) {
  const LowThresholds& low = selection.low;
  return {select(mesh, mesh.ridgeLinks, mesh.maxCurvature, selection,
                 [&](double k) { return k >= low.ridgeLow; }),
          select(mesh, mesh.valleyLinks, mesh.minCurvature, selection,
                 [&](double k) { return k <= low.valleyLow; })};
}

}  // namespace gravlin
