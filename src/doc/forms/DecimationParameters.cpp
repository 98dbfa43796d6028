#include "doc/forms/DecimationParameters.h"

namespace gravlin {

Form DecimationParameters::form() {
  return {"CDecimationDlg",
          "Decimation",
          {{.name = "reductionRate", .label = "Reduction rate (0-1)", .value = &reductionRate}}};
}

}  // namespace gravlin
