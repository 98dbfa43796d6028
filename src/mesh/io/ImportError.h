#pragma once

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

#include "mesh/io/NumberWords.h"
#include "numeric/PrintableText.h"

namespace gravlin {

/// Why a file cannot be imported: "line 7: vertex 2 of 8 ends early".
struct ImportError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// A word of a file in quotes, as one can read it in a message.
inline std::string quotedWord(std::string_view text) {
  constexpr std::size_t longest = 40;
  const auto* const behind = std::find_if(text.begin(), text.end(), isSpaceCharacter);
  const std::string_view word(text.data(), static_cast<std::size_t>(behind - text.begin()));
  return "\"" + printable(word.substr(0, longest)) + (word.size() > longest ? "..." : "") + "\"";
}

/// An error in the line of a text in which the character at `position` stands; the first line is 1.
inline ImportError errorInLine(std::string_view text, std::size_t position,
                               const std::string& reason) {
  const std::string_view before = text.substr(0, position);
  const auto line = 1 + std::count(before.begin(), before.end(), '\n');
  return ImportError("line " + std::to_string(line) + ": " + reason);
}

/// An error at a byte of a binary file; the first byte is 0.
inline ImportError errorAtByte(std::size_t position, const std::string& reason) {
  return ImportError("byte " + std::to_string(position) + ": " + reason);
}

}  // namespace gravlin
