#pragma once

#include <cstddef>
#include <cstdio>
#include <memory>
#include <string_view>

namespace gravlin {

/// The rest of a stream, taken in at once and followed by a NUL that does not belong to it.
struct StreamText {
  std::unique_ptr<char[]> characters;
  std::size_t size = 0;
  int errorNumber = 0;  ///< of a read error, after which the text is not complete

  std::string_view view() const { return {characters.get(), size}; }
};

/// Reads until the stream ends. A regular file takes one allocation of its size; a pipe is followed
/// by doubling. Throws std::bad_alloc, also when the memory that is available does not suffice.
StreamText readToEnd(std::FILE* stream);

}  // namespace gravlin
