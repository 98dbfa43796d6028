#include <benchmark/benchmark.h>

#include "remesh/ButterflySubdivision.h"
#include "remesh/LinearSubdivision.h"
#include "remesh/LoopSubdivision.h"
#include "support/Memory.h"
#include "support/Surface.h"

namespace gravlin {
namespace {

using Scheme = TriangleMesh (*)(const TriangleMesh&);

/// The copy for undo, the refinement with rings, adjacency and normals, and the normals once more
/// as the redraw computes them. Items are new faces.
void timeCommand(benchmark::State& state, Scheme scheme) {
  const TriangleMesh surface = bench::built(bench::largeSurface());
  int newFaces = 0;
  for (auto _ : state) {
    TriangleMesh undo;
    undo.copyGeometryFrom(surface);
    TriangleMesh refined = scheme(surface);
    refined.computeNormals();
    newFaces = refined.faceCount;
  }
  state.SetItemsProcessed(state.iterations() * newFaces);
}

void BM_Loop(benchmark::State& state) {
  timeCommand(state, loopSubdivision);
}

void BM_ModifiedButterfly(benchmark::State& state) {
  timeCommand(state, butterflySubdivision);
}

void BM_Linear(benchmark::State& state) {
  timeCommand(state, linearSubdivision);
}

BENCHMARK(BM_Loop)->Unit(benchmark::kMillisecond)->Repetitions(7)->ReportAggregatesOnly();
BENCHMARK(BM_ModifiedButterfly)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(7)
    ->ReportAggregatesOnly();
BENCHMARK(BM_Linear)->Unit(benchmark::kMillisecond)->Repetitions(7)->ReportAggregatesOnly();

std::size_t bytesOf(const TriangleMesh& mesh) {
  const auto bytes = [](const auto& array) { return sizeof array[0] * array.size(); };
  std::size_t sum = bytes(mesh.vertices) + bytes(mesh.faces) + bytes(mesh.faceAdjacency) +
                    bytes(mesh.vertexKind) + bytes(mesh.vertexNormals) + bytes(mesh.faceNormals);
  for (const CompressedRows* rows : {&mesh.vertexNeighbours, &mesh.vertexFaces}) {
    sum += bytes(rows->offsets) + bytes(rows->items);
  }
  return sum;
}

/// The most memory that a refinement takes beyond the new mesh, per corner of an old face. The sums
/// of the vertex normals, which come last, are part of it.
void BM_LoopPeakMemory(benchmark::State& state) {
  const TriangleMesh surface = bench::built(bench::largeSurface());
  double beyond = 0.0;
  for (auto _ : state) {
    const bench::PeakMemory peak;
    const TriangleMesh refined = loopSubdivision(surface);
    beyond = peak.bytes() - static_cast<double>(bytesOf(refined));
  }
  state.counters["bytes_per_old_corner_beyond_the_new_mesh"] = beyond / (3.0 * surface.faceCount);
}
BENCHMARK(BM_LoopPeakMemory)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
}  // namespace gravlin
