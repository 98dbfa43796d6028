#include "remesh/SubdivisionParameters.h"

namespace gravlin {

Form SubdivisionParameters::form() {
  return {"CSubdivisionDlg",
          "ﾀﾞｲｱﾛｸﾞ",
          {{.name = "method",
            .label = "method",
            .value = &method,
            .choices = {{"Loop", ""}, {"Modified butterfly", ""}, {"Linear", ""}}}}};
}

}  // namespace gravlin
