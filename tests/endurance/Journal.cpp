#include "endurance/Journal.h"

#include <chrono>
#include <cstdlib>
#include <stdexcept>
#include <unistd.h>
#include <utility>

namespace gravlin::endurance {
namespace {

constexpr auto glance = std::chrono::milliseconds(100);

}  // namespace

Journal::Journal(Settings chosen) : settings(std::move(chosen)) {
  if (!settings.path.empty()) {
    file = std::fopen(settings.path.c_str(), "we");
    if (file == nullptr) throw std::runtime_error("cannot write " + settings.path);
  }
  write("seed " + std::to_string(settings.seed));
  watching = std::thread([this] { watch(); });
}

Journal::~Journal() {
  ended = true;
  watching.join();
  if (file != nullptr) std::fclose(file);
}

void Journal::begin(std::string_view words) {
  const int number = ++count;
  write(std::to_string(number) + " " + std::string(words));
}

void Journal::note(std::string_view words) {
  write("    " + std::string(words));
}

void Journal::fail(std::string_view why) {
  const std::string text = settings.program + ": " + std::string(why) + ", in action " +
                           std::to_string(count) + " from seed " + std::to_string(settings.seed) +
                           "\n";
  write(text);
  std::fputs(text.c_str(), stderr);
  std::_Exit(1);  // whatever is wrong, nothing is to be built on it
}

void Journal::write(std::string_view words) {
  if (file == nullptr) return;
  std::fprintf(file, "%.*s\n", static_cast<int>(words.size()), words.data());
  std::fflush(file);
}

void Journal::watch() {
  using Clock = std::chrono::steady_clock;
  int seen = count;
  Clock::time_point since = Clock::now();
  while (!ended) {
    std::this_thread::sleep_for(glance);
    if (count != seen) {
      seen = count;
      since = Clock::now();
    } else if (Clock::now() - since > std::chrono::seconds(settings.patience)) {
      fail("hangs for " + std::to_string(settings.patience) + " seconds");
    }
  }
}

}  // namespace gravlin::endurance
