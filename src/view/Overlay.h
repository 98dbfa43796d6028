#pragma once

#include <memory>
#include <string>
#include <vector>

#include "view/ColourScale.h"
#include "view/Text.h"

namespace gravlin {

/// A text and where its upper left corner, or its upper right one, lies in the view, in the view's
/// own pixels.
struct Label {
  int x = 0;
  int y = 0;
  std::string text;
  bool rightAligned = false;
};

/// A bar of one colour a row, from top to bottom, in the view's own pixels, with a black outline.
struct Swatch {
  int x = 0;  ///< of the left edge
  int y = 0;  ///< of the upper edge
  int width = 0;
  std::vector<Colour> rows;
};

/// Texts, black on white, and swatches in front of a picture.
class Overlay {
 public:
  /// Replaces what is shown. `pixelRatio` framebuffer pixels make one of the view's own.
  void show(const std::vector<Label>& labels, double pixelRatio) { show(labels, {}, pixelRatio); }
  void show(const std::vector<Label>& labels, const std::vector<Swatch>& swatches,
            double pixelRatio);
  /// Draws into the current context, whose viewport is `viewHeight` framebuffer pixels high. Needs
  /// lighting, textures, blending and the depth test off. Changes the raster position.
  void draw(int viewHeight) const;

 private:
  struct Placed {
    int x;
    int y;  ///< of the upper edge, from the top of the view
    TextImage image;
  };
  struct PlacedSwatch {
    int x;
    int y;
    int width;
    int height;
    std::vector<float> rgb;  ///< [3 x width x height], rows from bottom to top
  };
  std::unique_ptr<Font> font;  ///< opened by the first text
  std::vector<Placed> shown;
  std::vector<PlacedSwatch> shownSwatches;
};

}  // namespace gravlin
