#include "mesh/TriangleMesh.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

#include "mesh/Corner.h"
#include "mesh/Ring.h"
#include "mesh/RingWalk.h"
#include "numeric/Index.h"
#include "numeric/LargeVector.h"

namespace gravlin {
namespace {

constexpr float farAway = 1000000.0F;  // where the search for the bounding box starts
constexpr double extentInMemory = 20.0;

Vec3 boxCentre(const std::array<float, 3>& boxMin, const std::array<float, 3>& boxMax) {
  return 0.5 * (loadVec3(boxMin.data()) + loadVec3(boxMax.data()));
}

/// A few vectors by coordinate, so that their square roots and divisions run side by side.
struct VectorBlock {
  static constexpr int capacity = 64;
  std::array<double, capacity> x;
  std::array<double, capacity> y;
  std::array<double, capacity> z;

  void set(int k, const Vec3& a) {
    x[toIndex(k)] = a.x;
    y[toIndex(k)] = a.y;
    z[toIndex(k)] = a.z;
  }

  /// Divides every vector by its length; vectors of length 0 become 0.
  void normalize() {
    for (std::size_t k = 0; k < capacity; ++k) {
      const double size = std::sqrt(x[k] * x[k] + y[k] * y[k] + z[k] * z[k]);
      x[k] = size == 0.0 ? 0.0 : x[k] / size;
      y[k] = size == 0.0 ? 0.0 : y[k] / size;
      z[k] = size == 0.0 ? 0.0 : z[k] / size;
    }
  }
};

/// Fills `normals` with the unit vectors of direction(0) .. direction(count - 1).
template <class Direction>
void storeUnits(std::vector<float>& normals, int count, Direction direction) {
  reserveLarge(normals, 3 * toIndex(count));
  normals.clear();
  std::array<float, 3 * VectorBlock::capacity> rounded = {};
  VectorBlock block = {};
  for (int first = 0; first < count; first += VectorBlock::capacity) {
    const int size = std::min(count - first, VectorBlock::capacity);
    for (int k = 0; k < size; ++k) block.set(k, direction(first + k));
    block.normalize();
    float* out = rounded.data();
    for (std::size_t k = 0; k < toIndex(size); ++k) {
      *out++ = static_cast<float>(block.x[k]);
      *out++ = static_cast<float>(block.y[k]);
      *out++ = static_cast<float>(block.z[k]);
    }
    normals.insert(normals.end(), rounded.data(), out);
  }
}

std::vector<Vec3> zeroSums(int count) {
  std::vector<Vec3> sums;
  reserveLarge(sums, toIndex(count));
  sums.resize(toIndex(count));
  return sums;
}

void makeUnusableFacesInvalid(std::vector<int>& faces, int vertexCount) {
  const auto usable = [vertexCount](int corner) { return corner >= 0 && corner < vertexCount; };
  for (std::size_t c = 0; c < faces.size(); c += 3) {
    const int c0 = faces[c];
    const int c1 = faces[c + 1];
    const int c2 = faces[c + 2];
    if (usable(c0) && usable(c1) && usable(c2) && c0 != c1 && c1 != c2 && c2 != c0) continue;
    faces[c] = faces[c + 1] = faces[c + 2] = -1;
  }
}

/// Per vertex the valid faces that use it, in face order.
CompressedRows incidentFaces(const std::vector<int>& faces, int vertexCount) {
  CompressedRows rows;
  rows.offsets.assign(toIndex(vertexCount) + 1, 0);
  for (std::size_t c = 0; c < faces.size(); c += 3) {
    if (faces[c] < 0) continue;
    for (std::size_t k = 0; k < 3; ++k) ++rows.offsets[toIndex(faces[c + k])];
  }
  std::partial_sum(rows.offsets.begin(), rows.offsets.end(), rows.offsets.begin());
  rows.items.resize(toIndex(rows.offsets.back()));
  // Each offset is now the end of its row; filling from the last face down leaves the beginning.
  for (std::size_t f = faces.size() / 3; f-- > 0;) {
    const int* c = faces.data() + 3 * f;
    if (c[0] < 0) continue;
    for (std::size_t k = 0; k < 3; ++k) {
      rows.items[toIndex(--rows.offsets[toIndex(c[k])])] = static_cast<int>(f);
    }
  }
  return rows;
}

Wedge wedgeAt(int vertex, int face, std::span<const int, 3> corners) {
  if (corners[0] == vertex) return {corners[1], corners[2], face};
  if (corners[1] == vertex) return {corners[2], corners[0], face};
  return {corners[0], corners[1], face};
}

void appendNeighbours(std::vector<int>& items, std::span<const Wedge> ring, VertexKind kind) {
  for (const Wedge& wedge : ring) {
    items.push_back(wedge.next);
    if (kind == NonManifoldVertex) items.push_back(wedge.prev);
  }
  if (kind == BoundaryVertex) items.push_back(ring.back().prev);
}

}  // namespace

// --- Setting the geometry ---

void TriangleMesh::setVertexCount(int n) {
  vertexCount = 0;
  vertices = {};
  vertices.resize(3 * toIndex(n));
  vertexCount = n;
}

void TriangleMesh::setFaceCount(int n) {
  faceCount = 0;
  faces = {};
  faces.resize(3 * toIndex(n));
  faceCount = n;
}

void TriangleMesh::setVertex(int i, std::span<const float, 3> xyz) {
  std::copy(xyz.begin(), xyz.end(), vertices.data() + 3 * toIndex(i));
}

void TriangleMesh::setFace(int f, std::span<const int, 3> abc) {
  std::copy(abc.begin(), abc.end(), faces.data() + 3 * toIndex(f));
}

void TriangleMesh::normalize() {
  boxMax.fill(-farAway);
  boxMin.fill(farAway);
  for (std::size_t c = 0; c < vertices.size(); c += 3) {
    for (std::size_t axis = 0; axis < 3; ++axis) {
      const float coordinate = vertices[c + axis];
      if (coordinate > boxMax[axis]) {
        boxMax[axis] = coordinate;
      } else if (coordinate < boxMin[axis]) {
        boxMin[axis] = coordinate;
      }
    }
  }
  const float extent =
      std::max({boxMax[0] - boxMin[0], boxMax[1] - boxMin[1], boxMax[2] - boxMin[2]});
  extentTolerance = static_cast<double>(extent) * 0.05;

  const double scale = extentInMemory / static_cast<double>(extent);
  const Vec3 centre = boxCentre(boxMin, boxMax);
  for (int i = 0; i < vertexCount; ++i) setPosition(i, (position(i) - centre) * scale);
}

void TriangleMesh::denormalize() {
  const Vec3 centre = boxCentre(boxMin, boxMax);
  for (int i = 0; i < vertexCount; ++i) setPosition(i, centre + position(i) * extentTolerance);
}

FileFrame TriangleMesh::fileFrame() const {
  if (importFrame) return *importFrame;
  const Vec3 centre = boxCentre(boxMin, boxMax);
  return {{centre.x, centre.y, centre.z}, extentTolerance};
}

// --- Building topology ---

void TriangleMesh::buildAdjacency() {
  makeUnusableFacesInvalid(faces, vertexCount);
  vertexFaces.clear();
  vertexFaces = incidentFaces(faces, vertexCount);
  vertexKind.assign(toIndex(vertexCount), NonManifoldVertex);
  vertexNeighbours.clear();
  vertexNeighbours.offsets.assign(toIndex(vertexCount) + 1, 0);
  vertexNeighbours.items.reserve(vertexFaces.items.size());

  std::vector<Wedge> ring;
  for (int i = 0; i < vertexCount; ++i) {
    ring.clear();
    for (const int f : vertexFaces[i]) ring.push_back(wedgeAt(i, f, corners(f)));
    const VertexKind kind = orderRing(ring);
    int* face = vertexFaces.items.data() + vertexFaces.offsets[toIndex(i)];
    for (const Wedge& wedge : ring) *face++ = wedge.face;
    appendNeighbours(vertexNeighbours.items, ring, kind);
    vertexNeighbours.offsets[toIndex(i) + 1] = static_cast<int>(vertexNeighbours.items.size());
    vertexKind[toIndex(i)] = kind;
  }
}

void TriangleMesh::buildFaceAdjacency() {
  faceAdjacency.assign(faces.size(), -1);
  for (int i = 0; i < vertexCount; ++i) {
    const int kind = vertexKind[toIndex(i)];
    if (kind == NonManifoldVertex) continue;
    const std::span<const int> ring = vertexFaces[i];
    const std::span<const int> neighbours = getNeighbours(i);
    const std::size_t n = ring.size();
    for (std::size_t k = 0; k < (kind == InteriorVertex ? n : n - 1); ++k) {
      const std::size_t next = (k + 1) % n;
      const int f = ring[k];
      const int g = ring[next];
      // Edges are numbered by the corner they leave; f arrives at i over the shared one, g leaves.
      faceAdjacency[3 * toIndex(f) + previousCorner(cornerOf(corners(f), i))] = g;
      if (vertexKind[toIndex(neighbours[next])] == NonManifoldVertex) {
        faceAdjacency[3 * toIndex(g) + cornerOf(corners(g), i)] = f;
      }
    }
  }
}

// --- Queries ---

int TriangleMesh::countUsedVertices() const {
  int used = 0;
  for (int i = 0; i < vertexNeighbours.rowCount(); ++i) used += neighbourCount(i) != 0 ? 1 : 0;
  return used;
}

std::vector<int> TriangleMesh::usedVertexIndices() const {
  std::vector<int> indices(toIndex(vertexCount), -1);
  int next = 0;
  for (int i = 0; i < vertexCount; ++i) {
    if (neighbourCount(i) != 0) indices[toIndex(i)] = next++;
  }
  return indices;
}

int TriangleMesh::countValidFaces() const {
  int valid = 0;
  for (std::size_t c = 0; c < faces.size(); c += 3) valid += faces[c] != -1 ? 1 : 0;
  return valid;
}

// --- Normals and operators ---

void TriangleMesh::computeFaceNormals() {
  storeUnits(faceNormals, faceCount, [this](int f) {
    if (!validFace(f)) return Vec3{};
    const auto c = corners(f);
    const Vec3 a = position(c[0]);
    return cross(position(c[1]) - a, position(c[2]) - a);
  });
}

void TriangleMesh::computeVertexNormals() {
  std::vector<Vec3> sums = zeroSums(vertexCount);
  for (int f = 0; f < faceCount; ++f) {
    if (!validFace(f)) continue;
    const auto c = corners(f);
    const Vec3 a = position(c[0]);
    const Vec3 normal = cross(a - position(c[1]), a - position(c[2]));
    for (const int corner : c) sums[toIndex(corner)] += normal;
  }
  storeUnits(vertexNormals, vertexCount, [&sums](int i) { return sums[toIndex(i)]; });
}

void TriangleMesh::computeNormals() {
  std::vector<Vec3> sums = zeroSums(vertexCount);
  storeUnits(faceNormals, faceCount, [&](int f) {
    if (!validFace(f)) return Vec3{};
    const auto c = corners(f);
    const Vec3 a = position(c[0]);
    // With both edges turned round the product is the same but for the sign of a zero, which is
    // lost in a sum.
    const Vec3 normal = cross(position(c[1]) - a, position(c[2]) - a);
    for (const int corner : c) sums[toIndex(corner)] += normal;
    return normal;
  });
  storeUnits(vertexNormals, vertexCount, [&sums](int i) { return sums[toIndex(i)]; });
}

Vec3 TriangleMesh::meanCurvatureNormal(int i) const {
  if (vertexKind[toIndex(i)] != InteriorVertex) return {};
  Vec3 sum;
  double total = 0.0;
  walkRing(*this, i, [&](const RingTriangle& t) {
    const double area = 0.5 * length(cross(t.toB, t.toA));
    if (area == 0.0) return;
    const Vec3 across = t.a - t.b;
    total += 0.5 * area;
    sum += dot(across, t.toB) / area * t.toA + -dot(across, t.toA) / area * t.toB;
  });
  if (total == 0.0 || std::isnan(total)) return {};
  return sum / total;
}

// --- Copies ---

void TriangleMesh::copyGeometryFrom(const TriangleMesh& other) {
  TriangleMesh copy;
  if (vertices.size() == other.vertices.size() && faces.size() == other.faces.size()) {
    copy.vertices.swap(vertices);  // arrays of the right length are used again
    copy.faces.swap(faces);
  }
  copy.faceCount = other.faceCount;
  copy.vertexCount = other.vertexCount;
  copy.vertices = other.vertices;
  copy.faces = other.faces;
  copy.shape = other.shape;
  copy.boxMax = other.boxMax;
  copy.boxMin = other.boxMin;
  copy.extentTolerance = other.extentTolerance;
  copy.importFrame = other.importFrame;
  *this = std::move(copy);
}

void TriangleMesh::dropDerived() noexcept {
  TriangleMesh geometry;
  geometry.faceCount = faceCount;
  geometry.vertexCount = vertexCount;
  geometry.vertices = std::move(vertices);
  geometry.faces = std::move(faces);
  geometry.shape = shape;
  geometry.boxMax = boxMax;
  geometry.boxMin = boxMin;
  geometry.extentTolerance = extentTolerance;
  geometry.importFrame = importFrame;
  *this = std::move(geometry);
}

TriangleMesh TriangleMesh::compactCopy() const {
  std::vector<int> newIndex(toIndex(vertexCount), -1);
  for (int f = 0; f < faceCount; ++f) {
    if (!validFace(f)) continue;
    for (const int corner : corners(f)) newIndex[toIndex(corner)] = 0;
  }
  int used = 0;
  for (int& index : newIndex) index = index < 0 ? -1 : used++;

  TriangleMesh copy;
  copy.boxMax = boxMax;
  copy.boxMin = boxMin;
  copy.extentTolerance = extentTolerance;
  copy.importFrame = importFrame;
  copy.setVertexCount(used);
  copy.setFaceCount(countValidFaces());
  for (int i = 0; i < vertexCount; ++i) {
    const int target = newIndex[toIndex(i)];
    if (target < 0) continue;
    std::copy_n(vertices.data() + 3 * toIndex(i), 3, copy.vertices.data() + 3 * toIndex(target));
  }
  int nextFace = 0;
  for (int f = 0; f < faceCount; ++f) {
    if (!validFace(f)) continue;
    const auto c = corners(f);
    copy.setFace(nextFace++, std::array{newIndex[toIndex(c[0])], newIndex[toIndex(c[1])],
                                        newIndex[toIndex(c[2])]});
  }
  return copy;
}

}  // namespace gravlin
