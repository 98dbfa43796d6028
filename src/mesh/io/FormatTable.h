#pragma once

#include <cstdio>
#include <span>
#include <string_view>

#include "mesh/io/ReadReport.h"
#include "mesh/TriangleMesh.h"

namespace gravlin {

/// A kind of file that Open and Save know by its extension. Readers and writers are null where
/// there are none.
struct FileFormat {
  std::string_view extension;  ///< without the dot; capital letters count as different
  std::string_view holds;      ///< "positions, faces, ridge and valley marks"
  ReadReport (*open)(std::string_view text, TriangleMesh& mesh) = nullptr;
  void (*save)(std::FILE* stream, const TriangleMesh& mesh) = nullptr;
};

/// In the order in which the extensions are compared.
std::span<const FileFormat> ownFormats();

/// The row of an extension; null when there is none.
const FileFormat* ownFormat(std::string_view extension);

}  // namespace gravlin
