#pragma once

#include <string>

#include "features/LineExport.h"
#include "view/Camera.h"

namespace gravlin {

/// The lines as a view of this size shows them, as SVG text: one path per visible piece, a group
/// per kind, ridges and convex creases red, valleys and concave creases blue, or white and black on
/// grey. In a pen drawing lines are black and slightly smoothed, and the contour comes first: the
/// edges between front and back faces and those at the boundary. What the surface hides is left
/// out: a depth buffer of the surface, twice as fine as the view, tells point by point. Work grows
/// with the faces, the pixels they cover and the lengths of the lines on screen; lines beyond the
/// edges of the view are cut off there. A piece whose points are written as one is left out.
std::string linesAsSvg(const TriangleMesh& mesh, const LinesToDraw& drawing, const Camera& camera,
                       ViewSize size);

}  // namespace gravlin
