#pragma once

#include <algorithm>
#include <string>

#include "numeric/TextSink.h"

namespace gravlin::test {

/// Collects the texts of the numerical routines while it lives.
class CapturedText {
 public:
  std::string output;
  std::string error;

  int outputLines() const {
    return static_cast<int>(std::count(output.begin(), output.end(), '\n'));
  }

 private:
  ScopedTextSink scope{[this](TextStream stream, std::string_view text) {
    (stream == TextStream::Output ? output : error) += text;
  }};
};

}  // namespace gravlin::test
