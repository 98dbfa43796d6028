#pragma once

#include <cstddef>
#include <cstdlib>
#include <limits>
#include <new>
#include <sys/mman.h>
#include <vector>

namespace gravlin {

/// Takes long arrays from the system in huge pages where it offers them: sweeps over hundreds of
/// megabytes then seldom wait for an address to be translated. Short arrays come from the heap.
template <class T>
class LargeAllocator {
 public:
  using value_type = T;

  LargeAllocator() = default;
  template <class Other>
  explicit(false) LargeAllocator(const LargeAllocator<Other>& /*other*/) noexcept {}

  T* allocate(std::size_t count) {
    if (count > std::numeric_limits<std::size_t>::max() / (2 * sizeof(T))) throw std::bad_alloc();
    const std::size_t bytes = count * sizeof(T);
    const bool large = bytes >= 2 * pageSize;
    void* memory = large
                       ? std::aligned_alloc(pageSize, (bytes + pageSize - 1) / pageSize * pageSize)
                       : std::malloc(bytes);
    if (memory == nullptr) throw std::bad_alloc();
    // A hint: without it the array is the same, only slower.
    if (large) ::madvise(memory, bytes, MADV_HUGEPAGE);
    return static_cast<T*>(memory);
  }
  void deallocate(T* memory, std::size_t /*count*/) noexcept { std::free(memory); }

  friend bool operator==(const LargeAllocator&, const LargeAllocator&) { return true; }

 private:
  static constexpr std::size_t pageSize = std::size_t{2} << 20;  ///< of a huge page, in bytes
};

/// A vector that may become very long.
template <class T>
using LargeVector = std::vector<T, LargeAllocator<T>>;

}  // namespace gravlin
