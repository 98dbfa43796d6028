#include "features/LineFields.h"

#include <algorithm>
#include <cstddef>

namespace gravlin {

LineFields lineFields(TriangleMesh& mesh, LineKind kind) {
  if (kind == LineKind::Ridge) {
    return {kind, mesh.ridgeMarks, mesh.ridgeLinks, mesh.maxCurvature, mesh.minCurvature};
  }
  return {kind, mesh.valleyMarks, mesh.valleyLinks, mesh.minCurvature, mesh.maxCurvature};
}

float valueAtPosition(std::span<float> values, double position) {
  if (values.empty()) return 0.0F;
  const std::size_t last = values.size() - 1;
  std::size_t rank = 0;
  if (position > 0.0) {
    rank = position >= static_cast<double>(last) ? last : static_cast<std::size_t>(position);
  }
  const auto place = values.begin() + static_cast<std::ptrdiff_t>(rank);
  std::nth_element(values.begin(), place, values.end());
  return *place;
}

double deviationCost(const TriangleMesh& mesh, const LineFields& line, int a, int b,
                     double reference) {
  const double da = line.curvatureAt(a) - reference;
  const double db = line.curvatureAt(b) - reference;
  const double slope = line.curvatureAt(a) - line.curvatureAt(b);
  return ((da * da + db * db) * 0.5 + slope * slope / 6.0) *
         length(mesh.position(a) - mesh.position(b));
}

}  // namespace gravlin
