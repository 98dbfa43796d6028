#pragma once

#include <bit>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <ostream>
#include <sstream>
#include <string>

#include "mesh/io/Scanner.h"

namespace gravlin::test {

/// One conversion, as the C library or the scanner tells it.
struct Outcome {
  bool converted = false;
  std::uint32_t bits = 0;  ///< of the int or the float, so that -0 and the sign of nan count
  long position = 0;
  bool operator==(const Outcome&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Outcome& outcome) {
  if (!outcome.converted) return out << "failed, at " << outcome.position;
  return out << std::hex << outcome.bits << std::dec << ", at " << outcome.position;
}

/// `conversion` is 'd' or 'f'.
inline Outcome scanWithLibrary(std::FILE* stream, char conversion) {
  Outcome outcome;
  if (conversion == 'd') {
    int value = 0;
    outcome.converted = std::fscanf(stream, "%d", &value) == 1;
    outcome.bits = std::bit_cast<std::uint32_t>(value);
  } else {
    float value = 0.0F;
    outcome.converted = std::fscanf(stream, "%f", &value) == 1;
    outcome.bits = std::bit_cast<std::uint32_t>(value);
  }
  outcome.position = std::ftell(stream);
  return outcome;
}

inline Outcome scan(Scanner& scanner, char conversion) {
  Outcome outcome;
  if (conversion == 'd') {
    const std::optional<int> value = scanner.scanInt();
    outcome.converted = value.has_value();
    outcome.bits = std::bit_cast<std::uint32_t>(value.value_or(0));
  } else {
    const std::optional<float> value = scanner.scanFloat();
    outcome.converted = value.has_value();
    outcome.bits = std::bit_cast<std::uint32_t>(value.value_or(0.0F));
  }
  outcome.position = static_cast<long>(scanner.position());
  return outcome;
}

/// The text with what cannot be printed in hexadecimal.
inline std::string printable(const std::string& text) {
  std::string result;
  for (const char c : text) {
    char piece[8];
    std::snprintf(piece, sizeof piece, c >= ' ' && c <= '~' ? "%c" : "\\x%02x",
                  static_cast<unsigned char>(c));
    result += piece;
  }
  return result;
}

/// Runs the scanner and fscanf over the text, which is not empty, with the given conversions,
/// cyclically, until nothing is left. The first difference in words; empty when there is none.
inline std::string firstDifferenceFromLibrary(const std::string& text,
                                              const std::string& conversions) {
  std::string copy = text;
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(
      fmemopen(copy.data(), copy.size(), "r"), std::fclose);
  if (!stream) return "there is no stream over the text";
  Scanner scanner(text);
  // A conversion that fails may consume nothing, so count them instead of waiting for the end.
  for (std::size_t k = 0; k < text.size() + 3; ++k) {
    const char conversion = conversions[k % conversions.size()];
    const Outcome expected = scanWithLibrary(stream.get(), conversion);
    const Outcome actual = scan(scanner, conversion);
    if (actual != expected) {
      std::ostringstream words;
      words << "conversion " << k << " (%" << conversion << ") of \"" << printable(text) << "\" is "
            << actual << " and not " << expected;
      return words.str();
    }
    if (scanner.atEnd() && !expected.converted) break;
  }
  return {};
}

}  // namespace gravlin::test
