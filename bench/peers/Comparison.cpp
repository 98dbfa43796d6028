#include "peers/Comparison.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <vector>

namespace gravlin::bench {
namespace {

/// Processor time, which other programs on the machine disturb less than the clock on the wall. All
/// jobs are of one thread; waiting for a disk does not count on either side.
double secondsOf(const Contestant& contestant) {
  if (contestant.prepare) contestant.prepare();
  const std::clock_t start = std::clock();
  contestant.run();
  return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

}  // namespace

void compare(const std::string& job, const Contestant& ours, const Contestant& theirs, int rounds) {
  std::vector<double> ourSeconds;
  std::vector<double> theirSeconds;
  for (int round = 0; round < rounds; ++round) {
    ourSeconds.push_back(secondsOf(ours));
    theirSeconds.push_back(secondsOf(theirs));
  }
  const double our = median(ourSeconds);
  const double their = median(theirSeconds);
  std::printf("%s: %s %.1f ms, %s %.1f ms, %.2f times as fast\n", job.c_str(), ours.name.c_str(),
              1e3 * our, theirs.name.c_str(), 1e3 * their, their / our);
  std::fflush(stdout);
}

}  // namespace gravlin::bench
