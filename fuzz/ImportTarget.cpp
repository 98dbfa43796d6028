// Importing a file of one of the usual formats. The first byte chooses the extension, the rest is
// the file.

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/FuzzTarget.h"
#include "mesh/io/FormatTable.h"
#include "mesh/io/ImportError.h"
#include "numeric/Index.h"

namespace gravlin::fuzz {
namespace {

constexpr std::array<const char*, 5> extensions = {"ply", "obj", "stl", "off", ""};

bool isNone(const int* corners) {
  return corners[0] == -1 && corners[1] == -1 && corners[2] == -1;
}

void demandSound(const ImportedMesh& mesh, std::size_t fileSize) {
  demand(mesh.positions.size() % 3 == 0, "positions have three coordinates");
  demand(mesh.faces.size() % 3 == 0, "faces have three corners");
  // A coordinate takes a byte or more, and so does a face.
  demand(mesh.positions.size() <= fileSize, "vertices are in the file");
  demand(mesh.faces.size() <= 3 * fileSize, "faces are in the file");
  std::int64_t none = 0;
  for (std::size_t c = 0; c < mesh.faces.size(); c += 3) {
    if (isNone(mesh.faces.data() + c)) {
      ++none;
      continue;
    }
    for (std::size_t k = c; k < c + 3; ++k) {
      demand(mesh.faces[k] >= 0 && mesh.faces[k] < mesh.vertexCount(), "corners are vertices");
    }
  }
  demand(none == mesh.warnings.unusableFaces + mesh.warnings.incompleteFaces,
         "every face that is left out is counted");
  for (const VertexProperty& property : mesh.properties) {
    demand(property.values.size() == toIndex(mesh.vertexCount()),
           "a property has a value for every vertex");
  }
}

void importOnce(const std::string& text, const char* extension) {
  const StandardFormat* format = standardFormat(text, extension);
  if (format == nullptr) return;
  ImportedMesh mesh;
  try {
    mesh = format->import(text);
  } catch (const ImportError& error) {
    demand(std::string(error.what()).size() > 10, "an error has its reason");
    return;
  }
  demandSound(mesh, text.size());
  demand(mesh.warnings.bytesBehind >= 0, "nothing was read beyond the end");
}

}  // namespace
}  // namespace gravlin::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace gravlin::fuzz;
  if (size < 1) return 0;
  const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
  importOnce(text, extensions[data[0] % extensions.size()]);
  return 0;
}
