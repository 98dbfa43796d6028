#pragma once

#include <string>

namespace gravlin {

/// No array of a mesh that is read may have more entries.
inline constexpr int maxArrayEntries = 500'000'000;

/// How much of what a file was to hold has been read.
enum class ReadExtent {
  Whole,
  Partial,  ///< it ended early, or a number on the way could not be read
  Nothing   ///< not even its first number, or nothing reads its extension
};

/// How a file was read.
struct ReadReport {
  std::string oddities;  ///< "the file ended in face 3 of 8"; empty when nothing was odd
  ReadExtent extent = ReadExtent::Whole;
  double positionLoss = 0.0;  ///< by normalizing, see PositionLoss.h
  bool hasReader = true;      ///< whether files of this extension are read at all
};

}  // namespace gravlin
