#pragma once

#include <cstdio>
#include <string_view>
#include <vector>

namespace gravlin {

/// Writes one JSON text to a stream as it comes, so that its size in memory does not matter.
///
/// A number is the shortest text that reads back to the same int, float or double; one that is not
/// finite is the string "nan", "inf" or "-inf". Whether writing failed is for the stream to say.
class JsonWriter {
 public:
  explicit JsonWriter(std::FILE* stream);
  ~JsonWriter();
  JsonWriter(const JsonWriter&) = delete;
  JsonWriter& operator=(const JsonWriter&) = delete;

  void beginObject() { begin('{'); }
  void endObject() { end('}'); }
  void beginArray() { begin('['); }
  void endArray() { end(']'); }
  void key(std::string_view name);  ///< what follows is its value; every name on a line of its own

  void value(int number) { writeNumber(number); }
  void value(float number) { writeNumber(number); }
  void value(double number) { writeNumber(number); }
  void value(bool truth) { literal(truth ? "true" : "false"); }
  void value(std::string_view text);
  void value(const char* text) { value(std::string_view(text)); }
  void null() { literal("null"); }
  void endText() { put("\n"); }  ///< the line end behind the last bracket

  /// The numbers of a range as one array.
  template <class Numbers>
  void array(const Numbers& numbers) {
    beginArray();
    for (const auto number : numbers) value(number);
    endArray();
  }

 private:
  void begin(char bracket);
  void end(char bracket);
  void separate();
  void literal(std::string_view text);
  void quoted(std::string_view text);
  void put(std::string_view text);
  template <class Number>
  void writeNumber(Number number);
  void flush();

  std::FILE* stream;
  std::vector<char> buffer;
  std::size_t used = 0;
  bool first = true;  ///< nothing stands yet between the innermost brackets or behind a key
};

}  // namespace gravlin
