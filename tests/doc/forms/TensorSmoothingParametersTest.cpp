#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "doc/forms/TensorSmoothingParameters.h"

namespace gravlin {
namespace {

using ::testing::ElementsAre;

TEST(TensorSmoothingParameters, HaveTheDialogsTextsAndDefaults) {
  TensorSmoothingParameters parameters;
  const Form form = parameters.form();
  EXPECT_EQ(form.title, "Tensor Smooth");
  std::vector<std::string> shown;
  for (const Field& field : form.fields) {
    shown.push_back(std::string(field.group) + "|" + std::string(field.label) + "|" +
                    textOf(field) + "|" + std::string(field.unit));
    EXPECT_FALSE(field.range.has_value());
  }
  EXPECT_THAT(shown, ElementsAre("||0|", "|Animate flow|0|", "|per|1|interations",
                                 "Curvature|Iteration|10|", "Curvature|Treshold|0.1|",
                                 "Direction|Iteration|5|", "Direction|Treshold|5|"));
  std::vector<std::string_view> radios;
  for (const Choice& choice : form.fields[0].choices) radios.push_back(choice.text);
  EXPECT_THAT(radios, ElementsAre("max", "min", "max + direction", "min + direction"));
}

}  // namespace
}  // namespace gravlin
