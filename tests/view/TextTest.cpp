#include <algorithm>
#include <climits>
#include <gtest/gtest.h>

#include "view/Text.h"

namespace gravlin {
namespace {

int inkedPixels(const TextImage& image) {
  return static_cast<int>(
      std::ranges::count_if(image.grey, [](std::uint8_t grey) { return grey < 128; }));
}

TEST(Text, LineOfTheCornerFitsTheDistanceOfTwoLines) {
  const TextImage image = Font().draw("Vertex:0123456789", 13);
  EXPECT_GE(image.height, 13);
  EXPECT_LE(image.height, 17);
  EXPECT_GT(inkedPixels(image), 100);
}

TEST(Text, LettersAreEquallyWide) {
  const Font font;
  const int one = font.draw("i", 13).width;
  EXPECT_GT(one, 0);
  EXPECT_EQ(font.draw("W", 13).width, one);
  EXPECT_EQ(font.draw("Face  :123", 13).width, 10 * one);
}

TEST(Text, IsBlackOnWhite) {
  const TextImage image = Font().draw("H", 40);
  EXPECT_EQ(*std::ranges::min_element(image.grey), 0);
  EXPECT_EQ(*std::ranges::max_element(image.grey), 255);
}

TEST(Text, RowsRunFromBottomToTop) {
  // The ink of an apostrophe is all in the upper half, that of an underscore in the lower one.
  const auto upperInk = [](const TextImage& image) {
    TextImage upper = image;
    upper.grey.erase(
        upper.grey.begin(),
        upper.grey.begin() + static_cast<std::ptrdiff_t>(image.width) * (image.height / 2));
    return inkedPixels(upper);
  };
  const Font font;
  const TextImage apostrophe = font.draw("'", 40);
  const TextImage underscore = font.draw("_", 40);
  EXPECT_GT(inkedPixels(apostrophe), 0);
  EXPECT_EQ(upperInk(apostrophe), inkedPixels(apostrophe));
  EXPECT_GT(inkedPixels(underscore), 0);
  EXPECT_EQ(upperInk(underscore), 0);
}

TEST(Text, TwiceTheSizeIsTwiceAsHigh) {
  const Font font;
  // What is above and what is below the base line are rounded to whole pixels each.
  EXPECT_NEAR(font.draw("8", 80).height, 2 * font.draw("8", 40).height, 2);
}

TEST(Text, AnySizeAndAnyBytesAreSafe) {
  const Font font;
  for (const int size : {INT_MIN, -1, 0, 1, 1000, INT_MAX}) {
    const TextImage image = font.draw("a", size);
    EXPECT_EQ(image.grey.size(), static_cast<std::size_t>(image.width * image.height));
  }
  EXPECT_EQ(font.draw("", 13).width, 0);
  EXPECT_GT(font.draw("\x01\x7f\xff", 13).width, 0);
}

}  // namespace
}  // namespace gravlin
