// Files of the formats that other programs share, from and to memory.

#include <benchmark/benchmark.h>
#include <cstdint>
#include <filesystem>
#include <string>

#include "mesh/io/MeshExport.h"
#include "mesh/io/MeshImport.h"
#include "support/Memory.h"
#include "support/Surface.h"

namespace gravlin {
namespace {

struct Kind {
  const char* extension;
  ExportOptions::Text text;
};
constexpr Kind kinds[] = {
    {"ply", ExportOptions::Text::Binary}, {"ply", ExportOptions::Text::Ascii},
    {"off", ExportOptions::Text::Ascii},  {"obj", ExportOptions::Text::Ascii},
    {"stl", ExportOptions::Text::Binary}, {"stl", ExportOptions::Text::Ascii}};

void nameKind(benchmark::State& state) {
  const Kind& kind = kinds[state.range(0)];
  state.SetLabel(std::string(kind.extension) +
                 (kind.text == ExportOptions::Text::Ascii ? " ascii" : " binary"));
}

/// The large surface as a file of a kind.
std::string writtenAs(const Kind& kind) {
  const TriangleMesh surface = bench::largeSurface();
  const MeshToWrite mesh(surface, {{1.25, 2.0, 3.0}, 0.05}, MeshToWrite::Vertices::All);
  const std::string path =
      bench::writeTemporary(std::string("gravlin-bench-exchange.") + kind.extension, "");
  exportMeshFile(path, mesh, {.text = kind.text});
  return path;
}

/// Without topology: what the reader gives.
void BM_Import(benchmark::State& state) {
  nameKind(state);
  const std::string path = writtenAs(kinds[state.range(0)]);
  for (auto _ : state) benchmark::DoNotOptimize(importMeshFile(path));
  state.SetBytesProcessed(state.iterations() *
                          static_cast<std::int64_t>(std::filesystem::file_size(path)));
  std::filesystem::remove(path);
}
BENCHMARK(BM_Import)->DenseRange(0, 5)->Unit(benchmark::kMillisecond);

/// The most memory that importing takes, per vertex; the mapped file is not counted as taken.
void BM_ImportPeakMemory(benchmark::State& state) {
  nameKind(state);
  const std::string path = writtenAs(kinds[state.range(0)]);
  double bytes = 0.0;
  double vertexCount = 1.0;
  for (auto _ : state) {
    const bench::PeakMemory peak;
    const ImportResult read = importMeshFile(path);
    bytes = peak.bytes() - static_cast<double>(std::filesystem::file_size(path));
    vertexCount = read.mesh->vertexCount();
  }
  state.counters["bytes_per_vertex_beyond_the_file"] = bytes / vertexCount;
  std::filesystem::remove(path);
}
BENCHMARK(BM_ImportPeakMemory)->DenseRange(0, 5)->Iterations(1)->Unit(benchmark::kMillisecond);

/// With the wait for the disk, if the temporary folder is on one.
void BM_Export(benchmark::State& state) {
  nameKind(state);
  const Kind& kind = kinds[state.range(0)];
  const std::string path = writtenAs(kind);
  const TriangleMesh surface = bench::largeSurface();
  const MeshToWrite mesh(surface, {{1.25, 2.0, 3.0}, 0.05}, MeshToWrite::Vertices::All);
  for (auto _ : state) benchmark::DoNotOptimize(exportMeshFile(path, mesh, {.text = kind.text}));
  state.SetBytesProcessed(state.iterations() *
                          static_cast<std::int64_t>(std::filesystem::file_size(path)));
  std::filesystem::remove(path);
}
BENCHMARK(BM_Export)->DenseRange(0, 5)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace gravlin
