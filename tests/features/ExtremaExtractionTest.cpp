#include <algorithm>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "features/ExtremaExtraction.h"
#include "features/MarkedMeshes.h"
#include "support/Meshes.h"

namespace gravlin {
namespace {

using ::testing::Each;
using namespace gravlin::test;

/// A flat grid whose principal directions are x (maximum) and y (minimum), turned by a hair: a ring
/// vertex exactly on a section plane counts for the side behind from either of its edges.
TriangleMesh gridAlongAxes(int columns, int rows) {
  constexpr double hair = 1e-6;
  TriangleMesh mesh = grid(columns, rows);
  prepareLines(mesh, 0.0, -100.0);
  for (int i = 0; i < mesh.vertexCount; ++i) {
    mesh.maxDirection.insert(mesh.maxDirection.end(), {1.0, hair, 0.0});
    mesh.minDirection.insert(mesh.minDirection.end(), {-hair, 1.0, 0.0});
  }
  return mesh;
}

TEST(ExtremaExtraction, ARidgeIsWhereTheMaximumCurvaturePeaksAlongItsDirection) {
  TriangleMesh mesh = gridAlongAxes(8, 6);
  const GridIndex at{8};
  for (int i = 0; i < mesh.vertexCount; ++i) {
    mesh.maxCurvature[static_cast<std::size_t>(i)] = -std::abs(mesh.position(i).x - 4.0);
  }
  extractExtrema(mesh);
  for (int r = 0; r <= 6; ++r) {
    for (int c = 0; c <= 8; ++c) {
      const bool interior = r > 0 && r < 6 && c > 0 && c < 8;
      EXPECT_EQ(mesh.ridgeMarks[static_cast<std::size_t>(at(c, r))], interior && c == 4 ? 1 : 0)
          << "column " << c << ", row " << r;
    }
  }
  EXPECT_THAT(mesh.valleyMarks, Each(0)) << "the minimum curvature is the same everywhere";
}

// The slope of the maximum curvature along y raises what a ridge has to exceed.
TEST(ExtremaExtraction, ASlopeAcrossTheLineRaisesTheBar) {
  const auto marksWithSlope = [](double bend) {
    TriangleMesh mesh = gridAlongAxes(4, 4);
    for (int i = 0; i < mesh.vertexCount; ++i) {
      const Vec3 p = mesh.position(i);
      mesh.maxCurvature[static_cast<std::size_t>(i)] =
          -0.1 * std::abs(p.x - 2.0) + bend * (p.y - 2.0);
    }
    extractExtrema(mesh);
    return mesh.ridgeMarks[static_cast<std::size_t>(GridIndex{4}(2, 2))];
  };
  // g = slope below + slope above - central slope = bend; the bar is g^2 / (2 (kmax - kmin)) with
  // kmax - kmin = 100: passed by 0.1 while bend^2 < 20.
  EXPECT_EQ(marksWithSlope(4.4), 1);
  EXPECT_EQ(marksWithSlope(4.5), 0);
}

TEST(ExtremaExtraction, ValleysMirrorRidges) {
  TriangleMesh ridges = gridAlongAxes(8, 6);
  for (int i = 0; i < ridges.vertexCount; ++i) {
    const Vec3 p = ridges.position(i);
    ridges.maxCurvature[static_cast<std::size_t>(i)] = std::sin(1.3 * p.x) + 0.2 * std::sin(p.y);
  }
  TriangleMesh valleys = ridges;
  mirrorKinds(valleys);
  extractExtrema(ridges);
  extractExtrema(valleys);
  EXPECT_THAT(ridges.ridgeMarks, ::testing::Contains(1));
  EXPECT_EQ(ridges.ridgeMarks, valleys.valleyMarks);
}

TEST(ExtremaExtraction, EqualCurvaturesEverywhereGiveNoMark) {
  TriangleMesh mesh = gridAlongAxes(5, 5);
  mesh.maxCurvature.assign(mesh.maxCurvature.size(), 3.0);
  mesh.minCurvature.assign(mesh.minCurvature.size(), 3.0);
  extractExtrema(mesh);
  EXPECT_THAT(mesh.ridgeMarks, Each(0));
  EXPECT_THAT(mesh.valleyMarks, Each(0));
}

TEST(ExtremaExtraction, MissingCurvatureAndNormalsAreComputed) {
  TriangleMesh mesh = bumpyGrid(12, 12);
  mesh.vertexNormals.clear();
  extractExtrema(mesh);
  EXPECT_EQ(static_cast<int>(mesh.maxCurvature.size()), mesh.vertexCount);
  EXPECT_THAT(mesh.ridgeMarks, ::testing::Contains(1));
}

TEST(ExtremaExtraction, APlaneThatMissesTheRingKeepsTheCutOfAnEarlierVertex) {
  // Two cones around the x axis with apex 0 and 4; the second one's plane x = 5 misses its ring.
  const auto coneFan = [](float x) {
    return std::vector<std::array<float, 3>>{
        {x, 0, 0}, {x + 1, 1, 0}, {x + 1, 0, 1}, {x + 1, -1, -1}};
  };
  auto points = coneFan(0);
  const auto second = coneFan(5);
  points.insert(points.end(), second.begin(), second.end());
  TriangleMesh mesh =
      makeMesh(points, {{0, 1, 2}, {0, 2, 3}, {0, 3, 1}, {4, 5, 6}, {4, 6, 7}, {4, 7, 5}});
  ASSERT_EQ(mesh.vertexKind[4], InteriorVertex);
  const auto markOfSecond = [&](double firstRing, double apex) {
    TriangleMesh m = mesh;
    prepareLines(m, 0.0, -1e9);
    for (int i = 1; i <= 3; ++i) m.maxCurvature[static_cast<std::size_t>(i)] = firstRing;
    m.maxCurvature[0] = firstRing;
    m.maxCurvature[4] = apex;
    m.maxDirection.assign(24, 0.0);
    m.minDirection.assign(24, 0.0);
    const auto setFrame = [&](int v, const Vec3& n, const Vec3& e1, const Vec3& e2) {
      const auto at = 3 * static_cast<std::size_t>(v);
      storeVec3(m.vertexNormals.data() + at, n);
      storeVec3(m.maxDirection.data() + at, e1);
      storeVec3(m.minDirection.data() + at, e2);
    };
    // The first apex looks along x: both its planes hold the x axis and cut the ring twice.
    setFrame(0, {-1, 0, 0}, {0, 1, 0}, {0, 0, 1});
    // At the second the plane of the maximum direction is x = 5; the other one cuts.
    setFrame(4, {0, 0, 1}, {0, 1, 0}, {1, 0, 0});
    extractExtrema(m);
    return m.ridgeMarks[4];
  };
  EXPECT_EQ(markOfSecond(7.0, 8.0), 1) << "8 is above the 7 that was cut at the first apex";
  EXPECT_EQ(markOfSecond(9.0, 8.0), 0) << "8 is not above the 9 that was cut at the first apex";
}

// The last interior vertex peaks above all others; only the side that is not a number keeps it off.
TEST(ExtremaExtraction, ACutThatIsNotANumberReplacesTheOneOfAnEarlierVertex) {
  TriangleMesh mesh = gridAlongAxes(4, 4);
  const auto peak = static_cast<std::size_t>(GridIndex{4}(3, 3));
  mesh.maxCurvature[peak] = 1.0;
  extractExtrema(mesh);
  ASSERT_EQ(mesh.ridgeMarks[peak], 1);
  mesh.maxDirection[3 * peak] = std::nan("");
  extractExtrema(mesh);
  EXPECT_EQ(mesh.ridgeMarks[peak], 0);
}

TEST(ExtremaExtraction, APositionThatIsNotANumberMarksNeitherItsVertexNorThoseBesideIt) {
  const GridIndex at{8};
  const auto peaked = [&] {
    TriangleMesh mesh = gridAlongAxes(8, 6);
    for (int i = 0; i < mesh.vertexCount; ++i) {
      mesh.maxCurvature[static_cast<std::size_t>(i)] = -std::abs(mesh.position(i).x - 4.0);
    }
    return mesh;
  };
  TriangleMesh mesh = peaked();
  const int broken = at(4, 3);
  mesh.vertices[3 * static_cast<std::size_t>(broken)] = std::nanf("");
  extractExtrema(mesh);
  const auto mark = [&](int column, int row) {
    return mesh.ridgeMarks[static_cast<std::size_t>(at(column, row))];
  };
  EXPECT_EQ(mark(4, 3), 0);
  EXPECT_EQ(mark(4, 1), 1) << "its ring has only numbers";
  EXPECT_EQ(mark(4, 5), 1) << "its ring has only numbers, and new cuts on every side";
}

TEST(ExtremaExtraction, BoundaryAndNonManifoldVerticesGetNoMark) {
  for (auto meshes : {openMeshes(), hostileMeshes(), closedMeshes()}) {
    for (auto& [name, mesh] : meshes) {
      SCOPED_TRACE(name);
      extractExtrema(mesh);
      ASSERT_EQ(static_cast<int>(mesh.ridgeMarks.size()), mesh.vertexCount);
      for (std::size_t i = 0; i < mesh.ridgeMarks.size(); ++i) {
        if (mesh.vertexKind[i] == InteriorVertex) continue;
        EXPECT_EQ(mesh.ridgeMarks[i], 0);
        EXPECT_EQ(mesh.valleyMarks[i], 0);
      }
    }
  }
}

TEST(ExtremaExtraction, ASecondRunGivesTheSameMarks) {
  TriangleMesh mesh = bumpyGrid(20, 20);
  extractExtrema(mesh);
  const auto marks = mesh.ridgeMarks;
  extractExtrema(mesh);
  EXPECT_EQ(mesh.ridgeMarks, marks);
}

}  // namespace
}  // namespace gravlin
