#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "doc/forms/Form.h"
#include "smoothing/MeshSmoother.h"

namespace gravlin {

/// The names of the methods in the dialog, indexed by SmoothingMethod.
inline constexpr std::array<std::string_view, 9> smoothingMethodTexts = {
    "Laplacian Flow",
    "Laplacian Flow (implicit)",
    "Mean Curvature Flow (Desbrun)",
    "Mean Curvature Flow (Desbrun, implicit)",
    "Modified Mean Curvature Flow (Curvature along Median)",
    "Taubin Smoothing (k=0.1)",
    "Taubin Smoothing (k=0.1, w = 1/d)",
    "Taubin Smoothing (k=0.1, w = Desbrun)",
    "Bilaplacian (Kobbelt)",
};

/// What the "Smoothing" dialog edits.
struct SmoothingParameters {
  std::string method = std::string(smoothingMethodTexts[0]);  ///< any other text smooths nothing
  int iterationCount = 10;                                    ///< 1 .. 10000
  float stepSize = 0.5F;       ///< time step, or lambda of the Taubin methods
  bool animate = true;         ///< redraw as the mesh flows
  int animateEvery = 1;        ///< iterations per redraw; below 1 counts as 1
  bool preserveVolume = true;  ///< scale so that the enclosed volume stays

  Form form();
  /// The method whose name is exactly the text of the combo box, if any.
  std::optional<SmoothingMethod> chosenMethod() const;
};

}  // namespace gravlin
