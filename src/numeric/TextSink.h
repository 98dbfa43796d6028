#pragma once

#include <functional>
#include <string_view>
#include <utility>

namespace gravlin {

/// The standard stream that a text is meant for.
enum class TextStream { Output, Error };

/// Takes the texts of the numerical routines, each with its line ends.
using TextSink = std::function<void(TextStream stream, std::string_view text)>;

/// Writes to standard output and standard error: the sink in use when the program starts.
TextSink standardTextSink();
/// Drops every text.
TextSink quietTextSink();

/// Makes `sink`, which must not be empty, the one in use and returns the one it replaces.
TextSink setTextSink(TextSink sink);
/// Hands `text` to the sink in use.
void writeText(TextStream stream, std::string_view text);

/// Keeps a sink in use until the end of the scope, then brings back the one before.
class ScopedTextSink {
 public:
  explicit ScopedTextSink(TextSink sink) : before(setTextSink(std::move(sink))) {}
  ~ScopedTextSink() { setTextSink(std::move(before)); }
  ScopedTextSink(const ScopedTextSink&) = delete;
  ScopedTextSink& operator=(const ScopedTextSink&) = delete;

 private:
  TextSink before;
};

}  // namespace gravlin
