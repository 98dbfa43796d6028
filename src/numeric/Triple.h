#pragma once

#include <cstddef>
#include <cstring>

namespace gravlin {

// Three doubles side by side, one for each of three computations that take the same steps, with
// arithmetic place by place. Two forms, for machines with longer and shorter vector registers; code
// that is written for one computation and for three takes either of them, or a double, as `Value`.

/// Three places of a vector register of four. What the fourth holds means nothing.
using TripleInOne [[gnu::vector_size(32)]] = double;

/// A vector register of two and another one for the third.
struct TripleInTwo {
  using Pair [[gnu::vector_size(16)]] = double;

  friend TripleInTwo operator*(TripleInTwo a, TripleInTwo b) {
    return {a.pair * b.pair, a.last * b.last};
  }
  friend TripleInTwo& operator+=(TripleInTwo& a, TripleInTwo b) {
    a.pair += b.pair;
    a.last += b.last;
    return a;
  }

  Pair pair = {0.0, 0.0};
  double last = 0.0;
};

/// How many doubles a value holds.
template <class Value>
constexpr std::size_t places = 3;
template <>
inline constexpr std::size_t places<double> = 1;

// Reading and writing consecutive doubles of any alignment. What takes a TripleInOne is always
// inlined, to be compiled for the same registers as its caller.

inline void load(const double* from, double& value) {
  value = *from;
}
inline void load(const double* from, TripleInTwo& value) {
  std::memcpy(&value.pair, from, sizeof value.pair);
  value.last = from[2];
}
/// There has to be a double behind the three.
[[gnu::always_inline]] inline void load(const double* from, TripleInOne& value) {
  std::memcpy(&value, from, sizeof value);
}

inline void store(double* to, double value) {
  *to = value;
}
inline void store(double* to, const TripleInTwo& value) {
  std::memcpy(to, &value.pair, sizeof value.pair);
  to[2] = value.last;
}
[[gnu::always_inline]] inline void store(double* to, const TripleInOne& value) {
  store(to, TripleInTwo{__builtin_shufflevector(value, value, 0, 1), value[2]});
}

/// The same number in every place.
inline void fill(double& value, double each) {
  value = each;
}
inline void fill(TripleInTwo& value, double each) {
  value = TripleInTwo{TripleInTwo::Pair{each, each}, each};
}
[[gnu::always_inline]] inline void fill(TripleInOne& value, double each) {
  value = TripleInOne{each, each, each, each};
}

/// Adds a value to consecutive doubles.
inline void addTo(double* sum, double value) {
  *sum += value;
}
inline void addTo(double* sum, const TripleInTwo& value) {
  TripleInTwo own;
  load(sum, own);
  own += value;
  store(sum, own);
}
/// Writes two and one, so that a later read of a neighbour need not be put together from two
/// writes.
[[gnu::always_inline]] inline void addTo(double* sum, const TripleInOne& value) {
  addTo(sum, TripleInTwo{__builtin_shufflevector(value, value, 0, 1), value[2]});
}

}  // namespace gravlin
