#include "remesh/FaceSplit.h"

#include <algorithm>
#include <limits>
#include <span>
#include <stdexcept>

#include "mesh/Corner.h"
#include "numeric/AvailableMemory.h"
#include "numeric/LargeVector.h"
#include "remesh/SplitTopology.h"

namespace gravlin {
namespace {

std::span<const int, 3> facesBeside(const TriangleMesh& mesh, int f) {
  return std::span<const int, 3>(mesh.faceAdjacency.data() + 3 * toIndex(f), 3);
}

bool isMarked(const std::vector<int>& marks, int f) {
  return f >= 0 && marks[toIndex(f)] != 0;
}

/// How many sides of face f have a marked face on the other side.
int sidesBesideMarked(const TriangleMesh& mesh, const std::vector<int>& marks, int f) {
  int sides = 0;
  for (const int g : facesBeside(mesh, f)) sides += isMarked(marks, g) ? 1 : 0;
  return sides;
}

/// Marks the faces beside face f that have to be, and notes them.
void markBeside(const TriangleMesh& mesh, int f, std::vector<int>& marks, std::vector<int>& noted) {
  for (const int g : facesBeside(mesh, f)) {
    if (g < 0 || isMarked(marks, g) || sidesBesideMarked(mesh, marks, g) < 2) continue;
    marks[toIndex(g)] = 1;
    noted.push_back(g);
  }
}

/// The number of the side of a face that has an edge point, or -1.
int splitSide(const int* edgePoints) {
  for (int j = 0; j < 3; ++j) {
    if (edgePoints[j] >= 0) return j;
  }
  return -1;
}

void writeQuarters(std::span<const int, 3> c, const int* e, int* out) {
  const std::array<int, 12> children = {c[0], e[0], e[2], c[1], e[1], e[0],
                                        c[2], e[2], e[1], e[0], e[1], e[2]};
  std::ranges::copy(children, out);
}

void writeHalves(std::span<const int, 3> c, int j, int point, int* out) {
  const int begin = c[toIndex(j)];
  const int end = c[toIndex(nextCorner(j))];
  const int third = c[toIndex(previousCorner(j))];
  const std::array<int, 6> children = {begin, point, third, end, third, point};
  std::ranges::copy(children, out);
}

void writeFaces(const TriangleMesh& old, FaceSplit& split) {
  BlockAppender<int> faces(split.mesh.faces);
  for (int f = 0; f < old.faceCount; ++f) {
    const bool quartered = isMarked(split.marks, f);
    const auto corners = old.corners(f);
    const int* points = split.edgePoints.data() + 3 * toIndex(f);
    if (quartered && old.validFace(f)) {
      writeQuarters(corners, points, faces.take(12));
    } else if (quartered) {
      std::fill_n(faces.take(12), 12, -1);
    } else if (const int j = splitSide(points); j >= 0) {
      writeHalves(corners, j, points[j], faces.take(6));
    } else {
      std::ranges::copy(corners, faces.take(3));
    }
  }
}

/// Throws std::bad_alloc when a mesh of these counts with its topology and normals does not fit in
/// memory.
void requireMemoryFor(const SplitCounts& counts) {
  // A vertex has a position, a normal and its sum, a kind and two offsets of rings; a face corners,
  // adjacency, a normal and the ring entries of its corners.
  constexpr std::uint64_t bytesEach = 60;
  requireMemory(bytesEach * static_cast<std::uint64_t>(counts.vertices + counts.faces));
}

}  // namespace

std::vector<int> markEveryFace(const TriangleMesh& mesh) {
  return std::vector<int>(toIndex(mesh.faceCount), 1);
}

void spreadMarks(const TriangleMesh& mesh, std::vector<int>& marks) {
  // Faces whose marks have been seen by all around them need not be looked at again, so it is
  // enough to look around every face that is marked first and then around those that become so.
  std::vector<int> noted;
  for (int f = 0; f < mesh.faceCount; ++f) {
    if (!isMarked(marks, f)) continue;
    markBeside(mesh, f, marks, noted);
    while (!noted.empty()) {
      const int g = noted.back();
      noted.pop_back();
      markBeside(mesh, g, marks, noted);
    }
  }
}

SplitCounts splitCounts(const TriangleMesh& mesh, const std::vector<int>& marks) {
  SplitCounts counts = {.vertices = mesh.vertexCount, .faces = 0, .ringEntries = 0};
  bool all = true;
  for (int f = 0; f < mesh.faceCount; ++f) {
    if (!isMarked(marks, f)) {
      counts.faces += sidesBesideMarked(mesh, marks, f) == 0 ? 1 : 2;
      all = false;
      continue;
    }
    counts.faces += 4;
    if (!mesh.validFace(f)) continue;
    for (const int g : facesBeside(mesh, f)) {
      counts.vertices += g < f || !isMarked(marks, g) ? 1 : 0;
    }
  }
  counts.direct = all && splitsIntoFans(mesh);
  // A fan has at most one neighbour more than faces, a non-manifold ring two for each face.
  counts.ringEntries = counts.direct ? 3 * counts.faces + counts.vertices : 6 * counts.faces;
  return counts;
}

void requireIndexable(const SplitCounts& counts) {
  constexpr std::int64_t most = std::numeric_limits<int>::max();
  if (3 * counts.vertices > most || 3 * counts.faces > most || counts.ringEntries > most) {
    throw std::length_error("The refined mesh would have too many faces.");
  }
}

FaceSplit beginSplit(const TriangleMesh& old, std::vector<int> marks) {
  spreadMarks(old, marks);
  FaceSplit split = {.mesh = {}, .marks = {}, .edgePoints = {}, .counts = splitCounts(old, marks)};
  requireIndexable(split.counts);
  requireMemoryFor(split.counts);
  split.marks = std::move(marks);
  reserveLarge(split.edgePoints, old.faces.size());
  split.edgePoints.assign(old.faces.size(), -1);
  split.mesh.boxMax = old.boxMax;
  split.mesh.boxMin = old.boxMin;
  split.mesh.extentTolerance = old.extentTolerance;
  split.mesh.importFrame = old.importFrame;
  split.mesh.vertexCount = static_cast<int>(split.counts.vertices);
  split.mesh.faceCount = static_cast<int>(split.counts.faces);
  reserveLarge(split.mesh.vertices, 3 * toIndex(split.mesh.vertexCount));
  return split;
}

TriangleMesh finishSplit(const TriangleMesh& old, FaceSplit split) {
  TriangleMesh& mesh = split.mesh;
  reserveLarge(mesh.faces, 3 * toIndex(mesh.faceCount));
  writeFaces(old, split);
  split.marks = std::vector<int>();
  // Before the topology, so that the sums of the normals are gone when that takes its memory.
  mesh.computeNormals();
  if (split.counts.direct) {
    writeSplitTopology(old, split.edgePoints, mesh);
  } else {
    mesh.buildAdjacency();
    mesh.buildFaceAdjacency();
  }
  return std::move(mesh);
}

}  // namespace gravlin
