#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace gravlin {

enum class PlyEncoding { Ascii, LittleEndian, BigEndian };

enum class PlyType { Int8, Uint8, Int16, Uint16, Int32, Uint32, Float32, Float64 };

/// Bytes of a number in a binary file.
std::size_t sizeOf(PlyType type);

struct PlyProperty {
  std::string name;
  PlyType type = PlyType::Float32;        ///< of the number, or of each number of a list
  std::optional<PlyType> countType = {};  ///< of the count of a list; nothing for a single number
};

struct PlyElement {
  std::string name;
  std::uint64_t count = 0;
  std::vector<PlyProperty> properties;

  bool hasList() const;
  /// Bytes that one record takes at least, with every list empty.
  std::size_t leastRecordSize() const;
  /// Which property is a single number of this name; nothing when there is none.
  std::optional<std::size_t> findNumber(std::string_view property) const;
};

struct PlyHeader {
  PlyEncoding encoding = PlyEncoding::Ascii;
  std::vector<PlyElement> elements;
  std::size_t end = 0;  ///< where the first element begins
};

/// Whether the first line is "ply", with nothing else on it.
bool looksLikePly(std::string_view text);

/// Reads the header of a text that looks like PLY. Lines end with LF or CR LF; comments and
/// obj_info are skipped. Throws ImportError.
PlyHeader readPlyHeader(std::string_view text);

}  // namespace gravlin
