#include <cstdio>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <unistd.h>

#include "mesh/io/MappedFile.h"
#include "support/TemporaryFolder.h"

namespace gravlin {
namespace {

using test::TemporaryFolder;

/// Also of files that end with a page of memory, behind which there would be nothing.
TEST(MappedFile, ANulFollowsTheContentWhateverItsSize) {
  const TemporaryFolder folder;
  const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
  for (const std::size_t size :
       {std::size_t{0}, std::size_t{1}, page - 1, page, page + 1, 2 * page}) {
    const std::string content(size, 'x');
    const MappedFile file(folder.write("file", content));
    EXPECT_EQ(file.view(), content);
    EXPECT_EQ(file.view().data()[size], '\0') << size;
  }
}

TEST(MappedFile, APipeIsReadToItsEnd) {
  const TemporaryFolder folder;
  const std::string path = folder.file("pipe");
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  const std::string content(300000, 'y');
  std::thread writer([&] {
    std::FILE* stream = std::fopen(path.c_str(), "w");
    std::fwrite(content.data(), 1, content.size(), stream);
    std::fclose(stream);
  });
  const MappedFile file(path);
  writer.join();
  EXPECT_EQ(file.view(), content);
}

TEST(MappedFile, WhatCannotBeReadIsAnError) {
  const TemporaryFolder folder;
  EXPECT_THROW(MappedFile(folder.file("nothing")), std::system_error);
  EXPECT_THROW(MappedFile(folder.file("")), std::runtime_error);
  EXPECT_THROW(MappedFile("/dev/zero"), std::runtime_error);
}

}  // namespace
}  // namespace gravlin
