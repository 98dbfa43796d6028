#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace gravlin {

/// One line of text, black on white, as grey bytes: 0 is ink, 255 paper. Rows run from bottom to
/// top, as OpenGL takes them.
struct TextImage {
  int width = 0;
  int height = 0;
  std::vector<std::uint8_t> grey;  ///< [width x height]
};

/// The one font of the view, of fixed width, so that pictures look the same everywhere: DejaVu Sans
/// Mono, or what fontconfig has for it.
class Font {
 public:
  /// Finds and opens the font. Where there is none at all, texts are empty images.
  Font();
  ~Font();
  Font(const Font&) = delete;
  Font& operator=(const Font&) = delete;

  /// `text` is ASCII. `emSize` is the font's size in pixels, from 1 to 1000; a line is a little
  /// higher than that.
  TextImage draw(std::string_view text, int emSize) const;

 private:
  struct Face;
  std::unique_ptr<Face> face;  ///< null without a font
};

}  // namespace gravlin
