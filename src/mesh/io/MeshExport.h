#pragma once

#include <string>

#include "mesh/io/MeshToWrite.h"

namespace gravlin {

/// How a file of a usual format is written.
struct ExportOptions {
  enum class Text { Binary, Ascii };
  std::string format = {};   ///< "ply", "obj", "stl" or "off"; empty: the file's extension tells it
  Text text = Text::Binary;  ///< of the formats that have both
};

/// A file of a usual format as it was written.
struct ExportResult {
  std::string path;   ///< the file meant, with ".ply" where the name had no extension
  std::string error;  ///< the sentence to show on failure, else empty
  std::string loss;   ///< what the format could not hold, as a part of a sentence, or empty
};

/// Writes a mesh through SafeFile. A name without an extension becomes one of ".ply". On failure
/// the file that was there stands. Fields that the format cannot hold are a failure.
ExportResult exportMeshFile(const std::string& path, const MeshToWrite& mesh,
                            const ExportOptions& options);

}  // namespace gravlin
