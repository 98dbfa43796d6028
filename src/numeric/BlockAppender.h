#pragma once

#include <array>
#include <cstddef>
#include <vector>

namespace gravlin {

/// Appends numbers to a vector by way of a block that fits the nearest cache, so that a large array
/// is written once: neither filled with zeros first nor checked for room at every number.
///
/// What was taken reaches the vector at the latest when the appender ends. The vector must have
/// room reserved for all of it by then, so that it cannot throw.
template <class Number>
class BlockAppender {
 public:
  explicit BlockAppender(std::vector<Number>& appendedTo) : out(appendedTo) {}
  BlockAppender(const BlockAppender&) = delete;
  BlockAppender& operator=(const BlockAppender&) = delete;
  ~BlockAppender() { flush(); }

  /// Room for the next `count` numbers, at most 64, to be written before the next call.
  Number* take(std::size_t count) {
    if (used + count > block.size()) flush();
    used += count;
    return block.data() + (used - count);
  }

  void append(Number number) { *take(1) = number; }

 private:
  void flush() {
    out.insert(out.end(), block.data(), block.data() + used);
    used = 0;
  }

  std::vector<Number>& out;
  std::array<Number, 1024> block;
  std::size_t used = 0;
};

}  // namespace gravlin
