#pragma once

#include <filesystem>
#include <string>

namespace gravlin::test {

/// A new empty folder that goes away with everything in it.
class TemporaryFolder {
 public:
  explicit TemporaryFolder(
      const std::filesystem::path& parent = std::filesystem::temp_directory_path());
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  /// The path of a file of this name in the folder, whether or not it exists.
  std::string file(const std::string& name) const { return folder / name; }
  /// Writes a file and returns its path.
  std::string write(const std::string& name, const std::string& content) const;
  /// Number of files and folders inside.
  int entryCount() const;

 private:
  std::filesystem::path folder;
};

/// A folder whose files live in memory, where there is one: for tests that write thousands of files
/// and would otherwise wait for the disk after each. Elsewhere the usual folder.
std::filesystem::path folderInMemory();

/// The bytes of a file; empty when there is none.
std::string contentOf(const std::string& path);

}  // namespace gravlin::test
