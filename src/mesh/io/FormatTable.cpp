#include "mesh/io/FormatTable.h"

#include <algorithm>
#include <array>

#include "mesh/io/RecordReader.h"
#include "mesh/io/RecordWriter.h"

namespace gravlin {
namespace {

// "obj" opens as an empty mesh.
constexpr std::array<FileFormat, 5> own = {{
    {"data", "positions", readData},
    {"ply2", "positions, faces", readPly2, writePly2},
    {"ply", "positions, faces", readPly},
    {"obj", "nothing"},
    {"plyR", "positions, faces, ridge and valley marks", readPlyR, writePlyR},
}};

}  // namespace

std::span<const FileFormat> ownFormats() {
  return own;
}

const FileFormat* ownFormat(std::string_view extension) {
  const auto* row = std::find_if(own.begin(), own.end(), [extension](const FileFormat& format) {
    return format.extension == extension;
  });
  return row == own.end() ? nullptr : row;
}

}  // namespace gravlin
