#pragma once

#include <optional>
#include <string_view>

#include "batch/Step.h"
#include "view/Camera.h"

namespace gravlin {

/// `camera`: moves the view as mouse and keys would.
Step cameraStep();
/// `pick X Y`: a double click at a pixel of the next picture.
Step pickStep();
/// `render FILE.png`: the picture that a window of the same size would show.
Step renderStep();
/// `render-histogram FILE.png`: the picture of the histogram window.
Step renderHistogramStep();

/// "800x600" as a size; nothing when it is none, or has no pixel or more than 16384 on a side.
std::optional<ViewSize> parseSize(std::string_view text);

/// The size of the first picture that the calls make, or of a picture without options.
ViewSize sizeOfNextRender(std::span<const StepCall> calls);

}  // namespace gravlin
