#include "view/RenderDispatcher.h"

#include <algorithm>

#include "doc/ModeTable.h"
#include "mesh/Corner.h"
#include "view/CurvatureScenes.h"
#include "view/FeatureScenes.h"
#include "view/Palette.h"

namespace gravlin {
namespace {

/// The picked face if the mesh has one that is still there.
std::optional<int> pickedFaceOf(const TriangleMesh& mesh) {
  const std::optional<int> face = mesh.pickedFace;
  const bool there = face && *face >= 0 && *face < mesh.faceCount && mesh.validFace(*face);
  return there ? face : std::nullopt;
}

Scene flatSurface(const Shown& shown) {
  const TriangleMesh& mesh = *shown.mesh;
  Scene scene = {{flatFaces(mesh)}};
  if (const std::optional<int> face = pickedFaceOf(mesh)) {
    Batch corners = plainBatch(Primitive::Points, red);
    for (const int corner : mesh.corners(*face)) addVertices(corners, mesh, {{corner}});
    scene.batches.push_back(std::move(corners));
  }
  return scene;
}

Scene smoothSurface(const Shown& shown) {
  return {{smoothFaces(*shown.mesh)}};
}

Scene wireFrame(const Shown& shown) {
  const TriangleMesh& mesh = *shown.mesh;
  return {{faceEdges(mesh, black), setBackFaces(mesh, white)}};
}

Scene nonManifoldPoints(const Shown& shown) {
  const TriangleMesh& mesh = *shown.mesh;
  const auto pointsOfKind = [&mesh](VertexKind kind, const Colour& colour) {
    Batch points = plainBatch(Primitive::Points, colour);
    const auto known = std::min(mesh.vertexKind.size(), static_cast<std::size_t>(mesh.vertexCount));
    for (int i = 0; i < static_cast<int>(known); ++i) {
      if (mesh.vertexKind[static_cast<std::size_t>(i)] == kind) addVertices(points, mesh, {{i}});
    }
    return points;
  };
  Batch openEdges = plainBatch(Primitive::Lines, blue);
  const std::size_t edges = std::min(mesh.faceAdjacency.size(), mesh.faces.size());
  for (std::size_t edge = 0; edge < edges; ++edge) {
    if (mesh.faceAdjacency[edge] >= 0) continue;
    const auto corners = mesh.corners(static_cast<int>(edge / 3));
    addVertices(openEdges, mesh, {{corners[edge % 3], corners[nextCorner(edge % 3)]}});
  }
  return {{pointsOfKind(NonManifoldVertex, red), pointsOfKind(BoundaryVertex, cyan),
           std::move(openEdges)}};
}

Scene allPoints(const Shown& shown) {
  const TriangleMesh& mesh = *shown.mesh;
  Batch points = plainBatch(Primitive::Points, brown);
  for (int i = 0; i < mesh.vertexCount; ++i) addVertices(points, mesh, {{i}});
  return {{std::move(points)}};
}

Scene pickedFace(const Shown& shown) {
  const TriangleMesh& mesh = *shown.mesh;
  const std::optional<int> face = pickedFaceOf(mesh);
  if (!face) return {{flatFaces(mesh)}};
  Batch filled = plainBatch(Primitive::Triangles, red);
  addVertices(filled, mesh, mesh.corners(*face));
  return {{flatFaces(mesh, *face), std::move(filled)}};
}

struct SceneRow {
  int mode;
  Scene (*gather)(const Shown& shown);
};

/// What each mode without a field draws. Without a row here it draws nothing.
constexpr SceneRow scenes[] = {
    {SmoothShading, smoothSurface},
    {FlatShading, flatSurface},
    {WireFrame, wireFrame},
    {FlatShadingAlso, flatSurface},
    {DirectionMax, maxDirections},
    {RidgeVertices, ridgeVertices},
    {RidgeDirections, ridgeDirections},
    {RidgeMeshEdges, ridgeMeshEdges},
    {WeightedRidgeLines, weightedRidgeLines},
    {FeatureLines, featureLines},
    {CreaseLines, creaseLines},
    {TensorMax, maxTensors},
    {TensorMin, minTensors},
    {DirectionMin, minDirections},
    {NonManifoldPoints, nonManifoldPoints},
    {Silhouette, penDrawing},
    {StrokeMax, maxStrokes},
    {StrokeMin, minStrokes},
    {Points, allPoints},
    {PickedFace, pickedFace},
    {FaceValues, meanEdgeCurvature},
};

}  // namespace

Scene gatherScene(const Shown& shown) {
  const Mode* mode = findMode(shown.displayMode);
  if (shown.mesh == nullptr || mode == nullptr) return {};
  if (mode->site != Site::None) return fieldOn(mode->site, shown);
  const auto* row = std::ranges::find(scenes, shown.displayMode, &SceneRow::mode);
  return row == std::end(scenes) ? Scene() : row->gather(shown);
}

}  // namespace gravlin
