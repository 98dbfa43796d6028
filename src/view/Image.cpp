#include "view/Image.h"

#include <cstdio>
#include <png.h>
#include <stdexcept>

#include "mesh/SafeFile.h"

namespace gravlin {
namespace {

/// libpng's description of an image of this size, without any data yet.
png_image describe(int width, int height) {
  png_image png = {};
  png.version = PNG_IMAGE_VERSION;
  png.width = static_cast<png_uint_32>(width);
  png.height = static_cast<png_uint_32>(height);
  png.format = PNG_FORMAT_RGB;
  return png;
}

[[noreturn]] void fail(const std::string& what, const std::string& path, png_image& png) {
  const std::string why = png.message;
  png_image_free(&png);
  throw std::runtime_error(what + " " + path + ": " + why + ".");
}

}  // namespace

void writePng(const Image& image, const std::string& path) {
  SafeFile file(path);
  png_image png = describe(image.width, image.height);
  const bool encoded =
      file.stream() != nullptr &&
      png_image_write_to_stdio(&png, file.stream(), 0, image.rgb.data(), 0, nullptr) != 0;
  if (encoded && file.commit()) return;
  // What the system says tells more than that libpng could not write.
  const std::string reason = file.error();
  if (reason.empty()) fail("Cannot write", path, png);
  png_image_free(&png);
  throw std::runtime_error("Cannot write " + path + ": " + reason + ".");
}

Image readPng(const std::string& path) {
  png_image png = describe(0, 0);
  if (png_image_begin_read_from_file(&png, path.c_str()) == 0) fail("Cannot read", path, png);
  png.format = PNG_FORMAT_RGB;
  Image image{static_cast<int>(png.width), static_cast<int>(png.height), {}};
  image.rgb.resize(PNG_IMAGE_SIZE(png));
  constexpr png_color white = {255, 255, 255};
  if (png_image_finish_read(&png, &white, image.rgb.data(), 0, nullptr) == 0) {
    fail("Cannot read", path, png);
  }
  return image;
}

}  // namespace gravlin
