#include "doc/CGravlinDoc.h"

#include <algorithm>
#include <locale>
#include <sstream>
#include <utility>

#include "curvature/CurvatureTensor.h"
#include "curvature/EdgeCurvature.h"
#include "curvature/ShapeError.h"
#include "mesh/MeshMeasures.h"

namespace gravlin {
namespace {

/// One kind of derived data that a redraw brings up to date when the geometry has changed.
struct Recomputation {
  std::vector<int> modes;  ///< the display modes that show it; empty: every mode
  void (*recompute)(CGravlinDoc& doc);
};

/// The ideal mesh that errors are measured to is the undo copy; without one they are 0.
void computeVertexErrors(CGravlinDoc& doc) {
  const TriangleMesh& mesh = *doc.currentMesh;
  doc.vertexErrors.assign(static_cast<std::size_t>(mesh.vertexCount), 0.0);
  if (doc.undoMesh) doc.vertexErrors = vertexErrors(mesh, *doc.undoMesh);
}

void computeFaceErrors(CGravlinDoc& doc) {
  const TriangleMesh& mesh = *doc.currentMesh;
  doc.faceErrors.assign(static_cast<std::size_t>(mesh.faceCount), 0.0);
  if (doc.undoMesh) doc.faceErrors = faceErrors(mesh, *doc.undoMesh);
}

/// Lines of curvature, and creases of a shape that is no longer there, stay as they were found.
void findCreasesAgain(CGravlinDoc& doc) {
  if (doc.linesFrom == CGravlinDoc::LinesFrom::FaceAngle) doc.detectCreases();
}

/// In the order in which they run: a row may use the data of the rows above it.
const std::vector<Recomputation>& recomputations() {
  static const std::vector<Recomputation> table = {
      {{}, [](CGravlinDoc& doc) { doc.currentMesh->computeNormals(); }},
      {{DirectionMax, DirectionMin, TensorMax, TensorMin, CurvatureMax, CurvatureMin, CurvatureMean,
        CurvatureGauss, CurvatureTotal},
       [](CGravlinDoc& doc) { computeCurvatureTensor(*doc.currentMesh); }},
      {{FeatureLines}, findCreasesAgain},
      {{EdgeCurvature}, [](CGravlinDoc& doc) { computeEdgeCurvatures(*doc.currentMesh); }},
      {{VertexError}, computeVertexErrors},
      {{FaceError}, computeFaceErrors},
      {{CurvatureMax, CurvatureMin, CurvatureMean, CurvatureGauss, CurvatureTotal, EdgeCurvature,
        VertexError, FaceError},
       [](CGravlinDoc& doc) { doc.fillHistogram(); }},
  };
  return table;
}

/// One sentence about a valid face, with its area in the file's units.
std::string describeFace(const TriangleMesh& mesh, int face) {
  const auto c = mesh.corners(face);
  const Vec3 a = mesh.position(c[0]);
  const double fileUnit = mesh.extentTolerance;
  const double area = 0.5 * length(cross(mesh.position(c[1]) - a, mesh.position(c[2]) - a));
  const Vec3 normal = mesh.faceNormal(face);
  std::ostringstream text;
  text.imbue(std::locale::classic());
  text << "Face " << face << ": corners " << c[0] << ", " << c[1] << ", " << c[2] << "; area "
       << area * fileUnit * fileUnit << "; normal (" << normal.x << ", " << normal.y << ", "
       << normal.z << ")";
  return text.str();
}

}  // namespace

CGravlinDoc::CGravlinDoc(Outside& outsideOfDocument) : outside(outsideOfDocument) {
}
CGravlinDoc::~CGravlinDoc() = default;

void CGravlinDoc::replaceMesh(std::unique_ptr<TriangleMesh> mesh) {
  currentMesh = std::move(mesh);
  meshSmoother.attach(currentMesh.get());
  curvatureTensorSmoother.mesh = currentMesh.get();
  meshSubdivider.attach(currentMesh.get());
  decimator.attach(currentMesh.get());
  ridgeDetector.attach(currentMesh.get());
  ridgeLineSmoother.attach(currentMesh.get());
  tellHistogramAge();
  dropLines();
}

void CGravlinDoc::numberShape() {
  // A command need not change anything: with no iterations, say.
  const bool isThatBefore = undoMesh && currentMesh->vertices == undoMesh->vertices &&
                            currentMesh->faces == undoMesh->faces;
  currentMesh->shape = isThatBefore ? undoMesh->shape : ++shapes;
}

void CGravlinDoc::tellHistogramAge() {
  if (!histogramContents) return;
  if (!currentMesh || histogramContents->shape != currentMesh->shape) {
    outside.setHistogramAge(HistogramAge::EarlierShape);
  } else {
    outside.setHistogramAge(histogramContents->smoothedSince
                                ? HistogramAge::BeforeCurvatureSmoothing
                                : HistogramAge::Current);
  }
}

void CGravlinDoc::haveLines(LinesFrom origin) {
  linesFrom = origin;
  linesAreLost = false;
}

void CGravlinDoc::dropLines() {
  linesAreLost = linesAreLost || linesFrom != LinesFrom::Nothing;
  linesFrom = LinesFrom::Nothing;
  decimator.creaseLinks.clear();
  silhouetteLines = {};
}

std::unique_ptr<TriangleMesh> CGravlinDoc::geometryCopy() const {
  auto copy = std::make_unique<TriangleMesh>();
  copy->copyGeometryFrom(*currentMesh);
  return copy;
}

void CGravlinDoc::keepUndoCopy() {
  undoMesh.reset();  // first, so that there are never three meshes at once
  keepUndoCopy(geometryCopy());
}

void CGravlinDoc::keepUndoCopy(std::unique_ptr<TriangleMesh> copy) {
  undoMesh = std::move(copy);
  undoIsModified = std::exchange(modified, true);
  undoOrigin = meshOrigin;
}

void CGravlinDoc::OnEditUndo() {
  if (!undoMesh) return;
  replaceMesh(std::move(undoMesh));
  modified = undoIsModified;
  const std::string openedPath = std::exchange(meshOrigin, undoOrigin).path;
  const bool ofAnotherFile = openedPath != meshOrigin.path;
  if (ofAnotherFile) path.clear();
  currentMesh->buildAdjacency();
  currentMesh->buildFaceAdjacency();
  needsRecompute = true;
  if (displayMode == FeatureLines) displayMode = FlatShading;
  redraw();
  // What the status bar told was about the shape that is gone.
  tell(ofAnotherFile ? "Undo has brought back the shape from before " + fileNameOf(openedPath) +
                           " was opened; choose a name to save it."
                     : "");
  if (!ofAnotherFile) tellOfHiddenLines();
  tellOfNonFinitePositions();
}

void CGravlinDoc::OnEnhancement() {
}

void CGravlinDoc::geometryChanged() {
  needsRecompute = true;
  numberShape();
  tellHistogramAge();
  if (std::exchange(tellsOfShape, false)) tell("");
  tellOfNonFinitePositions();
}

void CGravlinDoc::tell(const std::string& sentence) {
  toldMode.reset();
  outside.showStatus(sentence);
}

void CGravlinDoc::tellOfNonFinitePositions() {
  if (countNonFiniteVertices(*currentMesh) == 0) return;
  const bool undoHelps = undoMesh != nullptr && countNonFiniteVertices(*undoMesh) == 0;
  tell(
      undoHelps
          ? "Some positions are no longer finite numbers; Edit > Undo brings back the shape before."
          : "Some positions are not finite numbers.");
}

void CGravlinDoc::recompute() {
  for (const Recomputation& row : recomputations()) {
    const bool shown = row.modes.empty() || std::find(row.modes.begin(), row.modes.end(),
                                                      displayMode) != row.modes.end();
    if (shown) row.recompute(*this);
  }
}

void CGravlinDoc::redraw() {
  ++revision;  // whatever comes of the rest
  if (needsRecompute && currentMesh) recompute();
  needsRecompute = false;  // not before: without memory for it now, the next redraw tries again
  tellHistogramAge();      // some commands bring a shape back that was away for a while
  outside.redraw();
  if (toldMode && *toldMode != displayMode) tell("");
}

void CGravlinDoc::pickFace(int face) {
  TriangleMesh& mesh = *currentMesh;
  if (mesh.faceNormals.size() != mesh.faces.size()) mesh.computeFaceNormals();
  mesh.pickedFace = face;
  tell(describeFace(mesh, face));
  tellsOfShape = true;
  toldMode = PickedFace;
  show(PickedFace);
}

bool CGravlinDoc::pickFace(const Ray& ray) {
  const std::optional<int> face = currentMesh ? faceOnRay(*currentMesh, ray) : std::nullopt;
  if (face) pickFace(*face);
  return face.has_value();
}

}  // namespace gravlin
