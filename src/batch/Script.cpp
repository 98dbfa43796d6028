#include "batch/Script.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "batch/Step.h"
#include "numeric/PrintableText.h"

namespace gravlin {
namespace {

constexpr std::string_view blanks = " \t";

StepFailure unreadable(const std::string& path, const std::string& reason) {
  return StepFailure(path + " could not be read: " + reason + ".");
}

std::string textOfStream(const std::string& path, std::FILE* stream) {
  std::string text;
  std::vector<char> part(1 << 16);
  while (const std::size_t size = std::fread(part.data(), 1, part.size(), stream)) {
    if (text.size() + size > longestScript) {
      throw unreadable(path, "a script has at most 64 MiB; divide this one");
    }
    text.append(part.data(), size);
  }
  if (std::ferror(stream) != 0) throw unreadable(path, std::strerror(errno));
  return text;
}

struct CloseStream {
  void operator()(std::FILE* stream) const { std::fclose(stream); }
};

std::string textOfScript(const std::string& path) {
  if (path == "-") return textOfStream("standard input", stdin);
  const std::unique_ptr<std::FILE, CloseStream> stream(std::fopen(path.c_str(), "re"));
  if (!stream) throw unreadable(path, std::strerror(errno));
  return textOfStream(path, stream.get());
}

/// The next line without its end, which may be that of Windows.
std::string_view takeLine(std::string_view& text) {
  const std::size_t end = std::min(text.find('\n'), text.size());
  std::string_view line = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

/// Other texts than plain ones, UTF-16 for example, are full of control characters, and a carriage
/// return in the middle would hide what follows it from a reader on a terminal.
void refuseControlCharacters(std::string_view line) {
  const auto control = std::find_if(line.begin(), line.end(), [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return (byte < 0x20U && c != '\t') || byte == 0x7FU;
  });
  if (control == line.end()) return;
  throw UsageError("there is a control character, " + printable({&*control, 1}) +
                   "; a script is plain text in UTF-8");
}

}  // namespace

void readScript(const std::string& path,
                const std::function<void(std::vector<std::string>)>& take) {
  constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
  const std::string text = textOfScript(path);
  std::string_view rest = text;
  if (rest.starts_with(byteOrderMark)) rest.remove_prefix(byteOrderMark.size());
  for (int number = 1; !rest.empty(); ++number) {
    try {
      const std::string_view line = takeLine(rest);
      refuseControlCharacters(line);
      take(wordsOf(line));
    } catch (const UsageError& error) {
      throw UsageError(path + ":" + std::to_string(number) + ": " + error.what());
    }
  }
}

std::vector<std::string> wordsOf(std::string_view line) {
  std::vector<std::string> words;
  std::size_t at = line.find_first_not_of(blanks);
  while (at < line.size() && line[at] != '#') {
    std::string word;
    while (at < line.size() && blanks.find(line[at]) == std::string_view::npos) {
      const char c = line[at++];
      if (c != '"' && c != '\'') {
        word += c;
        continue;
      }
      const std::size_t close = line.find(c, at);
      if (close == std::string_view::npos) throw UsageError("a quote is not closed");
      word += line.substr(at, close - at);
      at = close + 1;
    }
    words.push_back(word);
    at = line.find_first_not_of(blanks, at);
  }
  return words;
}

}  // namespace gravlin
