#include "batch/JsonWriter.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <type_traits>

namespace gravlin {
namespace {

constexpr std::size_t bufferSize = 1 << 16;
constexpr std::size_t longestNumber = 32;

}  // namespace

JsonWriter::JsonWriter(std::FILE* outputStream) : stream(outputStream), buffer(bufferSize) {
}

JsonWriter::~JsonWriter() {
  flush();
}

void JsonWriter::flush() {
  std::fwrite(buffer.data(), 1, used, stream);
  used = 0;
}

void JsonWriter::put(std::string_view text) {
  if (used + text.size() > buffer.size()) flush();
  if (text.size() > buffer.size()) {
    std::fwrite(text.data(), 1, text.size(), stream);
    return;
  }
  std::memcpy(buffer.data() + used, text.data(), text.size());
  used += text.size();
}

void JsonWriter::separate() {
  if (!first) put(",");
  first = false;
}

void JsonWriter::begin(char bracket) {
  separate();
  put({&bracket, 1});
  first = true;
}

void JsonWriter::end(char bracket) {
  put({&bracket, 1});
  first = false;
}

void JsonWriter::literal(std::string_view text) {
  separate();
  put(text);
}

void JsonWriter::key(std::string_view name) {
  separate();
  put("\n");
  quoted(name);
  put(": ");
  first = true;
}

void JsonWriter::value(std::string_view text) {
  separate();
  quoted(text);
}

void JsonWriter::quoted(std::string_view text) {
  put("\"");
  for (const char c : text) {
    const bool control = static_cast<unsigned char>(c) < 0x20;
    if (control) {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(c));
      put(escape);
    } else {
      if (c == '"' || c == '\\') put("\\");
      put({&c, 1});
    }
  }
  put("\"");
}

template <class Number>
void JsonWriter::writeNumber(Number number) {
  if constexpr (std::is_floating_point_v<Number>) {
    if (std::isnan(number)) return value("nan");
    if (std::isinf(number)) return value(number > 0 ? "inf" : "-inf");
  }
  separate();
  if (used + longestNumber > buffer.size()) flush();
  char* start = buffer.data() + used;
  used += static_cast<std::size_t>(std::to_chars(start, start + longestNumber, number).ptr - start);
}

template void JsonWriter::writeNumber(int);
template void JsonWriter::writeNumber(float);
template void JsonWriter::writeNumber(double);

}  // namespace gravlin
