#pragma once

#include <tuple>
#include <utility>

namespace gravlin {

/// Empties values that are about to be made anew, and gives them back as they were unless `keep`
/// says that they have been made: whatever ends the work halfway leaves nothing half made.
template <class... Values>
class Rollback {
 public:
  explicit Rollback(Values&... guarded)
      : values(guarded...), before(std::exchange(guarded, Values{})...) {}
  ~Rollback() {
    if (!kept) values = std::move(before);
  }
  Rollback(const Rollback&) = delete;
  Rollback& operator=(const Rollback&) = delete;

  void keep() { kept = true; }

 private:
  std::tuple<Values&...> values;
  std::tuple<Values...> before;
  bool kept = false;
};

}  // namespace gravlin
