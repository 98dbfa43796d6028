#pragma once

#include "doc/CGravlinDoc.h"
#include "view/Scene.h"

namespace gravlin {

// What the display modes of curvature show. The document must have a mesh; data that has not been
// computed, or belongs to another mesh, leaves the flat surface.

/// The document's scalar as colours or greys: at the vertices (curvatures, vertex errors), of the
/// faces (face errors) or of the edges in front of a white surface (edge curvature).
Scene vertexField(const CGravlinDoc& document);
Scene faceField(const CGravlinDoc& document);
Scene edgeField(const CGravlinDoc& document);
/// Faces by the mean of their three edge curvatures.
Scene meanEdgeCurvature(const CGravlinDoc& document);

// Marks in front of a white surface, so that those on the far side do not show through.

/// A segment of length 0.2 along the maximum direction at every vertex in red, or along the minimum
/// in blue.
Scene maxDirections(const CGravlinDoc& document);
Scene minDirections(const CGravlinDoc& document);
/// The same segments in the colours of their curvature, never in grey.
Scene maxTensors(const CGravlinDoc& document);
Scene minTensors(const CGravlinDoc& document);
/// The lines along the maximum or the minimum direction in black.
Scene maxStrokes(const CGravlinDoc& document);
Scene minStrokes(const CGravlinDoc& document);

}  // namespace gravlin
