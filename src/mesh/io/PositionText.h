#pragma once

#include <array>
#include <cstddef>
#include <cstring>
#include <string_view>

#include "mesh/io/MeshToWrite.h"
#include "mesh/io/NumberText.h"
#include "mesh/io/OutputBuffer.h"
#include "mesh/io/ToleranceText.h"

namespace gravlin {

/// Writes positions with as few digits as give every one of them back.
class PositionText {
 public:
  explicit PositionText(const MeshToWrite& toWrite)
      : mesh(toWrite), text(toWrite.resolution() / 3.0) {}

  static constexpr std::size_t most = 3 * (static_cast<std::size_t>(maxToleranceText) + 1);

  /// "x y z", of a vertex by its new number. Returns the end; needs `most` characters of room.
  char* write(char* out, int vertex) const {
    const std::array<double, 3> x = mesh.position(vertex);
    out = text.write(out, x[0]);
    *out++ = ' ';
    out = text.write(out, x[1]);
    *out++ = ' ';
    return text.write(out, x[2]);
  }

 private:
  const MeshToWrite& mesh;
  ToleranceText text;
};

/// How a text says a face.
struct FaceWords {
  std::string_view before;  ///< "3 "
  int first;                ///< the number of the first vertex
};

/// A line for each face.
inline void putTextFaces(OutputBuffer& out, const MeshToWrite& mesh, const FaceWords& words) {
  mesh.forEachFace([&](const std::array<int, 3>& corners) {
    char* text =
        out.room(words.before.size() + 3 * (static_cast<std::size_t>(maxNumberLength) + 1));
    std::memcpy(text, words.before.data(), words.before.size());
    text = writeInt(text + words.before.size(), corners[0] + words.first);
    *text++ = ' ';
    text = writeInt(text, corners[1] + words.first);
    *text++ = ' ';
    text = writeInt(text, corners[2] + words.first);
    *text++ = '\n';
    out.wrote(text);
  });
}

}  // namespace gravlin
