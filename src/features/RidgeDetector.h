#pragma once

#include "features/CreasesByHistogram.h"
#include "features/ExtremaExtraction.h"
#include "features/GapFilling.h"
#include "features/LineConnection.h"
#include "features/LineGraph.h"
#include "features/RidgeThresholds.h"

namespace gravlin {

/// The stages of ridge and valley detection on a document's current mesh, in the order in which
/// they are usually run; each is described where it is implemented. Every stage requires a mesh.
class RidgeDetector {
 public:
  void attach(TriangleMesh* triangleMesh) { mesh = triangleMesh; }

  void extractExtrema() { gravlin::extractExtrema(*mesh); }
  void thresholdConstant(float t) { gravlin::thresholdConstant(*mesh, t); }
  LowThresholds thresholdHistogram(HistogramShares shares) {
    return gravlin::thresholdHistogram(*mesh, shares);
  }
  void compareAbsoluteValues() { gravlin::compareAbsoluteValues(*mesh); }
  void fillGaps() { gravlin::fillGaps(*mesh); }
  void buildLineGraph() { gravlin::buildLineGraph(*mesh); }
  void connectLines(float threshold, const LowThresholds& low) {
    gravlin::connectLines(*mesh, threshold, low);
  }
  void detectCreasesByHistogram(CreaseShares shares) {
    gravlin::detectCreasesByHistogram(*mesh, shares);
  }

 private:
  TriangleMesh* mesh = nullptr;
};

}  // namespace gravlin
