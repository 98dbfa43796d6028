#include "mesh/io/MeshToWrite.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "numeric/Index.h"

namespace gravlin {
namespace {

double roundedToFloat(double x) {
  return static_cast<double>(static_cast<float>(x));
}

/// How far rounding to floats moves coordinates, and the box that they lie in.
struct FloatLoss {
  double largest = 0.0;  ///< of all coordinates
  double ofBox = 0.0;    ///< of the bounds of the box
};

FloatLoss floatLoss(const MeshToWrite& mesh) {
  FloatLoss loss;
  std::array<double, 3> least;
  std::array<double, 3> most;
  least.fill(std::numeric_limits<double>::infinity());
  most.fill(-std::numeric_limits<double>::infinity());
  for (int i = 0; i < mesh.vertexCount(); ++i) {
    const std::array<double, 3> x = mesh.position(i);
    for (std::size_t axis = 0; axis < 3; ++axis) {
      if (!std::isfinite(x[axis])) continue;
      loss.largest = std::max(loss.largest, std::abs(roundedToFloat(x[axis]) - x[axis]));
      least[axis] = std::min(least[axis], x[axis]);
      most[axis] = std::max(most[axis], x[axis]);
    }
  }
  for (std::size_t axis = 0; axis < 3; ++axis) {
    if (least[axis] > most[axis]) continue;
    loss.ofBox = std::max({loss.ofBox, std::abs(roundedToFloat(least[axis]) - least[axis]),
                           std::abs(roundedToFloat(most[axis]) - most[axis])});
  }
  return loss;
}

}  // namespace

double VertexField::operator()(int vertex) const {
  const std::size_t k = step * toIndex(vertex);
  return factor *
         std::visit([k](const auto& span) { return static_cast<double>(span[k]); }, values);
}

MeshToWrite::MeshToWrite(const TriangleMesh& source, const FileFrame& fileFrame, Vertices wanted)
    : mesh(source),
      frame(fileFrame),
      vertices(source.vertexCount),
      validFaces(source.countValidFaces()) {
  if (wanted == Vertices::All) return;
  if (source.countUsedVertices() == 0) {
    vertices = 0;
    return;
  }
  newIndices = source.usedVertexIndices();
  for (int i = 0; i < vertices; ++i) {
    if (newIndices[toIndex(i)] >= 0) kept.push_back(i);
  }
}

double MeshToWrite::resolution() const {
  constexpr double lastPlace = 0x1p-20;  // of floats from 8 to 16: the cube reaches to 10
  return frame.scale * lastPlace;
}

bool MeshToWrite::floatsSuffice() const {
  const FloatLoss loss = floatLoss(*this);
  // The bounds of the box move its middle and its size.
  return loss.largest + 2.0 * loss.ofBox <= resolution();
}

double MeshToWrite::lossByFloats() const {
  return floatLoss(*this).largest;
}

}  // namespace gravlin
