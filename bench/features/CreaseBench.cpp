#include <benchmark/benchmark.h>
#include <cmath>
#include <numbers>

#include "features/CreasesByAngle.h"
#include "features/CreasesByHistogram.h"
#include "support/Memory.h"
#include "support/Surface.h"

namespace gravlin {
namespace {

/// The shares that the dialog proposes.
constexpr CreaseShares proposedShares = {0.9F, 0.8F};

/// What the command makes of an angle between faces.
float cosThreshold(double degrees) {
  return static_cast<float>(-std::cos(degrees * std::numbers::pi / 180.0));
}

/// An item is a face. The argument is the angle between faces in degrees: the 165 of the dialog
/// links nothing on a surface this fine, 179.5 about a tenth of the edges.
void BM_CreasesByAngle(benchmark::State& state) {
  TriangleMesh mesh = bench::built(bench::largeSurface());
  const float threshold = cosThreshold(static_cast<double>(state.range(0)) / 10.0);
  for (auto _ : state) benchmark::DoNotOptimize(detectCreasesByAngle(mesh, threshold));
  state.SetItemsProcessed(state.iterations() * mesh.faceCount);
}
BENCHMARK(BM_CreasesByAngle)
    ->Arg(1650)
    ->Arg(1795)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(7)
    ->ReportAggregatesOnly();

/// An item is a face.
void BM_CreasesByHistogram(benchmark::State& state) {
  TriangleMesh mesh = bench::built(bench::largeSurface());
  for (auto _ : state) detectCreasesByHistogram(mesh, proposedShares);
  state.SetItemsProcessed(state.iterations() * mesh.faceCount);
}
BENCHMARK(BM_CreasesByHistogram)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(7)
    ->ReportAggregatesOnly();

/// The most memory that the detection takes beside the mesh, the links that it leaves included, per
/// face.
void BM_CreasesByHistogramPeakMemory(benchmark::State& state) {
  TriangleMesh mesh = bench::built(bench::largeSurface());
  double bytes = 0.0;
  for (auto _ : state) {
    const bench::PeakMemory peak;
    detectCreasesByHistogram(mesh, proposedShares);
    bytes = peak.bytes();
  }
  state.counters["bytes_per_face_beyond_the_mesh"] = bytes / mesh.faceCount;
}
BENCHMARK(BM_CreasesByHistogramPeakMemory)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
}  // namespace gravlin
