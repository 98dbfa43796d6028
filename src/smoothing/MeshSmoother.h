#pragma once

#include "mesh/TriangleMesh.h"
#include "smoothing/AdaptiveSmoothingParameters.h"
#include "smoothing/ImplicitStep.h"
#include "smoothing/NormalAveraging.h"

namespace gravlin {

/// Everything that moves the vertices of the document's current mesh and leaves its faces alone.
/// Each operation is a free function on a TriangleMesh in a file of its own; this object only
/// knows the mesh that they work on. Without a mesh an operation does nothing.
class MeshSmoother {
 public:
  /// Points to the mesh that the operations work on from now on; null for none. The mesh is not
  /// owned.
  void attach(TriangleMesh* current) { mesh = current; }

  // --- Explicit flows; a count of iterations below 1 is none ---
  void laplacianFlow(int iterations, float step);
  void meanCurvatureFlow(int iterations, float step);
  void medianCurvatureFlow(int iterations, float step);
  /// `weighting` is a TaubinWeighting.
  void taubinSmoothing(int iterations, float lambda, float k, int weighting);
  void bilaplacianFlow(int iterations, float step);

  // --- Implicit flows, one time step per call ---
  // A caller that makes several steps in a row has less work with the classes behind these, which
  // keep what does not change from step to step.
  ImplicitStep implicitLaplacianFlow(float step);
  ImplicitStep implicitMeanCurvatureFlow(float step);

  // --- Adaptive smoothing ---
  void adaptiveSmoothing(int iterations, const AdaptiveSmoothingParameters& parameters);
  void medianSmoothing(int iterations, const AdaptiveSmoothingParameters& parameters);
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
