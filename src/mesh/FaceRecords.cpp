#include "mesh/FaceRecords.h"

#include <cmath>

#include "mesh/Scanner.h"

namespace gravlin {
namespace {

constexpr std::string_view blanks = " \t\v\f";
constexpr std::string_view lineEnds = "\r\n";
constexpr std::string_view spaces = " \t\v\f\r\n";

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

/// Whether the record begins a line and does not go on in the next one.
bool FaceRecords::standsOnItsLine(const FaceRecord& record) const {
  const std::size_t count = text.find_first_not_of(spaces, record.begin);
  const std::string_view before = text.substr(record.begin, count - record.begin);
  const std::string_view numbers = text.substr(count, record.end - count);
  return before.find_first_of(lineEnds) != std::string_view::npos &&
         numbers.find_first_of(lineEnds) == std::string_view::npos;
}

/// How many words follow on the line.
std::size_t FaceRecords::wordsBehind(const FaceRecord& record) const {
  const std::size_t lineEnd = text.find_first_of(lineEnds, record.end);
  const std::string_view rest = text.substr(record.end, lineEnd - record.end);
  std::size_t words = 0;
  std::size_t at = rest.find_first_not_of(blanks);
  while (at != std::string_view::npos) {
    ++words;
    at = rest.find_first_not_of(blanks, rest.find_first_of(blanks, at));
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
