// The commands of the menu File.

#include <filesystem>
#include <system_error>

#include "doc/CGravlinDoc.h"
#include "mesh/io/FormatTable.h"
#include "mesh/io/MeshWriter.h"
#include "mesh/MeshMeasures.h"
#include "mesh/PositionLoss.h"

namespace gravlin {
namespace {

/// Whether both names lead to one file that exists.
bool isSameFile(const std::string& a, const std::string& b) {
  std::error_code error;
  return std::filesystem::equivalent(a, b, error) && !error;
}

bool isEmptyFile(const std::string& path) {
  std::error_code error;
  return std::filesystem::file_size(path, error) == 0 && !error;
}

/// Whether a regular file is there that is not empty.
bool holdsSomething(const std::string& path) {
  std::error_code error;
  return std::filesystem::is_regular_file(path, error) && !isEmptyFile(path);
}

constexpr const char* nameToSave = " name that ends in .ply2 or .plyR.";

}  // namespace

void CGravlinDoc::OnFileOpen() {
  if (const std::optional<std::string> chosen = outside.chooseFile(FileDialog::Open)) {
    openChosenFile(*chosen);
  }
}

bool CGravlinDoc::openFile(const std::string& filePath) {
  OpenResult opened = openMeshFile(filePath);
  if (!opened.mesh) {
    outside.showMessage(opened.error);
    return false;
  }
  showNewMesh(std::move(opened.mesh),
              {.path = filePath,
               .extent = opened.extent,
               .positionLoss = opened.positionLoss,
               .lossSinceSaving = opened.positionLoss},
              FlatShading);
  tell(opened.notice);
  tellsOfShape = false;  // but of the file
  return true;
}

void CGravlinDoc::showNewMesh(std::unique_ptr<TriangleMesh> mesh, MeshOrigin origin,
                              DisplayMode mode) {
  // All names before the mesh: it must never stand under the name of another file.
  std::string newPath = origin.path;
  mesh->shape = ++shapes;
  replaceMesh(std::move(mesh));
  linesAreLost = false;  // they were of another mesh
  path = std::move(newPath);
  meshOrigin = std::move(origin);
  savedShape.reset();
  modified = false;
  undoIsModified = true;   // what is kept for undo belongs to another file
  needsRecompute = false;  // both normals came with the mesh
  tellHistogramAge();
  show(mode);
}

void CGravlinDoc::OnFileSaveAs() {
  if (!hasMeshToSave()) return;
  if (const std::optional<std::string> chosen = outside.chooseFile(FileDialog::Save)) {
    saveFile(*chosen);
  }
}

bool CGravlinDoc::hasMeshToSave() {
  if (!currentMesh) outside.showMessage("There is no mesh to save.");
  return currentMesh != nullptr;
}

bool CGravlinDoc::holdsItsMesh(const std::string& filePath) const {
  return (isSameFile(filePath, meshOrigin.path) || isSameFile(filePath, path)) &&
         !isEmptyFile(filePath);
}

std::string CGravlinDoc::lossByOverwriting(const std::string& filePath) const {
  if (!currentMesh || !holdsItsMesh(filePath)) return {};
  return "Cannot write " + filePath + ": the mesh was " +
         (isSameFile(filePath, meshOrigin.path) ? "opened from" : "saved to") +
         " it and would be lost there. Choose another name.";
}

std::string CGravlinDoc::lossBySaving(const std::string& filePath) const {
  const std::string target = pathToSave(filePath);
  if (!holdsItsMesh(target)) return {};
  const bool wasOpened = isSameFile(target, meshOrigin.path);
  const std::string extension = extensionOf(target);
  if (wasOpened && !hasWriter(extension)) {
    return "the mesh was opened from it, and the extension \"" + extension +
           "\" has no writer, so it would become empty";
  }
  if (!hasFiniteShape(*currentMesh)) {
    return "some positions of the mesh are not finite numbers, and those in the file would be lost";
  }
  if (currentMesh->vertexCount > 0 && currentMesh->countUsedVertices() == 0) {
    return "no face uses any of the vertices, and such are left out, so all would be lost";
  }
  if (!wasOpened || meshOrigin.extent == ReadExtent::Whole) return {};
  return "not all of it could be read, and what is missing in the mesh would be lost";
}

std::string CGravlinDoc::shiftBySaving(const std::string& target) const {
  constexpr double negligible = 1e-5;  // of the extent
  std::optional<WritingLoss> writing = lossByWriting(*currentMesh);
  if (!writing) return {};
  double before = meshOrigin.positionLoss;
  if (isSameFile(target, path) && savedShape && savedShape->shape == currentMesh->shape) {
    before = savedShape->lossByRewriting;
    writing->largest = 0.0;  // the file has it already
  } else if (isSameFile(target, path) && !isSameFile(target, meshOrigin.path)) {
    before = meshOrigin.lossSinceSaving;
  }
  const double shift = before + writing->largest;
  if (!(shift > negligible * writing->extent)) return {};
  std::string text = "by up to " + lossText(shift);
  if (writing->extent > 0.0) {
    text += ", " + lossText(100.0 * shift / writing->extent) + " % of the extent of the mesh";
  }
  // Half of the last decimal, and a little for the rounding before.
  constexpr double lossOfDecimals = 0.6e-6;
  if (before > writing->largest) return text + ", since its box was not measured";
  if (writing->largest < lossOfDecimals) return text + ", since files hold six decimals";
  return text + ", since numbers have seven digits and it lies far from the origin";
}

/// Under a name that nothing writes: a new file is made, and has nothing in it.
bool CGravlinDoc::saveNothing(const std::string& filePath) {
  const std::string extension = extensionOf(filePath);
  const std::string exporting =
      standardFormatNamed(extension) == nullptr ? "" : " File > Export writes them.";
  const std::string loss =
      "Save writes no ." + extension + " files: the file would be left empty." + exporting;
  const bool asks = holdsSomething(filePath);
  if (asks && !outside.confirm(
                  {.text = loss,
                   .goOn = "Empty the File",
                   .refusal = filePath + " stays as it is. " + loss + " Choose a" + nameToSave})) {
    return false;
  }
  const SaveResult saved = saveMeshFile(filePath, *currentMesh);
  if (!saved.error.empty()) {
    outside.showMessage(saved.error);
    return false;
  }
  meshOrigin.positionLoss += saved.loss.stored;
  meshOrigin.lossSinceSaving += saved.loss.stored;
  if (savedShape) savedShape->lossByRewriting += saved.loss.rewritten;
  redraw();
  const std::string outcome = filePath + " is empty: Save writes no ." + extension +
                              " files. The mesh is not saved; choose a" + nameToSave + exporting;
  if (asks) {
    tell(outcome);
  } else {
    outside.showMessage(outcome);
  }
  return false;
}

bool CGravlinDoc::saveFile(const std::string& filePath) {
  if (!hasMeshToSave()) return false;
  const std::string target = pathToSave(filePath);
  const std::string loss = lossBySaving(filePath);
  if (!loss.empty()) {
    outside.showMessage("Cannot save " + target + ": " + loss + ". Save under another" +
                        nameToSave);
    return false;
  }
  if (!hasWriter(extensionOf(target))) return saveNothing(target);
  const std::string shift = shiftBySaving(target);
  if (!shift.empty() && holdsItsMesh(target) &&
      !outside.confirm({.text = "Saving over " + fileNameOf(target) + " moves its vertices " +
                                shift + ". Another name keeps the file as it is.",
                        .goOn = "Save",
                        .refusal = "Cannot save " + target + ": its vertices would move " + shift +
                                   ". Save under another name."})) {
    return false;
  }
  const SaveResult saved = saveMeshFile(filePath, *currentMesh);
  if (!saved.error.empty()) {
    outside.showMessage(saved.error);
    return false;
  }
  noteSaved(saved, shift);
  return true;
}

void CGravlinDoc::noteSaved(const SaveResult& saved, const std::string& shift) {
  path = saved.path;
  if (isSameFile(path, meshOrigin.path)) {
    meshOrigin.extent = ReadExtent::Whole;  // it has nothing any more but this mesh
    meshOrigin.positionLoss = 0.0;
  }
  meshOrigin.positionLoss += saved.loss.stored;
  meshOrigin.lossSinceSaving = saved.loss.stored;
  savedShape = {.shape = currentMesh->shape, .lossByRewriting = saved.loss.rewritten};
  const bool holdsMesh = saved.notice.empty();
  if (holdsMesh) {
    modified = false;
    undoIsModified = true;  // the file holds what an undo would leave
  }
  redraw();
  if (!holdsMesh) return tell(saved.notice);
  if (shift.empty()) {
    toldMode.reset();
    outside.showSuccess("Saved " + fileNameOf(saved.path) + ".");
  } else {
    tell("Saved " + saved.path + "; its vertices are off " + shift + ".");
  }
  tellsOfShape = true;  // the next one is not saved
}

}  // namespace gravlin
