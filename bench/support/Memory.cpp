#include "support/Memory.h"

#include <fstream>
#include <limits>
#include <malloc.h>
#include <string>

namespace gravlin::bench {
namespace {

/// Kilobytes in one line of the process's status: "VmRSS:" now, "VmHWM:" at most so far.
double memoryInUse(const std::string& key) {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word; status.ignore(1000, '\n')) {
    double kilobytes = 0.0;
    if (word == key && status >> kilobytes) return kilobytes;
  }
  return std::numeric_limits<double>::quiet_NaN();
}

}  // namespace

PeakMemory::PeakMemory() {
  malloc_trim(0);
  std::ofstream("/proc/self/clear_refs") << "5";  // starts the high-water mark anew
  kilobytesBefore = memoryInUse("VmRSS:");
}

double PeakMemory::bytes() const {
  return 1024.0 * (memoryInUse("VmHWM:") - kilobytesBefore);
}

}  // namespace gravlin::bench
