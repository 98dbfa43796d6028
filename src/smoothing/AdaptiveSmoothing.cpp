#include "smoothing/AdaptiveSmoothing.h"

#include "mesh/PositionGuard.h"
#include "smoothing/CornerNeighbours.h"
#include "smoothing/NormalAveraging.h"
#include "smoothing/NormalIntegration.h"

namespace gravlin {
namespace {

void integrateOnce(TriangleMesh& mesh, const AdaptiveSmoothingOptions& options) {
  const double step = static_cast<double>(options.integrationStep);
  if (options.integrationError == DistanceError) {
    integrateDistance(mesh, step);
  } else if (options.derivativeVariant == 1) {
    integrateDerivative(mesh, step);
  } else {
    integrateDerivativeByArea(mesh, step, static_cast<double>(options.derivativeVariant));
  }
}

template <class AverageOnce>
void runOuterIterations(TriangleMesh& mesh, int iterations, const AdaptiveSmoothingOptions& options,
                        const AverageOnce& averageOnce) {
  for (int outer = 0; outer < iterations; ++outer) {
    PositionGuard positions(mesh);
    mesh.computeFaceNormals();
    for (int k = 0; k < options.averagingIterations; ++k) averageOnce();
    for (int k = 0; k < options.integrationIterations; ++k) integrateOnce(mesh, options);
    positions.keep();
  }
}

}  // namespace

void adaptiveSmoothing(TriangleMesh& mesh, int iterations,
                       const AdaptiveSmoothingOptions& options) {
  const NormalWeight weight = {.threshold = static_cast<double>(options.threshold),
                               .shape = options.weightShape,
                               .difference = options.normalDifference};
  const double meetAtVertex = static_cast<double>(options.meetAtVertex);
  if (meetAtVertex == 0.0) {
    runOuterIterations(mesh, iterations, options, [&] { averageNormalsWeighted(mesh, weight); });
    return;
  }
  buildCornerNeighbourFaces(mesh);
  runOuterIterations(mesh, iterations, options,
                     [&] { averageNormalsVertexWeighted(mesh, weight, meetAtVertex); });
}

void medianSmoothing(TriangleMesh& mesh, int iterations, const AdaptiveSmoothingOptions& options) {
  const MedianFilter filter = {.weighted = options.medianWeighted,
                               .difference = options.normalDifference};
  buildCornerNeighbourFaces(mesh);
  runOuterIterations(mesh, iterations, options, [&] { averageNormalsMedian(mesh, filter); });
}

}  // namespace gravlin
