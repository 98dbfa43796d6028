// Programs that end in the middle of writing: killed, or on a disk that is full. Whatever the
// moment, the file of before stands or the whole new one does, and what is left beside it is no
// danger to the next.

#include <chrono>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sched.h>
#include <signal.h>
#include <string>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

#include "endurance/Journal.h"
#include "endurance/Options.h"
#include "endurance/RandomSource.h"
#include "support/Meshes.h"
#include "support/TemporaryFolder.h"

namespace gravlin::endurance {
namespace {

using Clock = std::chrono::steady_clock;
namespace fs = std::filesystem;

/// A step that writes a file, behind the opening of a mesh.
struct Writer {
  std::vector<std::string> before;  ///< steps that it needs
  std::string step;
  std::string target;
  std::string content = {};  ///< of the whole new file
  double seconds = 0.0;      ///< that all of it takes
};

struct Counts {
  int kills = 0;
  int killedBefore = 0;  ///< with the old file standing
  int killedAfter = 0;   ///< with the new one
  int leftovers = 0;     ///< temporary files that kills left
  int fullDisks = 0;
};

/// How a child's life is made harder.
struct Hardship {
  std::optional<rlim_t> largestFile = std::nullopt;
  bool leftoverOfTheSameName = false;
};

void writeTo(const char* path, const std::string& text) {
  std::ofstream(path) << text;
}

/// A folder, on a small disk of its own where the system lets us have one. To be made before any
/// thread is.
class SmallDisk {
 public:
  explicit SmallDisk(fs::path wanted) : place(std::move(wanted)) {
    fs::create_directory(place);
    isOwn = setApart() && ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
            ::mount("tmpfs", place.c_str(), "tmpfs", 0, "size=16m") == 0;
  }
  ~SmallDisk() {
    if (isOwn) ::umount2(place.c_str(), MNT_DETACH);
  }
  SmallDisk(const SmallDisk&) = delete;
  SmallDisk& operator=(const SmallDisk&) = delete;

  const fs::path place;
  bool isOwn = false;

 private:
  /// Gives this process mounts of its own, which users may only have together with users of their
  /// own.
  static bool setApart() {
    const std::string user = std::to_string(::getuid());
    const std::string group = std::to_string(::getgid());
    if (::unshare(CLONE_NEWNS) == 0) return true;
    if (::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
    writeTo("/proc/self/setgroups", "deny");
    writeTo("/proc/self/uid_map", "0 " + user + " 1");
    writeTo("/proc/self/gid_map", "0 " + group + " 1");
    return true;
  }
};

class Killer {
 public:
  Killer(const Options& chosen, Journal& log, const test::TemporaryFolder& files,
         const SmallDisk& disk)
      : options(chosen),
        journal(log),
        random(chosen.seed),
        folder(files),
        place(disk.place),
        onOwnDisk(disk.isOwn) {
    writeMesh();
    for (Writer& writer : writers) measure(writer);
  }

  Counts run() {
    const Extent extent(options);
    for (int k = 0; extent.goesOn(k); ++k) {
      const Writer& writer = random.anyOf(writers);
      killOnce(writer);
      fillOnce(writer);
      if (k % 10 == 9) sweep(writer);
    }
    sweep(random.anyOf(writers));
    return counts;
  }

 private:
  // --- The place ---

  void writeMesh() {
    const TriangleMesh mesh = test::jittered(test::torus(120, 80), 0.01);
    std::ofstream file(meshFile());
    file << mesh.vertexCount << ' ' << mesh.faceCount << '\n';
    for (std::size_t c = 0; c < mesh.vertices.size(); ++c) {
      file << mesh.vertices[c] << (c % 3 == 2 ? '\n' : ' ');
    }
    for (std::size_t c = 0; c < mesh.faces.size(); c += 3) {
      file << "3 " << mesh.faces[c] << ' ' << mesh.faces[c + 1] << ' ' << mesh.faces[c + 2] << '\n';
    }
  }

  std::string meshFile() const { return folder.file("torus.ply2"); }
  fs::path target(const Writer& writer) const { return place / writer.target; }

  /// What programs that were killed left beside the target.
  std::vector<fs::path> temporaries() const {
    std::vector<fs::path> found;
    for (const fs::directory_entry& entry : fs::directory_iterator(place)) {
      if (entry.path().filename().string().starts_with(".gravlin-")) found.push_back(entry.path());
    }
    return found;
  }

  void putOldFile(const Writer& writer) const {
    std::ofstream(target(writer), std::ios::binary) << oldContent;
  }

  // --- Children ---

  pid_t start(const Writer& writer, const Hardship& hardship) const {
    std::vector<std::string> words = {options.batch, "--quiet", "open", meshFile()};
    words.insert(words.end(), writer.before.begin(), writer.before.end());
    words.insert(words.end(), {writer.step, target(writer).string()});
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    const pid_t child = ::fork();
    if (child != 0) return child;
    if (hardship.leftoverOfTheSameName) {
      const fs::path name = place / (".gravlin-" + std::to_string(::getpid()) + "-0");
      std::ofstream(name) << "left over";
    }
    if (hardship.largestFile) {
      const rlimit limit = {*hardship.largestFile, *hardship.largestFile};
      ::setrlimit(RLIMIT_FSIZE, &limit);
      ::signal(SIGXFSZ, SIG_IGN);
    }
    const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    ::dup2(nowhere, STDOUT_FILENO);
    if (hardship.largestFile || isFull)
      ::dup2(nowhere, STDERR_FILENO);  // it complains, as it should
    ::execv(arguments.front(), arguments.data());
    ::_exit(127);
  }

  int wait(pid_t child) const {
    int status = 0;
    ::waitpid(child, &status, 0);
    return status;
  }

  /// Runs it to its end, to know what it writes and how long that takes.
  void measure(Writer& writer) {
    journal.begin("measuring " + writer.step);
    putOldFile(writer);
    const Clock::time_point begin = Clock::now();
    const int status = wait(start(writer, {}));
    writer.seconds = std::chrono::duration<double>(Clock::now() - begin).count();
    if (status != 0) journal.fail(writer.step + " does not work here");
    writer.content = test::contentOf(target(writer));
    if (writer.content == oldContent || writer.content.empty()) {
      journal.fail(writer.step + " has written nothing");
    }
  }

  // --- Kills ---

  void sleepFor(double seconds) const {
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
  }

  /// Half of the kills come at any time, the others soon after the temporary file is there.
  void sleepUntilKill(const Writer& writer, std::size_t leftBefore, pid_t child) {
    if (random.oneIn(2)) return sleepFor(random.share() * 1.1 * writer.seconds);
    const Clock::time_point last =
        Clock::now() + std::chrono::duration_cast<Clock::duration>(
                           std::chrono::duration<double>(3.0 * writer.seconds));
    while (temporaries().size() <= leftBefore && Clock::now() < last) {
      if (::waitid(P_PID, static_cast<id_t>(child), &ended, WEXITED | WNOHANG | WNOWAIT) == 0 &&
          ended.si_pid == child) {
        return;
      }
    }
    sleepFor(random.share() * 0.02);
  }

  void killOnce(const Writer& writer) {
    putOldFile(writer);
    const Hardship hardship = {.leftoverOfTheSameName = random.oneIn(3)};
    const std::size_t leftBefore = temporaries().size();
    journal.begin("killing " + writer.step);
    ended = {};
    const pid_t child = start(writer, hardship);
    sleepUntilKill(writer, leftBefore + (hardship.leftoverOfTheSameName ? 1 : 0), child);
    ::kill(child, SIGKILL);
    wait(child);
    if (options.plant == "lost") std::ofstream(target(writer)) << "half";
    const std::string now = test::contentOf(target(writer));
    if (now != oldContent && now != writer.content) {
      journal.fail("after a kill " + writer.target + " is neither the old file nor the new one");
    }
    ++counts.kills;
    ++(now == oldContent ? counts.killedBefore : counts.killedAfter);
  }

  /// What kills have left is counted and does not keep the next one from writing.
  void sweep(const Writer& writer) {
    journal.begin("writing beside what was left: " + writer.step);
    putOldFile(writer);
    const auto left = temporaries();
    counts.leftovers += static_cast<int>(left.size());
    if (wait(start(writer, {})) != 0)
      journal.fail("leftovers keep " + writer.step + " from writing");
    if (test::contentOf(target(writer)) != writer.content) {
      journal.fail("leftovers get into " + writer.target);
    }
    if (temporaries().size() != left.size()) journal.fail(writer.step + " leaves a temporary file");
    for (const fs::path& path : left) fs::remove(path);
  }

  // --- Full disks ---

  /// Leaves this many bytes free, or as many as the system counts at a time.
  void fillDisk(std::uintmax_t leaveFree) {
    const std::uintmax_t free = fs::space(place).available;
    std::ofstream filler(place / "filler", std::ios::binary);
    const std::string block(4096, 'x');
    for (std::uintmax_t k = leaveFree; k + block.size() < free; k += block.size()) filler << block;
  }

  void fillOnce(const Writer& writer) {
    putOldFile(writer);
    const auto size = static_cast<int>(writer.content.size());
    const int room = random.below(size + size / 8);
    const bool byDisk = onOwnDisk && random.oneIn(2);
    const std::size_t leftBefore = temporaries().size();
    journal.begin("writing with room for " + std::to_string(room) + " bytes: " + writer.step +
                  (byDisk ? " on a small disk" : " below a limit"));
    if (byDisk) fillDisk(static_cast<std::uintmax_t>(room));
    isFull = byDisk;
    Hardship hardship;
    if (!byDisk) hardship.largestFile = static_cast<rlim_t>(room);
    const int status = wait(start(writer, hardship));
    isFull = false;
    fs::remove(place / "filler");
    const std::string now = test::contentOf(target(writer));
    const bool succeeded = status == 0 && now == writer.content;
    const bool refused = WIFEXITED(status) && WEXITSTATUS(status) == 1 && now == oldContent;
    if (!succeeded && !refused) journal.fail("a full disk has cost " + writer.target);
    if (succeeded && !byDisk && room < size) journal.fail("the limit was none");
    if (temporaries().size() != leftBefore) {
      journal.fail("a full disk leaves a temporary file of " + writer.step);
    }
    ++counts.fullDisks;
  }

  const Options& options;
  Journal& journal;
  RandomSource random;
  Counts counts;
  const test::TemporaryFolder& folder;
  const fs::path place;
  const bool onOwnDisk;
  bool isFull = false;
  siginfo_t ended = {};
  const std::string oldContent = "what was there before\n";
  std::vector<Writer> writers = {
      {{}, "save", "mesh.ply2"},
      {{}, "save", "mesh.plyR"},
      {{"smooth-shading"}, "render", "picture.png"},
      {{"curvature-max"}, "dump", "dump.json"},
      {{"face-angle", "--threshold-mode", "angle", "--angle", "179"}, "export-lines", "lines.obj"}};
};

int run(const Options& options) {
  const test::TemporaryFolder folder;
  const SmallDisk disk(folder.file("work"));
  Journal journal(options.journal("endurance_kills"));
  const Counts counts = Killer(options, journal, folder, disk).run();
  std::printf("%d kills (%d before the file was exchanged, %d after), %d temporary files left\n",
              counts.kills, counts.killedBefore, counts.killedAfter, counts.leftovers);
  std::printf("%d full disks (%s)\n", counts.fullDisks,
              disk.isOwn ? "small disks and limits" : "limits");
  return 0;
}

}  // namespace
}  // namespace gravlin::endurance

int main(int argc, char** argv) {
  return gravlin::endurance::run(gravlin::endurance::readOptions(argc, argv));
}
