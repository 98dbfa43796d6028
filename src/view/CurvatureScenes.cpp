#include "view/CurvatureScenes.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <new>
#include <utility>

#include "mesh/FaceGeometry.h"
#include "view/Palette.h"

namespace gravlin {
namespace {

constexpr double halfGlyph = 0.1;

Scene flatSurface(const TriangleMesh& mesh) {
  return {{flatFaces(mesh)}};
}

Scene inFrontOfSurface(Batch marks, const TriangleMesh& mesh) {
  return {{std::move(marks), whiteSurface(mesh)}};
}

FieldColours coloursOf(const Shown& shown, std::span<const double> values) {
  return {values, shown.grayScale};
}

// --- Directions ---

bool isFinite(const Vec3& v) {
  return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

bool isThere(const std::vector<double>& directions, const TriangleMesh& mesh) {
  return directions.size() == 3 * static_cast<std::size_t>(mesh.vertexCount);
}

void addPosition(Batch& batch, const Vec3& p) {
  std::array<float, 3> xyz = {};
  storeVec3(xyz.data(), p);
  batch.positions.insert(batch.positions.end(), xyz.begin(), xyz.end());
}

/// A segment at every vertex that has a direction, calling `addColour` for each of its two ends.
template <class AddColour>
Batch glyphs(const TriangleMesh& mesh, const std::vector<double>& directions,
             const AddColour& addColour) {
  Batch batch = plainBatch(Primitive::Lines, black);
  for (int i = 0; i < mesh.vertexCount; ++i) {
    const Vec3 p = mesh.position(i);
    const Vec3 e = vectorAt(directions, i);
    if (!isFinite(p) || !isFinite(e) || e == Vec3{}) continue;
    addPosition(batch, p - halfGlyph * e);
    addPosition(batch, p + halfGlyph * e);
    addColour(batch, i);
    addColour(batch, i);
  }
  return batch;
}

Scene directions(const TriangleMesh& mesh, const std::vector<double>& field, const Colour& colour) {
  if (!isThere(field, mesh)) return flatSurface(mesh);
  Batch batch = glyphs(mesh, field, [](Batch&, int) {});
  batch.colour = colour;
  return inFrontOfSurface(std::move(batch), mesh);
}

Scene tensors(const TriangleMesh& mesh, const std::vector<double>& field,
              const std::vector<double>& curvature) {
  if (!isThere(field, mesh)) return flatSurface(mesh);
  const FieldColours colours(curvature, false);
  Batch batch = glyphs(mesh, field, [&](Batch& segments, int i) {
    addColour(segments, colours[curvature[static_cast<std::size_t>(i)]]);
  });
  Scene scene = inFrontOfSurface(std::move(batch), mesh);
  scene.scale = colours;
  return scene;
}

// --- Strokes ---

bool isOn(const TriangleMesh& mesh, const FacePoint& point) {
  return point.face >= 0 && point.face < mesh.faceCount && mesh.validFace(point.face);
}

/// Strokes outlive changes of the mesh, so their faces may be gone; a line is broken there.
Scene strokes(const TriangleMesh& mesh, const std::vector<std::vector<FacePoint>>& lines) {
  Batch batch = plainBatch(Primitive::Lines, black);
  for (const std::vector<FacePoint>& line : lines) {
    bool continues = false;
    for (const FacePoint& point : line) {
      const Vec3 p = isOn(mesh, point) ? pointInFace(mesh, point) : Vec3{NAN, NAN, NAN};
      if (!isFinite(p)) {
        continues = false;
        continue;
      }
      const auto index = static_cast<unsigned>(batch.vertexCount());
      addPosition(batch, p);
      if (continues) batch.indices.insert(batch.indices.end(), {index - 1, index});
      continues = true;
    }
  }
  if (batch.indices.empty()) batch.positions.clear();
  return inFrontOfSurface(std::move(batch), mesh);
}

}  // namespace

Scene fieldOn(Site site, const Shown& shown) {
  if (shown.fieldOutOfMemory) throw std::bad_alloc();
  const TriangleMesh& mesh = *shown.mesh;
  const std::span<const double> values = shown.fieldValues;
  if (values.size() != valueCount(site, mesh)) return flatSurface(mesh);
  const FieldColours colours = coloursOf(shown, values);
  Scene scene;
  if (site == Site::Vertices) scene = {{scalarFaces(mesh, values, colours)}};
  if (site == Site::Faces) scene = {{faceScalarFaces(mesh, values, colours)}};
  if (site == Site::Edges) scene = inFrontOfSurface(edgeScalarLines(mesh, values, colours), mesh);
  scene.scale = colours;
  return scene;
}

Scene meanEdgeCurvature(const Shown& shown) {
  const TriangleMesh& mesh = *shown.mesh;
  const std::vector<double>& edges = mesh.edgeCurvatures;
  if (edges.size() != mesh.faces.size()) return flatSurface(mesh);
  std::vector<double> values(static_cast<std::size_t>(mesh.faceCount));
  for (std::size_t f = 0; f < values.size(); ++f) {
    values[f] = (edges[3 * f] + edges[3 * f + 1] + edges[3 * f + 2]) / 3.0;
  }
  const FieldColours colours = coloursOf(shown, values);
  return {{faceScalarFaces(mesh, values, colours)}, colours};
}

Scene maxDirections(const Shown& shown) {
  return directions(*shown.mesh, shown.mesh->maxDirection, red);
}

Scene minDirections(const Shown& shown) {
  return directions(*shown.mesh, shown.mesh->minDirection, blue);
}

Scene maxTensors(const Shown& shown) {
  const TriangleMesh& mesh = *shown.mesh;
  return tensors(mesh, mesh.maxDirection, mesh.maxCurvature);
}

Scene minTensors(const Shown& shown) {
  const TriangleMesh& mesh = *shown.mesh;
  return tensors(mesh, mesh.minDirection, mesh.minCurvature);
}

Scene maxStrokes(const Shown& shown) {
  return strokes(*shown.mesh, shown.mesh->strokes.maxStrokes);
}

Scene minStrokes(const Shown& shown) {
  return strokes(*shown.mesh, shown.mesh->strokes.minStrokes);
}

}  // namespace gravlin
