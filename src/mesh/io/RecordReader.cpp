#include "mesh/io/RecordReader.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "mesh/io/CountedNoun.h"
#include "mesh/io/FaceRecords.h"
#include "mesh/io/Scanner.h"
#include "numeric/AvailableMemory.h"
#include "numeric/Index.h"

namespace gravlin {
namespace {

constexpr Noun ridgeMarkNoun = {"ridge mark", "ridge marks"};
constexpr Noun valleyMarkNoun = {"valley mark", "valley marks"};

/// A count of things as it stands in a file.
struct WrittenCount {
  int value = 0;       ///< what the scanner makes of it
  bool wraps = false;  ///< it does not fit into an int, and `value` is only its lowest bits
  std::string text;    ///< its digits, of too many only the first
};

/// Of a number that the scanner has consumed, with the blanks before it.
WrittenCount writtenCount(std::string_view consumed, int value) {
  constexpr std::size_t longestText = 24;
  const std::size_t start = consumed.find_first_of("-0123456789");
  if (start == std::string_view::npos) return {.value = value, .text = std::to_string(value)};
  const std::string_view digits = consumed.substr(start);
  int whole = 0;
  const std::errc error = std::from_chars(digits.data(), digits.data() + digits.size(), whole).ec;
  std::string text(digits.substr(0, longestText));
  if (digits.size() > longestText) text += "...";
  return {
      .value = value, .wraps = error == std::errc::result_out_of_range, .text = std::move(text)};
}

/// A small file may hold huge counts.
void requireMemoryFor(int vertexCount, int faceCount) {
  // Positions or corners, rings, adjacency and normals of one vertex or one face together.
  constexpr std::uint64_t bytesEach = 64;
  requireMemory(bytesEach *
                (static_cast<std::uint64_t>(vertexCount) + static_cast<std::uint64_t>(faceCount)));
}

/// Takes the numbers of one file from its text into a mesh and keeps account of what was odd.
class RecordReader {
 public:
  RecordReader(std::string_view fileText, TriangleMesh& destination)
      : text(fileText), scanner(fileText), mesh(destination) {}

  void readData();
  void readPly();
  void readPly2();
  void readPlyR();

  std::vector<std::string> oddities;
  ReadExtent extent() const {
    if (!flawed) return ReadExtent::Whole;
    return started ? ReadExtent::Partial : ReadExtent::Nothing;
  }

 private:
  struct Counts {
    int vertices = 0;
    int faces = 0;
  };
  void readShape(BehindFaces behind);
  Counts readCounts(int numbersPerVertex);
  void requireRoomFor(const Counts& counts, int numbersPerVertex) const;
  WrittenCount readWrittenCount(const Noun& noun);
  int readCount(const Noun& noun);
  int usable(const WrittenCount& count, const Noun& noun);
  int readArrayCount(const Noun& noun);
  void readVertices(int count);
  void readVerticesOfFiveNumbers(int count);
  void readFaces(int count, BehindFaces behind);
  void readMarks(const Noun& noun, int count, std::vector<int>& marks);

  template <class ReadRecord>
  void forEachRecord(const Noun& noun, int count, ReadRecord readRecord);
  int takeInt();
  float takeFloat();
  void noteFailureIn(const std::string& record);

  std::string_view text;
  Scanner scanner;
  TriangleMesh& mesh;
  bool failed = false;  ///< a number of the current record could not be read
  bool failureNoted = false;
  bool started = false;  ///< a first number has been read
  bool flawed = false;   ///< something that the file was to hold has not been read
  int ignoredMarks = 0;
};

// --- Formats ---

void RecordReader::readData() {
  const int count = readArrayCount(vertexNoun);
  requireRoomFor({.vertices = count}, 3);
  readVertices(count);
}

void RecordReader::readPly() {
  const Counts counts = readCounts(5);
  readVerticesOfFiveNumbers(counts.vertices);
  readFaces(counts.faces, BehindFaces::Nothing);
}

void RecordReader::readPly2() {
  readShape(BehindFaces::Nothing);
}

void RecordReader::readPlyR() {
  readShape(BehindFaces::Marks);
  const int ridgeMarkCount = readCount(ridgeMarkNoun);
  const int valleyMarkCount = readCount(valleyMarkNoun);
  readMarks(ridgeMarkNoun, ridgeMarkCount, mesh.ridgeMarks);
  readMarks(valleyMarkNoun, valleyMarkCount, mesh.valleyMarks);
  if (ignoredMarks == 0) return;
  oddities.push_back(counted(ignoredMarks, {"mark", "marks"}) + " out of range ignored");
}

// --- Parts of formats ---

/// All of a ply2 file, the beginning of a plyR file.
void RecordReader::readShape(BehindFaces behind) {
  const Counts counts = readCounts(3);
  readVertices(counts.vertices);
  readFaces(counts.faces, behind);
}

RecordReader::Counts RecordReader::readCounts(int numbersPerVertex) {
  Counts counts;
  counts.vertices = readArrayCount(vertexNoun);
  counts.faces = readArrayCount(faceNoun);
  requireRoomFor(counts, numbersPerVertex);
  return counts;
}

/// Lets a few counts at the beginning of a small file not take all memory, be there as much of it
/// as there may: a number takes a digit and something that ends it.
void RecordReader::requireRoomFor(const Counts& counts, int numbersPerVertex) const {
  constexpr std::uint64_t harmless = std::uint64_t{64} << 20;
  constexpr std::uint64_t bytesOfRecord = 3 * sizeof(float);  // or of three corners
  constexpr std::uint64_t numbersPerFace = 4;
  const auto vertices = static_cast<std::uint64_t>(counts.vertices);
  const auto faces = static_cast<std::uint64_t>(counts.faces);
  const std::uint64_t numbers =
      static_cast<std::uint64_t>(numbersPerVertex) * vertices + numbersPerFace * faces;
  const std::uint64_t left = text.size() - scanner.position();
  if (left < 2 * numbers && bytesOfRecord * (vertices + faces) > harmless) {
    const std::string faceText = counts.faces == 0 ? "" : " and " + counted(counts.faces, faceNoun);
    throw std::length_error("it announces " + counted(counts.vertices, vertexNoun) + faceText +
                            ", but only " + std::to_string(left) +
                            (left == 1 ? " byte follows" : " bytes follow"));
  }
  requireMemoryFor(counts.vertices, counts.faces);
}

WrittenCount RecordReader::readWrittenCount(const Noun& noun) {
  const std::size_t before = scanner.position();
  failed = false;
  const int value = takeInt();
  if (failed) noteFailureIn(std::string("the number of ") + noun.many);
  started |= !failed;
  return writtenCount(scanner.consumedSince(before), value);
}

/// The count to go on with.
int RecordReader::usable(const WrittenCount& count, const Noun& noun) {
  if (count.value >= 0 && !count.wraps) return count.value;
  const int used = count.text.starts_with('-') ? 0 : std::max(count.value, 0);
  oddities.push_back(count.text + " " + noun.many + " taken as " +
                     (used == 0 ? "none" : std::to_string(used)));
  flawed = true;
  return used;
}

int RecordReader::readCount(const Noun& noun) {
  return usable(readWrittenCount(noun), noun);
}

/// A count of what takes three entries of an array.
int RecordReader::readArrayCount(const Noun& noun) {
  constexpr int largest = maxArrayEntries / 3;
  const WrittenCount count = readWrittenCount(noun);
  const bool tooLarge = count.wraps ? !count.text.starts_with('-') : count.value > largest;
  if (!tooLarge) return usable(count, noun);
  throw std::length_error("it asks for " + count.text + " " + noun.many + " and " +
                          std::to_string(largest) + " is the most that can be held");
}

void RecordReader::readVertices(int count) {
  mesh.setVertexCount(count);
  forEachRecord(vertexNoun, count, [this](int i) {
    float* p = mesh.vertices.data() + 3 * toIndex(i);
    p[0] = takeFloat();
    p[1] = takeFloat();
    p[2] = takeFloat();
  });
}

/// x z y and two numbers of no use.
void RecordReader::readVerticesOfFiveNumbers(int count) {
  mesh.setVertexCount(count);
  forEachRecord(vertexNoun, count, [this](int i) {
    float* p = mesh.vertices.data() + 3 * toIndex(i);
    p[0] = takeFloat();
    p[2] = takeFloat();
    p[1] = takeFloat();
    takeFloat();
    takeFloat();
  });
}

void RecordReader::readFaces(int count, BehindFaces behind) {
  mesh.setFaceCount(count);
  int largerPolygons = 0;
  FaceRecords records(text, mesh.vertexCount, behind);
  forEachRecord(faceNoun, count, [&](int f) {
    int* c = mesh.faces.data() + 3 * toIndex(f);
    const std::size_t begin = scanner.position();
    const float corners = takeFloat();  // every face is taken as a triangle all the same
    c[0] = takeInt();
    c[1] = takeInt();
    c[2] = takeInt();
    if (!(corners > 3.0F) || failed) return;
    if (records.hasMoreCorners({begin, scanner.position(), corners, count - f})) ++largerPolygons;
  });
  if (largerPolygons == 0) return;
  flawed = true;
  oddities.push_back(counted(largerPolygons, faceNoun) + " of more than 3 corners taken as " +
                     (largerPolygons == 1 ? "a triangle" : "triangles"));
}

void RecordReader::readMarks(const Noun& noun, int count, std::vector<int>& marks) {
  marks.assign(toIndex(mesh.vertexCount), 0);
  forEachRecord(noun, count, [&](int) {
    const int vertex = takeInt();
    if (vertex >= 0 && vertex < mesh.vertexCount) {
      marks[toIndex(vertex)] = 1;
    } else {
      ++ignoredMarks;
    }
  });
}

// --- Numbers ---

/// Calls readRecord(0), readRecord(1) and so on. A record that leaves the scanner where it was
/// found nothing to read, nor would any further one: their zeros are there already.
template <class ReadRecord>
void RecordReader::forEachRecord(const Noun& noun, int count, ReadRecord readRecord) {
  for (int i = 0; i < count; ++i) {
    const std::size_t before = scanner.position();
    failed = false;
    readRecord(i);
    if (!failed) continue;
    noteFailureIn(std::string(noun.one) + " " + std::to_string(i + 1) + " of " +
                  std::to_string(count));
    if (scanner.position() == before) return;
  }
}

int RecordReader::takeInt() {
  const std::optional<int> value = scanner.scanInt();
  failed |= !value;
  return value.value_or(0);
}

float RecordReader::takeFloat() {
  const std::optional<float> value = scanner.scanFloat();
  failed |= !value;
  return value.value_or(0.0F);
}

/// The first failure tells; those after it follow from it.
void RecordReader::noteFailureIn(const std::string& record) {
  if (failureNoted) return;
  failureNoted = true;
  flawed = true;
  oddities.push_back(scanner.atEnd() ? "the file ended in " + record
                                     : record + " could not be read");
}

std::string joined(const std::vector<std::string>& pieces) {
  std::string text;
  for (const std::string& piece : pieces) text += (text.empty() ? "" : "; ") + piece;
  return text;
}

template <void (RecordReader::*readFormat)()>
ReadReport readRecords(std::string_view text, TriangleMesh& mesh) {
  RecordReader records(text, mesh);
  (records.*readFormat)();
  return {joined(records.oddities), records.extent(), 0.0};
}

}  // namespace

ReadReport readData(std::string_view text, TriangleMesh& mesh) {
  return readRecords<&RecordReader::readData>(text, mesh);
}

ReadReport readPly(std::string_view text, TriangleMesh& mesh) {
  return readRecords<&RecordReader::readPly>(text, mesh);
}

ReadReport readPly2(std::string_view text, TriangleMesh& mesh) {
  return readRecords<&RecordReader::readPly2>(text, mesh);
}

ReadReport readPlyR(std::string_view text, TriangleMesh& mesh) {
  return readRecords<&RecordReader::readPlyR>(text, mesh);
}

}  // namespace gravlin
