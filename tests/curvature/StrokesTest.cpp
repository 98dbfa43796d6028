#include <algorithm>
#include <cmath>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "curvature/CurvatureTensor.h"
#include "curvature/PlainStrokes.h"
#include "curvature/Strokes.h"
#include "mesh/FaceGeometry.h"
#include "numeric/Random.h"
#include "support/Meshes.h"
#include "support/MeshFields.h"

namespace gravlin {
namespace {

using ::testing::Each;
using ::testing::SizeIs;

using test::NamedMesh;

constexpr double step = static_cast<double>(0.01F);

/// The mesh with the same maximum and minimum direction at every vertex.
TriangleMesh withDirections(TriangleMesh mesh, const Vec3& max, const Vec3& min) {
  computeCurvatureTensor(mesh);
  for (int i = 0; i < mesh.vertexCount; ++i) {
    storeVectorAt(mesh.maxDirection, i, max);
    storeVectorAt(mesh.minDirection, i, min);
  }
  return mesh;
}

TriangleMesh scaled(TriangleMesh mesh, float factor) {
  for (float& x : mesh.vertices) x *= factor;
  return mesh;
}

std::vector<Vec3> positionsOf(const TriangleMesh& mesh, const std::vector<FacePoint>& line) {
  std::vector<Vec3> result;
  for (const FacePoint& point : line) result.push_back(pointInFace(mesh, point));
  return result;
}

/// The smooth meshes on which strokes are examined, with their estimated directions.
std::vector<NamedMesh> smoothMeshes() {
  std::vector<NamedMesh> result = {{"torus", test::torus(60, 40)},
                                   {"bumpy grid", test::bumpyGrid(12, 9)}};
  for (NamedMesh& each : result) computeCurvatureTensor(each.mesh);
  return result;
}

/// Expects so many lines of each kind and calls `look` with every one, the seed it belongs to and
/// the field it follows.
void forEachLine(const TriangleMesh& mesh, std::size_t count,
                 const std::function<void(const std::vector<FacePoint>&, const FacePoint&,
                                          const std::vector<double>&)>& look) {
  ASSERT_THAT(mesh.strokes.strokeSeeds, SizeIs(count));
  ASSERT_THAT(mesh.strokes.maxStrokes, SizeIs(count));
  ASSERT_THAT(mesh.strokes.minStrokes, SizeIs(count));
  for (std::size_t s = 0; s < mesh.strokes.strokeSeeds.size(); ++s) {
    look(mesh.strokes.maxStrokes[s], mesh.strokes.strokeSeeds[s], mesh.maxDirection);
    look(mesh.strokes.minStrokes[s], mesh.strokes.strokeSeeds[s], mesh.minDirection);
  }
}

// --- One line ---

TEST(TraceStroke, WalksHalfTheLengthBothWaysInsideAFace) {
  const TriangleMesh mesh =
      withDirections(scaled(test::singleTriangle(), 8.0F), {1, 0, 0}, {0, 1, 0});
  const FacePoint seed = {0, 0.25, 0.25};
  const std::vector<Vec3> line = positionsOf(mesh, traceMaxStroke(mesh, seed, {}));
  // Fifty steps of a single-precision 0.01 fall just short of 0.5, so there is one more.
  ASSERT_THAT(line, SizeIs(103));
  for (std::size_t n = 0; n < line.size(); ++n) {
    const double x = 2.0 + (static_cast<double>(n) - 51.0) * step;
    EXPECT_LT(length(line[n] - Vec3{x, 2, 0}), 1e-12);
  }
  const std::vector<Vec3> other = positionsOf(mesh, traceMinStroke(mesh, seed, {}));
  ASSERT_THAT(other, SizeIs(103));
  EXPECT_LT(length(other.back() - Vec3{2, 2.0 + 51.0 * step, 0}), 1e-12);
}

TEST(TraceStroke, StoresTheCrossingOfAnEdgeInTheNextFace) {
  // The diagonal of the square is corner 0 - corner 2 of face 0 and corner 0 - corner 1 of face 1.
  const TriangleMesh mesh = withDirections(test::twoTriangles(), {0, 1, 0}, {1, 0, 0});
  const FacePoint seed = {0, 0.104, 0.4};  // x = 0.504, y = 0.4
  const std::vector<FacePoint> line = traceMaxStroke(mesh, seed, {});
  const auto crossing =
      std::find_if(line.begin(), line.end(), [](const FacePoint& p) { return p.face == 1; });
  ASSERT_NE(crossing, line.end());
  EXPECT_NEAR(crossing->a, 0.504, 1e-12);
  EXPECT_NEAR(crossing->b, 0.0, 1e-12);
  const std::vector<Vec3> positions = positionsOf(mesh, line);
  for (const Vec3& p : positions) EXPECT_NEAR(p.x, 0.504, 1e-12);
  const auto at = static_cast<std::size_t>(crossing - line.begin());
  EXPECT_NEAR(positions[at].y - positions[at - 1].y, 0.504 - (0.4 + 10 * step), 1e-9);
  EXPECT_NEAR(positions[at + 1].y - positions[at].y, step, 1e-12);
}

TEST(TraceStroke, EndsAtABorderWithoutAPointOnIt) {
  const TriangleMesh mesh = withDirections(test::twoTriangles(), {0, 1, 0}, {1, 0, 0});
  const std::vector<Vec3> line = positionsOf(mesh, traceMaxStroke(mesh, {0, 0.3, 0.3}, {}));
  EXPECT_GT(line.front().y, 0.0);
  EXPECT_LT(line.front().y, step);
  const std::vector<Vec3> across = positionsOf(mesh, traceMinStroke(mesh, {0, 0.55, 0.4}, {}));
  EXPECT_LT(across.back().x, 1.0);
  EXPECT_GT(across.back().x, 1.0 - step);
}

TEST(TraceStroke, IsTheSeedAloneWhereDirectionsVanish) {
  const TriangleMesh mesh = withDirections(test::icosphere(1), {}, {});
  const FacePoint seed = {7, 0.2, 0.3};
  EXPECT_EQ(traceMaxStroke(mesh, seed, {}), std::vector<FacePoint>{seed});
  EXPECT_EQ(traceMinStroke(mesh, seed, {}), std::vector<FacePoint>{seed});
}

TEST(TraceStroke, IsTheSeedAloneOnAFaceWithoutAreaOrAnInvalidOne) {
  const TriangleMesh flat = withDirections(test::degenerateFace(), {1, 0, 0}, {0, 1, 0});
  EXPECT_THAT(traceMaxStroke(flat, {0, 0.2, 0.3}, {}), SizeIs(1));
  TriangleMesh invalid = test::makeMesh({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 1, 1}});
  computeCurvatureTensor(invalid);
  EXPECT_THAT(traceMaxStroke(invalid, {0, 0.2, 0.3}, {}), SizeIs(1));
}

TEST(TraceStroke, StopsAtTwoHundredPointsAHalf) {
  const TriangleMesh mesh =
      withDirections(scaled(test::singleTriangle(), 8.0F), {1, 0, 0}, {0, 1, 0});
  EXPECT_THAT(traceMaxStroke(mesh, {0, 0.25, 0.25}, {.length = 1.0F, .step = 1e-4F}), SizeIs(401));
}

TEST(TraceStroke, HasNoHalvesWithoutALength) {
  const TriangleMesh mesh = withDirections(test::twoTriangles(), {0, 1, 0}, {1, 0, 0});
  for (const float none : {0.0F, -1.0F, std::nanf("")}) {
    EXPECT_THAT(traceMaxStroke(mesh, {0, 0.3, 0.3}, {.length = none}), SizeIs(1));
  }
}

TEST(TraceStroke, MakesTheSignsOfDirectionsAgree) {
  TriangleMesh mesh = withDirections(scaled(test::grid(4, 4), 0.25F), {1, 0, 0}, {0, 1, 0});
  const std::vector<Vec3> straight = positionsOf(mesh, traceMaxStroke(mesh, {17, 0.3, 0.3}, {}));
  for (int i = 0; i < mesh.vertexCount; i += 2) storeVectorAt(mesh.maxDirection, i, {-1, 0, 0});
  std::vector<Vec3> flipped = positionsOf(mesh, traceMaxStroke(mesh, {17, 0.3, 0.3}, {}));
  if (flipped.front().x > flipped.back().x) std::reverse(flipped.begin(), flipped.end());
  ASSERT_EQ(flipped.size(), straight.size());
  for (std::size_t n = 0; n < straight.size(); ++n) {
    EXPECT_LT(length(flipped[n] - straight[n]), 1e-12);
  }
}

TEST(TraceStroke, EndsWhereTheSurfaceFoldsBack) {
  // Two triangles that meet at the x axis, the second folded back almost onto the first: the field
  // leads out of both there.
  TriangleMesh mesh = withDirections(
      test::makeMesh({{0, 0, 0}, {1, 0, 0}, {0, -1, 0}, {0, -0.98F, 0.2F}}, {{0, 2, 1}, {0, 1, 3}}),
      {0, 1, 0}, {1, 0, 0});
  const std::vector<FacePoint> line = traceMaxStroke(mesh, {0, 0.3, 0.3}, {});  // y = -0.3
  // Thirty steps reach the fold, or come within the rounding of one before it.
  const std::vector<Vec3> positions = positionsOf(mesh, line);
  EXPECT_NEAR(positions.back().y, 0.0, 1e-9);
  EXPECT_THAT(line, SizeIs(::testing::Lt(103U)));
  int beyond = 0;
  for (std::size_t n = 0; n < line.size(); ++n) {
    if (line[n].face != 1) continue;
    ++beyond;
    EXPECT_NEAR(positions[n].y, 0.0, 1e-9) << "the crossing alone";
  }
  EXPECT_GE(beyond, 1);
  // Over a fold of less than a right angle it goes on.
  mesh.setPosition(3, {0, 0.2, 0.98});
  mesh.computeFaceNormals();
  const std::vector<FacePoint> longer = traceMaxStroke(mesh, {0, 0.3, 0.3}, {});
  EXPECT_GT(std::ranges::count(longer, 1, &FacePoint::face), 10);
}

// --- Bit for bit ---

/// Unit vectors in every direction, so that signs and their order of alignment matter everywhere.
TriangleMesh withScrambledDirections(TriangleMesh mesh) {
  std::minstd_rand random(7);
  const auto component = [&] {
    return 2.0 * static_cast<double>(random()) / std::minstd_rand::max() - 1.0;
  };
  mesh.maxDirection.resize(mesh.vertices.size());
  mesh.minDirection.resize(mesh.vertices.size());
  for (int i = 0; i < mesh.vertexCount; ++i) {
    for (std::vector<double>* field : {&mesh.maxDirection, &mesh.minDirection}) {
      const double x = component();
      const double y = component();
      storeVectorAt(*field, i, unitOrZero({x, y, component()}));
    }
  }
  return mesh;
}

/// Every third face turned over, so that neighbours run along their common edge the same way.
TriangleMesh withTurnedFaces(TriangleMesh mesh) {
  for (int f = 0; f < mesh.faceCount; f += 3) {
    const auto c = mesh.corners(f);
    mesh.setFace(f, {{c[0], c[2], c[1]}});
  }
  mesh.buildAdjacency();
  mesh.buildFaceAdjacency();
  mesh.computeFaceNormals();
  mesh.computeVertexNormals();
  return mesh;
}

std::vector<NamedMesh> meshesForTracing() {
  std::vector<NamedMesh> result;
  for (NamedMesh& each : test::everyMesh()) {
    if (each.name == "not a number" || each.name == "infinite") continue;
    result.push_back(std::move(each));
  }
  result.push_back({"rough sphere", test::jittered(test::icosphere(2), 0.05)});
  result.push_back({"rough torus", test::jittered(test::torus(16, 10), 0.2)});
  result.push_back({"fine cube", test::fineCube(5)});
  result.push_back({"turned torus", withTurnedFaces(test::torus(16, 10))});
  std::vector<NamedMesh> scrambled;
  for (NamedMesh& each : result) {
    scrambled.push_back({each.name + ", scrambled", withScrambledDirections(each.mesh)});
    computeCurvatureTensor(each.mesh);
  }
  std::move(scrambled.begin(), scrambled.end(), std::back_inserter(result));
  // Steps of an eighth along the edges of a lattice meet its vertices exactly.
  result.push_back({"lattice", withDirections(test::grid(6, 6), {1, 0, 0}, {0, 1, 0})});
  const double s = std::sqrt(0.5);
  result.push_back({"lattice, diagonal", withDirections(test::grid(6, 6), {s, s, 0}, {-s, s, 0})});
  return result;
}

/// Points of some thirty faces: inside, on the edges and at the corners.
std::vector<FacePoint> seedsOn(const TriangleMesh& mesh) {
  std::vector<FacePoint> seeds;
  for (int f = 0; f < mesh.faceCount; f += 1 + mesh.faceCount / 30) {
    if (!mesh.validFace(f)) continue;
    for (const auto& [a, b] : std::initializer_list<std::pair<double, double>>{{0.3, 0.3},
                                                                               {0.7, 0.2},
                                                                               {0.05, 0.9},
                                                                               {0.5, 0.5},
                                                                               {0, 0.5},
                                                                               {0.5, 0},
                                                                               {0, 0},
                                                                               {1, 0},
                                                                               {0, 1}}) {
      seeds.push_back({f, a, b});
    }
  }
  return seeds;
}

bool sameBits(const std::vector<FacePoint>& line, const std::vector<FacePoint>& expected) {
  return std::equal(line.begin(), line.end(), expected.begin(), expected.end(),
                    [](const FacePoint& p, const FacePoint& q) {
                      return p.face == q.face && test::sameBits(p.a, q.a) &&
                             test::sameBits(p.b, q.b);
                    });
}

TEST(TraceStroke, HasTheBitsOfAPlainTracerForAnyFieldSeedAndStep) {
  std::size_t points = 0;
  for (const NamedMesh& each : meshesForTracing()) {
    SCOPED_TRACE(each.name);
    const TriangleMesh& mesh = each.mesh;
    for (const StrokeExtent& extent : std::initializer_list<StrokeExtent>{
             {}, {.length = 4.0F, .step = 0.125F}, {.length = 9.0F, .step = 0.7F}}) {
      for (const FacePoint& seed : seedsOn(mesh)) {
        const auto max = traceMaxStroke(mesh, seed, extent);
        const auto min = traceMinStroke(mesh, seed, extent);
        const std::string place = "step " + std::to_string(extent.step) + ", face " +
                                  std::to_string(seed.face) + ", " + std::to_string(seed.a) + ' ' +
                                  std::to_string(seed.b);
        EXPECT_TRUE(sameBits(max, test::plainStroke(mesh, mesh.maxDirection, seed, extent)))
            << place;
        EXPECT_TRUE(sameBits(min, test::plainStroke(mesh, mesh.minDirection, seed, extent)))
            << place;
        points += max.size() + min.size();
      }
    }
  }
  EXPECT_GT(points, 300000U);
}

TEST(GenerateStrokes, TracesALineOfLengthOneInStepsOfAHundredthThroughEverySeed) {
  for (NamedMesh& each : smoothMeshes()) {
    SCOPED_TRACE(each.name);
    generateStrokes(each.mesh, 100);
    forEachLine(each.mesh, 100,
                [&](const std::vector<FacePoint>& line, const FacePoint& seed,
                    const std::vector<double>& field) {
                  EXPECT_TRUE(sameBits(line, test::plainStroke(each.mesh, field, seed,
                                                               {.length = 1.0F, .step = 0.01F})));
                });
  }
}

// --- Directions in faces ---

TEST(DirectionToBarycentric, WritesAVectorInTheTwoEdgesOfItsFace) {
  // One face across each of the three coordinate planes in which the solution is done.
  for (const Vec3& normal : {Vec3{1, 0.2, 0.3}, Vec3{-0.2, -1, 0.3}, Vec3{0.3, 0.1, 1}}) {
    const Vec3 u = unitOrZero(cross(normal, {0.3, 0.5, 0.7}));
    const Vec3 v = unitOrZero(cross(normal, u));
    std::vector<std::array<float, 3>> corners(3);
    storeVec3(corners[0].data(), Vec3{0.5, 0.25, -1});
    storeVec3(corners[1].data(), Vec3{0.5, 0.25, -1} + 2.0 * u);
    storeVec3(corners[2].data(), Vec3{0.5, 0.25, -1} + 0.5 * u + v);
    const TriangleMesh mesh = test::makeMesh(corners, {{0, 1, 2}});
    const Vec3 e1 = mesh.position(1) - mesh.position(0);
    const Vec3 e2 = mesh.position(2) - mesh.position(0);
    const auto found = directionToBarycentric(mesh, 0, 0.7 * e1 - 1.3 * e2);
    ASSERT_TRUE(found.has_value());
    // Corners differ by sums of floats rounded to float.
    EXPECT_NEAR(found->da, 0.7, 1e-6);
    EXPECT_NEAR(found->db, -1.3, 1e-6);
  }
}

TEST(DirectionToBarycentric, FailsOnAFaceWithoutAreaAndOnAnInvalidOne) {
  EXPECT_FALSE(directionToBarycentric(test::degenerateFace(), 0, {1, 0, 0}).has_value());
  const TriangleMesh invalid = test::makeMesh({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 1, 1}});
  EXPECT_FALSE(directionToBarycentric(invalid, 0, {1, 0, 0}).has_value());
}

// --- Many lines ---

TEST(GenerateStrokes, LinesAreContinuousAndInsideTheirFaces) {
  for (NamedMesh& each : smoothMeshes()) {
    SCOPED_TRACE(each.name);
    const TriangleMesh& mesh = each.mesh;
    generateStrokes(each.mesh, 300);
    forEachLine(
        mesh, 300,
        [&](const std::vector<FacePoint>& line, const FacePoint& seed, const std::vector<double>&) {
          EXPECT_NE(std::find(line.begin(), line.end(), seed), line.end());
          for (const FacePoint& point : line) {
            EXPECT_GE(point.a, 0.0);
            EXPECT_GE(point.b, 0.0);
            EXPECT_LE(point.a + point.b, 1.0 + 1e-15);
          }
          const std::vector<Vec3> positions = positionsOf(mesh, line);
          for (std::size_t n = 1; n < line.size(); ++n) {
            EXPECT_LE(length(positions[n] - positions[n - 1]), step + 1e-9);
            if (line[n].face == line[n - 1].face) continue;
            const int* across =
                mesh.faceAdjacency.data() + 3 * static_cast<std::size_t>(line[n].face);
            EXPECT_NE(std::find(across, across + 3, line[n - 1].face), across + 3);
          }
        });
  }
}

TEST(GenerateStrokes, LinesFollowTheInterpolatedField) {
  for (NamedMesh& each : smoothMeshes()) {
    SCOPED_TRACE(each.name);
    const TriangleMesh& mesh = each.mesh;
    generateStrokes(each.mesh, 300);
    int looked = 0;
    forEachLine(mesh, 300,
                [&](const std::vector<FacePoint>& line, const FacePoint& seed,
                    const std::vector<double>& field) {
                  // Forward from the seed a point and its follower in the same face are one step
                  // apart along the field at the first.
                  const auto from = static_cast<std::size_t>(
                      std::find(line.begin(), line.end(), seed) - line.begin());
                  for (std::size_t n = from; n + 1 < line.size(); ++n) {
                    if (line[n].face != line[n + 1].face) continue;
                    const auto c = mesh.corners(line[n].face);
                    const Vec3 d0 = vectorAt(field, c[0]);
                    Vec3 d1 = vectorAt(field, c[1]);
                    Vec3 d2 = vectorAt(field, c[2]);
                    if (dot(d1, d0) < 0.0) d1 = -d1;
                    if (dot(d2, d0) < 0.0) d2 = -d2;
                    if (dot(d1, d2) < 0.0) continue;  // the order of alignment matters
                    Vec3 d = (1.0 - line[n].a - line[n].b) * d0 + line[n].a * d1 + line[n].b * d2;
                    const Vec3 normal = mesh.faceNormal(line[n].face);
                    d = unitOrZero(d - dot(d, normal) * normal);
                    const Vec3 moved = pointInFace(mesh, line[n + 1]) - pointInFace(mesh, line[n]);
                    // A float normal is off its plane by some 1e-7 of the step.
                    EXPECT_NEAR(std::abs(dot(moved, d)), step, 1e-6 * step);
                    ++looked;
                  }
                });
    EXPECT_GT(looked, 1000);
  }
}

TEST(GenerateStrokes, GivesTheSameStrokesEveryTime) {
  TriangleMesh mesh = smoothMeshes().front().mesh;
  generateStrokes(mesh, 100);
  const Strokes once = mesh.strokes;
  generateStrokes(mesh, 40);
  EXPECT_THAT(mesh.strokes.strokeSeeds, SizeIs(40));
  EXPECT_EQ(mesh.strokes.maxStrokes.front(), once.maxStrokes.front());
  generateStrokes(mesh, 100);
  EXPECT_EQ(mesh.strokes.strokeSeeds, once.strokeSeeds);
  EXPECT_EQ(mesh.strokes.maxStrokes, once.maxStrokes);
  EXPECT_EQ(mesh.strokes.minStrokes, once.minStrokes);
}

TEST(GenerateStrokes, FindsTheSeedsThatALinearScanFinds) {
  TriangleMesh mesh = test::bumpyGrid(9, 7);
  computeCurvatureTensor(mesh);
  generateStrokes(mesh, 500);

  std::vector<int> faces(static_cast<std::size_t>(mesh.faceCount));
  std::iota(faces.begin(), faces.end(), 0);
  const auto area = [&](int f) { return static_cast<float>(faceArea(mesh, f)); };
  std::stable_sort(faces.begin(), faces.end(), [&](int f, int g) { return area(f) < area(g); });
  std::vector<float> sums;
  for (const int f : faces) sums.push_back(sums.empty() ? area(f) : sums.back() + area(f));
  Random random(100);
  for (const FacePoint& seed : mesh.strokes.strokeSeeds) {
    const double t = random.rand() * static_cast<double>(sums.back()) * 3.051850947599719e-5;
    std::size_t k = 0;
    while (k + 1 < sums.size() && t >= static_cast<double>(sums[k])) ++k;
    const double a = random.rand() * 3.051850947599719e-5;
    const double b = random.rand() * (1.0 - a) * 3.051850947599719e-5;
    EXPECT_EQ(seed, (FacePoint{faces[k], a, b}));
  }
}

TEST(GenerateStrokes, ScattersSeedsByArea) {
  TriangleMesh mesh =
      test::makeMesh({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {9, 0, 0}, {10, 0, 0}, {9, 3, 0}},
                     {{3, 4, 5}, {0, 1, 2}});  // areas 1.5 and 0.5
  computeCurvatureTensor(mesh);
  generateStrokes(mesh, 20000);
  const auto onFirst =
      std::count_if(mesh.strokes.strokeSeeds.begin(), mesh.strokes.strokeSeeds.end(),
                    [](const FacePoint& seed) { return seed.face == 0; });
  // Four standard deviations of a binomial distribution are 0.012.
  EXPECT_NEAR(static_cast<double>(onFirst) / 20000.0, 0.75, 0.012);
}

TEST(GenerateStrokes, TakesNoSeedsAndAMillion) {
  TriangleMesh mesh = withDirections(scaled(test::singleTriangle(), 0.02F), {1, 0, 0}, {0, 1, 0});
  for (const int none : {0, -1, -1000000}) {
    generateStrokes(mesh, none);
    EXPECT_THAT(mesh.strokes.strokeSeeds, SizeIs(0));
    EXPECT_THAT(mesh.strokes.maxStrokes, SizeIs(0));
  }
  generateStrokes(mesh, 1000000);
  EXPECT_THAT(mesh.strokes.strokeSeeds, SizeIs(1000000));
  EXPECT_THAT(mesh.strokes.minStrokes, SizeIs(1000000));
}

TEST(GenerateStrokes, OnFacesOfZeroDirectionsAreSinglePoints) {
  TriangleMesh mesh = withDirections(test::icosphere(1), {}, {});
  generateStrokes(mesh, 50);
  EXPECT_THAT(mesh.strokes.maxStrokes, Each(SizeIs(1)));
  EXPECT_THAT(mesh.strokes.minStrokes, Each(SizeIs(1)));
}

TEST(GenerateStrokes, OnAnyMeshRunThroughTheirSeedsInsideTheirFaces) {
  for (NamedMesh& each : test::everyMesh()) {
    SCOPED_TRACE(each.name);
    computeCurvatureTensor(each.mesh);
    const TriangleMesh before = each.mesh;
    generateStrokes(each.mesh, 50);
    EXPECT_EQ(each.mesh.faces, before.faces);
    EXPECT_EQ(each.mesh.vertexKind, before.vertexKind);
    const std::size_t expected = each.mesh.faceCount > 0 ? 50 : 0;
    forEachLine(
        each.mesh, expected,
        [&](const std::vector<FacePoint>& line, const FacePoint& seed, const std::vector<double>&) {
          EXPECT_THAT(line, ::testing::Contains(seed));
          for (const FacePoint& point : line) {
            EXPECT_TRUE(point.face >= 0 && point.face < each.mesh.faceCount);
            EXPECT_TRUE(point.a >= 0.0 && point.b >= 0.0 && point.a + point.b <= 1.0 + 1e-15);
          }
          if (line.size() > 1) {
            EXPECT_TRUE(each.mesh.validFace(seed.face));
            EXPECT_GT(faceArea(each.mesh, seed.face), 0.0);
          }
        });
  }
}

TEST(GenerateStrokes, ComputesFaceNormalsWhenThereAreNone) {
  TriangleMesh mesh = smoothMeshes().front().mesh;
  generateStrokes(mesh, 20);
  const Strokes expected = mesh.strokes;
  mesh.faceNormals.clear();
  generateStrokes(mesh, 20);
  EXPECT_EQ(mesh.strokes.maxStrokes, expected.maxStrokes);
}

}  // namespace
}  // namespace gravlin
