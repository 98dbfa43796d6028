#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace gravlin {

/// Takes numbers out of a text one by one, each as `fscanf` with "%d" or "%f" would take it from a
/// stream in the "C" locale: the same value, the same characters consumed, also of words that turn
/// out to be no number. Independent of the locale that the program has set.
class Scanner {
 public:
  /// The text must be followed by one NUL that does not belong to it, and outlive the scanner.
  explicit Scanner(std::string_view text)
      : begin(text.data()), current(begin), end(begin + text.size()) {}

  /// "%d". Digits beyond 64 bits saturate there; what is left is cut to 32 bits. Nothing when the
  /// conversion fails.
  std::optional<int> scanInt();
  /// "%f": decimal, hexadecimal, "inf", "infinity" or "nan", rounded once to the nearest float.
  /// Nothing when the conversion fails.
  std::optional<float> scanFloat();

  /// Characters consumed so far.
  std::size_t position() const { return static_cast<std::size_t>(current - begin); }
  bool atEnd() const { return current == end; }
  /// What has been consumed since an earlier `position`.
  std::string_view consumedSince(std::size_t earlier) const {
    return {begin + earlier, position() - earlier};
  }

 private:
  std::optional<float> scanUnusualFloat();
  bool takeLetters(std::string_view letters, std::string& word);
  void takeMantissaAndExponent(bool hexadecimal, std::string& word);

  const char* begin;
  const char* current;
  const char* end;  ///< the NUL
};

}  // namespace gravlin
