#include "numeric/SolverVectors.h"

#include <exception>
#include <new>
#include <string>

#include "numeric/TextSink.h"

namespace gravlin {
namespace {

template <class Vector>
Vector allocate(std::size_t n) {
  try {
    return Vector(n + 1);
  } catch (const std::exception&) {
    nrerror("allocation failure in dvector()");
    throw std::bad_alloc();
  }
}

}  // namespace

LargeVector<double> dvector(std::size_t n) {
  return allocate<LargeVector<double>>(n);
}

UnfilledVector<double> unfilledDvector(std::size_t n) {
  return allocate<UnfilledVector<double>>(n);
}

void nrerror(std::string_view message) {
  writeText(TextStream::Error, "Numerical Recipes run-time error...\n" + std::string(message) +
                                   "\n...now exiting to system...\n");
}

}  // namespace gravlin
