#include <algorithm>
#include <array>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>
#include <vector>

#include "features/ExtremaExtraction.h"
#include "features/MarkedMeshes.h"
#include "numeric/Index.h"
#include "support/Meshes.h"
#include "support/MeshFields.h"

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

/// The marks found step by step with no regard to time, and how often the rarer steps were taken.
struct PlainExtraction {
  struct Record {
    double max = 0.0;      ///< maximum curvature
    double min = 0.0;      ///< minimum curvature
    double squared = 0.0;  ///< distance, squared
  };
  const TriangleMesh& mesh;
  std::vector<int> ridgeMarks;
  std::vector<int> valleyMarks;
  std::array<std::array<Record, 2>, 2> records{};  ///< by plane, then behind and ahead
  int insideEdges = 0;                             ///< cuts strictly between the ends of an edge
  int onPlane = 0;                                 ///< second ends exactly on the plane
  int overwritten = 0;

  explicit PlainExtraction(const TriangleMesh& m) : mesh(m) {
    for (int i = 0; i < mesh.vertexCount; ++i) visit(i);
  }

  void visit(int i) {
    const auto at = static_cast<std::size_t>(i);
    ridgeMarks.push_back(0);
    valleyMarks.push_back(0);
    const auto ring = mesh.getNeighbours(i);
    if (mesh.vertexKind[at] != InteriorVertex || ring.empty()) return;
    const Vec3 N = mesh.vertexNormal(i);
    const std::array planes = {cross(N, loadVec3(&mesh.maxDirection[3 * at])),
                               cross(N, loadVec3(&mesh.minDirection[3 * at]))};
    for (std::size_t plane = 0; plane < 2; ++plane) {
      std::array cuts = {0, 0};
      for (std::size_t q = 0; q < ring.size(); ++q) {
        cutEdge(i, ring[q], ring[(q + 1) % ring.size()], planes[plane], records[plane], cuts);
      }
      overwritten += (cuts[0] > 1 ? 1 : 0) + (cuts[1] > 1 ? 1 : 0);
    }
    const double K = mesh.maxCurvature[at];
    const double k = mesh.minCurvature[at];
    const auto& [b1, a1] = records[0];
    const auto& [b2, a2] = records[1];
    const double g = (K - b2.max) / std::sqrt(b2.squared) + (a2.max - K) / std::sqrt(a2.squared) -
                     (a2.max - b2.max) / (std::sqrt(b2.squared) + std::sqrt(a2.squared));
    const double h = (k - b1.min) / std::sqrt(b1.squared) + (a1.min - k) / std::sqrt(a1.squared) -
                     (a1.min - b1.min) / (std::sqrt(b1.squared) + std::sqrt(a1.squared));
    const double twice = 2.0 * (K - k);
    if (K > b1.max + g * g * b1.squared / twice && K > a1.max + g * g * a1.squared / twice)
      ridgeMarks[at] = 1;
    if (k < b2.min - h * h * b2.squared / twice && k < a2.min - h * h * a2.squared / twice)
      valleyMarks[at] = 1;
  }

  Vec3 inSingle(int i, int j) const {
    const Vec3 d = mesh.position(i) - mesh.position(j);
    return {static_cast<double>(static_cast<float>(d.x)),
            static_cast<double>(static_cast<float>(d.y)),
            static_cast<double>(static_cast<float>(d.z))};
  }

  void cutEdge(int i, int j, int l, const Vec3& B, std::array<Record, 2>& sides,
               std::array<int, 2>& cuts) {
    const Vec3 p = mesh.position(i);
    const Vec3 dj = inSingle(i, j);
    const Vec3 dl = inSingle(i, l);
    const double a = dot(dj, B);
    const double b = dot(dl, B);
    if (a * b > 0.0) return;
    insideEdges += a != 0.0 && b != 0.0 ? 1 : 0;
    onPlane += b == 0.0 ? 1 : 0;
    const Vec3 e = (std::abs(b) * dj + std::abs(a) * dl) / (std::abs(a) + std::abs(b));
    const Vec3 X = p - e;
    const double Aj = 0.5 * length(cross(-dj, X - p));
    const double Al = 0.5 * length(cross(-dl, X - p));
    const auto at = [&](const std::vector<double>& field) {
      return (Aj * field[static_cast<std::size_t>(l)] + Al * field[static_cast<std::size_t>(j)]) /
             (Aj + Al);
    };
    const std::size_t side = b < 0.0 ? 1 : 0;
    sides[side] = {at(mesh.maxCurvature), at(mesh.minCurvature), dot(e, e)};
    ++cuts[side];
  }
};

TEST(ExtremaExtraction, MarksAreThoseOfThePlainAlgorithm) {
  std::mt19937 random(31);
  const auto number = [&] { return static_cast<double>(random() % 2001) / 1000.0 - 1.0; };
  int insideEdges = 0;
  int onPlane = 0;
  int overwritten = 0;
  int marks = 0;
  for (int round = 0; round < 300; ++round) {
    SCOPED_TRACE(round);
    // Flat and even: section planes along the axes pass exactly through ring vertices.
    const bool even = round % 3 == 0;
    TriangleMesh mesh = even             ? grid(7, 6)
                        : round % 3 == 1 ? jittered(bumpyGrid(7, 6), 0.2)
                                         : jittered(icosphere(1, 3.0), 0.1);
    prepareLines(mesh, 0.0, 0.0);
    for (std::size_t i = 0; i < mesh.maxCurvature.size(); ++i) {
      mesh.maxCurvature[i] = number() + 2.0;
      mesh.minCurvature[i] = number() - 2.0;
      const Vec3 n = loadVec3(&mesh.vertexNormals[3 * i]);
      const Vec3 e1 = even ? Vec3{random() % 2 == 0 ? 1.0 : -1.0, 0.0, 0.0}
                           : unitOrZero(cross(n, Vec3{number(), number(), number() + 2.0}));
      const Vec3 e2 = cross(n, e1);
      for (const double x : {e1.x, e1.y, e1.z}) mesh.maxDirection.push_back(x);
      for (const double x : {e2.x, e2.y, e2.z}) mesh.minDirection.push_back(x);
    }
    const PlainExtraction plain(mesh);
    extractExtrema(mesh);
    ASSERT_EQ(mesh.ridgeMarks, plain.ridgeMarks);
    ASSERT_EQ(mesh.valleyMarks, plain.valleyMarks);
    insideEdges += plain.insideEdges;
    onPlane += plain.onPlane;
    overwritten += plain.overwritten;
    marks += static_cast<int>(std::ranges::count(plain.ridgeMarks, 1));
  }
  EXPECT_GT(insideEdges, 1000);
  EXPECT_GT(onPlane, 1000);
  EXPECT_GT(overwritten, 1000);
  EXPECT_GT(marks, 100);
}

/// An interior vertex 0 at the origin of the plane with neighbours at (2, 1), (-1, 1), (-1, -1) and
/// (2, -1) and the principal directions of the axes. The section along x leaves between the two
/// right neighbours at (2, 0) and the two left ones at (-1, 0); that along y cuts the upper and the
/// lower edge a third of the way from left to right.
TriangleMesh unevenRing(const std::array<double, 5>& maxCurvature) {
  TriangleMesh mesh = makeMesh({{0, 0, 0}, {2, 1, 0}, {-1, 1, 0}, {-1, -1, 0}, {2, -1, 0}},
                               {{0, 1, 2}, {0, 2, 3}, {0, 3, 4}, {0, 4, 1}});
  prepareLines(mesh, 0.0, -50.0);
  mesh.maxCurvature.assign(maxCurvature.begin(), maxCurvature.end());
  for (int i = 0; i < 5; ++i) {
    mesh.maxDirection.insert(mesh.maxDirection.end(), {1.0, 0.0, 0.0});
    mesh.minDirection.insert(mesh.minDirection.end(), {0.0, 1.0, 0.0});
  }
  return mesh;
}

// Above the vertex the curvature is t, 2/3 of the left upper neighbour's and 1/3 of the right
// one's; below it is -t, and 0 behind and ahead, halfway between the upper and the lower
// neighbours. With K = 1 at the vertex the slopes are 1 + t below, t - 1 above and t between: g =
// t. The bar is higher ahead, at a squared distance of 4: 1 > t^2 4 / (2 * 51), that is t^2 < 25.5.
TEST(ExtremaExtraction, CutsWithinAnEdgeAreWeightedByWhatLiesOnEitherSide) {
  const auto marked = [](double left, double right) {
    TriangleMesh mesh = unevenRing({1.0, right, left, -left, -right});
    extractExtrema(mesh);
    return mesh.ridgeMarks[0];
  };
  EXPECT_EQ(marked(5.0, 5.0), 1);
  EXPECT_EQ(marked(5.1, 5.1), 0);
  EXPECT_EQ(marked(3.0, 9.0), 1) << "t = 5";
  EXPECT_EQ(marked(3.0, 9.3), 0) << "t = 5.1";
  EXPECT_EQ(marked(6.0, 3.0), 1) << "t = 5";
  EXPECT_EQ(marked(6.15, 3.0), 0) << "t = 5.1";
}

// The neighbour at (1, 1) lies exactly on the section along (1, 1) as single precision tells, so it
// counts for the side behind as well and takes the place of the 9 that was cut there before. Seen
// in double precision it would lie beside the section, and 9 would be too much for the 5 here.
TEST(ExtremaExtraction, RingEdgesAreSeenInSinglePrecision) {
  TriangleMesh mesh =
      makeMesh({{0, 1e-9F, 0}, {-2, 0, 0}, {0, -2, 0}, {2, 0, 0}, {1, 1, 0}, {0, 2, 0}},
               {{0, 1, 2}, {0, 2, 3}, {0, 3, 4}, {0, 4, 5}, {0, 5, 1}});
  prepareLines(mesh, 0.0, -50.0);
  mesh.maxCurvature = {5.0, 9.0, 9.0, 1.0, 1.0, 1.0};
  const double half = std::sqrt(0.5);
  for (int i = 0; i < 6; ++i) {
    mesh.maxDirection.insert(mesh.maxDirection.end(), {half, half, 0.0});
    mesh.minDirection.insert(mesh.minDirection.end(), {-half, half, 0.0});
  }
  extractExtrema(mesh);
  EXPECT_EQ(mesh.ridgeMarks[0], 1);
}

// The upper edge passes through the vertex itself: the slope towards it is not finite.
TEST(ExtremaExtraction, ACutAtNoDistanceMarksNothing) {
  const auto marked = [](float heightOfUpperEdge, double upper) {
    TriangleMesh mesh = unevenRing({1.0, upper, upper, 0.0, 0.0});
    mesh.setPosition(1, {2.0, static_cast<double>(heightOfUpperEdge), 0.0});
    mesh.setPosition(2, {-1.0, static_cast<double>(heightOfUpperEdge), 0.0});
    extractExtrema(mesh);
    return mesh.ridgeMarks[0];
  };
  EXPECT_EQ(marked(0.5F, 0.5), 1);
  EXPECT_EQ(marked(0.0F, 0.5), 0);
  EXPECT_EQ(marked(0.0F, 1.0), 0);
}

// The section along y of the first vertex lies in the plane x = 0, which misses the ring.
TEST(ExtremaExtraction, BeforeAnyCutTheCurvatureOnASideCountsAs0) {
  const auto markOfApex = [](double everywhere) {
    TriangleMesh mesh =
        makeMesh({{0, 0, 0}, {1, 1, 0}, {1, 0, 1}, {1, -1, -1}}, {{0, 1, 2}, {0, 2, 3}, {0, 3, 1}});
    prepareLines(mesh, everywhere, -10.0);
    for (int i = 0; i < 4; ++i) {
      mesh.maxDirection.insert(mesh.maxDirection.end(), {0.0, 1.0, 0.0});
      mesh.minDirection.insert(mesh.minDirection.end(), {1.0, 0.0, 0.0});
      storeVec3(mesh.vertexNormals.data() + 3 * toIndex(i), {0.0, 0.0, 1.0});
    }
    extractExtrema(mesh);
    return mesh.ridgeMarks[0];
  };
  EXPECT_EQ(markOfApex(0.5), 1);
  EXPECT_EQ(markOfApex(-0.5), 0);
}

TEST(ExtremaExtraction, BoundaryAndNonManifoldVerticesGetNoMark) {
  for (const auto& meshes : {openMeshes(), hostileMeshes(), closedMeshes()}) {
    for (auto [name, mesh] : meshes) {
      SCOPED_TRACE(name);
      extractExtrema(mesh);
      ASSERT_EQ(static_cast<int>(mesh.ridgeMarks.size()), mesh.vertexCount);
      for (std::size_t i = 0; i < mesh.ridgeMarks.size(); ++i) {
        if (mesh.vertexKind[i] == InteriorVertex) {
          EXPECT_TRUE(mesh.ridgeMarks[i] == 0 || mesh.ridgeMarks[i] == 1);
          EXPECT_TRUE(mesh.valleyMarks[i] == 0 || mesh.valleyMarks[i] == 1);
        } else {
          EXPECT_EQ(mesh.ridgeMarks[i], 0);
          EXPECT_EQ(mesh.valleyMarks[i], 0);
        }
      }
    }
  }
}

/// Whether an interior vertex of the mesh can have curvatures to compare: some are flat or in one
/// place, and others have no interior vertex or none with a finite ring.
bool mayHaveExtrema(const std::string& name) {
  return name == "two surfaces at one vertex" || name == "sliver and neighbours in one place" ||
         name == "very large" || name == "very small";
}

TEST(ExtremaExtraction, HostileMeshesStayAsTheyAreAndHaveMarksOnlyWhereTheyAreCurved) {
  for (auto& [name, mesh] : hostileMeshes()) {
    SCOPED_TRACE(name);
    const TriangleMesh before = mesh;
    extractExtrema(mesh);
    EXPECT_EQ(std::ranges::count(mesh.ridgeMarks, 1) > 0, mayHaveExtrema(name));
    EXPECT_EQ(std::ranges::count(mesh.valleyMarks, 1) > 0, mayHaveExtrema(name));
    EXPECT_EQ(mesh.faces, before.faces);
    EXPECT_EQ(mesh.vertexKind, before.vertexKind);
    for (int i = 0; i < mesh.vertexCount; ++i) {
      EXPECT_TRUE(sameBits(mesh.position(i), before.position(i)));
    }
  }
}

// A slope raises the bar by a curvature as well, so all that is compared scales with the mesh, and
// by a power of two without any rounding.
TEST(ExtremaExtraction, MarksDoNotDependOnTheSizeOfTheMesh) {
  TriangleMesh mesh = bumpyGrid(20, 20);
  extractExtrema(mesh);
  EXPECT_GT(std::ranges::count(mesh.ridgeMarks, 1), 5);
  EXPECT_GT(std::ranges::count(mesh.valleyMarks, 1), 5);
  for (const int exponent : {90, -90}) {
    TriangleMesh scaled = bumpyGrid(20, 20);
    for (float& x : scaled.vertices) x = std::ldexp(x, exponent);
    scaled.computeFaceNormals();
    scaled.computeVertexNormals();
    extractExtrema(scaled);
    EXPECT_EQ(scaled.ridgeMarks, mesh.ridgeMarks) << exponent;
    EXPECT_EQ(scaled.valleyMarks, mesh.valleyMarks) << exponent;
  }
}

TEST(ExtremaExtraction, MarksOfBeforeDoNotStay) {
  TriangleMesh mesh = bumpyGrid(20, 20);
  extractExtrema(mesh);
  const auto ridgeMarks = mesh.ridgeMarks;
  const auto valleyMarks = mesh.valleyMarks;
  std::ranges::fill(mesh.ridgeMarks, 1);
  std::ranges::fill(mesh.valleyMarks, 1);
  extractExtrema(mesh);
  EXPECT_EQ(mesh.ridgeMarks, ridgeMarks);
  EXPECT_EQ(mesh.valleyMarks, valleyMarks);
}

}  // namespace
}  // namespace gravlin
