#include "mesh/io/StlWriter.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <string>

#include "mesh/io/LittleEndian.h"
#include "mesh/io/OutputBuffer.h"
#include "mesh/io/PositionText.h"
#include "numeric/Vec3.h"

namespace gravlin {
namespace {

Vec3 vectorOf(const std::array<double, 3>& x) {
  return {x[0], x[1], x[2]};
}

/// Unit normal of a face as floats; 0 where it has none.
std::array<float, 3> normalOf(const MeshToWrite& mesh, const std::array<int, 3>& corners) {
  const Vec3 a = vectorOf(mesh.position(corners[0]));
  const Vec3 normal =
      cross(vectorOf(mesh.position(corners[1])) - a, vectorOf(mesh.position(corners[2])) - a);
  const double size = length(normal);
  if (!(size > 0.0) || !std::isfinite(size)) return {0.0F, 0.0F, 0.0F};
  return {static_cast<float>(normal.x / size), static_cast<float>(normal.y / size),
          static_cast<float>(normal.z / size)};
}

/// 80 bytes that do not begin as an ascii file does.
std::string binaryHeader(const MeshToWrite& mesh) {
  constexpr std::size_t size = 80;
  std::string header = "binary STL";
  for (const std::string& comment : mesh.comments) {
    if (header.size() + 2 + comment.size() > size) break;
    header += ", " + comment;
  }
  header.resize(size, ' ');
  return header;
}

}  // namespace

void writeStlBinary(std::FILE* stream, const MeshToWrite& mesh) {
  OutputBuffer out(stream);
  out.put(binaryHeader(mesh));
  out.wrote(storeLittleEndian(out.room(4), static_cast<std::uint32_t>(mesh.faceCount())));
  mesh.forEachFace([&](const std::array<int, 3>& corners) {
    constexpr std::size_t triangleSize = 50;
    char* bytes = out.room(triangleSize);
    for (const float x : normalOf(mesh, corners)) bytes = storeLittleEndian(bytes, x);
    for (const int corner : corners) {
      for (const double x : mesh.position(corner)) {
        bytes = storeLittleEndian(bytes, static_cast<float>(x));
      }
    }
    out.wrote(storeLittleEndian(bytes, std::uint16_t{0}));
  });
}

void writeStlAscii(std::FILE* stream, const MeshToWrite& mesh) {
  OutputBuffer out(stream);
  out.put("solid mesh\n");
  const PositionText positions(mesh);
  mesh.forEachFace([&](const std::array<int, 3>& corners) {
    out.put("facet normal");
    for (const float x : normalOf(mesh, corners)) {
      char* text = out.room(maxToleranceText + 1);
      *text++ = ' ';
      out.wrote(std::to_chars(text, text + maxToleranceText, x).ptr);
    }
    out.put("\nouter loop\n");
    for (const int corner : corners) {
      out.put("vertex ");
      out.wrote(positions.write(out.room(PositionText::most), corner));
      out.put("\n");
    }
    out.put("endloop\nendfacet\n");
  });
  out.put("endsolid mesh\n");
}

}  // namespace gravlin
