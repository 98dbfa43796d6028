#include "remesh/VertexQuadrics.h"

#include "mesh/FaceGeometry.h"
#include "numeric/Index.h"

namespace gravlin {
namespace {

constexpr double boundaryFactor = 10.0;
constexpr double nearlyParallel = 1e-6;

/// The mean over the fan, and the fan's normal: the sum of its faces' normals times their areas.
struct FanSum {
  Quadric mean;
  Vec3 normal;
};

FanSum sumOfFan(const TriangleMesh& mesh, int v) {
  FanSum sum;
  double areas = 0.0;
  for (const int f : mesh.vertexFaces[v]) {
    const Vec3 normal = mesh.faceNormal(f);
    const double offset = -dot(normal, mesh.position(mesh.corners(f)[0]));
    const double area = faceArea(mesh, f);
    sum.mean += area * planeQuadric(normal, offset);
    sum.normal += area * normal;
    areas += area;
  }
  if (areas != 0.0) sum.mean = sum.mean / areas;
  return sum;
}

/// The unit normal of the plane that holds a boundary vertex back; zero where there is none.
Vec3 boundaryNormal(const TriangleMesh& mesh, int v, const Vec3& fanNormal) {
  const auto ring = mesh.vertexNeighbours[v];
  const Vec3 first = mesh.position(ring.front()) - mesh.position(v);
  const Vec3 last = mesh.position(ring.back()) - mesh.position(v);
  const Vec3 normal = cross(first, last);
  const double size = length(normal);
  if (size >= nearlyParallel) return normal / size;
  return unitOrZero(cross(length(first) >= length(last) ? first : last, fanNormal));
}

}  // namespace

std::vector<Quadric> vertexQuadrics(const TriangleMesh& mesh) {
  std::vector<Quadric> quadrics(toIndex(mesh.vertexCount));
  for (int v = 0; v < mesh.vertexCount; ++v) {
    const FanSum fan = sumOfFan(mesh, v);
    Quadric& quadric = quadrics[toIndex(v)];
    quadric = fan.mean;
    if (mesh.vertexKind[toIndex(v)] != BoundaryVertex) continue;
    const Vec3 normal = boundaryNormal(mesh, v, fan.normal);
    quadric += boundaryFactor * planeQuadric(normal, -dot(normal, mesh.position(v)));
  }
  return quadrics;
}

}  // namespace gravlin
