#include <filesystem>
#include <gtest/gtest.h>
#include <new>

#include "numeric/AvailableMemory.h"
#include "support/TemporaryFolder.h"

namespace gravlin {
namespace {

/// A system of files with figures of our own. 1000 kB are available on the machine.
class AvailableMemory : public ::testing::Test {
 protected:
  void write(const std::string& path, const std::string& content) {
    std::filesystem::create_directories(std::filesystem::path(system.file(path)).parent_path());
    system.write(path, content);
  }
  std::uint64_t available() const { return availableMemory(system.file("")); }

  AvailableMemory() {
    write("proc/meminfo", "MemTotal:  4000 kB\nMemFree:  10 kB\nMemAvailable:  1000 kB\n");
  }

  test::TemporaryFolder system;
};

TEST_F(AvailableMemory, IsThatOfTheMachineWithoutGroups) {
  EXPECT_EQ(available(), 1024000U);
  write("proc/self/cgroup", "0::/\n");
  EXPECT_EQ(available(), 1024000U);
  write("proc/meminfo", "nothing known\n");
  EXPECT_EQ(available(), UINT64_MAX);
}

TEST_F(AvailableMemory, CountsTheLimitOfAGroupLessWhatItUses) {
  write("proc/self/cgroup", "0::/job\n");
  write("sys/fs/cgroup/job/memory.max", "500000\n");
  write("sys/fs/cgroup/job/memory.current", "200000\n");
  EXPECT_EQ(available(), 300000U);
  write("sys/fs/cgroup/job/memory.stat", "anon 150000\nactive_file 7\ninactive_file 40000\n");
  EXPECT_EQ(available(), 340000U) << "files that are not in use can go";
  write("sys/fs/cgroup/job/memory.current", "600000\n");
  EXPECT_EQ(available(), 0U) << "more than allowed is in use";
  write("sys/fs/cgroup/job/memory.max", "max\n");
  EXPECT_EQ(available(), 1024000U);
}

TEST_F(AvailableMemory, CountsTheTightestOfTheGroupsAround) {
  write("proc/self/cgroup", "0::/outer/inner\n");
  write("sys/fs/cgroup/outer/inner/memory.max", "900000\n");
  write("sys/fs/cgroup/outer/inner/memory.current", "100000\n");
  EXPECT_EQ(available(), 800000U);
  write("sys/fs/cgroup/outer/memory.max", "900000\n");
  write("sys/fs/cgroup/outer/memory.current", "650000\n");
  EXPECT_EQ(available(), 250000U);
}

TEST_F(AvailableMemory, KnowsTheFirstVersionOfGroups) {
  write("proc/self/cgroup", "5:devices:/job\n4:cpu,memory:/job\n0::/\n");
  write("sys/fs/cgroup/memory/job/memory.limit_in_bytes", "700000\n");
  write("sys/fs/cgroup/memory/job/memory.usage_in_bytes", "300000\n");
  write("sys/fs/cgroup/memory/job/memory.stat", "inactive_file 1\ntotal_inactive_file 50000\n");
  EXPECT_EQ(available(), 450000U);
}

// The group is known by its name outside, and what is seen inside is only itself.
TEST_F(AvailableMemory, FindsTheGroupOfAContainerAtTheTopOfItsTree) {
  write("proc/self/cgroup", "4:memory:/docker/0123\n");
  write("sys/fs/cgroup/memory/memory.limit_in_bytes", "600000\n");
  write("sys/fs/cgroup/memory/memory.usage_in_bytes", "100000\n");
  EXPECT_EQ(available(), 500000U);
  write("proc/self/cgroup", "0::/\n");
  write("sys/fs/cgroup/memory.max", "300000\n");
  write("sys/fs/cgroup/memory.current", "100000\n");
  EXPECT_EQ(available(), 200000U);
}

TEST_F(AvailableMemory, IgnoresALineWithoutAGroup) {
  write("proc/self/cgroup", "\nmemory\n4:memory\n:\n::\n");
  EXPECT_EQ(available(), 1024000U);
}

TEST_F(AvailableMemory, IsRefusedAboveNineTenths) {
  EXPECT_NO_THROW(requireMemory(921'600, system.file("")));
  EXPECT_THROW(requireMemory(921'610, system.file("")), std::bad_alloc);
  write("proc/meminfo", "nothing known\n");
  EXPECT_NO_THROW(requireMemory(UINT64_MAX / 2, system.file("")));
}

TEST(RequiredMemory, IsThatOfThisMachineUnlessToldOtherwise) {
  EXPECT_NO_THROW(requireMemory(1));
  EXPECT_THROW(requireMemory(UINT64_MAX), std::bad_alloc);
}

}  // namespace
}  // namespace gravlin
