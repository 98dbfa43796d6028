#include <benchmark/benchmark.h>

#include "curvature/CurvatureDerivatives.h"
#include "curvature/CurvatureTensor.h"
#include "curvature/EdgeCurvature.h"
#include "curvature/Strokes.h"
#include "curvature/TensorSmoothing.h"
#include "support/Surface.h"
#include "view/Histogram.h"

namespace gravlin {
namespace {

TriangleMesh surface() {
  return bench::built(bench::largeSurface());
}

TriangleMesh estimatedSurface() {
  TriangleMesh mesh = surface();
  computeCurvatureTensor(mesh);
  return mesh;
}

void countItems(benchmark::State& state, std::int64_t itemsPerRun) {
  state.SetItemsProcessed(state.iterations() * itemsPerRun);
}

void BM_CurvatureTensor(benchmark::State& state) {
  TriangleMesh mesh = surface();
  for (auto _ : state) computeCurvatureTensor(mesh);
  countItems(state, mesh.vertexCount);
}
BENCHMARK(BM_CurvatureTensor)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(7)
    ->ReportAggregatesOnly();

void BM_CurvatureDerivatives(benchmark::State& state) {
  TriangleMesh mesh = estimatedSurface();
  for (auto _ : state) computeCurvatureDerivatives(mesh);
  countItems(state, mesh.vertexCount);
}
BENCHMARK(BM_CurvatureDerivatives)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(7)
    ->ReportAggregatesOnly();

/// Ten iterations in one call, as the dialog proposes. An item is one vertex in one iteration.
void BM_SmoothCurvatureValues(benchmark::State& state) {
  TriangleMesh mesh = estimatedSurface();
  CurvatureTensorSmoother smoother{&mesh};
  for (auto _ : state) smoother.smoothCurvatureValues(10, 0.1F);
  countItems(state, std::int64_t{10} * mesh.vertexCount);
}
BENCHMARK(BM_SmoothCurvatureValues)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(7)
    ->ReportAggregatesOnly();

/// An item is one vertex in one iteration, two directions.
void BM_SmoothDirections(benchmark::State& state) {
  TriangleMesh mesh = estimatedSurface();
  CurvatureTensorSmoother smoother{&mesh};
  for (auto _ : state) smoother.smoothDirections(1, 5.0F);
  countItems(state, mesh.vertexCount);
}
BENCHMARK(BM_SmoothDirections)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(7)
    ->ReportAggregatesOnly();

/// A single seed: next to nothing but what comes before the first line.
void BM_StrokeSetUp(benchmark::State& state) {
  TriangleMesh mesh = estimatedSurface();
  for (auto _ : state) generateStrokes(mesh, 1);
}
BENCHMARK(BM_StrokeSetUp)->Unit(benchmark::kMillisecond)->Repetitions(7)->ReportAggregatesOnly();

/// An item is a seed, two lines.
void BM_Strokes(benchmark::State& state) {
  TriangleMesh mesh = estimatedSurface();
  constexpr int seeds = 20000;
  for (auto _ : state) generateStrokes(mesh, seeds);
  countItems(state, seeds);
}
BENCHMARK(BM_Strokes)->Unit(benchmark::kMillisecond)->Repetitions(7)->ReportAggregatesOnly();

/// An item is a face, three edges.
void BM_EdgeCurvatures(benchmark::State& state) {
  TriangleMesh mesh = surface();
  for (auto _ : state) computeEdgeCurvatures(mesh);
  countItems(state, mesh.faceCount);
}
BENCHMARK(BM_EdgeCurvatures)->Unit(benchmark::kMillisecond)->Repetitions(7)->ReportAggregatesOnly();

/// The six million edge curvatures of the surface, in a window 330 pixels wide.
void BM_Histogram(benchmark::State& state) {
  TriangleMesh mesh = surface();
  computeEdgeCurvatures(mesh);
  Histogram histogram;
  histogram.setWindowWidth(330);
  for (auto _ : state) histogram.setValues(mesh.edgeCurvatures);
  countItems(state, static_cast<std::int64_t>(mesh.edgeCurvatures.size()));
}
BENCHMARK(BM_Histogram)->Unit(benchmark::kMillisecond)->Repetitions(7)->ReportAggregatesOnly();

}  // namespace
}  // namespace gravlin
