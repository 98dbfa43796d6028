#include <functional>
#include <memory>
#include <new>

#include "doc/CGravlinDoc.h"
#include "doc/Chunks.h"
#include "doc/Messages.h"
#include "mesh/MeshMeasures.h"
#include "smoothing/ImplicitLaplacianFlow.h"
#include "smoothing/ImplicitMeanCurvatureFlow.h"
#include "smoothing/TaubinSmoothing.h"

namespace gravlin {
namespace {

/// Runs this many iterations of the chosen flow on the current mesh.
using Flow = std::function<void(int iterations)>;

/// The k of every Taubin method that the dialog offers.
constexpr float passBand = 0.1F;

template <class ImplicitFlow>
Flow stepsOf(TriangleMesh& mesh, float step) {
  return [flow = std::make_shared<ImplicitFlow>(mesh, step)](int iterations) {
    for (int iteration = 0; iteration < iterations; ++iteration) flow->step();
  };
}

/// The smoother is attached to the mesh; both outlive the flow.
Flow flowOf(SmoothingMethod method, MeshSmoother& smoother, TriangleMesh& mesh, float step) {
  const auto taubin = [&smoother, step](TaubinWeighting weighting) {
    return [&smoother, step, weighting](int n) {
      smoother.taubinSmoothing(n, step, passBand, weighting);
    };
  };
  switch (method) {
    case SmoothingMethod::Laplacian:
      return [&smoother, step](int n) { smoother.laplacianFlow(n, step); };
    case SmoothingMethod::ImplicitLaplacian:
      return stepsOf<ImplicitLaplacianFlow>(mesh, step);
    case SmoothingMethod::MeanCurvature:
      return [&smoother, step](int n) { smoother.meanCurvatureFlow(n, step); };
    case SmoothingMethod::ImplicitMeanCurvature:
      return stepsOf<ImplicitMeanCurvatureFlow>(mesh, step);
    case SmoothingMethod::MedianCurvature:
      return [&smoother, step](int n) { smoother.medianCurvatureFlow(n, step); };
    case SmoothingMethod::TaubinUmbrella:
      return taubin(UmbrellaWeights);
    case SmoothingMethod::TaubinInverseDistance:
      return taubin(InverseDistanceWeights);
    case SmoothingMethod::TaubinCotangent:
      return taubin(CotangentWeights);
    case SmoothingMethod::Bilaplacian:
      return [&smoother, step](int n) { smoother.bilaplacianFlow(n, step); };
  }
  return [](int) {};
}

/// An implicit flow advances the bar, and is redrawn if animated, after every step.
Chunks chunksFor(SmoothingMethod method, const Chunks& chunks, int iterations) {
  const bool implicit = method == SmoothingMethod::ImplicitLaplacian ||
                        method == SmoothingMethod::ImplicitMeanCurvature;
  return implicit ? Chunks{.size = 1, .count = iterations, .rest = 0} : chunks;
}

/// Scales a mesh back to the volume that it had at first, if wanted: when it is told to, and when
/// an exception comes in between, so that what has been smoothed until then has its size.
class VolumeKeeper {
 public:
  VolumeKeeper(TriangleMesh& smoothed, bool isWanted)
      : mesh(smoothed), wanted(isWanted), volume(enclosedVolume(smoothed)) {}
  ~VolumeKeeper() {
    if (due) restore();
  }
  VolumeKeeper(const VolumeKeeper&) = delete;
  VolumeKeeper& operator=(const VolumeKeeper&) = delete;

  void hasChanged() { due = true; }
  void restore() {
    if (wanted) rescaleToVolume(mesh, volume);
    due = false;
  }

 private:
  TriangleMesh& mesh;
  bool wanted;
  double volume;
  bool due = false;
};

}  // namespace

void CGravlinDoc::OnSmoothingShape() {
  if (!currentMesh || !outside.showDialog(smoothingParameters.form())) return;
  if (!keepUndoCopy()) return;
  const SmoothingParameters& parameters = smoothingParameters;
  const Chunks chunks =
      chunksOf(parameters.iterationCount, {parameters.animate, parameters.animateEvery});
  outside.showProgress({parameters.iterationCount, chunks.size});
  try {
    smoothShape(chunks);
    outside.hideProgress();
  } catch (const std::bad_alloc&) {
    outside.hideProgress();
    outside.showMessage(outOfMemoryWhileSmoothing);
  }
  geometryChanged();
  redraw();
  if (!smoothingMethod(parameters.method)) {
    tell("No method is called \"" + parameters.method + "\"; nothing was smoothed.");
    tellsOfShape = true;  // the next command may smooth
  }
}

void CGravlinDoc::smoothShape(const Chunks& explicitChunks) {
  const SmoothingParameters& parameters = smoothingParameters;
  const std::optional<SmoothingMethod> method = smoothingMethod(parameters.method);
  if (!method) return;
  TriangleMesh& mesh = *currentMesh;
  VolumeKeeper volume(mesh, parameters.preserveVolume);
  meshSmoother.attach(&mesh);
  const Flow flow = flowOf(*method, meshSmoother, mesh, parameters.stepSize);
  const Chunks chunks = chunksFor(*method, explicitChunks, parameters.iterationCount);
  for (int chunk = 0; chunk < chunks.count; ++chunk) {
    flow(chunks.size);
    volume.hasChanged();
    outside.stepProgress();
    if (!parameters.animate) continue;
    volume.restore();
    needsRecompute = true;
    redraw();
  }
  flow(chunks.rest);
  volume.restore();
}

void CGravlinDoc::OnSmoothingNoise() {
  if (!currentMesh || !outside.showDialog(noiseParameters.form())) return;
  if (!keepUndoCopy()) return;
  meshSmoother.attach(currentMesh.get());
  meshSmoother.addNoise(noiseParameters.noiseSize);
  geometryChanged();
  show(FlatShading);
}

}  // namespace gravlin
