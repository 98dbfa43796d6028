#include "view/Scene.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "mesh/Corner.h"
#include "view/Palette.h"

namespace gravlin {
namespace {

/// Corners of a face in the order in which OpenGL cuts a polygon into triangles: its first vertex
/// comes last. Colours are interpolated from there, so pixels equal those of polygons to the last
/// bit.
constexpr std::array<std::size_t, 3> polygonOrder = {1, 2, 0};

bool finite(const float* xyz) {
  return std::isfinite(xyz[0]) && std::isfinite(xyz[1]) && std::isfinite(xyz[2]);
}

const float* positionAt(const TriangleMesh& mesh, int i) {
  return mesh.vertices.data() + 3 * static_cast<std::size_t>(i);
}

void append(std::vector<float>& numbers, const float* xyz) {
  numbers.insert(numbers.end(), xyz, xyz + 3);
}

/// Whether all of these are vertices with finite positions.
bool drawable(const TriangleMesh& mesh, std::span<const int> vertices) {
  return std::ranges::all_of(vertices, [&mesh](int i) {
    return i >= 0 && i < mesh.vertexCount && finite(positionAt(mesh, i));
  });
}

constexpr unsigned noVertex = ~0U;
constexpr float noNormal[3] = {0.0F, 0.0F, 0.0F};

/// Three numbers of `normals` from 3i on.
const float* normalAt(const std::vector<float>& normals, std::size_t i) {
  if (normals.size() < 3 * i + 3) return noNormal;
  const float* normal = normals.data() + 3 * i;
  return finite(normal) ? normal : noNormal;
}

std::vector<float> vertexNormals(const TriangleMesh& mesh) {
  const auto n = static_cast<std::size_t>(mesh.vertexCount);
  std::vector<float> normals;
  normals.reserve(3 * n);
  for (std::size_t i = 0; i < n; ++i) append(normals, normalAt(mesh.vertexNormals, i));
  return normals;
}

/// All vertices of the mesh, drawn in the order of `indices`.
Batch indexedBatch(Primitive primitive, const TriangleMesh& mesh, std::vector<unsigned> indices) {
  Batch batch;
  batch.primitive = primitive;
  if (indices.empty()) return batch;
  batch.indices = std::move(indices);
  batch.positions = mesh.vertices;
  return batch;
}

std::vector<int> drawableFaces(const TriangleMesh& mesh, int except = -1) {
  std::vector<int> drawn;
  drawn.reserve(static_cast<std::size_t>(mesh.faceCount));
  for (int f = 0; f < mesh.faceCount; ++f) {
    if (f != except && drawable(mesh, mesh.corners(f))) drawn.push_back(f);
  }
  return drawn;
}

Batch indexedFaces(const TriangleMesh& mesh) {
  const std::vector<int> drawn = drawableFaces(mesh);
  std::vector<unsigned> indices;
  indices.reserve(3 * drawn.size());
  for (const int f : drawn) {
    const auto corners = mesh.corners(f);
    for (const std::size_t j : polygonOrder) indices.push_back(static_cast<unsigned>(corners[j]));
  }
  return indexedBatch(Primitive::Triangles, mesh, std::move(indices));
}

}  // namespace

Batch flatFaces(const TriangleMesh& mesh, int except) {
  const std::vector<int> drawn = drawableFaces(mesh, except);
  Batch batch;
  batch.lit = true;
  batch.flat = true;
  const std::size_t most = drawn.size() + static_cast<std::size_t>(mesh.vertexCount);
  batch.positions.reserve(3 * most);
  batch.normals.reserve(3 * most);
  batch.indices.reserve(3 * drawn.size());
  std::vector<unsigned> copyOf(static_cast<std::size_t>(mesh.vertexCount), noVertex);
  const auto addCopy = [&](int corner, const float* normal) {
    copyOf[static_cast<std::size_t>(corner)] = static_cast<unsigned>(batch.vertexCount());
    append(batch.positions, positionAt(mesh, corner));
    append(batch.normals, normal);
  };

  // A flat triangle has the colour of its last vertex alone. So each face brings one vertex with
  // its normal, and its other corners are any vertices in the same places: F vertices and a few
  // more where 3F would be needed otherwise.
  for (const int f : drawn) {
    addCopy(mesh.corners(f)[polygonOrder[2]],
            normalAt(mesh.faceNormals, static_cast<std::size_t>(f)));
  }
  unsigned own = 0;
  for (const int f : drawn) {
    const auto corners = mesh.corners(f);
    for (const std::size_t j : {polygonOrder[0], polygonOrder[1]}) {
      if (copyOf[static_cast<std::size_t>(corners[j])] == noVertex) addCopy(corners[j], noNormal);
      batch.indices.push_back(copyOf[static_cast<std::size_t>(corners[j])]);
    }
    batch.indices.push_back(own++);
  }
  return batch;
}

Batch smoothFaces(const TriangleMesh& mesh) {
  Batch batch = indexedFaces(mesh);
  batch.lit = true;
  if (!batch.indices.empty()) batch.normals = vertexNormals(mesh);
  return batch;
}

Batch plainFaces(const TriangleMesh& mesh, const Colour& colour) {
  Batch batch = indexedFaces(mesh);
  batch.colour = colour;
  return batch;
}

Batch whiteSurface(const TriangleMesh& mesh) {
  Batch surface = plainFaces(mesh, white);
  surface.depthOffset = 1.0F;
  return surface;
}

Batch setBackFaces(const TriangleMesh& mesh, const Colour& colour) {
  Batch batch = plainFaces(mesh, colour);
  if (!batch.indices.empty()) batch.setBackAlong = vertexNormals(mesh);
  return batch;
}

Batch scalarFaces(const TriangleMesh& mesh, std::span<const double> values,
                  const FieldColours& colours) {
  Batch batch = indexedFaces(mesh);
  if (values.size() != batch.vertexCount()) return {};
  batch.colours.reserve(3 * batch.vertexCount());
  for (const double value : values) addColour(batch, colours[value]);
  return batch;
}

Batch faceScalarFaces(const TriangleMesh& mesh, std::span<const double> values,
                      const FieldColours& colours) {
  if (values.size() != static_cast<std::size_t>(mesh.faceCount)) return {};
  Batch batch;
  batch.positions.reserve(9 * values.size());
  batch.colours.reserve(9 * values.size());
  for (int f = 0; f < mesh.faceCount; ++f) {
    const auto corners = mesh.corners(f);
    if (!drawable(mesh, corners)) continue;
    const Colour colour = colours[values[static_cast<std::size_t>(f)]];
    for (const std::size_t j : polygonOrder) {
      append(batch.positions, positionAt(mesh, corners[j]));
      addColour(batch, colour);
    }
  }
  return batch;
}

Batch edgeScalarLines(const TriangleMesh& mesh, std::span<const double> values,
                      const FieldColours& colours) {
  if (values.size() != mesh.faces.size()) return {};
  const bool knowsNeighbours = mesh.faceAdjacency.size() == mesh.faces.size();
  Batch batch = plainBatch(Primitive::Lines, {});
  for (std::size_t edge = 0; edge < values.size(); ++edge) {
    const int f = static_cast<int>(edge / 3);
    // Both faces hold the same value; the one with the larger index draws it.
    if (knowsNeighbours && mesh.faceAdjacency[edge] > f) continue;
    const auto corners = mesh.corners(f);
    const std::array<int, 2> ends = {corners[edge % 3], corners[nextCorner(edge % 3)]};
    if (!drawable(mesh, ends)) continue;
    for (const int end : ends) {
      append(batch.positions, positionAt(mesh, end));
      addColour(batch, colours[values[edge]]);
    }
  }
  return batch;
}

Batch faceEdges(const TriangleMesh& mesh, const Colour& colour) {
  std::vector<unsigned> indices;
  for (int f = 0; f < mesh.faceCount; ++f) {
    const auto corners = mesh.corners(f);
    if (corners[0] < 0) continue;
    for (std::size_t j = 0; j < 3; ++j) {
      const std::array<int, 2> edge = {corners[j], corners[nextCorner(j)]};
      if (edge[0] > edge[1] && drawable(mesh, edge)) {
        indices.insert(indices.end(), edge.begin(), edge.end());
      }
    }
  }
  Batch batch = indexedBatch(Primitive::Lines, mesh, std::move(indices));
  batch.colour = colour;
  return batch;
}

void addColour(Batch& batch, const Colour& colour) {
  batch.colours.insert(batch.colours.end(), {colour.r, colour.g, colour.b});
}

Batch plainBatch(Primitive primitive, const Colour& colour) {
  Batch batch;
  batch.primitive = primitive;
  batch.colour = colour;
  return batch;
}

void addVertices(Batch& batch, const TriangleMesh& mesh, std::span<const int> vertices) {
  if (!drawable(mesh, vertices)) return;
  for (const int i : vertices) append(batch.positions, positionAt(mesh, i));
}

}  // namespace gravlin
