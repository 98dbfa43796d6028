#pragma once

#include <string>
#include <string_view>

namespace gravlin {

/// A text as one line that any terminal and any label shows as it is: control characters and bytes
/// that are no UTF-8 become "\n", "\t", "\r" or "\x1b" with the byte's hexadecimal digits. Every
/// other text stays as it is, and so does the result itself.
std::string printable(std::string_view text);

}  // namespace gravlin
