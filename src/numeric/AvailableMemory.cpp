#include "numeric/AvailableMemory.h"

#include <fstream>
#include <limits>
#include <new>
#include <string>

namespace gravlin {

std::uint64_t availableMemory() {
  std::ifstream table("/proc/meminfo");
  for (std::string key; table >> key; table.ignore(256, '\n')) {
    std::uint64_t kilobytes = 0;
    if (key == "MemAvailable:" && table >> kilobytes) return 1024 * kilobytes;
  }
  return std::numeric_limits<std::uint64_t>::max();
}

void requireMemory(std::uint64_t bytes) {
  if (bytes > availableMemory()) throw std::bad_alloc();
}

}  // namespace gravlin
