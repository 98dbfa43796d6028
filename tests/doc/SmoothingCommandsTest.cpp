#include <algorithm>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <new>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "doc/CGravlinDoc.h"
#include "doc/Messages.h"
#include "mesh/MeshMeasures.h"
#include "smoothing/MeshSmoother.h"
#include "support/Allocations.h"
#include "support/CapturedText.h"
#include "support/DocumentAccess.h"
#include "support/Meshes.h"
#include "support/MeshFields.h"
#include "support/ScriptedOutside.h"

namespace gravlin {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

using Texts = std::vector<std::pair<std::string, std::string>>;

class SmoothingCommands : public ::testing::Test {
 protected:
  SmoothingCommands() { load(test::torus(9, 7)); }

  void load(TriangleMesh mesh) {
    before = mesh;
    test::setMesh(doc, std::move(mesh));
    outside.forget();
  }

  void smooth(Texts texts) {
    outside.dialogAnswers = {test::okWith(std::move(texts))};
    doc.OnSmoothingShape();
    EXPECT_TRUE(outside.finished());
  }

  void addNoise(Texts texts) {
    outside.dialogAnswers = {test::okWith(std::move(texts))};
    doc.OnSmoothingNoise();
    EXPECT_TRUE(outside.finished());
  }

  /// The calls between the dialog and the end: p for a step of the bar, r for a redraw, s for the
  /// bar shown and h for it hidden.
  std::string rhythm() const {
    std::string letters;
    for (const std::string& call : outside.calls) {
      if (call.starts_with("show progress")) letters += 's';
      if (call == "step progress") letters += 'p';
      if (call == "hide progress") letters += 'h';
      if (call == "redraw") letters += 'r';
    }
    return letters;
  }

  std::vector<float> afterLaplacian(int iterations) const {
    TriangleMesh mesh = before;
    MeshSmoother smoother;
    smoother.attach(&mesh);
    smoother.laplacianFlow(iterations, 0.5F);
    return mesh.vertices;
  }

  const test::CapturedText solverLines;
  TriangleMesh before;
  test::ScriptedOutside outside;
  CGravlinDoc doc{outside};
};

const char* const methods[] = {"Laplacian Flow",
                               "Laplacian Flow (implicit)",
                               "Mean Curvature Flow (Desbrun)",
                               "Mean Curvature Flow (Desbrun, implicit)",
                               "Modified Mean Curvature Flow (Curvature along Median)",
                               "Taubin Smoothing (k=0.1)",
                               "Taubin Smoothing (k=0.1, w = 1/d)",
                               "Taubin Smoothing (k=0.1, w = Desbrun)",
                               "Bilaplacian (Kobbelt)"};

bool isImplicit(const std::string& method) {
  return method.find("implicit") != std::string::npos;
}

// --- Chunks, progress and redraws ---

TEST_F(SmoothingCommands, RunEveryIterationInAboutTenStepsOfTheBarWithoutAnimation) {
  struct Case {
    const char* iterations;
    const char* progress;
    std::string rhythm;
  };
  for (const Case& c : {Case{"7", "show progress 0..7 by 1", "sppppppphr"},
                        Case{"10", "show progress 0..10 by 1", "spppppppppphr"},
                        Case{"25", "show progress 0..25 by 2", "spppppppppppphr"}}) {
    load(test::torus(9, 7));
    smooth({{"iterationCount", c.iterations}, {"animate", "0"}, {"preserveVolume", "0"}});
    EXPECT_EQ(outside.count(c.progress), 1) << c.progress;
    EXPECT_EQ(rhythm(), c.rhythm) << c.progress;
    EXPECT_EQ(doc.mesh()->vertices, afterLaplacian(std::stoi(c.iterations)));
  }
}

TEST_F(SmoothingCommands, RedrawAfterEveryChunkWithAnimationAndOnceMoreAtTheEnd) {
  struct Case {
    const char* iterations;
    const char* every;
    const char* progress;
    std::string rhythm;
  };
  for (const Case& c : {Case{"7", "1", "show progress 0..7 by 1", "sprprprprprprprhr"},
                        Case{"10", "3", "show progress 0..10 by 3", "sprprprhr"},
                        Case{"25", "10", "show progress 0..25 by 10", "sprprhr"},
                        Case{"3", "0", "show progress 0..3 by 1", "sprprprhr"},
                        Case{"3", "-2", "show progress 0..3 by 1", "sprprprhr"},
                        Case{"2", "5", "show progress 0..2 by 5", "shr"}}) {
    load(test::torus(9, 7));
    smooth({{"iterationCount", c.iterations},
            {"animate", "1"},
            {"animateEvery", c.every},
            {"preserveVolume", "0"}});
    EXPECT_EQ(outside.count(c.progress), 1) << c.progress;
    EXPECT_EQ(rhythm(), c.rhythm) << c.progress;
    EXPECT_EQ(doc.mesh()->vertices, afterLaplacian(std::stoi(c.iterations)));
  }
}

TEST_F(SmoothingCommands, ShowTheMeshOfEveryChunkWhileAnimated) {
  std::vector<std::vector<float>> seen;
  outside.whenRedrawn = [&] {
    EXPECT_FALSE(doc.needsRecompute);
    seen.push_back(doc.mesh()->vertices);
  };
  smooth({{"iterationCount", "10"}, {"animateEvery", "3"}, {"preserveVolume", "0"}});
  EXPECT_THAT(seen, ElementsAre(afterLaplacian(3), afterLaplacian(6), afterLaplacian(9),
                                afterLaplacian(10)));
}

TEST_F(SmoothingCommands, RedrawImplicitMethodsAfterEveryStepWhateverTheInterval) {
  for (const char* method : {methods[1], methods[3]}) {
    load(test::torus(9, 7));
    smooth({{"method", method},
            {"iterationCount", "4"},
            {"stepSize", "0.1"},
            {"animate", "1"},
            {"animateEvery", "3"}});
    EXPECT_EQ(rhythm(), "sprprprprhr") << method;
    load(test::torus(9, 7));
    smooth({{"method", method}, {"iterationCount", "4"}, {"animate", "0"}});
    EXPECT_EQ(rhythm(), "spppphr") << method;
  }
}

TEST_F(SmoothingCommands, RecomputeNormalsForEveryRedraw) {
  outside.whenRedrawn = [&] {
    TriangleMesh fresh = *doc.mesh();
    fresh.computeFaceNormals();
    fresh.computeVertexNormals();
    EXPECT_EQ(doc.mesh()->faceNormals, fresh.faceNormals);
    EXPECT_EQ(doc.mesh()->vertexNormals, fresh.vertexNormals);
  };
  smooth({{"iterationCount", "3"}});
}

// --- Methods ---

TEST_F(SmoothingCommands, RunTheChosenMethod) {
  using Operation = void (*)(MeshSmoother&);
  const Operation runs[] = {[](MeshSmoother& s) { s.laplacianFlow(2, 0.01F); },
                            [](MeshSmoother& s) {
                              s.implicitLaplacianFlow(0.01F);
                              s.implicitLaplacianFlow(0.01F);
                            },
                            [](MeshSmoother& s) { s.meanCurvatureFlow(2, 0.01F); },
                            [](MeshSmoother& s) {
                              s.implicitMeanCurvatureFlow(0.01F);
                              s.implicitMeanCurvatureFlow(0.01F);
                            },
                            [](MeshSmoother& s) { s.medianCurvatureFlow(2, 0.01F); },
                            [](MeshSmoother& s) { s.taubinSmoothing(2, 0.01F, 0.1F, 0); },
                            [](MeshSmoother& s) { s.taubinSmoothing(2, 0.01F, 0.1F, 1); },
                            [](MeshSmoother& s) { s.taubinSmoothing(2, 0.01F, 0.1F, 2); },
                            [](MeshSmoother& s) { s.bilaplacianFlow(2, 0.01F); }};
  for (std::size_t i = 0; i < std::size(methods); ++i) {
    load(test::torus(9, 7));
    smooth({{"method", methods[i]},
            {"iterationCount", "2"},
            {"stepSize", "0.01"},
            {"preserveVolume", "0"}});
    TriangleMesh expected = before;
    MeshSmoother smoother;
    smoother.attach(&expected);
    runs[i](smoother);
    EXPECT_EQ(doc.mesh()->vertices, expected.vertices) << methods[i];
    EXPECT_NE(doc.mesh()->vertices, before.vertices) << methods[i];
  }
}

TEST_F(SmoothingCommands, OfAnUnknownMethodLeaveTheMeshButReplaceTheUndoCopyAndRedraw) {
  doc.undoMesh = std::make_unique<TriangleMesh>(test::cube());
  smooth({{"method", "laplacian flow"}});
  EXPECT_EQ(doc.mesh()->vertices, before.vertices);
  EXPECT_EQ(doc.undoMesh->vertices, before.vertices);
  EXPECT_EQ(rhythm(), "shr");
  EXPECT_EQ(outside.statuses.back(),
            "No method is called \"laplacian flow\"; nothing was smoothed.");
  smooth({{"method", "Laplacian Flow"}});
  EXPECT_EQ(outside.statuses.back(), "") << "what was said before is no longer true";
}

// --- Volume ---

TEST_F(SmoothingCommands, KeepTheVolumeAtEveryRedraw) {
  for (const std::string method : methods) {
    load(test::torus(9, 7));
    const double volume = enclosedVolume(before);
    outside.whenRedrawn = [&] {
      // Every coordinate is rounded to single precision, 6e-8 of its size, after the scaling.
      EXPECT_NEAR(enclosedVolume(*doc.mesh()), volume, 2e-6 * volume) << method;
    };
    smooth({{"method", method}, {"iterationCount", "5"}, {"stepSize", "0.02"}});
    EXPECT_EQ(outside.count("redraw"), 6) << method;
  }
}

TEST_F(SmoothingCommands, KeepTheVolumeAfterTheRestOfTheIterationsToo) {
  // Three chunks of three, and one iteration more that only the last redraw shows.
  const double volume = enclosedVolume(before);
  outside.whenRedrawn = [&] {
    EXPECT_NEAR(enclosedVolume(*doc.mesh()), volume, 2e-6 * volume);  // as above
  };
  smooth({{"iterationCount", "10"}, {"animateEvery", "3"}});
  EXPECT_EQ(rhythm(), "sprprprhr");
}

TEST_F(SmoothingCommands, ScaleOnlyAtTheEndWithoutAnimation) {
  smooth({{"iterationCount", "5"}, {"animate", "0"}});
  TriangleMesh expected = before;
  expected.vertices = afterLaplacian(5);
  rescaleToVolume(expected, enclosedVolume(before));
  EXPECT_EQ(doc.mesh()->vertices, expected.vertices);
}

TEST_F(SmoothingCommands, LeaveAFlatMeshWithoutVolumeUnscaled) {
  load(test::grid(4, 4));
  smooth({{"iterationCount", "3"}});
  for (const float coordinate : doc.mesh()->vertices) EXPECT_TRUE(std::isfinite(coordinate));
  EXPECT_THAT(outside.statuses, IsEmpty());
}

TEST_F(SmoothingCommands, TellWhenTheVolumeChangesItsSignAndNameUndo) {
  // A cone of one face below the origin; its apex is pulled through the origin's plane.
  TriangleMesh mesh = test::hexagonFan();
  for (int i = 0; i < mesh.vertexCount; ++i)
    mesh.setPosition(i, mesh.position(i) + Vec3{0, 0, 0.1});
  mesh.setPosition(0, {0, 0, -5});
  load(mesh);
  const double volume = enclosedVolume(mesh);
  ASSERT_LT(volume, 0.0);
  smooth({{"iterationCount", "1"}, {"stepSize", "1"}});
  EXPECT_TRUE(std::isnan(doc.mesh()->vertices[0]));
  EXPECT_THAT(outside.statuses, ElementsAre(HasSubstr("Undo")));
  EXPECT_THAT(outside.messages, IsEmpty());
  doc.OnEditUndo();
  EXPECT_EQ(doc.mesh()->vertices, before.vertices);
}

// --- Dialog, undo ---

TEST_F(SmoothingCommands, ChangeNothingOnCancelAndDoNothingWithoutAMesh) {
  outside.dialogAnswers = {test::cancel(), test::cancel()};
  doc.OnSmoothingShape();
  doc.OnSmoothingNoise();
  EXPECT_THAT(outside.calls, ElementsAre("dialog CSmoothingDlg", "dialog CNoiseDlg"));
  EXPECT_EQ(doc.mesh()->vertices, before.vertices);
  EXPECT_EQ(doc.undoMesh, nullptr);
  outside.forget();
  test::dropMesh(doc);
  doc.OnSmoothingShape();
  doc.OnSmoothingNoise();
  EXPECT_THAT(outside.calls, IsEmpty());
}

TEST_F(SmoothingCommands, RememberTheirValues) {
  const Texts typed = {{"method", methods[8]}, {"iterationCount", "3"}, {"stepSize", "0.25"},
                       {"animate", "0"},       {"animateEvery", "4"},   {"preserveVolume", "0"}};
  smooth(typed);
  Texts shown;
  outside.dialogAnswers = {[&](const Form& form) {
    for (const Field& field : form.fields) shown.emplace_back(field.name, textOf(field));
    return false;
  }};
  doc.OnSmoothingShape();
  EXPECT_EQ(shown, typed);
}

TEST_F(SmoothingCommands, AreUndoneBitForBit) {
  for (const char* method : methods) {
    load(test::torus(9, 7));
    smooth({{"method", method}, {"iterationCount", "2"}});
    EXPECT_NE(doc.mesh()->vertices, before.vertices) << method;
    doc.OnEditUndo();
    EXPECT_EQ(doc.mesh()->vertices, before.vertices) << method;
    EXPECT_EQ(doc.mesh()->vertexNormals, before.vertexNormals) << method;
  }
}

TEST_F(SmoothingCommands, KeepTheDisplayMode) {
  doc.displayMode = WireFrame;
  smooth({{"iterationCount", "1"}});
  EXPECT_EQ(doc.displayMode, WireFrame);
}

TEST_F(SmoothingCommands, PrintOneSolverLinePerPass) {
  smooth({{"method", methods[1]}, {"iterationCount", "2"}, {"preserveVolume", "0"}});
  int passes = 0;
  TriangleMesh mesh = before;
  const test::CapturedText text;
  MeshSmoother smoother;
  smoother.attach(&mesh);
  for (int step = 0; step < 2; ++step) {
    for (const LinbcgResult& solve : smoother.implicitLaplacianFlow(0.5F).solves) {
      passes += solve.iter;
    }
  }
  EXPECT_GT(passes, 0);
  EXPECT_EQ(solverLines.outputLines(), passes);
  EXPECT_EQ(solverLines.output, text.output);
}

// --- Without memory ---

TEST_F(SmoothingCommands, TellWhenMemoryEndsOnTheWayAndKeepWhatIsDone) {
  outside.whenRedrawn = [this] {
    outside.whenRedrawn = nullptr;
    throw std::bad_alloc();
  };
  smooth({{"iterationCount", "9"}, {"animateEvery", "3"}, {"preserveVolume", "0"}});
  EXPECT_THAT(outside.messages, ElementsAre(outOfMemoryWhileSmoothing));
  EXPECT_EQ(rhythm(), "sprhr");
  EXPECT_EQ(doc.mesh()->vertices, afterLaplacian(3));
  doc.OnEditUndo();
  EXPECT_EQ(doc.mesh()->vertices, before.vertices);
}

TEST_F(SmoothingCommands, LoseNoShapeWhicheverAllocationFails) {
  using Command = void (CGravlinDoc::*)();
  struct Case {
    const char* name;
    Command command;
  };
  for (const Case& c : {Case{methods[0], &CGravlinDoc::OnSmoothingShape},
                        Case{methods[1], &CGravlinDoc::OnSmoothingShape},
                        Case{methods[3], &CGravlinDoc::OnSmoothingShape},
                        Case{methods[8], &CGravlinDoc::OnSmoothingShape},
                        Case{"adaptive", &CGravlinDoc::OnSmoothingShapeAdaptive},
                        Case{"noise", &CGravlinDoc::OnSmoothingNoise}}) {
    doc.smoothingParameters = {.method = c.name, .iterationCount = 2, .stepSize = 0.01F};
    doc.adaptiveSmoothingParameters = {.outerIterations = 2};
    const auto run = [&](std::size_t refusedAllocation) {
      load(test::torus(9, 7));
      std::optional<test::AllocationFailure> failure;
      outside.dialogAnswers = {[&](const Form&) {
        failure.emplace(refusedAllocation);
        return true;
      }};
      (doc.*c.command)();
    };
    const std::size_t earlier = test::allocationCount();
    run(0);
    doc.OnEditUndo();
    const std::size_t most = test::allocationCount() - earlier;
    int escaped = 0;
    for (std::size_t n = 1; n <= most; ++n) {
      SCOPED_TRACE(std::string(c.name) + ", allocation " + std::to_string(n));
      try {
        run(n);
      } catch (const std::bad_alloc&) {
        ++escaped;  // the window tells about it
      }
      if (doc.modified) doc.OnEditUndo();
      EXPECT_EQ(doc.mesh()->vertices, before.vertices);
      EXPECT_FALSE(doc.modified);
    }
    EXPECT_GT(escaped, 0);
  }
}

// --- Noise ---

TEST_F(SmoothingCommands, NoiseMovesVerticesAlongTheirNormalsAndShowsThemFlat) {
  doc.displayMode = SmoothShading;
  addNoise({{"noiseSize", "0.125"}});
  TriangleMesh expected = before;
  MeshSmoother smoother;
  smoother.attach(&expected);
  smoother.addNoise(0.125F);
  expected.computeFaceNormals();
  expected.computeVertexNormals();
  EXPECT_EQ(doc.mesh()->vertices, expected.vertices);
  EXPECT_EQ(doc.mesh()->faceNormals, expected.faceNormals);
  EXPECT_EQ(doc.mesh()->vertexNormals, expected.vertexNormals);
  EXPECT_EQ(doc.displayMode, FlatShading);
  EXPECT_THAT(outside.calls, ElementsAre("dialog CNoiseDlg", "redraw"));
}

TEST_F(SmoothingCommands, NoiseOfSizeZeroKeepsPositionsAndReplacesTheUndoCopy) {
  addNoise({{"noiseSize", "0"}});
  EXPECT_EQ(doc.mesh()->vertices, before.vertices);
  ASSERT_NE(doc.undoMesh, nullptr);
  EXPECT_EQ(doc.undoMesh->vertices, before.vertices);
}

TEST_F(SmoothingCommands, NoiseOfSizeZeroRecomputesTheNormals) {
  test::meshOf(doc).faceNormals.assign(before.faceNormals.size(), 0.5F);
  addNoise({{"noiseSize", "0"}});
  EXPECT_EQ(doc.mesh()->faceNormals, before.faceNormals);
  EXPECT_EQ(doc.mesh()->vertexNormals, before.vertexNormals);
}

TEST_F(SmoothingCommands, NoiseOfNegativeSizeMirrorsTheDisplacement) {
  addNoise({{"noiseSize", "0.125"}});
  const std::vector<float> outward = doc.mesh()->vertices;
  doc.OnEditUndo();
  addNoise({{"noiseSize", "-0.125"}});
  for (std::size_t i = 0; i < outward.size(); ++i) {
    // Coordinates below 8 are stored to within 2.4e-7.
    EXPECT_NEAR(doc.mesh()->vertices[i] - before.vertices[i], before.vertices[i] - outward[i],
                5e-7);
  }
  EXPECT_NE(doc.mesh()->vertices, outward);
}

TEST_F(SmoothingCommands, EveryNoiseReplacesTheUndoCopy) {
  doc.undoMesh = std::make_unique<TriangleMesh>(test::cube());
  addNoise({});
  EXPECT_EQ(doc.undoMesh->vertices, before.vertices);
  const std::vector<float> noisy = doc.mesh()->vertices;
  addNoise({});
  EXPECT_EQ(doc.undoMesh->vertices, noisy);
  EXPECT_NE(doc.mesh()->vertices, noisy);
}

TEST_F(SmoothingCommands, NoiseIsUndoneBitForBit) {
  addNoise({});
  EXPECT_NE(doc.mesh()->vertices, before.vertices);
  doc.OnEditUndo();
  EXPECT_EQ(doc.mesh()->vertices, before.vertices);
}

TEST_F(SmoothingCommands, NoiseOfInfiniteSizeNamesUndo) {
  doc.noiseParameters.noiseSize = HUGE_VALF;
  addNoise({});
  EXPECT_THAT(outside.statuses, ElementsAre(HasSubstr("Undo")));
}

// --- Any mesh, any value ---

TEST_F(SmoothingCommands, TakeAnyMeshAndAnyStep) {
  for (const test::NamedMesh& hostile : test::hostileMeshes()) {
    for (const char* method : methods) {
      for (const float step : {0.5F, -2.0F, 1e30F, std::nanf("")}) {
        SCOPED_TRACE(hostile.name + ", " + method);
        load(hostile.mesh);
        doc.smoothingParameters.stepSize = step;
        smooth({{"method", method}, {"iterationCount", "3"}});
        EXPECT_EQ(doc.mesh()->faces, hostile.mesh.faces);
        EXPECT_EQ(outside.count("redraw"), 4);
        const bool finite = std::all_of(doc.mesh()->vertices.begin(), doc.mesh()->vertices.end(),
                                        [](float x) { return std::isfinite(x); });
        EXPECT_EQ(outside.statuses.empty(), finite);
        // By curvature a small mesh moves far, and through itself: curvatures have no bound then.
        const bool mayOvershoot =
            method == std::string("Mean Curvature Flow (Desbrun)") &&
            (hostile.name == "two surfaces at one vertex" ||
             hostile.name == "sliver and neighbours in one place" || hostile.name == "very small");
        if (test::isFinite(hostile.mesh) && step == 0.5F && !mayOvershoot) {
          EXPECT_TRUE(finite);
        }
        doc.OnEditUndo();
        EXPECT_TRUE(test::sameVertices(*doc.mesh(), hostile.mesh));
      }
    }
    load(hostile.mesh);
    addNoise({});
    EXPECT_EQ(doc.displayMode, FlatShading);
    EXPECT_EQ(doc.mesh()->faces, hostile.mesh.faces);
    EXPECT_EQ(test::isFinite(*doc.mesh()), test::isFinite(hostile.mesh));
  }
}

TEST_F(SmoothingCommands, ImplicitMethodsHaveTheirOwnRhythmOnly) {
  for (const std::string method : methods) {
    load(test::torus(9, 7));
    smooth({{"method", method}, {"iterationCount", "25"}, {"stepSize", "0.001"}, {"animate", "0"}});
    EXPECT_EQ(outside.count("step progress"), isImplicit(method) ? 25 : 12) << method;
  }
}

}  // namespace
}  // namespace gravlin
