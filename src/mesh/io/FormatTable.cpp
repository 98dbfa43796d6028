#include "mesh/io/FormatTable.h"

#include <algorithm>
#include <array>

#include "mesh/io/ObjReader.h"
#include "mesh/io/ObjWriter.h"
#include "mesh/io/OffReader.h"
#include "mesh/io/OffWriter.h"
#include "mesh/io/PlyHeader.h"
#include "mesh/io/PlyReader.h"
#include "mesh/io/PlyWriter.h"
#include "mesh/io/RecordReader.h"
#include "mesh/io/RecordWriter.h"
#include "mesh/io/StlReader.h"
#include "mesh/io/StlWriter.h"

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

constexpr std::array<StandardFormat, 4> standard = {{
    {.extension = "ply",
     .name = "Stanford PLY",
     .holds = "positions, faces, numbers of vertices",
     .looksRight = looksLikePly,
     .import = importPly,
     .write = writePlyBinary,
     .writeAscii = writePlyAscii,
     .hasFields = true},
    {.extension = "off",
     .name = "OFF",
     .holds = "positions, faces",
     .looksRight = looksLikeOff,
     .import = importOff,
     .write = writeOff},
    {.extension = "stl",
     .name = "STL",
     .holds = "corners of faces; in binary files in single precision",
     .looksRight = looksLikeStl,
     .import = importStl,
     .write = writeStlBinary,
     .writeAscii = writeStlAscii,
     .hasIndices = false},
    {.extension = "obj",
     .name = "Wavefront OBJ",
     .holds = "positions, faces",
     .looksRight = looksLikeObj,
     .import = importObj,
     .write = writeObj},
}};

bool equalIgnoringCase(std::string_view a, std::string_view b) {
  const auto small = [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
  };
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [small](char c, char d) { return small(c) == small(d); });
}

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

std::span<const StandardFormat> standardFormats() {
  return standard;
}

const StandardFormat* standardFormat(std::string_view text, std::string_view extension) {
  for (const StandardFormat& format : standard) {
    if (format.looksRight(text)) return &format;
  }
  return standardFormatNamed(extension);
}

const StandardFormat* standardFormatNamed(std::string_view extension) {
  for (const StandardFormat& format : standard) {
    if (equalIgnoringCase(format.extension, extension)) return &format;
  }
  return nullptr;
}

}  // namespace gravlin
