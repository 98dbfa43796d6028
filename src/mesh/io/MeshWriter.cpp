#include "mesh/io/MeshWriter.h"

#include "mesh/io/FormatTable.h"
#include "mesh/MeshMeasures.h"

namespace gravlin {

bool hasWriter(std::string_view extension) {
  const FileFormat* format = ownFormat(extension);
  return format != nullptr && format->save != nullptr;
}

std::string writeMesh(const MeshFile& file, const TriangleMesh& mesh) {
  const FileFormat* format = ownFormat(file.extension);
  if (format == nullptr || format->save == nullptr) {
    return "the extension \"" + file.extension + "\" has no writer, so the file is empty";
  }
  format->save(file.stream, mesh);
  if (mesh.vertexCount > 0 && mesh.countUsedVertices() == 0) {
    return "no face uses any of the vertices, and such are left out, so the file holds none";
  }
  if (countNonFiniteVertices(mesh) > 0) return "some positions are not finite numbers";
  return {};
}

}  // namespace gravlin
