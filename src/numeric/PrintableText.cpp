#include "numeric/PrintableText.h"

#include <cstddef>

namespace gravlin {
namespace {

unsigned byteAt(std::string_view text, std::size_t k) {
  return k < text.size() ? static_cast<unsigned char>(text[k]) : 0U;
}

/// How many bytes the leading one of a character in UTF-8 asks for; 0 when it leads none.
std::size_t lengthAskedFor(unsigned leading) {
  if (leading < 0x80U) return 1;
  if (leading >= 0xC2U && leading < 0xE0U) return 2;  // 0xC0 and 0xC1 are ASCII in disguise
  if (leading >= 0xE0U && leading < 0xF0U) return 3;
  return leading >= 0xF0U && leading < 0xF5U ? 4 : 0;
}

/// How many bytes at the front of the text are one character that can be shown; 0 when none is.
std::size_t shownLength(std::string_view text) {
  const unsigned first = byteAt(text, 0);
  const unsigned second = byteAt(text, 1);
  const std::size_t length = lengthAskedFor(first);
  if (length == 1) return first >= 0x20U && first != 0x7FU ? 1 : 0;
  for (std::size_t k = 1; k < length; ++k) {
    if ((byteAt(text, k) & 0xC0U) != 0x80U) return 0;
  }
  if (first == 0xC2U && second < 0xA0U) return 0;  // the other half of the control characters
  const bool overlong = (first == 0xE0U && second < 0xA0U) || (first == 0xF0U && second < 0x90U);
  const bool surrogate = first == 0xEDU && second >= 0xA0U;
  const bool beyondUnicode = first == 0xF4U && second >= 0x90U;
  return overlong || surrogate || beyondUnicode ? 0 : length;
}

std::string escape(unsigned byte) {
  constexpr std::string_view digits = "0123456789abcdef";
  if (byte == '\n') return "\\n";
  if (byte == '\t') return "\\t";
  if (byte == '\r') return "\\r";
  return {'\\', 'x', digits[byte / 16], digits[byte % 16]};
}

}  // namespace

std::string printable(std::string_view text) {
  std::string shown;
  shown.reserve(text.size());
  while (!text.empty()) {
    const std::size_t length = shownLength(text);
    if (length == 0) {
      shown += escape(byteAt(text, 0));
    } else {
      shown += text.substr(0, length);
    }
    text.remove_prefix(length == 0 ? 1 : length);
  }
  return shown;
}

}  // namespace gravlin
