#include <benchmark/benchmark.h>
#include <cmath>
#include <cstdint>

#include "curvature/CurvatureTensor.h"
#include "features/ExtremaExtraction.h"
#include "features/GapFilling.h"
#include "features/LineConnection.h"
#include "features/LineGraph.h"
#include "features/RidgeThresholds.h"
#include "smoothing/Noise.h"
#include "support/Memory.h"
#include "support/Surface.h"

namespace gravlin {
namespace {

// What the dialog proposes.
constexpr HistogramShares proposedShares = {0.6F, 0.3F};
constexpr float proposedThreshold = 200.0F;

LowThresholds markLines(TriangleMesh& mesh) {
  extractExtrema(mesh);
  const LowThresholds low = thresholdHistogram(mesh, proposedShares);
  compareAbsoluteValues(mesh);
  fillGaps(mesh);
  return low;
}

/// Extraction, thresholds and gap filling together. An item is a vertex.
void BM_MarkLines(benchmark::State& state) {
  TriangleMesh mesh = bench::built(bench::largeSurface());
  computeCurvatureTensor(mesh);
  for (auto _ : state) markLines(mesh);
  state.SetItemsProcessed(state.iterations() * mesh.vertexCount);
}
BENCHMARK(BM_MarkLines)->Unit(benchmark::kMillisecond)->Repetitions(7)->ReportAggregatesOnly();

enum Finish { Smooth, Rough };

/// The surface with so many vertices, as near as can be, curvature estimated. A smooth one has a
/// few long lines. A rough one, moved by noise of about a two-hundredth of its edges, has a mark at
/// every fourth vertex when there are a million, and thousands of gaps that can be joined.
TriangleMesh surfaceOf(std::int64_t vertices, Finish finish) {
  const int side = static_cast<int>(std::lround(std::sqrt(static_cast<double>(vertices))));
  TriangleMesh mesh = bench::built(bench::bumpyTorus(side, side));
  if (finish == Rough) {
    addNoise(mesh, 0.1F / static_cast<float>(side));
    mesh.computeFaceNormals();
    mesh.computeVertexNormals();
  }
  computeCurvatureTensor(mesh);
  return mesh;
}

constexpr std::int64_t million = 1000000;

/// From 10,000 to 1,000,000 vertices, with the n log n that fits best.
void tenThousandToAMillion(benchmark::internal::Benchmark* benchmark) {
  for (const int side : {100, 178, 316, 562, 1000}) benchmark->Arg(side * side);
  benchmark->Unit(benchmark::kMillisecond)->Complexity(benchmark::oNLogN);
}

/// An item is a vertex, marked or not.
void BM_BuildLineGraph(benchmark::State& state, Finish finish) {
  TriangleMesh mesh = surfaceOf(state.range(0), finish);
  markLines(mesh);
  for (auto _ : state) buildLineGraph(mesh);
  state.SetItemsProcessed(state.iterations() * mesh.vertexCount);
  state.SetComplexityN(mesh.vertexCount);
}
BENCHMARK_CAPTURE(BM_BuildLineGraph, smooth, Smooth)->Apply(tenThousandToAMillion);
BENCHMARK_CAPTURE(BM_BuildLineGraph, rough, Rough)
    ->Arg(million)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(7)
    ->ReportAggregatesOnly();

void BM_ConnectLines(benchmark::State& state, Finish finish) {
  TriangleMesh mesh = surfaceOf(state.range(0), finish);
  const LowThresholds low = markLines(mesh);
  buildLineGraph(mesh);
  const TriangleMesh unconnected = mesh;
  for (auto _ : state) {
    state.PauseTiming();
    mesh.ridgeMarks = unconnected.ridgeMarks;
    mesh.valleyMarks = unconnected.valleyMarks;
    mesh.ridgeLinks = unconnected.ridgeLinks;
    mesh.valleyLinks = unconnected.valleyLinks;
    state.ResumeTiming();
    connectLines(mesh, proposedThreshold, low);
  }
  state.SetItemsProcessed(state.iterations() * mesh.vertexCount);
  state.SetComplexityN(mesh.vertexCount);
}
BENCHMARK_CAPTURE(BM_ConnectLines, smooth, Smooth)->Apply(tenThousandToAMillion);
BENCHMARK_CAPTURE(BM_ConnectLines, rough, Rough)
    ->Arg(million)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(7)
    ->ReportAggregatesOnly();

/// The most memory that all stages take beside a mesh with curvature, per vertex, marks and links
/// included.
void BM_LinesPeakMemory(benchmark::State& state, Finish finish) {
  TriangleMesh mesh = surfaceOf(million, finish);
  double bytes = 0.0;
  for (auto _ : state) {
    const bench::PeakMemory peak;
    const LowThresholds low = markLines(mesh);
    buildLineGraph(mesh);
    connectLines(mesh, proposedThreshold, low);
    bytes = peak.bytes();
  }
  state.counters["bytes_per_vertex_beyond_the_mesh"] = bytes / mesh.vertexCount;
}
BENCHMARK_CAPTURE(BM_LinesPeakMemory, smooth, Smooth)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK_CAPTURE(BM_LinesPeakMemory, rough, Rough)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
}  // namespace gravlin
