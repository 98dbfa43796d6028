#pragma once

#include <string>

#include "doc/forms/Form.h"

namespace gravlin {

/// What the "Export" dialog edits: how a file of one of the usual formats is written, and which
/// numbers of vertices a PLY holds beside positions.
struct ExportParameters {
  enum Format : int { ByExtension = 0, Ply = 1, Obj = 2, Stl = 3, Off = 4 };

  int format = ByExtension;
  bool ascii = false;  ///< of PLY and STL, which are binary otherwise
  bool leaveOutUnused = false;
  bool normals = false;
  bool curvature = false;   ///< maximum, minimum, mean, Gaussian and total
  bool directions = false;  ///< of maximum and minimum curvature
  bool marks = false;       ///< of ridges and valleys

  Form form();
  /// The extension of the format, empty where the file's name tells it.
  std::string formatExtension() const;
};

}  // namespace gravlin
