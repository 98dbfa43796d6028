#pragma once

#include <functional>

namespace gravlin {

/// How many threads a parallel loop uses at most: what `setThreadCount` last said, otherwise the
/// environment variable GRAVLIN_THREADS, otherwise as many as there are processors for this
/// program.
int threadCount();
/// A count below 1 stands for the environment's again. Not to be called while a loop runs.
void setThreadCount(int count);

/// Half-open range of indices.
struct IndexRange {
  int begin = 0;
  int end = 0;
};

/// Calls body for ranges that follow each other from 0 to count, several at the same time on
/// threads of their own, and returns when all have ended. The body may write only what belongs to
/// the indices of its range, and read nothing that other ranges write: then the outcome is the same
/// to the last bit however many threads there are. Fewer than two times 4096 indices run on the
/// calling thread. Of exceptions the one with the lowest range is thrown again; later ranges may
/// then not have been run.
void parallelRanges(int count, const std::function<void(const IndexRange&)>& body);

/// Calls body(i) for 0 <= i < count; everything else as above. Every range works with a copy of
/// body, so that it may keep lists between calls.
template <class Body>
void parallelFor(int count, const Body& body) {
  parallelRanges(count, [&](const IndexRange& range) {
    Body own = body;
    for (int i = range.begin; i < range.end; ++i) own(i);
  });
}

}  // namespace gravlin
