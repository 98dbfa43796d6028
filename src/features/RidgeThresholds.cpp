#include "features/RidgeThresholds.h"

#include <cmath>

#include "features/LineFields.h"

namespace gravlin {
namespace {

/// Clears every set mark whose vertex does not satisfy `keep`.
template <class Keep>
void keepMarks(std::vector<int>& marks, Keep keep) {
  for (std::size_t i = 0; i < marks.size(); ++i) {
    if (marks[i] != 0 && !keep(i)) marks[i] = 0;
  }
}

/// The values that satisfy `wanted`, in single precision.
template <class Wanted>
std::vector<float> valuesOf(const std::vector<double>& field, Wanted wanted) {
  std::vector<float> values;
  values.reserve(field.size());
  for (const double value : field) {
    if (wanted(value)) values.push_back(static_cast<float>(value));
  }
  return values;
}

/// The index of the last entry, -1 for an empty list, as a factor of a share.
double lastIndex(const std::vector<float>& values) {
  return static_cast<double>(values.size()) - 1.0;
}

}  // namespace

void thresholdConstant(TriangleMesh& mesh, float t) {
  const double threshold = t;
  keepMarks(mesh.ridgeMarks, [&](std::size_t i) { return mesh.maxCurvature[i] > threshold; });
  keepMarks(mesh.valleyMarks, [&](std::size_t i) { return mesh.minCurvature[i] < -threshold; });
}

LowThresholds thresholdHistogram(TriangleMesh& mesh, HistogramShares shares) {
  const double upper = shares.upper;
  const double lower = shares.lower;
  auto positive = valuesOf(mesh.maxCurvature, [](double k) { return k > 0.0; });
  auto negative = valuesOf(mesh.minCurvature, [](double k) { return k < 0.0; });

  const double ridgeHigh = valueAtPosition(positive, lastIndex(positive) * upper);
  const double valleyHigh = valueAtPosition(negative, (1.0 - upper) * lastIndex(negative));
  const LowThresholds low = {valueAtPosition(positive, lastIndex(positive) * lower),
                             valueAtPosition(negative, (1.0 - lower) * lastIndex(positive))};

  keepMarks(mesh.ridgeMarks, [&](std::size_t i) {
    return mesh.vertexKind[i] != InteriorVertex || mesh.maxCurvature[i] > ridgeHigh;
  });
  keepMarks(mesh.valleyMarks, [&](std::size_t i) {
    return mesh.vertexKind[i] != InteriorVertex || mesh.minCurvature[i] < valleyHigh;
  });
  return low;
}

void compareAbsoluteValues(TriangleMesh& mesh) {
  const auto magnitude = [](double k) { return std::abs(k); };
  keepMarks(mesh.ridgeMarks, [&](std::size_t i) {
    return !(magnitude(mesh.minCurvature[i]) > magnitude(mesh.maxCurvature[i]));
  });
  keepMarks(mesh.valleyMarks, [&](std::size_t i) {
    return !(magnitude(mesh.minCurvature[i]) < magnitude(mesh.maxCurvature[i]));
  });
}

}  // namespace gravlin
