#pragma once

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "batch/Step.h"
#include "doc/CGravlinDoc.h"
#include "view/Histogram.h"
#include "view/ViewState.h"

namespace gravlin {

/// `dump FILE`: the state of the session as one JSON object; "-" is standard output.
Step dumpStep();

/// The names that `dump` knows, in the order in which it writes them.
std::vector<std::string_view> dumpFieldNames();

/// What a dump tells about.
struct DumpSubject {
  const CGravlinDoc& document;
  const ViewState& view;
  Histogram& histogram;  ///< is given the width of the histogram window
};

/// Writes one JSON object with the named fields, or with all of them when none is named; the field
/// that is shown then only in a mode with a number from `firstOwnMode` on, and the units of
/// curvatures where they differ from `extentTolerance`. Positions are the normalised ones, and
/// curvatures belong to the positions when they were found: divided by their unit they are in the
/// file's units. What has not been built is null. A name that is unknown is left out.
void dump(const DumpSubject& subject, const std::vector<std::string>& fields, std::FILE* stream);

}  // namespace gravlin
