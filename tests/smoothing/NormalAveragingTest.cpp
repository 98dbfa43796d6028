#include <algorithm>
#include <array>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vector>

#include "numeric/Index.h"
#include "smoothing/CornerNeighbours.h"
#include "smoothing/NormalAveraging.h"
#include "support/Meshes.h"
#include "support/TiltedPlanes.h"

namespace gravlin {
namespace {

using Numbers = std::array<double, 3>;

constexpr std::array<NormalDifference, 2> bothDifferences = {CurvatureDifference, AngleDifference};
constexpr std::array<WeightShape, 2> bothShapes = {SimilarWeight, ExponentialWeight};

// --- The definitions once more, in plain arrays ---

Numbers normalOf(const TriangleMesh& mesh, int f) {
  const float* n = &mesh.faceNormals[3 * toIndex(f)];
  return {static_cast<double>(n[0]), static_cast<double>(n[1]), static_cast<double>(n[2])};
}

double angleBetween(const TriangleMesh& mesh, int f, int g) {
  const Numbers m = normalOf(mesh, f);
  const Numbers n = normalOf(mesh, g);
  double cosine = m[0] * n[0] + m[1] * n[1] + m[2] * n[2];
  if (cosine > 1.0) cosine = 1.0;
  if (cosine < -1.0) cosine = -1.0;
  return std::acos(cosine);
}

std::array<float, 3> centroid(const TriangleMesh& mesh, int f) {
  std::array<float, 3> c = {};
  for (std::size_t axis = 0; axis < 3; ++axis) {
    float sum = 0.0F;
    for (std::size_t k = 0; k < 3; ++k) {
      sum += mesh.vertices[3 * toIndex(mesh.corners(f)[k]) + axis];
    }
    c[axis] = sum * 0.33333334F;
  }
  return c;
}

double distanceBetween(const TriangleMesh& mesh, int f, int g) {
  const auto a = centroid(mesh, f);
  const auto b = centroid(mesh, g);
  double squares = 0.0;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const double d = static_cast<double>(b[axis]) - static_cast<double>(a[axis]);
    squares += d * d;
  }
  return std::sqrt(squares);
}

double area(const TriangleMesh& mesh, int f) {
  std::array<Numbers, 3> p = {};
  for (std::size_t k = 0; k < 3; ++k) {
    const float* v = &mesh.vertices[3 * toIndex(mesh.corners(f)[k])];
    p[k] = {static_cast<double>(v[0]), static_cast<double>(v[1]), static_cast<double>(v[2])};
  }
  double squares = 0.0;
  for (std::size_t x = 0; x < 3; ++x) {
    const std::size_t y = (x + 1) % 3;
    const std::size_t z = (x + 2) % 3;
    const double c =
        (p[1][y] - p[0][y]) * (p[2][z] - p[0][z]) - (p[1][z] - p[0][z]) * (p[2][y] - p[0][y]);
    squares += c * c;
  }
  return std::sqrt(squares) / 2.0;
}

struct Neighbour {
  int face;
  double share;  // what its weight is multiplied by
};

std::vector<Neighbour> neighboursOf(const TriangleMesh& mesh, int f, double meetAtVertex) {
  std::vector<Neighbour> found;
  for (std::size_t j = 0; j < 3; ++j) {
    const int g = mesh.faceAdjacency[3 * toIndex(f) + j];
    if (g >= 0) found.push_back({g, 1.0});
  }
  if (meetAtVertex != 0.0) {
    for (const int g : mesh.cornerNeighbourFaces[f]) found.push_back({g, meetAtVertex});
  }
  return found;
}

std::vector<Numbers> averagedByDefinition(const TriangleMesh& mesh, const NormalWeight& weight,
                                          double meetAtVertex) {
  std::vector<Numbers> normals;
  for (int f = 0; f < mesh.faceCount; ++f) {
    Numbers sum = {};
    double weights = 0.0;
    for (const auto& [g, share] : neighboursOf(mesh, f, meetAtVertex)) {
      const double distance = distanceBetween(mesh, f, g);
      const bool perDistance = weight.difference == CurvatureDifference;
      if ((perDistance || meetAtVertex != 0.0) && distance == 0.0) continue;
      const double k = angleBetween(mesh, f, g) / (perDistance ? distance : 1.0);
      const double w = weight.shape == ExponentialWeight
                           ? share * area(mesh, g) * std::exp(-weight.threshold * k * k)
                           : share * area(mesh, g) / (weight.threshold * k * k + 1.0);
      for (std::size_t axis = 0; axis < 3; ++axis) sum[axis] += w * normalOf(mesh, g)[axis];
      weights += w;
    }
    for (double& x : sum) x /= weights == 0.0 ? 1.0 : weights;
    const double size = std::sqrt(sum[0] * sum[0] + sum[1] * sum[1] + sum[2] * sum[2]);
    if (weights == 0.0 || size == 0.0) sum = normalOf(mesh, f);
    for (double& x : sum) x /= weights == 0.0 || size == 0.0 ? 1.0 : size;
    normals.push_back(sum);
  }
  return normals;
}

std::vector<Numbers> medianByDefinition(const TriangleMesh& mesh, const MedianFilter& filter) {
  std::vector<Numbers> normals;
  for (int f = 0; f < mesh.faceCount; ++f) {
    std::vector<std::pair<double, int>> candidates;
    const auto add = [&](int g) {
      const double distance = distanceBetween(mesh, f, g);
      double key = angleBetween(mesh, f, g);
      if (filter.difference == CurvatureDifference) key = distance == 0.0 ? 0.0 : key / distance;
      candidates.emplace_back(key, g);
    };
    for (std::size_t j = 0; j < 3; ++j) {
      const int g = mesh.faceAdjacency[3 * toIndex(f) + j];
      if (g < 0) continue;
      add(g);
      if (filter.weighted) add(g);
    }
    for (const int g : mesh.cornerNeighbourFaces[f]) add(g);
    std::ranges::stable_sort(candidates, {}, &std::pair<double, int>::first);
    std::size_t k = candidates.size() / 2;
    if (k % 2 == 1) ++k;
    normals.push_back(normalOf(mesh, k == 0 ? f : candidates[k - 1].second));
  }
  return normals;
}

void expectNormals(const TriangleMesh& mesh, const std::vector<Numbers>& wanted, double tolerance) {
  ASSERT_EQ(mesh.faceNormals.size(), 3 * wanted.size());
  for (int f = 0; f < mesh.faceCount; ++f) {
    for (std::size_t axis = 0; axis < 3; ++axis) {
      ASSERT_NEAR(normalOf(mesh, f)[axis], wanted[toIndex(f)][axis], tolerance) << "face " << f;
    }
  }
}

/// Two apexes over a rough rim of n vertices: every face sees more than n others.
TriangleMesh doubleCone(int n) {
  std::vector<std::array<float, 3>> points = {{0, 0, 1}, {0, 0, -1}};
  std::vector<std::array<int, 3>> faces;
  for (int k = 0; k < n; ++k) {
    const double angle = 6.283185307179586 * k / n;
    points.push_back(
        {static_cast<float>(std::cos(angle)), static_cast<float>(std::sin(angle)), 0.0F});
    const int here = 2 + k;
    const int next = 2 + (k + 1) % n;
    faces.push_back({0, here, next});
    faces.push_back({1, next, here});
  }
  return test::jittered(test::makeMesh(points, faces), 0.02);
}

/// Meshes on which all neighbours, weights and angles differ, and those where many are equal.
std::vector<test::NamedMesh> variedMeshes() {
  std::vector<test::NamedMesh> all = test::closedMeshes();
  for (auto& mesh : test::openMeshes()) all.push_back(std::move(mesh));
  for (auto& mesh : test::hostileMeshes()) {
    if (mesh.name != "not a number" && mesh.name != "infinite") all.push_back(std::move(mesh));
  }
  all.push_back({"rough sphere", test::jittered(test::icosphere(3), 0.05)});
  all.push_back({"rough grid", test::jittered(test::grid(12, 10), 0.3)});
  all.push_back({"rough torus", test::jittered(test::torus(20, 12), 0.2)});
  all.push_back({"double cone", doubleCone(60)});
  for (auto& mesh : all) buildCornerNeighbourFaces(mesh.mesh);
  return all;
}

/// One float's rounding of a component of a unit vector.
constexpr double floatRounding = 6e-8;

// --- Weight functions ---

TEST(NormalAveraging, WeightedMeansAreTheirDefinitionForEveryShapeAndDifference) {
  for (const auto& [name, rough] : variedMeshes()) {
    for (const WeightShape shape : bothShapes) {
      for (const NormalDifference difference : bothDifferences) {
        for (const double threshold : {0.0, 1.0, 7.5}) {
          SCOPED_TRACE(::testing::Message() << name << ' ' << shape << difference << threshold);
          const NormalWeight weight = {threshold, shape, difference};
          TriangleMesh mesh = rough;
          averageNormalsWeighted(mesh, weight);
          expectNormals(mesh, averagedByDefinition(rough, weight, 0.0), floatRounding);
          mesh = rough;
          averageNormalsVertexWeighted(mesh, weight, 0.5);
          expectNormals(mesh, averagedByDefinition(rough, weight, 0.5), floatRounding);
        }
      }
    }
  }
}

TEST(NormalAveraging, WeightOfACreaseByHand) {
  // Two unit squares that meet at a right angle along the y axis. Each half next to the crease
  // has its own square's other half as neighbour (angle 0) and one face across it (angle pi / 2),
  // all of the same area.
  TriangleMesh mesh =
      test::makeMesh({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 1}, {0, 1, 1}},
                     {{0, 1, 2}, {0, 2, 3}, {0, 3, 5}, {0, 5, 4}});
  const double rightAngle = std::acos(0.0);
  const auto tilt = [&](const NormalWeight& weight) {
    TriangleMesh averaged = mesh;
    averageNormalsWeighted(averaged, weight);
    const Vec3 n = averaged.faceNormal(1);
    EXPECT_EQ(n.y, 0.0);
    return n.x / n.z;  // the weight of the face across, per weight of the face beside
  };
  const double square = rightAngle * rightAngle;
  EXPECT_NEAR(tilt({2.0, ExponentialWeight, AngleDifference}), std::exp(-2.0 * square), 1e-8);
  EXPECT_NEAR(tilt({2.0, SimilarWeight, AngleDifference}), 1.0 / (2.0 * square + 1.0), 1e-7);
  // The centroids of face 1, (1/3, 2/3, 0), and face 2, (0, 2/3, 1/3), lie sqrt(2) / 3 apart.
  EXPECT_NEAR(tilt({2.0, SimilarWeight, CurvatureDifference}), 1.0 / (9.0 * square + 1.0), 1e-7);
}

TEST(NormalAveraging, AFaceWithoutEdgeNeighboursKeepsItsNormalUnderWeights) {
  for (const WeightShape shape : bothShapes) {
    for (const NormalDifference difference : bothDifferences) {
      TriangleMesh mesh = test::singleTriangle();
      averageNormalsWeighted(mesh, {1.0, shape, difference});
      EXPECT_THAT(mesh.faceNormals, ::testing::ElementsAre(0, 0, 1));
    }
  }
}

TEST(NormalAveraging, NormalsThatCancelLeaveTheFaceItsOwn) {
  // The middle face's two neighbours of equal area have opposite normals.
  TriangleMesh mesh = test::grid(2, 1);
  mesh.faceNormals = {0, 1, 0, 0, 0, 1, 0, 1, 0, 0, 0, -1};
  const auto neighbours = std::span(mesh.faceAdjacency).subspan(0, 3);
  ASSERT_THAT(neighbours, ::testing::ElementsAre(-1, 3, 1));
  averageNormalsWeighted(mesh, {1.0, ExponentialWeight, AngleDifference});
  EXPECT_EQ(mesh.faceNormal(0), (Vec3{0, 1, 0}));
}

TEST(NormalAveraging, ANeighbourAtNoDistanceCountsOnlyWhereDistanceDoesNot) {
  // Both sides of one triangle as two faces: centroids coincide, normals are opposite.
  TriangleMesh mesh = test::makeMesh({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 1, 2}, {0, 2, 1}});
  buildCornerNeighbourFaces(mesh);
  ASSERT_EQ(mesh.faceAdjacency[0], 1) << "the two sides are neighbours";
  const std::vector<float> before = mesh.faceNormals;
  averageNormalsWeighted(mesh, {0.0, ExponentialWeight, CurvatureDifference});
  EXPECT_EQ(mesh.faceNormals, before);
  averageNormalsVertexWeighted(mesh, {0.0, ExponentialWeight, AngleDifference}, 0.5);
  EXPECT_EQ(mesh.faceNormals, before);
  averageNormalsWeighted(mesh, {0.0, ExponentialWeight, AngleDifference});
  EXPECT_THAT(mesh.faceNormals, ::testing::ElementsAre(0, 0, -1, 0, 0, 1));
}

// --- Median ---

TEST(NormalAveraging, MedianIsItsDefinitionToTheLastBit) {
  for (const auto& [name, rough] : variedMeshes()) {
    for (const bool weighted : {false, true}) {
      for (const NormalDifference difference : bothDifferences) {
        SCOPED_TRACE(::testing::Message() << name << ' ' << weighted << difference);
        TriangleMesh mesh = rough;
        averageNormalsMedian(mesh, {weighted, difference});
        expectNormals(mesh, medianByDefinition(rough, {weighted, difference}), 0.0);
      }
    }
  }
}

/// A strip of faces that see each other through `cornerNeighbourFaces` alone: face 0 sees faces
/// 1 .. n, whose normals turn away from its own by more and more; so rank k is face k.
TriangleMesh rankedCandidates(int n) {
  std::vector<std::array<float, 3>> points;
  std::vector<std::array<int, 3>> faces;
  for (int f = 0; f <= n; ++f) {
    const float x = static_cast<float>(2 * f);
    points.insert(points.end(), {{x, 0, 0}, {x + 1, 0, 0}, {x, 1, 0}});
    faces.push_back({3 * f, 3 * f + 1, 3 * f + 2});
  }
  TriangleMesh mesh = test::makeMesh(points, faces);
  for (int f = 0; f <= n; ++f) {
    const double angle = 0.1 * f;
    storeVec3(&mesh.faceNormals[3 * toIndex(f)], {0.0, std::sin(angle), std::cos(angle)});
  }
  mesh.cornerNeighbourFaces.offsets.assign(toIndex(n) + 2, n);
  mesh.cornerNeighbourFaces.offsets.front() = 0;
  for (int f = n; f >= 1; --f) mesh.cornerNeighbourFaces.items.push_back(f);
  return mesh;
}

TEST(NormalAveraging, MedianTakesHalfTheNumberOfCandidatesMadeEven) {
  constexpr std::array<int, 11> rankOf = {0, 0, 2, 2, 2, 2, 4, 4, 4, 4, 6};
  for (int n = 0; n <= 10; ++n) {
    TriangleMesh mesh = rankedCandidates(n);
    const TriangleMesh before = mesh;
    averageNormalsMedian(mesh, {true, AngleDifference});
    const int rank = rankOf[toIndex(n)];
    EXPECT_EQ(mesh.faceNormal(0), before.faceNormal(rank)) << n << " candidates";
  }
}

TEST(NormalAveraging, MedianCountsEveryEdgeNeighbourTwiceInARowWhenWeighted) {
  // The two halves of a square: one candidate alone has no rank, twice the same has.
  TriangleMesh mesh = test::twoTriangles();
  buildCornerNeighbourFaces(mesh);
  mesh.faceNormals = {1, 0, 0, 0, 1, 0};
  averageNormalsMedian(mesh, {false, AngleDifference});
  EXPECT_THAT(mesh.faceNormals, ::testing::ElementsAre(1, 0, 0, 0, 1, 0));
  averageNormalsMedian(mesh, {true, AngleDifference});
  EXPECT_THAT(mesh.faceNormals, ::testing::ElementsAre(0, 1, 0, 1, 0, 0));
}

TEST(NormalAveraging, MedianOfAnglesThatRoundToTheSameNumberKeepsTheCandidatesOrder) {
  // Cosines of the order of 1e-17 differ, their arc cosines are all the float nearest to pi / 2,
  // so the candidate of rank 2 is the second of the list although its cosine is the smallest.
  TriangleMesh mesh = rankedCandidates(4);
  const auto setNormal = [&](int f, double x, double y) {
    storeVec3(&mesh.faceNormals[3 * toIndex(f)], {x, y, 0.0});
  };
  setNormal(0, 1.0, 0.0);
  setNormal(4, 3e-17, 1.0);
  setNormal(3, 1e-17, -1.0);
  setNormal(2, 4e-17, 1.0);
  setNormal(1, 2e-17, 1.0);
  averageNormalsMedian(mesh, {true, AngleDifference});
  EXPECT_EQ(mesh.faceNormal(0), mesh.faceNormal(3));
}

TEST(NormalAveraging, MedianRanksADifferenceThatIsNoNumberLast) {
  TriangleMesh mesh = rankedCandidates(4);
  const float nan = std::numeric_limits<float>::quiet_NaN();
  for (const std::size_t f : {4U, 3U}) mesh.faceNormals[3 * f] = nan;
  averageNormalsMedian(mesh, {true, AngleDifference});
  EXPECT_EQ(mesh.faceNormal(0), mesh.faceNormal(2));
}

// --- Every filter ---

template <class Check>
void forEveryFilter(const TriangleMesh& mesh, const Check& check) {
  for (const NormalDifference difference : bothDifferences) {
    for (const WeightShape shape : bothShapes) {
      TriangleMesh a = mesh;
      averageNormalsWeighted(a, {1.0, shape, difference});
      check(a);
      TriangleMesh b = mesh;
      averageNormalsVertexWeighted(b, {1.0, shape, difference}, 0.5);
      check(b);
    }
    for (const bool weighted : {false, true}) {
      TriangleMesh c = mesh;
      averageNormalsMedian(c, {weighted, difference});
      check(c);
    }
  }
}

TEST(NormalAveraging, AFlatRegionKeepsItsNormals) {
  TriangleMesh mesh = test::grid(6, 5);
  buildCornerNeighbourFaces(mesh);
  forEveryFilter(mesh, [&](const TriangleMesh& filtered) {
    EXPECT_EQ(filtered.faceNormals, mesh.faceNormals);
  });
}

TEST(NormalAveraging, OnATiltedPlaneNormalsStayWithinTheirRounding) {
  int changed = 0;
  for (test::NamedMesh& plane : test::tiltedPlanes()) {
    SCOPED_TRACE(plane.name);
    buildCornerNeighbourFaces(plane.mesh);
    forEveryFilter(plane.mesh, [&](const TriangleMesh& filtered) {
      ASSERT_EQ(filtered.faceNormals.size(), plane.mesh.faceNormals.size());
      for (std::size_t k = 0; k < filtered.faceNormals.size(); ++k) {
        // The positions of all but the first plane are rounded as well, and with them the normals
        // before they are: by some 1e-7 of coordinates up to 8, over edges of 1.
        EXPECT_NEAR(filtered.faceNormals[k], plane.mesh.faceNormals[k], 2e-6);
        changed += filtered.faceNormals[k] != plane.mesh.faceNormals[k] ? 1 : 0;
      }
    });
  }
  EXPECT_GT(changed, 1000) << "planes that are tilted show the rounding";
}

TEST(NormalAveraging, MovesNoVertexAndGivesTheSameBitsTwice) {
  TriangleMesh mesh = test::jittered(test::icosphere(2), 0.05);
  buildCornerNeighbourFaces(mesh);
  std::vector<std::vector<float>> first;
  forEveryFilter(mesh, [&](const TriangleMesh& filtered) {
    EXPECT_EQ(filtered.vertices, mesh.vertices);
    EXPECT_NE(filtered.faceNormals, mesh.faceNormals);
    first.push_back(filtered.faceNormals);
  });
  std::size_t k = 0;
  forEveryFilter(
      mesh, [&](const TriangleMesh& filtered) { EXPECT_EQ(filtered.faceNormals, first[k++]); });
}

TEST(NormalAveraging, LeavesFaceCountsAloneAndFiniteNormalsFiniteOnAnyMesh) {
  for (test::NamedMesh hostile : test::hostileMeshes()) {
    SCOPED_TRACE(hostile.name);
    TriangleMesh& mesh = hostile.mesh;
    buildCornerNeighbourFaces(mesh);
    const bool finite =
        std::ranges::all_of(mesh.vertices, [](float x) { return std::isfinite(x); });
    forEveryFilter(mesh, [&](const TriangleMesh& filtered) {
      ASSERT_EQ(filtered.faceNormals.size(), 3 * toIndex(mesh.faceCount));
      EXPECT_EQ(filtered.faces, mesh.faces);
      EXPECT_EQ(filtered.vertexKind, mesh.vertexKind);
      if (!finite) return;
      EXPECT_EQ(filtered.vertices, mesh.vertices);
      for (int f = 0; f < mesh.faceCount; ++f) {
        const double size = length(filtered.faceNormal(f));
        EXPECT_TRUE(size == 0.0 || std::abs(size - 1.0) < 1e-6) << f << ": " << size;
      }
    });
  }
}

}  // namespace
}  // namespace gravlin
