#pragma once

#include <string>
#include <vector>

#include "numeric/Vec3.h"
#include "support/Meshes.h"

namespace gravlin::test {

/// A mesh of the plane z = 0 laid into the plane of u and v: (x, y, 0) comes to x u + y v.
inline TriangleMesh laidInto(TriangleMesh mesh, const Vec3& u, const Vec3& v) {
  for (int i = 0; i < mesh.vertexCount; ++i) {
    const Vec3 p = mesh.position(i);
    mesh.setPosition(i, p.x * u + p.y * v);
  }
  mesh.computeFaceNormals();
  mesh.computeVertexNormals();
  return mesh;
}

/// A grid of 6 x 5 squares in planes that no coordinate plane is parallel to. The first has whole
/// coordinates and is flat to the last bit; of the others, positions are rounded to single
/// precision. Normals are rounded in all.
inline std::vector<NamedMesh> tiltedPlanes() {
  std::vector<NamedMesh> planes = {
      {"whole coordinates", laidInto(grid(6, 5), {2, 1, -2}, {2, -2, 1})}};
  for (const Vec3& normal : {Vec3{0.3, 0.5, 0.8}, Vec3{-0.7, 0.1, 0.2}, Vec3{0.01, -0.02, -1},
                             Vec3{1, 1, 1}, Vec3{-5, 4, 1}}) {
    const Vec3 u = unitOrZero(cross(normal, {0.9, 0.1, -0.2}));
    planes.push_back({"normal along " + std::to_string(normal.x) + ' ' + std::to_string(normal.y) +
                          ' ' + std::to_string(normal.z),
                      laidInto(grid(6, 5), u, unitOrZero(cross(normal, u)))});
  }
  return planes;
}

/// Between unit normals of one plane, each rounded to single precision, the cosine may be off 1 by
/// this much: two lengths of sqrt(3) half units in the last place below 1.
constexpr double cosineRounding = 2.0 * 1.7321 * 2.98e-8;

}  // namespace gravlin::test
