#pragma once

#include <array>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <string_view>

namespace gravlin {

/// Collects small pieces and hands them to a stream in large ones.
class OutputBuffer {
 public:
  explicit OutputBuffer(std::FILE* destination) : stream(destination) {}
  ~OutputBuffer() { flush(); }
  OutputBuffer(const OutputBuffer&) = delete;
  OutputBuffer& operator=(const OutputBuffer&) = delete;

  /// Room for so many characters, at most `largestPiece`; `wrote` tells where they end.
  static constexpr std::size_t largestPiece = 1024;
  char* room(std::size_t size) {
    if (static_cast<std::size_t>(buffer.data() + buffer.size() - out) < size) flush();
    return out;
  }
  void wrote(char* end) { out = end; }

  /// A text of any length.
  void put(std::string_view text) {
    for (; text.size() > largestPiece; text.remove_prefix(largestPiece)) {
      put(text.substr(0, largestPiece));
    }
    char* const begin = room(text.size());
    std::memcpy(begin, text.data(), text.size());
    wrote(begin + text.size());
  }

 private:
  void flush() {
    std::fwrite(buffer.data(), 1, static_cast<std::size_t>(out - buffer.data()), stream);
    out = buffer.data();
  }

  std::FILE* stream;
  std::array<char, std::size_t{1} << 16> buffer;
  char* out = buffer.data();
};

}  // namespace gravlin
