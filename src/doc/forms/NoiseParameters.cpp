#include "doc/forms/NoiseParameters.h"

namespace gravlin {

Form NoiseParameters::form() {
  return {
      "CNoiseDlg", "Noise", {{.name = "noiseSize", .label = "Noise Size", .value = &noiseSize}}};
}

}  // namespace gravlin
