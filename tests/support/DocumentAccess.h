#pragma once

#include <memory>
#include <utility>

#include "doc/CGravlinDoc.h"

namespace gravlin::test {

/// What tests do with a document's mesh and nobody else may.
struct DocumentAccess {
  static void replace(CGravlinDoc& document, std::unique_ptr<TriangleMesh> mesh) {
    document.replaceMesh(std::move(mesh));
    document.linesAreLost = false;
  }
  static TriangleMesh& mesh(CGravlinDoc& document) { return *document.currentMesh; }
};

/// Puts a mesh into a document in the place of the one that is there. Everything else stays but the
/// lines: the undo copy, the mode, what the histogram shows.
inline void setMesh(CGravlinDoc& document, TriangleMesh mesh) {
  DocumentAccess::replace(document, std::make_unique<TriangleMesh>(std::move(mesh)));
}
inline void dropMesh(CGravlinDoc& document) {
  DocumentAccess::replace(document, nullptr);
}

/// The mesh of a document, to be changed behind its back. It must be there.
inline TriangleMesh& meshOf(CGravlinDoc& document) {
  return DocumentAccess::mesh(document);
}

}  // namespace gravlin::test
