// Visualization > Silhouette: what a pen drawing of the surface is made from.

#include <utility>

#include "curvature/CurvatureDerivatives.h"
#include "curvature/CurvatureTensor.h"
#include "curvature/DirectionCoherence.h"
#include "curvature/Strokes.h"
#include "doc/CGravlinDoc.h"
#include "numeric/Rollback.h"

namespace gravlin {
namespace {

constexpr int seeds = 3000;
constexpr HistogramShares ridgeShares = {.upper = 0.8F, .lower = 0.3F};
constexpr int gradientIterations = 20;
constexpr float gradientSigma = 20.0F;
constexpr float leastLineStrength = 2.0F;

}  // namespace

void CGravlinDoc::OnSilhouette() {
  if (!currentMesh) return;
  TriangleMesh& mesh = *currentMesh;
  if (mesh.maxCurvature.size() != static_cast<std::size_t>(mesh.vertexCount)) {
    computeCurvatureTensor(mesh);
  }
  generateStrokes(mesh, seeds);
  markCoherentFaces(mesh, tensorSmoothingParameters.directionThreshold);

  Rollback lines(mesh.ridgeMarks, mesh.valleyMarks, mesh.ridgeLinks, mesh.valleyLinks);
  ridgeDetector.extractExtrema();
  const LowThresholds low = ridgeDetector.thresholdHistogram(ridgeShares);
  ridgeDetector.compareAbsoluteValues();
  ridgeDetector.fillGaps();
  ridgeDetector.buildLineGraph();

  computeCurvatureDerivatives(mesh);
  curvatureTensorSmoother.smoothDerivativeGradients(gradientIterations, gradientSigma);
  SilhouetteLines selected = selectSilhouetteLines(mesh, {leastLineStrength, low});
  markCoherentFaces(mesh, tensorSmoothingParameters.directionThreshold);
  silhouetteLines = std::move(selected);
  lines.keep();
  haveLines(LinesFrom::LocalMax);
  creaseLinks.clear();
  displayMode = Silhouette;
  redraw();
}

}  // namespace gravlin
