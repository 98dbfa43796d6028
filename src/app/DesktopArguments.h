#pragma once

#include <optional>
#include <string>
#include <vector>

namespace gravlin {

/// What the command line asks of the desktop program.
struct DesktopArguments {
  std::vector<std::string> files;  ///< meshes to open, the first in the document that is there
  std::string settingsFile;        ///< empty: the user's own settings
};

/// Prints what --help or --version ask for to standard output. Needs no display, so it comes before
/// Qt, whose own options ("-platform", "-style") it passes over. Returns the exit code if there was
/// an answer, 1 when it could not be written.
std::optional<int> answerWithoutWindow(int argc, const char* const* argv);

/// Reads the command line from which Qt has taken its options. Prints a complaint and returns
/// nothing when it makes no sense.
std::optional<DesktopArguments> readDesktopArguments(int argc, const char* const* argv);

}  // namespace gravlin
