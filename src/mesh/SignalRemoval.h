#pragma once

#include <string>

namespace gravlin {

/// While it lives, SIGHUP, SIGINT and SIGTERM remove a file before they end the program as they
/// always do, so that whoever waits for the program sees the signal. A signal that the program
/// ignores or handles itself stays as it is. Of more than a few at the same time some do nothing.
class SignalRemoval {
 public:
  /// The path must lead to the same file as long as this lives.
  explicit SignalRemoval(std::string path);
  ~SignalRemoval();
  SignalRemoval(const SignalRemoval&) = delete;
  SignalRemoval& operator=(const SignalRemoval&) = delete;

 private:
  std::string name;
  int place = -1;  ///< in the table that the handler reads; -1 when there was none left
};

/// Lets SIGHUP, SIGINT and SIGTERM, whichever thread of the program they reach, wait until the end
/// of the scope, so that none comes between making a file and its SignalRemoval. Scopes may lie in
/// each other and overlap on several threads; the last one's end counts. A signal that the program
/// ignores or handles itself stays as it is.
class HeldSignals {
 public:
  HeldSignals();
  ~HeldSignals();
  HeldSignals(const HeldSignals&) = delete;
  HeldSignals& operator=(const HeldSignals&) = delete;
};

}  // namespace gravlin
