#include "features/ExtremaExtraction.h"

#include <cmath>

#include "curvature/CurvatureTensor.h"

namespace gravlin {
namespace {

/// Where a normal section leaves the ring on one side.
struct Cut {
  double maxCurvature = 0.0;
  double minCurvature = 0.0;
  double squaredDistance = 0.0;
};

/// The two sides of one normal section: ahead lies along the principal direction.
struct SectionCuts {
  Cut ahead;
  Cut behind;
};

struct Section {
  Vec3 planeNormal;
  SectionCuts cuts;
};

/// One end of a ring edge as seen from the vertex, in single precision.
struct RingEnd {
  int vertex;
  Vec3 toVertex;  ///< vertex position minus end position
};

RingEnd ringEnd(const TriangleMesh& mesh, int vertex, int neighbour) {
  const float* p = mesh.vertices.data() + 3 * static_cast<std::size_t>(vertex);
  const float* q = mesh.vertices.data() + 3 * static_cast<std::size_t>(neighbour);
  return {neighbour, {p[0] - q[0], p[1] - q[1], p[2] - q[2]}};
}

double interpolate(const std::vector<double>& field, const RingEnd& j, const RingEnd& l,
                   double areaJ, double areaL) {
  const double atJ = field[static_cast<std::size_t>(j.vertex)];
  const double atL = field[static_cast<std::size_t>(l.vertex)];
  return (areaJ * atL + areaL * atJ) / (areaJ + areaL);
}

/// Records where the plane meets the ring edge j-l, if it does. What is not a number is recorded as
/// well: a vertex with such a side is on no line, whatever the record held before.
void cutRingEdge(const TriangleMesh& mesh, const Vec3& p, const RingEnd& j, const RingEnd& l,
                 Section& section) {
  const double a = dot(j.toVertex, section.planeNormal);
  const double b = dot(l.toVertex, section.planeNormal);
  if (a * b > 0.0) return;
  const double weightJ = std::abs(b);
  const double weightL = std::abs(a);
  const Vec3 e = (weightJ * j.toVertex + weightL * l.toVertex) / (weightL + weightJ);
  const Vec3 toCut = (p - e) - p;
  const double areaJ = 0.5 * length(cross(-j.toVertex, toCut));
  const double areaL = 0.5 * length(cross(-l.toVertex, toCut));
  Cut& cut = b < 0.0 ? section.cuts.ahead : section.cuts.behind;
  cut = {interpolate(mesh.maxCurvature, j, l, areaJ, areaL),
         interpolate(mesh.minCurvature, j, l, areaJ, areaL), dot(e, e)};
}

/// The slope of a curvature at the vertex across its line: the sum of the two one-sided slopes
/// minus the central one.
double slopeAcross(double here, double behind, double ahead, const SectionCuts& cuts) {
  const double distanceBehind = std::sqrt(cuts.behind.squaredDistance);
  const double distanceAhead = std::sqrt(cuts.ahead.squaredDistance);
  return (here - behind) / distanceBehind + (ahead - here) / distanceAhead -
         (ahead - behind) / (distanceAhead + distanceBehind);
}

bool onRidge(double kmax, double kmin, const SectionCuts& along, const SectionCuts& across) {
  const double g = slopeAcross(kmax, across.behind.maxCurvature, across.ahead.maxCurvature, across);
  const double spread = 2.0 * (kmax - kmin);
  return kmax > along.behind.maxCurvature + g * g * along.behind.squaredDistance / spread &&
         kmax > along.ahead.maxCurvature + g * g * along.ahead.squaredDistance / spread;
}

bool onValley(double kmax, double kmin, const SectionCuts& along, const SectionCuts& across) {
  const double h = slopeAcross(kmin, across.behind.minCurvature, across.ahead.minCurvature, across);
  const double spread = 2.0 * (kmax - kmin);
  return kmin < along.behind.minCurvature - h * h * along.behind.squaredDistance / spread &&
         kmin < along.ahead.minCurvature - h * h * along.ahead.squaredDistance / spread;
}

void computeMissingFields(TriangleMesh& mesh) {
  const auto V = static_cast<std::size_t>(mesh.vertexCount);
  if (mesh.vertexNormals.size() != 3 * V) mesh.computeVertexNormals();
  const bool complete = mesh.maxCurvature.size() == V && mesh.minCurvature.size() == V &&
                        mesh.maxDirection.size() == 3 * V && mesh.minDirection.size() == 3 * V;
  if (!complete) computeCurvatureTensor(mesh);
}

}  // namespace

void extractExtrema(TriangleMesh& mesh) {
  const auto V = static_cast<std::size_t>(mesh.vertexCount);
  mesh.ridgeMarks.assign(V, 0);
  mesh.valleyMarks.assign(V, 0);
  computeMissingFields(mesh);

  Section alongMax{};
  Section alongMin{};
  for (int i = 0; i < mesh.vertexCount; ++i) {
    const auto at = static_cast<std::size_t>(i);
    const auto ring = mesh.getNeighbours(i);
    if (mesh.vertexKind[at] != InteriorVertex || ring.empty()) continue;

    const Vec3 normal = mesh.vertexNormal(i);
    alongMax.planeNormal = cross(normal, loadVec3(mesh.maxDirection.data() + 3 * at));
    alongMin.planeNormal = cross(normal, loadVec3(mesh.minDirection.data() + 3 * at));
    const Vec3 p = mesh.position(i);
    RingEnd j = ringEnd(mesh, i, ring.front());
    for (std::size_t k = 0; k < ring.size(); ++k) {
      const RingEnd l = ringEnd(mesh, i, ring[(k + 1) % ring.size()]);
      cutRingEdge(mesh, p, j, l, alongMax);
      cutRingEdge(mesh, p, j, l, alongMin);
      j = l;
    }

    const double kmax = mesh.maxCurvature[at];
    const double kmin = mesh.minCurvature[at];
    mesh.ridgeMarks[at] = onRidge(kmax, kmin, alongMax.cuts, alongMin.cuts) ? 1 : 0;
    mesh.valleyMarks[at] = onValley(kmax, kmin, alongMin.cuts, alongMax.cuts) ? 1 : 0;
  }
}

}  // namespace gravlin
