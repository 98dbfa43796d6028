#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "batch/Report.h"
#include "curvature/CurvatureTensor.h"
#include "curvature/EdgeCurvature.h"
#include "support/Meshes.h"
#include "support/MeshFields.h"

namespace gravlin {
namespace {

using ::testing::ContainsRegex;
using ::testing::HasSubstr;
using ::testing::Not;

std::string summary(const TriangleMesh& mesh) {
  return summarize({.mesh = &mesh}, LineOrigin::RidgesAndValleys);
}

TEST(Report, SumsUpACubeInTheUnitsOfItsFile) {
  TriangleMesh cube = test::cube();  // side 2 in memory
  cube.extentTolerance = 0.5;        // side 1 in the file, about (5, 6, 7)
  cube.boxMin = {4.5F, 5.5F, 6.5F};
  cube.boxMax = {5.5F, 6.5F, 7.5F};
  EXPECT_EQ(summary(cube),
            "vertices              8 used: 8 interior, 0 boundary, 0 non-manifold; 0 unused\n"
            "faces                 12 valid; 0 invalid\n"
            "edges                 18: 0 boundary, 0 with more than two faces\n"
            "boundary loops        0\n"
            "components            1\n"
            "Euler characteristic  2\n"
            "area                  6\n"
            "volume                1\n"
            "box                   (4.5, 5.5, 6.5) to (5.5, 6.5, 7.5)\n");
}

TEST(Report, CountsKindsUnusedVerticesAndInvalidFaces) {
  EXPECT_THAT(summary(test::bowTie()),
              HasSubstr("5 used: 0 interior, 4 boundary, 1 non-manifold; 0 unused"));
  const TriangleMesh mesh =
      test::makeMesh({{9, 9, 9}, {0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{1, 2, 3}, {1, 1, 2}});
  const std::string text = summary(mesh);
  EXPECT_THAT(text, HasSubstr("3 used: 0 interior, 3 boundary, 0 non-manifold; 1 unused"));
  EXPECT_THAT(text, HasSubstr("1 valid; 1 invalid"));
  EXPECT_THAT(text, HasSubstr("box                   (0, 0, 0) to (1, 1, 0)"));
}

TEST(Report, TellsThatTheVolumeOfAnOpenSurfaceIsTakenAsItStands) {
  EXPECT_THAT(summary(test::grid(3, 2)), HasSubstr("(the surface is open)"));
  EXPECT_THAT(summary(test::icosphere(1)), Not(HasSubstr("open")));
}

TEST(Report, HoldsStatisticsOfTheCurvaturesThatArePresent) {
  TriangleMesh mesh = test::twoTriangles();
  mesh.extentTolerance = 2.0;
  EXPECT_THAT(summary(mesh), Not(HasSubstr("curvature")));
  mesh.maxCurvature = {2, 4, 6, 8};
  mesh.minCurvature = {-2, 0, 2, 4};
  mesh.curvatureOrigin = mesh.here();
  const std::string text = summary(mesh);
  EXPECT_THAT(text, HasSubstr("maximum curvature     from 1 to 4, mean 2.5, deviation 1.11803\n"));
  EXPECT_THAT(text, HasSubstr("minimum curvature     from -1 to 2, mean 0.5, deviation 1.11803\n"));
  EXPECT_THAT(text, HasSubstr("mean curvature        from 0 to 3, mean 1.5"));
  EXPECT_THAT(text, HasSubstr("Gaussian curvature    from -1 to 8, mean 2.5"));
  EXPECT_THAT(text, HasSubstr("total curvature       from 2 to 6, mean 3.5"));
  EXPECT_THAT(text, Not(HasSubstr("edge curvature")));
  mesh.edgeCurvatures.assign(6, -2.0);
  mesh.edgeCurvatureOrigin = mesh.here();
  EXPECT_THAT(summary(mesh),
              HasSubstr("edge curvature        from -1 to -1, mean -1, deviation 0\n"));
}

TEST(Report, TellsWhichCurvaturesAreOlderThanTheShape) {
  TriangleMesh mesh = test::bumpyGrid(5, 5);
  mesh.shape = 7;
  computeCurvatureTensor(mesh);
  computeEdgeCurvatures(mesh);
  EXPECT_THAT(summary(mesh), Not(HasSubstr("earlier")));
  mesh.shape = 8;
  computeEdgeCurvatures(mesh);
  const std::string text = summary(mesh);
  for (const char* name : {"maximum", "minimum", "mean", "Gaussian", "total"}) {
    EXPECT_THAT(text, ContainsRegex(name + std::string(" curvature .* .of an earlier shape.\n")));
  }
  EXPECT_THAT(text, Not(ContainsRegex("edge curvature .*earlier")));
  mesh.shape = 9;
  EXPECT_THAT(summary(mesh), ContainsRegex("edge curvature .* .of an earlier shape.\n"));
}

TEST(Report, HasNoNegativeZerosAndNoNansForAMeshWithoutFaces) {
  int meshes = 0;
  for (const auto& [name, mesh] : test::hostileMeshes()) {
    if (mesh.countValidFaces() != 0) continue;
    TriangleMesh measured = mesh;
    measured.normalize();  // which leaves a negative unit where no box could be found
    measured.maxCurvature.assign(static_cast<std::size_t>(mesh.vertexCount), 0.0);
    measured.minCurvature = measured.maxCurvature;
    measured.curvatureOrigin = measured.here();
    const std::string text = summary(measured);
    EXPECT_THAT(text, Not(HasSubstr("-0"))) << name;
    EXPECT_THAT(text, Not(HasSubstr("nan"))) << name;
    EXPECT_THAT(text, HasSubstr("volume                0\n")) << name;
    ++meshes;
  }
  EXPECT_GE(meshes, 2);
}

TEST(Report, CountsAndMeasuresLines) {
  TriangleMesh mesh = test::grid(3, 3);  // lattice points four to a row
  mesh.extentTolerance = 0.5;
  EXPECT_THAT(summary(mesh), Not(HasSubstr("lines")));
  mesh.ridgeLinks.resize(16);
  mesh.valleyLinks.resize(16);
  const auto link = [](std::vector<IndexList>& links, int a, int b) {
    links[static_cast<std::size_t>(a)].append(b);
    links[static_cast<std::size_t>(b)].append(a);
  };
  link(mesh.ridgeLinks, 0, 1);
  link(mesh.ridgeLinks, 1, 2);
  link(mesh.ridgeLinks, 12, 13);
  EXPECT_THAT(summary(mesh), HasSubstr("ridge lines           2, length 1.5\n"));
  EXPECT_THAT(summary(mesh), HasSubstr("valley lines          0, length 0\n"));
  const std::string creases = summarize({.mesh = &mesh}, LineOrigin::Creases);
  EXPECT_THAT(creases, HasSubstr("convex creases        2, length 1.5\n"));
  EXPECT_THAT(creases, HasSubstr("concave creases       0, length 0\n"));
  EXPECT_THAT(creases, Not(HasSubstr("lines")));
}

TEST(Report, CountsWhatAHostileMeshHasAndKeepsFiniteMeasuresFinite) {
  for (const auto& [name, mesh] : test::hostileMeshes()) {
    SCOPED_TRACE(name);
    const std::string text = summary(mesh);
    const auto row = [](const std::string& title, int number) {
      return title + std::string(22 - title.size(), ' ') + std::to_string(number);
    };
    EXPECT_THAT(text, HasSubstr(row("vertices", mesh.countUsedVertices()) + " used"));
    EXPECT_THAT(text,
                HasSubstr(row("faces", mesh.countValidFaces()) + " valid; " +
                          std::to_string(mesh.faceCount - mesh.countValidFaces()) + " invalid"));
    const auto ofKind = [&mesh = mesh](int kind) {
      int count = 0;
      for (int i = 0; i < mesh.vertexCount; ++i) {
        const bool counts = mesh.vertexKind[static_cast<std::size_t>(i)] == kind;
        count += counts && mesh.neighbourCount(i) > 0 ? 1 : 0;
      }
      return std::to_string(count);
    };
    EXPECT_THAT(text, HasSubstr(" used: " + ofKind(InteriorVertex) + " interior, " +
                                ofKind(BoundaryVertex) + " boundary, " + ofKind(NonManifoldVertex) +
                                " non-manifold; "));
    EXPECT_THAT(text,
                HasSubstr(row("Euler characteristic", test::eulerCharacteristic(mesh)) + "\n"));
    if (test::isFinite(mesh)) {
      EXPECT_THAT(text, Not(::testing::AnyOf(HasSubstr("nan"), HasSubstr("inf"))));
    }
  }
}

}  // namespace
}  // namespace gravlin
