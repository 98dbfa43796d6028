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
  gravlin::laplacianFlow(*mesh, {iterations, step});
}

void MeshSmoother::meanCurvatureFlow(int iterations, float step) {
  gravlin::meanCurvatureFlow(*mesh, {iterations, step});
}

void MeshSmoother::medianCurvatureFlow(int iterations, float step) {
  gravlin::medianCurvatureFlow(*mesh, {iterations, step});
}

void MeshSmoother::taubinSmoothing(int iterations, float lambda, float k, int weighting) {
  gravlin::taubinSmoothing(*mesh, {iterations, lambda, k, weighting});
}

void MeshSmoother::bilaplacianFlow(int iterations, float step) {
  gravlin::bilaplacianFlow(*mesh, {iterations, step});
}

// --- Implicit flows ---

ImplicitStep MeshSmoother::implicitLaplacianFlow(float step) {
  return ImplicitLaplacianFlow(*mesh, step).step();
}

ImplicitStep MeshSmoother::implicitMeanCurvatureFlow(float step) {
  return ImplicitMeanCurvatureFlow(*mesh, step).step();
}

// --- Adaptive smoothing ---

void MeshSmoother::adaptiveSmoothing(int iterations, const AdaptiveSmoothingOptions& options) {
  gravlin::adaptiveSmoothing(*mesh, iterations, options);
}

void MeshSmoother::medianSmoothing(int iterations, const AdaptiveSmoothingOptions& options) {
  gravlin::medianSmoothing(*mesh, iterations, options);
}

void MeshSmoother::averageNormalsWeighted(const NormalWeight& weight) {
  gravlin::averageNormalsWeighted(*mesh, weight);
}

void MeshSmoother::averageNormalsVertexWeighted(const NormalWeight& weight, double meetAtVertex) {
  gravlin::averageNormalsVertexWeighted(*mesh, weight, meetAtVertex);
}

void MeshSmoother::averageNormalsMedian(const MedianFilter& filter) {
  gravlin::averageNormalsMedian(*mesh, filter);
}

void MeshSmoother::integrateDistance(double step) {
  gravlin::integrateDistance(*mesh, step);
}

void MeshSmoother::integrateDerivative(double step) {
  gravlin::integrateDerivative(*mesh, step);
}

void MeshSmoother::integrateDerivativeByArea(double step, double factor) {
  gravlin::integrateDerivativeByArea(*mesh, step, factor);
}

// --- Noise ---

void MeshSmoother::addNoise(float size) {
  gravlin::addNoise(*mesh, size);
}

}  // namespace gravlin
