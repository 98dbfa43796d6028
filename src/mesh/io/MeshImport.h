#pragma once

#include <memory>
#include <string>

#include "mesh/io/FormatTable.h"
#include "mesh/io/ImportedMesh.h"

namespace gravlin {

/// A file of a usual format as it was read.
struct ImportResult {
  std::unique_ptr<ImportedMesh> mesh;      ///< null on failure
  const StandardFormat* format = nullptr;  ///< null when the file is none of those known
  std::string error;                       ///< the sentence to show on failure, else empty
};

/// Reads a file of one of the usual formats, told by its content. Changes nothing but its result.
ImportResult importMeshFile(const std::string& path);

/// The format of a file that is called as such files are: .obj, .stl or .off, in whatever letters,
/// or .ply with the first line "ply". Null for any other file, and for one that cannot be read.
const StandardFormat* standardFormatOfFile(const std::string& path);

/// What a reader went on from, as a part of a sentence: "2 polygons cut into triangles; 1 face with
/// corners that do not exist". Empty when there was nothing.
std::string warningText(const ImportWarnings& warnings);

}  // namespace gravlin
