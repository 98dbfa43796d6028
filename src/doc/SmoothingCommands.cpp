#include <new>

#include "doc/CGravlinDoc.h"
#include "doc/Chunks.h"
#include "doc/Messages.h"
#include "mesh/MeshMeasures.h"

namespace gravlin {
namespace {

/// An implicit flow advances the bar, and is redrawn if animated, after every step.
Chunks chunksFor(SmoothingMethod method, const Chunks& chunks, int iterations) {
  return isImplicit(method) ? Chunks{.size = 1, .count = iterations, .rest = 0} : chunks;
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
  if (!parameters.chosenMethod()) {
    tell("No method is called \"" + parameters.method + "\"; nothing was smoothed.");
    tellsOfShape = true;  // the next command may smooth
  }
}

void CGravlinDoc::smoothShape(const Chunks& explicitChunks) {
  const SmoothingParameters& parameters = smoothingParameters;
  const std::optional<SmoothingMethod> method = parameters.chosenMethod();
  if (!method) return;
  TriangleMesh& mesh = *currentMesh;
  VolumeKeeper volume(mesh, parameters.preserveVolume);
  const Flow flow = meshSmoother.flow(*method, parameters.stepSize);
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
  meshSmoother.addNoise(noiseParameters.noiseSize);
  geometryChanged();
  show(FlatShading);
}

}  // namespace gravlin
