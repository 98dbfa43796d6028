// Reading a mesh file, and reading back what was written of it. The first byte chooses the
// extension, the rest is the file.

#include <array>
#include <bit>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "fuzz/FuzzTarget.h"
#include "mesh/io/MeshReader.h"
#include "mesh/io/MeshWriter.h"
#include "numeric/Index.h"
#include "support/Invariants.h"
#include "support/UsableFaces.h"

namespace gravlin::fuzz {
namespace {

constexpr std::array<const char*, 6> extensions = {"ply2", "plyR", "ply", "data", "obj", ""};

using Stream = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

Stream streamOver(std::string& text) {
  Stream stream(fmemopen(text.data(), text.size(), "r"), std::fclose);
  demand(stream != nullptr, "there is a stream over the text");
  return stream;
}

/// Takes numbers as fscanf does; one that it cannot read is 0.
struct LibraryReader {
  std::FILE* stream;
  int takeInt() {
    int value = 0;
    return std::fscanf(stream, "%d", &value) == 1 ? value : 0;
  }
  float takeFloat() {
    float value = 0.0F;
    return std::fscanf(stream, "%f", &value) == 1 ? value : 0.0F;
  }
};

/// What a file holds, read one number after the other with fscanf.
struct PlainMesh {
  int vertexCount = 0;
  int faceCount = 0;
  std::vector<float> vertices;
  std::vector<int> faces;
};

/// So many vertices or faces are read in no time. More take memory and time for good reasons, up to
/// the count at which the reader refuses.
constexpr int largestCount = 100;

/// Nothing for counts that are negative, too large to try, or wrong in another way: what becomes of
/// them the reader's own tests tell.
std::optional<PlainMesh> readPlainly(std::string text, const std::string& extension) {
  const Stream stream = streamOver(text);
  LibraryReader numbers{stream.get()};
  PlainMesh mesh;
  mesh.vertexCount = numbers.takeInt();
  if (extension != "data") mesh.faceCount = numbers.takeInt();
  for (const int count : {mesh.vertexCount, mesh.faceCount}) {
    if (count < 0 || count > largestCount) return std::nullopt;
  }
  for (int i = 0; i < mesh.vertexCount; ++i) {
    const float x = numbers.takeFloat();
    const float second = numbers.takeFloat();
    const float third = numbers.takeFloat();
    const bool zBeforeY = extension == "ply";
    mesh.vertices.insert(mesh.vertices.end(),
                         {x, zBeforeY ? third : second, zBeforeY ? second : third});
    for (int k = 0; zBeforeY && k < 2; ++k) numbers.takeFloat();
  }
  for (int f = 0; f < mesh.faceCount; ++f) {
    numbers.takeFloat();
    for (int k = 0; k < 3; ++k) mesh.faces.push_back(numbers.takeInt());
  }
  return mesh;
}

/// Whether reading the text takes little memory, or is refused for taking far too much.
bool affordable(std::string text) {
  const Stream stream = streamOver(text);
  LibraryReader numbers{stream.get()};
  for (int k = 0; k < 2; ++k) {
    const int count = numbers.takeInt();
    if (count > largestCount && count <= maxArrayEntries / 3) return false;
  }
  return true;
}

std::vector<std::uint32_t> bitsOf(std::span<const float> numbers) {
  std::vector<std::uint32_t> bits;
  for (const float number : numbers) bits.push_back(std::bit_cast<std::uint32_t>(number));
  return bits;
}

void compareWithPlainReading(const TriangleMesh& mesh, const PlainMesh& plain) {
  demand(mesh.vertexCount == plain.vertexCount, "as many vertices as fscanf finds");
  demand(mesh.faceCount == plain.faceCount, "as many faces as fscanf finds");
  TriangleMesh expected;
  expected.setVertexCount(plain.vertexCount);
  expected.vertices = plain.vertices;
  expected.normalize();
  demand(bitsOf(mesh.vertices) == bitsOf(expected.vertices), "the positions that fscanf finds");
  demand(test::sameUsableFaces(plain.faces, mesh),
         "the corners that fscanf finds, and no invalid face but for what they are");
}

/// The text of a "ply2" file with the used vertices and the valid faces, from printf alone.
std::string printed(const TriangleMesh& mesh) {
  std::vector<int> newIndex(toIndex(mesh.vertexCount), -1);
  for (const int corner : mesh.faces) {
    if (corner >= 0) newIndex[toIndex(corner)] = 0;
  }
  std::string vertices;
  int used = 0;
  char line[160];
  for (std::size_t i = 0; i < newIndex.size(); ++i) {
    if (newIndex[i] < 0) continue;
    newIndex[i] = used++;
    const float* p = mesh.vertices.data() + 3 * i;
    std::snprintf(line, sizeof line, "%f %f %f\n", static_cast<double>(p[0]),
                  static_cast<double>(p[1]), static_cast<double>(p[2]));
    vertices += line;
  }
  std::string faces;
  int valid = 0;
  for (std::size_t c = 0; c < mesh.faces.size(); c += 3) {
    if (mesh.faces[c] == -1) continue;
    ++valid;
    std::snprintf(line, sizeof line, "3 %d %d %d\n", newIndex[toIndex(mesh.faces[c])],
                  newIndex[toIndex(mesh.faces[c + 1])], newIndex[toIndex(mesh.faces[c + 2])]);
    faces += line;
  }
  std::snprintf(line, sizeof line, "%d\n%d\n", used, valid);
  return line + vertices + faces;
}

std::string written(const TriangleMesh& mesh, const std::string& extension) {
  char* text = nullptr;
  std::size_t size = 0;
  std::FILE* stream = open_memstream(&text, &size);
  writeMesh({stream, "", extension}, mesh);
  std::fclose(stream);
  std::string result(text, size);
  std::free(text);
  return result;
}

std::vector<int> markedVertices(const std::vector<int>& marks, const TriangleMesh& mesh) {
  std::vector<int> marked;
  for (std::size_t i = 0; i < marks.size(); ++i) {
    if (marks[i] != 0 && mesh.neighbourCount(static_cast<int>(i)) != 0) {
      marked.push_back(mesh.usedVertexIndices()[i]);
    }
  }
  return marked;
}

/// A file that was written is read whole: the same used vertices, valid faces, kinds and marks.
void readBack(const TriangleMesh& mesh) {
  std::string text = written(mesh, "plyR");
  TriangleMesh back;
  const Stream stream = streamOver(text);
  const ReadReport report = readMesh({stream.get(), "", "plyR"}, back);
  demand(report.extent == ReadExtent::Whole, "what was written is read whole");
  demandNone(test::brokenInvariants(back), "what was read back");
  const TriangleMesh expected = [&mesh] {
    TriangleMesh compact = mesh.compactCopy();
    compact.buildAdjacency();
    compact.buildFaceAdjacency();
    return compact;
  }();
  demand(back.vertexCount == expected.vertexCount, "as many vertices as were written");
  demand(back.faces == expected.faces, "the faces that were written");
  demand(back.vertexKind == expected.vertexKind, "the kinds of the vertices that were written");
  demand(back.vertexNeighbours.items == expected.vertexNeighbours.items, "the rings written");
  demand(back.faceAdjacency == expected.faceAdjacency, "the neighbours of the faces written");
  demand(markedVertices(back.ridgeMarks, back) == markedVertices(mesh.ridgeMarks, mesh),
         "the ridge marks that were written");
  demand(markedVertices(back.valleyMarks, back) == markedVertices(mesh.valleyMarks, mesh),
         "the valley marks that were written");
}

void readOnce(std::string text, const std::string& extension) {
  TriangleMesh mesh;
  const Stream stream = streamOver(text);
  try {
    readMesh({stream.get(), "", extension}, mesh);
  } catch (const std::length_error&) {
    return;  // more than can be held
  }
  demandNone(test::brokenInvariants(mesh), "what was read");
  if (hasReader(extension)) {
    if (const auto plain = readPlainly(text, extension)) compareWithPlainReading(mesh, *plain);
  }
  mesh.computeNormals();
  demandNone(test::brokenInvariants(mesh), "with normals");
  mesh.denormalize();
  demand(written(mesh, "ply2") == printed(mesh), "what printf prints of the mesh");
  readBack(mesh);
}

}  // namespace
}  // namespace gravlin::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace gravlin::fuzz;
  if (size < 2) return 0;
  const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
  if (affordable(text)) readOnce(text, extensions[data[0] % extensions.size()]);
  return 0;
}
