// Edit > Edge Detection: ridge and valley lines, and creases.

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "curvature/CurvatureDerivatives.h"
#include "curvature/CurvatureTensor.h"
#include "doc/CGravlinDoc.h"
#include "numeric/Rollback.h"

namespace gravlin {
namespace {

constexpr float ridgeSmoothingStep = 0.1F;

/// The positions of a mesh while a command works on smoothed ones. The mesh gets them back in any
/// case, also when an exception ends the command; `restore` brings the normals up to date as well,
/// and until they are the derived data counts as stale.
class UnsmoothedPositions {
 public:
  UnsmoothedPositions(TriangleMesh& smoothedMesh, bool& needsRecompute)
      : mesh(smoothedMesh), stale(needsRecompute) {}
  ~UnsmoothedPositions() { giveBack(); }
  UnsmoothedPositions(const UnsmoothedPositions&) = delete;
  UnsmoothedPositions& operator=(const UnsmoothedPositions&) = delete;

  void keep() {
    positions = mesh.vertices;
    shape = mesh.shape;
  }
  void forget() { positions.reset(); }

  void restore() {
    if (!positions) return;
    const bool wasStale = stale;
    giveBack();
    mesh.computeNormals();
    stale = wasStale;
  }

 private:
  void giveBack() {
    if (!positions) return;
    mesh.vertices = std::move(*positions);
    mesh.shape = shape;
    positions.reset();
    stale = true;
  }

  TriangleMesh& mesh;
  bool& stale;
  std::optional<std::vector<float>> positions;
  std::uint64_t shape = 0;
};

}  // namespace

LowThresholds CGravlinDoc::thresholdRidges() {
  const RidgeParameters& parameters = ridgeParameters;
  switch (parameters.thresholdMode) {
    case RidgeParameters::Histogram:
      return ridgeDetector.thresholdHistogram(
          {.upper = parameters.histogramUpper, .lower = parameters.histogramLower});
    case RidgeParameters::Constant: {
      ridgeDetector.thresholdConstant(parameters.constantThreshold);
      const double t = parameters.constantThreshold;
      return {.ridgeLow = t, .valleyLow = t};
    }
    default:
      ridgeDetector.thresholdConstant(0.0F);
      return {};
  }
}

void CGravlinDoc::showRidgeLines(const LowThresholds& low) {
  Rollback lines(currentMesh->ridgeLinks, currentMesh->valleyLinks);
  ridgeDetector.buildLineGraph();
  if (ridgeParameters.connect) ridgeDetector.connectLines(ridgeParameters.connectThreshold, low);
  lines.keep();
  haveLines(LinesFrom::LocalMax);
  creaseLinks.clear();
  displayMode = FeatureLines;
}

void CGravlinDoc::OnEdgeDetectionLocalMax() {
  const RidgeParameters& parameters = ridgeParameters;
  if (!currentMesh || !outside.showDialog(ridgeParameters.form())) return;
  TriangleMesh& mesh = *currentMesh;

  // Pre-smoothing draws the smoothed shape, and with it finds creases on show again there.
  const bool creasesFollow = displayMode == FeatureLines && linesFrom == LinesFrom::FaceAngle;
  UnsmoothedPositions unsmoothed(mesh, needsRecompute);
  if (parameters.preSmoothing != RidgeParameters::NoPreSmoothing) unsmoothed.keep();
  if (parameters.preSmoothing == RidgeParameters::Common) OnSmoothingShape();
  if (parameters.preSmoothing == RidgeParameters::Adaptive) OnSmoothingShapeAdaptive();

  mesh.computeVertexNormals();
  computeCurvatureTensor(mesh);
  if (parameters.smoothTensor) OnSmoothingCurvatureTensor();

  Rollback marks(mesh.ridgeMarks, mesh.valleyMarks);
  ridgeDetector.extractExtrema();
  const LowThresholds low = thresholdRidges();
  if (parameters.absoluteComparison) ridgeDetector.compareAbsoluteValues();
  ridgeDetector.fillGaps();
  if (parameters.extractOn == RidgeParameters::OnFace) {
    marks.keep();
    tellHistogramAge();  // nothing is drawn that would have it told
    return unsmoothed.forget();
  }

  if (parameters.extractOn == RidgeParameters::OnEdge) {
    showRidgeLines(low);
  } else {
    if (parameters.showRidgeDirection) computeCurvatureDerivatives(mesh);
    displayMode = parameters.showRidgeDirection ? RidgeDirections : RidgeVertices;
  }
  marks.keep();
  unsmoothed.restore();
  if (creasesFollow && linesFrom == LinesFrom::FaceAngle) detectCreases();
  if (parameters.extractOn == RidgeParameters::OnEdge && parameters.smoothRidgeEdges) {
    modified = true;
    needsRecompute = true;
    ridgeLineSmoother.smooth(parameters.ridgeSmoothIterations, ridgeSmoothingStep);
    geometryChanged();
  }
  redraw();
}

void CGravlinDoc::detectCreases() {
  const AngleParameters& parameters = angleParameters;
  if (parameters.thresholdMode == AngleParameters::Histogram) {
    ridgeDetector.detectCreasesByHistogram(parameters.shares());
    creaseLinks.clear();
  } else {
    creaseLinks = decimator.detectCreasesByAngle(parameters.cosThreshold());
  }
  haveLines(linesFrom);
}

void CGravlinDoc::OnEdgeDetectionFaceAngle() {
  const AngleParameters& parameters = angleParameters;
  if (!currentMesh || !outside.showDialog(angleParameters.form())) return;
  TriangleMesh& mesh = *currentMesh;

  UnsmoothedPositions unsmoothed(mesh, needsRecompute);
  Rollback origin(linesFrom);
  linesFrom = parameters.preSmoothing ? LinesFrom::SmoothedFaceAngle : LinesFrom::FaceAngle;
  if (parameters.preSmoothing) {
    unsmoothed.keep();
    displayMode = FeatureLines;
    OnSmoothingShapeAdaptive();
    mesh.computeNormals();
  }
  detectCreases();
  origin.keep();
  unsmoothed.restore();
  show(FeatureLines);
}

}  // namespace gravlin
