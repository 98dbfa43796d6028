// The commands that estimate, smooth and show curvature.

#include <functional>
#include <new>

#include "curvature/CurvatureTensor.h"
#include "curvature/EdgeCurvature.h"
#include "doc/CGravlinDoc.h"
#include "doc/Chunks.h"
#include "doc/ShownField.h"

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
  curvatureTensorSmoother.mesh = currentMesh.get();

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
    if (n > 0) curvatureSmoothed();
  });
  phase(showsMax ? DirectionMax : DirectionMin, parameters.directionIterations,
        [&](int n) { curvatureTensorSmoother.smoothDirections(n, parameters.directionThreshold); });
  outside.hideProgress();
  show(showsMax ? TensorMax : TensorMin);
}

void CGravlinDoc::showDirections(DisplayMode mode) {
  if (!currentMesh) return;
  computeCurvatureIfAbsent(*currentMesh);
  show(mode);
}

void CGravlinDoc::OnDirectionMax() {
  showDirections(DirectionMax);
}

void CGravlinDoc::OnDirectionMin() {
  showDirections(DirectionMin);
}

void CGravlinDoc::OnTensorMax() {
  showDirections(TensorMax);
}

void CGravlinDoc::OnTensorMin() {
  showDirections(TensorMin);
}

void CGravlinDoc::fillHistogram() {
  outside.setHistogramValues(shownFieldValues(*this));
  histogramContents = {.shape = shownFieldShape(*this),
                       .principalCurvature = showsPrincipalCurvature(displayMode)};
  tellHistogramAge();
}

void CGravlinDoc::curvatureSmoothed() {
  if (!histogramContents || !histogramContents->principalCurvature) return;
  if (histogramContents->shape == currentMesh->shape) histogramContents->smoothedSince = true;
}

void CGravlinDoc::showField(DisplayMode mode) {
  displayMode = mode;
  outside.showHistogram(shownFieldName(mode));
  fillHistogram();
  redraw();
}

void CGravlinDoc::showCurvature(DisplayMode mode) {
  if (!currentMesh) return;
  computeCurvatureIfAbsent(*currentMesh);
  showField(mode);
}

void CGravlinDoc::OnCurvatureMax() {
  showCurvature(CurvatureMax);
}

void CGravlinDoc::OnCurvatureMin() {
  showCurvature(CurvatureMin);
}

void CGravlinDoc::OnCurvatureMean() {
  showCurvature(CurvatureMean);
}

void CGravlinDoc::OnCurvatureGauss() {
  showCurvature(CurvatureGauss);
}

void CGravlinDoc::OnCurvatureTotal() {
  showCurvature(CurvatureTotal);
}

void CGravlinDoc::OnEdgeCurvature() {
  if (!currentMesh) return;
  currentMesh->computeFaceNormals();
  computeEdgeCurvatures(*currentMesh);
  showField(EdgeCurvature);
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

void CGravlinDoc::showError(DisplayMode mode) {
  if (!currentMesh) return;
  displayMode = mode;
  outside.showHistogram(shownFieldName(mode));
  needsRecompute = true;
  redraw();
}

void CGravlinDoc::OnShowVertexError() {
  showError(VertexError);
}

void CGravlinDoc::OnShowFaceError() {
  showError(FaceError);
}

}  // namespace gravlin
