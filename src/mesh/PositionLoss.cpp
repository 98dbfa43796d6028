#include "mesh/PositionLoss.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <vector>

namespace gravlin {
namespace {

constexpr float searchStart = 1000000.0F;  // as in normalize
constexpr float infinity = std::numeric_limits<float>::infinity();

bool boxIsMissed(const std::vector<float>& vertices, std::size_t axis) {
  float largest = -searchStart;
  float least = infinity;
  float most = -infinity;
  bool raised = false;
  bool lowered = false;
  for (std::size_t c = axis; c < vertices.size(); c += 3) {
    const float x = vertices[c];
    if (x > largest) {
      largest = x;
      raised = true;
    } else if (x < searchStart) {
      lowered = true;
    }
    if (raised && lowered) return false;  // after a few vertices of nearly every mesh
    least = std::min(least, x);
    most = std::max(most, x);
  }
  if (least > most) return false;  // there are no numbers
  return (!lowered && least != searchStart) || (!raised && most != -searchStart);
}

/// What the six decimals of a float read back as. The product has at most 24 + 14 binary digits
/// behind the leading one, so it is exact, and rounding to even is what printf does, too.
double readBack(float value) {
  constexpr double decimals = 1e6;
  constexpr float wholeText = 16.0F;  // from here on floats lie farther apart than the decimals
  if (!(std::abs(value) < wholeText)) return static_cast<double>(value);
  return static_cast<double>(
      static_cast<float>(std::nearbyint(static_cast<double>(value) * decimals) / decimals));
}

/// The same of a double. Below 2^33 the product is as exact as a ten-thousandth of a decimal.
double readBackInDouble(double value) {
  constexpr double decimals = 1e6;
  constexpr double wholeText = 0x1p33;
  if (!(std::abs(value) < wholeText)) return value;
  return std::nearbyint(value * decimals) / decimals;
}

}  // namespace

std::array<bool, 3> axesWithoutBox(const TriangleMesh& mesh) {
  if (mesh.vertexCount < 2) return {false, false, false};
  return {boxIsMissed(mesh.vertices, 0), boxIsMissed(mesh.vertices, 1),
          boxIsMissed(mesh.vertices, 2)};
}

NormalizingLoss normalizeMeasuringLoss(TriangleMesh& mesh) {
  const std::array<bool, 3> missed = axesWithoutBox(mesh);
  if (!missed[0] && !missed[1] && !missed[2]) {
    mesh.normalize();
    return {};
  }
  const std::vector<float> before = mesh.vertices;
  mesh.normalize();
  const FileFrame frame = mesh.fileFrame();
  NormalizingLoss loss;
  for (int i = 0; i < mesh.vertexCount; ++i) {
    const std::array<double, 3> back =
        frame.toFile(mesh.vertices.data() + 3 * static_cast<std::size_t>(i));
    for (std::size_t axis = 0; axis < 3; ++axis) {
      const float x = before[3 * static_cast<std::size_t>(i) + axis];
      const double stored = std::abs(back[axis] - static_cast<double>(x));
      if (!std::isfinite(stored)) continue;
      const double rewritten = std::abs(readBack(static_cast<float>(back[axis])) - readBack(x));
      loss.stored = std::max(loss.stored, stored);
      loss.rewritten = std::max(loss.rewritten, rewritten);
    }
  }
  return loss;
}

std::optional<WritingLoss> lossByWriting(const TriangleMesh& mesh) {
  const FileFrame frame = mesh.fileFrame();
  const bool inDouble = mesh.importFrame.has_value();
  const auto written = [inDouble](double x) {
    return inDouble ? readBackInDouble(x) : readBack(static_cast<float>(x));
  };
  double largest = 0.0;
  std::array<double, 3> least;
  std::array<double, 3> most;
  least.fill(std::numeric_limits<double>::infinity());
  most.fill(-std::numeric_limits<double>::infinity());
  for (int i = 0; i < mesh.vertexCount; ++i) {
    if (mesh.neighbourCount(i) == 0) continue;
    const std::array<double, 3> x =
        frame.toFile(mesh.vertices.data() + 3 * static_cast<std::size_t>(i));
    for (std::size_t axis = 0; axis < 3; ++axis) {
      const double loss = std::abs(written(x[axis]) - x[axis]);
      if (!std::isfinite(loss)) continue;
      largest = std::max(largest, loss);
      least[axis] = std::min(least[axis], x[axis]);
      most[axis] = std::max(most[axis], x[axis]);
    }
  }
  const double extent = std::max({most[0] - least[0], most[1] - least[1], most[2] - least[2]});
  if (!(extent >= 0.0)) return std::nullopt;
  return WritingLoss{largest, extent};
}

std::string lossText(double loss) {
  constexpr int significantDigits = 3;
  std::array<char, 32> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), loss,
                                 std::chars_format::general, significantDigits)
                       .ptr;
  return {text.data(), end};
}

}  // namespace gravlin
