#pragma once

#include <cstdint>

namespace gravlin {

/// Bytes that the system can hand out without taking them from someone; plenty if it does not tell.
std::uint64_t availableMemory();

/// Throws std::bad_alloc when so many bytes are not available. The system promises more memory than
/// there is and ends the program that uses it, so whoever is about to take much looks first.
void requireMemory(std::uint64_t bytes);

}  // namespace gravlin
