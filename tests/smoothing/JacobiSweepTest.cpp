#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>

#include "smoothing/JacobiSweep.h"
#include "support/Meshes.h"

namespace gravlin {
namespace {

TEST(JacobiSweep, ComputesEveryDisplacementFromThePositionsBeforeTheSweep) {
  TriangleMesh mesh = test::octahedron();
  const TriangleMesh before = mesh;
  JacobiSweep sweep(mesh);
  // Every vertex moves to where vertex 0 was; vertex 0 itself moves away first.
  sweep.run(1.0, [&](int i) {
    EXPECT_EQ(mesh.position(0), before.position(0));
    return i == 0 ? Vec3{5, 5, 5} : mesh.position(0) - mesh.position(i);
  });
  EXPECT_EQ(mesh.position(0), (Vec3{6, 5, 5}));
  for (int i = 1; i < 6; ++i) EXPECT_EQ(mesh.position(i), before.position(0));
}

TEST(JacobiSweep, GoesOnFromWhereTheLastSweepEnded) {
  TriangleMesh mesh = test::octahedron();
  JacobiSweep sweep(mesh);
  for (int count = 0; count < 3; ++count) sweep.run(0.5, [](int) { return Vec3{2, 0, -4}; });
  EXPECT_EQ(mesh.position(0), (Vec3{4, 0, -6}));
}

TEST(JacobiSweep, RoundsTheSumOnceWhenItIsStored) {
  TriangleMesh mesh = test::octahedron();
  JacobiSweep sweep(mesh);
  sweep.run(1.0 / 3.0, [](int) { return Vec3{0.1, 0, 0}; });
  EXPECT_EQ(mesh.vertices[0], static_cast<float>(1.0 + 1.0 / 3.0 * 0.1));
}

TEST(JacobiSweep, KeepsTheBitsOfEveryVertexThatIsNotInterior) {
  for (const test::NamedMesh& named : test::hostileMeshes()) {
    TriangleMesh mesh = named.mesh;
    if (!mesh.vertices.empty()) mesh.vertices[0] = -0.0F;
    const TriangleMesh before = mesh;
    JacobiSweep sweep(mesh);
    const double infinity = std::numeric_limits<double>::infinity();
    for (int count = 0; count < 3; ++count) {
      sweep.run(infinity, [](int) { return Vec3{std::nan(""), 0, 0}; });
    }
    for (int i = 0; i < mesh.vertexCount; ++i) {
      const std::size_t at = 3 * toIndex(i);
      const auto bits = [at](const TriangleMesh& m) {
        std::array<std::uint32_t, 3> of = {};
        for (std::size_t k = 0; k < 3; ++k)
          of[k] = std::bit_cast<std::uint32_t>(m.vertices[at + k]);
        return of;
      };
      const bool same = bits(mesh) == bits(before);
      EXPECT_EQ(same, mesh.vertexKind[toIndex(i)] != InteriorVertex) << named.name << ' ' << i;
    }
  }
}

}  // namespace
}  // namespace gravlin
