#include "numeric/AvailableMemory.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <limits>
#include <memory>
#include <new>
#include <optional>
#include <string_view>

namespace gravlin {
namespace {

constexpr std::uint64_t plenty = std::numeric_limits<std::uint64_t>::max();

/// All of a small file; empty when there is none. A stream would hide it if memory were refused.
std::string contentOf(const std::string& path) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "re"),
                                                             std::fclose);
  std::string content;
  std::array<char, 4096> part{};
  while (file) {
    const std::size_t size = std::fread(part.data(), 1, part.size(), file.get());
    if (size == 0) break;
    content.append(part.data(), size);
  }
  return content;
}

/// Takes the first line from a text.
std::string_view takeLine(std::string_view& text) {
  const std::size_t end = std::min(text.find('\n'), text.size());
  const std::string_view line = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return line;
}

/// The number that a text begins with, behind blanks.
std::optional<std::uint64_t> numberAtStart(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
  std::uint64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc()) return std::nullopt;
  return value;
}

/// The number behind a word that begins a line.
std::optional<std::uint64_t> entryOf(const std::string& path, std::string_view key) {
  const std::string table = contentOf(path);
  for (std::string_view rest = table; !rest.empty();) {
    const std::string_view line = takeLine(rest);
    if (line.starts_with(key) && line.substr(key.size()).starts_with(' ')) {
      return numberAtStart(line.substr(key.size()));
    }
  }
  return std::nullopt;
}

/// What a file holds if that is a number: without a limit it is the word "max", or very large.
std::optional<std::uint64_t> numberIn(const std::string& path) {
  return numberAtStart(contentOf(path));
}

/// Where one version of the control groups keeps its figures.
struct GroupFiles {
  std::string_view tree;  ///< below sys/fs/cgroup
  std::string_view limit;
  std::string_view usage;
  std::string_view idleFiles;  ///< of memory.stat
};
constexpr GroupFiles firstVersion = {"/memory", "/memory.limit_in_bytes", "/memory.usage_in_bytes",
                                     "total_inactive_file"};
constexpr GroupFiles secondVersion = {"", "/memory.max", "/memory.current", "inactive_file"};

std::uint64_t leftIn(const std::string& group, const GroupFiles& files) {
  const auto limit = numberIn(group + std::string(files.limit));
  const auto usage = numberIn(group + std::string(files.usage));
  if (!limit || !usage) return plenty;
  const std::uint64_t idle = entryOf(group + "/memory.stat", files.idleFiles).value_or(0);
  const std::uint64_t used = *usage - std::min(idle, *usage);
  return *limit - std::min(used, *limit);
}

/// In a group and in all that it is part of. A container may see its own group as the whole tree,
/// whatever its name outside; that is the last one looked at.
std::uint64_t leftUpFrom(std::string group, const std::string& tree, const GroupFiles& files) {
  std::uint64_t least = plenty;
  while (group.size() > 1 && group.front() == '/') {
    least = std::min(least, leftIn(tree + group, files));
    group.erase(group.find_last_of('/'));
  }
  return std::min(least, leftIn(tree, files));
}

/// Whether the memory is among the names between commas.
bool namesMemory(std::string_view controllers) {
  while (true) {
    const std::size_t comma = controllers.find(',');
    if (controllers.substr(0, comma) == "memory") return true;
    if (comma == std::string_view::npos) return false;
    controllers.remove_prefix(comma + 1);
  }
}

/// The lines of proc/self/cgroup are "number:controllers:group", without controllers for the second
/// version.
std::uint64_t leftInGroups(const std::string& root) {
  std::uint64_t least = plenty;
  const std::string groups = contentOf(root + "/proc/self/cgroup");
  for (std::string_view rest = groups; !rest.empty();) {
    const std::string_view line = takeLine(rest);
    const std::size_t controllers = line.find(':') + 1;
    const std::size_t group = line.find(':', controllers) + 1;
    if (controllers == 0 || group == 0) continue;
    const std::string_view names = line.substr(controllers, group - 1 - controllers);
    if (!names.empty() && !namesMemory(names)) continue;
    const GroupFiles& files = names.empty() ? secondVersion : firstVersion;
    const std::string tree = root + "/sys/fs/cgroup" + std::string(files.tree);
    least = std::min(least, leftUpFrom(std::string(line.substr(group)), tree, files));
  }
  return least;
}

}  // namespace

std::uint64_t availableMemory(const std::string& root) {
  const auto kilobytes = entryOf(root + "/proc/meminfo", "MemAvailable:");
  return std::min(kilobytes ? 1024 * *kilobytes : plenty, leftInGroups(root));
}

void requireMemory(std::uint64_t bytes, const std::string& root) {
  if (bytes > availableMemory(root) / 10 * 9) throw std::bad_alloc();
}

}  // namespace gravlin
