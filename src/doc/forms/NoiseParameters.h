#pragma once

#include "doc/forms/Form.h"

namespace gravlin {

/// What the "Noise" dialog edits.
struct NoiseParameters {
  float noiseSize = 0.05F;  ///< standard deviation of the displacement; negative mirrors it

  Form form();
};

}  // namespace gravlin
