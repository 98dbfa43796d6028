#include "doc/forms/ImportParameters.h"

namespace gravlin {

Form ImportParameters::form() {
  return {"CImportDlg",
          "Import",
          {{.name = "weld", .label = "Weld vertices at the same place", .value = &weld}}};
}

}  // namespace gravlin
