#pragma once

#include "doc/forms/Form.h"

namespace gravlin {

/// What the "Decimation" dialog edits.
struct DecimationParameters {
  float reductionRate = 0.5F;  ///< share of the used vertices to remove; any number is taken

  Form form();
};

}  // namespace gravlin
