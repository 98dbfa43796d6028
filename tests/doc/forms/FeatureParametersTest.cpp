#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "doc/forms/AngleParameters.h"
#include "doc/forms/RidgeParameters.h"

namespace gravlin {
namespace {

using ::testing::ElementsAre;

/// Box, label, value, text behind, and the range that OK accepts.
std::vector<std::string> shownBy(const Form& form) {
  std::vector<std::string> shown;
  for (const Field& field : form.fields) {
    std::string text = std::string(field.group) + "|" + std::string(field.label) + "|" +
                       textOf(field) + "|" + std::string(field.unit);
    if (field.range) {
      const RangeTexts range = rangeTexts(field);
      text += "|" + range.least + ".." + range.largest;
    }
    shown.push_back(text);
  }
  return shown;
}

std::vector<std::string_view> buttonsOf(const Form& form, std::string_view name) {
  std::vector<std::string_view> texts;
  for (const Field& field : form.fields) {
    if (field.name != name) continue;
    for (const Choice& choice : field.choices) texts.push_back(choice.text);
  }
  return texts;
}

TEST(RidgeParameters, HaveTheDialogsTextsDefaultsAndRanges) {
  RidgeParameters parameters;
  const Form form = parameters.form();
  EXPECT_EQ(form.title, "Ridge Dialog");
  EXPECT_EQ(form.okText, "OK");
  EXPECT_EQ(form.cancelText, "CANCEL");
  EXPECT_THAT(shownBy(form),
              ElementsAre("(1) Pre-Smoothing||0|",                                  //
                          "(2) Curvature Tensor|(2) Curvature Tensor|1|Smoothing",  //
                          "(3) Thresholding||1|",                                   //
                          "(3) Thresholding|Histgram|0.6||0..1",                    //
                          "(3) Thresholding||0.3||0..1",                            //
                          "(3) Thresholding|Constant|2|",                           //
                          "(3) Thresholding||0|",                                   //
                          "(3) Thresholding|Absolute Value Comparison|1|",          //
                          "(4) Connectting|(4) Connectting|1|",                     //
                          "(4) Connectting|Threshold|200|",                         //
                          "(5) Visualization|Ridge direction|0|",                   //
                          "(5) Visualization|Extraction|1|",                        //
                          "(6) Ridge Edge Smoothing|(6) Ridge Edge Smoothing|0|",   //
                          "(6) Ridge Edge Smoothing|Iteration|10|"));
  EXPECT_THAT(buttonsOf(form, "preSmoothing"), ElementsAre("None", "Common", "Adaptive"));
  EXPECT_THAT(buttonsOf(form, "thresholdMode"), ElementsAre("None", "Histgram", "Constant"));
  EXPECT_THAT(buttonsOf(form, "extractOn"), ElementsAre("Vertex", "Edge", "Face"));
}

TEST(RidgeParameters, OnlyFaceAndExtractionAreDisabled) {
  RidgeParameters parameters;
  for (const Field& field : parameters.form().fields) {
    EXPECT_EQ(field.enabled, field.name != "extraction") << field.name;
    for (const Choice& choice : field.choices) {
      EXPECT_EQ(choice.enabled, choice.text != "Face") << choice.text;
    }
  }
}

TEST(AngleParameters, HaveTheDialogsTextsDefaultsAndRanges) {
  AngleParameters parameters;
  const Form form = parameters.form();
  EXPECT_EQ(form.title, "Angle");
  EXPECT_EQ(form.okText, "OK");
  EXPECT_EQ(form.cancelText, "CANCEL");
  EXPECT_THAT(shownBy(form), ElementsAre("Threshold||1|",                                 //
                                         "Threshold|Constant Angle (0-180)|165||0..180",  //
                                         "Threshold|Hi|90||0..100",                       //
                                         "Threshold|Low|80||0..100",                      //
                                         "|Shaded Surface|1|",                            //
                                         "|Pre-smoothing for enhancing creases|0|"));
  EXPECT_THAT(buttonsOf(form, "thresholdMode"),
              ElementsAre("Constant Angle (0-180)", "Histogram(0-100)"));
}

TEST(AngleParameters, DegreesAndPercentBecomeWhatTheAlgorithmsTake) {
  // Two faces at 180 degrees lie in one plane: cos 0. At a right angle the cosine vanishes.
  EXPECT_EQ(AngleParameters{.angle = 180}.cosThreshold(), 1.0F);
  EXPECT_EQ(AngleParameters{.angle = 0}.cosThreshold(), -1.0F);
  EXPECT_NEAR(AngleParameters{.angle = 90}.cosThreshold(), 0.0F, 1e-9F);
  EXPECT_EQ(AngleParameters{.angle = 120}.cosThreshold(), 0.5F);
  const CreaseShares shares = AngleParameters{.histogramHi = 75, .histogramLow = 50}.shares();
  EXPECT_EQ(shares.hi, 0.75F);
  EXPECT_EQ(shares.low, 0.5F);
}

}  // namespace
}  // namespace gravlin
