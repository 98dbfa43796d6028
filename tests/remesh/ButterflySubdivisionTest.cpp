#include <algorithm>
#include <cmath>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <numbers>

#include "numeric/Index.h"
#include "remesh/ButterflySubdivision.h"
#include "remesh/RefinementChecks.h"
#include "support/Meshes.h"

namespace gravlin {
namespace {

using test::distance;
using test::edgePoint;
using test::unevenFan;

/// The rule of a vertex of valence K as its definition reads.
Vec3 ruleAt(const TriangleMesh& mesh, int v, int neighbour) {
  const auto ring = mesh.vertexNeighbours[v];
  const auto K = ring.size();
  const auto start =
      static_cast<std::size_t>(std::find(ring.begin(), ring.end(), neighbour) - ring.begin());
  const auto x = [&](std::size_t j) { return mesh.position(ring[(start + j) % K]); };
  Vec3 sum;
  if (K == 3) {
    sum = (5.0 * x(0) - x(1) - x(2)) * 0.25 / 3.0;
  } else if (K == 4) {
    sum = (3.0 * x(0) - x(2)) * 0.5 / 4.0;
  } else {
    for (std::size_t j = 0; j < K; ++j) {
      const double t = 2.0 * std::numbers::pi * static_cast<double>(j) / static_cast<double>(K);
      sum += (0.25 + std::cos(t) + 0.5 * std::cos(2.0 * t)) / static_cast<double>(K) * x(j);
    }
  }
  return 0.75 * mesh.position(v) + sum;
}

/// Two apexes over an uneven closed rim of n vertices of valence 4.
TriangleMesh doubleCone(int n) {
  std::vector<std::array<float, 3>> points = {{0, 0, 1}, {0.2F, 0, -1}};
  std::vector<std::array<int, 3>> faces;
  for (int k = 0; k < n; ++k) {
    const double angle = 2.0 * std::numbers::pi * k / n;
    const double radius = 1.0 + 0.3 * std::sin(7.0 * k);
    points.push_back({static_cast<float>(radius * std::cos(angle)),
                      static_cast<float>(radius * std::sin(angle)), 0.0F});
    faces.push_back({0, 2 + k, 2 + (k + 1) % n});
    faces.push_back({1, 2 + (k + 1) % n, 2 + k});
  }
  return test::makeMesh(points, faces);
}

/// The regular grid of triangles with z = height(x, y).
TriangleMesh gridWithHeight(int size, const std::function<double(double, double)>& height) {
  TriangleMesh mesh = test::grid(size, size);
  for (int i = 0; i < mesh.vertexCount; ++i) {
    const Vec3 p = mesh.position(i);
    mesh.setPosition(i, {p.x, p.y, height(p.x, p.y)});
  }
  return mesh;
}

TEST(ButterflySubdivision, KeepsOldVerticesToTheBit) {
  for (const TriangleMesh& old : {unevenFan(7), test::icosphere(2), test::bumpyGrid(5, 4)}) {
    const TriangleMesh mesh = butterflySubdivision(old);
    EXPECT_TRUE(std::equal(old.vertices.begin(), old.vertices.end(), mesh.vertices.begin()));
  }
}

TEST(ButterflySubdivision, TenPointStencilBetweenTwoRegularVertices) {
  // A grid of squares, each cut from its lower left to its upper right; seven vertices in a row.
  //   31 - 32 - 33
  //    | /  | /  |      The edge 24-25 has the opposite corners 32 and 17; the other faces at
  //   24 - 25 - 26      their four sides end in the wings. One vertex at a time is raised.
  //  / | /  |
  // 16-17 - 18
  struct Part {
    int vertex;
    double weight;
  };
  for (const Part& part : {Part{24, 8}, Part{25, 8}, Part{33, -1}, Part{32, 2}, Part{17, 2},
                           Part{31, -1}, Part{16, -1}, Part{26, 0}, Part{23, 0}, Part{18, -1}}) {
    TriangleMesh old = test::grid(6, 6);
    old.setPosition(part.vertex, old.position(part.vertex) + Vec3{0, 0, 16});
    const TriangleMesh mesh = butterflySubdivision(old);
    EXPECT_EQ(edgePoint(mesh, 24, 25).z, part.weight) << part.vertex;
  }
}

TEST(ButterflySubdivision, ReproducesCubicPolynomialsOnARegularGrid) {
  const std::vector<std::function<double(double, double)>> cubics = {
      [](double x, double y) { return 0.25 * x - 0.5 * y + 1.0; },
      [](double x, double y) { return 0.125 * x * x - 0.25 * x * y + 0.0625 * y * y; },
      [](double x, double y) { return (x * x * x - 2.0 * x * x * y + x * y * y) / 64.0; },
      [](double x, double y) { return (y * y * y - x * x * x) / 64.0; }};
  for (const auto& cubic : cubics) {
    const TriangleMesh old = gridWithHeight(8, cubic);
    const TriangleMesh mesh = butterflySubdivision(old);
    int seen = 0;
    for (int a = 0; a < old.vertexCount; ++a) {
      for (const int b : old.vertexNeighbours[a]) {
        if (old.vertexKind[toIndex(a)] != InteriorVertex) continue;
        if (old.vertexKind[toIndex(b)] != InteriorVertex) continue;
        const Vec3 p = edgePoint(mesh, a, b);
        // Heights stay below 16 and are rounded to single precision.
        EXPECT_NEAR(p.z, cubic(p.x, p.y), 4e-6);
        ++seen;
      }
    }
    EXPECT_GT(seen, 100);
  }
}

TEST(ButterflySubdivision, RuleOfTheEndThatIsNotRegular) {
  // The apex of a fan of six has valence 6, the vertices around it have 5.
  const TriangleMesh old = unevenFan(6);
  const TriangleMesh mesh = butterflySubdivision(old);
  for (int k = 1; k <= 6; ++k) {
    ASSERT_EQ(old.neighbourCount(k), 5);
    EXPECT_NEAR(distance(edgePoint(mesh, 0, k), ruleAt(old, k, 0)), 0.0, 1e-7);
  }
}

TEST(ButterflySubdivision, MeanOfTheRulesWhereBothEndsAreNotRegular) {
  for (const int n : {3, 4, 5, 7, 11, 63, 64, 100}) {
    for (const TriangleMesh& old : {unevenFan(n), doubleCone(n)}) {
      const TriangleMesh mesh = butterflySubdivision(old);
      for (const int k : old.vertexNeighbours[0]) {
        ASSERT_NE(old.neighbourCount(k), 6);
        const Vec3 wanted = 0.5 * (ruleAt(old, 0, k) + ruleAt(old, k, 0));
        EXPECT_NEAR(distance(edgePoint(mesh, 0, k), wanted), 0.0, 2e-7) << n;
      }
    }
  }
}

TEST(ButterflySubdivision, WeightsOfValenceThreeByHand) {
  // Both ends of every edge of a tetrahedron have valence 3: 3/8 of each end and from both rules
  // 5/24 of the other end and -1/24 - 1/24 of each of the two corners.
  const TriangleMesh old = test::tetrahedron();
  const TriangleMesh mesh = butterflySubdivision(old);
  const double end = 0.375 + 5.0 / 24.0;
  const Vec3 wanted =
      end * (old.position(1) + old.position(2)) - 1.0 / 12.0 * (old.position(0) + old.position(3));
  EXPECT_NEAR(distance(edgePoint(mesh, 1, 2), wanted), 0.0, 1e-7);
}

TEST(ButterflySubdivision, FourPointRuleAlongTheBoundary) {
  // The lower side of a grid, one corner of which is raised.
  TriangleMesh old = test::grid(4, 3);
  old.setPosition(1, {1, 0, 16});
  const TriangleMesh mesh = butterflySubdivision(old);
  EXPECT_EQ(edgePoint(mesh, 0, 1).z, 9) << "the far end of 0 lies on the other side";
  EXPECT_EQ(edgePoint(mesh, 1, 2).z, 9);
  EXPECT_EQ(edgePoint(mesh, 2, 3).z, -1);
  EXPECT_EQ(edgePoint(mesh, 3, 4).z, 0);
  EXPECT_EQ(edgePoint(mesh, 0, 5).z, -1) << "around the corner";
}

TEST(ButterflySubdivision, BoundaryCurveDoesNotDependOnTheInterior) {
  const TriangleMesh old = test::bumpyGrid(6, 5);
  TriangleMesh moved = old;
  for (int i = 0; i < old.vertexCount; ++i) {
    if (old.vertexKind[toIndex(i)] == InteriorVertex) {
      moved.setPosition(i, old.position(i) + Vec3{0.1, 0.2, 3.0});
    }
  }
  const TriangleMesh a = butterflySubdivision(old);
  const TriangleMesh b = butterflySubdivision(moved);
  for (int i = 0; i < a.vertexCount; ++i) {
    if (a.vertexKind[toIndex(i)] == BoundaryVertex) {
      EXPECT_EQ(a.position(i), b.position(i));
    }
  }
}

TEST(ButterflySubdivision, MidpointsWhereAnEndOfAnInnerEdgeIsNotInterior) {
  const TriangleMesh old = test::bumpyGrid(4, 3);
  const TriangleMesh mesh = butterflySubdivision(old);
  int seen = 0;
  for (int a = 0; a < old.vertexCount; ++a) {
    if (old.vertexKind[toIndex(a)] != InteriorVertex) continue;
    for (const int b : old.vertexNeighbours[a]) {
      if (old.vertexKind[toIndex(b)] == InteriorVertex) continue;
      const Vec3 middle = 0.5 * (old.position(a) + old.position(b));
      EXPECT_NEAR(distance(edgePoint(mesh, a, b), middle), 0.0, 3e-7);
      ++seen;
    }
  }
  EXPECT_GT(seen, 0);
}

TEST(ButterflySubdivision, MidpointsAtNonManifoldEndsAndClosedValenceTwo) {
  const TriangleMesh bow = test::bowTie();
  const TriangleMesh ofBow = butterflySubdivision(bow);
  EXPECT_EQ(edgePoint(ofBow, 0, 1), (Vec3{0.5, 0, 0}));

  const TriangleMesh touching = test::touchingOctahedra();
  EXPECT_EQ(edgePoint(butterflySubdivision(touching), 0, 1), (Vec3{0.5, 0, 0.5}));

  // Both sides of one triangle: three closed vertices of valence 2.
  const TriangleMesh pillow =
      test::makeMesh({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 1, 2}, {0, 2, 1}});
  ASSERT_EQ(pillow.vertexKind[0], InteriorVertex);
  const TriangleMesh mesh = butterflySubdivision(pillow);
  EXPECT_EQ(mesh.position(3), (Vec3{0, 0.5, 0}));
  EXPECT_EQ(mesh.position(4), (Vec3{0.5, 0.5, 0}));
  EXPECT_EQ(mesh.position(5), (Vec3{0.5, 0, 0}));
}

TEST(ButterflySubdivision, CommutesWithAffineMaps) {
  const auto mapped = [](TriangleMesh mesh) {
    for (int i = 0; i < mesh.vertexCount; ++i) {
      const Vec3 p = mesh.position(i);
      mesh.setPosition(i, {2.0 * p.x - p.y + 3.0, 0.5 * p.y + p.z - 1.0, p.x + p.y + p.z});
    }
    return mesh;
  };
  for (const TriangleMesh& old : {unevenFan(5), doubleCone(80), test::bumpyGrid(5, 4)}) {
    const TriangleMesh a = butterflySubdivision(mapped(old));
    const TriangleMesh b = mapped(butterflySubdivision(old));
    for (int i = 0; i < a.vertexCount; ++i) {
      EXPECT_NEAR(distance(a.position(i), b.position(i)), 0.0, 1e-5);
    }
  }
}

TEST(ButterflySubdivision, LeavesTheVerticesOfAnyMeshInPlaceAndGivesTheSameBitsTwice) {
  for (const auto& [name, old] : test::hostileMeshes()) {
    SCOPED_TRACE(name);
    const TriangleMesh mesh = butterflySubdivision(old);
    test::expectRefined(old, mesh);
    EXPECT_TRUE(test::sameVertices(mesh, butterflySubdivision(old)));
    for (int i = 0; i < old.vertexCount; ++i) {
      EXPECT_TRUE(test::sameBits(mesh.position(i), old.position(i))) << i;
    }
    if (test::isFinite(old)) {
      EXPECT_TRUE(test::isFinite(mesh));
    }
  }
}

}  // namespace
}  // namespace gravlin
