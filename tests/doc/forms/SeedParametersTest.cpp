#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "doc/forms/SeedParameters.h"

namespace gravlin {
namespace {

using ::testing::SizeIs;

TEST(SeedParameters, HaveTheDialogsTextDefaultAndRange) {
  SeedParameters parameters;
  const Form form = parameters.form();
  EXPECT_EQ(form.title, "Stroke");
  ASSERT_THAT(form.fields, SizeIs(1));
  EXPECT_EQ(form.fields[0].label, "Amount of Seed");
  EXPECT_EQ(textOf(form.fields[0]), "2000");
  EXPECT_EQ(storeText(form.fields[0], "1000001"), "Enter an integer between 0 and 1000000.");
  EXPECT_EQ(storeText(form.fields[0], "-1"), "Enter an integer between 0 and 1000000.");
  EXPECT_EQ(storeText(form.fields[0], "1000000"), "");
  EXPECT_EQ(parameters.seedAmount, 1000000);
}

}  // namespace
}  // namespace gravlin
