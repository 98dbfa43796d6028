#include "mesh/io/ImportPlacement.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <tuple>
#include <utility>
#include <vector>

#include "mesh/io/PositionIndex.h"
#include "numeric/AvailableMemory.h"
#include "numeric/Index.h"

namespace gravlin {
namespace {

struct Box {
  std::array<double, 3> least;
  std::array<double, 3> most;
};

/// Of the finite coordinates; 0 to 0 along an axis that has none.
Box boxOf(const UnfilledVector<double>& positions) {
  Box box;
  box.least.fill(std::numeric_limits<double>::infinity());
  box.most.fill(-std::numeric_limits<double>::infinity());
  for (std::size_t c = 0; c < positions.size(); ++c) {
    const double x = positions[c];
    if (!std::isfinite(x)) continue;
    box.least[c % 3] = std::min(box.least[c % 3], x);
    box.most[c % 3] = std::max(box.most[c % 3], x);
  }
  for (std::size_t axis = 0; axis < 3; ++axis) {
    if (box.least[axis] > box.most[axis]) box.least[axis] = box.most[axis] = 0.0;
  }
  return box;
}

/// Halves and twentieths are taken first, so that no finite box has an infinite extent.
FileFrame frameOf(const Box& box) {
  constexpr double extentInCube = 20.0;
  FileFrame frame;
  frame.scale = 0.0;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    frame.origin[axis] = 0.5 * box.least[axis] + 0.5 * box.most[axis];
    frame.scale =
        std::max(frame.scale, box.most[axis] / extentInCube - box.least[axis] / extentInCube);
  }
  if (frame.scale == 0.0) frame.scale = 1.0;
  return frame;
}

/// A side of a face by the places of its ends and by its vertices, the smaller one first.
struct Side {
  std::pair<int, int> places;
  std::pair<int, int> vertices;
  bool operator<(const Side& other) const {
    return std::tie(places, vertices) < std::tie(other.places, other.vertices);
  }
};

std::pair<int, int> ordered(int a, int b) {
  return {std::min(a, b), std::max(a, b)};
}

int placeOf(const TriangleMesh& mesh, int vertex, PositionIndex& index) {
  const Vec3 p = mesh.position(vertex);
  return index.indexOf(p.x, p.y, p.z);
}

}  // namespace

int weldVertices(ImportedMesh& mesh) {
  const int before = mesh.vertexCount();
  const UnfilledVector<double> positions = std::exchange(mesh.positions, {});
  PositionIndex index(mesh.positions, toIndex(before));
  std::vector<int> numbers;
  numbers.reserve(toIndex(before));
  for (VertexProperty& property : mesh.properties) property.values.resize(toIndex(before));
  for (std::size_t c = 0; c < positions.size(); c += 3) {
    const std::size_t known = mesh.positions.size() / 3;
    const int number = index.indexOf(positions[c], positions[c + 1], positions[c + 2]);
    numbers.push_back(number);
    if (toIndex(number) != known) continue;
    for (VertexProperty& property : mesh.properties)
      property.values[known] = property.values[c / 3];
  }
  for (VertexProperty& property : mesh.properties) {
    property.values.resize(toIndex(mesh.vertexCount()));
  }
  for (int& corner : mesh.faces) corner = corner < 0 ? corner : numbers[toIndex(corner)];
  return before - mesh.vertexCount();
}

std::unique_ptr<TriangleMesh> placeInCube(ImportedMesh imported) {
  // Positions or corners, rings, adjacency and normals of one vertex or one face together.
  constexpr std::uint64_t bytesEach = 64;
  requireMemory(bytesEach * (toIndex(imported.vertexCount()) + toIndex(imported.faceCount())));
  auto mesh = std::make_unique<TriangleMesh>();
  const Box box = boxOf(imported.positions);
  const FileFrame frame = frameOf(box);
  mesh->importFrame = frame;
  mesh->extentTolerance = frame.scale;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    mesh->boxMin[axis] = static_cast<float>(box.least[axis]);
    mesh->boxMax[axis] = static_cast<float>(box.most[axis]);
  }
  mesh->setVertexCount(imported.vertexCount());
  for (std::size_t c = 0; c < imported.positions.size(); ++c) {
    mesh->vertices[c] =
        static_cast<float>((imported.positions[c] - frame.origin[c % 3]) / frame.scale);
  }
  imported.positions = {};
  mesh->setFaceCount(imported.faceCount());
  std::copy(imported.faces.begin(), imported.faces.end(), mesh->faces.begin());
  imported = {};
  mesh->buildAdjacency();
  mesh->buildFaceAdjacency();
  mesh->computeNormals();
  return mesh;
}

int countCoincidingSides(const TriangleMesh& mesh) {
  UnfilledVector<double> places;
  PositionIndex index(places, 0);
  std::vector<Side> sides;
  for (int f = 0; f < mesh.faceCount; ++f) {
    if (!mesh.validFace(f)) continue;
    const auto c = mesh.corners(f);
    for (std::size_t k = 0; k < 3; ++k) {
      if (mesh.faceAdjacency[3 * toIndex(f) + k] >= 0) continue;
      const int a = c[k];
      const int b = c[(k + 1) % 3];
      sides.push_back({ordered(placeOf(mesh, a, index), placeOf(mesh, b, index)), ordered(a, b)});
    }
  }
  std::sort(sides.begin(), sides.end());
  int coinciding = 0;
  for (std::size_t first = 0, end = 0; first < sides.size(); first = end) {
    while (end < sides.size() && sides[end].places == sides[first].places) ++end;
    const bool sameVertices = sides[first].vertices == sides[end - 1].vertices;
    if (!sameVertices) coinciding += static_cast<int>(end - first);
  }
  return coinciding;
}

}  // namespace gravlin
