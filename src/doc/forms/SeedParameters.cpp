#include "doc/forms/SeedParameters.h"

namespace gravlin {

Form SeedParameters::form() {
  return {"CSeedDlg",
          "Stroke",
          {{.name = "seedAmount",
            .label = "Amount of Seed",
            .value = &seedAmount,
            .range = {{0, 1000000}}}}};
}

}  // namespace gravlin
