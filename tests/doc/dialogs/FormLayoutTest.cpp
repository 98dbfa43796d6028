#include <gtest/gtest.h>

#include "doc/dialogs/FormLayout.h"

namespace gravlin {
namespace {

int number = 0;
bool flag = false;
std::string text;

Field numberField(std::string_view label, std::string_view group = {}) {
  return {.name = "n", .label = label, .value = &number, .group = group};
}

Field radioField(std::vector<Choice> choices, std::string_view group = {}) {
  return {
      .name = "r", .label = "", .value = &number, .group = group, .choices = std::move(choices)};
}

Form formOf(std::vector<Field> fields) {
  return {"CDlg", "Title", std::move(fields)};
}

TEST(FormLayout, TheKindOfControlFollowsFromTheMembersTypeAndItsChoices) {
  EXPECT_EQ(kindOf({.name = "f", .label = "", .value = &flag}), ControlKind::CheckBox);
  EXPECT_EQ(kindOf(numberField("")), ControlKind::TypedText);
  EXPECT_EQ(kindOf(radioField({{"a", "a"}})), ControlKind::RadioGroup);
  EXPECT_EQ(kindOf({.name = "s", .label = "", .value = &text, .choices = {{"a", ""}}}),
            ControlKind::ComboBox);
}

TEST(FormLayout, FieldsOfOneGroupAreOneSectionWhereverTheyStand) {
  const auto sections =
      sectionsOf(formOf({numberField("a", "G"), numberField("b", "H"), numberField("c", "G")}));
  ASSERT_EQ(sections.size(), 2U);
  EXPECT_EQ(sections[0].fields, (std::vector<std::size_t>{0, 2}));
  EXPECT_EQ(sections[1].fields, (std::vector<std::size_t>{1}));
}

TEST(FormLayout, FieldsWithoutAGroupStayBetweenTheBoxes) {
  const auto sections = sectionsOf(
      formOf({numberField("a"), numberField("b"), numberField("c", "G"), numberField("d")}));
  ASSERT_EQ(sections.size(), 3U);
  EXPECT_EQ(sections[0].fields, (std::vector<std::size_t>{0, 1}));
  EXPECT_EQ(sections[1].title, "G");
  EXPECT_EQ(sections[2].fields, (std::vector<std::size_t>{3}));
}

TEST(FormLayout, ANumberLabelledLikeAButtonStandsBesideIt) {
  const Form form = formOf({radioField({{"None", "none"}, {"Constant", "constant"}}, "G"),
                            numberField("Constant", "G"), numberField("Other", "G")});
  const auto companions = companionsOf(form);
  EXPECT_FALSE(companions[0]);
  ASSERT_TRUE(companions[1]);
  EXPECT_EQ(*companions[1], (ButtonPlace{0, 1}));
  EXPECT_FALSE(companions[2]);
}

TEST(FormLayout, NumbersWithoutALabelFollowTheNumberBesideTheButton) {
  const Form form = formOf({radioField({{"Histgram", "histogram"}}), numberField("Histgram"),
                            numberField(""), numberField("Hi"), numberField("")});
  const auto companions = companionsOf(form);
  EXPECT_TRUE(companions[1]);
  EXPECT_TRUE(companions[2]);
  EXPECT_FALSE(companions[3]);
  EXPECT_FALSE(companions[4]);
}

TEST(FormLayout, AButtonOfAnotherGroupTakesNoNumber) {
  const Form form = formOf({radioField({{"Constant", "constant"}}, "G"), numberField("Constant")});
  EXPECT_FALSE(companionsOf(form)[1]);
}

TEST(FormLayout, AFieldIsNamedByWhatStandsAroundIt) {
  Field withUnit = numberField("per", "Animation");
  withUnit.unit = "interations";
  const Form form = formOf({numberField("Iteration"), withUnit, numberField("Edges", "Edges")});
  EXPECT_EQ(nameInWords(form, 0), "Iteration");
  EXPECT_EQ(nameInWords(form, 1), "Animation: per ... interations");
  EXPECT_EQ(nameInWords(form, 2), "Edges");
}

TEST(FormLayout, ANumberWithoutALabelIsCountedFromTheLastOneThatHasOne) {
  const Form form = formOf({numberField("Hi", "G"), numberField("", "G"), numberField("", "G"),
                            numberField("", "H"), numberField("")});
  EXPECT_EQ(nameInWords(form, 1), "G: Hi (2)");
  EXPECT_EQ(nameInWords(form, 2), "G: Hi (3)");
  EXPECT_EQ(nameInWords(form, 3), "H");
  EXPECT_EQ(nameInWords(form, 4), "Title");
}

TEST(FormLayout, OnlyFewAndShortButtonsFitOneRow) {
  EXPECT_TRUE(fitsOneRow(radioField({{"Vertex", ""}, {"Edge", ""}, {"Face", ""}})));
  EXPECT_FALSE(fitsOneRow(
      radioField({{"max", ""}, {"min", ""}, {"max + direction", ""}, {"min + direction", ""}})));
}

}  // namespace
}  // namespace gravlin
