#include "doc/ModeTable.h"

#include <algorithm>

#include "curvature/CurvatureFields.h"

namespace gravlin {
namespace {

template <CurvatureField field>
std::vector<double> curvatures(const FieldSource& source) {
  return curvatureField(source.mesh, field);
}

std::vector<double> edgeCurvatures(const FieldSource& source) {
  return source.mesh.edgeCurvatures;
}

std::vector<double> vertexErrors(const FieldSource& source) {
  return {source.vertexErrors.begin(), source.vertexErrors.end()};
}

std::vector<double> faceErrors(const FieldSource& source) {
  return {source.faceErrors.begin(), source.faceErrors.end()};
}

constexpr Mode modes[] = {
    {.number = SmoothShading},
    {.number = FlatShading},
    {.number = WireFrame},
    {.number = FlatShadingAlso},
    {.number = DirectionMax, .needs = Needs::Curvature},
    {.number = DirectionMin, .needs = Needs::Curvature},
    {.number = TensorMax, .needs = Needs::Curvature},
    {.number = TensorMin, .needs = Needs::Curvature},
    {.number = RidgeVertices},
    {.number = RidgeDirections},
    {.number = RidgeMeshEdges},
    {.number = WeightedRidgeLines},
    {.number = FeatureLines, .needs = Needs::Creases},
    {.number = CreaseLines},
    {.number = NonManifoldPoints},
    {.number = Silhouette},
    {.number = StrokeMax},
    {.number = StrokeMin},
    {.number = Points},
    {.number = PickedFace},
    {.number = FaceValues},

    {.number = CurvatureMax,
     .needs = Needs::Curvature,
     .field = "maximum curvature",
     .site = Site::Vertices,
     .values = curvatures<CurvatureField::Max>,
     .lengthPower = -1,
     .origin = &TriangleMesh::curvatureOrigin},
    {.number = CurvatureMin,
     .needs = Needs::Curvature,
     .field = "minimum curvature",
     .site = Site::Vertices,
     .values = curvatures<CurvatureField::Min>,
     .lengthPower = -1,
     .origin = &TriangleMesh::curvatureOrigin},
    {.number = CurvatureMean,
     .needs = Needs::Curvature,
     .field = "mean curvature",
     .site = Site::Vertices,
     .values = curvatures<CurvatureField::Mean>,
     .lengthPower = -1,
     .origin = &TriangleMesh::curvatureOrigin},
    {.number = CurvatureGauss,
     .needs = Needs::Curvature,
     .field = "Gaussian curvature",
     .site = Site::Vertices,
     .values = curvatures<CurvatureField::Gauss>,
     .lengthPower = -2,
     .origin = &TriangleMesh::curvatureOrigin},
    {.number = CurvatureTotal,
     .needs = Needs::Curvature,
     .field = "total curvature",
     .site = Site::Vertices,
     .values = curvatures<CurvatureField::Total>,
     .lengthPower = -1,
     .origin = &TriangleMesh::curvatureOrigin},
    {.number = EdgeCurvature,
     .needs = Needs::EdgeCurvature,
     .field = "edge curvature",
     .site = Site::Edges,
     .values = edgeCurvatures,
     .lengthPower = -1,
     .origin = &TriangleMesh::edgeCurvatureOrigin},
    {.number = VertexError,
     .needs = Needs::VertexErrors,
     .field = "vertex error",
     .site = Site::Vertices,
     .values = vertexErrors,
     .lengthPower = 1},
    {.number = FaceError,
     .needs = Needs::FaceErrors,
     .field = "face error",
     .site = Site::Faces,
     .values = faceErrors},
};

}  // namespace

std::span<const Mode> modeTable() {
  return modes;
}

const Mode* findMode(int number) {
  const Mode* row = std::ranges::find(modes, number, &Mode::number);
  return row == std::end(modes) ? nullptr : row;
}

std::size_t valueCount(Site site, const TriangleMesh& mesh) {
  switch (site) {
    case Site::None:
      return 0;
    case Site::Vertices:
      return static_cast<std::size_t>(mesh.vertexCount);
    case Site::Edges:
      return 3 * static_cast<std::size_t>(mesh.faceCount);
    case Site::Faces:
      return static_cast<std::size_t>(mesh.faceCount);
  }
  return 0;
}

std::string fieldTitle(const Mode& mode) {
  std::string title(mode.field);
  if (!title.empty() && title[0] >= 'a' && title[0] <= 'z') {
    title[0] = static_cast<char>(title[0] - 'a' + 'A');
  }
  return title;
}

FieldOrigin fieldOrigin(const Mode& mode, const TriangleMesh& mesh) {
  return mode.origin == nullptr ? mesh.here() : mesh.*mode.origin;
}

bool showsPrincipalCurvature(const Mode& mode) {
  return mode.origin == &TriangleMesh::curvatureOrigin;
}

}  // namespace gravlin
