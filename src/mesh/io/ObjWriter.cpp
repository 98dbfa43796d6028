#include "mesh/io/ObjWriter.h"

#include "mesh/io/OutputBuffer.h"
#include "mesh/io/PositionText.h"

namespace gravlin {

void writeObj(std::FILE* stream, const MeshToWrite& mesh) {
  OutputBuffer out(stream);
  for (const std::string& comment : mesh.comments) out.put("# " + comment + "\n");
  const PositionText positions(mesh);
  for (int i = 0; i < mesh.vertexCount(); ++i) {
    char* text = out.room(PositionText::most + 3);
    *text++ = 'v';
    *text++ = ' ';
    text = positions.write(text, i);
    *text++ = '\n';
    out.wrote(text);
  }
  putTextFaces(out, mesh, {.before = "f ", .first = 1});
}

}  // namespace gravlin
