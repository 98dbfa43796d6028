#pragma once

#include <memory>

#include "doc/CGravlinDoc.h"
#include "support/Meshes.h"
#include "support/ScriptedOutside.h"
#include "view/Picture.h"

namespace gravlin::test {

/// A document, one view of it, and a picture to draw it into with Mesa's software renderer, so that
/// pictures do not depend on the machine's graphics card.
class OffscreenView {
 public:
  OffscreenView();

  /// Gives the document a mesh and a mode, as a command that ends with a redraw does.
  void show(TriangleMesh mesh, int displayMode);
  void show(int displayMode);

  /// Draws at 300 x 300, with the counts in the corner.
  Image draw() { return picture->draw(document.shown(), view, target); }

  ScriptedOutside outside;
  CGravlinDoc document{outside};
  ViewState view;
  DrawTarget target = {.size = {300, 300}};
  std::unique_ptr<Picture> picture;  ///< its context is current
};

// --- Meshes that show what there is to see, 20 units large ---

/// Closed, with bumps and hollows.
TriangleMesh bumpySphere();
/// The bumpy sphere with two holes in it and a fin along a meridian: three faces meet at its edges.
TriangleMesh cutSphere();

}  // namespace gravlin::test
