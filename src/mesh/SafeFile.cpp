#include "mesh/SafeFile.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace gravlin {
namespace {

namespace fs = std::filesystem;

/// Where a chain of symbolic links ends, whether or not something is there. Links that go round are
/// left for opening to complain about.
fs::path followLinks(fs::path path) {
  constexpr int mostLinks = 40;  // as the system itself follows
  std::error_code error;
  for (int k = 0; k < mostLinks && fs::is_symlink(path, error); ++k) {
    const fs::path next = fs::read_symlink(path, error);
    if (error) break;
    path = path.parent_path() / next;  // `next` alone when it is absolute
  }
  return path;
}

fs::path folderOf(const fs::path& path) {
  return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

/// Makes a finished renaming survive a power cut. Not every file system can; nothing is lost then
/// that was not at risk before.
void syncFolder(const fs::path& folder) {
  const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return;
  (void)::fsync(descriptor);
  ::close(descriptor);
}

/// While it lives, a pipe without a reader is an error of writing; without it such a pipe ends the
/// program, and everything that is open in it.
class BrokenPipeIsAnError {
 public:
  BrokenPipeIsAnError() {
    sigset_t pending = {};
    sigemptyset(&brokenPipe);
    sigaddset(&brokenPipe, SIGPIPE);
    wasPending = ::sigpending(&pending) == 0 && sigismember(&pending, SIGPIPE) == 1;
    ::pthread_sigmask(SIG_BLOCK, &brokenPipe, &before);
  }
  ~BrokenPipeIsAnError() {
    const timespec atOnce = {};
    if (!wasPending) (void)::sigtimedwait(&brokenPipe, nullptr, &atOnce);
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
  }
  BrokenPipeIsAnError(const BrokenPipeIsAnError&) = delete;
  BrokenPipeIsAnError& operator=(const BrokenPipeIsAnError&) = delete;

 private:
  sigset_t brokenPipe = {};
  sigset_t before = {};
  bool wasPending = false;
};

}  // namespace

SafeFile::SafeFile(const std::string& path) : target(path) {
  open();
  if (errorNumber != 0) return;
  cookie_io_functions_t functions = {};
  functions.write = [](void* self, const char* data, std::size_t size) {
    return static_cast<SafeFile*>(self)->write(data, size);
  };
  file = ::fopencookie(this, "w", functions);
  if (file == nullptr) noteError();
}

SafeFile::~SafeFile() {
  if (file != nullptr) std::fclose(file);
  if (descriptor >= 0) ::close(descriptor);
  if (!temporary.empty()) ::unlink(temporary.c_str());
}

std::string SafeFile::error() const {
  return errorNumber == 0 ? std::string() : std::generic_category().message(errorNumber);
}

void SafeFile::open() {
  struct stat old = {};
  const bool exists = ::stat(target.c_str(), &old) == 0;
  if (!exists && (errno != ENOENT || target.empty())) return noteError();
  if (exists && !S_ISREG(old.st_mode)) {
    descriptor = ::open(target.c_str(), O_WRONLY | O_CLOEXEC);  // a folder refuses
    if (descriptor < 0) noteError();
    return;
  }
  target = followLinks(target);
  // Renaming could replace a file that is protected against writing.
  if (exists && ::faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0) return noteError();
  openBeside();
  if (!exists || descriptor < 0) return;
  (void)!::fchown(descriptor, old.st_uid, old.st_gid);
  (void)::fchmod(descriptor, old.st_mode & 07777U);
}

/// Creates a file of a new name in the target's folder.
void SafeFile::openBeside() {
  constexpr mode_t everyone = 0666;  // less what the process's mask takes away
  constexpr int mostNames = 1000;
  const fs::path folder = folderOf(target);
  const HeldSignals held;
  std::string name;
  for (int k = 0; k < mostNames; ++k) {
    name = folder / (".gravlin-" + std::to_string(::getpid()) + "-" + std::to_string(k));
    temporary = name;
    descriptor = ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, everyone);
    if (descriptor >= 0) {
      // The constructor still runs: no destructor would remove the file if this threw.
      removal.emplace(std::move(name));
      return;
    }
    if (errno != EEXIST) break;
  }
  noteError();
  temporary.clear();
}

void SafeFile::noteError() {
  if (errorNumber == 0) errorNumber = errno;
}

ssize_t SafeFile::write(const char* data, std::size_t size) {
  std::optional<BrokenPipeIsAnError> guard;
  if (temporary.empty()) guard.emplace();
  std::size_t done = 0;
  while (done < size) {
    const ssize_t step = ::write(descriptor, data + done, size - done);
    if (step < 0 && errno == EINTR) continue;
    if (step < 0) {
      noteError();
      break;
    }
    done += static_cast<std::size_t>(step);
  }
  return static_cast<ssize_t>(done);
}

bool SafeFile::close() {
  if (file == nullptr) return false;
  if (std::fclose(file) != 0) noteError();
  file = nullptr;
  // A pipe or a device has nothing to sync.
  if (!temporary.empty() && ::fsync(descriptor) != 0) noteError();
  if (::close(descriptor) != 0) noteError();
  descriptor = -1;
  return errorNumber == 0;
}

bool SafeFile::commit() {
  if (!close()) return false;
  if (temporary.empty()) return true;
  if (::rename(temporary.c_str(), target.c_str()) != 0) {
    noteError();
    return false;
  }
  temporary.clear();
  removal.reset();
  syncFolder(folderOf(target));
  return true;
}

}  // namespace gravlin
