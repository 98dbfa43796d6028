#include "curvature/EdgeCurvature.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "mesh/Corner.h"
#include "mesh/FaceGeometry.h"
#include "numeric/Vec3.h"

namespace gravlin {
namespace {

/// The cosine between two unit face normals, in single precision as the normals are.
double cosineBetween(const float* a, const float* b) {
  return static_cast<double>(std::clamp(a[0] * b[0] + a[1] * b[1] + a[2] * b[2], -1.0F, 1.0F));
}

/// acos(u1) + acos(u2) < 3.14159265. The sum is pi where u1 = -u2 and falls at least as fast as
/// u1 + u2 rises, so the arc cosines are needed only within 1e-8 of that.
bool anglesBelowPi(double u1, double u2) {
  const double above = u1 + u2;
  if (above > 1e-8) return true;
  if (!(above > 0.0)) return false;
  return std::acos(u1) + std::acos(u2) < 3.14159265;
}

/// Whether both normals tilt away from the other face, `d` leading from g's centroid to f's.
/// Faces with the same centroid count as convex.
bool isConvex(const Vec3& normalF, const Vec3& normalG, const Vec3& d) {
  const double distance = length(d);
  if (distance == 0.0) return true;
  const double u1 = std::clamp(dot(normalF, d) / distance, -1.0, 1.0);
  const double u2 = std::clamp(-dot(normalG, d) / distance, -1.0, 1.0);
  return anglesBelowPi(u1, u2);
}

/// What one face brings into the values of its edges.
struct Facet {
  int face;
  double area;
  Vec3 centroid;
};

Facet facetOf(const TriangleMesh& mesh, int face) {
  return {face, faceArea(mesh, face), faceCentroid(mesh, face)};
}

double edgeCurvature(const TriangleMesh& mesh, const Facet& f, const Facet& g, std::size_t edge) {
  if (f.area == 0.0 || g.area == 0.0) return 0.0;
  const auto c = mesh.corners(f.face);
  const Vec3 along = mesh.position(c[nextCorner(edge)]) - mesh.position(c[edge]);
  const double angle =
      std::acos(cosineBetween(mesh.faceNormals.data() + 3 * static_cast<std::size_t>(f.face),
                              mesh.faceNormals.data() + 3 * static_cast<std::size_t>(g.face)));
  const double value = length(along) * angle / (f.area + g.area);
  return isConvex(mesh.faceNormal(f.face), mesh.faceNormal(g.face), f.centroid - g.centroid)
             ? -value
             : value;
}

}  // namespace

void computeEdgeCurvatures(TriangleMesh& mesh) {
  if (mesh.faceNormals.empty()) mesh.computeFaceNormals();
  mesh.edgeCurvatures.assign(mesh.faceAdjacency.size(), 0.0);
  mesh.edgeCurvatureOrigin = mesh.here();
  for (int face = 0; face < mesh.faceCount; ++face) {
    if (!mesh.validFace(face)) continue;
    const Facet f = facetOf(mesh, face);
    for (std::size_t j = 0; j < 3; ++j) {
      const std::size_t entry = 3 * static_cast<std::size_t>(face) + j;
      const int other = mesh.faceAdjacency[entry];
      // Each edge is evaluated once, from the face with the larger index.
      if (other < 0 || other > face) continue;
      const double value = edgeCurvature(mesh, f, facetOf(mesh, other), j);
      mesh.edgeCurvatures[entry] = value;
      const auto back = mesh.faceAdjacency.begin() + 3 * static_cast<std::ptrdiff_t>(other);
      const auto place = std::find(back, back + 3, face) - mesh.faceAdjacency.begin();
      if (place < back + 3 - mesh.faceAdjacency.begin()) {
        mesh.edgeCurvatures[static_cast<std::size_t>(place)] = value;
      }
    }
  }
}

}  // namespace gravlin
