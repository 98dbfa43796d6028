// File > Export...

#include <array>

#include "curvature/CurvatureFields.h"
#include "curvature/CurvatureTensor.h"
#include "doc/CGravlinDoc.h"
#include "mesh/io/CountedNoun.h"
#include "mesh/io/MeshExport.h"
#include "numeric/Index.h"

namespace gravlin {
namespace {

/// The numbers that are written, as long as they are not those of the mesh itself.
struct FieldValues {
  std::vector<double> mean;
  std::vector<double> gauss;
  std::vector<double> total;
};

void addNormals(MeshToWrite& toWrite, const TriangleMesh& mesh) {
  constexpr std::array<const char*, 3> names = {"nx", "ny", "nz"};
  for (std::size_t axis = 0; axis < 3; ++axis) {
    toWrite.fields.push_back({.name = names[axis],
                              .values = std::span<const float>(mesh.vertexNormals).subspan(axis),
                              .step = 3});
  }
}

/// Curvature in 1 / file unit, its square for the Gaussian one.
void addCurvature(MeshToWrite& toWrite, const TriangleMesh& mesh, FieldValues& values) {
  values.mean = curvatureField(mesh, CurvatureField::Mean);
  values.gauss = curvatureField(mesh, CurvatureField::Gauss);
  values.total = curvatureField(mesh, CurvatureField::Total);
  const double each = 1.0 / mesh.curvatureOrigin.unit;
  const auto add = [&toWrite](const char* name, std::span<const double> numbers, double factor) {
    toWrite.fields.push_back({.name = name, .values = numbers, .factor = factor});
  };
  add("maxCurvature", mesh.maxCurvature, each);
  add("minCurvature", mesh.minCurvature, each);
  add("meanCurvature", values.mean, each);
  add("gaussCurvature", values.gauss, each * each);
  add("totalCurvature", values.total, each);
  toWrite.comments.emplace_back(
      "curvature in 1 / unit of the positions, gaussCurvature in its square");
}

void addDirections(MeshToWrite& toWrite, const std::string& name,
                   const std::vector<double>& directions) {
  constexpr std::array<const char*, 3> axes = {"X", "Y", "Z"};
  for (std::size_t axis = 0; axis < 3; ++axis) {
    toWrite.fields.push_back({.name = name + axes[axis],
                              .values = std::span<const double>(directions).subspan(axis),
                              .step = 3});
  }
}

}  // namespace

void CGravlinDoc::OnFileExport() {
  if (!currentMesh) return outside.showMessage("There is no mesh to export.");
  if (!outside.showDialog(exportParameters.form())) return;
  if (const std::optional<std::string> chosen = outside.chooseFile(FileDialog::ExportMesh)) {
    exportMesh(*chosen);
  }
}

bool CGravlinDoc::exportMesh(const std::string& filePath) {
  TriangleMesh& mesh = *currentMesh;
  const ExportParameters& wanted = exportParameters;
  if (const std::string loss = lossByOverwriting(filePath); !loss.empty()) {
    outside.showMessage(loss);
    return false;
  }
  if (wanted.marks && (mesh.ridgeMarks.empty() || mesh.valleyMarks.empty())) {
    outside.showMessage(
        "There are no ridge and valley marks to export yet. Edit > Edge Detection > Local Max "
        "finds "
        "some.");
    return false;
  }
  if (wanted.normals && needsRecompute) mesh.computeNormals();
  // An estimate that is there stays as it is, as it does when it is shown.
  const bool curvature = wanted.curvature || wanted.directions;
  if (curvature && mesh.maxCurvature.size() != toIndex(mesh.vertexCount)) {
    computeCurvatureTensor(mesh);
  }

  using Vertices = MeshToWrite::Vertices;
  MeshToWrite toWrite(mesh, mesh.fileFrame(),
                      wanted.leaveOutUnused ? Vertices::Used : Vertices::All);
  toWrite.comments.emplace_back("written by Gravlin " GRAVLIN_VERSION);
  FieldValues values;
  if (wanted.normals) addNormals(toWrite, mesh);
  if (wanted.curvature) addCurvature(toWrite, mesh, values);
  if (wanted.directions) {
    addDirections(toWrite, "maxDirection", mesh.maxDirection);
    addDirections(toWrite, "minDirection", mesh.minDirection);
  }
  if (wanted.marks) {
    toWrite.fields.push_back(
        {.name = "ridgeMarks", .values = std::span<const int>(mesh.ridgeMarks)});
    toWrite.fields.push_back(
        {.name = "valleyMarks", .values = std::span<const int>(mesh.valleyMarks)});
  }
  const ExportResult result = exportMeshFile(
      filePath, toWrite,
      {.format = wanted.formatExtension(),
       .text = wanted.ascii ? ExportOptions::Text::Ascii : ExportOptions::Text::Binary});
  if (!result.error.empty()) {
    outside.showMessage(result.error);
    return false;
  }
  std::string sentence = "Exported " + result.path + ": " +
                         counted(toWrite.vertexCount(), vertexNoun) + ", " +
                         counted(toWrite.faceCount(), faceNoun);
  const int invalid = mesh.faceCount - toWrite.faceCount();
  if (invalid > 0) sentence += "; " + counted(invalid, faceNoun) + " without corners left out";
  if (!result.loss.empty()) sentence += "; " + result.loss;
  const bool earlier = curvature && mesh.curvatureOrigin.shape != mesh.shape;
  if (earlier) sentence += "; its curvature is of an earlier shape";
  if (invalid > 0 || earlier || !result.loss.empty()) {
    tell(sentence + ".");
  } else {
    toldMode.reset();
    outside.showSuccess(sentence + ".");
  }
  return true;
}

}  // namespace gravlin
