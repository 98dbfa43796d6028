#pragma once

#include <functional>
#include <string>

namespace gravlin::bench {

/// One side of a comparison: what it is called, and one run of the job.
struct Contestant {
  std::string name;
  std::function<void()> run;
};

/// Lets both do the same job in turns, so that whatever else the machine is doing hits both, and
/// prints the medians and how many times as fast `ours` is. Fewer rounds are for jobs of minutes.
void compare(const std::string& job, const Contestant& ours, const Contestant& theirs,
             int rounds = 7);

}  // namespace gravlin::bench
