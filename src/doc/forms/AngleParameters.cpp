#include "doc/forms/AngleParameters.h"

#include <cmath>

namespace gravlin {

Form AngleParameters::form() {
  constexpr std::string_view thresholdBox = "Threshold";
  return {"CAngleDlg",
          "Angle",
          {{.name = "thresholdMode",
            .value = &thresholdMode,
            .group = thresholdBox,
            .choices = {{"Constant Angle (0-180)", "angle"}, {"Histogram(0-100)", "histogram"}}},
           {.name = "angle",
            .label = "Constant Angle (0-180)",
            .value = &angle,
            .group = thresholdBox,
            .range = {{0, 180}}},
           {.name = "histogramHi",
            .label = "Hi",
            .value = &histogramHi,
            .group = thresholdBox,
            .range = {{0, 100}}},
           {.name = "histogramLow",
            .label = "Low",
            .value = &histogramLow,
            .group = thresholdBox,
            .range = {{0, 100}}},
           {.name = "shadedSurface", .label = "Shaded Surface", .value = &shadedSurface},
           {.name = "preSmoothing",
            .label = "Pre-smoothing for enhancing creases",
            .value = &preSmoothing}}};
}

float AngleParameters::cosThreshold() const {
  constexpr double degree = 0.017453292519943278;
  return static_cast<float>(-std::cos(angle * degree));
}

CreaseShares AngleParameters::shares() const {
  constexpr float percent = 0.01F;
  return {.hi = static_cast<float>(histogramHi) * percent,
          .low = static_cast<float>(histogramLow) * percent};
}

}  // namespace gravlin
