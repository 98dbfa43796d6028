#include "support/OffscreenView.h"

#include <cmath>
#include <cstdlib>

#include "support/DocumentAccess.h"

namespace gravlin::test {
namespace {

/// The picture's context, after telling Mesa to use no graphics card.
std::unique_ptr<Picture> softwarePicture() {
  setenv("LIBGL_ALWAYS_SOFTWARE", "1", 1);
  return std::make_unique<Picture>();
}

void rebuild(TriangleMesh& mesh) {
  mesh.buildAdjacency();
  mesh.buildFaceAdjacency();
  mesh.computeFaceNormals();
  mesh.computeVertexNormals();
}

}  // namespace

OffscreenView::OffscreenView() : picture(softwarePicture()) {
}

void OffscreenView::show(TriangleMesh mesh, int displayMode) {
  setMesh(document, std::move(mesh));
  show(displayMode);
}

void OffscreenView::show(int displayMode) {
  document.displayMode = displayMode;
  document.redraw();
}

TriangleMesh bumpySphere() {
  TriangleMesh mesh = icosphere(4, 9.0);
  for (int i = 0; i < mesh.vertexCount; ++i) {
    const Vec3 p = mesh.position(i);
    const double bump = std::sin(p.x) * std::cos(0.8 * p.y) * std::sin(0.9 * p.z + 1.0);
    mesh.setPosition(i, (1.0 + 0.1 * bump) * p);
  }
  rebuild(mesh);
  return mesh;
}

TriangleMesh cutSphere() {
  TriangleMesh mesh = bumpySphere();
  std::vector<std::array<int, 3>> faces;
  for (int f = 0; f < mesh.faceCount; ++f) {
    const auto c = mesh.corners(f);
    const Vec3 p = mesh.position(c[0]);
    const bool onTop = p.z > 7.5;
    const bool inFront = p.x > 3.0 && p.x < 6.0 && p.y < -5.0;
    if (onTop || inFront) continue;
    faces.push_back({c[0], c[1], c[2]});
    // The fin: a face that stands on every edge which crosses the plane x = -3 in front.
    const Vec3 q = mesh.position(c[1]);
    if (p.y < 0.0 && p.x <= -3.0 && q.x > -3.0) {
      const auto tip = static_cast<float>(1.2 * p.x);
      const int top = mesh.vertexCount;
      mesh.vertices.insert(mesh.vertices.end(),
                           {tip, static_cast<float>(1.2 * p.y), static_cast<float>(1.2 * p.z)});
      mesh.vertexCount = top + 1;
      faces.push_back({c[0], c[1], top});
    }
  }
  mesh.setFaceCount(static_cast<int>(faces.size()));
  for (int f = 0; f < mesh.faceCount; ++f) mesh.setFace(f, faces[static_cast<std::size_t>(f)]);
  rebuild(mesh);
  return mesh;
}

}  // namespace gravlin::test
