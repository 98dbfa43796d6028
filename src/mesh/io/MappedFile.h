#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "mesh/io/StreamText.h"

namespace gravlin {

/// The content of a file while this lives, followed by a NUL that does not belong to it. A regular
/// file is mapped, so that its pages are not copied; it must not be cut short meanwhile. A pipe is
/// read to its end.
class MappedFile {
 public:
  /// Throws std::system_error when the file cannot be read, std::runtime_error for a folder or a
  /// device and std::bad_alloc without memory.
  explicit MappedFile(const std::string& path);
  ~MappedFile();
  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;

  std::string_view view() const { return content; }

 private:
  bool map(int descriptor, std::size_t size);

  StreamText text;  ///< of what cannot be mapped
  void* mapping = nullptr;
  std::size_t mappedBytes = 0;
  std::string_view content;
};

}  // namespace gravlin
