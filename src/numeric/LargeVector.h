#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <new>
#include <sys/mman.h>
#include <utility>
#include <vector>

namespace gravlin {

constexpr std::size_t hugePage = std::size_t{2} << 20;  ///< in bytes

/// Asks the system for huge pages for the whole ones among `bytes` of memory, not yet written. Only
/// a hint: without it the memory is the same, only slower.
inline void preferHugePages(void* memory, std::size_t bytes) {
  const std::size_t before = (0 - reinterpret_cast<std::uintptr_t>(memory)) % hugePage;
  if (bytes < before + hugePage) return;
  const std::size_t whole = (bytes - before) / hugePage * hugePage;
  ::madvise(static_cast<char*>(memory) + before, whole, MADV_HUGEPAGE);
}

/// Makes room for `count` elements in a vector that will soon hold as many, maybe very many: the
/// system then interrupts its first filling every 2 MB instead of every 4 kB.
template <class T>
void reserveLarge(std::vector<T>& values, std::size_t count) {
  if (values.capacity() >= count) return;
  values.reserve(count);
  preferHugePages(values.data() + values.size(), sizeof(T) * (count - values.size()));
}

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
    const bool large = bytes >= 2 * hugePage;
    void* memory = large
                       ? std::aligned_alloc(hugePage, (bytes + hugePage - 1) / hugePage * hugePage)
                       : std::malloc(bytes);
    if (memory == nullptr) throw std::bad_alloc();
    if (large) preferHugePages(memory, bytes);
    return static_cast<T*>(memory);
  }
  void deallocate(T* memory, std::size_t /*count*/) noexcept { std::free(memory); }

  friend bool operator==(const LargeAllocator&, const LargeAllocator&) { return true; }
};

/// A vector that may become very long.
template <class T>
using LargeVector = std::vector<T, LargeAllocator<T>>;

/// Leaves numbers that are made without a value as the memory happens to be.
template <class T>
class UnfilledAllocator : public LargeAllocator<T> {
 public:
  using value_type = T;

  UnfilledAllocator() = default;
  template <class Other>
  explicit(false) UnfilledAllocator(const UnfilledAllocator<Other>& /*other*/) noexcept {}

  template <class Number, class... Values>
  void construct(Number* made, Values&&... values) {
    if constexpr (sizeof...(Values) == 0) {
      ::new (static_cast<void*>(made)) Number;
    } else {
      ::new (static_cast<void*>(made)) Number(std::forward<Values>(values)...);
    }
  }
};

/// A very long vector of numbers that costs no sweep through memory before its elements are set:
/// `resize` and the constructor that takes a size leave them unset.
template <class T>
using UnfilledVector = std::vector<T, UnfilledAllocator<T>>;

}  // namespace gravlin
