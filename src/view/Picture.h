#pragma once

#include <memory>

#include "view/Image.h"
#include "view/Renderer.h"

namespace gravlin {

/// Draws documents into images without a window, display or X server: an OpenGL context that EGL
/// makes without any surface. While a Picture lives, its context is current on the thread that
/// made it.
class Picture {
 public:
  /// Throws std::runtime_error with a sentence for the user when there is no EGL or no OpenGL.
  Picture();
  ~Picture();
  Picture(const Picture&) = delete;
  Picture& operator=(const Picture&) = delete;

  /// Draws what is shown as a view of the target's size shows it. The image has size x pixelRatio
  /// pixels. Throws std::runtime_error when the size is not positive or larger than OpenGL allows.
  Image draw(const Shown& shown, ViewState& view, const DrawTarget& target);

 private:
  struct Context;
  std::unique_ptr<Context> context;
};

}  // namespace gravlin
