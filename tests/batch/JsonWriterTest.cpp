#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <nlohmann/json.hpp>

#include "batch/BatchRun.h"
#include "batch/JsonWriter.h"

namespace gravlin {
namespace {

/// What `write` leaves in a file.
template <class Write>
std::string written(Write write) {
  const test::TemporaryFolder folder;
  const std::string path = folder.file("text");
  std::FILE* stream = std::fopen(path.c_str(), "w");
  {
    JsonWriter json(stream);
    write(json);
  }
  std::fclose(stream);
  return test::contentOf(path);
}

template <class Number>
std::string textOfNumber(Number number) {
  return written([&](JsonWriter& json) { json.value(number); });
}

TEST(JsonWriter, PutsCommasBetweenAndNowhereElse) {
  EXPECT_EQ(written([](JsonWriter& json) {
              json.beginObject();
              json.key("empty");
              json.beginArray();
              json.endArray();
              json.key("list");
              json.beginArray();
              json.value(1);
              json.beginArray();
              json.value(2);
              json.null();
              json.endArray();
              json.value(true);
              json.endArray();
              json.key("object");
              json.beginObject();
              json.endObject();
              json.endObject();
              json.endText();
            }),
            "{\n\"empty\": [],\n\"list\": [1,[2,null],true],\n\"object\": {}}\n");
}

TEST(JsonWriter, WritesTheShortestTextThatReadsBackToTheSameNumber) {
  EXPECT_EQ(textOfNumber(0.1F), "0.1");
  EXPECT_EQ(textOfNumber(0.1), "0.1");
  EXPECT_EQ(textOfNumber(static_cast<double>(0.1F)), "0.10000000149011612");
  EXPECT_EQ(textOfNumber(-0.0F), "-0");
  EXPECT_EQ(textOfNumber(std::numeric_limits<int>::min()), "-2147483648");
  for (const double number : {1.0 / 3.0, 1e-310, 5e-324, 1.7976931348623157e308, 123456789.0}) {
    EXPECT_EQ(std::strtod(textOfNumber(number).c_str(), nullptr), number);
  }
  for (const float number : {1.0F / 3.0F, 1e-45F, 3.4028235e38F, 16777216.0F}) {
    EXPECT_EQ(std::strtof(textOfNumber(number).c_str(), nullptr), number);
  }
}

TEST(JsonWriter, WritesNumbersThatAreNotFiniteAsStrings) {
  for (const double sign : {1.0, -1.0}) {
    EXPECT_EQ(textOfNumber(std::copysign(std::numeric_limits<double>::quiet_NaN(), sign)),
              "\"nan\"");
  }
  EXPECT_EQ(textOfNumber(std::numeric_limits<float>::infinity()), "\"inf\"");
  EXPECT_EQ(textOfNumber(-std::numeric_limits<double>::infinity()), "\"-inf\"");
}

TEST(JsonWriter, QuotesTextSoThatItReadsBack) {
  const std::string text = "a \"b\" \\ \n\x01 \xc3\xa4";
  const std::string json = written([&](JsonWriter& writer) { writer.value(text); });
  EXPECT_EQ(nlohmann::json::parse(json).get<std::string>(), text);
}

TEST(JsonWriter, KeepsEveryNumberOfALongListAcrossItsBuffer) {
  std::vector<double> numbers;
  for (int i = 0; i < 30000; ++i) numbers.push_back(std::sqrt(i));
  const std::string json = written([&](JsonWriter& writer) { writer.array(numbers); });
  EXPECT_EQ(nlohmann::json::parse(json).get<std::vector<double>>(), numbers);
}

}  // namespace
}  // namespace gravlin
