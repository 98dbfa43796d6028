#pragma once

#include <cstdint>
#include <string>

namespace gravlin {

/// What a file is made of, as messages call it.
struct Noun {
  const char* one;
  const char* many;
};
inline constexpr Noun vertexNoun = {"vertex", "vertices"};
inline constexpr Noun faceNoun = {"face", "faces"};

/// "1 face", "2 faces".
inline std::string counted(std::int64_t count, const Noun& noun) {
  return std::to_string(count) + " " + (count == 1 ? noun.one : noun.many);
}

}  // namespace gravlin
