#pragma once

#include <cstdint>
#include <span>

#include "doc/DisplayMode.h"
#include "features/SilhouetteLines.h"
#include "mesh/IndexList.h"
#include "mesh/TriangleMesh.h"

namespace gravlin {

/// All that views read of a document. Costs nothing to make; what it points to is the document's
/// and stands until the document's next command.
struct Shown {
  const TriangleMesh* mesh = nullptr;  ///< null: there is none
  int displayMode = FlatShading;       ///< the number of a Mode; others draw nothing
  std::uint64_t revision = 0;  ///< raised by every redraw: what a view has kept of another is stale

  bool grayScale = false;     ///< fields and lines in grey in place of colours
  bool shadedSurface = true;  ///< behind feature lines; otherwise it is white
  bool colourLegend = false;  ///< beside a picture that has colours of a scale

  const SilhouetteLines* silhouetteLines = nullptr;  ///< of the last pen drawing; null: none
  std::span<const IndexList> creaseLinks = {};       ///< [V], or empty: all creases by an angle

  /// The values of the mode's field, as many as its site says. Empty in a mode without a field, and
  /// while they have not been found; then a mode with a field shows the flat surface.
  std::span<const double> fieldValues = {};
  bool fieldOutOfMemory = false;  ///< there was no memory for these values
};

/// Whoever has something to show, as views know it.
class ShownSource {
 public:
  ShownSource() = default;
  virtual ~ShownSource() = default;
  ShownSource(const ShownSource&) = delete;
  ShownSource& operator=(const ShownSource&) = delete;

  /// What is shown now.
  virtual Shown shown() const = 0;
};

}  // namespace gravlin
