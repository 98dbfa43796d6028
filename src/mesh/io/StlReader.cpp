#include "mesh/io/StlReader.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include "mesh/io/FaceFans.h"
#include "mesh/io/ImportError.h"
#include "mesh/io/LittleEndian.h"
#include "mesh/io/NumberWords.h"
#include "mesh/io/PositionIndex.h"
#include "numeric/AvailableMemory.h"

namespace gravlin {
namespace {

constexpr std::size_t headerSize = 80;
constexpr std::size_t bodyBegin = 84;     // behind the number of triangles
constexpr std::size_t triangleSize = 50;  // normal, three corners, two bytes of attributes
constexpr std::size_t cornersBegin = 12;  // behind the normal

std::uint64_t announcedTriangles(std::string_view text) {
  return loadLittleEndian<std::uint32_t>(text.data() + headerSize);
}

bool hasBinarySize(std::string_view text) {
  return text.size() >= bodyBegin &&
         text.size() == bodyBegin + triangleSize * announcedTriangles(text);
}

bool equalIgnoringCase(std::string_view word, std::string_view lower) {
  return std::equal(word.begin(), word.end(), lower.begin(), lower.end(), [](char c, char l) {
    return (c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c) == l;
  });
}

bool beginsWithSolid(std::string_view text) {
  constexpr std::string_view solid = "solid";
  while (!text.empty() && isSpaceCharacter(text.front())) text.remove_prefix(1);
  return equalIgnoringCase(text.substr(0, solid.size()), solid) &&
         (text.size() == solid.size() || isSpaceCharacter(text[solid.size()]));
}

/// A header of 80 bytes is filled up with zeros, and there are some in nearly every coordinate.
bool looksBinary(std::string_view text) {
  constexpr std::size_t looked = 1024;
  return text.substr(0, looked).find('\0') != std::string_view::npos;
}

/// A closed surface has half as many vertices as triangles.
std::size_t expectedVertices(std::uint64_t triangles) {
  return static_cast<std::size_t>(triangles / 2 + 2);
}

void requireMemoryFor(std::uint64_t triangles) {
  // Corners, and of half as many vertices positions and places in the index.
  constexpr std::uint64_t bytesEach = 3 * sizeof(int) + (3 * sizeof(double) + 32) / 2;
  requireMemory(bytesEach * triangles);
}

ImportedMesh importBinary(std::string_view text) {
  if (text.size() < bodyBegin) {
    throw errorAtByte(text.size(), "the file ends before the number of triangles");
  }
  const std::uint64_t triangles = announcedTriangles(text);
  if (triangles > (text.size() - bodyBegin) / triangleSize) {
    throw errorAtByte(text.size(),
                      "the file ends in triangle " +
                          std::to_string((text.size() - bodyBegin) / triangleSize + 1) + " of " +
                          std::to_string(triangles));
  }
  if (triangles > maxArrayEntries / 3) throw std::length_error("it has more than can be held");
  requireMemoryFor(triangles);
  ImportedMesh mesh;
  mesh.faces.resize(3 * triangles);
  PositionIndex index(mesh.positions, expectedVertices(triangles));
  const char* bytes = text.data() + bodyBegin;
  for (std::size_t f = 0; f < triangles; ++f, bytes += triangleSize) {
    for (std::size_t k = 0; k < 3; ++k) {
      const char* const p = bytes + cornersBegin + 12 * k;
      mesh.faces[3 * f + k] = index.indexOf(static_cast<double>(loadLittleEndian<float>(p)),
                                            static_cast<double>(loadLittleEndian<float>(p + 4)),
                                            static_cast<double>(loadLittleEndian<float>(p + 8)));
    }
  }
  const std::size_t end = bodyBegin + triangleSize * triangles;
  mesh.warnings.bytesBehind = static_cast<std::int64_t>(text.size() - end);
  return mesh;
}

/// solid NAME, facets with one loop of vertices each, endsolid; more than one solid may follow.
class AsciiStl {
 public:
  explicit AsciiStl(std::string_view wholeText)
      : text(wholeText), current(text.data()), end(text.data() + text.size()) {}

  ImportedMesh read() {
    // Characters that a triangle takes.
    constexpr std::size_t leastTriangle = 40;
    constexpr std::size_t usualTriangle = 200;
    const std::size_t most = text.size() / leastTriangle;
    requireMemoryFor(most);
    PositionIndex index(mesh.positions, expectedVertices(most) / 4);
    FaceFans fans(mesh, std::numeric_limits<int>::max(), text.size() / usualTriangle);
    while (goToWord()) takeStatement(takeWord(), index, fans);
    fans.finish();
    if (inFacet) throw errorInLine(text, text.size(), "the file ends in a facet");
    mesh.warnings.endMissing = inSolid;
    return std::move(mesh);
  }

 private:
  void takeStatement(std::string_view word, PositionIndex& index, FaceFans& fans) {
    const auto is = [word](std::string_view lower) { return equalIgnoringCase(word, lower); };
    if (is("vertex") && inFacet) {
      takeVertex(index);
    } else if (is("facet") && inSolid && !inFacet) {
      inFacet = true;
      corners.clear();
    } else if (is("normal") && inFacet) {
      for (int axis = 0; axis < 3 && goToWord(); ++axis) takeWord();
    } else if (is("endfacet") && inFacet) {
      inFacet = false;
      fans.add(corners);
    } else if (is("solid") && !inSolid) {
      inSolid = true;
      skipLine();  // the name
    } else if (is("endsolid") && inSolid && !inFacet) {
      inSolid = false;
      skipLine();
    } else if (!((is("outer") || is("loop") || is("endloop")) && inFacet)) {
      fail(word.data(), quotedWord(word) + " does not belong here");
    }
  }

  void takeVertex(PositionIndex& index) {
    std::array<double, 3> p = {};
    for (double& coordinate : p) {
      if (!goToWord()) throw errorInLine(text, text.size(), "the file ends in a vertex");
      const char* const behind = readDouble(current, end, coordinate);
      if (behind == nullptr) fail(current, "a vertex needs three numbers");
      current = behind;
    }
    corners.push_back(index.indexOf(p[0], p[1], p[2]));
  }

  bool goToWord() {
    while (isSpaceCharacter(*current)) ++current;
    return current != end;
  }

  std::string_view takeWord() {
    const char* const begin = current;
    while (current != end && !isSpaceCharacter(*current)) ++current;
    return {begin, static_cast<std::size_t>(current - begin)};
  }

  void skipLine() {
    while (current != end && *current != '\n') ++current;
  }

  [[noreturn]] void fail(const char* place, const std::string& reason) const {
    throw errorInLine(text, static_cast<std::size_t>(place - text.data()), reason);
  }

  std::string_view text;
  const char* current;
  const char* end;
  ImportedMesh mesh;
  bool inSolid = false;
  bool inFacet = false;
  std::vector<std::int64_t> corners;  ///< of the facet that is being read
};

}  // namespace

bool looksLikeStl(std::string_view text) {
  return hasBinarySize(text) || beginsWithSolid(text);
}

ImportedMesh importStl(std::string_view text) {
  const bool ascii = !hasBinarySize(text) && beginsWithSolid(text) && !looksBinary(text);
  return ascii ? AsciiStl(text).read() : importBinary(text);
}

}  // namespace gravlin
