#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

/// One input of a fuzz target: libFuzzer calls it with bytes of its own making, the replay program
/// with files. Returns 0; ends by an exception when a promise is broken.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace gravlin::fuzz {

/// A promise that an input showed to be broken. Nothing catches it but the replay program.
struct BrokenPromise : std::logic_error {
  using std::logic_error::logic_error;
};

inline void demand(bool holds, const std::string& promise) {
  if (!holds) throw BrokenPromise(promise);
}

/// The same for a list of what is broken.
inline void demandNone(const std::vector<std::string>& broken, const std::string& when) {
  if (!broken.empty()) throw BrokenPromise(when + ": " + broken.front());
}

}  // namespace gravlin::fuzz
