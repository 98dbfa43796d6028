// File > Import..., and what Open does with a file that Import would read.

#include "doc/CGravlinDoc.h"
#include "mesh/io/CountedNoun.h"
#include "mesh/io/ImportPlacement.h"
#include "mesh/io/MeshImport.h"

namespace gravlin {
namespace {

/// What an import did, beside making a mesh.
struct ImportNotes {
  std::string warnings;        ///< of the reader
  int welded = 0;              ///< vertices that are gone
  std::string droppedNumbers;  ///< names of the numbers of vertices in the file
};

std::string namesOf(const std::vector<VertexProperty>& properties) {
  std::string names;
  for (const VertexProperty& property : properties) {
    names += (names.empty() ? "" : ", ") + property.name;
  }
  return names;
}

std::string importSentence(const std::string& path, const TriangleMesh& mesh,
                           const ImportNotes& notes) {
  std::string text = "Imported " + path + ": " + counted(mesh.vertexCount, vertexNoun) + ", " +
                     counted(mesh.faceCount, faceNoun);
  if (!notes.warnings.empty()) text += "; " + notes.warnings;
  if (notes.welded > 0) text += "; " + counted(notes.welded, vertexNoun) + " welded";
  if (!notes.droppedNumbers.empty()) {
    text += "; the numbers of vertices (" + notes.droppedNumbers + ") not kept";
  }
  return text + ".";
}

}  // namespace

void CGravlinDoc::OnFileImport() {
  const std::optional<std::string> chosen = outside.chooseFile(FileDialog::Import);
  if (chosen && outside.showDialog(importParameters.form())) {
    importFile(*chosen, importParameters.weld);
  }
}

bool CGravlinDoc::importFile(const std::string& filePath, bool weld) {
  ImportResult read = importMeshFile(filePath);
  if (!read.mesh) {
    outside.showMessage(read.error);
    return false;
  }
  ImportNotes notes = {.warnings = warningText(read.mesh->warnings),
                       .droppedNumbers = namesOf(read.mesh->properties)};
  if (weld) notes.welded = weldVertices(*read.mesh);
  std::unique_ptr<TriangleMesh> mesh = placeInCube(std::move(*read.mesh));
  const int sides = countCoincidingSides(*mesh);
  const bool points = mesh->faceCount == 0;
  std::string sentence = importSentence(filePath, *mesh, notes);
  const bool plain = notes.warnings.empty() && notes.droppedNumbers.empty() && sides == 0;
  if (sides > 0) {
    sentence += " " + counted(sides, {"open side", "open sides"}) +
                " of faces coincide: Import with \"Weld\" joins them.";
  }
  showNewMesh(std::move(mesh), {.path = filePath}, points ? Points : FlatShading);
  if (plain) {
    toldMode.reset();
    outside.showSuccess(sentence);
  } else {
    tell(sentence);
  }
  tellsOfShape = false;  // but of the file
  return true;
}

bool CGravlinDoc::loadFile(const std::string& filePath) {
  return standardFormatOfFile(filePath) == nullptr ? openFile(filePath)
                                                   : importFile(filePath, false);
}

void CGravlinDoc::openChosenFile(const std::string& filePath) {
  const StandardFormat* format = standardFormatOfFile(filePath);
  if (format == nullptr) {
    openFile(filePath);
    return;
  }
  switch (outside.askAboutStandardFile({.path = filePath, .format = std::string(format->name)})) {
    case StandardFileAnswer::Import:
      importFile(filePath, false);
      break;
    case StandardFileAnswer::OpenAsItIs:
      openFile(filePath);
      break;
    case StandardFileAnswer::Cancel:
      break;
  }
}

}  // namespace gravlin
