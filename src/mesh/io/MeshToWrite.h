#pragma once

#include <array>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "mesh/FileFrame.h"
#include "mesh/TriangleMesh.h"

namespace gravlin {

/// Numbers of vertices that are written beside positions.
struct VertexField {
  std::string name;
  /// One after the other, `step` apart: floats and doubles are written as such, ints as one byte.
  std::variant<std::span<const float>, std::span<const double>, std::span<const int>> values;
  std::size_t step = 1;
  double factor = 1.0;  ///< what they are multiplied with

  double operator()(int vertex) const;
};

/// A mesh as the writers of the usual formats see it: its valid faces, and all of its vertices in
/// their order or only the used ones, in the file's units. Refers to the mesh and to the numbers of
/// the fields, which must outlive it.
class MeshToWrite {
 public:
  /// Leaving out unused vertices requires buildAdjacency.
  enum class Vertices { All, Used };
  MeshToWrite(const TriangleMesh& source, const FileFrame& fileFrame, Vertices wanted);

  std::vector<VertexField> fields;
  std::vector<std::string> comments;  ///< a line each

  int vertexCount() const { return kept.empty() ? vertices : static_cast<int>(kept.size()); }
  int faceCount() const { return validFaces; }
  std::array<double, 3> position(int vertex) const {
    return frame.toFile(mesh.vertices.data() + 3 * static_cast<std::size_t>(sourceOf(vertex)));
  }
  /// Which vertex of the mesh is written under this number.
  int sourceOf(int vertex) const {
    return kept.empty() ? vertex : kept[static_cast<std::size_t>(vertex)];
  }

  /// Calls `work` with the three corners of each face in turn.
  template <class Work>
  void forEachFace(Work work) const {
    for (int f = 0; f < mesh.faceCount; ++f) {
      if (!mesh.validFace(f)) continue;
      const auto c = mesh.corners(f);
      work(std::array{written(c[0]), written(c[1]), written(c[2])});
    }
  }

  /// One unit in the last place of the largest coordinates in the view's cube, in the file's units.
  /// A file that holds every position within a third of it gives all of them back within one when
  /// it is imported: another third may come from the box's middle, another from its size.
  double resolution() const;
  /// Whether floats instead of doubles give all positions back within `resolution`.
  bool floatsSuffice() const;
  /// The farthest that a float lies from the coordinate that it is rounded from.
  double lossByFloats() const;

 private:
  int written(int corner) const {
    return newIndices.empty() ? corner : newIndices[static_cast<std::size_t>(corner)];
  }

  const TriangleMesh& mesh;
  FileFrame frame;
  int vertices;
  int validFaces;
  std::vector<int> kept;        ///< vertices of the mesh by their new number; empty: all
  std::vector<int> newIndices;  ///< the inverse; empty: all stay
};

}  // namespace gravlin
