#pragma once

#include "doc/Outside.h"
#include "view/Camera.h"

namespace gravlin {

/// Everything that one view of a document remembers. Plain numbers without a window or OpenGL; a
/// Renderer turns them into a picture.
struct ViewState {
  Camera camera;
  LightingMode lightingMode = LightingMode::Rgb;
  float lineWidth = 1.0F;    ///< in the view's own pixels
  float pointSize = 3.0F;    ///< in the view's own pixels
  int shownVertexCount = 0;  ///< printed in the corner; 0 prints nothing
  int shownFaceCount = 0;

  /// Sets the lights up anew, which also puts line width and point size back to 1 and 3.
  void setLightingMode(LightingMode mode);
  /// A width or a size that is not above 0 is refused, as OpenGL refuses it: the old one stays.
  void setLineWidthAndPointSize(float width, float size);
};

}  // namespace gravlin
