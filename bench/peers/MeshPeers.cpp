// Opening, building connectivity, normals and writing against OpenMesh, on the same surface.

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

// OpenMesh's headers come with warnings of their own.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wshadow"
#pragma GCC diagnostic ignored "-Wextra"
#include <OpenMesh/Core/IO/MeshIO.hh>
#include <OpenMesh/Core/Mesh/TriMesh_ArrayKernelT.hh>
#pragma GCC diagnostic pop

#include "mesh/io/MeshFile.h"
#include "peers/Comparison.h"
#include "support/Surface.h"

namespace gravlin::bench {
namespace {

using PeerMesh = OpenMesh::TriMesh_ArrayKernelT<>;

void require(bool condition, const char* what) {
  if (condition) return;
  std::fprintf(stderr, "failed: %s\n", what);
  std::exit(EXIT_FAILURE);
}

PeerMesh peerMeshOf(const TriangleMesh& mesh) {
  PeerMesh peer;
  const auto n = static_cast<std::size_t>(mesh.vertexCount);
  const auto m = static_cast<std::size_t>(mesh.faceCount);
  peer.reserve(n, n + m, m);
  std::vector<PeerMesh::VertexHandle> handles;
  handles.reserve(n);
  for (std::size_t i = 0; i < n; ++i) {
    const float* p = mesh.vertices.data() + 3 * i;
    handles.push_back(peer.add_vertex(PeerMesh::Point(p[0], p[1], p[2])));
  }
  const auto handle = [&handles](int i) { return handles[static_cast<std::size_t>(i)]; };
  for (int f = 0; f < mesh.faceCount; ++f) {
    const auto c = mesh.corners(f);
    peer.add_face(handle(c[0]), handle(c[1]), handle(c[2]));
  }
  return peer;
}

void compareOpening(const TriangleMesh& surface) {
  const std::string ours = writeTemporary("gravlin-peers.ply2", ply2Text(surface));
  const std::string theirs = writeTemporary("gravlin-peers.off", offText(surface));
  compare("Opening a file (ours with rings, face adjacency and both normals)",
          {"Gravlin \"ply2\"",
           [&] {
             const OpenResult opened = openMeshFile(ours);
             require(opened.mesh && opened.mesh->faceCount == surface.faceCount, "opening ply2");
           }},
          {"OpenMesh OFF", [&] {
             PeerMesh peer;
             require(OpenMesh::IO::read_mesh(peer, theirs), "opening OFF");
             require(peer.n_faces() == static_cast<std::size_t>(surface.faceCount), "faces of OFF");
           }});
  std::filesystem::remove(ours);
  std::filesystem::remove(theirs);
}

void compareTopology(const TriangleMesh& surface) {
  compare("Connectivity from arrays",
          {"Gravlin rings, kinds and face adjacency",
           [&] {
             TriangleMesh mesh;
             mesh.copyGeometryFrom(surface);
             mesh.buildAdjacency();
             mesh.buildFaceAdjacency();
             require(mesh.countUsedVertices() == surface.vertexCount, "rings");
           }},
          {"OpenMesh half-edges", [&] {
             const PeerMesh peer = peerMeshOf(surface);
             require(peer.n_faces() == static_cast<std::size_t>(surface.faceCount), "half-edges");
           }});
}

void compareNormals(const TriangleMesh& surface) {
  TriangleMesh mesh = built(surface);
  PeerMesh peer = peerMeshOf(surface);
  peer.request_face_normals();
  peer.request_vertex_normals();
  compare("Face and vertex normals",
          {"Gravlin",
           [&] {
             mesh.computeFaceNormals();
             mesh.computeVertexNormals();
           }},
          {"OpenMesh", [&] {
             peer.update_face_normals();
             peer.update_vertex_normals();
           }});
}

void compareWriting(const TriangleMesh& surface) {
  TriangleMesh mesh = built(surface);
  const PeerMesh peer = peerMeshOf(surface);
  const std::string ours = writeTemporary("gravlin-peers-saved.ply2", "");
  const std::string theirs = writeTemporary("gravlin-peers-saved.off", "");
  compare(
      "Saving a file (ours replaces the old one safely)",
      {"Gravlin \"ply2\"", [&] { require(saveMeshFile(ours, mesh).error.empty(), "saving"); }},
      {"OpenMesh OFF", [&] { require(OpenMesh::IO::write_mesh(peer, theirs), "writing OFF"); }});
  std::filesystem::remove(ours);
  std::filesystem::remove(theirs);
}

}  // namespace
}  // namespace gravlin::bench

int main() {
  const gravlin::TriangleMesh surface = gravlin::bench::largeSurface();
  gravlin::bench::compareOpening(surface);
  gravlin::bench::compareTopology(surface);
  gravlin::bench::compareNormals(surface);
  gravlin::bench::compareWriting(surface);
}
