#include <cstdio>
#include <filesystem>
#include <iostream>
#include <string>

#include "generator/Gear.h"
#include "generator/Gourd.h"
#include "generator/Relief.h"
#include "mesh/SafeFile.h"
#include "numeric/PrintableText.h"

/// Writes every example mesh into the folder named on the command line.
int main(int argumentCount, char** arguments) {
  using namespace gravlin::examples;
  if (argumentCount != 2) {
    std::cerr << "Usage: make_examples FOLDER\n";
    return 2;
  }
  const std::filesystem::path folder = arguments[1];
  bool allWritten = true;
  for (const auto& [name, shape] :
       {std::pair("gear.ply2", gear()), std::pair("gourd.ply2", gourd()),
        std::pair("relief.ply2", relief())}) {
    const std::string path = folder / name;
    gravlin::SafeFile file(path);
    if (file.stream() != nullptr) std::fputs(ply2Text(shape).c_str(), file.stream());
    if (!file.commit()) {
      std::cerr << "Cannot write " << gravlin::printable(path) << ": " << file.error() << ".\n";
      allWritten = false;
    }
  }
  return allWritten ? 0 : 1;
}
