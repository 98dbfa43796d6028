#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <thread>

#include "mesh/io/MeshFile.h"
#include "mesh/io/StreamText.h"
#include "support/TemporaryFolder.h"

namespace gravlin {
namespace {

using test::TemporaryFolder;
using Stream = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

Stream openStream(const std::string& path) {
  return {std::fopen(path.c_str(), "r"), std::fclose};
}

/// Text of a length that no power of two divides, with every byte in it.
std::string bytes(int count) {
  std::string text;
  for (int k = 0; k < count; ++k) text += static_cast<char>(k % 251 == 0 ? 0 : k);
  return text;
}

TEST(StreamText, IsTheWholeFileWithANulBehindIt) {
  const TemporaryFolder folder;
  for (const int count : {0, 1, 65534, 65535, 65536, 300001}) {
    const Stream stream = openStream(folder.write("a", bytes(count)));
    const StreamText text = readToEnd(stream.get());
    EXPECT_EQ(text.view(), bytes(count)) << count;
    EXPECT_EQ(text.characters[text.size], '\0') << count;
    EXPECT_EQ(text.errorNumber, 0) << count;
  }
}

TEST(StreamText, IsTheRestOfAStreamThatWasReadBefore) {
  const TemporaryFolder folder;
  const Stream stream = openStream(folder.write("a", "0123456789"));
  std::fgetc(stream.get());
  EXPECT_EQ(readToEnd(stream.get()).view(), "123456789");
}

TEST(StreamText, FollowsAPipeOfUnknownLength) {
  const TemporaryFolder folder;
  const std::string path = folder.file("pipe");
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  std::thread writer([&] {
    const Stream out(std::fopen(path.c_str(), "w"), std::fclose);
    const std::string text = bytes(1000003);
    std::fwrite(text.data(), 1, text.size(), out.get());
  });
  const Stream stream = openStream(path);
  const StreamText text = readToEnd(stream.get());
  writer.join();
  EXPECT_EQ(text.view(), bytes(1000003));
}

TEST(StreamText, TellsThatAStreamCannotBeRead) {
  const TemporaryFolder folder;
  const Stream stream = openStream(folder.file(""));
  ASSERT_TRUE(stream);
  EXPECT_EQ(readToEnd(stream.get()).errorNumber, EISDIR);
}

TEST(StreamText, AMeshMayComeThroughAPipe) {
  const TemporaryFolder folder;
  const std::string path = folder.file("pipe.ply2");
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  std::thread writer([&] {
    const Stream out(std::fopen(path.c_str(), "w"), std::fclose);
    std::fputs("3 1 0 0 0 1 0 0 0 1 0 3 0 1 2", out.get());
  });
  const OpenResult opened = openMeshFile(path);
  writer.join();
  ASSERT_TRUE(opened.mesh) << opened.error;
  EXPECT_EQ(opened.mesh->countValidFaces(), 1);
}

}  // namespace
}  // namespace gravlin
