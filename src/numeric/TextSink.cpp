#include "numeric/TextSink.h"

#include <cstdio>
#include <utility>

namespace gravlin {
namespace {

TextSink& sinkInUse() {
  static TextSink sink = standardTextSink();
  return sink;
}

}  // namespace

TextSink standardTextSink() {
  return [](TextStream stream, std::string_view text) {
    std::FILE* file = stream == TextStream::Output ? stdout : stderr;
    std::fwrite(text.data(), 1, text.size(), file);
  };
}

TextSink quietTextSink() {
  return [](TextStream, std::string_view) {};
}

TextSink setTextSink(TextSink sink) {
  return std::exchange(sinkInUse(), std::move(sink));
}

void writeText(TextStream stream, std::string_view text) {
  sinkInUse()(stream, text);
}

}  // namespace gravlin
