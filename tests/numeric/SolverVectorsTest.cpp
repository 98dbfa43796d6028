#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <new>

#include "numeric/SolverVectors.h"
#include "support/CapturedText.h"

namespace gravlin {
namespace {

using test::CapturedText;
using ::testing::ElementsAre;

TEST(SolverVectors, KeepThePlaceOfAnUnusedElement) {
  EXPECT_THAT(dvector(2), ElementsAre(0.0, 0.0, 0.0));
  EXPECT_THAT(dvector(0), ElementsAre(0.0));
}

TEST(SolverVectors, TellWhenTheyDoNotFitInMemory) {
  const CapturedText text;
  EXPECT_THROW(dvector(std::numeric_limits<std::size_t>::max() / 2), std::bad_alloc);
  EXPECT_EQ(text.error,
            "Numerical Recipes run-time error...\nallocation failure in dvector()\n"
            "...now exiting to system...\n");
}

}  // namespace
}  // namespace gravlin
