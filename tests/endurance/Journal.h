#pragma once

#include <atomic>
#include <cstdio>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

namespace gravlin::endurance {

/// What a long run has done so far. Every action is written to a file before it begins, so that a
/// run that dies has named it. A thread of its own ends the program when an action takes longer
/// than the patience: that is a hang.
class Journal {
 public:
  struct Settings {
    std::string program;  ///< begins every report
    std::string path;     ///< of the file; empty for none
    unsigned long long seed = 0;
    int patience = 300;  ///< seconds
  };

  explicit Journal(Settings chosen);
  ~Journal();
  Journal(const Journal&) = delete;
  Journal& operator=(const Journal&) = delete;

  /// An action begins; `words` say which, with everything it takes to do it again.
  void begin(std::string_view words);
  /// More about the action that runs.
  void note(std::string_view words);
  /// Ends the program with exit status 1, after saying why, at which action and from which seed.
  [[noreturn]] void fail(std::string_view why);

  int actions() const { return count; }

 private:
  void watch();
  void write(std::string_view words);

  const Settings settings;
  std::FILE* file = nullptr;
  std::atomic<int> count = 0;
  std::atomic<bool> ended = false;
  std::thread watching;
};

}  // namespace gravlin::endurance
