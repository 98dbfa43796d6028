#pragma once

#include <cstddef>
#include <cstring>

namespace gravlin {

/// Three doubles side by side, one for each of three computations that take the same steps, with
/// arithmetic place by place. The first two share a vector register.
struct Triple {
  // The smallest vector register that every machine we run on has.
  using Pair [[gnu::vector_size(16)]] = double;

  Triple() = default;
  explicit Triple(double each) : pair{each, each}, last(each) {}
  Triple(double a, double b, double c) : pair{a, b}, last(c) {}

  double operator[](std::size_t place) const { return place < 2 ? pair[place] : last; }

  friend Triple operator+(Triple a, Triple b) { return {a.pair + b.pair, a.last + b.last}; }
  friend Triple operator-(Triple a, Triple b) { return {a.pair - b.pair, a.last - b.last}; }
  friend Triple operator*(Triple a, Triple b) { return {a.pair * b.pair, a.last * b.last}; }
  friend Triple operator*(double a, Triple b) { return Triple(a) * b; }
  friend Triple operator/(Triple a, Triple b) { return {a.pair / b.pair, a.last / b.last}; }
  friend Triple operator/(Triple a, double b) { return a / Triple(b); }

  Pair pair = {0.0, 0.0};
  double last = 0.0;

 private:
  Triple(Pair ofTwo, double third) : pair(ofTwo), last(third) {}
};

/// How many doubles a value holds, for code that is written for one computation and for three.
template <class Value>
constexpr std::size_t places = 1;
template <>
inline constexpr std::size_t places<Triple> = 3;

inline double placeOf(double value, std::size_t /*place*/) {
  return value;
}
inline double placeOf(Triple value, std::size_t place) {
  return value[place];
}

/// Reads a value from, or writes it to, consecutive doubles of any alignment.
template <class Value>
Value load(const double* from);
template <>
inline double load<double>(const double* from) {
  return *from;
}
template <>
inline Triple load<Triple>(const double* from) {
  Triple value;
  std::memcpy(&value.pair, from, sizeof value.pair);
  value.last = from[2];
  return value;
}
inline void store(double* to, double value) {
  *to = value;
}
inline void store(double* to, Triple value) {
  std::memcpy(to, &value.pair, sizeof value.pair);
  to[2] = value.last;
}

}  // namespace gravlin
