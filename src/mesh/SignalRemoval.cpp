#include "mesh/SignalRemoval.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <mutex>
#include <unistd.h>
#include <utility>

namespace gravlin {
namespace {

constexpr std::array<int, 3> endings = {SIGHUP, SIGINT, SIGTERM};

/// The names of the files to remove. A handler may neither allocate nor wait for a lock, so this is
/// a table of fixed size that it can read at any moment.
std::array<std::atomic<const char*>, 8> names = {};
static_assert(std::atomic<const char*>::is_always_lock_free);

std::mutex changing;  ///< of the table and the handlers
int namesInTable = 0;

void removeAndEnd(int signal) {
  for (const std::atomic<const char*>& each : names) {
    if (const char* name = each.load()) ::unlink(name);
  }
  (void)::raise(signal);  // comes when this returns, and does what it does without a handler
}

sigset_t endingSet() {
  sigset_t set = {};
  sigemptyset(&set);
  for (const int signal : endings) sigaddset(&set, signal);
  return set;
}

void install() {
  for (const int signal : endings) {
    struct sigaction present = {};
    if (::sigaction(signal, nullptr, &present) != 0 || present.sa_handler != SIG_DFL) continue;
    struct sigaction action = {};
    action.sa_handler = removeAndEnd;
    action.sa_mask = endingSet();
    action.sa_flags = static_cast<int>(SA_RESETHAND);  // back to ending the program at once
    ::sigaction(signal, &action, nullptr);
  }
}

void uninstall() {
  for (const int signal : endings) {
    struct sigaction present = {};
    if (::sigaction(signal, nullptr, &present) == 0 && present.sa_handler == removeAndEnd) {
      ::signal(signal, SIG_DFL);
    }
  }
}

}  // namespace

SignalRemoval::SignalRemoval(std::string path) : name(std::move(path)) {
  const std::lock_guard guard(changing);
  for (std::size_t k = 0; k < names.size() && place < 0; ++k) {
    if (names[k].load() == nullptr) place = static_cast<int>(k);
  }
  if (place < 0) return;
  names[static_cast<std::size_t>(place)] = name.c_str();
  if (namesInTable++ == 0) install();
}

SignalRemoval::~SignalRemoval() {
  if (place < 0) return;
  const std::lock_guard guard(changing);
  if (--namesInTable == 0) uninstall();
  names[static_cast<std::size_t>(place)] = nullptr;
}

HeldSignals::HeldSignals() {
  const sigset_t set = endingSet();
  ::pthread_sigmask(SIG_BLOCK, &set, &before);
}

HeldSignals::~HeldSignals() {
  ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

}  // namespace gravlin
