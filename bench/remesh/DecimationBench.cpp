#include <benchmark/benchmark.h>

#include "remesh/Decimator.h"
#include "support/Memory.h"
#include "support/Surface.h"

namespace gravlin {
namespace {

/// From face normals to rebuilt rings and adjacency. Items are collapses; the argument is the share
/// of the vertices to remove, in percent.
void BM_Decimate(benchmark::State& state) {
  const TriangleMesh surface = bench::built(bench::largeSurface());
  const float rate = static_cast<float>(state.range(0)) / 100.0F;
  int collapses = 0;
  for (auto _ : state) {
    state.PauseTiming();
    TriangleMesh mesh = surface;
    Decimator decimator;
    decimator.attach(&mesh);
    state.ResumeTiming();
    collapses = decimator.decimate(rate).vertices;
  }
  state.SetItemsProcessed(state.iterations() * collapses);
}
BENCHMARK(BM_Decimate)
    ->Arg(50)
    ->Arg(90)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1)
    ->Repetitions(5)
    ->ReportAggregatesOnly();

/// The most memory that a decimation takes beside the mesh, per vertex.
void BM_DecimatePeakMemory(benchmark::State& state) {
  TriangleMesh mesh = bench::built(bench::largeSurface());
  Decimator decimator;
  decimator.attach(&mesh);
  const int vertexCount = mesh.vertexCount;
  double bytes = 0.0;
  for (auto _ : state) {
    const bench::PeakMemory peak;
    decimator.decimate(0.5F);
    bytes = peak.bytes();
  }
  state.counters["bytes_per_vertex_beyond_the_mesh"] = bytes / vertexCount;
}
BENCHMARK(BM_DecimatePeakMemory)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
}  // namespace gravlin
