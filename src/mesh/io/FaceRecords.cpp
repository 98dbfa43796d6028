#include "mesh/io/FaceRecords.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "mesh/io/Scanner.h"

namespace gravlin {
namespace {

bool isLineEnd(char c) {
  return c == '\n' || c == '\r';
}

bool isBlank(char c) {
  return c == ' ' || c == '\t' || c == '\v' || c == '\f';
}

}  // namespace

bool FaceRecords::hasMoreCorners(const FaceRecord& record) {
  if (standsOnItsLine(record)) {
    const std::size_t words = wordsOnLine(record.end);
    if (words == 0 && !mayGoOnInNextLine(record)) return false;
    if (words > 0 && static_cast<float>(words) == record.corners - 3.0F) return true;
  }
  if (!polygons) polygons = readAsPolygons(record);
  return *polygons;
}

// All faces of a large file may come this way, so each is looked at once or twice, character by
// character.

/// Whether the record begins a line and does not go on in the next one.
bool FaceRecords::standsOnItsLine(const FaceRecord& record) const {
  const char* c = text.data() + record.begin;
  const char* const end = text.data() + record.end;
  bool beginsLine = false;
  for (; c != end && (isBlank(*c) || isLineEnd(*c)); ++c) beginsLine |= isLineEnd(*c);
  return beginsLine && std::find_if(c, end, isLineEnd) == end;
}

/// Whether the next line with anything on it has no more than the missing corners.
bool FaceRecords::mayGoOnInNextLine(const FaceRecord& record) const {
  const char* const end = text.data() + text.size();
  const char* const next = std::find_if(text.data() + record.end, end,
                                        [](char c) { return !isBlank(c) && !isLineEnd(c); });
  const std::size_t words = wordsOnLine(static_cast<std::size_t>(next - text.data()));
  return words > 0 && static_cast<float>(words) <= record.corners - 3.0F;
}

/// How many words follow on a line.
std::size_t FaceRecords::wordsOnLine(std::size_t begin) const {
  const char* c = text.data() + begin;
  const char* const end = text.data() + text.size();
  std::size_t words = 0;
  bool inWord = false;
  for (; c != end && !isLineEnd(*c); ++c) {
    if (!isBlank(*c) && !inWord) ++words;
    inWord = !isBlank(*c);
  }
  return words;
}

bool FaceRecords::readAsPolygons(const FaceRecord& first) const {
  Scanner scanner(text.substr(first.begin));
  for (int f = 0; f < first.facesLeft; ++f) {
    const std::optional<float> corners = scanner.scanFloat();
    if (!corners || !(*corners >= 3.0F) || *corners != std::floor(*corners)) return false;
    for (float k = 0.0F; k < *corners; ++k) {
      const std::optional<int> corner = scanner.scanInt();
      if (!corner || *corner < 0 || *corner >= vertexCount) return false;
    }
  }
  return behindFaces == BehindFaces::Nothing || readMarks(scanner);
}

/// Whether the rest are marks and nothing else.
bool FaceRecords::readMarks(Scanner& scanner) const {
  const std::optional<int> ridges = scanner.scanInt();
  const std::optional<int> valleys = scanner.scanInt();
  if (!ridges || !valleys || *ridges < 0 || *valleys < 0) return false;
  const std::int64_t marks = std::int64_t{*ridges} + *valleys;
  for (std::int64_t k = 0; k < marks; ++k) {
    const std::optional<int> vertex = scanner.scanInt();
    if (!vertex || *vertex < 0 || *vertex >= vertexCount) return false;
  }
  return !scanner.scanInt() && scanner.atEnd();
}

}  // namespace gravlin
