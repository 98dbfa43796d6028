#include <gtest/gtest.h>

#include "numeric/TextSink.h"
#include "support/CapturedText.h"

namespace gravlin {
namespace {

TEST(TextSink, KeepsTheTwoStreamsApart) {
  const test::CapturedText text;
  writeText(TextStream::Output, "pass\n");
  writeText(TextStream::Error, "failure\n");
  EXPECT_EQ(text.output, "pass\n");
  EXPECT_EQ(text.error, "failure\n");
}

TEST(TextSink, ComesBackWhenTheScopeEnds) {
  const test::CapturedText outer;
  {
    const test::CapturedText inner;
    writeText(TextStream::Output, "inside");
    EXPECT_EQ(inner.output, "inside");
  }
  writeText(TextStream::Output, "outside");
  EXPECT_EQ(outer.output, "outside");
}

TEST(TextSink, IsTheStandardStreamsAtFirst) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  writeText(TextStream::Output, "to standard output\n");
  writeText(TextStream::Error, "to standard error\n");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "to standard output\n");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "to standard error\n");
}

TEST(TextSink, WritesNothingWhenQuiet) {
  const ScopedTextSink quiet(quietTextSink());
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  writeText(TextStream::Output, "pass\n");
  writeText(TextStream::Error, "failure\n");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

}  // namespace
}  // namespace gravlin
