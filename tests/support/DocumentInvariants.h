#pragma once

#include <string>
#include <vector>

#include "doc/CGravlinDoc.h"

namespace gravlin::test {

/// What a document promises and this one does not keep, in words: the first such thing, or nothing.
/// Looked at are its current mesh, as brokenInvariants(mesh) does and that it has its topology, the
/// undo copy, which is geometry and nothing else, and what is kept beside the two.
std::vector<std::string> brokenInvariants(const CGravlinDoc& document);

}  // namespace gravlin::test
