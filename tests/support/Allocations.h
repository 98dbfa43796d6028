#pragma once

#include <cstddef>

namespace gravlin::test {

// Programs that link gravlin_allocation_count have operator new replaced by one that counts.

/// Number of calls of operator new so far.
std::size_t allocationCount();

/// While it lives, operator new refuses this thread whatever is larger than `largest` bytes, as if
/// memory had run out. A driver that compiles meanwhile may not survive it: draw once before.
class AllocationLimit {
 public:
  explicit AllocationLimit(std::size_t largest);
  ~AllocationLimit();
  AllocationLimit(const AllocationLimit&) = delete;
  AllocationLimit& operator=(const AllocationLimit&) = delete;
};

/// While it lives, operator new refuses its n-th call from here on, and only that, as if memory had
/// run out for a moment.
class AllocationFailure {
 public:
  explicit AllocationFailure(std::size_t n);
  ~AllocationFailure();
  /// Whether the n-th call has come and was refused.
  bool happened() const;
  AllocationFailure(const AllocationFailure&) = delete;
  AllocationFailure& operator=(const AllocationFailure&) = delete;
};

}  // namespace gravlin::test
