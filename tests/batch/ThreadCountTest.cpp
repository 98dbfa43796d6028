#include <gtest/gtest.h>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "batch/BatchRun.h"
#include "support/Meshes.h"
#include "support/ThreadCounts.h"

namespace gravlin {
namespace {

/// A torus with vertices for `threads` threads and faces for twice as many, and some to spare.
TriangleMesh torusForThreads(int threads) {
  TriangleMesh torus = test::torus(52 * threads, 80);
  std::set<int> starts;
  std::mutex guard;
  const test::ScopedThreadCount scope(threads);
  parallelRanges(torus.vertexCount, [&](const IndexRange& range) {
    const std::lock_guard lock(guard);
    starts.insert(range.begin);
  });
  EXPECT_GE(static_cast<int>(starts.size()), threads) << "a range for every thread";
  return torus;
}

/// Steps whose loops run in parallel, on a mesh with enough vertices for several ranges.
class ThreadCount : public ::testing::TestWithParam<std::vector<std::string>> {};

TEST_P(ThreadCount, ChangesNoBit) {
  const test::TemporaryFolder folder;
  const std::string path = test::writeMeshFile(folder, "torus.ply2", torusForThreads(8));
  std::vector<std::string> arguments = {"--quiet", "open", path, "noise"};
  arguments.insert(arguments.end(), GetParam().begin(), GetParam().end());
  arguments.insert(arguments.end(),
                   {"dump", "-", "--fields",
                    "vertices,vertexNormals,faceNormals,maxCurvature,minCurvature,maxDirection,"
                    "minDirection,maxDerivativeGradient,minDerivativeGradient,ridgeLinks,"
                    "valleyLinks,ridgeMarks,valleyMarks,coherentFaces,strokeSeeds,maxStrokes,"
                    "minStrokes,histogram"});
  const auto runOn = [&](int threads) {
    const test::ScopedThreadCount scope(threads);
    return test::runBatchHere(arguments);
  };
  const test::RunResult alone = runOn(1);
  ASSERT_EQ(alone.status, 0) << alone.errors;
  for (const int threads : {2, 3, 8}) EXPECT_TRUE(runOn(threads).output == alone.output) << threads;
}

std::vector<std::string> flow(const std::string& method) {
  return {"smooth-shape", "--method", method, "--iteration-count", "2", "--step-size", "0.05"};
}

std::vector<std::string> adaptive(std::vector<std::string> options) {
  options.insert(options.begin(), {"smooth-adaptive", "--outer-iterations", "1"});
  return options;
}

INSTANTIATE_TEST_SUITE_P(
    Steps, ThreadCount,
    ::testing::Values(flow("Laplacian Flow"), flow("Mean Curvature Flow (Desbrun)"),
                      flow("Modified Mean Curvature Flow (Curvature along Median)"),
                      flow("Taubin Smoothing (k=0.1)"), flow("Taubin Smoothing (k=0.1, w = 1/d)"),
                      flow("Taubin Smoothing (k=0.1, w = Desbrun)"), flow("Bilaplacian (Kobbelt)"),
                      flow("Mean Curvature Flow (Desbrun, implicit)"), adaptive({}),
                      adaptive({"--averaging-kind", "weight", "--integration-error", "distance"}),
                      adaptive({"--averaging-kind", "weight", "--meet-at-vertex", "0",
                                "--derivative-variant", "2"}),
                      std::vector<std::string>{"smooth-tensor"},
                      std::vector<std::string>{"local-max"},
                      std::vector<std::string>{"local-max", "--show-ridge-direction"},
                      std::vector<std::string>{"silhouette"},
                      std::vector<std::string>{"smooth-shape", "show-vertex-error"},
                      std::vector<std::string>{"smooth-shape", "show-face-error"}));

}  // namespace
}  // namespace gravlin
