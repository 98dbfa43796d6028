#include "mesh/io/MappedFile.h"

#include <cerrno>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace gravlin {
namespace {

struct CloseStream {
  void operator()(std::FILE* stream) const { std::fclose(stream); }
};
using Stream = std::unique_ptr<std::FILE, CloseStream>;

/// Before opening: a folder would only fail at the first read, and a device may never end.
void requireFileOrPipe(const std::string& path) {
  struct stat status = {};
  if (::stat(path.c_str(), &status) != 0) return;
  if (S_ISDIR(status.st_mode)) throw std::runtime_error("it is a folder");
  if (!S_ISREG(status.st_mode) && !S_ISFIFO(status.st_mode)) {
    throw std::runtime_error("it is a device");
  }
}

}  // namespace

MappedFile::MappedFile(const std::string& path) {
  requireFileOrPipe(path);
  const Stream stream(std::fopen(path.c_str(), "re"));
  if (!stream) throw std::system_error(errno, std::generic_category());
  const int descriptor = fileno(stream.get());
  struct stat status = {};
  if (::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_size > 0 &&
      map(descriptor, static_cast<std::size_t>(status.st_size))) {
    return;
  }
  text = readToEnd(stream.get());
  if (text.errorNumber != 0) throw std::system_error(text.errorNumber, std::generic_category());
  content = text.view();
}

MappedFile::~MappedFile() {
  if (mapping != nullptr) ::munmap(mapping, mappedBytes);
}

/// Puts the file over empty pages that reach at least one byte further, so that a NUL follows also
/// where it ends with a page. False where files cannot be mapped.
bool MappedFile::map(int descriptor, std::size_t size) {
  const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
  const std::size_t bytes = (size / page + 1) * page;
  void* const pages = ::mmap(nullptr, bytes, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (pages == MAP_FAILED) return false;
  const void* const file =
      ::mmap(pages, size, PROT_READ, MAP_PRIVATE | MAP_FIXED | MAP_POPULATE, descriptor, 0);
  if (file == MAP_FAILED) {
    ::munmap(pages, bytes);
    return false;
  }
  mapping = pages;
  mappedBytes = bytes;
  content = {static_cast<const char*>(pages), size};
  return true;
}

}  // namespace gravlin
