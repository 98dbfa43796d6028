#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <ostream>
#include <string>
#include <vector>

#include "support/DocumentAccess.h"
#include "support/ImageComparison.h"
#include "support/OffscreenView.h"

namespace gravlin {
namespace {

/// A command of the document as a user gives it, before the picture is taken.
struct ShownMode {
  const char* name;
  std::function<void(test::OffscreenView&)> show;
  bool hasGrey = true;  ///< whether "Gray-Scale" makes a difference
};

auto command(void (CGravlinDoc::*handler)()) {
  return [handler](test::OffscreenView& o) { (o.document.*handler)(); };
}

auto strokes(void (CGravlinDoc::*handler)()) {
  return [handler](test::OffscreenView& o) {
    o.outside.dialogAnswers = {test::okWith({{"seedAmount", "3000"}})};
    (o.document.*handler)();
  };
}

/// What a few steps of averaging the positions change.
auto changed(void (CGravlinDoc::*handler)()) {
  return [handler](test::OffscreenView& o) {
    o.document.keepUndoCopy();
    TriangleMesh& mesh = test::meshOf(o.document);
    for (int step = 0; step < 5; ++step) {
      std::vector<Vec3> moves;
      for (int i = 0; i < mesh.vertexCount; ++i) moves.push_back(mesh.umbrellaLaplacian(i));
      for (int i = 0; i < mesh.vertexCount; ++i) {
        mesh.setPosition(i, mesh.position(i) + 0.5 * moves[static_cast<std::size_t>(i)]);
      }
    }
    (o.document.*handler)();
  };
}

void faceValues(test::OffscreenView& o) {
  o.document.OnEdgeCurvature();
  o.document.displayMode = FaceValues;
  o.document.redraw();
}

const std::vector<ShownMode>& modes() {
  static const std::vector<ShownMode> table = {
      {"direction-max", command(&CGravlinDoc::OnDirectionMax), false},
      {"direction-min", command(&CGravlinDoc::OnDirectionMin), false},
      {"tensor-max", command(&CGravlinDoc::OnTensorMax), false},
      {"tensor-min", command(&CGravlinDoc::OnTensorMin), false},
      {"curvature-max", command(&CGravlinDoc::OnCurvatureMax)},
      {"curvature-min", command(&CGravlinDoc::OnCurvatureMin)},
      {"curvature-mean", command(&CGravlinDoc::OnCurvatureMean)},
      {"curvature-gauss", command(&CGravlinDoc::OnCurvatureGauss)},
      {"curvature-total", command(&CGravlinDoc::OnCurvatureTotal)},
      {"edge-curvature", command(&CGravlinDoc::OnEdgeCurvature)},
      {"stroke-max", strokes(&CGravlinDoc::OnStrokeMax), false},
      {"stroke-min", strokes(&CGravlinDoc::OnStrokeMin), false},
      {"vertex-error", changed(&CGravlinDoc::OnShowVertexError)},
      {"face-error", changed(&CGravlinDoc::OnShowFaceError)},
      {"face-values", faceValues}};
  return table;
}

struct NamedShape {
  const char* name;
  TriangleMesh (*make)();
};

/// Closed with ridges and valleys, and open.
constexpr NamedShape shapes[] = {{"closed", test::bumpySphere}, {"open", test::cutSphere}};

struct PictureCase {
  ShownMode mode;
  NamedShape shape;

  std::string name(bool grey) const {
    return std::string(mode.name) + "-" + shape.name + (grey ? "-grey" : "");
  }
};

std::ostream& operator<<(std::ostream& out, const PictureCase& picture) {
  return out << picture.name(false);
}

std::vector<PictureCase> everyPicture() {
  std::vector<PictureCase> cases;
  for (const ShownMode& mode : modes()) {
    for (const NamedShape& shape : shapes) cases.push_back({mode, shape});
  }
  return cases;
}

class CurvaturePictures : public ::testing::TestWithParam<PictureCase> {
 protected:
  Image draw(bool grey) {
    offscreen.show(GetParam().shape.make(), FlatShading);
    offscreen.document.visualizationParameters.grayScale = grey;
    GetParam().mode.show(offscreen);
    return offscreen.draw();
  }

  test::OffscreenView offscreen;
};

TEST_P(CurvaturePictures, LookLikeTheirBaselines) {
  test::expectLikeBaseline(draw(false), GetParam().name(false), test::usualThreshold);
}

TEST_P(CurvaturePictures, InGreyLookLikeTheirBaselinesOrDoNotChange) {
  const Image grey = draw(true);
  if (GetParam().mode.hasGrey) {
    test::expectLikeBaseline(grey, GetParam().name(true), test::usualThreshold);
  } else {
    EXPECT_EQ(test::differentPixels(grey, draw(false)), 0);
  }
}

INSTANTIATE_TEST_SUITE_P(Gallery, CurvaturePictures, ::testing::ValuesIn(everyPicture()),
                         [](const auto& test) {
                           std::string name = test.param.name(false);
                           std::ranges::replace(name, '-', '_');
                           return name;
                         });

// --- Strokes without seeds ---

bool allWhite(const Image& image) {
  return std::ranges::all_of(image.rgb, [](std::uint8_t part) { return part == 255; });
}

TEST(StrokePictures, ASeedAmountOfZeroDrawsNothing) {
  for (const auto handler : {&CGravlinDoc::OnStrokeMax, &CGravlinDoc::OnStrokeMin}) {
    test::OffscreenView offscreen;
    offscreen.target.overlay = false;  // the counts in the corner
    offscreen.show(test::cutSphere(), FlatShading);
    const auto drawWithSeeds = [&](const char* amount) {
      offscreen.outside.dialogAnswers = {test::okWith({{"seedAmount", amount}})};
      (offscreen.document.*handler)();
      return offscreen.draw();
    };
    // The surface that hides the strokes behind it is as white as the background.
    EXPECT_TRUE(allWhite(drawWithSeeds("0")));
    EXPECT_FALSE(allWhite(drawWithSeeds("200")));
    EXPECT_TRUE(allWhite(drawWithSeeds("0"))) << "the strokes from before are gone";
  }
}

}  // namespace
}  // namespace gravlin
