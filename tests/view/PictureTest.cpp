#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>

#include "support/ImageComparison.h"
#include "support/OffscreenView.h"
#include "view/Picture.h"

namespace gravlin {
namespace {

TEST(Picture, HasTheSizeOfTheViewTimesThePixelRatio) {
  test::OffscreenView offscreen;
  offscreen.show(test::cube(), FlatShading);
  for (const auto& [target, width, height] :
       {std::tuple{DrawTarget{.size = {31, 17}}, 31, 17},
        std::tuple{DrawTarget{.size = {31, 17}, .pixelRatio = 2.0}, 62, 34},
        std::tuple{DrawTarget{.size = {10, 20}, .pixelRatio = 1.25}, 13, 25},
        std::tuple{DrawTarget{.size = {1, 1}}, 1, 1}}) {
    offscreen.target = target;
    const Image image = offscreen.draw();
    EXPECT_EQ(image.width, width);
    EXPECT_EQ(image.height, height);
    EXPECT_EQ(image.rgb.size(), static_cast<std::size_t>(3 * width * height));
  }
}

TEST(Picture, SizesThatOpenGlCannotDrawAreRefusedWithAReason) {
  test::OffscreenView offscreen;
  offscreen.show(test::cube(), FlatShading);
  for (const DrawTarget& target :
       {DrawTarget{.size = {0, 10}}, DrawTarget{.size = {10, -1}},
        DrawTarget{.size = {1000000, 10}}, DrawTarget{.size = {INT_MAX, INT_MAX}},
        DrawTarget{.size = {10, 10}, .pixelRatio = std::nan("")},
        DrawTarget{.size = {10, 10}, .pixelRatio = 0.0}}) {
    offscreen.target = target;
    try {
      offscreen.draw();
      ADD_FAILURE() << "nothing was thrown";
    } catch (const std::runtime_error& error) {
      EXPECT_THAT(error.what(), ::testing::HasSubstr("pixels wide and high"));
    }
  }
  offscreen.target = {.size = {50, 50}};
  EXPECT_EQ(offscreen.draw().width, 50);
}

TEST(Picture, SeveralDrawTheSameSideBySide) {
  test::OffscreenView one;
  one.show(test::bumpySphere(), SmoothShading);
  const Image before = one.draw();
  {
    test::OffscreenView other;
    other.show(test::cube(), Points);
    other.draw();
    EXPECT_EQ(test::differentPixels(one.draw(), before), 0);
  }
  EXPECT_EQ(test::differentPixels(one.draw(), before), 0);
}

TEST(Picture, IsTheSameEveryTime) {
  const auto drawOnce = [] {
    test::OffscreenView offscreen;
    offscreen.show(test::cutSphere(), WireFrame);
    return offscreen.draw();
  };
  EXPECT_EQ(drawOnce().rgb, drawOnce().rgb);
}

// --- What is missing, each in a process of its own: a driver once loaded stays ---

class PictureDeathTest : public ::testing::Test {
 protected:
  PictureDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

  /// Makes a picture in the changed environment and leaves with 1 and the sentence, or with 0.
  [[noreturn]] static void drawWith(const char* variable, const char* value) {
    setenv("LIBGL_ALWAYS_SOFTWARE", "1", 1);
    setenv(variable, value, 1);
    try {
      const Picture picture;
    } catch (const std::runtime_error& error) {
      std::fputs(error.what(), stderr);
      std::_Exit(1);
    }
    std::_Exit(0);
  }
};

TEST_F(PictureDeathTest, SaysThatEglHasNoVendor) {
  EXPECT_EXIT(drawWith("__EGL_VENDOR_LIBRARY_DIRS", "/nonexistent"), ::testing::ExitedWithCode(1),
              "Cannot draw without a window: EGL has no surfaceless platform");
}

TEST_F(PictureDeathTest, SaysThatThereIsNoDriver) {
  EXPECT_EXIT(drawWith("LIBGL_DRIVERS_PATH", "/nonexistent"), ::testing::ExitedWithCode(1),
              "Cannot draw without a window: EGL found no driver");
}

TEST_F(PictureDeathTest, SaysThatOpenGlIsTooOld) {
  EXPECT_EXIT(drawWith("MESA_GL_VERSION_OVERRIDE", "1.4"), ::testing::ExitedWithCode(1),
              "Cannot draw without a window: EGL makes no OpenGL 2.1 context");
}

TEST_F(PictureDeathTest, SaysThatTheFixedFunctionsAreMissing) {
  EXPECT_EXIT(drawWith("MESA_GL_VERSION_OVERRIDE", "4.5FC"), ::testing::ExitedWithCode(1),
              "compatibility profile; here is 4.5");
}

}  // namespace
}  // namespace gravlin
