#pragma once

#include <cstdio>
#include <memory>

#include "batch/BatchOutside.h"
#include "doc/CGravlinDoc.h"
#include "view/Picture.h"
#include "view/ViewState.h"

namespace gravlin {

/// Where a chain writes: results for the next program, and texts for the user.
struct BatchStreams {
  std::FILE* output = stdout;
  std::FILE* errors = stderr;
};

/// Whether all that was written to the stream has left the program. Flushing alone does not tell:
/// it knows nothing of what was lost while the buffer was emptied on the way.
inline bool allWritten(std::FILE* stream) {
  return std::fflush(stream) == 0 && std::ferror(stream) == 0;
}

/// What the step `camera` takes; starts as the view stands.
struct CameraParameters {
  float fieldOfView = 22.5F;  ///< degrees
  std::string translate;      ///< "X,Y,Z"

  Form form();
};

/// What the step `render` takes.
struct RenderParameters {
  std::string size = "800x600";  ///< "WxH" in pixels
  bool overlay = true;           ///< whether the counts are printed in the corner

  Form form();
};

/// The extent of the histogram window until it is resized.
inline constexpr ViewSize histogramSize = {.width = 330, .height = 250};

/// What the step `render-histogram` takes.
struct RenderHistogramParameters {
  std::string size = "330x250";  ///< "WxH" in pixels

  Form form();
};

/// What the step `dump` takes.
struct DumpParameters {
  std::string fields;  ///< names with commas between them; empty: all

  Form form();
};

/// What the steps of one chain work on: a document, its one view, and the values of the steps that
/// have no dialog in the window.
struct Session {
  explicit Session(BatchStreams batchStreams = {})
      : streams(batchStreams), outside(view, batchStreams.errors), document(outside) {
    outside.attach(&document);
  }

  /// Before a step writes something that is no mesh. Throws StepFailure when the file there is the
  /// one that the mesh was opened from or saved to, by whatever name.
  void keepMeshFile(const std::string& path) const {
    if (std::string loss = document.lossByOverwriting(path); !loss.empty()) throw StepFailure(loss);
  }

  BatchStreams streams;
  ViewState view;
  BatchOutside outside;
  CGravlinDoc document;
  CameraParameters camera;
  RenderParameters render;
  RenderHistogramParameters renderHistogram;
  DumpParameters dump;
  std::unique_ptr<Picture> picture;  ///< made by the first `render`
};

}  // namespace gravlin
