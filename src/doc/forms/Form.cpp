#include "doc/forms/Form.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <locale>
#include <sstream>
#include <type_traits>
#include <utility>

namespace gravlin {
namespace {

template <class... Cases>
struct Overloaded : Cases... {
  using Cases::operator()...;
};
template <class... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

template <class Number>
std::string shortestText(Number value) {
  char text[64];
  return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

constexpr std::string_view kindOfNumber(int) {
  return "an integer";
}
constexpr std::string_view kindOfNumber(float) {
  return "a number";
}

template <class Number>
std::string refusal() {
  return "Enter " + std::string(kindOfNumber(Number{})) + ".";
}

template <class Number>
Range rangeOf(const Field& field) {
  using Limits = std::numeric_limits<Number>;
  return field.range.value_or(
      Range{static_cast<double>(Limits::lowest()), static_cast<double>(Limits::max())});
}

template <class Number>
RangeTexts textsOf(const Range& range) {
  return {shortestText(static_cast<Number>(range.least)),
          shortestText(static_cast<Number>(range.largest))};
}

/// A number too large for its type lies outside every range, and outside the type's own when there
/// is no other. A float too small to be told from 0 is 0.
template <class Number>
std::string storeNumber(const Field& field, Number& member, std::string_view text) {
  using Limits = std::numeric_limits<Number>;
  std::istringstream stream{std::string(text)};
  stream.imbue(std::locale::classic());
  Number value{};
  stream >> value;
  // A failed extraction leaves 0 for text that is no number and the nearest limit for one that the
  // type cannot hold.
  const bool overflow = stream.fail() && (value == Limits::max() || value == Limits::lowest());
  if (stream.fail() && !overflow) return refusal<Number>();
  stream.clear();
  stream >> std::ws;
  if (!stream.eof()) return refusal<Number>();

  const Range range = rangeOf<Number>(field);
  const double wide = static_cast<double>(value);
  if (overflow || wide < range.least || wide > range.largest) {
    if (std::is_same_v<Number, float> && !field.range) return "Enter any finite number.";
    const RangeTexts ends = rangeTexts(field);
    return "Enter " + std::string(kindOfNumber(Number{})) + " between " + ends.least + " and " +
           ends.largest + ".";
  }
  member = value;
  return {};
}

std::string storeSwitch(bool& member, std::string_view text) {
  if (text != "0" && text != "1") return "Enter 0 or 1.";
  member = text == "1";
  return {};
}

std::string storeChoice(const Field& field, int& member, std::string_view text) {
  std::string words;
  for (std::size_t k = 0; k < field.choices.size(); ++k) {
    const std::string_view word = field.choices[k].word;
    const int index = static_cast<int>(k);
    if (text == word || text == shortestText(index)) {
      member = index;
      return {};
    }
    words += (k == 0 ? "" : ", ") + std::string(word);
  }
  return "Choose one of " + words + ".";
}

/// The sentence that refuses `text` for this field, or nothing; the member stays as it is.
std::string complaintAbout(const Field& field, const std::string& text) {
  return std::visit(
      [&](auto* member) {
        auto scratch = *member;
        Field copy = field;
        copy.value = &scratch;
        return storeText(copy, text);
      },
      field.value);
}

}  // namespace

std::string kebabCase(std::string_view lowerCamelCase) {
  std::string kebab;
  for (const char c : lowerCamelCase) {
    const bool capital = c >= 'A' && c <= 'Z';
    if (capital) kebab += '-';
    kebab += capital ? static_cast<char>(c - 'A' + 'a') : c;
  }
  return kebab;
}

std::string textOf(const Field& field) {
  return std::visit(Overloaded{[](const bool* member) { return std::string(*member ? "1" : "0"); },
                               [](const std::string* member) { return *member; },
                               [](const auto* number) { return shortestText(*number); }},
                    field.value);
}

RangeTexts rangeTexts(const Field& field) {
  return std::holds_alternative<int*>(field.value) ? textsOf<int>(rangeOf<int>(field))
                                                   : textsOf<float>(rangeOf<float>(field));
}

std::string storeText(const Field& field, std::string_view text) {
  return std::visit(Overloaded{[&](bool* member) { return storeSwitch(*member, text); },
                               [&](std::string* member) {
                                 *member = text;
                                 return std::string();
                               },
                               [&](int* member) {
                                 return field.choices.empty() ? storeNumber(field, *member, text)
                                                              : storeChoice(field, *member, text);
                               },
                               [&](float* member) { return storeNumber(field, *member, text); }},
                    field.value);
}

const Field& fieldNamed(const Form& form, std::string_view name) {
  return *std::find_if(form.fields.begin(), form.fields.end(),
                       [&](const Field& field) { return field.name == name; });
}

std::optional<Refusal> storeSettings(const Form& form, std::span<const Setting> settings) {
  for (std::size_t i = 0; i < settings.size(); ++i) {
    std::string sentence = complaintAbout(fieldNamed(form, settings[i].field), settings[i].text);
    if (!sentence.empty()) return Refusal{i, std::move(sentence)};
  }
  for (const Setting& setting : settings) {
    storeText(fieldNamed(form, setting.field), setting.text);
  }
  return std::nullopt;
}

}  // namespace gravlin
