// Decimation and subdivision against CGAL and OpenMesh, on the same surface. Every decimation of a
// peer takes minutes, so there is one round of them.

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

// The libraries' headers come with warnings of their own.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wshadow"
#pragma GCC diagnostic ignored "-Wextra"
#include <CGAL/Simple_cartesian.h>
#include <CGAL/Surface_mesh.h>
#include <CGAL/Surface_mesh_simplification/edge_collapse.h>
#include <CGAL/Surface_mesh_simplification/Policies/Edge_collapse/Count_stop_predicate.h>
#include <CGAL/Surface_mesh_simplification/Policies/Edge_collapse/GarlandHeckbert_plane_policies.h>
#include <OpenMesh/Core/Mesh/TriMesh_ArrayKernelT.hh>
#include <OpenMesh/Tools/Decimater/DecimaterT.hh>
#include <OpenMesh/Tools/Decimater/ModQuadricT.hh>
#include <OpenMesh/Tools/Subdivider/Uniform/LoopT.hh>
#include <OpenMesh/Tools/Subdivider/Uniform/ModifiedButterFlyT.hh>
#pragma GCC diagnostic pop

#include "curvature/ShapeError.h"
#include "numeric/Index.h"
#include "peers/Comparison.h"
#include "remesh/ButterflySubdivision.h"
#include "remesh/Decimator.h"
#include "remesh/LinearSubdivision.h"
#include "remesh/LoopSubdivision.h"
#include "support/Surface.h"

namespace gravlin::bench {
namespace {

using Kernel = CGAL::Simple_cartesian<double>;
using CgalMesh = CGAL::Surface_mesh<Kernel::Point_3>;
using OpenMeshMesh = OpenMesh::TriMesh_ArrayKernelT<>;

CgalMesh cgalMeshOf(const TriangleMesh& mesh) {
  CgalMesh peer;
  for (int i = 0; i < mesh.vertexCount; ++i) {
    const Vec3 p = mesh.position(i);
    peer.add_vertex(Kernel::Point_3(p.x, p.y, p.z));
  }
  const auto vertex = [](int i) {
    return CgalMesh::Vertex_index(static_cast<CgalMesh::size_type>(i));
  };
  for (int f = 0; f < mesh.faceCount; ++f) {
    const auto c = mesh.corners(f);
    peer.add_face(vertex(c[0]), vertex(c[1]), vertex(c[2]));
  }
  return peer;
}

OpenMeshMesh openMeshOf(const TriangleMesh& mesh) {
  OpenMeshMesh peer;
  std::vector<OpenMeshMesh::VertexHandle> handles;
  for (int i = 0; i < mesh.vertexCount; ++i) {
    const float* p = mesh.vertices.data() + 3 * toIndex(i);
    handles.push_back(peer.add_vertex(OpenMeshMesh::Point(p[0], p[1], p[2])));
  }
  for (int f = 0; f < mesh.faceCount; ++f) {
    const auto c = mesh.corners(f);
    peer.add_face(handles[toIndex(c[0])], handles[toIndex(c[1])], handles[toIndex(c[2])]);
  }
  return peer;
}

TriangleMesh meshOf(const std::vector<Vec3>& points, const std::vector<std::array<int, 3>>& faces) {
  TriangleMesh mesh;
  mesh.setVertexCount(static_cast<int>(points.size()));
  for (int i = 0; i < mesh.vertexCount; ++i) mesh.setPosition(i, points[toIndex(i)]);
  mesh.setFaceCount(static_cast<int>(faces.size()));
  for (int f = 0; f < mesh.faceCount; ++f) mesh.setFace(f, faces[toIndex(f)]);
  mesh.buildAdjacency();
  mesh.buildFaceAdjacency();
  return mesh;
}

TriangleMesh meshOf(CgalMesh& peer) {
  peer.collect_garbage();
  std::vector<Vec3> points;
  std::vector<std::array<int, 3>> faces;
  for (const auto v : peer.vertices()) {
    const auto& p = peer.point(v);
    points.push_back({p.x(), p.y(), p.z()});
  }
  for (const auto f : peer.faces()) {
    std::array<int, 3> corners = {};
    int* corner = corners.data();
    for (const auto v : peer.vertices_around_face(peer.halfedge(f))) {
      *corner++ = static_cast<int>(v.idx());
    }
    faces.push_back(corners);
  }
  return meshOf(points, faces);
}

TriangleMesh meshOf(OpenMeshMesh& peer) {
  peer.garbage_collection();
  std::vector<Vec3> points;
  std::vector<std::array<int, 3>> faces;
  for (const auto v : peer.vertices()) points.push_back(loadVec3(peer.point(v).data()));
  for (const auto f : peer.faces()) {
    std::array<int, 3> corners = {};
    int* corner = corners.data();
    for (const auto v : peer.fv_range(f)) *corner++ = v.idx();
    faces.push_back(corners);
  }
  return meshOf(points, faces);
}

/// The one-sided Hausdorff distance of a mesh to the surface, in units of the view, taken at its
/// vertices and at the midpoints of its edges.
void printDistance(const char* name, const TriangleMesh& mesh, const TriangleMesh& surface) {
  const std::vector<double> distances = vertexErrors(linearSubdivision(mesh), surface);
  std::printf("  %s: %d vertices, at most %.5f from the original\n", name, mesh.vertexCount,
              *std::max_element(distances.begin(), distances.end()));
}

void compareDecimation(const TriangleMesh& surface, float rate) {
  const double left = 1.0 - static_cast<double>(rate);
  TriangleMesh ours;
  const Contestant gravlin = {"Gravlin",
                              [&] {
                                Decimator decimator;
                                decimator.attach(&ours);
                                decimator.decimate(rate);
                              },
                              [&] { ours = surface; }};
  CgalMesh cgal;
  const Contestant cgalCollapse = {
      "CGAL edge_collapse",
      [&] {
        namespace SMS = CGAL::Surface_mesh_simplification;
        const SMS::GarlandHeckbert_plane_policies<CgalMesh, Kernel> planes(cgal);
        // A collapse inside a surface takes three edges.
        const SMS::Count_stop_predicate<CgalMesh> stop(
            static_cast<std::size_t>(left * static_cast<double>(cgal.number_of_edges())));
        SMS::edge_collapse(
            cgal, stop,
            CGAL::parameters::get_cost(planes.get_cost()).get_placement(planes.get_placement()));
      },
      [&] { cgal = cgalMeshOf(surface); }};
  OpenMeshMesh openMesh;
  const Contestant openMeshDecimater = {
      "OpenMesh decimater",
      [&] {
        OpenMesh::Decimater::DecimaterT<OpenMeshMesh> decimater(openMesh);
        OpenMesh::Decimater::ModQuadricT<OpenMeshMesh>::Handle quadrics;
        decimater.add(quadrics);
        decimater.module(quadrics).unset_max_err();
        decimater.initialize();
        decimater.decimate_to(static_cast<std::size_t>(left * surface.vertexCount));
      },
      [&] {
        openMesh = openMeshOf(surface);
        // The decimater asks for these and gives them back; what it removed is told by them later.
        openMesh.request_vertex_status();
        openMesh.request_halfedge_status();
        openMesh.request_edge_status();
        openMesh.request_face_status();
      }};

  const std::string job = "Removing " + std::to_string(static_cast<int>(100.0F * rate + 0.5F)) +
                          "% of " + std::to_string(surface.vertexCount) + " vertices";
  compare(job, gravlin, cgalCollapse, 1);
  compare(job, gravlin, openMeshDecimater, 1);
  TriangleMesh compact = ours.compactCopy();
  compact.buildAdjacency();
  compact.buildFaceAdjacency();
  printDistance("Gravlin", compact, surface);
  printDistance("CGAL", meshOf(cgal), surface);
  printDistance("OpenMesh", meshOf(openMesh), surface);
}

/// Ours with rings, face adjacency and both normals; the peer's in place, without normals.
template <class PeerScheme>
void compareSubdivision(const char* name, TriangleMesh (*scheme)(const TriangleMesh&),
                        const TriangleMesh& surface) {
  TriangleMesh ours;
  OpenMeshMesh peer;
  compare(std::string(name) + " subdivision of " + std::to_string(surface.faceCount) + " faces",
          {"Gravlin", [&] { ours = scheme(surface); }, [&] { ours = {}; }},
          {"OpenMesh",
           [&] {
             PeerScheme subdivider;
             subdivider.attach(peer);
             subdivider(1);
             subdivider.detach();
           },
           [&] { peer = openMeshOf(surface); }},
          3);
}

}  // namespace
}  // namespace gravlin::bench

int main() {
  using namespace gravlin;
  namespace Uniform = OpenMesh::Subdivider::Uniform;
  using PeerMesh = bench::OpenMeshMesh;
  const TriangleMesh surface = bench::built(bench::largeSurface());
  bench::compareSubdivision<Uniform::LoopT<PeerMesh>>("Loop", loopSubdivision, surface);
  bench::compareSubdivision<Uniform::ModifiedButterflyT<PeerMesh>>("Butterfly",
                                                                   butterflySubdivision, surface);
  for (const float rate : {0.5F, 0.9F}) bench::compareDecimation(surface, rate);
}
