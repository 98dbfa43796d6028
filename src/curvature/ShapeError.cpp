#include "curvature/ShapeError.h"

#include <cmath>
#include <cstddef>
#include <optional>

#include "mesh/FaceGeometry.h"
#include "mesh/SurfaceIndex.h"
#include "numeric/ParallelLoop.h"
#include "numeric/Vec3.h"

namespace gravlin {
namespace {

/// Unit normal from the positions; zero for an invalid face or one without area.
Vec3 normalOf(const TriangleMesh& mesh, int f) {
  if (!mesh.validFace(f)) return {};
  const auto c = mesh.corners(f);
  const Vec3 p = mesh.position(c[0]);
  return unitOrZero(cross(mesh.position(c[1]) - p, mesh.position(c[2]) - p));
}

double angleBetween(const Vec3& a, const Vec3& b) {
  // Without a normal the angle is 0. A sum of -0, to which 0 is added here, would make it pi.
  return std::atan2(length(cross(a, b)), dot(a, b) + 0.0);
}

}  // namespace

std::vector<double> vertexErrors(const TriangleMesh& mesh, const TriangleMesh& ideal) {
  std::vector<double> errors(static_cast<std::size_t>(mesh.vertexCount), 0.0);
  std::optional<SurfaceIndex> surface;
  if (mesh.vertexCount != ideal.vertexCount) surface.emplace(ideal);
  parallelFor(mesh.vertexCount, [&](int i) {
    double& error = errors[static_cast<std::size_t>(i)];
    if (!surface) {
      error = length(mesh.position(i) - ideal.position(i));
    } else if (const auto nearest = surface->nearest(mesh.position(i))) {
      error = nearest->distance;
    }
  });
  return errors;
}

std::vector<double> faceErrors(const TriangleMesh& mesh, const TriangleMesh& ideal) {
  std::vector<double> errors(static_cast<std::size_t>(mesh.faceCount), 0.0);
  std::optional<SurfaceIndex> surface;
  if (mesh.vertexCount != ideal.vertexCount || mesh.faceCount != ideal.faceCount) {
    surface.emplace(ideal);
  }
  parallelFor(mesh.faceCount, [&](int f) {
    if (!mesh.validFace(f)) return;
    int other = f;
    if (surface) {
      const auto nearest = surface->nearest(faceCentroid(mesh, f));
      if (!nearest) return;
      other = nearest->face;
    }
    errors[static_cast<std::size_t>(f)] = angleBetween(mesh.faceNormal(f), normalOf(ideal, other));
  });
  return errors;
}

}  // namespace gravlin
