#include "doc/forms/SubdivisionParameters.h"

namespace gravlin {

Form SubdivisionParameters::form() {
  return {"CSubdivisionDlg",
          "ﾀﾞｲｱﾛｸﾞ",
          {{.name = "method",
            .label = "method",
            .value = &method,
            .choices = {{"Loop", ""}, {"Modified butterfly", ""}, {"Linear", ""}}}}};
}

SubdivisionScheme SubdivisionParameters::scheme() const {
  if (method == "Loop") return SubdivisionScheme::Loop;
  if (method == "Modified butterfly") return SubdivisionScheme::Butterfly;
  return SubdivisionScheme::Linear;
}

}  // namespace gravlin
