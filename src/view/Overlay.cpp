#include "view/Overlay.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "view/OpenGL.h"

namespace gravlin {
namespace {

/// Lines of the corner are 17 pixels apart; a line of this size is 15 or 16 high.
constexpr double emSize = 13.0;

int scaled(double pixels, double ratio) {
  return static_cast<int>(std::lround(pixels * ratio));
}

}  // namespace

void Overlay::show(const std::vector<Label>& labels, const std::vector<Swatch>& swatches,
                   double pixelRatio) {
  if (font == nullptr && !labels.empty()) font = std::make_unique<Font>();
  shown.clear();
  for (const Label& label : labels) {
    TextImage image = font->draw(label.text, scaled(emSize, pixelRatio));
    const int x = scaled(label.x, pixelRatio) - (label.rightAligned ? image.width : 0);
    shown.push_back({x, scaled(label.y, pixelRatio), std::move(image)});
  }
  shownSwatches.clear();
  for (const Swatch& swatch : swatches) {
    const int rows = static_cast<int>(swatch.rows.size());
    PlacedSwatch placed = {scaled(swatch.x, pixelRatio),
                           scaled(swatch.y, pixelRatio),
                           scaled(swatch.width, pixelRatio),
                           scaled(rows, pixelRatio),
                           {}};
    for (int y = placed.height - 1; y >= 0; --y) {
      const int row = std::clamp(static_cast<int>(y / pixelRatio), 0, rows - 1);
      const bool edgeRow = y == 0 || y == placed.height - 1;
      for (int x = 0; x < placed.width; ++x) {
        const bool edge = edgeRow || x == 0 || x == placed.width - 1;
        const Colour colour = edge ? Colour{} : swatch.rows[static_cast<std::size_t>(row)];
        placed.rgb.insert(placed.rgb.end(), {colour.r, colour.g, colour.b});
      }
    }
    shownSwatches.push_back(std::move(placed));
  }
}

void Overlay::draw(int viewHeight) const {
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  for (const Placed& label : shown) {
    glWindowPos2i(label.x, viewHeight - label.y - label.image.height);
    glDrawPixels(label.image.width, label.image.height, GL_LUMINANCE, GL_UNSIGNED_BYTE,
                 label.image.grey.data());
  }
  for (const PlacedSwatch& swatch : shownSwatches) {
    glWindowPos2i(swatch.x, viewHeight - swatch.y - swatch.height);
    glDrawPixels(swatch.width, swatch.height, GL_RGB, GL_FLOAT, swatch.rgb.data());
  }
}

}  // namespace gravlin
