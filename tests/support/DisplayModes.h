#pragma once

#include <vector>

#include "doc/ModeTable.h"

namespace gravlin::test {

/// The numbers of all display modes, and before them some that no mode has.
inline std::vector<int> everyDisplayMode() {
  std::vector<int> numbers = {-1, 0, 9, 27, 32, firstOwnMode - 1};
  for (const Mode& mode : modeTable()) numbers.push_back(mode.number);
  return numbers;
}

}  // namespace gravlin::test
