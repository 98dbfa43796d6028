#include "smoothing/AdaptiveSmoothing.h"

#include "mesh/PositionGuard.h"
#include "smoothing/CornerNeighbours.h"
#include "smoothing/NormalAveraging.h"
#include "smoothing/NormalIntegration.h"

namespace gravlin {
namespace {

void integrateOnce(TriangleMesh& mesh, const AdaptiveSmoothingParameters& parameters) {
  const double step = static_cast<double>(parameters.integrationStep);
  if (parameters.integrationError == DistanceError) {
    integrateDistance(mesh, step);
  } else if (parameters.derivativeVariant == 1) {
    integrateDerivative(mesh, step);
  } else {
    integrateDerivativeByArea(mesh, step, static_cast<double>(parameters.derivativeVariant));
  }
}

template <class AverageOnce>
void runOuterIterations(TriangleMesh& mesh, int iterations,
                        const AdaptiveSmoothingParameters& parameters,
                        const AverageOnce& averageOnce) {
  for (int outer = 0; outer < iterations; ++outer) {
    PositionGuard positions(mesh);
    mesh.computeFaceNormals();
    for (int k = 0; k < parameters.averagingIterations; ++k) averageOnce();
    for (int k = 0; k < parameters.integrationIterations; ++k) integrateOnce(mesh, parameters);
    positions.keep();
  }
}

}  // namespace

void adaptiveSmoothing(TriangleMesh& mesh, int iterations,
                       const AdaptiveSmoothingParameters& parameters) {
  const NormalWeight weight = {
      .threshold = static_cast<double>(parameters.threshold),
      .shape = static_cast<WeightShape>(parameters.weightShape),
      .difference = static_cast<NormalDifference>(parameters.normalDifference)};
  const double meetAtVertex = static_cast<double>(parameters.meetAtVertex);
  if (meetAtVertex == 0.0) {
    runOuterIterations(mesh, iterations, parameters, [&] { averageNormalsWeighted(mesh, weight); });
    return;
  }
  buildCornerNeighbourFaces(mesh);
  runOuterIterations(mesh, iterations, parameters,
                     [&] { averageNormalsVertexWeighted(mesh, weight, meetAtVertex); });
}

void medianSmoothing(TriangleMesh& mesh, int iterations,
                     const AdaptiveSmoothingParameters& parameters) {
  const MedianFilter filter = {
      .weighted = parameters.medianWeighted,
      .difference = static_cast<NormalDifference>(parameters.normalDifference)};
  buildCornerNeighbourFaces(mesh);
  runOuterIterations(mesh, iterations, parameters, [&] { averageNormalsMedian(mesh, filter); });
}

}  // namespace gravlin
