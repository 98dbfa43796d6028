#include <benchmark/benchmark.h>

#include "smoothing/AdaptiveSmoothing.h"
#include "smoothing/CornerNeighbours.h"
#include "support/Surface.h"

namespace gravlin {
namespace {

// Items are faces.

/// One outer iteration with the dialog's default values.
void BM_AdaptiveMedian(benchmark::State& state) {
  TriangleMesh mesh = bench::built(bench::largeSurface());
  buildCornerNeighbourFaces(mesh);
  for (auto _ : state) medianSmoothing(mesh, 1, {});
  state.SetItemsProcessed(state.iterations() * mesh.faceCount);
}

/// The same with "Weight function".
void BM_AdaptiveWeightFunction(benchmark::State& state) {
  TriangleMesh mesh = bench::built(bench::largeSurface());
  buildCornerNeighbourFaces(mesh);
  for (auto _ : state) adaptiveSmoothing(mesh, 1, {});
  state.SetItemsProcessed(state.iterations() * mesh.faceCount);
}

void BM_CornerNeighbours(benchmark::State& state) {
  TriangleMesh mesh = bench::built(bench::largeSurface());
  for (auto _ : state) {
    mesh.cornerNeighbourFaces.clear();
    buildCornerNeighbourFaces(mesh);
  }
  state.SetItemsProcessed(state.iterations() * mesh.faceCount);
}

BENCHMARK(BM_AdaptiveMedian)->Unit(benchmark::kMillisecond)->Repetitions(7)->ReportAggregatesOnly();
BENCHMARK(BM_AdaptiveWeightFunction)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(7)
    ->ReportAggregatesOnly();
BENCHMARK(BM_CornerNeighbours)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(7)
    ->ReportAggregatesOnly();

}  // namespace
}  // namespace gravlin
