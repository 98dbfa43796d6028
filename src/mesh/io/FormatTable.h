#pragma once

#include <cstdio>
#include <span>
#include <string_view>

#include "mesh/io/ImportedMesh.h"
#include "mesh/io/MeshToWrite.h"
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

/// A kind of file that other programs share. Its content tells it, not its name.
struct StandardFormat {
  std::string_view extension;  ///< the usual one, without the dot, in small letters
  std::string_view name;       ///< "Stanford PLY"
  std::string_view holds;      ///< what it can hold
  bool (*looksRight)(std::string_view text) = nullptr;
  ImportedMesh (*import)(std::string_view text) = nullptr;
  void (*write)(std::FILE* stream, const MeshToWrite& mesh) = nullptr;
  void (*writeAscii)(std::FILE* stream, const MeshToWrite& mesh) = nullptr;  ///< null: `write` does
  bool hasFields = false;  ///< it can hold numbers of vertices
  bool hasIndices = true;  ///< it numbers vertices, so that all of them are in it and in order
};

/// In the order in which a content is compared.
std::span<const StandardFormat> standardFormats();

/// The row that a text, followed by a NUL, looks like. Where none fits, that of the extension, in
/// whatever letters, so that it can tell what is wrong; null when there is none either.
const StandardFormat* standardFormat(std::string_view text, std::string_view extension);

/// The row of an extension, in whatever letters; null when there is none.
const StandardFormat* standardFormatNamed(std::string_view extension);

}  // namespace gravlin
