#pragma once

#include <string>

#include "numeric/Form.h"

namespace gravlin {

/// What the subdivision dialog edits.
struct SubdivisionParameters {
  std::string method = "Loop";  ///< compared as a whole; any text that is no scheme runs "Linear"

  Form form();
};

}  // namespace gravlin
