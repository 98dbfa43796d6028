#include <benchmark/benchmark.h>

#include "numeric/Linbcg.h"
#include "numeric/TextSink.h"
#include "smoothing/ImplicitLaplacianFlow.h"
#include "smoothing/ImplicitMeanCurvatureFlow.h"
#include "support/Surface.h"

namespace gravlin {
namespace {

// Items are vertices. How many solver passes a step takes depends on how fine the mesh is against
// the time step; the counter tells.

/// Times one step with a time step of 0.5, matrix included, always from the same positions. The
/// argument is the number of vertices around and across the surface.
template <class Flow>
void timeStep(benchmark::State& state) {
  const ScopedTextSink quiet(quietTextSink());
  const int side = static_cast<int>(state.range(0));
  TriangleMesh mesh = bench::built(bench::bumpyTorus(side, side));
  const std::vector<float> start = mesh.vertices;
  int passes = 0;
  for (auto _ : state) {
    mesh.vertices = start;
    passes = 0;
    for (const LinbcgResult& solve : Flow(mesh, 0.5F).step().solves) passes += solve.iter;
  }
  state.SetItemsProcessed(state.iterations() * mesh.vertexCount);
  state.counters["passes"] = passes;
}

void BM_ImplicitLaplacianStep(benchmark::State& state) {
  timeStep<ImplicitLaplacianFlow>(state);
}

void BM_ImplicitMeanCurvatureStep(benchmark::State& state) {
  timeStep<ImplicitMeanCurvatureFlow>(state);
}

/// The system of a mean curvature step for the z coordinate.
struct System {
  TriangleMesh mesh = bench::built(bench::largeSurface());
  SparseMatrix matrix = ImplicitMeanCurvatureFlow(mesh, 0.5F).assemble();
  LargeVector<double> b = dvector(size());

  System() {
    for (std::size_t i = 0; i < size(); ++i) b[i + 1] = mesh.position(static_cast<int>(i)).z;
  }
  std::size_t size() const { return static_cast<std::size_t>(mesh.vertexCount); }
};

constexpr int passes = 10;

/// Ten passes of the solver. Items are vertices times passes.
void BM_SolverPasses(benchmark::State& state) {
  const ScopedTextSink quiet(quietTextSink());
  const System system;
  LargeVector<double> x;
  for (auto _ : state) {
    x = system.b;
    linbcg(system.matrix, system.mesh.vertexCount, system.b, x,
           {.itol = 1, .tol = 0.0, .itmax = passes - 1});
  }
  state.SetItemsProcessed(state.iterations() * system.mesh.vertexCount * passes);
}

/// What a pass consists of, each product and each vector operation as a plain loop of its own: the
/// measure for BM_SolverPasses, which must not take more than 1.5 times as long.
void BM_BarePasses(benchmark::State& state) {
  const System system;
  const std::size_t n = system.size();
  const int order = system.mesh.vertexCount;
  LargeVector<double> x = system.b;
  LargeVector<double> p = x, pp = x, r = x, rr = x, z = x, zz = x;
  const auto innerProduct = [n](std::span<const double> u, std::span<const double> v) {
    double sum = 0.0;
    for (std::size_t j = 1; j <= n; ++j) sum += u[j] * v[j];
    return sum;
  };
  const auto add = [n](LargeVector<double>& u, double factor, std::span<const double> v) {
    for (std::size_t j = 1; j <= n; ++j) u[j] += factor * v[j];
  };
  for (auto _ : state) {
    for (int pass = 0; pass < passes; ++pass) {
      asolve(system.matrix, order, rr, zz, 1);
      benchmark::DoNotOptimize(innerProduct(z, rr));
      add(p, 0.5, z);
      add(pp, 0.5, zz);
      dsprsax(system.matrix.sa, system.matrix.ija, p, z, order);
      benchmark::DoNotOptimize(innerProduct(z, pp));
      dsprstx(system.matrix.sa, system.matrix.ija, pp, zz, order);
      add(x, 1e-9, p);
      add(r, -1e-9, z);
      add(rr, -1e-9, zz);
      asolve(system.matrix, order, r, z, 0);
      benchmark::DoNotOptimize(innerProduct(r, r));
    }
  }
  state.SetItemsProcessed(state.iterations() * order * passes);
}

BENCHMARK(BM_ImplicitLaplacianStep)
    ->Arg(1000)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5)
    ->ReportAggregatesOnly();
BENCHMARK(BM_ImplicitMeanCurvatureStep)
    ->Arg(100)
    ->Arg(300)
    ->Arg(1000)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(3)
    ->ReportAggregatesOnly();
BENCHMARK(BM_SolverPasses)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly();
BENCHMARK(BM_BarePasses)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly();

}  // namespace
}  // namespace gravlin
