#pragma once

#include <cstdint>

namespace gravlin {

/// Blanks and line ends, as isspace knows them in the "C" locale.
inline bool isSpaceCharacter(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

/// Reads the number that begins at `word` and goes on to the next blank, line end or `end`, behind
/// which a NUL must stand. Returns where it ends, or null when the word is no number and `value`
/// means nothing.
///
/// Decimal, "inf", "infinity" or "nan" with a sign, rounded once to the nearest double; beyond the
/// largest one it is infinite.
const char* readDouble(const char* word, const char* end, double& value);

/// The same for whole numbers, "12" and also "12.0". What does not fit is the nearest that does.
const char* readInteger(const char* word, const char* end, std::int64_t& value);

/// Reads digits with a sign up to the first character that is no digit. Null without any digit.
const char* readDigits(const char* word, std::int64_t& value);

}  // namespace gravlin
