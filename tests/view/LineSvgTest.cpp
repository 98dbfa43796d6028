#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <set>

#include "support/Meshes.h"
#include "view/LineSvg.h"

namespace gravlin {
namespace {

constexpr ViewSize size = {300, 300};

int count(const std::string& text, const std::string& word) {
  int found = 0;
  for (auto at = text.find(word); at != std::string::npos; at = text.find(word, at + 1)) ++found;
  return found;
}

std::string svgOf(const TriangleMesh& mesh, Polyline line) {
  return linesAsSvg(mesh, {{{"ridge", 0, std::move(line), 0.0}}}, Camera(), size);
}

TEST(LineSvg, ProjectionIsTheInverseOfAiming) {
  Camera camera;
  camera.angleX = 12.0F;
  camera.angleY = -33.0F;
  camera.angleZ = 75.0F;
  camera.translation = {0.5F, -1.0F, 2.0F};
  for (const ViewPoint pixel : {ViewPoint{150, 150}, {3, 280}, {299, 0}}) {
    const Ray ray = camera.aimAt(pixel, size);
    const auto seen = camera.project(ray.origin + 55.0 * ray.direction, size);
    ASSERT_TRUE(seen);
    // Axes are held in single precision, so turning back and forth is off by 1e-7 of 55 units.
    EXPECT_NEAR(seen->x, pixel.x, 1e-3);
    EXPECT_NEAR(seen->y, pixel.y, 1e-3);
  }
}

TEST(LineSvg, APointBehindTheEyeIsNotSeen) {
  EXPECT_FALSE(Camera().project(2.0 * Camera::eye, size));
}

/// A small triangle, vertices 3 to 5, behind a large one, 0 to 2, as seen from the eye.
TriangleMesh screenBeforeTriangle(double distanceBehind) {
  const Vec3 right = Camera::rightward();
  const Vec3 up = Camera::up();
  const Vec3 back = distanceBehind * (Camera::centre - Camera::eye) / length(Camera::eye);
  const auto rounded = [](const Vec3& p) {
    return std::array{static_cast<float>(p.x), static_cast<float>(p.y), static_cast<float>(p.z)};
  };
  return test::makeMesh(
      {rounded(-9.0 * right - 5.0 * up), rounded(9.0 * right - 5.0 * up), rounded(9.0 * up),
       rounded(back - 1.0 * right), rounded(back + right), rounded(back + up)},
      {{0, 1, 2}, {3, 4, 5}});
}

TEST(LineSvg, WhatTheSurfaceHidesIsLeftOut) {
  EXPECT_EQ(count(svgOf(screenBeforeTriangle(5.0), {{3, 4, 5}, true}), "<path"), 0);
  EXPECT_EQ(count(svgOf(screenBeforeTriangle(-5.0), {{3, 4, 5}, true}), "<path"), 1);
}

TEST(LineSvg, ALineIsCutWhereItGoesBehindTheSurface) {
  // From 3, hidden, to 1, a corner of the screen itself: the far end is seen.
  const std::string text = svgOf(screenBeforeTriangle(5.0), {{3, 1}, false});
  EXPECT_EQ(count(text, "<path"), 1);
}

TEST(LineSvg, AClosedLineOnAVisibleSideIsOnePathThatComesBack) {
  const std::string text = svgOf(test::cube(), {{4, 5, 6, 7}, true});
  EXPECT_EQ(count(text, "<path"), 1);
  EXPECT_EQ(count(text, "L"), 4);
}

/// The points of each path, as they are written.
std::vector<std::set<std::string>> pointsOfPaths(const std::string& text) {
  std::vector<std::set<std::string>> paths;
  for (auto at = text.find("d=\"M"); at != std::string::npos; at = text.find("d=\"M", at)) {
    at += 4;
    const std::string points = text.substr(at, text.find('"', at) - at);
    paths.emplace_back();
    for (std::size_t from = 0; from <= points.size();) {
      const std::size_t end = std::min(points.find('L', from), points.size());
      paths.back().insert(points.substr(from, end - from));
      from = end + 1;
    }
  }
  return paths;
}

// A line comes out from behind a corner of the screen, each time 0.01 units farther, a fifth of the
// distance between two of its points that are looked at: at first only one of them is seen.
TEST(LineSvg, APieceOfOnePointIsLeftOut) {
  int longer = 0;
  for (int k = 0; k < 500; ++k) {
    TriangleMesh mesh = screenBeforeTriangle(5.0);
    const Vec3 hidden = mesh.position(3);
    const Vec3 corner = mesh.position(1);
    storeVec3(mesh.vertices.data() + 9, hidden + (0.9 + 0.001 * k) * (corner - hidden));
    storeVec3(mesh.vertices.data() + 12, hidden);
    for (const std::set<std::string>& points : pointsOfPaths(svgOf(mesh, {{4, 3}, false}))) {
      EXPECT_GE(points.size(), 2U) << k;
      ++longer;
    }
  }
  EXPECT_GT(longer, 100);
  EXPECT_EQ(count(svgOf(test::cube(), {{4, 4}, false}), "<path"), 0);
}

TEST(LineSvg, KindsAreGroupsInTheirColours) {
  const std::string text = linesAsSvg(
      test::cube(), {{{"ridge", 0, {{4, 5}, false}, 0.0}, {"valley", 1, {{5, 6}, false}, 0.0}}},
      Camera(), size);
  EXPECT_EQ(count(text, "<g id=\"ridge\" stroke=\"red\">"), 1);
  EXPECT_EQ(count(text, "<g id=\"valley\" stroke=\"blue\">"), 1);
  EXPECT_EQ(count(text, "</g>"), 2);
}

const LinesToDraw twoLines = {
    {{"ridge", 0, {{4, 5}, false}, 0.0}, {"valley", 1, {{5, 6}, false}, 0.0}}, {}};

TEST(LineSvg, GreyScaleIsWhiteAndBlackOnGrey) {
  const std::string text =
      linesAsSvg(test::cube(), {twoLines.lines, {.grayScale = true}}, Camera(), size);
  EXPECT_EQ(count(text, "<rect width=\"300\" height=\"300\" fill=\"gray\"/>"), 1);
  EXPECT_EQ(count(text, "<g id=\"ridge\" stroke=\"white\">"), 1);
  EXPECT_EQ(count(text, "<g id=\"valley\" stroke=\"black\">"), 1);
}

// The eye sees three sides of the cube: the contour is a hexagon. The edges between those sides,
// the diagonals in all sides and the three edges behind are no contour.
TEST(LineSvg, APenDrawingIsBlackAndHasTheContour) {
  for (const bool grey : {false, true}) {
    const std::string text = linesAsSvg(
        test::cube(), {twoLines.lines, {.grayScale = grey, .penDrawing = true}}, Camera(), size);
    const auto from = text.find("<g id=\"contour\" stroke=\"black\">");
    ASSERT_NE(from, std::string::npos);
    const std::string contour = text.substr(from, text.find("</g>", from) - from);
    EXPECT_EQ(count(contour, "<path"), 1);
    EXPECT_EQ(count(contour, "L"), 6);
    EXPECT_EQ(count(text, "<g id=\"ridge\" stroke=\"black\">"), 1);
    EXPECT_EQ(count(text, "<g id=\"valley\" stroke=\"black\">"), 1);
    EXPECT_EQ(count(text, "<rect"), 0);
  }
}

TEST(LineSvg, TheContourHasTheBoundaryAndNothingThatTheSurfaceHides) {
  const auto contourPaths = [](double distanceBehind) {
    return count(linesAsSvg(screenBeforeTriangle(distanceBehind), {{}, {.penDrawing = true}},
                            Camera(), size),
                 "<path");
  };
  EXPECT_EQ(contourPaths(5.0), 1) << "the large triangle";
  EXPECT_EQ(contourPaths(-5.0), 2);
}

// The corner in the middle moves by a hundredth of the way to the midpoint of its neighbours.
TEST(LineSvg, APenDrawingSmoothsItsLines) {
  const auto paths = [](float height, bool pen) {
    const TriangleMesh mesh = test::makeMesh({{-1, 0, 0}, {0, 0, height}, {1, 0, 0}}, {});
    const std::string text = linesAsSvg(
        mesh, {{{"ridge", 0, {{0, 1, 2}, false}, 0.0}}, {.penDrawing = pen}}, Camera(), size);
    return text.substr(text.find("<path"));
  };
  EXPECT_EQ(paths(8.0F, true), paths(7.92F, false));
  EXPECT_NE(paths(8.0F, true), paths(8.0F, false));
}

TEST(LineSvg, LinesBeyondTheEdgesOfTheViewAreCutOff) {
  Camera camera;
  camera.fieldOfView = 0.5F;
  camera.translation = {0.0F, 0.0F, -1.0F};  // the middle of the upper side to the centre
  const std::string text =
      linesAsSvg(test::cube(), {{{"ridge", 0, {{4, 6}, false}, 0.0}}}, camera, size);
  EXPECT_EQ(count(text, "<path"), 1);
  EXPECT_EQ(text.find('-', text.find("<path")), std::string::npos) << "no negative coordinate";
}

// Across the screen at the centre, one unit of the mesh is 150 / (|eye| tan(11.25 degrees)), about
// 11.1 pixels: the view ends 13.5 units away from its middle.
TEST(LineSvg, ALineThatLeavesTheViewAndComesBackIsTwoPaths) {
  const auto at = [](double right, double up) {
    const Vec3 p = right * Camera::rightward() + up * Camera::up();
    return std::array{static_cast<float>(p.x), static_cast<float>(p.y), static_cast<float>(p.z)};
  };
  const TriangleMesh mesh = test::makeMesh({at(0, 5), at(40, 5), at(40, -5), at(0, -5)}, {});
  const std::string outAndBack = svgOf(mesh, {{0, 1, 2, 3}, false});
  EXPECT_EQ(count(outAndBack, "<path"), 2);
  EXPECT_EQ(count(outAndBack, "L"), 2);
  // With one corner outside: the line leaves at the height 5 and comes back at -1.6.
  EXPECT_EQ(count(svgOf(mesh, {{0, 1, 3}, false}), "<path"), 2);
}

/// The text is complete, and every coordinate of its paths lies within the view of 300 x 300.
void expectCoordinatesInView(const std::string& text) {
  EXPECT_EQ(text.substr(text.size() - 7), "</svg>\n");
  for (auto path = text.find("d=\"M"); path != std::string::npos; path = text.find("d=\"M", path)) {
    path += 4;
    for (const char* next = text.c_str() + path; *next != '"';) {
      char* end = nullptr;
      const double value = std::strtod(next, &end);
      ASSERT_NE(end, next) << "not a number in " << text.substr(path, 80);
      EXPECT_TRUE(value >= 0.0 && value <= 300.0) << value;
      next = *end == '"' ? end : end + 1;
    }
  }
}

TEST(LineSvg, CoordinatesStayWithinTheViewHoweverCloseItLooks) {
  for (const float fieldOfView : {1e-3F, 1e-6F, 1e-9F, 1e-12F, 1e-20F, 1e-30F, 1e-38F}) {
    SCOPED_TRACE(fieldOfView);
    Camera camera;
    camera.fieldOfView = fieldOfView;
    camera.translation = {0.0F, 0.0F, -1.0F};  // the middle of the upper side to the centre
    const std::string text =
        linesAsSvg(test::cube(), {{{"ridge", 0, {{4, 6, 7}, false}, 0.0}}}, camera, size);
    expectCoordinatesInView(text);
  }
}

TEST(LineSvg, CoordinatesStayWithinTheViewForHostileMeshesAndViews) {
  for (const auto& [name, mesh] : test::hostileMeshes()) {
    SCOPED_TRACE(name);
    Polyline line;
    for (int v = 0; v < mesh.vertexCount; ++v) line.vertices.push_back(v);
    for (const float fieldOfView :
         {22.5F, 0.0F, -5.0F, 1e-6F, 1e-30F, 180.0F, 1e30F, std::nanf("")}) {
      Camera camera;
      camera.fieldOfView = fieldOfView;
      for (const bool pen : {false, true}) {
        const std::string text =
            linesAsSvg(mesh, {{{"ridge", 0, line, 0.0}}, {.penDrawing = pen}}, camera, size);
        expectCoordinatesInView(text);
      }
    }
  }
}

}  // namespace
}  // namespace gravlin
