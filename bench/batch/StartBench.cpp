// A short run of the shipped program, as a script that handles many small meshes starts it.

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

constexpr const char* square = "4 2\n0 0 0\n4 0 0\n4 2 0\n0 2 0\n3 0 1 2\n3 0 2 3\n";

void BM_OpenAndSaveASmallMesh(benchmark::State& state) {
  const std::filesystem::path folder = std::filesystem::temp_directory_path();
  const std::string in = folder / "gravlin-start-bench.ply2";
  const std::string out = folder / "gravlin-start-bench-out.ply2";
  std::ofstream(in) << square;
  const std::string command = GRAVLIN_BATCH_PROGRAM " open '" + in + "' save '" + out + "'";
  for (auto _ : state) {
    if (std::system(command.c_str()) != 0) state.SkipWithError("the program failed");
  }
  std::filesystem::remove(in);
  std::filesystem::remove(out);
}
BENCHMARK(BM_OpenAndSaveASmallMesh)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Repetitions(7)
    ->ReportAggregatesOnly();

}  // namespace
