#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>
#include <utility>

#include "support/DocumentAccess.h"
#include "support/ImageComparison.h"
#include "support/OffscreenView.h"

namespace gravlin {
namespace {

Image flat(int width, int height, std::uint8_t value) {
  return {width, height,
          std::vector<std::uint8_t>(
              3 * static_cast<std::size_t>(width) * static_cast<std::size_t>(height), value)};
}

TEST(ImageComparison, EqualPicturesAreFullySimilar) {
  const Image image = flat(40, 30, 200);
  EXPECT_EQ(test::structuralSimilarity(image, image), 1.0);
  EXPECT_EQ(test::differentPixels(image, image), 0);
}

TEST(ImageComparison, PicturesOfDifferentSizesAreNotAlike) {
  EXPECT_EQ(test::structuralSimilarity(flat(40, 30, 9), flat(30, 40, 9)), -1.0);
}

TEST(ImageComparison, IsSymmetric) {
  Image a = flat(32, 32, 255);
  Image b = a;
  for (std::size_t i = 0; i < 900; ++i) {
    a.rgb[i] = static_cast<std::uint8_t>(i % 251);
    b.rgb[i + 500] = static_cast<std::uint8_t>(i % 241);
  }
  EXPECT_EQ(test::structuralSimilarity(a, b), test::structuralSimilarity(b, a));
  EXPECT_LT(test::structuralSimilarity(a, b), 0.5);
}

TEST(ImageComparison, LargeEmptyBackgroundHidesNothing) {
  const Image empty = flat(300, 300, 255);
  Image spotted = empty;
  for (std::size_t y = 100; y < 108; ++y) {
    for (std::size_t x = 100; x < 108; ++x) {
      spotted.rgb[3 * (300 * y + x)] = (x + y) % 2 == 0 ? 0 : 255;
    }
  }
  EXPECT_LT(test::structuralSimilarity(empty, spotted), 0.5);
}

TEST(ImageComparison, LastBitOfAColourMattersLittle) {
  test::OffscreenView offscreen;
  offscreen.show(test::bumpySphere(), SmoothShading);
  const Image drawn = offscreen.draw();
  Image rounded = drawn;
  for (std::uint8_t& part : rounded.rgb) part = static_cast<std::uint8_t>(part & 0xFE);
  EXPECT_GT(test::structuralSimilarity(drawn, rounded), 0.999);
}

/// Pictures that differ from the one expected as mistakes in drawing would make them differ.
class WrongPicture : public ::testing::Test {
 protected:
  WrongPicture() { offscreen.show(test::bumpySphere(), FlatShading); }

  void expectRefused() {
    const Image wrong = offscreen.draw();
    EXPECT_LT(test::structuralSimilarity(right, wrong), test::usualThreshold);
  }

  test::OffscreenView offscreen;
  Image right = (offscreen.show(test::bumpySphere(), FlatShading), offscreen.draw());
};

TEST_F(WrongPicture, InAnotherModeIsRefused) {
  for (const int mode : {1, 3, 26, 9}) {
    offscreen.show(mode);
    expectRefused();
  }
}

TEST_F(WrongPicture, WithoutThePickedFaceIsRefused) {
  offscreen.view.camera.fieldOfView = 2.0F;
  right = offscreen.draw();
  const Ray& ray = offscreen.view.camera.aimAt({150, 150}, offscreen.target.size);
  ASSERT_TRUE(offscreen.document.pickFace(ray));
  offscreen.view.setLineWidthAndPointSize(1.0F, 15.0F);
  for (const int mode : {PickedFace, FlatShading}) {
    offscreen.show(mode);
    expectRefused();
  }
}

TEST_F(WrongPicture, UnderOtherLightsIsRefused) {
  for (const LightingMode mode : {LightingMode::Red, LightingMode::Green, LightingMode::Blue}) {
    offscreen.view.setLightingMode(mode);
    expectRefused();
  }
}

TEST_F(WrongPicture, TurnedByTwoDegreesIsRefused) {
  offscreen.view.camera.angleZ = 2.0F;
  expectRefused();
}

TEST_F(WrongPicture, ZoomedByTwoPerCentIsRefused) {
  offscreen.view.camera.fieldOfView *= 1.02F;
  expectRefused();
}

TEST_F(WrongPicture, WithMixedUpNormalsIsRefused) {
  // Inverted ones would look almost the same: the lights come in opposite pairs.
  std::vector<float>& normals = test::meshOf(offscreen.document).faceNormals;
  for (std::size_t i = 0; i < normals.size(); i += 3) std::swap(normals[i], normals[i + 1]);
  offscreen.show(FlatShading);
  expectRefused();
}

TEST_F(WrongPicture, FailsTheTestThatComparesItWithABaseline) {
  offscreen.view.camera.angleZ = 180.0F;
  const Image wrong = offscreen.draw();
  EXPECT_NONFATAL_FAILURE(test::expectLikeBaseline(wrong, "flat-shading", test::usualThreshold),
                          "is below");
}

TEST(ImageComparison, BaselineThatIsMissingFailsTheTest) {
  EXPECT_FATAL_FAILURE(test::expectLikeBaseline(flat(300, 300, 0), "no such picture", 0.5),
                       "no baseline");
}

}  // namespace
}  // namespace gravlin
