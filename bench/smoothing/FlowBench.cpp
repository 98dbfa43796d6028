#include <benchmark/benchmark.h>

#include "smoothing/BilaplacianFlow.h"
#include "smoothing/LaplacianFlow.h"
#include "smoothing/MeanCurvatureFlow.h"
#include "smoothing/MedianCurvatureFlow.h"
#include "smoothing/Noise.h"
#include "smoothing/TaubinSmoothing.h"
#include "support/Surface.h"

namespace gravlin {
namespace {

// Items are vertices times iterations; of Taubin's methods, vertices times half-steps.

constexpr int sweeps = 6;

/// Times `flow`, which makes that many sweeps over its mesh.
template <class Flow>
void timeSweeps(benchmark::State& state, Flow flow) {
  TriangleMesh mesh = bench::built(bench::largeSurface());
  for (auto _ : state) flow(mesh);
  state.SetItemsProcessed(state.iterations() * mesh.vertexCount * sweeps);
}

void BM_LaplacianFlow(benchmark::State& state) {
  timeSweeps(state,
             [](TriangleMesh& mesh) { laplacianFlow(mesh, {.iterations = sweeps, .step = 0.5F}); });
}

/// A step far below what the shortest edges allow, so that the surface stays what it is.
void BM_MeanCurvatureFlow(benchmark::State& state) {
  timeSweeps(state, [](TriangleMesh& mesh) {
    meanCurvatureFlow(mesh, {.iterations = sweeps, .step = 1e-6F});
  });
}

void BM_MedianCurvatureFlow(benchmark::State& state) {
  timeSweeps(state, [](TriangleMesh& mesh) {
    medianCurvatureFlow(mesh, {.iterations = sweeps, .step = 1e-6F});
  });
}

void taubin(benchmark::State& state, TaubinWeighting weighting) {
  timeSweeps(state, [weighting](TriangleMesh& mesh) {
    taubinSmoothing(mesh,
                    {.iterations = sweeps / 2, .lambda = 0.5F, .k = 0.1F, .weighting = weighting});
  });
}

void BM_TaubinUmbrella(benchmark::State& state) {
  taubin(state, UmbrellaWeights);
}

void BM_TaubinInverseDistance(benchmark::State& state) {
  taubin(state, InverseDistanceWeights);
}

void BM_TaubinCotangent(benchmark::State& state) {
  taubin(state, CotangentWeights);
}

void BM_BilaplacianFlow(benchmark::State& state) {
  timeSweeps(state, [](TriangleMesh& mesh) {
    bilaplacianFlow(mesh, {.iterations = sweeps, .step = 0.5F});
  });
}

void BM_Noise(benchmark::State& state) {
  TriangleMesh mesh = bench::built(bench::largeSurface());
  for (auto _ : state) addNoise(mesh, 1e-5F);
  state.SetItemsProcessed(state.iterations() * mesh.vertexCount);
}

BENCHMARK(BM_LaplacianFlow)->Unit(benchmark::kMillisecond)->Repetitions(7)->ReportAggregatesOnly();
BENCHMARK(BM_TaubinUmbrella)->Unit(benchmark::kMillisecond)->Repetitions(7)->ReportAggregatesOnly();
BENCHMARK(BM_TaubinInverseDistance)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(7)
    ->ReportAggregatesOnly();
BENCHMARK(BM_BilaplacianFlow)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(7)
    ->ReportAggregatesOnly();
BENCHMARK(BM_MeanCurvatureFlow)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(7)
    ->ReportAggregatesOnly();
BENCHMARK(BM_MedianCurvatureFlow)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(7)
    ->ReportAggregatesOnly();
BENCHMARK(BM_TaubinCotangent)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(7)
    ->ReportAggregatesOnly();
BENCHMARK(BM_Noise)->Unit(benchmark::kMillisecond)->Repetitions(7)->ReportAggregatesOnly();

}  // namespace
}  // namespace gravlin
