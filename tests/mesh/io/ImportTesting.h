#pragma once

#include <bit>
#include <cstdint>
#include <exception>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

#include "mesh/io/ImportedMesh.h"

namespace gravlin::test {

using Importer = ImportedMesh (*)(std::string_view text);

/// The reason that a reader gives for refusing a text; empty when it takes it.
inline std::string refusal(Importer importer, const std::string& text) {
  try {
    importer(text);
  } catch (const std::exception& error) {
    return error.what();
  }
  return {};
}

/// What breaks the promises that every mesh from a reader keeps; empty when nothing does.
inline std::string brokenPromise(const ImportedMesh& mesh) {
  if (mesh.positions.size() % 3 != 0) return "positions have three coordinates";
  if (mesh.faces.size() % 3 != 0) return "faces have three corners";
  std::int64_t empty = 0;
  for (std::size_t c = 0; c < mesh.faces.size(); c += 3) {
    const bool none = mesh.faces[c] == -1 && mesh.faces[c + 1] == -1 && mesh.faces[c + 2] == -1;
    empty += none ? 1 : 0;
    for (std::size_t k = c; k < c + 3 && !none; ++k) {
      if (mesh.faces[k] < 0 || mesh.faces[k] >= mesh.vertexCount()) return "corners are vertices";
    }
  }
  if (empty != mesh.warnings.unusableFaces + mesh.warnings.incompleteFaces) {
    return "every face that is left out is counted";
  }
  for (const VertexProperty& property : mesh.properties) {
    if (property.values.size() != static_cast<std::size_t>(mesh.vertexCount())) {
      return "a property has a value for every vertex";
    }
  }
  return {};
}

/// Cuts a file of a format behind every byte: each piece that is shorter than `leastWhole` is
/// refused with a reason that begins with one of the two words; every other one keeps the promises.
inline void cutEverywhere(Importer importer, const std::string& text, std::size_t leastWhole) {
  for (std::size_t size = 0; size < text.size(); ++size) {
    const std::string piece = text.substr(0, size);
    const std::string reason = refusal(importer, piece);
    if (size < leastWhole) {
      EXPECT_NE(reason, "") << "cut behind " << size << " bytes";
    }
    if (reason.empty()) {
      EXPECT_EQ(brokenPromise(importer(piece)), "") << "cut behind " << size << " bytes";
    }
  }
  EXPECT_EQ(refusal(importer, text), "");
}

/// The bytes of a number, the lowest first or last.
template <class Number>
std::string bytesOf(Number value, bool bigEndian) {
  std::string bytes(reinterpret_cast<const char*>(&value), sizeof value);
  const bool bigHost = std::endian::native == std::endian::big;
  return bigEndian == bigHost ? bytes : std::string(bytes.rbegin(), bytes.rend());
}

}  // namespace gravlin::test
