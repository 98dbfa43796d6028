#pragma once

#include <cstdint>
#include <string>

namespace gravlin {

/// Bytes that the system can hand out without taking them from someone; plenty if it does not tell.
/// A container or a job may have less than the machine: of all control groups that this process is
/// in, of either version, the one with the least left counts. Files that the system has in memory
/// and has not needed of late are none of a group's use, since it lets them go.
///
/// Files are looked for below `root`: proc/meminfo, proc/self/cgroup, sys/fs/cgroup.
std::uint64_t availableMemory(const std::string& root = {});

/// Throws std::bad_alloc when so many bytes are more than 90 % of what is available. The system
/// promises more memory than there is and ends the program that uses it, so whoever is about to
/// take much looks first. `root` as above.
void requireMemory(std::uint64_t bytes, const std::string& root = {});

}  // namespace gravlin
