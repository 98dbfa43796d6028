#include <array>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <utility>
#include <vector>

#include "curvature/CurvatureDerivatives.h"
#include "curvature/CurvatureTensor.h"
#include "support/Meshes.h"
#include "support/MeshFields.h"
#include "support/ThreadCounts.h"

namespace gravlin {
namespace {

using ::testing::Each;
using ::testing::Eq;

using test::NamedMesh;
using test::sameBits;

struct PlainSample {
  bool found = false;
  double h = 0.0;
  double max = 0.0;
  double min = 0.0;
};

/// The definition written out: samples of two fields at both ends of the section of vertex i along
/// `e`. With `align`, values of vertices whose direction is against e are negated.
std::array<PlainSample, 2> plainSection(const TriangleMesh& mesh, int i,
                                        const std::vector<double>& direction, bool align,
                                        const std::vector<double>& ofMax,
                                        const std::vector<double>& ofMin) {
  std::array<PlainSample, 2> sides;  // backward, forward
  const Vec3 e = vectorAt(direction, i);
  const Vec3 p = mesh.position(i);
  const Vec3 S = cross(mesh.vertexNormal(i), e);
  const auto ring = mesh.getNeighbours(i);
  for (std::size_t j = 0; j < ring.size(); ++j) {
    const int ia = ring[j];
    const int ib = ring[(j + 1) % ring.size()];
    const Vec3 a = mesh.position(ia);
    const Vec3 b = mesh.position(ib);
    const double sa = dot(p - a, S);
    const double sb = dot(p - b, S);
    if (!(sa * sb <= 0)) continue;
    const double whole = std::fabs(sa) + std::fabs(sb);
    if (whole == 0) continue;
    const Vec3 P = p - ((p - a) * std::fabs(sb) + (p - b) * std::fabs(sa)) / whole;
    const double areaB = length(cross(P - p, b - p)) / 2;
    const double areaA = length(cross(P - p, a - p)) / 2;
    if (!(areaA + areaB > 0)) continue;
    const auto at = [&](const std::vector<double>& f, int vertex) {
      const bool against = align && dot(vectorAt(direction, vertex), e) < 0;
      return against ? -f[static_cast<std::size_t>(vertex)] : f[static_cast<std::size_t>(vertex)];
    };
    sides[sb >= 0 ? 0 : 1] = {true, length(P - p),
                              (areaB * at(ofMax, ia) + areaA * at(ofMax, ib)) / (areaA + areaB),
                              (areaB * at(ofMin, ia) + areaA * at(ofMin, ib)) / (areaA + areaB)};
  }
  return sides;
}

double plainDerivative(const std::array<PlainSample, 2>& sides, double PlainSample::*f, double f0) {
  const auto& [back, ahead] = sides;
  if (back.found && ahead.found) {
    return (ahead.*f - f0) / ahead.h + (f0 - back.*f) / back.h -
           (ahead.*f - back.*f) / (ahead.h + back.h);
  }
  if (ahead.found) return (ahead.*f - f0) / ahead.h;
  return back.found ? (f0 - back.*f) / back.h : 0.0;
}

double plainExpanded(const std::array<PlainSample, 2>& sides, double PlainSample::*f, double f0) {
  const auto& [back, ahead] = sides;
  if (!back.found || !ahead.found) return -plainDerivative(sides, f, f0);
  return (back.*f - f0) * ahead.h / ((ahead.h + back.h) * back.h) -
         (ahead.*f - f0) * back.h / ((ahead.h + back.h) * ahead.h);
}

bool interior(const TriangleMesh& mesh, int i) {
  return mesh.vertexKind[static_cast<std::size_t>(i)] == InteriorVertex;
}

struct PlainGradients {
  std::vector<Vec3> max;
  std::vector<Vec3> min;
};

PlainGradients plainGradients(const TriangleMesh& mesh) {
  const auto V = static_cast<std::size_t>(mesh.vertexCount);
  std::vector<double> eMax(V, 0.0);
  std::vector<double> eMin(V, 0.0);
  for (int i = 0; i < mesh.vertexCount; ++i) {
    if (!interior(mesh, i)) continue;
    const auto k = static_cast<std::size_t>(i);
    const auto along = [&](const std::vector<double>& direction) {
      return plainSection(mesh, i, direction, false, mesh.maxCurvature, mesh.minCurvature);
    };
    eMax[k] = plainDerivative(along(mesh.maxDirection), &PlainSample::max, mesh.maxCurvature[k]);
    eMin[k] = plainDerivative(along(mesh.minDirection), &PlainSample::min, mesh.minCurvature[k]);
  }
  PlainGradients result = {std::vector<Vec3>(V), std::vector<Vec3>(V)};
  for (int i = 0; i < mesh.vertexCount; ++i) {
    if (!interior(mesh, i)) continue;
    const auto k = static_cast<std::size_t>(i);
    const auto maxLine = plainSection(mesh, i, mesh.maxDirection, true, eMax, eMin);
    const auto minLine = plainSection(mesh, i, mesh.minDirection, true, eMax, eMin);
    const Vec3 e1 = vectorAt(mesh.maxDirection, i);
    const Vec3 e2 = vectorAt(mesh.minDirection, i);
    const Vec3 g = plainDerivative(minLine, &PlainSample::max, 0.0) * e1 -
                   plainDerivative(maxLine, &PlainSample::max, 0.0) * e2;
    const Vec3 h = plainExpanded(maxLine, &PlainSample::min, eMin[k]) * e2 -
                   plainExpanded(minLine, &PlainSample::min, eMin[k]) * e1;
    if (length(g) != 0) result.max[k] = g / length(g);
    if (length(h) != 0) result.min[k] = h / length(h);
  }
  return result;
}

void expectSameBits(const Vec3& a, const Vec3& b, int vertex) {
  EXPECT_TRUE(sameBits(a, b)) << "vertex " << vertex << ": " << a.x << ' ' << a.y << ' ' << a.z
                              << " and " << b.x << ' ' << b.y << ' ' << b.z;
}

/// An extruded profile z = height(x), seen from above. The vertices are shifted off the lattice so
/// that no principal plane passes through a neighbour.
TriangleMesh extrusion(int columns, int rows, double spacing, double (*height)(double)) {
  TriangleMesh mesh = test::grid(columns, rows);
  for (int i = 0; i < mesh.vertexCount; ++i) {
    const Vec3 p = mesh.position(i);
    const double x = spacing * (p.x - 0.5 * columns + 0.1 * std::sin(3.0 * p.y));
    const double y = spacing * (p.y + 0.1 * std::sin(5.0 * p.x));
    mesh.setPosition(i, {x, y, height(x)});
  }
  mesh.computeFaceNormals();
  mesh.computeVertexNormals();
  computeCurvatureTensor(mesh);
  return mesh;
}

/// The mean of |component along y| of the unit vectors in `field` at interior vertices with |x| at
/// most `reach`, two rows away from the border.
double meanAlongY(const TriangleMesh& mesh, const std::vector<double>& field, double reach,
                  double length) {
  double sum = 0.0;
  int count = 0;
  for (int i = 0; i < mesh.vertexCount; ++i) {
    const Vec3 p = mesh.position(i);
    if (std::abs(p.x) > reach || p.y < 0.2 * length || p.y > 0.8 * length) continue;
    sum += std::abs(vectorAt(field, i).y);
    ++count;
  }
  return sum / count;
}

TEST(CurvatureDerivatives, EqualTheDefinitionBitForBitOnEveryMesh) {
  for (NamedMesh& each : test::everyMesh()) {
    SCOPED_TRACE(each.name);
    computeCurvatureTensor(each.mesh);
    computeCurvatureDerivatives(each.mesh);
    const PlainGradients expected = plainGradients(each.mesh);
    for (int i = 0; i < each.mesh.vertexCount; ++i) {
      const auto k = static_cast<std::size_t>(i);
      expectSameBits(vectorAt(each.mesh.maxDerivativeGradient, i), expected.max[k], i);
      expectSameBits(vectorAt(each.mesh.minDerivativeGradient, i), expected.min[k], i);
    }
  }
}

TEST(CurvatureDerivatives, RunAlongTheCrestOfAnExtrudedHill) {
  TriangleMesh mesh = extrusion(40, 20, 0.1, [](double x) { return 0.3 * std::exp(-2.0 * x * x); });
  computeCurvatureDerivatives(mesh);
  // Within one column of the crest; the estimate of a second derivative wavers by some degrees.
  EXPECT_GT(meanAlongY(mesh, mesh.maxDerivativeGradient, 0.1, 2.0), 0.97);
}

TEST(CurvatureDerivatives, RunAlongTheBottomOfAnExtrudedTrough) {
  TriangleMesh mesh =
      extrusion(40, 20, 0.1, [](double x) { return -0.3 * std::exp(-2.0 * x * x); });
  computeCurvatureDerivatives(mesh);
  EXPECT_GT(meanAlongY(mesh, mesh.minDerivativeGradient, 0.1, 2.0), 0.97);
}

/// Six neighbours around vertex 0 in the plane z = 0 with every direction turned by 0.2 radians off
/// the axes, and the curvatures given by hand as linear fields.
TriangleMesh linearFields(double maxSlope, double minSlope) {
  TriangleMesh mesh = test::hexagonFan();
  computeCurvatureTensor(mesh);
  const Vec3 e1 = {std::cos(0.2), std::sin(0.2), 0.0};
  const Vec3 e2 = {-std::sin(0.2), std::cos(0.2), 0.0};
  for (int i = 0; i < mesh.vertexCount; ++i) {
    const auto k = static_cast<std::size_t>(i);
    storeVectorAt(mesh.maxDirection, i, e1);
    storeVectorAt(mesh.minDirection, i, e2);
    mesh.maxCurvature[k] = 5.0 + maxSlope * dot(mesh.position(i), e1);
    mesh.minCurvature[k] = 1.0 + minSlope * dot(mesh.position(i), e2);
  }
  return mesh;
}

TEST(CurvatureDerivatives, CentreValueEntersTheMinimumOnly) {
  // Only vertex 0 is interior, so the derivatives are (slope at 0, nothing around it). The maximum
  // leaves its own value out and sees a zero field; the minimum sees a peak whose derivative along
  // either line, with equal distances on both sides, is 0 up to rounding.
  TriangleMesh mesh = linearFields(2.0, 3.0);
  computeCurvatureDerivatives(mesh);
  EXPECT_EQ(vectorAt(mesh.maxDerivativeGradient, 0), Vec3{});

  // Moving one neighbour outwards makes the distances unequal: the peak now leans.
  mesh.setPosition(1, 2.0 * mesh.position(1));
  computeCurvatureDerivatives(mesh);
  EXPECT_EQ(vectorAt(mesh.maxDerivativeGradient, 0), Vec3{});
  EXPECT_NEAR(length(vectorAt(mesh.minDerivativeGradient, 0)), 1.0, 1e-12);
}

TEST(CurvatureDerivatives, SkipVerticesThatAreNotInterior) {
  for (NamedMesh& each : test::everyMesh()) {
    SCOPED_TRACE(each.name);
    computeCurvatureTensor(each.mesh);
    computeCurvatureDerivatives(each.mesh);
    ASSERT_EQ(each.mesh.maxDerivativeGradient.size(), each.mesh.maxDirection.size());
    for (int i = 0; i < each.mesh.vertexCount; ++i) {
      if (interior(each.mesh, i)) continue;
      EXPECT_EQ(vectorAt(each.mesh.maxDerivativeGradient, i), Vec3{});
      EXPECT_EQ(vectorAt(each.mesh.minDerivativeGradient, i), Vec3{});
    }
  }
}

TEST(CurvatureDerivatives, AreUnitOrZeroOnEveryFiniteMesh) {
  for (NamedMesh& each : test::everyMesh()) {
    if (each.name == "not a number" || each.name == "infinite") continue;
    SCOPED_TRACE(each.name);
    TriangleMesh& mesh = each.mesh;
    computeCurvatureTensor(mesh);
    computeCurvatureDerivatives(mesh);
    int unit = 0;
    for (int i = 0; i < mesh.vertexCount; ++i) {
      for (const auto* field : {&mesh.maxDerivativeGradient, &mesh.minDerivativeGradient}) {
        const double l = length(vectorAt(*field, i));
        EXPECT_TRUE(l == 0.0 || std::abs(l - 1.0) < 1e-12) << l;
        if (l > 0.0) ++unit;
      }
    }
    if (each.name == "bumpy grid" || each.name == "torus") {
      EXPECT_GT(unit, mesh.vertexCount);
    }
  }
}

TEST(CurvatureDerivatives, HaveTheSameBitsOnAnyNumberOfThreads) {
  // With more than 4096 vertices for each of eight threads.
  TriangleMesh mesh = test::jittered(test::torus(260, 140), 0.005);
  ASSERT_GT(mesh.vertexCount, 8 * 4096);
  computeCurvatureTensor(mesh);
  const auto gradients = [&](int threads) {
    const test::ScopedThreadCount scope(threads);
    computeCurvatureDerivatives(mesh);
    return std::pair(mesh.maxDerivativeGradient, mesh.minDerivativeGradient);
  };
  const auto alone = gradients(1);
  const PlainGradients expected = plainGradients(mesh);
  for (int i = 0; i < mesh.vertexCount; i += 977) {
    expectSameBits(vectorAt(alone.first, i), expected.max[static_cast<std::size_t>(i)], i);
  }
  for (const int threads : {2, 3, 8}) {
    mesh.maxDerivativeGradient.clear();
    mesh.minDerivativeGradient.clear();
    EXPECT_TRUE(gradients(threads) == alone) << threads;
  }
}

TEST(CurvatureDerivatives, StayZeroWhereCurvatureIsConstant) {
  TriangleMesh mesh = test::grid(5, 4);
  computeCurvatureTensor(mesh);
  computeCurvatureDerivatives(mesh);
  EXPECT_THAT(mesh.maxDerivativeGradient, Each(Eq(0.0)));
  EXPECT_THAT(mesh.minDerivativeGradient, Each(Eq(0.0)));
}

TEST(CurvatureDerivatives, TakeTheOneSidedDifferenceWhereASideHasNoSample) {
  // Vertex 3 lies on vertex 0, so the triangles with it give no sample: the section along x ends at
  // (1, 0, 0) only, and the one along y has no end at all.
  TriangleMesh mesh = test::makeMesh({{0, 0, 0}, {1, -1, 0}, {1, 1, 0}, {0, 0, 0}},
                                     {{0, 1, 2}, {0, 2, 3}, {0, 3, 1}});
  ASSERT_TRUE(interior(mesh, 0));
  mesh.vertexNormals = {0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1};
  mesh.maxDirection = {0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0};
  mesh.minDirection = {-1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0};
  mesh.maxCurvature = {5, 5, 5, 5};
  mesh.minCurvature = {1, 4, 4, 4};
  computeCurvatureDerivatives(mesh);
  // Behind the vertex the minimum is 4, here it is 1: slope -3 along -x. Seen from here the slope's
  // own difference along that line is (-3 - 0) / 1, so the gradient runs along -y.
  EXPECT_EQ(vectorAt(mesh.minDerivativeGradient, 0), (Vec3{0, -1, 0}));
  EXPECT_EQ(vectorAt(mesh.maxDerivativeGradient, 0), Vec3{});
}

}  // namespace
}  // namespace gravlin
