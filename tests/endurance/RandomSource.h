#pragma once

#include <cstddef>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace gravlin::endurance {

/// Decisions that follow from a seed alone.
class RandomSource {
 public:
  explicit RandomSource(unsigned long long seed) : engine(seed) {}

  /// 0 <= result < n.
  int below(int n) { return static_cast<int>(engine() % static_cast<unsigned long long>(n)); }
  /// Once in n times.
  bool oneIn(int n) { return below(n) == 0; }
  /// In [0, 1).
  double share() { return static_cast<double>(engine() >> 11U) * 0x1p-53; }

  template <class Items>
  const auto& anyOf(const Items& items) {
    return items[static_cast<std::size_t>(below(static_cast<int>(items.size())))];
  }

 private:
  std::mt19937_64 engine;
};

/// A text for a field of a dialog: what people type, the ends of what numbers hold, and no number
/// at all. Counts of iterations and of strokes stay such that a command ends; those that fields
/// refuse are among them.
struct NamedField {
  std::string_view dialog;
  std::string_view field;
};
std::string anyText(RandomSource& random, const NamedField& named);

/// The text of a mesh file, with its extension: small meshes of every family, torn, twisted,
/// stretched beyond measure, with coordinates that only rise, of numbers at the ends of what they
/// hold, of no sense at all, or cut off.
struct MeshText {
  std::string extension;
  std::string text;
};
MeshText anyMeshText(RandomSource& random);

}  // namespace gravlin::endurance
