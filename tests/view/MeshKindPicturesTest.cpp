#include <algorithm>
#include <array>
#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "ImmediateCurvature.h"
#include "ImmediateFeatures.h"
#include "ImmediateMode.h"
#include "support/DisplayModes.h"
#include "support/DocumentAccess.h"
#include "support/ImageComparison.h"
#include "support/OffscreenView.h"

namespace gravlin {
namespace {

// --- One mesh of every kind ---

TriangleMesh withTopology(TriangleMesh mesh) {
  mesh.buildAdjacency();
  mesh.buildFaceAdjacency();
  mesh.computeFaceNormals();
  mesh.computeVertexNormals();
  return mesh;
}

TriangleMesh rebuilt(TriangleMesh mesh, const std::vector<std::array<int, 3>>& faces) {
  mesh.setFaceCount(static_cast<int>(faces.size()));
  for (int f = 0; f < mesh.faceCount; ++f) mesh.setFace(f, faces[static_cast<std::size_t>(f)]);
  return withTopology(std::move(mesh));
}

/// The mesh with its faces turned inwards.
TriangleMesh turnedInwards(const TriangleMesh& mesh) {
  std::vector<std::array<int, 3>> faces;
  for (int f = 0; f < mesh.faceCount; ++f) {
    const auto c = mesh.corners(f);
    faces.push_back({c[0], c[2], c[1]});
  }
  return rebuilt(mesh, faces);
}

/// With a hole towards the viewer, through which the inner side is seen, and nothing else odd.
TriangleMesh openSphere() {
  const TriangleMesh sphere = test::bumpySphere();
  std::vector<std::array<int, 3>> faces;
  for (int f = 0; f < sphere.faceCount; ++f) {
    const auto c = sphere.corners(f);
    const Vec3 p = sphere.position(c[0]);
    if (dot(p, {26, -48, 40}) < 450.0) faces.push_back({c[0], c[1], c[2]});
  }
  return withTopology(rebuilt(sphere, faces).compactCopy());
}

/// Two closed surfaces that share one vertex.
TriangleMesh touchingSurfaces() {
  TriangleMesh mesh = test::touchingOctahedra();
  for (float& x : mesh.vertices) x *= 5.0F;
  return test::jittered(mesh, 0.5);
}

/// Three sheets of faces that meet at a line of edges.
TriangleMesh threeSheets() {
  constexpr int n = 8;
  TriangleMesh mesh;
  mesh.setVertexCount(2 * (n + 1) + 2 * (n + 1));
  std::vector<std::array<int, 3>> faces;
  const Vec3 ways[] = {{0, 0, 0}, {6, 0, 2}, {-5, 3, 1}, {-2, -6, 0.5}};
  for (int sheet = 0; sheet < 4; ++sheet) {
    for (int k = 0; k <= n; ++k) {
      mesh.setPosition(sheet * (n + 1) + k, ways[sheet] + Vec3{0.1 * k * k, 0, 2.0 * k - n});
      if (sheet == 0 || k == 0) continue;
      const int outer = sheet * (n + 1) + k;
      faces.push_back({k - 1, outer - 1, outer});
      faces.push_back({k - 1, outer, k});
    }
  }
  return rebuilt(mesh, faces);
}

std::vector<test::NamedMesh> meshKinds() {
  return {{"inside out", turnedInwards(test::bumpySphere())},
          {"open", openSphere()},
          {"touching", touchingSurfaces()},
          {"three sheets", threeSheets()}};
}

TriangleMesh kindNamed(const std::string& name) {
  for (test::NamedMesh& each : meshKinds()) {
    if (each.name == name) return std::move(each.mesh);
  }
  return {};
}

bool drawsNothing(int mode) {
  return findMode(mode) == nullptr;
}

// --- What is in a picture ---

std::array<int, 3> colourAt(const Image& image, int x, int y) {
  const std::uint8_t* p = image.pixel(x, y);
  return {p[0], p[1], p[2]};
}

constexpr std::array<int, 3> white = {255, 255, 255};

/// For each pixel whether something other than white is there.
std::vector<bool> inkOf(const Image& image) {
  std::vector<bool> ink;
  for (int y = 0; y < image.height; ++y) {
    for (int x = 0; x < image.width; ++x) ink.push_back(colourAt(image, x, y) != white);
  }
  return ink;
}

int amountOf(const std::vector<bool>& ink) {
  return static_cast<int>(std::count(ink.begin(), ink.end(), true));
}

bool holds(const Image& image, const std::array<int, 3>& colour) {
  for (int y = 0; y < image.height; ++y) {
    for (int x = 0; x < image.width; ++x) {
      if (colourAt(image, x, y) == colour) return true;
    }
  }
  return false;
}

class MeshKindPictures : public ::testing::Test {
 protected:
  MeshKindPictures() { offscreen.target = {.size = {180, 180}, .overlay = false}; }

  /// A mesh with everything that any mode shows.
  void load(const TriangleMesh& mesh) {
    offscreen.show(mesh, FlatShading);
    offscreen.document.vertexErrors.clear();
    offscreen.document.faceErrors.clear();
    test::computeAllCurvature(offscreen.document);
    test::findAllLines(offscreen.document);
  }
  Image draw(int mode) {
    offscreen.show(mode);
    return offscreen.draw();
  }

  test::OffscreenView offscreen;
};

// --- Every mode on every kind ---

class EveryModeOf : public MeshKindPictures, public ::testing::WithParamInterface<std::string> {};

TEST_P(EveryModeOf, DrawsThePixelsOfImmediateMode) {
  load(kindNamed(GetParam()));
  for (const ViewAngles& angles : {ViewAngles{0, 0, 0}, ViewAngles{-70, 150, 20}}) {
    offscreen.view.camera.setAngles(angles);
    std::vector<Image> drawn;
    for (int mode = 0; mode <= 31; ++mode) drawn.push_back(draw(mode));
    // Afterwards and not in turns: Mesa's software renderer does not notice every change of its
    // state between drawing vertex by vertex and drawing from buffers.
    for (int mode = 0; mode <= 31; ++mode) {
      SCOPED_TRACE("mode " + std::to_string(mode) + ", Rx " + std::to_string(angles.rx));
      offscreen.document.displayMode = mode;
      const Image expected =
          test::drawImmediately(offscreen.document, offscreen.view, offscreen.target.size);
      EXPECT_EQ(test::differentPixels(drawn[static_cast<std::size_t>(mode)], expected), 0);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(MeshKinds, EveryModeOf,
                         ::testing::Values("inside out", "open", "touching", "three sheets"),
                         [](const auto& test) {
                           std::string name = test.param;
                           std::ranges::replace(name, ' ', '_');
                           return name;
                         });

TEST_F(MeshKindPictures, EveryModeOfTheTableShowsSomethingWhereThereIsSomethingToShow) {
  int withLines = 0;
  for (const test::NamedMesh& each : meshKinds()) {
    load(each.mesh);
    const TriangleMesh& mesh = *offscreen.document.mesh();
    const auto links = [](const std::vector<IndexList>& lists) {
      return std::any_of(lists.begin(), lists.end(),
                         [](const auto& list) { return !list.empty(); });
    };
    const bool lines = links(mesh.ridgeLinks) || links(mesh.valleyLinks);
    withLines += lines ? 1 : 0;
    const bool bad = each.name != "inside out";
    for (const int mode : test::everyDisplayMode()) {
      SCOPED_TRACE(each.name + ", mode " + std::to_string(mode));
      offscreen.document.angleParameters.shadedSurface = false;
      const bool onlyLines =
          mode == WeightedRidgeLines || mode == FeatureLines || mode == CreaseLines;
      if (onlyLines && !lines) continue;
      const bool shows = !drawsNothing(mode) && (mode != NonManifoldPoints || bad);
      EXPECT_EQ(amountOf(inkOf(draw(mode))) > 0, shows);
    }
  }
  EXPECT_GE(withLines, 2) << "modes of lines are looked at";
}

// --- Claims about single modes ---

TEST_F(MeshKindPictures, FieldsCoverWhatTheSurfaceCoversFromBothItsSides) {
  for (const test::NamedMesh& each : meshKinds()) {
    load(each.mesh);
    // Colours of the scale are never white.
    const std::vector<bool> covered = inkOf(draw(FaceError));
    EXPECT_GT(amountOf(covered), 300);
    for (const int mode : {CurvatureMax, CurvatureMin, CurvatureMean, CurvatureGauss,
                           CurvatureTotal, VertexError, FaceValues}) {
      SCOPED_TRACE(each.name + ", mode " + std::to_string(mode));
      EXPECT_EQ(inkOf(draw(mode)), covered);
    }
  }
  load(turnedInwards(test::bumpySphere()));
  const std::vector<bool> inward = inkOf(draw(VertexError));
  load(test::bumpySphere());
  EXPECT_EQ(inward, inkOf(draw(VertexError)));
}

TEST_F(MeshKindPictures, FieldsAndPointsOfAnInsideOutMeshLookAsThoseOfTheMeshTurnedRound) {
  load(test::bumpySphere());
  const TriangleMesh outward = *offscreen.document.mesh();
  TriangleMesh inward = turnedInwards(test::bumpySphere());
  inward.maxCurvature = outward.maxCurvature;
  inward.minCurvature = outward.minCurvature;
  inward.edgeCurvatures = outward.edgeCurvatures;
  for (const int mode : {CurvatureMax, CurvatureMin, CurvatureMean, CurvatureGauss, CurvatureTotal,
                         VertexError, FaceError, FaceValues, Points, NonManifoldPoints}) {
    SCOPED_TRACE(mode);
    test::meshOf(offscreen.document) = outward;
    const Image expected = draw(mode);
    test::meshOf(offscreen.document) = inward;
    // Colours within a face are interpolated from its corners in another order.
    EXPECT_GE(test::structuralSimilarity(draw(mode), expected), 0.999);
  }
}

TEST_F(MeshKindPictures, NonManifoldPointsAreRedBordersAndTheirPointsBlueAndCyan) {
  constexpr std::array<int, 3> red = {255, 0, 0};
  constexpr std::array<int, 3> cyan = {0, 255, 255};
  constexpr std::array<int, 3> blue = {0, 0, 255};
  offscreen.view.setLineWidthAndPointSize(4.0F, 8.0F);
  struct Expected {
    const char* name;
    bool red, border;
  };
  for (const Expected& each : {Expected{"inside out", false, false},
                               {"open", false, true},
                               {"touching", true, false},
                               {"three sheets", true, true}}) {
    SCOPED_TRACE(each.name);
    offscreen.show(kindNamed(each.name), NonManifoldPoints);
    const Image shown = offscreen.draw();
    EXPECT_EQ(holds(shown, red), each.red);
    EXPECT_EQ(holds(shown, cyan), each.border);
    EXPECT_EQ(holds(shown, blue), each.border);
  }
}

TEST_F(MeshKindPictures, AWireFrameHidesTheLinesOfAnInsideOutMesh) {
  // White faces are set back along the normals, which for once moves them before the lines.
  const TriangleMesh sphere = test::icosphere(3, 9.0);
  const auto inkInTheMiddle = [&](const TriangleMesh& mesh) {
    offscreen.show(mesh, WireFrame);
    const Image image = offscreen.draw();
    int ink = 0;
    for (int y = 60; y < 120; ++y) {
      for (int x = 60; x < 120; ++x) ink += colourAt(image, x, y) != white ? 1 : 0;
    }
    return ink;
  };
  // Wide lines show a little where they stand out of the faces beside theirs.
  EXPECT_LT(10 * inkInTheMiddle(turnedInwards(sphere)), inkInTheMiddle(sphere));
}

TEST_F(MeshKindPictures, ThroughAHoleTheInnerSideIsSeen) {
  offscreen.show(openSphere(), VertexError);
  load(openSphere());
  const Image open = draw(VertexError);
  load(test::bumpySphere());
  const Image closed = draw(VertexError);
  // The hole shows the wall behind it, so the middle is covered, by something else.
  const std::vector<bool> ink = inkOf(open);
  EXPECT_EQ(ink, inkOf(closed));
  EXPECT_GT(test::differentPixels(open, closed), 500);
}

}  // namespace
}  // namespace gravlin
