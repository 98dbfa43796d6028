// Visualization > Silhouette: what a pen drawing of the surface is made from.

#include "curvature/CurvatureDerivatives.h"
#include "curvature/CurvatureTensor.h"
#include "curvature/DirectionCoherence.h"
#include "curvature/Strokes.h"
#include "doc/CGravlinDoc.h"

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
  ridgeDetector.attach(&mesh);
  displayMode = Silhouette;
  generateStrokes(mesh, seeds);
  markCoherentFaces(mesh, tensorSmoothingParameters.directionThreshold);

  ridgeDetector.extractExtrema();
  const LowThresholds low = ridgeDetector.thresholdHistogram(ridgeShares);
  ridgeDetector.compareAbsoluteValues();
  ridgeDetector.fillGaps();
  ridgeDetector.buildLineGraph();
  haveLines(LinesFrom::LocalMax);
  decimator.creaseLinks.clear();

  computeCurvatureDerivatives(mesh);
  curvatureTensorSmoother.mesh = &mesh;
  curvatureTensorSmoother.smoothDerivativeGradients(gradientIterations, gradientSigma);
  silhouetteLines = selectSilhouetteLines(mesh, {leastLineStrength, low});
  markCoherentFaces(mesh, tensorSmoothingParameters.directionThreshold);
  redraw();
}

}  // namespace gravlin
