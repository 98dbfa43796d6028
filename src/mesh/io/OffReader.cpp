#include "mesh/io/OffReader.h"

#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "mesh/io/FaceFans.h"
#include "mesh/io/ImportError.h"
#include "mesh/io/NumberWords.h"
#include "numeric/AvailableMemory.h"

namespace gravlin {
namespace {

/// What the first word of a file says.
struct OffKeyword {
  bool known = false;
  bool moreNumbers = false;     ///< vertices have more than their position
  bool otherDimension = false;  ///< vertices have not three coordinates
};

bool takePrefix(std::string_view& word, std::string_view prefix) {
  if (!word.starts_with(prefix)) return false;
  word.remove_prefix(prefix.size());
  return true;
}

OffKeyword keywordOf(std::string_view word) {
  OffKeyword keyword;
  for (const char* prefix : {"ST", "C", "N"}) keyword.moreNumbers |= takePrefix(word, prefix);
  for (const char* prefix : {"4", "n"}) keyword.otherDimension |= takePrefix(word, prefix);
  keyword.known = word == "OFF";
  return keyword;
}

class OffReader {
 public:
  explicit OffReader(std::string_view wholeText)
      : text(wholeText), current(text.data()), end(text.data() + text.size()) {}

  bool looksRight() { return goToWord() && keywordOf(takeWord()).known; }

  ImportedMesh read() {
    readKeyword();
    const std::int64_t vertexCount = readCount("the number of vertices");
    const char* const behindFirst = current;
    const std::int64_t faceCount = readCount("the number of faces");
    // The number of edges is often missing where counts stand on one line.
    const bool oneLine = std::find(behindFirst, current, '\n') == current;
    if (oneLine) {
      skipLine();
    } else {
      readCount("the number of edges");
    }
    requireRoom(vertexCount, faceCount);
    readVertices(vertexCount, faceCount);
    readFaces(vertexCount, faceCount);
    goToWord();
    mesh.warnings.bytesBehind = end - current;
    return std::move(mesh);
  }

 private:
  void readKeyword() {
    if (!goToWord()) failAtEnd("the word OFF");
    keyword = keywordOf(takeWord());
    if (!keyword.known) fail("the file does not begin with OFF");
    if (keyword.otherDimension) fail("only OFF files of three dimensions are read");
    if (goToWord() && *current == 'B') fail("binary OFF files are not read");
  }

  std::int64_t readCount(const char* what) {
    if (!goToWord()) failAtEnd(what);
    std::int64_t count = 0;
    const char* const behind = readInteger(current, end, count);
    if (behind == nullptr || count < 0) fail(std::string(what) + " is no count");
    current = behind;
    return count;
  }

  /// Before anything is allocated. A number takes a digit and something that ends it, but for the
  /// last one; a face may be nothing but a count.
  void requireRoom(std::int64_t vertexCount, std::int64_t faceCount) const {
    const std::int64_t numbers = (end - current + 1) / 2;
    if (vertexCount > numbers / 3 || faceCount > numbers - 3 * vertexCount) {
      throw ImportError("it announces " + std::to_string(vertexCount) + " vertices and " +
                        std::to_string(faceCount) + " faces, but is too short for them");
    }
    if (std::max(vertexCount, faceCount) > maxArrayEntries / 3) {
      throw std::length_error("it has more than can be held");
    }
    requireMemory(3 * (sizeof(double) * static_cast<std::uint64_t>(vertexCount) +
                       sizeof(int) * static_cast<std::uint64_t>(faceCount)));
  }

  void readVertices(std::int64_t vertexCount, std::int64_t faceCount) {
    mesh.positions.resize(3 * static_cast<std::size_t>(vertexCount));
    bool lineEach = keyword.moreNumbers;
    double* p = mesh.positions.data();
    for (std::int64_t i = 0; i < vertexCount; ++i) {
      for (int axis = 0; axis < 3; ++axis) *p++ = readNumber(i, vertexCount);
      if (i == 0 && !lineEach && lineGoesOn()) lineEach = linesLeft() >= vertexCount + faceCount;
      if (lineEach) skipLine();
    }
  }

  void readFaces(std::int64_t vertexCount, std::int64_t faceCount) {
    FaceFans fans(mesh, vertexCount, static_cast<std::size_t>(faceCount));
    std::vector<std::int64_t> polygon;
    for (std::int64_t f = 0; f < faceCount; ++f) {
      const std::int64_t corners = readFaceNumber(f, faceCount);
      if (corners < 0) fail(placeText("face", f, faceCount) + " has a negative number of corners");
      if (corners == 3) {
        const std::int64_t a = readFaceNumber(f, faceCount);
        const std::int64_t b = readFaceNumber(f, faceCount);
        fans.addTriangle(a, b, readFaceNumber(f, faceCount));
      } else {
        polygon.clear();
        for (std::int64_t k = 0; k < corners; ++k) polygon.push_back(readFaceNumber(f, faceCount));
        fans.add(polygon);
      }
      skipLine();  // the colour
    }
    fans.finish();
  }

  static std::string placeText(const char* noun, std::int64_t i, std::int64_t count) {
    return std::string(noun) + " " + std::to_string(i + 1) + " of " + std::to_string(count);
  }

  double readNumber(std::int64_t i, std::int64_t count) {
    if (!goToWord()) failAtEnd(placeText("vertex", i, count));
    double value = 0.0;
    const char* const behind = readDouble(current, end, value);
    if (behind == nullptr) fail(placeText("vertex", i, count) + " needs three numbers");
    current = behind;
    return value;
  }

  std::int64_t readFaceNumber(std::int64_t f, std::int64_t count) {
    if (!goToWord()) failAtEnd(placeText("face", f, count));
    std::int64_t value = 0;
    const char* const behind = readInteger(current, end, value);
    if (behind == nullptr) fail(placeText("face", f, count) + " could not be read");
    current = behind;
    return value;
  }

  // --- Words and lines ---

  /// Goes over blanks, lines and comments; false at the end of the text.
  bool goToWord() {
    while (true) {
      while (isSpaceCharacter(*current)) ++current;
      if (*current != '#') return current != end;
      skipLine();
    }
  }

  std::string_view takeWord() {
    const char* const begin = current;
    while (current != end && !isSpaceCharacter(*current)) ++current;
    return {begin, static_cast<std::size_t>(current - begin)};
  }

  void skipLine() { current = std::find(current, end, '\n'); }

  bool lineGoesOn() const {
    const char* c = current;
    while (isSpaceCharacter(*c) && *c != '\n') ++c;
    return c != end && *c != '\n' && *c != '#';
  }

  /// Lines that are left with something on them, this one included.
  std::int64_t linesLeft() const {
    std::int64_t lines = 1;
    const char* c = std::find(current, end, '\n');
    while (c != end) {
      while (isSpaceCharacter(*c)) ++c;
      if (c != end && *c != '#') ++lines;
      c = std::find(c, end, '\n');
    }
    return lines;
  }

  [[noreturn]] void fail(const std::string& reason) const {
    throw errorInLine(text, static_cast<std::size_t>(current - text.data()), reason);
  }

  [[noreturn]] void failAtEnd(const std::string& where) const {
    throw errorInLine(text, text.size(), "the file ends in " + where);
  }

  std::string_view text;
  const char* current;
  const char* end;
  OffKeyword keyword;
  ImportedMesh mesh;
};

}  // namespace

bool looksLikeOff(std::string_view text) {
  return OffReader(text).looksRight();
}

ImportedMesh importOff(std::string_view text) {
  return OffReader(text).read();
}

}  // namespace gravlin
