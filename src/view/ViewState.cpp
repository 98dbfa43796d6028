#include "view/ViewState.h"

#include <cmath>

namespace gravlin {

void ViewState::setLightingMode(LightingMode mode) {
  lightingMode = mode;
  lineWidth = 1.0F;
  pointSize = 3.0F;
}

void ViewState::setLineWidthAndPointSize(float width, float size) {
  if (std::isfinite(width) && width > 0.0F) lineWidth = width;
  if (std::isfinite(size) && size > 0.0F) pointSize = size;
}

}  // namespace gravlin
