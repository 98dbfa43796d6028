#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string_view>
#include <vector>

#include "doc/forms/DecimationParameters.h"
#include "doc/forms/SubdivisionParameters.h"

namespace gravlin {
namespace {

TEST(SubdivisionParameters, OfferTheThreeSchemes) {
  SubdivisionParameters parameters;
  const Form form = parameters.form();
  EXPECT_EQ(form.name, "CSubdivisionDlg");
  EXPECT_EQ(form.title, "\uFF80\uFF9E\uFF72\uFF71\uFF9B\uFF78\uFF9E");
  ASSERT_EQ(form.fields.size(), 1U);
  EXPECT_EQ(form.fields[0].label, "method");
  EXPECT_EQ(textOf(form.fields[0]), "Loop");
  std::vector<std::string_view> texts;
  for (const Choice& choice : form.fields[0].choices) texts.push_back(choice.text);
  EXPECT_THAT(texts, ::testing::ElementsAre("Loop", "Modified butterfly", "Linear"));
  EXPECT_EQ(storeText(form.fields[0], "Normal averaging(angle)"), "");
  EXPECT_EQ(parameters.method, "Normal averaging(angle)");
}

TEST(SubdivisionParameters, SchemeIsFoundByItsExactTextAndIsLinearOtherwise) {
  const auto schemeOf = [](const char* text) {
    return SubdivisionParameters{.method = text}.scheme();
  };
  EXPECT_EQ(SubdivisionParameters{}.scheme(), SubdivisionScheme::Loop);
  EXPECT_EQ(schemeOf("Loop"), SubdivisionScheme::Loop);
  EXPECT_EQ(schemeOf("Modified butterfly"), SubdivisionScheme::Butterfly);
  for (const char* text : {"Linear", "", "loop", "Loop ", "Modified Butterfly"}) {
    EXPECT_EQ(schemeOf(text), SubdivisionScheme::Linear) << text;
  }
}

TEST(DecimationParameters, TakeAnyRate) {
  DecimationParameters parameters;
  const Form form = parameters.form();
  EXPECT_EQ(form.name, "CDecimationDlg");
  EXPECT_EQ(form.title, "Decimation");
  ASSERT_EQ(form.fields.size(), 1U);
  EXPECT_EQ(form.fields[0].label, "Reduction rate (0-1)");
  EXPECT_EQ(textOf(form.fields[0]), "0.5");
  EXPECT_EQ(storeText(form.fields[0], "-3"), "");
  EXPECT_EQ(parameters.reductionRate, -3.0F);
}

}  // namespace
}  // namespace gravlin
