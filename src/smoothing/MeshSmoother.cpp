#include "smoothing/MeshSmoother.h"

#include "smoothing/AdaptiveSmoothing.h"
#include "smoothing/BilaplacianFlow.h"
#include "smoothing/ImplicitLaplacianFlow.h"
#include "smoothing/ImplicitMeanCurvatureFlow.h"
#include "smoothing/LaplacianFlow.h"
#include "smoothing/MeanCurvatureFlow.h"
#include "smoothing/MedianCurvatureFlow.h"
#include "smoothing/Noise.h"
#include "smoothing/NormalIntegration.h"
#include "smoothing/TaubinSmoothing.h"

namespace gravlin {

// --- Explicit flows ---

void MeshSmoother::laplacianFlow(int iterations, float step) {
  if (mesh != nullptr) gravlin::laplacianFlow(*mesh, {iterations, step});
}

void MeshSmoother::meanCurvatureFlow(int iterations, float step) {
  if (mesh != nullptr) gravlin::meanCurvatureFlow(*mesh, {iterations, step});
}

void MeshSmoother::medianCurvatureFlow(int iterations, float step) {
  if (mesh != nullptr) gravlin::medianCurvatureFlow(*mesh, {iterations, step});
}

void MeshSmoother::taubinSmoothing(int iterations, float lambda, float k, int weighting) {
  if (mesh != nullptr) gravlin::taubinSmoothing(*mesh, {iterations, lambda, k, weighting});
}

void MeshSmoother::bilaplacianFlow(int iterations, float step) {
  if (mesh != nullptr) gravlin::bilaplacianFlow(*mesh, {iterations, step});
}

// --- Implicit flows ---

ImplicitStep MeshSmoother::implicitLaplacianFlow(float step) {
  return mesh == nullptr ? ImplicitStep{} : ImplicitLaplacianFlow(*mesh, step).step();
}

ImplicitStep MeshSmoother::implicitMeanCurvatureFlow(float step) {
  return mesh == nullptr ? ImplicitStep{} : ImplicitMeanCurvatureFlow(*mesh, step).step();
}

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

// --- Noise ---

void MeshSmoother::addNoise(float size) {
  if (mesh != nullptr) gravlin::addNoise(*mesh, size);
}

}  // namespace gravlin
