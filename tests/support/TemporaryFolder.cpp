#include "support/TemporaryFolder.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>
#include <unistd.h>

namespace gravlin::test {

TemporaryFolder::TemporaryFolder(const std::filesystem::path& parent) {
  std::string name = parent / "gravlin-test-XXXXXX";
  if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
  folder = name;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(folder, ignored);
}

std::string TemporaryFolder::write(const std::string& name, const std::string& content) const {
  std::ofstream(file(name), std::ios::binary) << content;
  return file(name);
}

int TemporaryFolder::entryCount() const {
  const std::filesystem::directory_iterator entries(folder);
  return static_cast<int>(std::distance(begin(entries), end(entries)));
}

std::filesystem::path folderInMemory() {
  const char* memory = "/dev/shm";
  const bool usable = ::access(memory, W_OK | X_OK) == 0;
  return usable ? std::filesystem::path(memory) : std::filesystem::temp_directory_path();
}

std::string contentOf(const std::string& path) {
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

}  // namespace gravlin::test
