#include "doc/CGravlinDoc.h"

#include <algorithm>
#include <cmath>
#include <locale>
#include <new>
#include <sstream>
#include <utility>

#include "curvature/CurvatureTensor.h"
#include "curvature/EdgeCurvature.h"
#include "curvature/ShapeError.h"
#include "mesh/MeshMeasures.h"

namespace gravlin {
namespace {

/// The ideal mesh that errors are measured to is the undo copy; without one they are 0.
template <class Measure>
std::vector<double> errorsTo(const TriangleMesh* ideal, const TriangleMesh& mesh, Site site,
                             const Measure& measure) {
  if (ideal != nullptr) return measure(mesh, *ideal);
  return std::vector<double>(valueCount(site, mesh), 0.0);
}

constexpr const char* noMemoryForUndoCopy =
    "There is not enough memory for a copy of the shape, which Undo would need. The mesh stays as "
    "it is.";
constexpr const char* noMemoryForUndoCopyAndLost =
    "There is not enough memory for a copy of the shape, which Undo would need. The mesh stays as "
    "it is; the copy that Undo had until now was given up to make room.";

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

/// Whether no vertex has moved; a coordinate that is not a number has not when it still is none.
bool samePositions(const TriangleMesh& a, const TriangleMesh& b) {
  return std::ranges::equal(a.vertices, b.vertices, [](float x, float y) {
    return x == y || (std::isnan(x) && std::isnan(y));
  });
}

/// A sentence when there are positions that are not finite, else nothing.
std::string nonFiniteSentence(const TriangleMesh& mesh, const TriangleMesh* undo) {
  if (countNonFiniteVertices(mesh) == 0) return {};
  const bool undoHelps = undo != nullptr && countNonFiniteVertices(*undo) == 0;
  return undoHelps ? "Some positions are no longer finite numbers; Edit > Undo brings back the "
                     "shape before."
                   : "Some positions are not finite numbers.";
}

}  // namespace

CGravlinDoc::CGravlinDoc(Outside& outsideOfDocument) : outside(outsideOfDocument) {
}
CGravlinDoc::~CGravlinDoc() = default;

std::unique_ptr<TriangleMesh> CGravlinDoc::replaceMesh(
    std::unique_ptr<TriangleMesh> mesh) noexcept {
  currentMesh.swap(mesh);
  meshSmoother.attach(currentMesh.get());
  curvatureTensorSmoother.mesh = currentMesh.get();
  meshSubdivider.attach(currentMesh.get());
  decimator.attach(currentMesh.get());
  ridgeDetector.attach(currentMesh.get());
  ridgeLineSmoother.attach(currentMesh.get());
  dropLines();
  return mesh;
}

void CGravlinDoc::numberShape() {
  // A command need not change anything: with no iterations, say.
  const bool isThatBefore =
      undoMesh && samePositions(*currentMesh, *undoMesh) && currentMesh->faces == undoMesh->faces;
  currentMesh->shape = isThatBefore ? undoMesh->shape : ++shapes;
}

void CGravlinDoc::tellHistogramAge() {
  if (histogramContents) outside.setHistogramAge(ageOf(*histogramContents));
}

HistogramAge CGravlinDoc::ageOf(const HistogramContents& contents) const {
  const FieldOrigin& then = contents.origin;
  if (!currentMesh || then.shape != currentMesh->shape) return HistogramAge::EarlierShape;
  const FieldOrigin& now = currentMesh->curvatureOrigin;
  const bool concernsIt = contents.principalCurvature && now.shape == then.shape;
  if (!concernsIt || now.smoothing == then.smoothing) return HistogramAge::Current;
  return now.smoothing != 0 ? HistogramAge::BeforeCurvatureSmoothing
                            : HistogramAge::BeforeNewEstimate;
}

void CGravlinDoc::haveLines(LinesFrom origin) {
  linesFrom = origin;
  linesAreLost = false;
}

void CGravlinDoc::dropLines() noexcept {
  linesAreLost = linesAreLost || linesFrom != LinesFrom::Nothing;
  linesFrom = LinesFrom::Nothing;
  creaseLinks.clear();
  silhouetteLines = {};
}

CGravlinDoc::KeptShape CGravlinDoc::geometryCopy() const {
  KeptShape copy = {std::make_unique<TriangleMesh>(), meshOrigin};
  copy.mesh->copyGeometryFrom(*currentMesh);
  return copy;
}

bool CGravlinDoc::keepUndoCopy() {
  const bool hadCopy = undoMesh != nullptr;
  const bool fits = hadCopy && undoMesh->vertexCount == currentMesh->vertexCount &&
                    undoMesh->faceCount == currentMesh->faceCount;
  if (!fits) undoMesh.reset();
  try {
    if (!fits) {
      keepUndoCopy(geometryCopy());
    } else {
      MeshOrigin origin = meshOrigin;
      undoMesh->copyGeometryFrom(*currentMesh);
      keepUndoCopy({std::move(undoMesh), std::move(origin)});
    }
    return true;
  } catch (const std::bad_alloc&) {
    const bool isLost = hadCopy && !undoMesh;
    outside.showMessage(isLost ? noMemoryForUndoCopyAndLost : noMemoryForUndoCopy);
    return false;
  }
}

void CGravlinDoc::keepUndoCopy(KeptShape copy) noexcept {
  undoMesh = std::move(copy.mesh);
  undoOrigin = std::move(copy.origin);
  undoIsModified = std::exchange(modified, true);
  // From here on, whatever may keep the command from telling about its end.
  needsRecompute = true;
  currentMesh->shape = ++shapes;
}

void CGravlinDoc::OnEditUndo() {
  if (!undoMesh) return;
  try {
    undoMesh->buildAdjacency();
    undoMesh->buildFaceAdjacency();
  } catch (const std::bad_alloc&) {
    undoMesh->dropDerived();
    return outside.showMessage(
        "There is not enough memory to bring back the shape before. Both shapes stay as they are.");
  }
  replaceMesh(std::exchange(undoMesh, nullptr));
  modified = undoIsModified;
  const MeshOrigin opened = std::exchange(meshOrigin, std::move(undoOrigin));
  const bool ofAnotherFile = opened.path != meshOrigin.path;
  if (ofAnotherFile) path.clear();
  needsRecompute = true;
  if (displayMode == FeatureLines) displayMode = FlatShading;
  tellHistogramAge();
  redraw();
  // What the status bar told was about the shape that is gone.
  if (!ofAnotherFile) {
    tell("");
    tellOfHiddenLines();
    return tellOfNonFinitePositions();
  }
  const std::string broken = nonFiniteSentence(*currentMesh, nullptr);
  tell("Undo has brought back the shape from before " + fileNameOf(opened.path) +
       " was opened; choose a name to save it." + (broken.empty() ? "" : " " + broken));
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
  const std::string sentence = nonFiniteSentence(*currentMesh, undoMesh.get());
  if (!sentence.empty()) tell(sentence);
}

void CGravlinDoc::recompute() {
  TriangleMesh& mesh = *currentMesh;
  mesh.computeNormals();
  const Mode* mode = findMode(displayMode);
  switch (mode == nullptr ? Needs::Nothing : mode->needs) {
    case Needs::Nothing:
      return;
    case Needs::Curvature:
      return computeCurvatureTensor(mesh);
    case Needs::EdgeCurvature:
      return computeEdgeCurvatures(mesh);
    case Needs::Creases:
      // Lines of curvature, and creases of a shape that is gone, stay as they were found.
      if (linesFrom == LinesFrom::FaceAngle) detectCreases();
      return;
    case Needs::VertexErrors:
      vertexErrors = errorsTo(undoMesh.get(), mesh, Site::Vertices, gravlin::vertexErrors);
      return;
    case Needs::FaceErrors:
      faceErrors = errorsTo(undoMesh.get(), mesh, Site::Faces, gravlin::faceErrors);
      return;
  }
}

void CGravlinDoc::formField() {
  formedField = {};
  const Mode* mode = findMode(displayMode);
  if (!currentMesh || mode == nullptr || mode->values == nullptr) return;
  formedField.mode = displayMode;
  try {
    formedField.values = mode->values({*currentMesh, vertexErrors, faceErrors});
  } catch (const std::bad_alloc&) {
    formedField.outOfMemory = true;  // the picture is worth less than the command
  }
}

Shown CGravlinDoc::shown() const {
  Shown shown = {.mesh = currentMesh.get(),
                 .displayMode = displayMode,
                 .revision = revision,
                 .grayScale = visualizationParameters.grayScale,
                 .shadedSurface = angleParameters.shadedSurface,
                 .colourLegend = showsColourLegend,
                 .silhouetteLines = &silhouetteLines,
                 .creaseLinks = creaseLinks};
  if (formedField.mode == displayMode) {
    shown.fieldValues = formedField.values;
    shown.fieldOutOfMemory = formedField.outOfMemory;
  }
  return shown;
}

void CGravlinDoc::redraw() {
  ++revision;  // whatever comes of the rest
  formedField = {};
  const bool recomputes = needsRecompute && currentMesh;
  if (recomputes) recompute();
  formField();
  if (formedField.mode && (recomputes || histogramIsDue)) fillHistogram();
  histogramIsDue = false;
  needsRecompute = false;  // not before: without memory for it now, the next redraw tries again
  tellHistogramAge();      // some commands bring a shape back that was away for a while
  outside.redraw();
  if (toldMode && *toldMode != displayMode) tell("");
}

/// A redraw that fails leaves none, or those of an earlier shape.
void CGravlinDoc::needFaceNormals() {
  const bool there = currentMesh->faceNormals.size() == currentMesh->faces.size();
  if (needsRecompute || !there) currentMesh->computeFaceNormals();
}

void CGravlinDoc::pickFace(int face) {
  TriangleMesh& mesh = *currentMesh;
  needFaceNormals();
  tell(describeFace(mesh, face));
  tellsOfShape = true;
  toldMode = PickedFace;
  mesh.pickedFace = face;
  show(PickedFace);
}

bool CGravlinDoc::pickFace(const Ray& ray) {
  if (!currentMesh) return false;
  needFaceNormals();
  const std::optional<int> face = faceOnRay(*currentMesh, ray);
  if (face) pickFace(*face);
  return face.has_value();
}

}  // namespace gravlin
