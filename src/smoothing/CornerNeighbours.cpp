#include "smoothing/CornerNeighbours.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <utility>

#include "numeric/AvailableMemory.h"
#include "numeric/Index.h"

namespace gravlin {
namespace {

/// The incident faces of a corner that its faces see as neighbours.
std::span<const int> visibleFan(const TriangleMesh& mesh, int vertex) {
  const auto fan = mesh.vertexFaces[vertex];
  const bool interior = mesh.vertexKind[toIndex(vertex)] == InteriorVertex;
  return interior || fan.empty() ? fan : fan.first(fan.size() - 1);
}

/// How many faces are looked at when all rows are made, a little more than the rows will hold.
/// Taken from the fans alone, because looking itself is quadratic in the valence.
std::int64_t visitsOfAllRows(const TriangleMesh& mesh) {
  std::int64_t visits = 0;
  for (int i = 0; i < mesh.vertexCount; ++i) {
    visits += static_cast<std::int64_t>(mesh.vertexFaceCount(i)) *
              static_cast<std::int64_t>(visibleFan(mesh, i).size());
  }
  return visits;
}

template <class Visit>
void visitCornerNeighbours(const TriangleMesh& mesh, int f, const Visit& visit) {
  if (!mesh.validFace(f)) return;
  const int* adjacent = mesh.faceAdjacency.data() + 3 * toIndex(f);
  for (const int corner : mesh.corners(f)) {
    for (const int g : visibleFan(mesh, corner)) {
      if (g != f && g != adjacent[0] && g != adjacent[1] && g != adjacent[2]) visit(g);
    }
  }
}

}  // namespace

void buildCornerNeighbourFaces(TriangleMesh& mesh) {
  if (mesh.cornerNeighbourFaces.built()) return;
  const std::int64_t visits = visitsOfAllRows(mesh);
  if (visits > std::numeric_limits<int>::max()) {
    throw std::length_error("Too many faces meet at a vertex.");
  }
  requireMemory(sizeof(int) * static_cast<std::uint64_t>(visits + mesh.faceCount));
  CompressedRows rows;
  rows.offsets.reserve(toIndex(mesh.faceCount) + 1);
  rows.offsets.push_back(0);
  for (int f = 0; f < mesh.faceCount; ++f) {
    int count = 0;
    visitCornerNeighbours(mesh, f, [&](int) { ++count; });
    rows.offsets.push_back(rows.offsets.back() + count);
  }
  rows.items.reserve(toIndex(rows.offsets.back()));
  for (int f = 0; f < mesh.faceCount; ++f) {
    visitCornerNeighbours(mesh, f, [&](int g) { rows.items.push_back(g); });
  }
  mesh.cornerNeighbourFaces = std::move(rows);
}

}  // namespace gravlin
