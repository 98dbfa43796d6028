// The commands of the menu File.

#include "doc/CGravlinDoc.h"
#include "mesh/MeshFile.h"

namespace gravlin {

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
  modified = false;
  undoIsModified = true;   // what is kept for undo belongs to another file
  needsRecompute = false;  // both normals came with the mesh
  show(FlatShading);
  outside.showStatus(opened.notice);
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

bool CGravlinDoc::saveFile(const std::string& filePath) {
  if (!hasMeshToSave()) return false;
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
  outside.showStatus(saved.notice);
  return true;
}

}  // namespace gravlin
