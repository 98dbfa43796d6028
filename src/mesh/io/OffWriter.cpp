#include "mesh/io/OffWriter.h"

#include <string>

#include "mesh/io/OutputBuffer.h"
#include "mesh/io/PositionText.h"

namespace gravlin {

void writeOff(std::FILE* stream, const MeshToWrite& mesh) {
  OutputBuffer out(stream);
  out.put("OFF\n");
  for (const std::string& comment : mesh.comments) out.put("# " + comment + "\n");
  out.put(std::to_string(mesh.vertexCount()) + " " + std::to_string(mesh.faceCount()) + " 0\n");
  const PositionText positions(mesh);
  for (int i = 0; i < mesh.vertexCount(); ++i) {
    char* text = positions.write(out.room(PositionText::most + 1), i);
    *text++ = '\n';
    out.wrote(text);
  }
  putTextFaces(out, mesh, {.before = "3 ", .first = 0});
}

}  // namespace gravlin
