#include <gtest/gtest.h>
#include <limits>
#include <locale>

#include "doc/forms/Form.h"

namespace gravlin {
namespace {

/// A field over a member that stands beside it, with the value the member had before each test.
template <class Value>
struct Edited {
  explicit Edited(Value start) : value(start) { field.value = &value; }
  Edited(const Edited&) = delete;
  Edited& operator=(const Edited&) = delete;

  Value value;
  Field field;
};

struct EditedInt : Edited<int> {
  explicit EditedInt(std::optional<Range> range = std::nullopt) : Edited(7) { field.range = range; }
};
struct EditedFloat : Edited<float> {
  explicit EditedFloat(std::optional<Range> range = std::nullopt) : Edited(0.25F) {
    field.range = range;
  }
};

/// A decimal comma and a point between thousands, as in much of the world.
struct CommaPunctuation : std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

class GlobalLocale {
 public:
  explicit GlobalLocale(const std::locale& locale) : before(std::locale::global(locale)) {}
  ~GlobalLocale() { std::locale::global(before); }
  GlobalLocale(const GlobalLocale&) = delete;
  GlobalLocale& operator=(const GlobalLocale&) = delete;

 private:
  std::locale before;
};

TEST(KebabCase, PutsAHyphenBeforeEachCapital) {
  EXPECT_EQ(kebabCase("iterationCount"), "iteration-count");
  EXPECT_EQ(kebabCase("rx"), "rx");
  EXPECT_EQ(kebabCase("meetAtVertex"), "meet-at-vertex");
  EXPECT_EQ(kebabCase(""), "");
}

TEST(TextOf, ShowsTheShortestTextThatReadsBackToTheSameFloat) {
  EditedFloat edited;
  for (const float value :
       {0.0F, 0.1F, 1.0F, -2.5F, 200.0F, 1.0F / 3.0F, 16777216.0F, 1e-30F,
        std::numeric_limits<float>::max(), std::numeric_limits<float>::denorm_min()}) {
    edited.value = value;
    const std::string text = textOf(edited.field);
    edited.value = -1.0F;
    EXPECT_EQ(storeText(edited.field, text), "");
    EXPECT_EQ(edited.value, value) << text;
  }
  edited.value = 0.1F;
  EXPECT_EQ(textOf(edited.field), "0.1");
  edited.value = 1.0F;
  EXPECT_EQ(textOf(edited.field), "1");
}

TEST(TextOf, ShowsIntegersSwitchesTextsAndTheIndexOfAChoice) {
  Edited<int> number(-12);
  EXPECT_EQ(textOf(number.field), "-12");
  Edited<bool> box(true);
  EXPECT_EQ(textOf(box.field), "1");
  box.value = false;
  EXPECT_EQ(textOf(box.field), "0");
  Edited<std::string> text("Loop");
  EXPECT_EQ(textOf(text.field), "Loop");
  Edited<int> radio(1);
  radio.field.choices = {{"Distance error", "distance"}, {"Derivative error", "derivative"}};
  EXPECT_EQ(textOf(radio.field), "1");
}

TEST(StoreText, TakesIntegersWithASignAndBlanksAround) {
  EditedInt edited;
  for (const auto& [text, value] : {std::pair<std::string_view, int>{"42", 42},
                                    {" 42\t", 42},
                                    {"-3", -3},
                                    {"+5", 5},
                                    {"0010", 10},
                                    {"2147483647", 2147483647},
                                    {"-2147483648", -2147483647 - 1}}) {
    EXPECT_EQ(storeText(edited.field, text), "") << text;
    EXPECT_EQ(edited.value, value) << text;
  }
}

TEST(StoreText, RefusesTextThatIsNoIntegerAndKeepsTheValue) {
  for (const std::optional<Range>& range : {std::optional<Range>(), std::optional<Range>({1, 9})}) {
    EditedInt edited(range);
    for (const std::string_view text : {"", " ", "x", "1.5", "1e3", "5 5", "5x", "--5", "0x10",
                                        "1,000", "nan", "inf", "\xef\xbc\x95"}) {
      EXPECT_EQ(storeText(edited.field, text), "Enter an integer.") << text;
      EXPECT_EQ(edited.value, 7) << text;
    }
  }
}

TEST(StoreText, AcceptsBothEndsOfAnIntegerRangeAndNothingBeyond) {
  EditedInt edited(Range{1, 10000});
  EXPECT_EQ(storeText(edited.field, "1"), "");
  EXPECT_EQ(storeText(edited.field, "10000"), "");
  EXPECT_EQ(edited.value, 10000);
  for (const std::string_view text : {"0", "10001", "-1", "99999999999999999999"}) {
    EXPECT_EQ(storeText(edited.field, text), "Enter an integer between 1 and 10000.") << text;
    EXPECT_EQ(edited.value, 10000) << text;
  }
}

TEST(StoreText, WritesTheEndsOfALargeIntegerRangeInDigits) {
  EditedInt edited(Range{0, 1000000});
  EXPECT_EQ(storeText(edited.field, "-1"), "Enter an integer between 0 and 1000000.");
}

TEST(StoreText, NamesTheRangeOfTheTypeWhenAnUnlimitedIntegerOverflows) {
  EditedInt edited;
  for (const std::string_view text : {"2147483648", "-2147483649", "99999999999999999999999"}) {
    EXPECT_EQ(storeText(edited.field, text),
              "Enter an integer between -2147483648 and 2147483647.");
    EXPECT_EQ(edited.value, 7);
  }
  EXPECT_EQ(storeText(edited.field, "2147483648x"), "Enter an integer.");
}

TEST(StoreText, TakesNumbersInDecimalAndScientificNotation) {
  EditedFloat edited;
  for (const auto& [text, value] : {std::pair<std::string_view, float>{"0.5", 0.5F},
                                    {" 3 ", 3.0F},
                                    {"-1e-2", -0.01F},
                                    {"+.5", 0.5F},
                                    {"5.", 5.0F},
                                    {"1E3", 1000.0F},
                                    {"1e-60", 0.0F},
                                    {"1e-40", 1e-40F}}) {
    EXPECT_EQ(storeText(edited.field, text), "") << text;
    EXPECT_EQ(edited.value, value) << text;
  }
}

TEST(StoreText, RoundsANumberOnceToSinglePrecision) {
  // Just above the middle between two floats: by way of a double it would round down to 1.
  EditedFloat edited;
  EXPECT_EQ(storeText(edited.field, "1.00000005960464477539062500000001"), "");
  EXPECT_EQ(edited.value, 1.0F + std::numeric_limits<float>::epsilon());
}

TEST(StoreText, RefusesTextThatIsNoNumberAndKeepsTheValue) {
  for (const std::optional<Range>& range : {std::optional<Range>(), std::optional<Range>({0, 1})}) {
    EditedFloat edited(range);
    for (const std::string_view text : {"", "x", "0,5", "1e", "1e+", ".", "-", "0.5 m", "0.5.5",
                                        "nan", "NaN", "inf", "-inf", "infinity", "0x1p-1"}) {
      EXPECT_EQ(storeText(edited.field, text), "Enter a number.") << text;
      EXPECT_EQ(edited.value, 0.25F) << text;
    }
  }
}

TEST(StoreText, AcceptsBothEndsOfANumberRangeAndNothingBeyond) {
  EditedFloat edited(Range{0, 100});
  EXPECT_EQ(storeText(edited.field, "0"), "");
  EXPECT_EQ(storeText(edited.field, "100"), "");
  for (const std::string_view text : {"100.001", "-0.001", "1e39", "-1e39", "1e999999999999"}) {
    EXPECT_EQ(storeText(edited.field, text), "Enter a number between 0 and 100.") << text;
    EXPECT_EQ(edited.value, 100.0F) << text;
  }
}

TEST(StoreText, AsksForAFiniteNumberWhenAnUnlimitedOneOverflows) {
  EditedFloat edited;
  for (const std::string_view text : {"1e39", "-4e38", "1e400"}) {
    EXPECT_EQ(storeText(edited.field, text), "Enter any finite number.");
    EXPECT_EQ(edited.value, 0.25F);
  }
}

TEST(StoreText, ReadsAndShowsAPointWhateverTheLocale) {
  const GlobalLocale comma(std::locale(std::locale::classic(), new CommaPunctuation));
  EditedFloat edited(Range{0.5, 2000});
  EXPECT_EQ(storeText(edited.field, "1234.5"), "");
  EXPECT_EQ(edited.value, 1234.5F);
  EXPECT_EQ(textOf(edited.field), "1234.5");
  EXPECT_EQ(storeText(edited.field, "1,5"), "Enter a number.");
  EXPECT_EQ(storeText(edited.field, "0"), "Enter a number between 0.5 and 2000.");
}

TEST(StoreText, TakesZeroOrOneForACheckBox) {
  Edited<bool> edited(false);
  EXPECT_EQ(storeText(edited.field, "1"), "");
  EXPECT_TRUE(edited.value);
  EXPECT_EQ(storeText(edited.field, "yes"), "Enter 0 or 1.");
  EXPECT_TRUE(edited.value);
  EXPECT_EQ(storeText(edited.field, "0"), "");
  EXPECT_FALSE(edited.value);
}

TEST(StoreText, TakesIndexOrWordOfARadioButtonAlsoOfADisabledOne) {
  Edited<int> edited(0);
  edited.field.choices = {{"Vertex", "vertex"}, {"Edge", "edge"}, {"Face", "face", false}};
  EXPECT_EQ(storeText(edited.field, "edge"), "");
  EXPECT_EQ(edited.value, 1);
  EXPECT_EQ(storeText(edited.field, "0"), "");
  EXPECT_EQ(edited.value, 0);
  EXPECT_EQ(storeText(edited.field, "face"), "");
  EXPECT_EQ(edited.value, 2);
  for (const std::string_view text : {"3", "-1", "Edge", "", "edges"}) {
    EXPECT_EQ(storeText(edited.field, text), "Choose one of vertex, edge, face.") << text;
    EXPECT_EQ(edited.value, 2);
  }
}

TEST(StoreText, TakesAnyTextForAComboBox) {
  Edited<std::string> edited("Loop");
  edited.field.choices = {{"Loop", ""}, {"Linear", ""}};
  for (const std::string_view text : {"Linear", "Normal averaging(angle)", "", " Loop"}) {
    EXPECT_EQ(storeText(edited.field, text), "");
    EXPECT_EQ(edited.value, text);
  }
}

TEST(StoreSettings, AllAreStoredOrNone) {
  int count = 3;
  float size = 0.5F;
  bool on = false;
  std::string text = "old";
  const Form form = {"CDlg",
                     "Dialog",
                     {{.name = "count", .value = &count, .range = {{1, 9}}},
                      {.name = "size", .value = &size},
                      {.name = "on", .value = &on},
                      {.name = "text", .value = &text}}};
  const std::vector<Setting> bad = {
      {"text", "new"}, {"on", "1"}, {"size", "2"}, {"count", "10"}, {"size", "x"}};
  const std::optional<Refusal> refusal = storeSettings(form, bad);
  ASSERT_TRUE(refusal.has_value());
  EXPECT_EQ(refusal->setting, 3U);
  EXPECT_EQ(refusal->sentence, "Enter an integer between 1 and 9.");
  EXPECT_EQ(text, "old");
  EXPECT_FALSE(on);
  EXPECT_EQ(size, 0.5F);

  const std::vector<Setting> good = {{"text", "new"}, {"on", "1"}, {"count", "9"}, {"count", "8"}};
  EXPECT_FALSE(storeSettings(form, good).has_value());
  EXPECT_EQ(text, "new");
  EXPECT_TRUE(on);
  EXPECT_EQ(count, 8);
  EXPECT_EQ(size, 0.5F);
}

}  // namespace
}  // namespace gravlin
