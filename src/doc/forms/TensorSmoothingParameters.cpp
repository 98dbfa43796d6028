#include "doc/forms/TensorSmoothingParameters.h"

namespace gravlin {

Form TensorSmoothingParameters::form() {
  return {"CTensorSmoothDlg",
          "Tensor Smooth",
          {{.name = "displayChoice",
            .label = "",
            .value = &displayChoice,
            .choices = {{"max", "max"},
                        {"min", "min"},
                        {"max + direction", "max-direction"},
                        {"min + direction", "min-direction"}}},
           {.name = "animate", .label = "Animate flow", .value = &animate},
           {.name = "animateEvery", .label = "per", .value = &animateEvery, .unit = "interations"},
           {.name = "curvatureIterations",
            .label = "Iteration",
            .value = &curvatureIterations,
            .group = "Curvature"},
           {.name = "curvatureThreshold",
            .label = "Treshold",
            .value = &curvatureThreshold,
            .group = "Curvature"},
           {.name = "directionIterations",
            .label = "Iteration",
            .value = &directionIterations,
            .group = "Direction"},
           {.name = "directionThreshold",
            .label = "Treshold",
            .value = &directionThreshold,
            .group = "Direction"}}};
}

}  // namespace gravlin
