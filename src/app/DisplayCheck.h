#pragma once

#include <string>

namespace gravlin {

/// The advice that goes with every message about a missing window or OpenGL.
extern const char* const adviceWithoutDisplay;

/// Lives while the QApplication is made. Qt ends the program with an abort and a list of its
/// plugins when there is no display; the user gets a sentence and exit code 1 instead. What else Qt
/// warns of in that time is passed on.
class DisplayCheck {
 public:
  DisplayCheck();
  ~DisplayCheck();
  DisplayCheck(const DisplayCheck&) = delete;
  DisplayCheck& operator=(const DisplayCheck&) = delete;
};

}  // namespace gravlin
