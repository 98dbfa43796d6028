#pragma once

#include <functional>
#include <string>

namespace gravlin::bench {

/// One side of a comparison: what it is called, one run of the job, and what has to be done before
/// each run and is not timed.
struct Contestant {
  std::string name;
  std::function<void()> run;
  std::function<void()> prepare = {};
};

/// Lets both do the same job in turns, so that whatever else the machine is doing hits both, and
/// prints the medians and how many times as fast `ours` is. Fewer rounds are for jobs of minutes.
void compare(const std::string& job, const Contestant& ours, const Contestant& theirs,
             int rounds = 7);

}  // namespace gravlin::bench
