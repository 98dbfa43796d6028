// File > Export Lines...

#include <cstdio>

#include "doc/CGravlinDoc.h"
#include "features/LineExport.h"
#include "mesh/io/MeshFile.h"
#include "mesh/SafeFile.h"

namespace gravlin {

void CGravlinDoc::OnExportLines() {
  if (!currentMesh) return outside.showMessage("There is no mesh whose lines could be exported.");
  const std::optional<std::string> filePath = outside.chooseFile(FileDialog::Export);
  if (filePath) exportLines(*filePath);
}

bool CGravlinDoc::exportLines(const std::string& filePath) {
  const TriangleMesh& mesh = *currentMesh;
  if (const std::string loss = lossByOverwriting(filePath); !loss.empty()) {
    outside.showMessage(loss);
    return false;
  }
  if (linesAreLost) {
    outside.showMessage(
        "The lines that were found belong to an earlier mesh, and none were looked for since. "
        "Edit > Edge Detection finds those of the mesh as it is now.");
    return false;
  }
  if (linesFrom == LinesFrom::Nothing && mesh.ridgeLinks.empty() && mesh.valleyLinks.empty()) {
    outside.showMessage(
        "There are no lines to export yet. Edit > Edge Detection finds some: Face Angle, or Local "
        "Max with \"Edge\".");
    return false;
  }
  const std::string extension = extensionOf(filePath);
  // A picture has the lines that the view shows; a pen drawing leaves the weak ones out.
  const bool penDrawing = extension == "svg" && displayMode == Silhouette;
  const auto [lines, broken] =
      penDrawing ? linesToExport(mesh, silhouetteLines) : linesToExport(mesh, lineOrigin());
  std::string text;
  if (extension == "obj") {
    text = linesAsObj(mesh, lines);
  } else if (extension == "vtk") {
    text = linesAsVtk(mesh, lines);
  } else if (extension == "svg") {
    text = outside.linesAsSvg(mesh, {lines, {visualizationParameters.grayScale, penDrawing}});
  } else {
    outside.showMessage("Lines are written as .obj, .vtk or .svg files; " + filePath +
                        " is none of these.");
    return false;
  }

  SafeFile file(filePath);
  if (file.stream() != nullptr) std::fwrite(text.data(), 1, text.size(), file.stream());
  if (!file.commit()) {
    outside.showMessage("The lines could not be written to " + filePath + ": " + file.error() +
                        ".");
    return false;
  }
  const std::string remark = broken ? " Positions that are not finite are left out." : "";
  if (lines.empty()) {
    tell("No lines were found on this mesh; " + filePath + " holds none." + remark);
    return true;
  }
  const std::string count = std::to_string(lines.size()) + (lines.size() == 1 ? " line" : " lines");
  tell(count + " written to " + filePath + "." + remark);
  return true;
}

}  // namespace gravlin
