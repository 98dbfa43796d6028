#pragma once

#include <memory>

#include "doc/Shown.h"
#include "view/ViewState.h"

namespace gravlin {

/// Where a picture goes: the lower left corner of the framebuffer that is bound while drawing.
struct DrawTarget {
  ViewSize size;            ///< in the view's own pixels
  double pixelRatio = 1.0;  ///< framebuffer pixels per own pixel; 2 on many high-resolution screens
  bool overlay = true;      ///< whether the counts are printed in the corner
};

/// Draws documents through an OpenGL compatibility context, in a window and into a picture alike.
///
/// What is shown is gathered once into buffer objects and kept until its revision, its mode or a
/// style changes; drawing it again from another side only submits them and
/// allocates nothing. All OpenGL state that matters is set in every frame and given back as it was
/// found, so others may use the same context in between.
///
/// The context must be current in `initialise`, `draw`, `release` and the destructor.
class Renderer {
 public:
  Renderer();
  ~Renderer();
  Renderer(const Renderer&) = delete;
  Renderer& operator=(const Renderer&) = delete;

  /// To be called once, when the context has been made. Throws std::runtime_error with a sentence
  /// for the user when the context lacks what drawing needs.
  void initialise();
  /// Clears the target and draws what is shown as `view` sees it. Stores the mesh's used vertices
  /// and valid faces in the view's shown counts (0 without a mesh).
  void draw(const Shown& shown, ViewState& view, const DrawTarget& target);
  /// Frees everything held in the context. Drawing again builds it anew.
  void release();

 private:
  struct Resources;
  std::unique_ptr<Resources> resources;
};

}  // namespace gravlin
