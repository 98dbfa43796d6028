#include "mesh/io/RecordWriter.h"

#include <array>
#include <charconv>
#include <cstddef>
#include <vector>

#include "mesh/io/NumberText.h"
#include "numeric/Index.h"

namespace gravlin {
namespace {

/// Collects the text of numbers and hands it to the stream in large pieces.
class NumberWriter {
 public:
  explicit NumberWriter(std::FILE* destination) : stream(destination) {}
  ~NumberWriter() { flush(); }
  NumberWriter(const NumberWriter&) = delete;
  NumberWriter& operator=(const NumberWriter&) = delete;

  void put(int value, char separator) { putBehind(writeInt(out, value), separator); }
  /// What printf("%f") writes of a double.
  void put(double value, char separator) {
    constexpr std::ptrdiff_t longest = 320;  // of the largest one, with its sign and decimals
    if (buffer.data() + buffer.size() - out < longest + maxNumberLength) flush();
    constexpr int decimals = 6;
    putBehind(std::to_chars(out, out + longest, value, std::chars_format::fixed, decimals).ptr,
              separator);
  }
  void put(float value, char separator) { putBehind(writeFloat(out, value), separator); }

 private:
  void putBehind(char* number, char separator) {
    *number = separator;
    out = number + 1;
    if (buffer.data() + buffer.size() - out < maxNumberLength + 1) flush();
  }

  void flush() {
    std::fwrite(buffer.data(), 1, static_cast<std::size_t>(out - buffer.data()), stream);
    out = buffer.data();
  }

  std::FILE* stream;
  std::array<char, 1 << 16> buffer;
  char* out = buffer.data();
};

template <class Number>
void putPosition(NumberWriter& writer, const std::array<Number, 3>& p) {
  writer.put(p[0], ' ');
  writer.put(p[1], ' ');
  writer.put(p[2], '\n');
}

void writeGeometry(NumberWriter& writer, const TriangleMesh& mesh,
                   const std::vector<int>& newIndices) {
  writer.put(mesh.countUsedVertices(), '\n');
  writer.put(mesh.countValidFaces(), '\n');
  for (int i = 0; i < mesh.vertexCount; ++i) {
    if (mesh.neighbourCount(i) == 0) continue;
    const float* p = mesh.vertices.data() + 3 * toIndex(i);
    if (mesh.importFrame) {
      putPosition(writer, mesh.importFrame->toFile(p));
    } else {
      putPosition(writer, std::array{p[0], p[1], p[2]});
    }
  }
  for (int f = 0; f < mesh.faceCount; ++f) {
    if (!mesh.validFace(f)) continue;
    const auto c = mesh.corners(f);
    writer.put(3, ' ');
    writer.put(newIndices[toIndex(c[0])], ' ');
    writer.put(newIndices[toIndex(c[1])], ' ');
    writer.put(newIndices[toIndex(c[2])], '\n');
  }
}

/// The vertices whose mark is set, by their new index; marks that were never built are none.
std::vector<int> markedVertices(const std::vector<int>& marks, const std::vector<int>& newIndices) {
  std::vector<int> marked;
  for (std::size_t i = 0; i < marks.size(); ++i) {
    if (marks[i] != 0) marked.push_back(newIndices[i]);
  }
  return marked;
}

void writeMarks(NumberWriter& writer, const TriangleMesh& mesh,
                const std::vector<int>& newIndices) {
  const std::vector<int> ridges = markedVertices(mesh.ridgeMarks, newIndices);
  const std::vector<int> valleys = markedVertices(mesh.valleyMarks, newIndices);
  writer.put(static_cast<int>(ridges.size()), '\n');
  writer.put(static_cast<int>(valleys.size()), '\n');
  for (const int i : ridges) writer.put(i, '\n');
  for (const int i : valleys) writer.put(i, '\n');
}

}  // namespace

void writePly2(std::FILE* stream, const TriangleMesh& mesh) {
  NumberWriter writer(stream);
  writeGeometry(writer, mesh, mesh.usedVertexIndices());
}

void writePlyR(std::FILE* stream, const TriangleMesh& mesh) {
  const std::vector<int> newIndices = mesh.usedVertexIndices();
  NumberWriter writer(stream);
  writeGeometry(writer, mesh, newIndices);
  writeMarks(writer, mesh, newIndices);
}

}  // namespace gravlin
