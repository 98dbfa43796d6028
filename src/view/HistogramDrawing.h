#pragma once

#include <optional>
#include <string>
#include <vector>

#include "view/Camera.h"
#include "view/ColourScale.h"
#include "view/Histogram.h"
#include "view/Image.h"

namespace gravlin {

/// What a window of a given size shows of a histogram, in its pixels, y growing downwards. Nothing
/// without values.
struct HistogramDrawing {
  struct Text {
    int x;  ///< left end
    int y;  ///< upper edge
    std::string text;
  };
  struct Bar {
    int x;       ///< column
    int bottom;  ///< the lowest pixel
    int length;  ///< pixels, upwards; 0: nothing
    Colour colour;
  };
  std::vector<Text> texts;
  std::vector<Bar> bars;
};
HistogramDrawing drawingOf(const Histogram& histogram, const ViewSize& size);

/// What a tool tip says at column `x` of a window: the value at the lower edge of the bin there and
/// its count. Nothing beside the bars.
std::optional<std::string> binTextAt(const Histogram& histogram, int x);

/// The whole window as a picture, black on white. Sets the histogram's bins for the size, whose
/// sides must be positive.
Image drawHistogram(Histogram& histogram, const ViewSize& size);

}  // namespace gravlin
