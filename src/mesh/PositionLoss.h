#pragma once

#include <array>
#include <optional>
#include <string>

#include "mesh/TriangleMesh.h"

namespace gravlin {

// A position x of a file becomes p = (x - c) / t in memory and c + p t in the next file, where c is
// the middle of the mesh's box and t its extentTolerance. Both p and what is written are rounded to
// single precision, and what is written also to six decimals; of imported meshes what is written is
// rounded to six decimals only. Lengths here are in the file's units.

/// Along which axes `normalize` would not find the box of a mesh whose positions are still in the
/// file's units. Its search starts at -1,000,000 and 1,000,000 and asks of a new maximum no longer
/// whether it is a minimum, too; so a bound stays where it started when coordinates only rise from
/// vertex to vertex or lie beyond. Fewer than two vertices have no box that could be missed.
std::array<bool, 3> axesWithoutBox(const TriangleMesh& mesh);

/// What `normalize` takes from positions x: the largest of each over all coordinates that are
/// finite.
struct NormalizingLoss {
  double stored = 0.0;     ///< |c + p t - x|
  double rewritten = 0.0;  ///< |v - w| for what reads back of the text of c + p t and of that of x
};

/// Calls `normalize` and returns its loss. Where the box is found that is less than 6e-8 of its
/// extent, for p is at most 20 then and its rounding half of 2^-19; 0 is returned, and nothing is
/// allocated. With a bound far away p may have no digits left for the shape.
NormalizingLoss normalizeMeasuringLoss(TriangleMesh& mesh);

/// What the text of a mesh takes from its positions.
struct WritingLoss {
  double largest;  ///< |w - (c + p t)| for a number w as it reads back from the text
  double extent;   ///< the longest side of the box of the vertices that are written
};

/// Of the vertices that are written, which are those that a valid face uses; nothing when there are
/// none. Positions that are not finite do not count. Requires buildAdjacency.
std::optional<WritingLoss> lossByWriting(const TriangleMesh& mesh);

/// A loss as people read it, "0.0312".
std::string lossText(double loss);

}  // namespace gravlin
