#include "mesh/io/PlyWriter.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <span>
#include <string>
#include <variant>

#include "mesh/io/LittleEndian.h"
#include "mesh/io/NumberText.h"
#include "mesh/io/OutputBuffer.h"
#include "mesh/io/PositionText.h"

namespace gravlin {
namespace {

const char* typeName(const VertexField& field) {
  constexpr std::array<const char*, 3> names = {"float", "double", "uchar"};
  return names[field.values.index()];
}

void putHeader(OutputBuffer& out, const MeshToWrite& mesh, const char* format,
               const char* positionType) {
  out.put(std::string("ply\nformat ") + format + " 1.0\n");
  for (const std::string& comment : mesh.comments) out.put("comment " + comment + "\n");
  out.put("element vertex " + std::to_string(mesh.vertexCount()) + "\n");
  for (const char* axis : {"x", "y", "z"}) {
    out.put(std::string("property ") + positionType + " " + axis + "\n");
  }
  for (const VertexField& field : mesh.fields) {
    out.put(std::string("property ") + typeName(field) + " " + field.name + "\n");
  }
  out.put("element face " + std::to_string(mesh.faceCount()) +
          "\nproperty list uchar int vertex_indices\nend_header\n");
}

char* storeField(char* bytes, const VertexField& field, int vertex) {
  const double value = field(vertex);
  switch (field.values.index()) {
    case 0:
      return storeLittleEndian(bytes, static_cast<float>(value));
    case 1:
      return storeLittleEndian(bytes, value);
    default:
      return storeLittleEndian(bytes, static_cast<std::uint8_t>(value));
  }
}

char* writeField(char* text, const VertexField& field, int vertex) {
  const double value = field(vertex);
  char* const end = text + maxToleranceText;
  switch (field.values.index()) {
    case 0:
      return std::to_chars(text, end, static_cast<float>(value)).ptr;
    case 1:
      return std::to_chars(text, end, value).ptr;
    default:
      return writeInt(text, static_cast<int>(value));
  }
}

template <class Number>
void putVertices(OutputBuffer& out, const MeshToWrite& mesh) {
  for (int i = 0; i < mesh.vertexCount(); ++i) {
    char* bytes = out.room(3 * sizeof(Number));
    for (const double x : mesh.position(i))
      bytes = storeLittleEndian(bytes, static_cast<Number>(x));
    out.wrote(bytes);
    for (const VertexField& field : mesh.fields) {
      out.wrote(storeField(out.room(sizeof(double)), field, mesh.sourceOf(i)));
    }
  }
}

}  // namespace

void writePlyBinary(std::FILE* stream, const MeshToWrite& mesh) {
  OutputBuffer out(stream);
  const bool floats = mesh.floatsSuffice();
  putHeader(out, mesh, "binary_little_endian", floats ? "float" : "double");
  if (floats) {
    putVertices<float>(out, mesh);
  } else {
    putVertices<double>(out, mesh);
  }
  mesh.forEachFace([&out](const std::array<int, 3>& corners) {
    char* bytes = out.room(1 + 3 * sizeof(int));
    *bytes++ = 3;
    for (const int corner : corners) bytes = storeLittleEndian(bytes, corner);
    out.wrote(bytes);
  });
}

void writePlyAscii(std::FILE* stream, const MeshToWrite& mesh) {
  OutputBuffer out(stream);
  putHeader(out, mesh, "ascii", "double");
  const PositionText positions(mesh);
  for (int i = 0; i < mesh.vertexCount(); ++i) {
    out.wrote(positions.write(out.room(PositionText::most), i));
    for (const VertexField& field : mesh.fields) {
      char* text = out.room(maxToleranceText + 1);
      *text++ = ' ';
      out.wrote(writeField(text, field, mesh.sourceOf(i)));
    }
    out.put("\n");
  }
  putTextFaces(out, mesh, {.before = "3 ", .first = 0});
}

}  // namespace gravlin
