#pragma once

#include "doc/ModeTable.h"
#include "doc/Shown.h"
#include "view/Scene.h"

namespace gravlin {

// What the display modes of curvature show. There must be a mesh; data that has not been
// computed, or belongs to another mesh, leaves the flat surface.

/// The field that is shown as colours or greys: of the vertices, of the faces, or of the edges in
/// front of a white surface. Throws std::bad_alloc when there was no memory for its values.
Scene fieldOn(Site site, const Shown& shown);
/// Faces by the mean of their three edge curvatures.
Scene meanEdgeCurvature(const Shown& shown);

// Marks in front of a white surface, so that those on the far side do not show through.

/// A segment of length 0.2 along the maximum direction at every vertex in red, or along the minimum
/// in blue.
Scene maxDirections(const Shown& shown);
Scene minDirections(const Shown& shown);
/// The same segments in the colours of their curvature, never in grey.
Scene maxTensors(const Shown& shown);
Scene minTensors(const Shown& shown);
/// The lines along the maximum or the minimum direction in black.
Scene maxStrokes(const Shown& shown);
Scene minStrokes(const Shown& shown);

}  // namespace gravlin
