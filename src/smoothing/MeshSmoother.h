#pragma once

#include <functional>

#include "mesh/TriangleMesh.h"
#include "smoothing/AdaptiveSmoothing.h"
#include "smoothing/ImplicitStep.h"
#include "smoothing/NormalAveraging.h"

namespace gravlin {

/// The flows, explicit and implicit, that fair a shape.
enum class SmoothingMethod {
  Laplacian,
  ImplicitLaplacian,
  MeanCurvature,
  ImplicitMeanCurvature,
  MedianCurvature,
  TaubinUmbrella,
  TaubinInverseDistance,
  TaubinCotangent,
  Bilaplacian,
};

/// Whether a method solves a linear system in every step.
constexpr bool isImplicit(SmoothingMethod method) {
  return method == SmoothingMethod::ImplicitLaplacian ||
         method == SmoothingMethod::ImplicitMeanCurvature;
}

/// A flow that may be run in several parts: moves the vertices by this many further iterations; a
/// count below 1 is none. What does not change from step to step is kept between the parts.
using Flow = std::function<void(int iterations)>;

/// Everything that moves the vertices of the document's current mesh and leaves its faces alone.
/// Each operation is a free function on a TriangleMesh in a file of its own; this object only
/// forwards to them, so that a document has one thing to attach its mesh to. Every operation
/// requires a mesh.
class MeshSmoother {
 public:
  /// Points to the mesh that the operations work on from now on; null for none, and then none may
  /// be called. The mesh is not owned.
  void attach(TriangleMesh* current) { mesh = current; }

  /// The flow of a method with this time step, or lambda of the Taubin methods, whose k is 0.1. The
  /// mesh attached now must outlive it and keep its faces, and nothing else may move the vertices
  /// while it runs.
  Flow flow(SmoothingMethod method, float step);

  // --- Explicit flows; a count of iterations below 1 is none ---
  void laplacianFlow(int iterations, float step);
  void meanCurvatureFlow(int iterations, float step);
  void medianCurvatureFlow(int iterations, float step);
  /// `weighting` is a TaubinWeighting.
  void taubinSmoothing(int iterations, float lambda, float k, int weighting);
  void bilaplacianFlow(int iterations, float step);

  // --- Implicit flows, one time step per call ---
  // Several steps in a row are less work through `flow`.
  ImplicitStep implicitLaplacianFlow(float step);
  ImplicitStep implicitMeanCurvatureFlow(float step);

  // --- Adaptive smoothing ---
  void adaptiveSmoothing(int iterations, const AdaptiveSmoothingOptions& options);
  void medianSmoothing(int iterations, const AdaptiveSmoothingOptions& options);
  void averageNormalsWeighted(const NormalWeight& weight);
  void averageNormalsVertexWeighted(const NormalWeight& weight, double meetAtVertex);
  void averageNormalsMedian(const MedianFilter& filter);
  void integrateDistance(double step);
  void integrateDerivative(double step);
  void integrateDerivativeByArea(double step, double factor);

  // --- Noise ---
  void addNoise(float size);

 private:
  TriangleMesh* mesh = nullptr;
};

}  // namespace gravlin
