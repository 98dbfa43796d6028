#include <new>
#include <stdexcept>

#include "doc/CGravlinDoc.h"
#include "doc/Chunks.h"
#include "doc/Messages.h"
#include "smoothing/CornerNeighbours.h"

namespace gravlin {
namespace {

/// Makes the lists that the filters need. The sentence to show when that is refused, else nothing.
std::string makeCornerNeighbours(TriangleMesh& mesh) {
  try {
    buildCornerNeighbourFaces(mesh);
    return {};
  } catch (const std::length_error&) {
    return "This mesh cannot be smoothed adaptively: too many faces meet at one vertex.";
  } catch (const std::bad_alloc&) {
    return "There is not enough memory to smooth this mesh adaptively.";
  }
}

}  // namespace

void CGravlinDoc::OnSmoothingShapeAdaptive() {
  if (!currentMesh || !outside.showDialog(adaptiveSmoothingParameters.form())) return;
  // The lists come first: where they are refused, the shape and the undo copy stay as they are.
  const std::string refusal = makeCornerNeighbours(*currentMesh);
  if (!refusal.empty()) return outside.showMessage(refusal);
  if (!keepUndoCopy()) return;

  const AdaptiveSmoothingParameters& parameters = adaptiveSmoothingParameters;
  const bool median = parameters.averagingKind == AdaptiveSmoothingParameters::MedianAveraging;
  const AdaptiveSmoothingOptions options = parameters.options();
  const auto run = [&](int iterations) {
    if (median) {
      meshSmoother.medianSmoothing(iterations, options);
    } else {
      meshSmoother.adaptiveSmoothing(iterations, options);
    }
  };
  const Chunks chunks =
      chunksOf(parameters.outerIterations, {parameters.animate, parameters.animateEvery});
  try {
    outside.showProgress({parameters.outerIterations, chunks.size});
    for (int chunk = 0; chunk < chunks.count; ++chunk) {
      run(chunks.size);
      outside.stepProgress();
      if (!parameters.animate) continue;
      needsRecompute = true;
      redraw();
    }
    outside.hideProgress();
    // Deliberate: the median ends with one more whole chunk, the weighted mean with what is left.
    run(median ? chunks.size : chunks.rest);
  } catch (const std::bad_alloc&) {
    outside.hideProgress();
    outside.showMessage(outOfMemoryWhileSmoothing);
  }
  geometryChanged();
  redraw();
}

}  // namespace gravlin
