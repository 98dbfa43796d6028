#pragma once

#include <string>

#include "doc/forms/Form.h"
#include "remesh/MeshSubdivider.h"

namespace gravlin {

/// What the subdivision dialog edits.
struct SubdivisionParameters {
  std::string method = "Loop";  ///< compared as a whole; any text that is no scheme runs "Linear"

  Form form();
  /// The scheme whose name is exactly the text of the combo box; Linear for any other text.
  SubdivisionScheme scheme() const;
};

}  // namespace gravlin
