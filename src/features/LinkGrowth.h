#pragma once

#include <vector>

#include "mesh/IndexList.h"

namespace gravlin {

/// Appends each of two vertices to the list of the other, also when they are linked already.
void link(std::vector<IndexList>& links, int a, int b);

/// Spreads the `strong` links along the `weak` ones to a fixed point: while a vertex has any strong
/// link, all its weak links become strong. Links come in the order in which repeated passes over
/// all vertices by index would append them. Both arrays have one list per vertex; `weak` is
/// symmetric. n log n in the number of links.
void growAlongWeakLinks(std::vector<IndexList>& strong, const std::vector<IndexList>& weak);

}  // namespace gravlin
