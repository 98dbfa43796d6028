#include <gtest/gtest.h>
#include <utility>

#include "doc/forms/NoiseParameters.h"
#include "doc/forms/SmoothingParameters.h"

namespace gravlin {
namespace {

TEST(SmoothingParameters, OfferTheNineMethodsInOrder) {
  SmoothingParameters parameters;
  const Form form = parameters.form();
  EXPECT_EQ(form.name, "CSmoothingDlg");
  EXPECT_EQ(form.title, "Smoothing");
  const Field& method = form.fields[0];
  ASSERT_EQ(method.choices.size(), 9U);
  EXPECT_EQ(method.choices[0].text, "Laplacian Flow");
  EXPECT_EQ(method.choices[8].text, "Bilaplacian (Kobbelt)");
  for (std::size_t i = 0; i < 9; ++i) {
    parameters.method = method.choices[i].text;
    EXPECT_EQ(parameters.chosenMethod(), static_cast<SmoothingMethod>(i));
  }
}

TEST(SmoothingParameters, MethodsAreFoundByTheirExactTextOnly) {
  SmoothingParameters parameters;
  parameters.method = "Taubin Smoothing (k=0.1, w = 1/d)";
  EXPECT_EQ(parameters.chosenMethod(), SmoothingMethod::TaubinInverseDistance);
  for (const char* text : {"", "laplacian flow", "Laplacian Flow ", " Laplacian Flow",
                           "Taubin Smoothing (k=0.1, w=1/d)"}) {
    parameters.method = text;
    EXPECT_EQ(parameters.chosenMethod(), std::nullopt) << text;
  }
}

TEST(SmoothingParameters, HaveTheDialogsTexts) {
  SmoothingParameters parameters;
  std::vector<std::string> shown;
  for (const Field& field : parameters.form().fields) {
    shown.push_back(std::string(field.label) + "|" + std::string(field.unit));
  }
  EXPECT_EQ(shown,
            (std::vector<std::string>{"Method|", "Iteration|", "Step Size|", "Animate flow|",
                                      "per|interations", "Volume prevervation by re-scaling|"}));
}

TEST(SmoothingParameters, StartWithTheirDefaults) {
  SmoothingParameters parameters;
  std::vector<std::string> texts;
  for (const Field& field : parameters.form().fields) texts.push_back(textOf(field));
  EXPECT_EQ(texts, (std::vector<std::string>{"Laplacian Flow", "10", "0.5", "1", "1", "1"}));
}

TEST(SmoothingParameters, CheckTheIterationsOnly) {
  SmoothingParameters parameters;
  const Form form = parameters.form();
  EXPECT_EQ(storeText(form.fields[1], "10001"), "Enter an integer between 1 and 10000.");
  EXPECT_EQ(storeText(form.fields[1], "0"), "Enter an integer between 1 and 10000.");
  EXPECT_EQ(storeText(form.fields[1], "10000"), "");
  EXPECT_EQ(storeText(form.fields[2], "-1e9"), "");
  EXPECT_EQ(storeText(form.fields[4], "-4"), "");
  EXPECT_EQ(parameters.iterationCount, 10000);
  EXPECT_EQ(parameters.animateEvery, -4);
}

TEST(SmoothingParameters, TakeAnyTextForTheMethod) {
  SmoothingParameters parameters;
  EXPECT_EQ(storeText(parameters.form().fields[0], "Something else"), "");
  EXPECT_EQ(parameters.method, "Something else");
}

TEST(NoiseParameters, AskForTheSizeOnly) {
  NoiseParameters parameters;
  const Form form = parameters.form();
  EXPECT_EQ(form.name, "CNoiseDlg");
  EXPECT_EQ(form.title, "Noise");
  ASSERT_EQ(form.fields.size(), 1U);
  EXPECT_EQ(form.fields[0].label, "Noise Size");
  EXPECT_EQ(textOf(form.fields[0]), "0.05");
}

TEST(NoiseParameters, TakeAnyFiniteSize) {
  NoiseParameters parameters;
  const Form form = parameters.form();
  for (const auto& [text, size] :
       {std::pair<const char*, float>{"-0.05", -0.05F}, {"-3e38", -3e38F}, {"3e38", 3e38F}}) {
    EXPECT_EQ(storeText(form.fields[0], text), "");
    EXPECT_EQ(parameters.noiseSize, size);
  }
  EXPECT_EQ(storeText(form.fields[0], "1e39"), "Enter any finite number.");
}

}  // namespace
}  // namespace gravlin
