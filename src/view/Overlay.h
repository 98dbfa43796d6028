#pragma once

#include <memory>
#include <string>
#include <vector>

#include "view/Text.h"

namespace gravlin {

/// A text and where its upper left corner lies in the view, in the view's own pixels.
struct Label {
  int x = 0;
  int y = 0;
  std::string text;
};

/// Texts in front of a picture, black on white.
class Overlay {
 public:
  /// Replaces what is shown. `pixelRatio` framebuffer pixels make one of the view's own.
  void show(const std::vector<Label>& labels, double pixelRatio);
  /// Draws into the current context, whose viewport is `viewHeight` framebuffer pixels high. Needs
  /// lighting, textures, blending and the depth test off. Changes the raster position.
  void draw(int viewHeight) const;

 private:
  struct Placed {
    int x;
    int y;  ///< of the upper edge, from the top of the view
    TextImage image;
  };
  std::unique_ptr<Font> font;  ///< opened by the first text
  std::vector<Placed> shown;
};

}  // namespace gravlin
