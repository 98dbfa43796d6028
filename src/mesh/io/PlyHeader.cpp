#include "mesh/io/PlyHeader.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "mesh/io/ImportError.h"
#include "mesh/io/NumberWords.h"

namespace gravlin {
namespace {

struct TypeName {
  std::string_view name;
  PlyType type;
};

/// The names of the format's first description, and those with sizes that many programs write.
constexpr std::array<TypeName, 16> typeNames = {{
    {"char", PlyType::Int8},
    {"uchar", PlyType::Uint8},
    {"short", PlyType::Int16},
    {"ushort", PlyType::Uint16},
    {"int", PlyType::Int32},
    {"uint", PlyType::Uint32},
    {"float", PlyType::Float32},
    {"double", PlyType::Float64},
    {"int8", PlyType::Int8},
    {"uint8", PlyType::Uint8},
    {"int16", PlyType::Int16},
    {"uint16", PlyType::Uint16},
    {"int32", PlyType::Int32},
    {"uint32", PlyType::Uint32},
    {"float32", PlyType::Float32},
    {"float64", PlyType::Float64},
}};

std::vector<std::string_view> wordsOf(std::string_view line) {
  std::vector<std::string_view> words;
  std::size_t begin = 0;
  while (begin < line.size()) {
    std::size_t end = begin;
    while (end < line.size() && !isSpaceCharacter(line[end])) ++end;
    if (end > begin) words.push_back(line.substr(begin, end - begin));
    begin = end + 1;
  }
  return words;
}

/// Goes through the header line by line.
class HeaderReader {
 public:
  explicit HeaderReader(std::string_view wholeText) : text(wholeText) {}

  PlyHeader read() {
    takeLine();  // "ply"
    bool ended = false;
    while (!ended) {
      if (position == text.size()) fail("the header has no end_header");
      ended = takeStatement(wordsOf(takeLine()));
    }
    if (!hasFormat) fail("the header tells no format");
    header.end = position;
    return std::move(header);
  }

 private:
  [[noreturn]] void fail(const std::string& reason) const {
    throw errorInLine(text, lineBegin, reason);
  }

  std::string_view takeLine() {
    lineBegin = position;
    const std::size_t end = std::min(text.find('\n', position), text.size());
    position = std::min(end + 1, text.size());
    return text.substr(lineBegin, end - lineBegin);
  }

  /// Whether the statement is the last one.
  bool takeStatement(const std::vector<std::string_view>& words) {
    if (words.empty() || words[0] == "comment" || words[0] == "obj_info") return false;
    if (words[0] == "end_header") return true;
    if (words[0] == "format") {
      takeFormat(words);
    } else if (words[0] == "element") {
      takeElement(words);
    } else if (words[0] == "property") {
      takeProperty(words);
    } else {
      fail(quotedWord(words[0]) + " is no statement of a header");
    }
    return false;
  }

  void takeFormat(const std::vector<std::string_view>& words) {
    const std::string_view name = words.size() > 1 ? words[1] : std::string_view();
    if (name == "ascii") {
      header.encoding = PlyEncoding::Ascii;
    } else if (name == "binary_little_endian") {
      header.encoding = PlyEncoding::LittleEndian;
    } else if (name == "binary_big_endian") {
      header.encoding = PlyEncoding::BigEndian;
    } else {
      fail("the format " + quotedWord(name) + " is not known");
    }
    hasFormat = true;
  }

  void takeElement(const std::vector<std::string_view>& words) {
    if (words.size() < 3) fail("an element needs a name and a count");
    PlyElement element;
    element.name = words[1];
    const char* const end = words[2].data() + words[2].size();
    const std::from_chars_result result = std::from_chars(words[2].data(), end, element.count);
    if (result.ec != std::errc() || result.ptr != end) {
      fail(quotedWord(words[2]) + " is no count of elements");
    }
    header.elements.push_back(std::move(element));
  }

  void takeProperty(const std::vector<std::string_view>& words) {
    if (header.elements.empty()) fail("a property stands before the first element");
    PlyProperty property;
    const bool list = words.size() > 1 && words[1] == "list";
    if (words.size() < (list ? 5U : 3U)) fail("a property needs a type and a name");
    if (list) {
      property.countType = typeOf(words[2]);
      if (property.countType >= PlyType::Float32) fail("the count of a list is no whole number");
    }
    property.type = typeOf(words[list ? 3 : 1]);
    property.name = words[list ? 4 : 2];
    header.elements.back().properties.push_back(std::move(property));
  }

  PlyType typeOf(std::string_view name) const {
    const auto* row = std::find_if(typeNames.begin(), typeNames.end(),
                                   [name](const TypeName& type) { return type.name == name; });
    if (row == typeNames.end()) fail("the type " + quotedWord(name) + " is not known");
    return row->type;
  }

  std::string_view text;
  std::size_t position = 0;
  std::size_t lineBegin = 0;
  PlyHeader header;
  bool hasFormat = false;
};

}  // namespace

std::size_t sizeOf(PlyType type) {
  switch (type) {
    case PlyType::Int8:
    case PlyType::Uint8:
      return 1;
    case PlyType::Int16:
    case PlyType::Uint16:
      return 2;
    case PlyType::Float64:
      return 8;
    default:
      return 4;
  }
}

bool PlyElement::hasList() const {
  return std::any_of(properties.begin(), properties.end(),
                     [](const PlyProperty& property) { return property.countType.has_value(); });
}

std::size_t PlyElement::leastRecordSize() const {
  std::size_t size = 0;
  for (const PlyProperty& property : properties) {
    size += sizeOf(property.countType.value_or(property.type));
  }
  return size;
}

std::optional<std::size_t> PlyElement::findNumber(std::string_view property) const {
  for (std::size_t k = 0; k < properties.size(); ++k) {
    if (properties[k].name == property && !properties[k].countType) return k;
  }
  return std::nullopt;
}

bool looksLikePly(std::string_view text) {
  return text.starts_with("ply\n") || text.starts_with("ply\r\n");
}

PlyHeader readPlyHeader(std::string_view text) {
  return HeaderReader(text).read();
}

}  // namespace gravlin
