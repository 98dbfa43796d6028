#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace gravlin {

/// A picture of red, green and blue bytes, rows from top to bottom without padding.
struct Image {
  int width = 0;
  int height = 0;
  std::vector<std::uint8_t> rgb;  ///< [3 x width x height]

  const std::uint8_t* pixel(int x, int y) const {
    return rgb.data() + 3 * (static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                             static_cast<std::size_t>(x));
  }
};

/// Writes a PNG file. Throws std::runtime_error with a sentence for the user when that fails, and
/// then leaves what was there under this name as it was.
void writePng(const Image& image, const std::string& path);
/// Reads any PNG file as red, green and blue. Throws std::runtime_error when that fails.
Image readPng(const std::string& path);

}  // namespace gravlin
