#pragma once

#include <string>
#include <vector>

#include "features/LineExport.h"
#include "view/Camera.h"

namespace gravlin {

/// The lines as a view of this size shows them, as SVG text: one path per visible piece, a group
/// per kind, ridges and convex creases red, valleys and concave creases blue. What the surface
/// hides is left out: a depth buffer of the surface, twice as fine as the view, tells point by
/// point. Work grows with the faces, the pixels they cover and the lengths of the lines on screen;
/// lines beyond the edges of the view are cut off there.
std::string linesAsSvg(const TriangleMesh& mesh, const std::vector<ExportedLine>& lines,
                       const Camera& camera, ViewSize size);

}  // namespace gravlin
