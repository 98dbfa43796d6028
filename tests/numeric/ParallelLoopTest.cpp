#include <atomic>
#include <chrono>
#include <gtest/gtest.h>
#include <limits>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "numeric/ParallelLoop.h"
#include "support/ThreadCounts.h"

namespace gravlin {
namespace {

using test::ScopedThreadCount;

const std::vector<int> counts = {0, 1, 4095, 4096, 8191, 8192, 8193, 100'000, 1'000'003};

TEST(ParallelLoop, VisitsEveryIndexOnce) {
  for (const int threads : test::threadCounts()) {
    const ScopedThreadCount scope(threads);
    for (const int count : counts) {
      std::vector<int> visits(static_cast<std::size_t>(count), 0);
      parallelFor(count, [&](int i) { ++visits[static_cast<std::size_t>(i)]; });
      EXPECT_EQ(visits, std::vector<int>(visits.size(), 1)) << count << " on " << threads;
    }
  }
}

TEST(ParallelLoop, DoesNothingForANegativeCount) {
  for (const int count : {-1, std::numeric_limits<int>::min()}) {
    parallelFor(count, [](int) { FAIL(); });
  }
}

TEST(ParallelLoop, GivesEveryRangeACopyOfTheBody) {
  // Each copy counts for itself; a shared count would be a race, and would not end below `count`.
  const ScopedThreadCount scope(4);
  constexpr int count = 100'000;
  std::vector<int> seen(count);
  parallelFor(count,
              [&seen, calls = 0](int i) mutable { seen[static_cast<std::size_t>(i)] = calls++; });
  EXPECT_EQ(seen[0], 0);
  EXPECT_LT(seen[count - 1], count - 1);
}

TEST(ParallelLoop, ThrowsTheFailureWithTheLowestIndex) {
  for (const int threads : test::threadCounts()) {
    const ScopedThreadCount scope(threads);
    for (int attempt = 0; attempt < 20; ++attempt) {
      try {
        parallelFor(100'000, [](int i) {
          if (i == 30'000 || i == 99'000) throw std::runtime_error(std::to_string(i));
        });
        ADD_FAILURE();
      } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "30000") << threads;
      }
    }
  }
}

TEST(ParallelLoop, ThrowsTheFailureWithTheLowestIndexWhenItComesLast) {
  const ScopedThreadCount scope(2);
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  std::atomic<bool> inTime = true;
  for (int attempt = 0; attempt < 200 && inTime; ++attempt) {
    std::atomic<bool> higherFails = false;
    const auto body = [&](const IndexRange& range) {
      if (range.begin > 0) {
        higherFails = true;
        throw std::runtime_error("higher");
      }
      // The other thread takes the next range meanwhile; then it needs a moment to say how it
      // ended, which is longer or shorter from attempt to attempt.
      while (!higherFails && inTime) {
        std::this_thread::yield();
        inTime = std::chrono::steady_clock::now() < deadline;
      }
      for (int k = 0; k < 10 * attempt; ++k) std::this_thread::yield();
      throw std::runtime_error("lowest");
    };
    try {
      parallelRanges(100'000, body);
      ADD_FAILURE();
    } catch (const std::runtime_error& error) {
      EXPECT_STREQ(error.what(), "lowest");
    }
  }
  EXPECT_TRUE(inTime) << "no second thread has come";
}

TEST(ParallelLoop, RunsOnOneThreadWhenToldTo) {
  const ScopedThreadCount scope(1);
  int ranges = 0;
  parallelRanges(1'000'000, [&](const IndexRange& range) {
    ++ranges;
    EXPECT_EQ(range.begin, 0);
    EXPECT_EQ(range.end, 1'000'000);
  });
  EXPECT_EQ(ranges, 1);
}

TEST(ParallelLoop, FindsAtLeastOneThreadByItself) {
  const ScopedThreadCount scope(0);
  EXPECT_GE(threadCount(), 1);
}

}  // namespace
}  // namespace gravlin
