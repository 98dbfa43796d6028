#include <gtest/gtest.h>
#include <numeric>
#include <vector>

#include "numeric/BlockAppender.h"

namespace gravlin {
namespace {

TEST(BlockAppender, AppendsEverythingInOrderBehindWhatIsThere) {
  for (const int count : {0, 1, 10, 1023, 1024, 1025, 5000}) {
    std::vector<int> appended = {-2, -1};
    appended.reserve(static_cast<std::size_t>(count) + 2);
    {
      BlockAppender<int> appender(appended);
      for (int k = 0; k < count; ++k) appender.append(k);
    }
    std::vector<int> wanted(static_cast<std::size_t>(count) + 2);
    std::iota(wanted.begin(), wanted.end(), -2);
    EXPECT_EQ(appended, wanted) << count;
  }
}

TEST(BlockAppender, GivesRoomForSeveralNumbersAtOnce) {
  // 7 does not divide the size of a block, so pieces end before it does.
  std::vector<float> appended;
  std::vector<float> wanted;
  appended.reserve(std::size_t{7} * 500);
  {
    BlockAppender<float> appender(appended);
    for (int k = 0; k < 500; ++k) {
      float* room = appender.take(7);
      for (int n = 0; n < 7; ++n) {
        room[n] = static_cast<float>(10 * k + n);
        wanted.push_back(room[n]);
      }
    }
  }
  EXPECT_EQ(appended, wanted);
}

}  // namespace
}  // namespace gravlin
