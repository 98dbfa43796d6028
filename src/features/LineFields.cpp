#include "features/LineFields.h"

namespace gravlin {

LineFields lineFields(TriangleMesh& mesh, LineKind kind) {
  if (kind == LineKind::Ridge) {
    return {kind, mesh.ridgeMarks, mesh.ridgeLinks, mesh.maxCurvature, mesh.minCurvature};
  }
  return {kind, mesh.valleyMarks, mesh.valleyLinks, mesh.minCurvature, mesh.maxCurvature};
}

float valueAtPosition(std::span<const float> ascending, double position) {
  if (ascending.empty()) return 0.0F;
  if (!(position > 0.0)) return ascending.front();
  if (position >= static_cast<double>(ascending.size())) return ascending.back();
  return ascending[static_cast<std::size_t>(position)];
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
