#include <algorithm>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vector>

#include "numeric/Index.h"
#include "smoothing/NormalAveraging.h"
#include "smoothing/NormalIntegration.h"
#include "support/Meshes.h"
#include "support/TiltedPlanes.h"

namespace gravlin {
namespace {

using Displacements = std::vector<Vec3>;

Vec3 corner(const TriangleMesh& mesh, int f, std::size_t k) {
  return mesh.position(mesh.corners(f)[k]);
}

double angleCotangent(const Vec3& apex, const Vec3& a, const Vec3& b) {
  const Vec3 u = a - apex;
  const Vec3 v = b - apex;
  return dot(u, v) / length(cross(u, v));
}

// --- The definitions once more, face by face instead of around a ring ---

Displacements distanceByDefinition(const TriangleMesh& mesh) {
  Displacements sums(toIndex(mesh.vertexCount));
  std::vector<double> areas(sums.size());
  for (int f = 0; f < mesh.faceCount; ++f) {
    if (!mesh.validFace(f)) continue;
    const Vec3 centroid = (corner(mesh, f, 0) + corner(mesh, f, 1) + corner(mesh, f, 2)) / 3.0;
    const double area = 0.5 * length(cross(corner(mesh, f, 1) - corner(mesh, f, 0),
                                           corner(mesh, f, 2) - corner(mesh, f, 0)));
    for (const int i : mesh.corners(f)) {
      const double height = dot(mesh.faceNormal(f), mesh.position(i) - centroid);
      sums[toIndex(i)] -= area * height * mesh.faceNormal(f);
      areas[toIndex(i)] += area;
    }
  }
  for (std::size_t i = 0; i < sums.size(); ++i) {
    sums[i] = areas[i] == 0.0 ? Vec3{} : sums[i] / areas[i];
  }
  return sums;
}

/// The corner at `k` of face f: difference of its cotangent terms, and its area ratio.
struct CornerTerm {
  Vec3 difference;
  double ratio = 0.0;
  bool hasArea = false;
};

CornerTerm cornerTerm(const TriangleMesh& mesh, int f, std::size_t k) {
  const Vec3 x = corner(mesh, f, k);
  const Vec3 a = corner(mesh, f, (k + 1) % 3);
  const Vec3 b = corner(mesh, f, (k + 2) % 3);
  const Vec3 m = mesh.faceNormal(f);
  const Vec3 flatA = a - dot(a - x, m) * m;
  const Vec3 flatB = b - dot(b - x, m) * m;
  CornerTerm term;
  const double area = length(cross(b - x, a - x));
  const double flatArea = length(cross(flatB - x, flatA - x));
  if (area != 0.0) {
    term.difference += angleCotangent(a, x, b) * (b - x) + angleCotangent(b, x, a) * (a - x);
    term.ratio = flatArea / area;
    term.hasArea = true;
  }
  if (flatArea != 0.0) {
    term.difference -= angleCotangent(flatA, x, flatB) * (flatB - x) +
                       angleCotangent(flatB, x, flatA) * (flatA - x);
  }
  return term;
}

Displacements derivativeByDefinition(const TriangleMesh& mesh) {
  Displacements sums(toIndex(mesh.vertexCount));
  for (int f = 0; f < mesh.faceCount; ++f) {
    for (std::size_t k = 0; k < 3 && mesh.validFace(f); ++k) {
      const int i = mesh.corners(f)[k];
      sums[toIndex(i)] +=
          cornerTerm(mesh, f, k).difference / static_cast<double>(mesh.neighbourCount(i));
    }
  }
  return sums;
}

Displacements derivativeByAreaByDefinition(const TriangleMesh& mesh, double factor) {
  Displacements sums(toIndex(mesh.vertexCount));
  std::vector<double> weights(sums.size());
  for (int f = 0; f < mesh.faceCount; ++f) {
    for (std::size_t k = 0; k < 3 && mesh.validFace(f); ++k) {
      const auto i = toIndex(mesh.corners(f)[k]);
      const CornerTerm term = cornerTerm(mesh, f, k);
      if (!term.hasArea) continue;
      sums[i] += factor * term.ratio * term.ratio * term.difference;
      weights[i] += factor * term.ratio * term.ratio;
    }
  }
  for (std::size_t i = 0; i < sums.size(); ++i) {
    sums[i] = weights[i] == 0.0 ? Vec3{} : sums[i] / weights[i];
  }
  return sums;
}

/// Expects that `moved` is `before` with the interior vertices moved by step x displacement.
void expectMoved(const TriangleMesh& moved, const TriangleMesh& before, double step,
                 const Displacements& displacements) {
  // Positions below 8 are rounded to 4.8e-7; sums in another order differ by far less.
  constexpr double tolerance = 1e-6;
  for (int i = 0; i < before.vertexCount; ++i) {
    Vec3 wanted = before.position(i);
    if (before.vertexKind[toIndex(i)] == InteriorVertex) {
      wanted += step * displacements[toIndex(i)];
    }
    ASSERT_NEAR(length(moved.position(i) - wanted), 0.0, tolerance) << "vertex " << i;
  }
}

/// Rough meshes with normals filtered once, so that faces and normals disagree everywhere.
std::vector<test::NamedMesh> filteredMeshes() {
  std::vector<test::NamedMesh> all = {{"rough sphere", test::jittered(test::icosphere(2), 0.05)},
                                      {"rough cube", test::jittered(test::fineCube(5), 0.05)},
                                      {"rough grid", test::jittered(test::bumpyGrid(7, 6), 0.2)},
                                      {"rough torus", test::jittered(test::torus(14, 9), 0.1)},
                                      {"octahedron", test::jittered(test::octahedron(), 0.2)},
                                      {"tetrahedron", test::tetrahedron()}};
  for (auto& [name, mesh] : all) averageNormalsWeighted(mesh, {});
  return all;
}

TEST(NormalIntegration, DistanceIsItsDefinition) {
  for (const test::NamedMesh& named : filteredMeshes()) {
    const TriangleMesh& before = named.mesh;
    SCOPED_TRACE(named.name);
    TriangleMesh mesh = before;
    integrateDistance(mesh, 0.3);
    expectMoved(mesh, before, 0.3, distanceByDefinition(before));
    EXPECT_NE(mesh.vertices, before.vertices);
  }
}

TEST(NormalIntegration, DerivativeIsItsDefinition) {
  for (const test::NamedMesh& named : filteredMeshes()) {
    const TriangleMesh& before = named.mesh;
    SCOPED_TRACE(named.name);
    TriangleMesh mesh = before;
    integrateDerivative(mesh, 0.1);
    expectMoved(mesh, before, 0.1, derivativeByDefinition(before));
    EXPECT_NE(mesh.vertices, before.vertices);
  }
}

TEST(NormalIntegration, DerivativeByAreaIsItsDefinition) {
  for (const test::NamedMesh& named : filteredMeshes()) {
    const TriangleMesh& before = named.mesh;
    for (const double factor : {2.0, -3.0, 0.0}) {
      SCOPED_TRACE(::testing::Message() << named.name << ' ' << factor);
      TriangleMesh mesh = before;
      integrateDerivativeByArea(mesh, 0.1, factor);
      expectMoved(mesh, before, 0.1, derivativeByAreaByDefinition(before, factor));
      EXPECT_EQ(mesh.vertices == before.vertices, factor == 0.0);
    }
  }
}

TEST(NormalIntegration, OneStepOfDistanceByHand) {
  // The middle of a hexagon in the plane z = 0, with normals along z, raised by 0.3: each face's
  // centroid lies at a third of that height, so the vertex sinks by two thirds of it.
  TriangleMesh mesh = test::hexagonFan();
  mesh.setPosition(0, {0, 0, 0.3});
  integrateDistance(mesh, 0.5);
  EXPECT_NEAR(mesh.position(0).z, 0.3 - 0.5 * 0.2, 1e-7);
  EXPECT_NEAR(length(mesh.position(0) - Vec3{0, 0, mesh.position(0).z}), 0.0, 1e-7);
}

TEST(NormalIntegration, OneStepOfDerivativeByHand) {
  // The same pyramid of height h. Its sides are isosceles with base 1 and base angles whose
  // cotangent is 0.5 / s, s = sqrt(h^2 + 3/4) the height of a side. The flattened ring's terms
  // cancel by symmetry and those of the real one leave the z component: every spoke is weighted by
  // two cotangents, so the sum over six spokes is -6 h 2 (0.5 / s), divided by 6.
  constexpr double h = 0.3;
  TriangleMesh mesh = test::hexagonFan();
  mesh.setPosition(0, {0, 0, h});
  integrateDerivative(mesh, 0.1);
  EXPECT_NEAR(mesh.position(0).z, h - 0.1 * h / std::sqrt(h * h + 0.75), 1e-7);
}

template <class Check>
void forEveryIntegration(const TriangleMesh& before, const Check& check) {
  TriangleMesh mesh = before;
  integrateDistance(mesh, 0.5);
  check(mesh);
  mesh = before;
  integrateDerivative(mesh, 0.5);
  check(mesh);
  mesh = before;
  integrateDerivativeByArea(mesh, 0.5, 2.0);
  check(mesh);
}

TEST(NormalIntegration, APlanarPatchStaysAsItIs) {
  const TriangleMesh before = test::grid(7, 5);
  forEveryIntegration(before,
                      [&](const TriangleMesh& mesh) { EXPECT_EQ(mesh.vertices, before.vertices); });
}

TEST(NormalIntegration, ATiltedPlanarPatchStaysWithinTheRoundingOfNormals) {
  int moved = 0;
  for (const test::NamedMesh& plane : test::tiltedPlanes()) {
    SCOPED_TRACE(plane.name);
    const TriangleMesh& before = plane.mesh;
    forEveryIntegration(before, [&](const TriangleMesh& mesh) {
      for (int i = 0; i < mesh.vertexCount; ++i) {
        // A normal that is off by 2e-6 moves what lies up to 4 away, and sums are stored as floats.
        EXPECT_LT(length(mesh.position(i) - before.position(i)), 1e-5) << i;
        moved += mesh.position(i) != before.position(i) ? 1 : 0;
      }
    });
  }
  EXPECT_GT(moved, 10) << "planes that are tilted show the rounding";
}

TEST(NormalIntegration, BoundaryAndNonManifoldVerticesStay) {
  for (const test::NamedMesh& named :
       {test::NamedMesh{"grid", test::bumpyGrid(6, 5)}, test::NamedMesh{"bow tie", test::bowTie()},
        test::NamedMesh{"three", test::threeFacesOnAnEdge()}}) {
    const TriangleMesh& before = named.mesh;
    TriangleMesh tilted = before;
    for (float& x : tilted.faceNormals) x = 0.57735F;
    forEveryIntegration(tilted, [&](const TriangleMesh& mesh) {
      for (int i = 0; i < mesh.vertexCount; ++i) {
        if (mesh.vertexKind[toIndex(i)] == InteriorVertex) continue;
        EXPECT_EQ(mesh.position(i), before.position(i)) << named.name << ' ' << i;
      }
    });
  }
}

TEST(NormalIntegration, TurnsWithTheMesh) {
  // Turning positions and normals by 90 degrees about z swaps and negates coordinates exactly.
  const auto turned = [](TriangleMesh mesh) {
    for (auto* xyz : {&mesh.vertices, &mesh.faceNormals}) {
      for (std::size_t c = 0; c < xyz->size(); c += 3) {
        std::swap((*xyz)[c], (*xyz)[c + 1]);
        (*xyz)[c] = -(*xyz)[c];
      }
    }
    return mesh;
  };
  for (const test::NamedMesh& named : filteredMeshes()) {
    const TriangleMesh& before = named.mesh;
    std::vector<TriangleMesh> results;
    forEveryIntegration(before, [&](const TriangleMesh& mesh) { results.push_back(turned(mesh)); });
    std::size_t k = 0;
    forEveryIntegration(turned(before), [&](const TriangleMesh& mesh) {
      const TriangleMesh& wanted = results[k++];
      for (int i = 0; i < mesh.vertexCount; ++i) {
        // The sum x + y + z is taken in another order.
        EXPECT_NEAR(length(mesh.position(i) - wanted.position(i)), 0.0, 1e-6) << named.name;
      }
    });
  }
}

TEST(NormalIntegration, TakesFlatTrianglesWithoutAreaForNothing) {
  // An interior vertex all of whose triangles are degenerate, and one whose filtered normals lie
  // in the triangles' planes so that flattening leaves no area.
  TriangleMesh points = test::hexagonFan();
  std::ranges::fill(points.vertices, 1.0F);
  forEveryIntegration(points,
                      [&](const TriangleMesh& mesh) { EXPECT_EQ(mesh.vertices, points.vertices); });

  TriangleMesh upright = test::hexagonFan();
  for (int f = 0; f < 6; ++f) {
    storeVec3(&upright.faceNormals[3 * toIndex(f)], {1, 0, 0});
  }
  TriangleMesh mesh = upright;
  integrateDerivativeByArea(mesh, 0.5, 2.0);
  EXPECT_EQ(mesh.vertices, upright.vertices) << "no area, no weight";
}

TEST(NormalIntegration, KeepsFinitePositionsFiniteOnAnyMesh) {
  for (const test::NamedMesh& named : test::hostileMeshes()) {
    const TriangleMesh& before = named.mesh;
    SCOPED_TRACE(named.name);
    const bool finite =
        std::ranges::all_of(before.vertices, [](float x) { return std::isfinite(x); });
    forEveryIntegration(before, [&](const TriangleMesh& mesh) {
      ASSERT_EQ(mesh.vertices.size(), before.vertices.size());
      EXPECT_EQ(mesh.faces, before.faces);
      EXPECT_EQ(mesh.vertexKind, before.vertexKind);
      if (!finite) return;
      for (const float x : mesh.vertices) EXPECT_TRUE(std::isfinite(x));
    });
  }
}

}  // namespace
}  // namespace gravlin
