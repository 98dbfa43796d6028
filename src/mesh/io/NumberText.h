#pragma once

namespace gravlin {

/// The most characters that one number takes: the largest float has 39 digits before the point.
inline constexpr int maxNumberLength = 48;

/// Writes what printf("%d") writes, without a NUL, and returns the end. Needs `maxNumberLength`
/// characters of room.
char* writeInt(char* out, int value);

/// Writes what printf("%f") writes in the "C" locale: six decimals, ties to even, "inf" and "nan"
/// with their sign. Needs `maxNumberLength` characters of room.
char* writeFloat(char* out, float value);

}  // namespace gravlin
