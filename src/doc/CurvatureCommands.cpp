// The commands that estimate, smooth and show curvature.

#include <functional>
#include <new>

#include "curvature/CurvatureTensor.h"
#include "curvature/EdgeCurvature.h"
#include "doc/CGravlinDoc.h"
#include "doc/Chunks.h"
#include "doc/ModeTable.h"

namespace gravlin {
namespace {

/// An estimate that is there stays as it is, smoothed or of an older shape.
void computeCurvatureIfAbsent(TriangleMesh& mesh) {
  if (mesh.maxCurvature.size() != static_cast<std::size_t>(mesh.vertexCount)) {
    computeCurvatureTensor(mesh);
  }
}

}  // namespace

void CGravlinDoc::OnSmoothingCurvatureTensor() {
  TensorSmoothingParameters& parameters = tensorSmoothingParameters;
  if (!currentMesh || !outside.showDialog(parameters.form())) return;
  computeCurvatureTensor(*currentMesh);

  const bool showsMax = parameters.displayChoice == 0;
  const auto phase = [&](DisplayMode shown, int iterations,
                         const std::function<void(int)>& smooth) {
    const Chunks chunks = chunksOf(iterations, {parameters.animate, parameters.animateEvery});
    outside.showProgress({iterations, chunks.size});
    displayMode = shown;
    for (int chunk = 0; chunk < chunks.count; ++chunk) {
      smooth(chunks.size);
      outside.stepProgress();
      if (parameters.animate) redraw();
    }
    smooth(chunks.rest);
    redraw();
  };
  phase(showsMax ? CurvatureMax : CurvatureMin, parameters.curvatureIterations, [&](int n) {
    curvatureTensorSmoother.smoothCurvatureValues(n, parameters.curvatureThreshold);
    if (n > 0) currentMesh->curvatureOrigin.smoothing = ++smoothings;
  });
  phase(showsMax ? DirectionMax : DirectionMin, parameters.directionIterations,
        [&](int n) { curvatureTensorSmoother.smoothDirections(n, parameters.directionThreshold); });
  outside.hideProgress();
  show(showsMax ? TensorMax : TensorMin);
}

void CGravlinDoc::provide(Needs needs) {
  TriangleMesh& mesh = *currentMesh;
  switch (needs) {
    case Needs::Nothing:
    case Needs::Creases:
      return;
    case Needs::Curvature:
      return computeCurvatureIfAbsent(mesh);
    case Needs::EdgeCurvature:
      mesh.computeFaceNormals();
      return computeEdgeCurvatures(mesh);
    case Needs::VertexErrors:
    case Needs::FaceErrors:
      needsRecompute = true;  // the undo copy may have been exchanged
      return;
  }
}

void CGravlinDoc::showMode(int number) {
  const Mode* mode = findMode(number);
  if (!currentMesh || mode == nullptr) return;
  provide(mode->needs);
  displayMode = number;
  if (mode->site != Site::None) {
    histogramIsDue = true;
    outside.showHistogram(fieldTitle(*mode));
  }
  redraw();
}

void CGravlinDoc::fillHistogram() {
  if (formedField.outOfMemory) throw std::bad_alloc();
  outside.setHistogramValues(formedField.values);
  const Mode& mode = *findMode(displayMode);
  histogramContents = {.origin = fieldOrigin(mode, *currentMesh),
                       .principalCurvature = showsPrincipalCurvature(mode)};
  tellHistogramAge();
}

void CGravlinDoc::OnDirectionMax() {
  showMode(DirectionMax);
}

void CGravlinDoc::OnDirectionMin() {
  showMode(DirectionMin);
}

void CGravlinDoc::OnTensorMax() {
  showMode(TensorMax);
}

void CGravlinDoc::OnTensorMin() {
  showMode(TensorMin);
}

void CGravlinDoc::OnCurvatureMax() {
  showMode(CurvatureMax);
}

void CGravlinDoc::OnCurvatureMin() {
  showMode(CurvatureMin);
}

void CGravlinDoc::OnCurvatureMean() {
  showMode(CurvatureMean);
}

void CGravlinDoc::OnCurvatureGauss() {
  showMode(CurvatureGauss);
}

void CGravlinDoc::OnCurvatureTotal() {
  showMode(CurvatureTotal);
}

void CGravlinDoc::OnEdgeCurvature() {
  showMode(EdgeCurvature);
}

void CGravlinDoc::showStrokes(DisplayMode mode) {
  if (!currentMesh) return;
  displayMode = mode;  // deliberate: also when the dialog is then cancelled
  computeCurvatureIfAbsent(*currentMesh);
  if (!outside.showDialog(seedParameters.form())) return;
  try {
    generateStrokes(*currentMesh, seedParameters.seedAmount);
  } catch (const std::bad_alloc&) {
    currentMesh->strokes = {};
    outside.showMessage("There is not enough memory for that many strokes.");
  }
  redraw();
}

void CGravlinDoc::OnStrokeMax() {
  showStrokes(StrokeMax);
}

void CGravlinDoc::OnStrokeMin() {
  showStrokes(StrokeMin);
}

void CGravlinDoc::OnShowVertexError() {
  showMode(VertexError);
}

void CGravlinDoc::OnShowFaceError() {
  showMode(FaceError);
}

}  // namespace gravlin
