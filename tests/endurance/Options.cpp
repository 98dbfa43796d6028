#include "endurance/Options.h"

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>

namespace gravlin::endurance {

Options readOptions(int argc, char** argv) {
  Options options;
  const std::map<std::string, std::function<void(const char*)>> takers = {
      {"--seed", [&](const char* text) { options.seed = std::strtoull(text, nullptr, 10); }},
      {"--count", [&](const char* text) { options.count = std::atoi(text); }},
      {"--seconds", [&](const char* text) { options.seconds = std::atof(text); }},
      {"--log", [&](const char* text) { options.log = text; }},
      {"--patience", [&](const char* text) { options.patience = std::atoi(text); }},
      {"--plant", [&](const char* text) { options.plant = text; }},
      {"--batch", [&](const char* text) { options.batch = text; }},
      {"--opens", [&](const char* text) { options.opens = std::atoi(text); }},
      {"--most-growth", [&](const char* text) { options.mostGrowth = std::atof(text); }}};
  for (int k = 1; k < argc; k += 2) {
    const auto taker = takers.find(argv[k]);
    if (taker == takers.end() || k + 1 == argc) {
      std::fprintf(stderr, "%s: %s is not understood\n", argv[0], argv[k]);
      std::exit(2);
    }
    taker->second(argv[k + 1]);
  }
  if (options.count <= 0 && options.seconds <= 0.0 && options.opens <= 0) {
    std::fprintf(stderr, "%s: --count or --seconds is missing\n", argv[0]);
    std::exit(2);
  }
  return options;
}

}  // namespace gravlin::endurance
