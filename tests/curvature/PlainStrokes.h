#pragma once

#include <vector>

#include "curvature/Strokes.h"
#include "mesh/TriangleMesh.h"

namespace gravlin::test {

/// A stroke along `field` (double[3V]) traced step by step, one case after the other, to compare
/// the bits of the fast tracer with. Requires face normals and adjacency.
std::vector<FacePoint> plainStroke(const TriangleMesh& mesh, const std::vector<double>& field,
                                   const FacePoint& seed, const StrokeExtent& extent);

}  // namespace gravlin::test
