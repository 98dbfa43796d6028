// The number scanner against fscanf, and the number printer against snprintf. The first byte
// chooses the conversions, the rest is the text.

#include <bit>
#include <cstdio>
#include <string>

#include "fuzz/FuzzTarget.h"
#include "mesh/io/NumberText.h"
#include "mesh/io/Scanner.h"
#include "support/LibraryScan.h"

namespace gravlin::fuzz {
namespace {

/// Up to four conversions: two bits tell how many, one bit each which.
std::string conversionsOf(std::uint8_t byte) {
  std::string conversions;
  for (int k = 0; k <= (byte & 3); ++k) conversions += (byte >> (2 + k) & 1) != 0 ? 'f' : 'd';
  return conversions;
}

template <class Number>
void comparePrinted(const char* format, Number number, char* (*write)(char*, Number)) {
  char ours[maxNumberLength];
  const std::string written(ours, write(ours, number));
  char library[64];
  std::snprintf(library, sizeof library, format, number);
  demand(written == library, "printed as " + written + " and not as " + library);
}

/// Prints every number that stands in the text.
void printAll(const std::string& text) {
  Scanner scanner(text);
  for (std::size_t k = 0; k < text.size() && !scanner.atEnd(); ++k) {
    const auto number = scanner.scanFloat();
    if (!number) break;
    comparePrinted("%f", *number, writeFloat);
    comparePrinted("%d", std::bit_cast<int>(*number), writeInt);
  }
}

}  // namespace
}  // namespace gravlin::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace gravlin;
  if (size < 2) return 0;
  const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
  const std::string difference =
      test::firstDifferenceFromLibrary(text, fuzz::conversionsOf(data[0]));
  fuzz::demand(difference.empty(), difference);
  fuzz::printAll(text);
  return 0;
}
