#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "mesh/io/ReadReport.h"
#include "numeric/LargeVector.h"

namespace gravlin {

/// A number that a file gives for each vertex beside its position.
struct VertexProperty {
  std::string name;
  std::vector<double> values;  ///< [V]
};

/// What an importing reader came across and went on from.
struct ImportWarnings {
  std::int64_t polygons = 0;         ///< faces of more than three corners, cut into fans
  std::int64_t unusableFaces = 0;    ///< faces with a corner that is the number of no vertex
  std::int64_t incompleteFaces = 0;  ///< faces of fewer than three corners
  std::int64_t bytesBehind = 0;      ///< what follows behind everything that was announced
  bool endMissing = false;           ///< the word that ends the file is not there
  std::vector<std::string> skippedElements = {};  ///< of a PLY, by name: neither vertices nor faces
  bool operator==(const ImportWarnings&) const = default;
};

/// A mesh as a file of one of the usual formats holds it: vertices in the file's order and units.
struct ImportedMesh {
  UnfilledVector<double> positions;  ///< [3V]
  /// [3F] corners in the file's order. A polygon of n corners is a fan of n - 2 triangles about its
  /// first corner; a face that is unusable or incomplete is (-1, -1, -1).
  UnfilledVector<int> faces;
  std::vector<VertexProperty> properties;  ///< of a PLY, in the file's order
  ImportWarnings warnings;

  int vertexCount() const { return static_cast<int>(positions.size() / 3); }
  int faceCount() const { return static_cast<int>(faces.size() / 3); }
};

}  // namespace gravlin
