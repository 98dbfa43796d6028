#include "mesh/io/FaceRecords.h"

#include <algorithm>
#include <cmath>

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
    const std::size_t words = wordsBehind(record);
    if (words == 0) return false;
    if (static_cast<float>(words) == record.corners - 3.0F) return true;
  }
  if (!polygons) polygons = readAsPolygons(record);
  return *polygons;
}

// All faces of a large file may come this way, so each is looked at once, character by character.

/// Whether the record begins a line and does not go on in the next one.
bool FaceRecords::standsOnItsLine(const FaceRecord& record) const {
  const char* c = text.data() + record.begin;
  const char* const end = text.data() + record.end;
  bool beginsLine = false;
  for (; c != end && (isBlank(*c) || isLineEnd(*c)); ++c) beginsLine |= isLineEnd(*c);
  return beginsLine && std::find_if(c, end, isLineEnd) == end;
}

/// How many words follow on the line.
std::size_t FaceRecords::wordsBehind(const FaceRecord& record) const {
  const char* c = text.data() + record.end;
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
  return true;
}

}  // namespace gravlin
