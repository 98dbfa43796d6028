#pragma once

#include <vector>

#include "numeric/ParallelLoop.h"

namespace gravlin::test {

/// Sets how many threads parallel loops use while it lives.
class ScopedThreadCount {
 public:
  explicit ScopedThreadCount(int count) { setThreadCount(count); }
  ~ScopedThreadCount() { setThreadCount(0); }
  ScopedThreadCount(const ScopedThreadCount&) = delete;
  ScopedThreadCount& operator=(const ScopedThreadCount&) = delete;
};

/// One, an even and an odd number, and more than most machines have processors.
inline std::vector<int> threadCounts() {
  return {1, 2, 3, 16};
}

}  // namespace gravlin::test
