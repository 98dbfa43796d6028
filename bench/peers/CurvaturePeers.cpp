// Principal curvatures and directions at every vertex against CGAL's jet fitting.

// CGAL's and Eigen's headers come with warnings of their own.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wshadow"
#pragma GCC diagnostic ignored "-Wextra"
#include <CGAL/Monge_via_jet_fitting.h>
#include <CGAL/Simple_cartesian.h>
#pragma GCC diagnostic pop

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "curvature/CurvatureTensor.h"
#include "peers/Comparison.h"
#include "support/Surface.h"

namespace gravlin::bench {
namespace {

using Kernel = CGAL::Simple_cartesian<double>;
using Fitting = CGAL::Monge_via_jet_fitting<Kernel>;

Kernel::Point_3 pointOf(const TriangleMesh& mesh, int i) {
  const Vec3 p = mesh.position(i);
  return {p.x, p.y, p.z};
}

/// Both curvatures of every vertex, from the smallest patch that a jet of second degree can be
/// fitted to: the vertex and its ring of six.
std::vector<double> fitJets(const TriangleMesh& mesh) {
  std::vector<double> curvatures;
  curvatures.reserve(2 * static_cast<std::size_t>(mesh.vertexCount));
  std::vector<Kernel::Point_3> patch;
  for (int i = 0; i < mesh.vertexCount; ++i) {
    patch.assign(1, pointOf(mesh, i));
    for (const int j : mesh.getNeighbours(i)) patch.push_back(pointOf(mesh, j));
    Fitting fitting;
    Fitting::Monge_form form = fitting(patch.begin(), patch.end(), 2, 2);
    const Vec3 normal = mesh.vertexNormal(i);
    form.comply_wrt_given_normal({normal.x, normal.y, normal.z});
    curvatures.push_back(form.principal_curvatures(0));
    curvatures.push_back(form.principal_curvatures(1));
  }
  return curvatures;
}

}  // namespace
}  // namespace gravlin::bench

int main() {
  using namespace gravlin;
  // CGAL takes its time: a smaller surface than for the other figures, at the same rate a vertex.
  TriangleMesh mesh = bench::built(bench::bumpyTorus(250, 200));
  std::vector<double> theirs;
  bench::compare("Curvature tensor of " + std::to_string(mesh.vertexCount) + " vertices",
                 {"Gravlin", [&] { computeCurvatureTensor(mesh); }},
                 {"CGAL jet fitting", [&] { theirs = bench::fitJets(mesh); }});
  double sum = 0.0;
  for (const double k : theirs) sum += k;
  if (!std::isfinite(sum)) {
    std::fputs("failed: jet fitting\n", stderr);
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
