#include <benchmark/benchmark.h>

#include "mesh/TriangleMesh.h"
#include "support/Surface.h"

namespace gravlin {
namespace {

void countFaces(benchmark::State& state, const TriangleMesh& mesh) {
  state.SetItemsProcessed(state.iterations() * mesh.faceCount);
}

/// Rings, kinds and face adjacency from positions and faces alone.
void BM_Topology(benchmark::State& state) {
  const TriangleMesh surface = bench::largeSurface();
  TriangleMesh mesh;
  for (auto _ : state) {
    state.PauseTiming();
    mesh.copyGeometryFrom(surface);
    state.ResumeTiming();
    mesh.buildAdjacency();
    mesh.buildFaceAdjacency();
  }
  countFaces(state, surface);
}
BENCHMARK(BM_Topology)->Unit(benchmark::kMillisecond)->Repetitions(7)->ReportAggregatesOnly();

void BM_BothNormals(benchmark::State& state) {
  TriangleMesh mesh = bench::built(bench::largeSurface());
  for (auto _ : state) {
    mesh.computeFaceNormals();
    mesh.computeVertexNormals();
  }
  countFaces(state, mesh);
}
BENCHMARK(BM_BothNormals)->Unit(benchmark::kMillisecond)->Repetitions(7)->ReportAggregatesOnly();

}  // namespace
}  // namespace gravlin
