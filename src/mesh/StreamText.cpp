#include "mesh/StreamText.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <sys/stat.h>

namespace gravlin {
namespace {

/// How much the stream is expected to hold: the size of a regular file, 0 for anything else.
std::size_t expectedSize(std::FILE* stream) {
  struct stat status = {};
  const int descriptor = fileno(stream);
  if (descriptor < 0 || fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) return 0;
  return static_cast<std::size_t>(status.st_size);
}

}  // namespace

StreamText readToEnd(std::FILE* stream) {
  constexpr std::size_t leastCapacity = 1 << 16;
  // One character more than expected lets the first read find the end; one is for the NUL.
  std::size_t capacity = std::max(leastCapacity, expectedSize(stream) + 2);
  StreamText text;
  text.characters = std::make_unique_for_overwrite<char[]>(capacity);
  while (true) {
    errno = 0;
    const std::size_t room = capacity - 1 - text.size;
    const std::size_t count = std::fread(text.characters.get() + text.size, 1, room, stream);
    text.size += count;
    if (count < room) break;
    auto larger = std::make_unique_for_overwrite<char[]>(2 * capacity);
    std::memcpy(larger.get(), text.characters.get(), text.size);
    text.characters = std::move(larger);
    capacity *= 2;
  }
  if (std::ferror(stream) != 0) text.errorNumber = errno != 0 ? errno : EIO;
  text.characters[text.size] = '\0';
  return text;
}

}  // namespace gravlin
