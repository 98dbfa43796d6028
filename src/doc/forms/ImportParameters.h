#pragma once

#include "doc/forms/Form.h"

namespace gravlin {

/// What the "Import" dialog edits.
struct ImportParameters {
  bool weld = false;  ///< vertices at one place become one

  Form form();
};

}  // namespace gravlin
