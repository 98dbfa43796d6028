#include "view/Overlay.h"

#include <cmath>

#include "view/OpenGL.h"

namespace gravlin {
namespace {

/// Lines of the corner are 17 pixels apart; a line of this size is 15 or 16 high.
constexpr double emSize = 13.0;

int scaled(double pixels, double ratio) {
  return static_cast<int>(std::lround(pixels * ratio));
}

}  // namespace

void Overlay::show(const std::vector<Label>& labels, double pixelRatio) {
  if (font == nullptr && !labels.empty()) font = std::make_unique<Font>();
  shown.clear();
  for (const Label& label : labels) {
    shown.push_back({scaled(label.x, pixelRatio), scaled(label.y, pixelRatio),
                     font->draw(label.text, scaled(emSize, pixelRatio))});
  }
}

void Overlay::draw(int viewHeight) const {
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  for (const Placed& label : shown) {
    glWindowPos2i(label.x, viewHeight - label.y - label.image.height);
    glDrawPixels(label.image.width, label.image.height, GL_LUMINANCE, GL_UNSIGNED_BYTE,
                 label.image.grey.data());
  }
}

}  // namespace gravlin
