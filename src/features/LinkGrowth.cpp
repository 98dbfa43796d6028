#include "features/LinkGrowth.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <queue>

namespace gravlin {
namespace {

bool contains(const IndexList& list, int vertex) {
  return std::find(list.begin(), list.end(), vertex) != list.end();
}

/// Links are kept in both directions, so the shorter of the two lists answers.
bool linked(const std::vector<IndexList>& links, int a, int b) {
  const IndexList& ofA = links[static_cast<std::size_t>(a)];
  const IndexList& ofB = links[static_cast<std::size_t>(b)];
  return ofA.size() < ofB.size() ? contains(ofA, b) : contains(ofB, a);
}

}  // namespace

void link(std::vector<IndexList>& links, int a, int b) {
  links[static_cast<std::size_t>(a)].append(b);
  links[static_cast<std::size_t>(b)].append(a);
}

// A vertex reached ahead of the running pass is served in it, one reached behind it in the next.
void growAlongWeakLinks(std::vector<IndexList>& strong, const std::vector<IndexList>& weak) {
  const int vertexCount = static_cast<int>(strong.size());
  std::vector<bool> reached(strong.size(), false);
  std::vector<int> nextPass;
  for (int v = 0; v < vertexCount; ++v) {
    reached[static_cast<std::size_t>(v)] = !strong[static_cast<std::size_t>(v)].empty();
    if (reached[static_cast<std::size_t>(v)]) nextPass.push_back(v);
  }
  while (!nextPass.empty()) {
    std::priority_queue<int, std::vector<int>, std::greater<>> pass(std::greater<>(),
                                                                    std::move(nextPass));
    nextPass.clear();
    while (!pass.empty()) {
      const int v = pass.top();
      pass.pop();
      for (const int w : weak[static_cast<std::size_t>(v)]) {
        if (linked(strong, v, w)) continue;
        link(strong, v, w);
        if (reached[static_cast<std::size_t>(w)]) continue;
        reached[static_cast<std::size_t>(w)] = true;
        if (w > v) {
          pass.push(w);
        } else {
          nextPass.push_back(w);
        }
      }
    }
  }
}

}  // namespace gravlin
