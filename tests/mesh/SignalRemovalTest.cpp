#include <atomic>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <pthread.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "mesh/SafeFile.h"
#include "mesh/SignalRemoval.h"
#include "support/TemporaryFolder.h"

namespace gravlin {
namespace {

using test::contentOf;
using test::TemporaryFolder;
using ::testing::ExitedWithCode;
using ::testing::KilledBySignal;

constexpr int endings[] = {SIGHUP, SIGINT, SIGTERM};

/// What ends a program in the foreground. nohup, and shells in front of what they run in the
/// background, have some of them ignored, and these tests would ignore them too.
class DefaultEndings : public ::testing::Environment {
 public:
  void SetUp() override {
    for (const int signal : endings) std::signal(signal, SIG_DFL);
  }
};

[[maybe_unused]] const auto* const defaultEndings =
    ::testing::AddGlobalTestEnvironment(new DefaultEndings);

void makeFile(const std::string& path) {
  std::fclose(std::fopen(path.c_str(), "w"));
}

TEST(SignalRemoval, ASignalRemovesTheFileAndEndsTheProgramAsItAlwaysDoes) {
  for (const int signal : endings) {
    const TemporaryFolder folder;
    EXPECT_EXIT(
        {
          const std::string path = folder.file("a");
          makeFile(path);
          const SignalRemoval removal(path);
          raise(signal);
        },
        KilledBySignal(signal), "");
    EXPECT_EQ(folder.entryCount(), 0);
  }
}

TEST(SignalRemoval, EveryFileThatIsThereGoes) {
  const TemporaryFolder folder;
  EXPECT_EXIT(
      {
        std::vector<std::unique_ptr<SignalRemoval>> removals;
        for (const char* name : {"a", "b", "c"}) {
          makeFile(folder.file(name));
          removals.push_back(std::make_unique<SignalRemoval>(folder.file(name)));
        }
        removals.erase(removals.begin() + 1);
        raise(SIGTERM);
      },
      KilledBySignal(SIGTERM), "");
  EXPECT_EQ(folder.entryCount(), 1);
  EXPECT_TRUE(std::filesystem::exists(folder.file("b"))) << "its removal was over";
}

TEST(SignalRemoval, WithoutAFileTheHandlersAreAsTheyWere) {
  for (const int signal : endings) {
    struct sigaction before = {};
    struct sigaction during = {};
    struct sigaction after = {};
    sigaction(signal, nullptr, &before);
    {
      const SignalRemoval first("a");
      const SignalRemoval second("b");
      sigaction(signal, nullptr, &during);
    }
    sigaction(signal, nullptr, &after);
    EXPECT_EQ(before.sa_handler, SIG_DFL);
    EXPECT_NE(during.sa_handler, SIG_DFL);
    EXPECT_EQ(after.sa_handler, SIG_DFL);
  }
}

TEST(SignalRemoval, ASignalThatIsIgnoredStaysIgnored) {
  EXPECT_EXIT(
      {
        std::signal(SIGHUP, SIG_IGN);  // as nohup does
        const SignalRemoval removal("a");
        raise(SIGHUP);
        _exit(3);
      },
      ExitedWithCode(3), "");
}

TEST(SignalRemoval, MoreFilesThanTheTableHoldsDoNoHarm) {
  std::vector<std::unique_ptr<SignalRemoval>> removals;
  for (int k = 0; k < 100; ++k) removals.push_back(std::make_unique<SignalRemoval>("a"));
  removals.clear();
  struct sigaction after = {};
  sigaction(SIGTERM, nullptr, &after);
  EXPECT_EQ(after.sa_handler, SIG_DFL);
}

/// A thread that does nothing but take the signal that is sent to it, and goes on until it is over.
class OtherThread {
 public:
  ~OtherThread() {
    over = true;
    thread.join();
  }
  /// Returns when the signal's handler has.
  void take(int signal) {
    pthread_kill(thread.native_handle(), signal);
    const int before = rounds;
    while (rounds < before + 3) std::this_thread::yield();
  }

 private:
  std::atomic<bool> over = false;
  std::atomic<int> rounds = 0;
  std::thread thread{[this] {
    while (!over) {
      ++rounds;
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  }};
};

TEST(HeldSignals, ASignalWaitsForTheEndOfTheScope) {
  const TemporaryFolder folder;
  EXPECT_EXIT(
      {
        {
          const HeldSignals held;
          raise(SIGTERM);
          makeFile(folder.file("reached"));
          { const HeldSignals again; }
          makeFile(folder.file("reached too"));
        }
        makeFile(folder.file("not reached"));
      },
      KilledBySignal(SIGTERM), "");
  EXPECT_EQ(folder.entryCount(), 2);
}

TEST(HeldSignals, ASignalWaitsWhicheverThreadItReaches) {
  for (const int signal : endings) {
    const TemporaryFolder folder;
    EXPECT_EXIT(
        {
          OtherThread other;
          {
            const HeldSignals held;
            other.take(signal);
            makeFile(folder.file("reached"));
          }
          makeFile(folder.file("not reached"));
        },
        KilledBySignal(signal), "");
    EXPECT_EQ(folder.entryCount(), 1);
  }
}

TEST(HeldSignals, AFileMadeMeanwhileGoesWithTheSignal) {
  const TemporaryFolder folder;
  EXPECT_EXIT(
      {
        OtherThread other;
        std::unique_ptr<SignalRemoval> removal;
        {
          const HeldSignals held;
          makeFile(folder.file("a"));
          other.take(SIGTERM);
          removal = std::make_unique<SignalRemoval>(folder.file("a"));
        }
        makeFile(folder.file("not reached"));
      },
      KilledBySignal(SIGTERM), "");
  EXPECT_EQ(folder.entryCount(), 0);
}

TEST(HeldSignals, TheLastOfSeveralThreadsLetsTheSignalThrough) {
  const TemporaryFolder folder;
  EXPECT_EXIT(
      {
        auto first = std::make_unique<HeldSignals>();
        std::thread([&] {
          const HeldSignals second;
          raise(SIGTERM);
          first.reset();
          makeFile(folder.file("reached"));
        }).join();
        makeFile(folder.file("not reached"));
      },
      KilledBySignal(SIGTERM), "");
  EXPECT_EQ(folder.entryCount(), 1);
}

TEST(HeldSignals, HandlersAreAsTheyWereAndASignalThatIsIgnoredStaysIgnored) {
  { const HeldSignals held; }
  for (const int signal : endings) {
    struct sigaction after = {};
    sigaction(signal, nullptr, &after);
    EXPECT_EQ(after.sa_handler, SIG_DFL);
  }
  EXPECT_EXIT(
      {
        std::signal(SIGHUP, SIG_IGN);
        {
          const HeldSignals held;
          raise(SIGHUP);
        }
        _exit(3);
      },
      ExitedWithCode(3), "");
}

TEST(SafeFile, ASignalLeavesTheOldFileAndNothingElse) {
  for (const int signal : endings) {
    const TemporaryFolder folder;
    const std::string path = folder.write("a", "old");
    EXPECT_EXIT(
        {
          SafeFile file(path);
          std::fputs("new", file.stream());
          std::fflush(file.stream());
          raise(signal);
        },
        KilledBySignal(signal), "");
    EXPECT_EQ(contentOf(path), "old");
    EXPECT_EQ(folder.entryCount(), 1);
  }
}

TEST(SafeFile, ASignalAfterCommitLeavesTheNewFile) {
  const TemporaryFolder folder;
  const std::string path = folder.write("a", "old");
  EXPECT_EXIT(
      {
        SafeFile file(path);
        std::fputs("new", file.stream());
        file.commit();
        raise(SIGTERM);
      },
      KilledBySignal(SIGTERM), "");
  EXPECT_EQ(contentOf(path), "new");
  EXPECT_EQ(folder.entryCount(), 1);
}

// Files come and go while the signal is on its way to another thread.
TEST(SafeFile, ASignalToAnotherThreadLeavesNothingAtAnyMoment) {
  constexpr int moments = 40;
  for (int moment = 0; moment < moments; ++moment) {
    const TemporaryFolder folder;
    const std::string path = folder.write("a", "old");
    EXPECT_EXIT(
        {
          sigset_t set = {};
          sigemptyset(&set);
          sigaddset(&set, SIGTERM);
          std::thread([moment] {
            std::this_thread::sleep_for(std::chrono::microseconds(17 * moment));
            kill(getpid(), SIGTERM);
            pause();
          }).detach();
          pthread_sigmask(SIG_BLOCK, &set, nullptr);  // so that it takes the other thread
          for (;;) {
            SafeFile file(path);
            std::fputs("new", file.stream());
          }
        },
        KilledBySignal(SIGTERM), "");
    EXPECT_EQ(contentOf(path), "old");
    ASSERT_EQ(folder.entryCount(), 1) << "moment " << moment;
  }
}

}  // namespace
}  // namespace gravlin
