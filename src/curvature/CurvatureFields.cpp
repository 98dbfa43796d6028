#include "curvature/CurvatureFields.h"

#include <algorithm>
#include <cmath>

namespace gravlin {
namespace {

template <class Formula>
std::vector<double> formed(const TriangleMesh& mesh, Formula formula) {
  std::vector<double> values(mesh.maxCurvature.size());
  std::transform(mesh.maxCurvature.begin(), mesh.maxCurvature.end(), mesh.minCurvature.begin(),
                 values.begin(), formula);
  return values;
}

}  // namespace

std::vector<double> curvatureField(const TriangleMesh& mesh, CurvatureField field) {
  switch (field) {
    case CurvatureField::Max:
      return mesh.maxCurvature;
    case CurvatureField::Min:
      return mesh.minCurvature;
    case CurvatureField::Mean:
      return formed(mesh, [](double max, double min) { return (max + min) * 0.5; });
    case CurvatureField::Gauss:
      return formed(mesh, [](double max, double min) { return max * min; });
    case CurvatureField::Total:
      return formed(mesh, [](double max, double min) { return std::abs(max) + std::abs(min); });
  }
  return {};
}

}  // namespace gravlin
