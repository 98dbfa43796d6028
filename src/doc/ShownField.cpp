#include "doc/ShownField.h"

#include "curvature/CurvatureFields.h"

namespace gravlin {

std::string_view shownFieldName(int displayMode) {
  switch (displayMode) {
    case CurvatureMax:
      return "Maximum curvature";
    case CurvatureMin:
      return "Minimum curvature";
    case CurvatureMean:
      return "Mean curvature";
    case CurvatureGauss:
      return "Gaussian curvature";
    case CurvatureTotal:
      return "Total curvature";
    case EdgeCurvature:
      return "Edge curvature";
    case VertexError:
      return "Vertex error";
    case FaceError:
      return "Face error";
    default:
      return {};
  }
}

std::vector<double> shownFieldValues(const CGravlinDoc& doc) {
  if (!doc.currentMesh) return {};
  const TriangleMesh& mesh = *doc.currentMesh;
  switch (doc.displayMode) {
    case CurvatureMax:
      return curvatureField(mesh, CurvatureField::Max);
    case CurvatureMin:
      return curvatureField(mesh, CurvatureField::Min);
    case CurvatureMean:
      return curvatureField(mesh, CurvatureField::Mean);
    case CurvatureGauss:
      return curvatureField(mesh, CurvatureField::Gauss);
    case CurvatureTotal:
      return curvatureField(mesh, CurvatureField::Total);
    case EdgeCurvature:
      return mesh.edgeCurvatures;
    case VertexError:
      return doc.vertexErrors;
    case FaceError:
      return doc.faceErrors;
    default:
      return {};
  }
}

bool showsPrincipalCurvature(int displayMode) {
  switch (displayMode) {
    case CurvatureMax:
    case CurvatureMin:
    case CurvatureMean:
    case CurvatureGauss:
    case CurvatureTotal:
      return true;
    default:
      return false;
  }
}

std::uint64_t shownFieldShape(const CGravlinDoc& doc) {
  const TriangleMesh& mesh = *doc.currentMesh;
  if (showsPrincipalCurvature(doc.displayMode)) return mesh.curvatureOrigin.shape;
  return doc.displayMode == EdgeCurvature ? mesh.edgeCurvatureOrigin.shape : mesh.shape;
}

}  // namespace gravlin
