#pragma once

namespace gravlin {

/// When a smoothing command runs out of memory on its way.
inline constexpr const char* outOfMemoryWhileSmoothing =
    "There is not enough memory to go on; the mesh stays as far as it has been smoothed. "
    "Undo brings back the shape before.";

}  // namespace gravlin
