#include "view/Text.h"

#include <fontconfig/fontconfig.h>
#include <ft2build.h>
#include FT_FREETYPE_H

#include <algorithm>

namespace gravlin {

struct Font::Face {
  FT_Library library = nullptr;
  FT_Face font = nullptr;

  Face() = default;
  Face(const Face&) = delete;
  Face& operator=(const Face&) = delete;
  ~Face() {
    if (font != nullptr) FT_Done_Face(font);
    if (library != nullptr) FT_Done_FreeType(library);
  }
};

namespace {

struct FontFile {
  std::string path;  ///< empty: none found
  int index = 0;
};

FontFile findFont(const char* family) {
  FontFile found;
  FcConfig* config = FcInitLoadConfigAndFonts();
  FcPattern* wanted = FcPatternCreate();
  FcPatternAddString(wanted, FC_FAMILY, reinterpret_cast<const FcChar8*>(family));
  FcPatternAddBool(wanted, FC_SCALABLE, FcTrue);
  FcConfigSubstitute(config, wanted, FcMatchPattern);
  FcDefaultSubstitute(wanted);
  FcResult result = FcResultNoMatch;
  if (FcPattern* match = FcFontMatch(config, wanted, &result); match != nullptr) {
    FcChar8* path = nullptr;
    if (FcPatternGetString(match, FC_FILE, 0, &path) == FcResultMatch) {
      found.path = reinterpret_cast<const char*>(path);
      FcPatternGetInteger(match, FC_INDEX, 0, &found.index);
    }
    FcPatternDestroy(match);
  }
  FcPatternDestroy(wanted);
  if (config != nullptr) FcConfigDestroy(config);
  return found;
}

/// FreeType's lengths are in 64ths of a pixel.
int wholePixels(FT_Pos length) {
  return static_cast<int>((length + 32) >> 6);
}

/// Puts a glyph's ink on the paper, its origin at (penX, baseline) counted from the bottom.
void stamp(const FT_GlyphSlotRec& glyph, int penX, int baseline, TextImage& image) {
  for (int row = 0; row < static_cast<int>(glyph.bitmap.rows); ++row) {
    const int y = baseline + glyph.bitmap_top - 1 - row;
    if (y < 0 || y >= image.height) continue;
    for (int column = 0; column < static_cast<int>(glyph.bitmap.width); ++column) {
      const int x = penX + glyph.bitmap_left + column;
      if (x < 0 || x >= image.width) continue;
      const int ink = glyph.bitmap.buffer[row * glyph.bitmap.pitch + column];
      std::uint8_t& paper =
          image.grey[static_cast<std::size_t>(y) * static_cast<std::size_t>(image.width) +
                     static_cast<std::size_t>(x)];
      paper = static_cast<std::uint8_t>(std::max(0, paper - ink));
    }
  }
}

}  // namespace

Font::Font() : face(std::make_unique<Face>()) {
  const FontFile file = findFont("DejaVu Sans Mono");
  const bool opened = FT_Init_FreeType(&face->library) == 0 &&
                      FT_New_Face(face->library, file.path.c_str(), file.index, &face->font) == 0;
  if (!opened) face.reset();
}

Font::~Font() = default;

TextImage Font::draw(std::string_view text, int emSize) const {
  TextImage image;
  if (face == nullptr ||
      FT_Set_Pixel_Sizes(face->font, 0, static_cast<FT_UInt>(std::clamp(emSize, 1, 1000))) != 0) {
    return image;
  }
  const FT_Size_Metrics& metrics = face->font->size->metrics;
  const int advance = wholePixels(metrics.max_advance);
  const int descent = wholePixels(-metrics.descender);
  image.width = advance * static_cast<int>(text.size());
  image.height = wholePixels(metrics.ascender) + descent;
  image.grey.assign(static_cast<std::size_t>(image.width) * static_cast<std::size_t>(image.height),
                    255);
  int penX = 0;
  for (const char letter : text) {
    if (FT_Load_Char(face->font, static_cast<FT_ULong>(static_cast<unsigned char>(letter)),
                     FT_LOAD_RENDER) == 0) {
      stamp(*face->font->glyph, penX, descent, image);
    }
    penX += advance;
  }
  return image;
}

}  // namespace gravlin
