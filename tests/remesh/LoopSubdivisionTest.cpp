#include <algorithm>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <numbers>

#include "numeric/Index.h"
#include "remesh/LoopSubdivision.h"
#include "remesh/RefinementChecks.h"
#include "support/Meshes.h"

namespace gravlin {
namespace {

using test::distance;
using test::edgePoint;
using test::unevenFan;

/// The eigenvalue of the subdivision of a ring of n: neighbours shrink by it towards the vertex.
double subdominantEigenvalue(int n) {
  return 0.375 + 0.25 * std::cos(2.0 * std::numbers::pi / n);
}

double weightOfNeighbour(int n) {
  return (0.625 - std::pow(subdominantEigenvalue(n), 2)) / n;
}

/// Where vertex i goes when the mesh is refined for ever.
Vec3 limitPosition(const TriangleMesh& mesh, int i) {
  const auto ring = mesh.vertexNeighbours[i];
  const int n = static_cast<int>(ring.size());
  const double share = 1.0 / (n + 3.0 / (8.0 * weightOfNeighbour(n)));
  Vec3 limit = (1.0 - n * share) * mesh.position(i);
  for (const int j : ring) limit += share * mesh.position(j);
  return limit;
}

/// A tangent of the limit surface at vertex i, starting from its neighbour `first`.
Vec3 limitTangent(const TriangleMesh& mesh, int i, std::size_t first) {
  const auto ring = mesh.vertexNeighbours[i];
  Vec3 tangent;
  for (std::size_t k = 0; k < ring.size(); ++k) {
    const double angle =
        2.0 * std::numbers::pi * static_cast<double>(k) / static_cast<double>(ring.size());
    tangent += std::cos(angle) * mesh.position(ring[(first + k) % ring.size()]);
  }
  return tangent;
}

TEST(LoopSubdivision, OfOneTriangleMovesCornersAndHalvesSides) {
  const TriangleMesh mesh = loopSubdivision(test::singleTriangle());
  // (6 x + first + last) / 8 with x the corner and first, last the other two.
  EXPECT_EQ(mesh.position(0), (Vec3{0.125, 0.125, 0}));
  EXPECT_EQ(mesh.position(1), (Vec3{0.75, 0.125, 0}));
  EXPECT_EQ(mesh.position(2), (Vec3{0.125, 0.75, 0}));
  EXPECT_EQ(mesh.position(3), (Vec3{0.5, 0, 0}));
  EXPECT_EQ(mesh.position(4), (Vec3{0.5, 0.5, 0}));
  EXPECT_EQ(mesh.position(5), (Vec3{0, 0.5, 0}));
}

TEST(LoopSubdivision, RegularVertexTakesASixteenthOfEachNeighbour) {
  TriangleMesh old = test::hexagonFan();
  old.setPosition(0, {0, 0, 8});
  const TriangleMesh mesh = loopSubdivision(old);
  EXPECT_NEAR(distance(mesh.position(0), {0, 0, 5}), 0.0, 1e-6);
}

TEST(LoopSubdivision, EdgePointTakesThreeEighthsOfItsEndsAndAnEighthOfTheOppositeCorners) {
  // The diagonal of a square joins two boundary vertices and has two faces all the same.
  const TriangleMesh mesh = loopSubdivision(
      test::makeMesh({{0, 0, 0}, {8, 0, 0}, {8, 8, 8}, {0, 8, 0}}, {{0, 1, 2}, {0, 2, 3}}));
  EXPECT_EQ(mesh.position(6), (Vec3{4, 4, 3}));
}

TEST(LoopSubdivision, LimitPositionIsTheSameBeforeAndAfterARefinement) {
  for (const int n : {3, 4, 5, 6, 7, 9, 20}) {
    const TriangleMesh old = unevenFan(n);
    const TriangleMesh mesh = loopSubdivision(old);
    // Ten roundings to single precision of coordinates below 2.
    EXPECT_NEAR(distance(limitPosition(mesh, 0), limitPosition(old, 0)), 0.0, 1e-6) << n;
  }
}

TEST(LoopSubdivision, LimitTangentsShrinkByTheSubdominantEigenvalue) {
  for (const int n : {3, 4, 5, 6, 7, 9, 20}) {
    const TriangleMesh old = unevenFan(n);
    const TriangleMesh mesh = loopSubdivision(old);
    for (const std::size_t first : {0U, 1U}) {
      const Vec3 wanted = subdominantEigenvalue(n) * limitTangent(old, 0, first);
      EXPECT_NEAR(distance(limitTangent(mesh, 0, first), wanted), 0.0, 3e-6) << n;
    }
  }
}

TEST(LoopSubdivision, CommutesWithAffineMaps) {
  const auto mapped = [](TriangleMesh mesh) {
    for (int i = 0; i < mesh.vertexCount; ++i) {
      const Vec3 p = mesh.position(i);
      mesh.setPosition(i, {2.0 * p.x - p.y + 3.0, 0.5 * p.y + p.z - 1.0, p.x + p.y + p.z});
    }
    return mesh;
  };
  for (const TriangleMesh& old : {unevenFan(5), test::icosphere(1), test::bumpyGrid(5, 4)}) {
    const TriangleMesh a = loopSubdivision(mapped(old));
    const TriangleMesh b = mapped(loopSubdivision(old));
    for (int i = 0; i < a.vertexCount; ++i) {
      EXPECT_NEAR(distance(a.position(i), b.position(i)), 0.0, 1e-5);
    }
  }
}

TEST(LoopSubdivision, BoundaryCurveDoesNotDependOnTheInterior) {
  const TriangleMesh old = test::bumpyGrid(6, 5);
  TriangleMesh moved = old;
  for (int i = 0; i < old.vertexCount; ++i) {
    if (old.vertexKind[toIndex(i)] == InteriorVertex) {
      moved.setPosition(i, old.position(i) + Vec3{0.1, 0.2, 3.0});
    }
  }
  const TriangleMesh a = loopSubdivision(old);
  const TriangleMesh b = loopSubdivision(moved);
  int onBoundary = 0;
  for (int i = 0; i < a.vertexCount; ++i) {
    if (a.vertexKind[toIndex(i)] != BoundaryVertex) continue;
    EXPECT_EQ(a.position(i), b.position(i));
    ++onBoundary;
  }
  EXPECT_EQ(onBoundary, 2 * 2 * (6 + 5));
}

TEST(LoopSubdivision, KeepsNonManifoldAndUnusedVertices) {
  for (const TriangleMesh& old : {test::bowTie(), test::threeFacesOnAnEdge(), test::pointsOnly()}) {
    const TriangleMesh mesh = loopSubdivision(old);
    for (int i = 0; i < old.vertexCount; ++i) {
      if (old.vertexKind[toIndex(i)] == NonManifoldVertex) {
        EXPECT_EQ(mesh.position(i), old.position(i));
      }
    }
  }
}

TEST(LoopSubdivision, EdgePointAtANonManifoldEndLooksAtBothFacesAllTheSame) {
  const TriangleMesh old = test::touchingOctahedra();
  ASSERT_EQ(old.vertexKind[0], NonManifoldVertex);
  const TriangleMesh mesh = loopSubdivision(old);
  // Vertex 0 and (1, 0, 1), beside (0, 1, 1) and (0, -1, 1).
  EXPECT_EQ(edgePoint(mesh, 0, 1), (Vec3{0.375, 0, 0.625}));
}

TEST(LoopSubdivision, ClosedVertexOfTwoNeighboursTakesItsShareOfBoth) {
  // Both sides of one triangle. (5/8 - (3/8 + cos(pi) / 4)^2) / 2 = (5/8 - 1/64) / 2 = 39/128.
  const TriangleMesh mesh = loopSubdivision(
      test::makeMesh({{0, 0, 0}, {128, 0, 0}, {0, 128, 0}}, {{0, 1, 2}, {0, 2, 1}}));
  EXPECT_EQ(mesh.position(0), (Vec3{39, 39, 0}));
}

TEST(LoopSubdivision, BringsASphereTowardsALimitInsideIt) {
  TriangleMesh mesh = test::icosphere(1);
  for (int step = 0; step < 3; ++step) mesh = loopSubdivision(mesh);
  for (int i = 0; i < mesh.vertexCount; ++i) {
    const double radius = length(mesh.position(i));
    EXPECT_LT(radius, 1.0);
    EXPECT_GT(radius, 0.9);
  }
}

// All weights of the scheme are positive and sum up to 1.
TEST(LoopSubdivision, KeepsAnyMeshWithinItsBoxAndGivesTheSameBitsTwice) {
  for (const auto& [name, old] : test::hostileMeshes()) {
    SCOPED_TRACE(name);
    const TriangleMesh mesh = loopSubdivision(old);
    test::expectRefined(old, mesh);
    EXPECT_TRUE(test::sameVertices(mesh, loopSubdivision(old)));
    if (!test::isFinite(old)) continue;
    EXPECT_TRUE(test::isFinite(mesh));
    for (std::size_t c = 0; c < mesh.vertices.size(); ++c) {
      float least = std::numeric_limits<float>::infinity();
      float largest = -least;
      for (std::size_t k = c % 3; k < old.vertices.size(); k += 3) {
        least = std::min(least, old.vertices[k]);
        largest = std::max(largest, old.vertices[k]);
      }
      EXPECT_GE(mesh.vertices[c], least);
      EXPECT_LE(mesh.vertices[c], largest);
    }
  }
}

}  // namespace
}  // namespace gravlin
