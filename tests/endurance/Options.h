#pragma once

#include <chrono>
#include <string>

#include "endurance/Journal.h"

namespace gravlin::endurance {

/// What a program of the endurance run takes from its command line, each as "--name VALUE".
struct Options {
  unsigned long long seed = 1;
  int count = 0;          ///< of actions; 0 for as many as there is time for
  double seconds = 0.0;   ///< 0 for as long as the count takes
  std::string log;        ///< where the journal goes
  int patience = 300;     ///< seconds that one action may take
  std::string plant;      ///< a failure on purpose, to see it reported
  std::string batch;      ///< the path of gravlin-batch, for those that run it
  int opens = 0;          ///< how many files to open in one window, in place of all else
  double mostGrowth = 5;  ///< MB from the 500th of them to the last

  Journal::Settings journal(const char* program) const {
    return {.program = program, .path = log, .seed = seed, .patience = patience};
  }
};

/// Ends the program with status 2 when it does not understand the arguments.
Options readOptions(int argc, char** argv);

/// Says when enough has been done.
class Extent {
 public:
  explicit Extent(const Options& chosen)
      : options(chosen), begin(std::chrono::steady_clock::now()) {}
  bool goesOn(int done) const {
    if (options.count > 0 && done >= options.count) return false;
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - begin;
    return options.seconds <= 0.0 || passed.count() < options.seconds;
  }

 private:
  const Options& options;
  std::chrono::steady_clock::time_point begin;
};

}  // namespace gravlin::endurance
