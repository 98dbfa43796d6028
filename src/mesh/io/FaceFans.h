#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>

#include "mesh/io/ImportedMesh.h"
#include "numeric/Index.h"

namespace gravlin {

/// Appends the faces of a file to a mesh one by one: polygons as fans, faces that cannot be used as
/// (-1, -1, -1), and each of these counted among the mesh's warnings. The mesh is complete after
/// `finish`.
class FaceFans {
 public:
  /// For corners below `vertexCount`. Makes room for `expected` triangles in a mesh without faces.
  FaceFans(ImportedMesh& destination, std::int64_t vertexCount, std::size_t expected)
      : mesh(destination), vertices(static_cast<std::uint64_t>(vertexCount)) {
    mesh.faces.resize(3 * expected);
  }
  FaceFans(const FaceFans&) = delete;
  FaceFans& operator=(const FaceFans&) = delete;

  /// Drops the room that was not needed.
  void finish() { mesh.faces.resize(used); }

  void addTriangle(std::int64_t a, std::int64_t b, std::int64_t c) {
    if (!isVertex(a) || !isVertex(b) || !isVertex(c)) return addUnusable();
    append(static_cast<int>(a), static_cast<int>(b), static_cast<int>(c));
  }

  void add(std::span<const std::int64_t> corners) {
    if (corners.size() < 3) {
      ++mesh.warnings.incompleteFaces;
      return append(-1, -1, -1);
    }
    if (!std::all_of(corners.begin(), corners.end(),
                     [this](std::int64_t c) { return isVertex(c); }))
      return addUnusable();
    if (corners.size() > 3) ++mesh.warnings.polygons;
    for (std::size_t k = 2; k < corners.size(); ++k) {
      append(static_cast<int>(corners[0]), static_cast<int>(corners[k - 1]),
             static_cast<int>(corners[k]));
    }
  }

 private:
  bool isVertex(std::int64_t corner) const {
    return static_cast<std::uint64_t>(corner) < vertices;  // a negative one becomes very large
  }

  void addUnusable() {
    ++mesh.warnings.unusableFaces;
    append(-1, -1, -1);
  }

  void append(int a, int b, int c) {
    if (used + 3 > mesh.faces.size()) makeRoom();
    int* const face = mesh.faces.data() + used;
    face[0] = a;
    face[1] = b;
    face[2] = c;
    used += 3;
  }

  void makeRoom() {
    constexpr std::size_t largest = 3 * toIndex(maxArrayEntries / 3);
    if (used == largest) throw std::length_error("it has more faces than can be held");
    mesh.faces.resize(std::min(std::max<std::size_t>(96, 2 * used), largest));
  }

  ImportedMesh& mesh;
  std::uint64_t vertices;
  std::size_t used = 0;
};

}  // namespace gravlin
