#pragma once

#include "support/TemporaryFolder.h"

namespace gravlin::test {

/// A locale with a comma in its numbers, made for the test, so that it is there on any machine.
/// While this lives, the environment asks for it (LC_ALL), as a German desktop does; a program
/// takes it with setlocale(LC_ALL, "").
class GermanLocale {
 public:
  /// Throws std::runtime_error when it cannot be made.
  GermanLocale();
  /// Sets the process and its environment back to the "C" locale.
  ~GermanLocale();
  GermanLocale(const GermanLocale&) = delete;
  GermanLocale& operator=(const GermanLocale&) = delete;

 private:
  TemporaryFolder folder;
};

}  // namespace gravlin::test
