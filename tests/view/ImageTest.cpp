#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>

#include "view/Image.h"

namespace gravlin {
namespace {

std::string temporaryFile(const std::string& name) {
  return ::testing::TempDir() + "/" + name;
}

TEST(Image, ComesBackFromAPngFileAsItWas) {
  Image image{7, 5, {}};
  for (int i = 0; i < 3 * 7 * 5; ++i) image.rgb.push_back(static_cast<std::uint8_t>(i * 37));
  const std::string path = temporaryFile("image_test_round_trip.png");
  writePng(image, path);
  const Image read = readPng(path);
  EXPECT_EQ(read.width, 7);
  EXPECT_EQ(read.height, 5);
  EXPECT_EQ(read.rgb, image.rgb);
  std::filesystem::remove(path);
}

TEST(Image, PixelsCountFromTheUpperLeftCorner) {
  const Image image{2, 2, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}};
  EXPECT_EQ(image.pixel(0, 0)[0], 1);
  EXPECT_EQ(image.pixel(1, 0)[1], 5);
  EXPECT_EQ(image.pixel(0, 1)[2], 9);
}

TEST(Image, WritingWhereNothingCanBeWrittenNamesTheFileAndTheReason) {
  const std::string path = temporaryFile("no such folder/picture.png");
  try {
    writePng({1, 1, {0, 0, 0}}, path);
    FAIL() << "nothing was thrown";
  } catch (const std::runtime_error& error) {
    EXPECT_THAT(error.what(), ::testing::HasSubstr(path));
    EXPECT_THAT(error.what(), ::testing::HasSubstr("No such file or directory"));
  }
}

TEST(Image, ReadingWhatIsNoPngFails) {
  const std::string path = temporaryFile("image_test_no_png.png");
  std::ofstream(path) << "this is text";
  EXPECT_THROW(readPng(path), std::runtime_error);
  EXPECT_THROW(readPng(temporaryFile("image_test_missing.png")), std::runtime_error);
  std::filesystem::remove(path);
}

}  // namespace
}  // namespace gravlin
