#include "smoothing/MeshSmoother.h"

#include <memory>

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
namespace {

/// The k of every Taubin method.
constexpr float passBand = 0.1F;

template <class ImplicitFlow>
Flow stepsOf(TriangleMesh& mesh, float step) {
  return [flow = std::make_shared<ImplicitFlow>(mesh, step)](int iterations) {
    for (int iteration = 0; iteration < iterations; ++iteration) flow->step();
  };
}

}  // namespace

Flow MeshSmoother::flow(SmoothingMethod method, float step) {
  if (mesh == nullptr) return [](int) {};
  TriangleMesh& moved = *mesh;
  const auto taubin = [&moved, step](TaubinWeighting weighting) {
    return [&moved, step, weighting](int n) {
      gravlin::taubinSmoothing(moved, {n, step, passBand, weighting});
    };
  };
  switch (method) {
    case SmoothingMethod::Laplacian:
      return [&moved, step](int n) { gravlin::laplacianFlow(moved, {n, step}); };
    case SmoothingMethod::ImplicitLaplacian:
      return stepsOf<ImplicitLaplacianFlow>(moved, step);
    case SmoothingMethod::MeanCurvature:
      return [&moved, step](int n) { gravlin::meanCurvatureFlow(moved, {n, step}); };
    case SmoothingMethod::ImplicitMeanCurvature:
      return stepsOf<ImplicitMeanCurvatureFlow>(moved, step);
    case SmoothingMethod::MedianCurvature:
      return [&moved, step](int n) { gravlin::medianCurvatureFlow(moved, {n, step}); };
    case SmoothingMethod::TaubinUmbrella:
      return taubin(UmbrellaWeights);
    case SmoothingMethod::TaubinInverseDistance:
      return taubin(InverseDistanceWeights);
    case SmoothingMethod::TaubinCotangent:
      return taubin(CotangentWeights);
    case SmoothingMethod::Bilaplacian:
      return [&moved, step](int n) { gravlin::bilaplacianFlow(moved, {n, step}); };
  }
  return [](int) {};
}

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

void MeshSmoother::adaptiveSmoothing(int iterations, const AdaptiveSmoothingOptions& options) {
  if (mesh != nullptr) gravlin::adaptiveSmoothing(*mesh, iterations, options);
}

void MeshSmoother::medianSmoothing(int iterations, const AdaptiveSmoothingOptions& options) {
  if (mesh != nullptr) gravlin::medianSmoothing(*mesh, iterations, options);
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
