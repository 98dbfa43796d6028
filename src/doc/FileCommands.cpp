// The commands of the menu File.

#include <filesystem>
#include <system_error>

#include "doc/CGravlinDoc.h"
#include "mesh/MeshMeasures.h"
#include "mesh/MeshWriter.h"

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

}  // namespace

void CGravlinDoc::OnFileOpen() {
  if (const std::optional<std::string> chosen = outside.chooseFile(FileDialog::Open)) {
    openFile(*chosen);
  }
}

bool CGravlinDoc::openFile(const std::string& filePath) {
  OpenResult opened = openMeshFile(filePath);
  if (!opened.mesh) {
    outside.showMessage(opened.error);
    return false;
  }
  replaceMesh(std::move(opened.mesh));
  path = filePath;
  openedPath = filePath;
  readExtent = opened.extent;
  modified = false;
  undoIsModified = true;   // what is kept for undo belongs to another file
  needsRecompute = false;  // both normals came with the mesh
  show(FlatShading);
  outside.showStatus(opened.notice);
  tellsOfShape = false;  // but of the file
  return true;
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

std::string CGravlinDoc::lossBySaving(const std::string& filePath) const {
  const std::string target = pathToSave(filePath);
  const bool wasOpened = isSameFile(target, openedPath);
  if ((!wasOpened && !isSameFile(target, path)) || isEmptyFile(target)) return {};
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
  if (!wasOpened || readExtent == ReadExtent::Whole) return {};
  return "not all of it could be read, and what is missing in the mesh would be lost";
}

bool CGravlinDoc::saveFile(const std::string& filePath) {
  if (!hasMeshToSave()) return false;
  const std::string loss = lossBySaving(filePath);
  if (!loss.empty()) {
    outside.showMessage("Cannot save " + pathToSave(filePath) + ": " + loss +
                        ". Save under another name that ends in .ply2 or .plyR.");
    return false;
  }
  const SaveResult saved = saveMeshFile(filePath, *currentMesh);
  if (!saved.error.empty()) {
    outside.showMessage(saved.error);
    return false;
  }
  path = saved.path;
  if (saved.notice.empty()) {
    modified = false;
    undoIsModified = true;  // the file holds what an undo would leave
  }
  redraw();
  if (saved.notice.empty()) {
    outside.showSuccess("Saved " + std::filesystem::path(saved.path).filename().string() + ".");
    tellsOfShape = true;  // the next one is not saved
  } else {
    outside.showStatus(saved.notice);
  }
  return true;
}

}  // namespace gravlin
