#include "numeric/ParallelLoop.h"

#include <algorithm>
#include <atomic>
#include <charconv>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace gravlin {
namespace {

// A thread takes some tens of microseconds to start, which this many indices are worth.
constexpr int smallestRange = 4096;
// More ranges than threads, so that a thread with heavy ones does not keep the others waiting.
constexpr int rangesPerThread = 4;

int environmentThreadCount() {
  if (const char* text = std::getenv("GRAVLIN_THREADS")) {
    int count = 0;
    const auto [end, error] = std::from_chars(text, text + std::strlen(text), count);
    if (error == std::errc() && *end == '\0' && count >= 1) return count;
  }
  return std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
}

int chosenThreadCount = 0;  ///< 0 while the environment decides

/// Ranges that threads take from one another's hands.
class SharedRanges {
 public:
  SharedRanges(int indexCount, int ranges, const std::function<void(const IndexRange&)>& rangeBody)
      : count(indexCount), rangeCount(ranges), body(rangeBody), failed(ranges) {}

  /// Runs ranges until none is left.
  void run() {
    for (int k = next++; k < rangeCount; k = next++) {
      // Ranges are taken in rising order, so every one below that of a failure has been taken.
      if (k > failed) return;
      try {
        body({.begin = start(k), .end = start(k + 1)});
      } catch (...) {
        keep(std::current_exception(), k);
      }
    }
  }

  void throwFailure() const {
    if (failure) std::rethrow_exception(failure);
  }

 private:
  int start(int k) const {
    return static_cast<int>(static_cast<long long>(count) * k / rangeCount);
  }

  void keep(std::exception_ptr exception, int k) {
    const std::lock_guard guard(failing);
    if (k >= failed) return;
    failed = k;
    failure = std::move(exception);
  }

  int count;
  int rangeCount;
  const std::function<void(const IndexRange&)>& body;
  std::atomic<int> next = 0;
  std::mutex failing;
  std::atomic<int> failed;  ///< the lowest range that failed, rangeCount if none did
  std::exception_ptr failure;
};

}  // namespace

int threadCount() {
  static const int fromEnvironment = environmentThreadCount();
  return chosenThreadCount > 0 ? chosenThreadCount : fromEnvironment;
}

void setThreadCount(int count) {
  chosenThreadCount = count;
}

void parallelRanges(int count, const std::function<void(const IndexRange&)>& body) {
  const int threads = std::min(threadCount(), count / smallestRange);
  if (threads < 2) {
    if (count > 0) body({.begin = 0, .end = count});
    return;
  }
  SharedRanges ranges(count, std::min(threads * rangesPerThread, count / smallestRange), body);
  {
    std::vector<std::jthread> helpers;
    try {
      helpers.reserve(static_cast<std::size_t>(threads));
      for (int k = 1; k < threads; ++k) helpers.emplace_back([&ranges] { ranges.run(); });
    } catch (const std::exception&) {
      // The system gives no more threads, or no memory for them: those there are do the work.
    }
    ranges.run();
  }
  ranges.throwFailure();
}

}  // namespace gravlin
