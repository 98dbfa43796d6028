#include "support/Allocations.h"

#include <atomic>
#include <cstdlib>
#include <limits>
#include <new>

namespace gravlin::test {
namespace {

// Drivers allocate on threads of their own.
std::atomic<std::size_t> count = 0;
thread_local std::size_t limit = std::numeric_limits<std::size_t>::max();
thread_local std::size_t callsToRefusal = 0;  // the last of so many calls is refused; 0: none

void* allocate(std::size_t size) noexcept {
  ++count;
  const bool refused = callsToRefusal > 0 && --callsToRefusal == 0;
  return size <= limit && !refused ? std::malloc(size == 0 ? 1 : size) : nullptr;
}

void* allocateOrThrow(std::size_t size) {
  void* memory = allocate(size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

}  // namespace

std::size_t allocationCount() {
  return count;
}

AllocationLimit::AllocationLimit(std::size_t largest) {
  limit = largest;
}

AllocationLimit::~AllocationLimit() {
  limit = std::numeric_limits<std::size_t>::max();
}

AllocationFailure::AllocationFailure(std::size_t n) {
  callsToRefusal = n;
}

bool AllocationFailure::happened() const {
  return callsToRefusal == 0;
}

AllocationFailure::~AllocationFailure() {
  callsToRefusal = 0;
}

}  // namespace gravlin::test

void* operator new(std::size_t size) {
  return gravlin::test::allocateOrThrow(size);
}
void* operator new[](std::size_t size) {
  return gravlin::test::allocateOrThrow(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return gravlin::test::allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return gravlin::test::allocate(size);
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete[](void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
  std::free(memory);
}
