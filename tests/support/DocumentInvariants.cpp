#include "support/DocumentInvariants.h"

#include "numeric/Index.h"
#include "support/Invariants.h"

namespace gravlin::test {

std::vector<std::string> brokenInvariants(const CGravlinDoc& document) {
  if (!document.mesh()) return {};
  const TriangleMesh& mesh = *document.mesh();
  if (auto broken = brokenInvariants(mesh); !broken.empty()) return broken;
  if (!mesh.vertexNeighbours.built() || mesh.faceAdjacency.size() != mesh.faces.size()) {
    return {"the current mesh has no topology"};
  }
  if (auto broken = brokenLinks(mesh, document.creaseLinks, "creaseLinks"); !broken.empty()) {
    return broken;
  }
  const bool hasLines = mesh.ridgeLinks.size() == toIndex(mesh.vertexCount);
  const auto from = document.linesFrom;  // those of the shape are found when they are shown
  if (!hasLines && from != CGravlinDoc::LinesFrom::Nothing &&
      from != CGravlinDoc::LinesFrom::FaceAngle) {
    return {"it is known where lines come from that are not there"};
  }
  if (!document.undoMesh) return {};
  if (auto broken = brokenInvariants(*document.undoMesh); !broken.empty()) return broken;
  if (document.undoMesh->vertexFaces.built() || !document.undoMesh->faceNormals.empty()) {
    return {"the undo copy is more than geometry"};
  }
  return {};
}

}  // namespace gravlin::test
