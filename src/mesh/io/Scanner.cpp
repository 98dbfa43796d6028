#include "mesh/io/Scanner.h"

#include <array>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <locale.h>  // newlocale, strtof_l
#include <string>

namespace gravlin {
namespace {

bool isSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

const char* afterSpace(const char* c) {
  while (isSpace(*c)) ++c;
  return c;
}

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

char toLower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

bool isHexDigit(char c) {
  return isDigit(c) || (toLower(c) >= 'a' && toLower(c) <= 'f');
}

std::uint64_t digitValue(char c) {
  return static_cast<std::uint64_t>(c - '0');
}

/// Nineteen decimal digits always fit into 64 bits.
constexpr std::ptrdiff_t maxExactDigits = 19;

/// The int that storing a saturated 64-bit number into 32 bits gives.
int cutToInt(const char* digits, const char* behind, bool negative) {
  constexpr std::uint64_t limit = std::numeric_limits<std::int64_t>::max();
  const std::uint64_t largest = negative ? limit + 1 : limit;
  std::uint64_t magnitude = 0;
  for (const char* c = digits; c != behind; ++c) {
    if (magnitude > (largest - digitValue(*c)) / 10) {
      magnitude = largest;
      break;
    }
    magnitude = 10 * magnitude + digitValue(*c);
  }
  return static_cast<int>(negative ? 0 - magnitude : magnitude);
}

/// All powers of ten that a double holds exactly.
constexpr std::array<double, 23> powersOfTen = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr int largestExactPower = 22;

/// digits x 10^exponent rounded to the nearest float, where double arithmetic can tell.
std::optional<float> nearestFloat(std::uint64_t digits, int exponent) {
  constexpr std::uint64_t largestWholeRun = std::uint64_t{1} << 24;  // a float holds all of 0 to it
  if (digits == 0 || (exponent == 0 && digits <= largestWholeRun))
    return static_cast<float>(digits);
  if (exponent < -largestExactPower || exponent > largestExactPower) return std::nullopt;
  const double wide =
      exponent < 0 ? static_cast<double>(digits) / powersOfTen[static_cast<std::size_t>(-exponent)]
                   : static_cast<double>(digits) * powersOfTen[static_cast<std::size_t>(exponent)];
  // Converting the digits and the one operation move `wide` by at most two units in its last place.
  // Rounding it again to float goes wrong only if a point halfway between two floats is that near.
  constexpr std::uint64_t halfway = std::uint64_t{1} << 28;
  const std::uint64_t below = std::bit_cast<std::uint64_t>(wide) & (2 * halfway - 1);
  if (below - (halfway - 4) <= 8) return std::nullopt;
  if (wide >= static_cast<double>(std::numeric_limits<float>::max())) return std::nullopt;
  return static_cast<float>(wide);  // at least 1e-22, so never subnormal
}

/// strtof in the "C" locale. Nothing when no prefix of the word is a number.
std::optional<float> convertWord(const std::string& word) {
  static const locale_t cLocale = newlocale(LC_ALL_MASK, "C", nullptr);
  char* behind = nullptr;
  const float value = strtof_l(word.c_str(), &behind, cLocale);
  if (behind == word.c_str()) return std::nullopt;
  return value;
}

}  // namespace

std::optional<int> Scanner::scanInt() {
  const char* c = afterSpace(current);
  const bool negative = *c == '-';
  if (negative || *c == '+') ++c;
  const char* const digits = c;
  std::uint64_t magnitude = 0;
  for (; isDigit(*c); ++c) magnitude = 10 * magnitude + digitValue(*c);
  current = c;
  if (c == digits) return std::nullopt;
  if (c - digits >= maxExactDigits) return cutToInt(digits, c, negative);
  return static_cast<int>(negative ? 0 - magnitude : magnitude);
}

std::optional<float> Scanner::scanFloat() {
  current = afterSpace(current);
  const char* c = current;
  const bool negative = *c == '-';
  if (negative || *c == '+') ++c;

  const char* const first = c;
  std::uint64_t digits = 0;
  for (; isDigit(*c); ++c) digits = 10 * digits + digitValue(*c);
  std::ptrdiff_t digitCount = c - first;
  int exponent = 0;
  if (*c == '.') {
    const char* const fraction = ++c;
    for (; isDigit(*c); ++c) digits = 10 * digits + digitValue(*c);
    digitCount += c - fraction;
    exponent = static_cast<int>(fraction - c);
  }
  const bool exact = digitCount > 0 && digitCount <= maxExactDigits;
  if (!exact || toLower(*c) == 'x') return scanUnusualFloat();
  if (toLower(*c) == 'e') {
    ++c;
    const bool down = *c == '-';
    if (down || *c == '+') ++c;
    const char* const power = c;
    int given = 0;
    for (; isDigit(*c) && c - power < 4; ++c) given = 10 * given + (*c - '0');
    if (c == power || isDigit(*c)) return scanUnusualFloat();
    exponent += down ? -given : given;
  }
  const std::optional<float> magnitude = nearestFloat(digits, exponent);
  if (!magnitude) return scanUnusualFloat();
  current = c;
  return negative ? -*magnitude : *magnitude;
}

/// Collects the longest run of characters that could still become a number, as the C library does,
/// and lets strtof take what it can of it; everything collected counts as consumed.
std::optional<float> Scanner::scanUnusualFloat() {
  std::string word;
  if (*current == '-' || *current == '+') word += *current++;

  const char first = toLower(*current);
  if (first == 'n') return takeLetters("nan", word) ? convertWord(word) : std::nullopt;
  if (first == 'i') {
    if (!takeLetters("inf", word)) return std::nullopt;
    if (toLower(*current) == 'i' && !takeLetters("inity", word)) return std::nullopt;
    return convertWord(word);
  }

  const bool hexadecimal = *current == '0' && toLower(current[1]) == 'x';
  if (hexadecimal) {
    word.append(current, 2);
    current += 2;
  }
  const std::size_t prefixLength = word.size();
  takeMantissaAndExponent(hexadecimal, word);
  if (hexadecimal && word.size() == prefixLength) return std::nullopt;
  return convertWord(word);
}

/// Appends the given letters, large or small, to the word. A character that is not the one wanted
/// has been read to see so, and is gone.
bool Scanner::takeLetters(std::string_view letters, std::string& word) {
  for (const char letter : letters) {
    if (atEnd()) return false;
    word += *current++;
    if (toLower(word.back()) != letter) return false;
  }
  return true;
}

void Scanner::takeMantissaAndExponent(bool hexadecimal, std::string& word) {
  const auto takeDigits = [&](bool (*isOfKind)(char)) {
    const char* const start = current;
    while (isOfKind(*current)) ++current;
    word.append(start, current);
    return current != start;
  };
  const auto mantissaDigit = hexadecimal ? isHexDigit : isDigit;
  bool anyDigit = takeDigits(mantissaDigit);
  if (*current == '.') {
    word += *current++;
    anyDigit |= takeDigits(mantissaDigit);
  }
  if (!anyDigit || toLower(*current) != (hexadecimal ? 'p' : 'e')) return;
  word += *current++;
  if (*current == '-' || *current == '+') word += *current++;
  takeDigits(isDigit);
}

}  // namespace gravlin
