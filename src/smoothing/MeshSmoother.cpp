#include "smoothing/MeshSmoother.h"

#include "smoothing/AdaptiveSmoothing.h"
#include "smoothing/NormalIntegration.h"

namespace gravlin {

// --- Adaptive smoothing ---

void MeshSmoother::adaptiveSmoothing(int iterations,
                                     const AdaptiveSmoothingParameters& parameters) {
  if (mesh != nullptr) gravlin::adaptiveSmoothing(*mesh, iterations, parameters);
}

void MeshSmoother::medianSmoothing(int iterations, const AdaptiveSmoothingParameters& parameters) {
  if (mesh != nullptr) gravlin::medianSmoothing(*mesh, iterations, parameters);
}

void MeshSmoother::averageNormalsWeighted(const NormalWeight& weight) {
  if (mesh != nullptr) gravlin::averageNormalsWeighted(*mesh, weight);
}

void MeshSmoother::averageNormalsVertexWeighted(const NormalWeight& weight, double meetAtVertex) {
  if (mesh != nullptr) gravlin::averageNormalsVertexWeighted(*mesh, weight, meetAtVertex);
}

void MeshSmoother::averageNormalsMedian(const MedianFilter& filter) {
  if (mesh != nullptr) gravlin::averageNormalsMedian(*mesh, filter);
}

void MeshSmoother::integrateDistance(double step) {
  if (mesh != nullptr) gravlin::integrateDistance(*mesh, step);
}

void MeshSmoother::integrateDerivative(double step) {
  if (mesh != nullptr) gravlin::integrateDerivative(*mesh, step);
}

void MeshSmoother::integrateDerivativeByArea(double step, double factor) {
  if (mesh != nullptr) gravlin::integrateDerivativeByArea(*mesh, step, factor);
}

}  // namespace gravlin
