#include "mesh/SignalRemoval.h"

#include <array>
#include <atomic>
#include <csignal>
#include <cstddef>
#include <mutex>
#include <unistd.h>
#include <utility>

namespace gravlin {
namespace {

constexpr std::array<int, 3> endings = {SIGHUP, SIGINT, SIGTERM};

// A signal may reach any thread, so blocking it in one holds nothing back. Instead the handler only
// notes it while something is held, and the last to hold ends the program. Either the handler,
// which notes first and then looks, finds nothing held, or the one who lets go first and then looks
// finds the note: nothing is lost, and files are never removed while the table changes.

/// The names of the files to remove. A handler may neither allocate nor wait for a lock, so this is
/// a table of fixed size that it can read at any moment.
std::array<std::atomic<const char*>, 8> names = {};
std::atomic<int> held = 0;   ///< by how many scopes
std::atomic<int> noted = 0;  ///< the signal that is to end the program; it stays
static_assert(std::atomic<const char*>::is_always_lock_free);
static_assert(std::atomic<int>::is_always_lock_free);

std::mutex changing;  ///< of what follows, and of the table
int users = 0;        ///< of the handlers

/// Removes the files and ends the program by the signal, on the thread that calls it.
[[noreturn]] void end(int signal) {
  for (const std::atomic<const char*>& each : names) {
    if (const char* name = each.load()) ::unlink(name);
  }
  struct sigaction action = {};
  action.sa_handler = SIG_DFL;
  ::sigaction(signal, &action, nullptr);
  sigset_t set = {};
  sigemptyset(&set);
  sigaddset(&set, signal);
  ::pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
  (void)::raise(signal);
  constexpr int endedBySignal = 128;  // as shells tell it
  ::_exit(endedBySignal + signal);    // the first process of a container gets past the line above
}

void noteOrEnd(int signal) {
  noted = signal;
  if (held == 0) end(signal);
}

/// Makes signals come to `noteOrEnd` from the first user on.
void install() {
  const std::lock_guard guard(changing);
  if (users++ > 0) return;
  for (const int signal : endings) {
    struct sigaction present = {};
    if (::sigaction(signal, nullptr, &present) != 0 || present.sa_handler != SIG_DFL) continue;
    struct sigaction action = {};
    action.sa_handler = noteOrEnd;
    for (const int other : endings) sigaddset(&action.sa_mask, other);
    action.sa_flags = SA_RESTART;  // what is held is to be finished
    ::sigaction(signal, &action, nullptr);
  }
}

/// Until the last user has gone.
void uninstall() {
  const std::lock_guard guard(changing);
  if (--users > 0) return;
  for (const int signal : endings) {
    struct sigaction present = {};
    if (::sigaction(signal, nullptr, &present) == 0 && present.sa_handler == noteOrEnd) {
      ::signal(signal, SIG_DFL);
    }
  }
}

}  // namespace

SignalRemoval::SignalRemoval(std::string path) : name(std::move(path)) {
  const HeldSignals tableChanges;
  const std::lock_guard guard(changing);
  for (std::size_t k = 0; k < names.size() && place < 0; ++k) {
    if (names[k].load() == nullptr) place = static_cast<int>(k);
  }
  if (place < 0) return;
  names[static_cast<std::size_t>(place)] = name.c_str();
  ++users;  // the handlers are there
}

SignalRemoval::~SignalRemoval() {
  if (place < 0) return;
  {
    const HeldSignals tableChanges;
    const std::lock_guard guard(changing);
    names[static_cast<std::size_t>(place)] = nullptr;
  }
  uninstall();
}

HeldSignals::HeldSignals() {
  install();
  if (held++ > 0 || noted == 0) return;
  // The program is about to end: nothing must begin that would then be left behind.
  --held;
  end(noted);
}

HeldSignals::~HeldSignals() {
  if (--held == 0 && noted != 0) end(noted);
  uninstall();
}

}  // namespace gravlin
