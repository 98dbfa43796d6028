#include "mesh/io/ObjReader.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "mesh/io/FaceFans.h"
#include "mesh/io/ImportError.h"
#include "mesh/io/NumberWords.h"
#include "numeric/AvailableMemory.h"
#include "numeric/Index.h"

namespace gravlin {
namespace {

/// The text of a statement; behind it stands the end of its last line or of the file.
struct Statement {
  const char* begin;  ///< at its keyword; at `end` in an empty line
  const char* end;
  bool joined;  ///< it goes on over more than one line
};

bool isBlankOnLine(char c) {
  return isSpaceCharacter(c) && c != '\n';
}

bool endsWithBackslash(const char* begin, const char* end) {
  if (end != begin && end[-1] == '\r') --end;
  return end != begin && end[-1] == '\\';
}

/// Goes through the statements of a text.
class Statements {
 public:
  explicit Statements(std::string_view text)
      : current(text.data()), textEnd(text.data() + text.size()) {}

  std::optional<Statement> next() {
    if (current == textEnd) return std::nullopt;
    Statement statement = {current, lineEnd(current), false};
    while (isBlankOnLine(*statement.begin)) ++statement.begin;
    if (*statement.begin != '#') {
      while (endsWithBackslash(statement.begin, statement.end) && statement.end != textEnd) {
        statement.joined = true;
        statement.end = lineEnd(statement.end + 1);
      }
    }
    current = statement.end == textEnd ? textEnd : statement.end + 1;
    statement.begin = std::min(statement.begin, statement.end);
    return statement;
  }

 private:
  const char* lineEnd(const char* from) const {
    const void* end = std::memchr(from, '\n', static_cast<std::size_t>(textEnd - from));
    return end == nullptr ? textEnd : static_cast<const char*>(end);
  }

  const char* current;
  const char* textEnd;
};

bool isVertex(const Statement& statement) {
  return statement.begin[0] == 'v' && isSpaceCharacter(statement.begin[1]);
}

bool isFace(const Statement& statement) {
  return statement.begin[0] == 'f' && isSpaceCharacter(statement.begin[1]);
}

/// A statement of several lines as one; the backslashes become blanks.
std::string joinedText(const Statement& statement) {
  std::string text(statement.begin, statement.end);
  for (std::size_t k = 0; k < text.size(); ++k) {
    if (text[k] != '\n') continue;
    const std::size_t backslash = text[k - 1] == '\r' ? k - 2 : k - 1;
    text[backslash] = text[k] = ' ';
  }
  return text;
}

class ObjReader {
 public:
  explicit ObjReader(std::string_view wholeText) : text(wholeText) {}

  ImportedMesh read() {
    count();
    mesh.positions.resize(3 * vertexCount);
    FaceFans fans(mesh, static_cast<std::int64_t>(vertexCount), faceCount);
    Statements statements(text);
    while (const std::optional<Statement> statement = statements.next()) {
      if (isVertex(*statement)) {
        take(*statement, [this](const Statement& line) { takeVertex(line); });
      } else if (isFace(*statement)) {
        take(*statement, [&](const Statement& line) { takeFace(line, fans); });
      }
    }
    fans.finish();
    return std::move(mesh);
  }

 private:
  /// Vertices and faces, so that memory is taken once and faces may name vertices further down.
  void count() {
    Statements statements(text);
    while (const std::optional<Statement> statement = statements.next()) {
      vertexCount += isVertex(*statement) ? 1 : 0;
      faceCount += isFace(*statement) ? 1 : 0;
    }
    constexpr std::size_t largest = toIndex(maxArrayEntries / 3);
    if (vertexCount > largest || faceCount > largest) {
      throw std::length_error("it has more than can be held");
    }
    requireMemory(3 * (sizeof(double) * vertexCount + sizeof(int) * faceCount));
  }

  template <class Take>
  void take(const Statement& statement, Take takeLine) {
    place = statement.begin;
    if (!statement.joined) return takeLine(statement);
    const std::string line = joinedText(statement);
    takeLine({line.c_str(), line.c_str() + line.size(), false});
  }

  void takeVertex(const Statement& line) {
    const char* c = line.begin + 1;
    double* const p = mesh.positions.data() + 3 * verticesTaken;
    for (std::size_t axis = 0; axis < 3; ++axis) {
      while (isBlankOnLine(*c)) ++c;
      if (c >= line.end || *c == '#') fail("a vertex needs three numbers");
      const char* const behind = readDouble(c, line.end, p[axis]);
      if (behind == nullptr) failAtWord(c, line.end, "is no number");
      c = behind;
    }
    ++verticesTaken;
  }

  void takeFace(const Statement& line, FaceFans& fans) {
    const char* c = line.begin + 1;
    std::array<std::int64_t, 3> triangle;
    polygon.clear();
    std::size_t corners = 0;
    while (true) {
      while (isBlankOnLine(*c)) ++c;
      if (c >= line.end || *c == '#') break;
      std::int64_t corner = 0;
      c = readCorner(c, line.end, corner);
      if (corners < 3) {
        triangle[corners] = corner;
      } else {
        if (corners == 3) polygon.assign(triangle.begin(), triangle.end());
        polygon.push_back(corner);
      }
      ++corners;
    }
    if (corners == 3) return fans.addTriangle(triangle[0], triangle[1], triangle[2]);
    fans.add(corners < 3 ? std::span<const std::int64_t>(triangle.data(), corners)
                         : std::span<const std::int64_t>(polygon));
  }

  /// "7", "7/1", "7//1" or "7/1/1". Returns where the word ends; `corner` counts from 0.
  const char* readCorner(const char* word, const char* end, std::int64_t& corner) const {
    const char* c = readDigits(word, corner);
    if (c == nullptr) failAtWord(word, end, "is no number of a vertex");
    if (*c == '/') {
      while (c != end && (*c == '/' || *c == '-' || *c == '+' || (*c >= '0' && *c <= '9'))) ++c;
    }
    if (c != end && !isSpaceCharacter(*c)) failAtWord(word, end, "is no number of a vertex");
    corner = corner < 0 ? corner + static_cast<std::int64_t>(verticesTaken) : corner - 1;
    return c;
  }

  [[noreturn]] void fail(const std::string& reason) const {
    throw errorInLine(text, static_cast<std::size_t>(place - text.data()), reason);
  }

  [[noreturn]] void failAtWord(const char* word, const char* end, const char* reason) const {
    fail(quotedWord({word, end}) + " " + reason);
  }

  std::string_view text;
  ImportedMesh mesh;
  const char* place = nullptr;  ///< of the statement that is being read
  std::size_t vertexCount = 0;
  std::size_t faceCount = 0;  ///< statements, before polygons are cut
  std::size_t verticesTaken = 0;
  std::vector<std::int64_t> polygon;
};

constexpr std::array<std::string_view, 26> keywords = {
    "v",    "vt",     "vn",     "vp",     "f",      "l",    "p",     "o",      "g",
    "s",    "usemtl", "mtllib", "usemap", "maplib", "mg",   "deg",   "cstype", "bmat",
    "step", "curv",   "curv2",  "surf",   "parm",   "trim", "bevel", "lod"};

}  // namespace

bool looksLikeObj(std::string_view text) {
  Statements statements(text);
  while (const std::optional<Statement> statement = statements.next()) {
    if (statement->begin == statement->end || *statement->begin == '#') continue;
    const char* const behind = std::find_if(statement->begin, statement->end, isSpaceCharacter);
    const std::string_view keyword(statement->begin,
                                   static_cast<std::size_t>(behind - statement->begin));
    return std::find(keywords.begin(), keywords.end(), keyword) != keywords.end();
  }
  return false;
}

ImportedMesh importObj(std::string_view text) {
  return ObjReader(text).read();
}

}  // namespace gravlin
