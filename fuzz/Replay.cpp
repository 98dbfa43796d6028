#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "fuzz/FuzzTarget.h"

namespace {

std::vector<std::string> filesBelow(const char* folder) {
  std::vector<std::string> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (entry.is_regular_file()) files.push_back(entry.path().string());
  }
  std::sort(files.begin(), files.end());
  return files;
}

bool holdsOn(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
  // Before the input runs, so that the last line tells which one took the program with it.
  std::printf("%s\n", path.c_str());
  std::fflush(stdout);
  try {
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  } catch (const std::exception& error) {
    std::printf("  %s\n", error.what());
    return false;
  }
  return true;
}

}  // namespace

/// FOLDER...: runs every file below the folders once. Fails when one of them breaks a promise and
/// when there is none at all.
int main(int count, char** arguments) {
  std::vector<std::string> files;
  for (int k = 1; k < count; ++k) {
    for (std::string& file : filesBelow(arguments[k])) files.push_back(std::move(file));
  }
  const auto broken = std::count_if(files.begin(), files.end(),
                                    [](const std::string& file) { return !holdsOn(file); });
  std::printf("%zu inputs, %td of them failed\n", files.size(), broken);
  return broken == 0 && !files.empty() ? 0 : 1;
}
