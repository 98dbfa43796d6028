#include "mesh/io/PlyReader.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "mesh/io/FaceFans.h"
#include "mesh/io/ImportError.h"
#include "mesh/io/NumberWords.h"
#include "mesh/io/PlyHeader.h"
#include "numeric/AvailableMemory.h"
#include "numeric/Index.h"

namespace gravlin {
namespace {

/// Which record is being read, for messages.
struct RecordPlace {
  const std::string* element = nullptr;
  std::uint64_t index = 0;
  std::uint64_t count = 0;

  std::string text() const {
    return *element + " " + std::to_string(index + 1) + " of " + std::to_string(count);
  }
};

template <class Number, bool swapped>
Number load(const char* bytes) {
  if constexpr (sizeof(Number) == 1 || !swapped) {
    Number value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
  } else {
    std::array<char, sizeof(Number)> turned;
    std::reverse_copy(bytes, bytes + sizeof(Number), turned.begin());
    return std::bit_cast<Number>(turned);
  }
}

/// Calls `work` with a value of the C++ type that `type` stands for.
template <class Work>
auto withType(PlyType type, Work work) {
  switch (type) {
    case PlyType::Int8:
      return work(std::int8_t{});
    case PlyType::Uint8:
      return work(std::uint8_t{});
    case PlyType::Int16:
      return work(std::int16_t{});
    case PlyType::Uint16:
      return work(std::uint16_t{});
    case PlyType::Int32:
      return work(std::int32_t{});
    case PlyType::Uint32:
      return work(std::uint32_t{});
    case PlyType::Float32:
      return work(float{});
    default:
      return work(double{});
  }
}

/// The numbers of a binary body, one after the other.
template <bool swapped>
class BinarySource {
 public:
  BinarySource(std::string_view wholeText, std::size_t position)
      : text(wholeText), current(text.data() + position), end(text.data() + text.size()) {}

  RecordPlace place;

  double number(PlyType type) {
    const char* bytes = take(sizeOf(type));
    return withType(type, [bytes](auto zero) {
      return static_cast<double>(load<decltype(zero), swapped>(bytes));
    });
  }

  std::int64_t integer(PlyType type) {
    if (type == PlyType::Float32 || type == PlyType::Float64) return wholeNumber(number(type));
    const char* bytes = take(sizeOf(type));
    return withType(type, [bytes](auto zero) {
      return static_cast<std::int64_t>(load<decltype(zero), swapped>(bytes));
    });
  }

  void skip(PlyType type, std::uint64_t count) {
    if (count > left() / sizeOf(type)) failAtEnd();
    current += count * sizeOf(type);
  }

  /// Numbers that are left, if all take as much as one of this type.
  std::uint64_t numbersLeft(PlyType type) const { return left() / sizeOf(type); }

  /// The bytes of all records of an element, each of the same size; goes behind them.
  const char* takeRecords(std::uint64_t count, std::size_t size) {
    if (size != 0 && count > left() / size) {
      place.index = left() / size;
      failAtEnd();
    }
    return take(count * size);
  }

  /// For loops that read by themselves: where they are, and where they have come to.
  const char* position() const { return current; }
  const char* textEnd() const { return end; }
  void moveTo(const char* reached) { current = reached; }

  std::uint64_t left() const { return static_cast<std::uint64_t>(end - current); }
  std::uint64_t bytesBehind() const { return left(); }

  [[noreturn]] void fail(const std::string& reason) const {
    throw errorAtByte(static_cast<std::size_t>(current - text.data()),
                      place.text() + ": " + reason);
  }

 private:
  [[noreturn]] void failAtEnd() const {
    throw errorAtByte(text.size(), "the file ends in " + place.text());
  }

  const char* take(std::size_t size) {
    if (left() < size) failAtEnd();
    const char* const taken = current;
    current += size;
    return taken;
  }

  std::int64_t wholeNumber(double value) const {
    if (value != std::floor(value)) fail("an index is no whole number");
    constexpr double limit = 4611686018427387904.0;  // 2^62
    return static_cast<std::int64_t>(std::clamp(value, -limit, limit));
  }

  std::string_view text;
  const char* current;
  const char* end;
};

/// The numbers of an ascii body.
class AsciiSource {
 public:
  AsciiSource(std::string_view wholeText, std::size_t position)
      : text(wholeText), current(text.data() + position), end(text.data() + text.size()) {}

  RecordPlace place;

  double number(PlyType /*type*/) {
    goToWord();
    double value = 0.0;
    const char* const behind = readDouble(current, end, value);
    if (behind == nullptr) failAtWord("is no number");
    current = behind;
    return value;
  }

  std::int64_t integer(PlyType /*type*/) {
    goToWord();
    std::int64_t value = 0;
    const char* const behind = readInteger(current, end, value);
    if (behind == nullptr) failAtWord("is no whole number");
    current = behind;
    return value;
  }

  void skip(PlyType /*type*/, std::uint64_t count) {
    if (count > numbersLeft(PlyType::Uint8)) {
      current = end;
      goToWord();
    }
    for (; count > 0; --count) {
      goToWord();
      while (!isSpaceCharacter(*current) && current != end) ++current;
    }
  }

  /// A number takes a digit and something that ends it, but for the last one.
  std::uint64_t numbersLeft(PlyType /*type*/) const {
    return (static_cast<std::uint64_t>(end - current) + 1) / 2;
  }

  std::uint64_t bytesBehind() const {
    const char* const word = std::find_if_not(current, end, isSpaceCharacter);
    return static_cast<std::uint64_t>(end - word);
  }

  [[noreturn]] void fail(const std::string& reason) const {
    throw errorInLine(text, static_cast<std::size_t>(current - text.data()),
                      place.text() + ": " + reason);
  }

 private:
  void goToWord() {
    while (isSpaceCharacter(*current)) ++current;
    if (current == end) {
      throw errorInLine(text, text.size(), "the file ends in " + place.text());
    }
  }

  [[noreturn]] void failAtWord(const char* reason) const {
    fail(quotedWord({current, end}) + " " + reason);
  }

  std::string_view text;
  const char* current;
  const char* end;
};

/// Positions out of records of one size, all of one type; `offsets` of x, y and z in a record.
template <class Number, bool swapped>
void copyPositions(const char* records, std::size_t recordSize,
                   const std::array<std::size_t, 3>& offsets, std::span<double> positions) {
  for (std::size_t c = 0; c < positions.size(); c += 3) {
    positions[c] = static_cast<double>(load<Number, swapped>(records + offsets[0]));
    positions[c + 1] = static_cast<double>(load<Number, swapped>(records + offsets[1]));
    positions[c + 2] = static_cast<double>(load<Number, swapped>(records + offsets[2]));
    records += recordSize;
  }
}

/// Takes the elements of a body into a mesh.
template <class Source>
class BodyReader {
 public:
  BodyReader(const PlyHeader& plyHeader, Source numbers)
      : header(plyHeader), source(std::move(numbers)) {}

  ImportedMesh read() {
    vertices = find("vertex");
    faces = find("face");
    if (vertices == nullptr) throw ImportError("its header announces no vertices");
    findCorners();
    requireRoom();
    for (const PlyElement& element : header.elements) {
      source.place = {&element.name, 0, element.count};
      if (&element == vertices) {
        readVertices();
      } else if (&element == faces) {
        readFaces();
      } else {
        skip(element);
      }
    }
    mesh.warnings.bytesBehind = static_cast<std::int64_t>(source.bytesBehind());
    return std::move(mesh);
  }

 private:
  const PlyElement* find(std::string_view name) const {
    for (const PlyElement& element : header.elements) {
      if (element.name == name) return &element;
    }
    return nullptr;
  }

  /// Faces without a list of corners are skipped as what is not known.
  void findCorners() {
    if (faces == nullptr) return;
    const auto isCorners = [](const PlyProperty& property) {
      return property.countType &&
             (property.name == "vertex_indices" || property.name == "vertex_index");
    };
    const auto list = std::find_if(faces->properties.begin(), faces->properties.end(), isCorners);
    corners = static_cast<std::size_t>(list - faces->properties.begin());
    if (list == faces->properties.end()) faces = nullptr;
  }

  /// Before anything is allocated: a small file may announce a lot.
  void requireRoom() {
    std::uint64_t left = source.numbersLeft(PlyType::Uint8);
    for (const PlyElement& element : header.elements) {
      const std::size_t least = leastSize(element);
      if (least == 0) continue;
      if (element.count > left / least) {
        throw ImportError("its header announces " + std::to_string(element.count) + " elements \"" +
                          element.name + "\", but the file is too short for them");
      }
      left -= element.count * least;
    }
    const std::uint64_t faceCount = faces == nullptr ? 0 : faces->count;
    for (const std::uint64_t count : {vertices->count, faceCount}) {
      if (count > maxArrayEntries / 3) throw std::length_error("it has more than can be held");
    }
    const std::uint64_t numberCount = vertices->count * vertices->properties.size();
    requireMemory(sizeof(double) * numberCount + 3 * sizeof(int) * faceCount);
  }

  /// Of a record, in the units of `numbersLeft`.
  std::size_t leastSize(const PlyElement& element) const {
    return header.encoding == PlyEncoding::Ascii ? element.properties.size()
                                                 : element.leastRecordSize();
  }

  // --- Vertices ---

  void readVertices() {
    const std::size_t count = vertices->count;
    constexpr std::array<const char*, 3> names = {"x", "y", "z"};
    std::array<std::size_t, 3> axes = {};
    for (std::size_t axis = 0; axis < 3; ++axis) {
      const std::optional<std::size_t> property = vertices->findNumber(names[axis]);
      if (!property) {
        throw ImportError(std::string("its vertices have no property \"") + names[axis] + "\"");
      }
      axes[axis] = *property;
    }
    if (count == 0) return;  // there is nowhere for a number to go
    mesh.positions.resize(3 * count);
    std::vector<double*> targets(vertices->properties.size(), nullptr);
    for (std::size_t axis = 0; axis < 3; ++axis) {
      targets[axes[axis]] = mesh.positions.data() + axis;
    }
    mesh.properties.reserve(vertices->properties.size());
    for (std::size_t k = 0; k < targets.size(); ++k) {
      if (targets[k] != nullptr || vertices->properties[k].countType) continue;
      mesh.properties.push_back({vertices->properties[k].name, std::vector<double>(count)});
      targets[k] = mesh.properties.back().values.data();
    }
    if constexpr (requires { source.takeRecords(0, 0); }) {
      if (!vertices->hasList()) return copyVertices(axes, targets);
    }
    readVertexRecords(axes, targets);
  }

  void readVertexRecords(const std::array<std::size_t, 3>& axes,
                         const std::vector<double*>& targets) {
    const std::vector<PlyProperty>& properties = vertices->properties;
    std::vector<std::size_t> steps(targets.size(), 1);
    for (const std::size_t axis : axes) steps[axis] = 3;
    for (std::size_t i = 0; i < vertices->count; ++i) {
      source.place.index = i;
      for (std::size_t k = 0; k < properties.size(); ++k) {
        if (properties[k].countType) {
          skipList(properties[k]);
        } else {
          targets[k][i * steps[k]] = source.number(properties[k].type);
        }
      }
    }
  }

  /// Records that are all of one size, property by property.
  void copyVertices(const std::array<std::size_t, 3>& axes, const std::vector<double*>& targets) {
    const std::vector<PlyProperty>& properties = vertices->properties;
    const std::size_t recordSize = vertices->leastRecordSize();
    const char* const records = source.takeRecords(vertices->count, recordSize);
    std::vector<std::size_t> offsets;
    std::size_t offset = 0;
    for (const PlyProperty& property : properties) {
      offsets.push_back(offset);
      offset += sizeOf(property.type);
    }
    const PlyType type = properties[axes[0]].type;
    const bool oneType = properties[axes[1]].type == type && properties[axes[2]].type == type;
    if (oneType) {
      withType(type, [&](auto zero) {
        copyPositions<decltype(zero), isSwapped>(
            records, recordSize, {offsets[axes[0]], offsets[axes[1]], offsets[axes[2]]},
            mesh.positions);
      });
    }
    for (std::size_t k = 0; k < properties.size(); ++k) {
      const bool isPosition = std::find(axes.begin(), axes.end(), k) != axes.end();
      if (isPosition && oneType) continue;
      copyColumn({records + offsets[k], recordSize, properties[k].type}, targets[k],
                 isPosition ? 3 : 1);
    }
  }

  struct Column {
    const char* first;
    std::size_t recordSize;
    PlyType type;
  };

  void copyColumn(const Column& column, double* target, std::size_t step) {
    withType(column.type, [&](auto zero) {
      const char* bytes = column.first;
      for (std::uint64_t i = 0; i < vertices->count; ++i) {
        *target = static_cast<double>(load<decltype(zero), isSwapped>(bytes));
        bytes += column.recordSize;
        target += step;
      }
    });
  }

  // --- Faces ---

  void readFaces() {
    FaceFans fans(mesh, static_cast<std::int64_t>(vertices->count), faces->count);
    std::vector<std::int64_t> polygon;
    std::uint64_t first = 0;
    if constexpr (requires { source.takeRecords(0, 0); }) first = readPlainTriangles(fans);
    for (std::uint64_t f = first; f < faces->count; ++f) {
      source.place.index = f;
      for (std::size_t k = 0; k < faces->properties.size(); ++k) {
        const PlyProperty& property = faces->properties[k];
        if (k == corners) {
          readCorners(property, fans, polygon);
        } else if (property.countType) {
          skipList(property);
        } else {
          source.skip(property.type, 1);
        }
      }
    }
    fans.finish();
  }

  /// What most binary files hold: nothing but a byte that says 3 and three corners of four bytes.
  /// Returns how many faces these were, up to the first one that is different.
  std::uint64_t readPlainTriangles(FaceFans& fans) {
    const PlyProperty& list = faces->properties[corners];
    const bool plain = faces->properties.size() == 1 && sizeOf(*list.countType) == 1 &&
                       (list.type == PlyType::Int32 || list.type == PlyType::Uint32);
    if (!plain) return 0;
    constexpr std::size_t recordSize = 13;
    const char* bytes = source.position();
    const std::uint64_t whole = std::min<std::uint64_t>(faces->count, source.left() / recordSize);
    std::uint64_t f = 0;
    for (; f < whole && *bytes == 3; ++f, bytes += recordSize) {
      // A negative corner becomes one beyond every vertex.
      fans.addTriangle(load<std::uint32_t, isSwapped>(bytes + 1),
                       load<std::uint32_t, isSwapped>(bytes + 5),
                       load<std::uint32_t, isSwapped>(bytes + 9));
    }
    source.moveTo(bytes);
    return f;
  }

  void readCorners(const PlyProperty& list, FaceFans& fans, std::vector<std::int64_t>& polygon) {
    const std::uint64_t count = readListCount(list);
    if (count == 3) {
      const std::int64_t a = source.integer(list.type);
      const std::int64_t b = source.integer(list.type);
      return fans.addTriangle(a, b, source.integer(list.type));
    }
    polygon.clear();
    for (std::uint64_t k = 0; k < count; ++k) polygon.push_back(source.integer(list.type));
    fans.add(polygon);
  }

  std::uint64_t readListCount(const PlyProperty& list) {
    const std::int64_t count = source.integer(*list.countType);
    if (count < 0) source.fail("a list has a negative count");
    return static_cast<std::uint64_t>(count);
  }

  void skipList(const PlyProperty& list) { source.skip(list.type, readListCount(list)); }

  void skip(const PlyElement& element) {
    if (element.count > 0) mesh.warnings.skippedElements.push_back(element.name);
    if (element.properties.empty()) return;
    for (std::uint64_t i = 0; i < element.count; ++i) {
      source.place.index = i;
      for (const PlyProperty& property : element.properties) {
        if (property.countType) {
          skipList(property);
        } else {
          source.skip(property.type, 1);
        }
      }
    }
  }

  static constexpr bool isSwapped = std::is_same_v<Source, BinarySource<true>>;

  const PlyHeader& header;
  Source source;
  ImportedMesh mesh;
  const PlyElement* vertices = nullptr;
  const PlyElement* faces = nullptr;
  std::size_t corners = 0;  ///< which property of a face is the list of corners
};

template <class Source>
ImportedMesh readBody(const PlyHeader& header, std::string_view text) {
  return BodyReader<Source>(header, Source(text, header.end)).read();
}

}  // namespace

ImportedMesh importPly(std::string_view text) {
  const PlyHeader header = readPlyHeader(text);
  constexpr bool bigHost = std::endian::native == std::endian::big;
  switch (header.encoding) {
    case PlyEncoding::LittleEndian:
      return readBody<BinarySource<bigHost>>(header, text);
    case PlyEncoding::BigEndian:
      return readBody<BinarySource<!bigHost>>(header, text);
    default:
      return readBody<AsciiSource>(header, text);
  }
}

}  // namespace gravlin
