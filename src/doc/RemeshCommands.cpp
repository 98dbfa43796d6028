// The commands that replace the faces: subdivision and simplification.

#include <new>
#include <stdexcept>

#include "doc/CGravlinDoc.h"

namespace gravlin {
namespace {

std::string describe(const DecimationResult& result) {
  return "Removed " + std::to_string(result.vertices) +
         (result.vertices == 1 ? " vertex and " : " vertices and ") + std::to_string(result.faces) +
         (result.faces == 1 ? " face; " : " faces; ") +
         (result.targetReached ? "the target was reached." : "no edge left that may collapse.");
}

/// The used vertices and valid faces alone, with topology.
std::unique_ptr<TriangleMesh> compacted(const TriangleMesh& mesh) {
  auto compact = std::make_unique<TriangleMesh>(mesh.compactCopy());
  compact->buildAdjacency();
  compact->buildFaceAdjacency();
  return compact;
}

}  // namespace

void CGravlinDoc::OnSubdivision() {
  if (!currentMesh || !outside.showDialog(subdivisionParameters.form())) return;
  try {
    KeptShape before = geometryCopy();
    meshSubdivider.refine(subdivisionParameters.scheme());
    keepUndoCopy(std::move(before));
  } catch (const std::length_error&) {
    return outside.showMessage(
        "The refined mesh would have more faces than can be numbered. The mesh stays as it is.");
  } catch (const std::bad_alloc&) {
    return outside.showMessage(
        "There is not enough memory to refine this mesh. The mesh stays as it is.");
  }
  // Lines went with the vertices that they joined. Creases of the shape are found again.
  const LinesFrom origin = linesFrom;
  dropLines();
  if (origin == LinesFrom::FaceAngle) linesFrom = origin;
  geometryChanged();
  redraw();
}

void CGravlinDoc::OnSimplification() {
  if (!currentMesh || !outside.showDialog(decimationParameters.form())) return;
  std::unique_ptr<TriangleMesh> simplified;
  KeptShape before;
  DecimationResult result;
  try {
    DecimatedMesh decimated = decimator.decimatedCopy(decimationParameters.reductionRate);
    simplified = compacted(decimated.mesh);
    result = decimated.result;
    before.origin = meshOrigin;
  } catch (const std::bad_alloc&) {
    return outside.showMessage(
        "There is not enough memory to simplify this mesh. The mesh stays as it is.");
  }
  before.mesh = replaceMesh(std::move(simplified));
  before.mesh->dropDerived();
  keepUndoCopy(std::move(before));
  geometryChanged();
  show(FlatShading);
  tell(describe(result));
}

}  // namespace gravlin
