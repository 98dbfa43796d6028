// Implicit smoothing steps against CGAL's, on the same surface. CGAL takes minutes for each.

#include <string>

// CGAL's headers come with warnings of their own.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wshadow"
#pragma GCC diagnostic ignored "-Wextra"
#include <CGAL/Polygon_mesh_processing/smooth_shape.h>
#include <CGAL/Simple_cartesian.h>
#include <CGAL/Surface_mesh.h>
#pragma GCC diagnostic pop

#include "numeric/TextSink.h"
#include "peers/Comparison.h"
#include "smoothing/ImplicitLaplacianFlow.h"
#include "smoothing/ImplicitMeanCurvatureFlow.h"
#include "support/Surface.h"

namespace gravlin::bench {
namespace {

using Point = CGAL::Simple_cartesian<double>::Point_3;
using PeerMesh = CGAL::Surface_mesh<Point>;
using PeerVertex = PeerMesh::Vertex_index;

constexpr double timeStep = 0.5;

PeerMesh peerMeshOf(const TriangleMesh& mesh) {
  PeerMesh peer;
  for (int i = 0; i < mesh.vertexCount; ++i) {
    const Vec3 p = mesh.position(i);
    peer.add_vertex(Point(p.x, p.y, p.z));
  }
  const auto vertex = [](int i) { return PeerVertex(static_cast<PeerVertex::size_type>(i)); };
  for (int f = 0; f < mesh.faceCount; ++f) {
    const auto c = mesh.corners(f);
    peer.add_face(vertex(c[0]), vertex(c[1]), vertex(c[2]));
  }
  return peer;
}

template <class Flow>
void compareStep(const char* name, const TriangleMesh& surface) {
  TriangleMesh mesh = surface;
  PeerMesh peer = peerMeshOf(surface);
  const std::string job =
      std::string(name) + ", time step 0.5, " + std::to_string(surface.vertexCount) + " vertices";
  compare(job,
          {"Gravlin",
           [&] {
             mesh.vertices = surface.vertices;
             Flow(mesh, static_cast<float>(timeStep)).step();
           }},
          {"CGAL smooth_shape",
           [&] { CGAL::Polygon_mesh_processing::smooth_shape(faces(peer), peer, timeStep); }},
          1);
}

}  // namespace
}  // namespace gravlin::bench

int main() {
  using namespace gravlin;
  const ScopedTextSink quiet(quietTextSink());
  const TriangleMesh surface = bench::built(bench::largeSurface());
  bench::compareStep<ImplicitLaplacianFlow>("Implicit Laplacian step", surface);
  bench::compareStep<ImplicitMeanCurvatureFlow>("Implicit mean curvature step", surface);
}
