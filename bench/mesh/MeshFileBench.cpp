#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "mesh/io/MeshFile.h"
#include "mesh/io/MeshWriter.h"
#include "mesh/io/Scanner.h"
#include "support/Memory.h"
#include "support/Surface.h"

namespace gravlin {
namespace {

void countBytes(benchmark::State& state, std::size_t bytesEach) {
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytesEach));
}

void BM_Scanner(benchmark::State& state) {
  const TriangleMesh surface = bench::largeSurface();
  const std::string text = bench::ply2Text(surface);
  for (auto _ : state) {
    Scanner scanner(text);
    const int vertexCount = scanner.scanInt().value_or(0);
    const int faceCount = scanner.scanInt().value_or(0);
    float floats = 0.0F;
    unsigned ints = 0;
    for (int k = 0; k < 3 * vertexCount; ++k) floats += scanner.scanFloat().value_or(0.0F);
    for (int f = 0; f < faceCount; ++f) {
      floats += scanner.scanFloat().value_or(0.0F);
      for (int k = 0; k < 3; ++k) ints += static_cast<unsigned>(scanner.scanInt().value_or(0));
    }
    benchmark::DoNotOptimize(floats);
    benchmark::DoNotOptimize(ints);
  }
  countBytes(state, text.size());
}
BENCHMARK(BM_Scanner)->Unit(benchmark::kMillisecond)->Repetitions(7)->ReportAggregatesOnly();

/// Everything from the path to both normals.
void BM_Open(benchmark::State& state) {
  const std::string text = bench::ply2Text(bench::largeSurface());
  const std::string path = bench::writeTemporary("gravlin-bench.ply2", text);
  for (auto _ : state) benchmark::DoNotOptimize(openMeshFile(path));
  countBytes(state, text.size());
  std::filesystem::remove(path);
}
BENCHMARK(BM_Open)->Unit(benchmark::kMillisecond)->Repetitions(7)->ReportAggregatesOnly();

/// The most memory that opening takes, less the text itself, per vertex.
void BM_OpenPeakMemory(benchmark::State& state) {
  std::size_t fileSize = 0;
  std::string path;
  {
    const std::string text = bench::ply2Text(bench::largeSurface());
    fileSize = text.size();
    path = bench::writeTemporary("gravlin-bench.ply2", text);
  }
  double bytes = 0.0;
  double vertexCount = 0.0;
  for (auto _ : state) {
    const bench::PeakMemory peak;
    const OpenResult opened = openMeshFile(path);
    bytes = peak.bytes();
    vertexCount = opened.mesh->vertexCount;
  }
  state.counters["bytes_per_vertex_beyond_the_file"] =
      (bytes - static_cast<double>(fileSize)) / vertexCount;
  std::filesystem::remove(path);
}
BENCHMARK(BM_OpenPeakMemory)->Unit(benchmark::kMillisecond)->Iterations(1);

/// Formatting and handing over to a stream, without waiting for a disk.
void BM_Write(benchmark::State& state) {
  const TriangleMesh mesh = bench::built(bench::largeSurface());
  std::FILE* stream = std::tmpfile();
  long size = 0;
  for (auto _ : state) {
    std::rewind(stream);
    writeMesh({stream, "", "ply2"}, mesh);
    size = std::ftell(stream);
  }
  countBytes(state, static_cast<std::size_t>(size));
  std::fclose(stream);
}
BENCHMARK(BM_Write)->Unit(benchmark::kMillisecond)->Repetitions(7)->ReportAggregatesOnly();

/// The whole command, with the way to the file's units and back and the wait for the disk.
void BM_Save(benchmark::State& state) {
  TriangleMesh mesh = bench::built(bench::largeSurface());
  const std::string path = bench::writeTemporary("gravlin-bench-saved.ply2", "");
  for (auto _ : state) benchmark::DoNotOptimize(saveMeshFile(path, mesh));
  countBytes(state, std::filesystem::file_size(path));
  std::filesystem::remove(path);
}
BENCHMARK(BM_Save)->Unit(benchmark::kMillisecond)->Repetitions(7)->ReportAggregatesOnly();

}  // namespace
}  // namespace gravlin
