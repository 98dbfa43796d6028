#pragma once

#include <cstddef>
#include <cstdio>
#include <optional>
#include <string>
#include <sys/types.h>

#include "mesh/SignalRemoval.h"

namespace gravlin {

/// A file that is written beside the one it replaces and takes its place in one step, so that at
/// every moment either the old file or the complete new one is there, also after a power cut. Until
/// `commit` succeeds the old file stands; without it the destructor leaves no trace, and neither do
/// SIGHUP, SIGINT and SIGTERM, which end the program all the same.
///
/// A symbolic link stays and what it points to is replaced; the permissions and, where allowed, the
/// owner of the old file are kept. What is not a regular file, such as a pipe or a terminal, is
/// written directly.
class SafeFile {
 public:
  /// Opens `path` for writing.
  explicit SafeFile(const std::string& path);
  ~SafeFile();
  SafeFile(const SafeFile&) = delete;
  SafeFile& operator=(const SafeFile&) = delete;

  /// Where to write; null when the file could not be opened. Results of writing need no look:
  /// `commit` reports whatever went wrong.
  std::FILE* stream() const { return file; }

  /// Brings everything to the disk and into place; closes the stream either way. True on success.
  bool commit();

  /// Why opening, writing or `commit` failed, as the system words it ("No space left on device");
  /// empty while all is well.
  std::string error() const;

 private:
  void open();
  void openBeside();
  ssize_t write(const char* data, std::size_t size);
  bool close();
  void noteError();

  std::string target;     ///< the file meant, symbolic links followed
  std::string temporary;  ///< what is written in its place; empty when it is written directly
  std::optional<SignalRemoval> removal;  ///< of `temporary`
  int descriptor = -1;                   ///< of what is written
  std::FILE* file = nullptr;             ///< a buffer in front of the descriptor
  int errorNumber = 0;                   ///< of the first failure
};

}  // namespace gravlin
