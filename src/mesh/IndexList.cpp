#include "mesh/IndexList.h"

#include <algorithm>

namespace gravlin {

void IndexList::remove(int vertex) {
  items.erase(std::remove(items.begin(), items.end(), vertex), items.end());
}

}  // namespace gravlin
