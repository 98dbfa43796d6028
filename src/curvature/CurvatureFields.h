#pragma once

#include <vector>

#include "mesh/TriangleMesh.h"

namespace gravlin {

/// A scalar formed from the two principal curvatures.
enum class CurvatureField {
  Max,
  Min,
  Mean,   ///< (max + min) x 0.5
  Gauss,  ///< max x min
  Total,  ///< |max| + |min|
};

/// The field's value at every vertex, double[V]. Requires computeCurvatureTensor.
std::vector<double> curvatureField(const TriangleMesh& mesh, CurvatureField field);

}  // namespace gravlin
