#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace gravlin {

/// More bytes than any script that people or programs write; a device that never ends has more.
inline constexpr std::size_t longestScript = std::size_t{64} << 20;

/// Reads a script, standard input when the path is "-", and hands the words of one line after the
/// other to `take`, empty ones included. A byte-order mark at the beginning is skipped.
///
/// Throws StepFailure when the script cannot be read or is longer than `longestScript`, and
/// UsageError, path and number of the line in front, when a line has a control character other than
/// tabulator and line end, when a quote is not closed, or when `take` throws one.
void readScript(const std::string& path, const std::function<void(std::vector<std::string>)>& take);

/// The words of one line of a script: separated by blanks, in single or double quotes when they
/// contain some, and up to a # that begins a word. Throws UsageError when a quote is not closed.
std::vector<std::string> wordsOf(std::string_view line);

}  // namespace gravlin
