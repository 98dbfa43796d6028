#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "doc/forms/AdaptiveSmoothingParameters.h"

namespace gravlin {
namespace {

TEST(AdaptiveSmoothingParameters, HoldEveryFieldWithItsDefault) {
  AdaptiveSmoothingParameters parameters;
  const Form form = parameters.form();
  EXPECT_EQ(form.name, "CAdaptiveSmoothingDlg");
  EXPECT_EQ(form.title, "Adaptive Smoothing");
  EXPECT_EQ(form.okText, "OK");
  EXPECT_EQ(form.cancelText, "CANCEL");
  std::vector<std::string> shown;
  for (const Field& field : form.fields) {
    std::ostringstream line;
    line << field.name << ": " << field.group << '|' << field.label << '|' << field.unit << '|'
         << textOf(field);
    for (const Choice& choice : field.choices) line << '|' << choice.text;
    shown.push_back(line.str());
  }
  EXPECT_THAT(shown,
              ::testing::UnorderedElementsAre(
                  "outerIterations: |Outer Iteration||10", "threshold: |Threshold||1",
                  "meetAtVertex: |Meet at vertex effect[0:1]||0.5", "animate: |Animate flow||1",
                  "animateEvery: |per|interations|1",
                  "integrationError: Face Normal Integration|||1|Distance error|Derivative error",
                  "integrationIterations: Face Normal Integration|Inner iteration||10",
                  "integrationStep: Face Normal Integration|Step size||0.1",
                  "averagingIterations: Face Normal Averaging|Inner iteration||1",
                  "weightShape: Face Normal Averaging|||1|Similar func.|Exp. func.",
                  "derivativeVariant: Face Normal Integration|L~2*||1",
                  "medianWeighted: Face Normal Averaging|Weighted||1",
                  "normalDifference: Difference of normals|||1|Curvature|Angle",
                  "averagingKind: Face Normal Averaging|||1|Weight function|Median"));
}

TEST(AdaptiveSmoothingParameters, RefuseSharesOutsideZeroToOneOnly) {
  AdaptiveSmoothingParameters parameters;
  for (const Field& field : parameters.form().fields) {
    const bool share = field.name == "meetAtVertex" || field.name == "integrationStep";
    EXPECT_EQ(field.range.has_value(), share) << field.name;
    if (!share) continue;
    EXPECT_EQ(storeText(field, "1.5"), "Enter a number between 0 and 1.");
    EXPECT_EQ(storeText(field, "0"), "");
    EXPECT_EQ(storeText(field, "1"), "");
  }
}

TEST(AdaptiveSmoothingParameters, EveryValueOfTheAlgorithmReachesItsOptions) {
  AdaptiveSmoothingParameters parameters;
  const std::vector<std::pair<std::string_view, std::string>> typed = {
      {"threshold", "2.5"},
      {"meetAtVertex", "0.25"},
      {"integrationError", "distance"},
      {"integrationIterations", "7"},
      {"integrationStep", "0.75"},
      {"averagingIterations", "3"},
      {"weightShape", "similar"},
      {"derivativeVariant", "4"},
      {"medianWeighted", "0"},
      {"normalDifference", "curvature"}};
  for (const Field& field : parameters.form().fields) {
    for (const auto& [name, text] : typed) {
      if (field.name != name) continue;
      EXPECT_EQ(storeText(field, text), "");
    }
  }
  const AdaptiveSmoothingOptions options = parameters.options();
  EXPECT_EQ(options.threshold, 2.5F);
  EXPECT_EQ(options.meetAtVertex, 0.25F);
  EXPECT_EQ(options.integrationError, DistanceError);
  EXPECT_EQ(options.integrationIterations, 7);
  EXPECT_EQ(options.integrationStep, 0.75F);
  EXPECT_EQ(options.averagingIterations, 3);
  EXPECT_EQ(options.weightShape, SimilarWeight);
  EXPECT_EQ(options.derivativeVariant, 4);
  EXPECT_FALSE(options.medianWeighted);
  EXPECT_EQ(options.normalDifference, CurvatureDifference);
}

TEST(AdaptiveSmoothingParameters, DefaultsAreThoseOfTheAlgorithm) {
  const AdaptiveSmoothingOptions shown = AdaptiveSmoothingParameters{}.options();
  const AdaptiveSmoothingOptions own;
  EXPECT_EQ(
      std::tie(shown.threshold, shown.meetAtVertex, shown.integrationError,
               shown.integrationIterations, shown.integrationStep, shown.averagingIterations,
               shown.weightShape, shown.derivativeVariant, shown.medianWeighted,
               shown.normalDifference),
      std::tie(own.threshold, own.meetAtVertex, own.integrationError, own.integrationIterations,
               own.integrationStep, own.averagingIterations, own.weightShape, own.derivativeVariant,
               own.medianWeighted, own.normalDifference));
}

}  // namespace
}  // namespace gravlin
