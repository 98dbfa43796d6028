#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "generator/Gear.h"
#include "generator/Gourd.h"
#include "generator/Relief.h"

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
    std::ofstream file(folder / name, std::ios::binary);
    file << ply2Text(shape) << std::flush;
    if (!file) {
      std::cerr << "Cannot write " << folder / name << '\n';
      allWritten = false;
    }
  }
  return allWritten ? 0 : 1;
}
