#pragma once

#include "view/ColourScale.h"

namespace gravlin {

// The plain colours of points and lines.
inline constexpr Colour black = {0.0F, 0.0F, 0.0F};
inline constexpr Colour white = {1.0F, 1.0F, 1.0F};
inline constexpr Colour red = {1.0F, 0.0F, 0.0F};
inline constexpr Colour cyan = {0.0F, 1.0F, 1.0F};
inline constexpr Colour blue = {0.0F, 0.0F, 1.0F};
inline constexpr Colour brown = {0.4F, 0.2F, 0.2F};

}  // namespace gravlin
