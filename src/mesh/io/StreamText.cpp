#include "mesh/io/StreamText.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <sys/stat.h>

#include "numeric/AvailableMemory.h"

namespace gravlin {
namespace {

/// How much the stream is expected to hold: the size of a regular file, 0 for anything else.
std::size_t expectedSize(std::FILE* stream) {
  struct stat status = {};
  const int descriptor = fileno(stream);
  if (descriptor < 0 || fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) return 0;
  return static_cast<std::size_t>(status.st_size);
}

/// A pipe may never end, and a file may have a size that nothing has been written to.
std::unique_ptr<char[]> room(std::size_t size) {
  constexpr std::size_t harmless = std::size_t{64} << 20;
  if (size > harmless) requireMemory(size);
  return std::make_unique_for_overwrite<char[]>(size);
}

}  // namespace

StreamText readToEnd(std::FILE* stream) {
  constexpr std::size_t leastCapacity = 1 << 16;
  // One character more than expected lets the first read find the end; one is for the NUL.
  std::size_t capacity = std::max(leastCapacity, expectedSize(stream) + 2);
  StreamText text;
  text.characters = room(capacity);
  while (true) {
    errno = 0;
    const std::size_t space = capacity - 1 - text.size;
    const std::size_t count = std::fread(text.characters.get() + text.size, 1, space, stream);
    text.size += count;
    if (count < space) break;
    auto larger = room(2 * capacity);
    std::memcpy(larger.get(), text.characters.get(), text.size);
    text.characters = std::move(larger);
    capacity *= 2;
  }
  if (std::ferror(stream) != 0) text.errorNumber = errno != 0 ? errno : EIO;
  text.characters[text.size] = '\0';
  return text;
}

}  // namespace gravlin
