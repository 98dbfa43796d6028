#pragma once

#include "doc/Shown.h"
#include "view/Scene.h"

namespace gravlin {

// What the modes of feature lines show. All need a mesh; marks, links and directions that have not
// been built draw nothing. Ridges are red and valleys blue, in grey scale white and black.

/// Mode 6: the marked vertices as points on the lit surface.
Scene ridgeVertices(const Shown& shown);
/// Mode 7: mode 6 and at each marked vertex a small bar along the local direction of the line.
Scene ridgeDirections(const Shown& shown);
/// Mode 8: mode 6 and the mesh edges between marked neighbours.
Scene ridgeMeshEdges(const Shown& shown);
/// Mode 11: mode 12 with lines the wider the stronger their curvature is.
Scene weightedRidgeLines(const Shown& shown);
/// Mode 12: the links as lines, on the lit surface or, by the "Angle" dialog, on a white one.
Scene featureLines(const Shown& shown);
/// Mode 13: all creases of the last detection by a constant angle, in black.
Scene creaseLines(const Shown& shown);
/// Mode 23: the contour, strong ridge and valley lines, and fading strokes on a white surface.
Scene penDrawing(const Shown& shown);

}  // namespace gravlin
