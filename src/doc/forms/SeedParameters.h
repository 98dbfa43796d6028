#pragma once

#include "doc/forms/Form.h"

namespace gravlin {

/// What the "Stroke" dialog edits.
struct SeedParameters {
  int seedAmount = 2000;  ///< 0 .. 1000000

  Form form();
};

}  // namespace gravlin
