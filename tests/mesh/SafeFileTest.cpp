#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <new>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "mesh/SafeFile.h"
#include "support/Allocations.h"
#include "support/TemporaryFolder.h"

namespace gravlin {
namespace {

namespace fs = std::filesystem;
using test::contentOf;
using test::TemporaryFolder;

bool writeSafely(const std::string& path, const std::string& content) {
  SafeFile file(path);
  if (file.stream() == nullptr) return false;
  std::fputs(content.c_str(), file.stream());
  return file.commit();
}

/// Lets no file grow beyond `bytes` while it lives, as a full disk does.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) : oldHandler(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &oldLimit);
    const rlimit limit = {bytes, oldLimit.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &oldLimit);
    std::signal(SIGXFSZ, oldHandler);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  void (*oldHandler)(int);
  rlimit oldLimit = {};
};

/// Takes the rights of root away while it lives, so that permissions count.
class OrdinaryUser {
 public:
  OrdinaryUser() { isOrdinary = geteuid() != 0 || seteuid(65534) == 0; }
  ~OrdinaryUser() {
    if (getuid() == 0) isOrdinary = seteuid(0) == 0;
  }
  OrdinaryUser(const OrdinaryUser&) = delete;
  OrdinaryUser& operator=(const OrdinaryUser&) = delete;

  bool isOrdinary;
};

TEST(SafeFile, WritesANewFileWithThePermissionsThatAnyNewFileGets) {
  const TemporaryFolder folder;
  ASSERT_TRUE(writeSafely(folder.file("a"), "text"));
  EXPECT_EQ(contentOf(folder.file("a")), "text");
  EXPECT_EQ(folder.entryCount(), 1);
  folder.write("b", "");
  EXPECT_EQ(fs::status(folder.file("a")).permissions(), fs::status(folder.file("b")).permissions());
}

TEST(SafeFile, ReplacesAFileAndKeepsItsPermissions) {
  const TemporaryFolder folder;
  const std::string path = folder.write("a", "a longer text than the new one");
  fs::permissions(path, fs::perms::owner_read | fs::perms::owner_write | fs::perms::others_write);
  const fs::perms before = fs::status(path).permissions();
  ASSERT_TRUE(writeSafely(path, "new"));
  EXPECT_EQ(contentOf(path), "new");
  EXPECT_EQ(fs::status(path).permissions(), before);
  EXPECT_EQ(folder.entryCount(), 1);
}

TEST(SafeFile, LeavesTheOldFileUntilItIsCommitted) {
  const TemporaryFolder folder;
  const std::string path = folder.write("a", "old");
  {
    SafeFile file(path);
    std::fputs("new", file.stream());
    std::fflush(file.stream());
    EXPECT_EQ(contentOf(path), "old");
  }
  EXPECT_EQ(contentOf(path), "old");
  EXPECT_EQ(folder.entryCount(), 1);
}

TEST(SafeFile, FollowsLinksAndKeepsThem) {
  const TemporaryFolder folder;
  const std::string target = folder.write("target", "old");
  fs::create_symlink("target", folder.file("near"));
  fs::create_symlink(folder.file("near"), folder.file("far"));
  ASSERT_TRUE(writeSafely(folder.file("far"), "new"));
  EXPECT_EQ(contentOf(target), "new");
  EXPECT_TRUE(fs::is_symlink(folder.file("far")));
  EXPECT_TRUE(fs::is_symlink(folder.file("near")));
  EXPECT_EQ(folder.entryCount(), 3);
}

TEST(SafeFile, CreatesWhatADanglingLinkPointsTo) {
  const TemporaryFolder folder;
  fs::create_symlink("target", folder.file("link"));
  ASSERT_TRUE(writeSafely(folder.file("link"), "new"));
  EXPECT_EQ(contentOf(folder.file("target")), "new");
  EXPECT_TRUE(fs::is_symlink(folder.file("link")));
}

TEST(SafeFile, LinksThatGoRoundAreAnError) {
  const TemporaryFolder folder;
  fs::create_symlink("b", folder.file("a"));
  fs::create_symlink("a", folder.file("b"));
  SafeFile file(folder.file("a"));
  EXPECT_EQ(file.stream(), nullptr);
  EXPECT_EQ(file.error(), "Too many levels of symbolic links");
  EXPECT_EQ(folder.entryCount(), 2);
}

TEST(SafeFile, AFullDiskLeavesTheOldFileAndSaysSo) {
  const TemporaryFolder folder;
  const std::string path = folder.write("a", "old");
  const FileSizeLimit limit(100000);
  SafeFile file(path);
  for (int k = 0; k < 100000; ++k) std::fputs("0123456789", file.stream());
  EXPECT_FALSE(file.commit());
  EXPECT_EQ(file.error(), "File too large");
  EXPECT_EQ(contentOf(path), "old");
}

TEST(SafeFile, AFailedWriteLeavesNothingBehind) {
  const TemporaryFolder folder;
  {
    const FileSizeLimit limit(10);
    SafeFile file(folder.file("a"));
    std::fputs("more than ten characters", file.stream());
    EXPECT_FALSE(file.commit());
    EXPECT_FALSE(file.commit());
  }
  EXPECT_EQ(folder.entryCount(), 0);
}

TEST(SafeFile, RefusedMemoryLeavesNothingBehind) {
  const TemporaryFolder folder;
  const std::string path = folder.file("a name too long for a string without memory of its own");
  constexpr std::size_t moreThanThereAre = 40;
  int refusals = 0;
  for (std::size_t n = 1; n <= moreThanThereAre; ++n) {
    try {
      const test::AllocationFailure failure(n);
      const SafeFile file(path);
    } catch (const std::bad_alloc&) {
      ++refusals;
    }
    EXPECT_EQ(folder.entryCount(), 0) << "call " << n;
  }
  EXPECT_GT(refusals, 0);
}

TEST(SafeFile, AFolderAndAMissingFolderAreErrors) {
  const TemporaryFolder folder;
  EXPECT_EQ(SafeFile(folder.file("")).error(), "Is a directory");
  EXPECT_EQ(SafeFile(folder.file("none/a")).error(), "No such file or directory");
  EXPECT_EQ(SafeFile("").error(), "No such file or directory");
  EXPECT_EQ(folder.entryCount(), 0);
}

TEST(SafeFile, AProtectedFileOrFolderStaysAsItIs) {
  const TemporaryFolder folder;
  fs::permissions(folder.file(""), fs::perms::all);
  const std::string path = folder.write("a", "old");
  fs::permissions(path, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
  fs::create_directory(folder.file("closed"));
  fs::permissions(folder.file("closed"), fs::perms::owner_read | fs::perms::owner_exec |
                                             fs::perms::others_read | fs::perms::others_exec);
  {
    const OrdinaryUser user;
    ASSERT_TRUE(user.isOrdinary);
    EXPECT_EQ(SafeFile(path).error(), "Permission denied");
    EXPECT_EQ(SafeFile(folder.file("closed/a")).error(), "Permission denied");
  }
  EXPECT_EQ(contentOf(path), "old");
  EXPECT_EQ(folder.entryCount(), 2);
}

TEST(SafeFile, WritesToWhatIsNoRegularFileDirectly) {
  EXPECT_TRUE(writeSafely("/dev/null", "text"));
  SafeFile full("/dev/full");
  ASSERT_NE(full.stream(), nullptr);
  std::fputs("text", full.stream());
  EXPECT_FALSE(full.commit());
  EXPECT_EQ(full.error(), "No space left on device");
  EXPECT_TRUE(fs::is_character_file("/dev/full"));
}

TEST(SafeFile, APipeWhoseReaderHasGoneIsAnErrorAndNotTheEndOfTheProgram) {
  const TemporaryFolder folder;
  const std::string path = folder.file("pipe");
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  const int reader = open(path.c_str(), O_RDONLY | O_NONBLOCK);
  SafeFile file(path);
  ASSERT_NE(file.stream(), nullptr);
  close(reader);
  std::fputs("text", file.stream());
  EXPECT_FALSE(file.commit());
  EXPECT_EQ(file.error(), "Broken pipe");
  EXPECT_TRUE(fs::is_fifo(path));
  sigset_t pending = {};
  sigpending(&pending);
  EXPECT_EQ(sigismember(&pending, SIGPIPE), 0);
}

TEST(SafeFile, ANameAsLongAsTheSystemAllowsCanBeReplaced) {
  const TemporaryFolder folder;
  const std::string path = folder.write(std::string(255, 'a'), "old");
  EXPECT_TRUE(writeSafely(path, "new"));
  EXPECT_EQ(contentOf(path), "new");
}

}  // namespace
}  // namespace gravlin
