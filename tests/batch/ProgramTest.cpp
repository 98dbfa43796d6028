#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <string_view>

#include "batch/BatchRun.h"
#include "batch/Dump.h"
#include "numeric/TextSink.h"
#include "support/Meshes.h"
#include "support/ScriptedOutside.h"
#include "view/Picture.h"

namespace gravlin {
namespace {

using nlohmann::json;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

constexpr const char* program = GRAVLIN_BATCH_PROGRAM;
constexpr const char* square = "4 2\n0 0 0\n4 0 0\n4 2 0\n0 2 0\n3 0 1 2\n3 0 2 3\n";

/// The shipped program as users run it.
class Program : public ::testing::Test {
 protected:
  static test::RunResult run(const std::string& arguments) {
    return test::runShell(std::string(program) + " " + arguments);
  }
  bool exists(const std::string& name) const { return std::filesystem::exists(folder.file(name)); }
  /// The argument for a file in the test's folder.
  std::string in(const std::string& name) const { return "'" + folder.file(name) + "'"; }

  test::TemporaryFolder folder;
  const std::string mesh = "'" + folder.write("square.ply2", square) + "'";
};

TEST_F(Program, OpensAndSaves) {
  const test::RunResult result = run("open " + mesh + " save " + in("out.ply2"));
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.errors, "");
  EXPECT_THAT(test::contentOf(folder.file("out.ply2")), StartsWith("4\n2\n0.000000 0.000000"));
}

// The creases of a flat square are its boundary, one closed line in the units of the file.
TEST_F(Program, ExportsLines) {
  const std::string find = "open " + mesh + " face-angle --threshold-mode angle ";
  const test::RunResult result = run(find + "export-lines " + in("lines.obj") +
                                     " visualization --gray-scale export-lines " + in("lines.svg"));
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(test::contentOf(folder.file("lines.obj")),
            "v 0 0 0\nv 4 0 0\nv 4 2 0\nv 0 2 0\ng convex_crease\nl 1 2 3 4 1\n");
  EXPECT_THAT(test::contentOf(folder.file("lines.svg")),
              HasSubstr("<g id=\"convex_crease\" stroke=\"white\">\n<path"));
  EXPECT_NE(run(find + "export-lines " + in("lines.txt")).status, 0);
  EXPECT_FALSE(exists("lines.txt"));
}

TEST_F(Program, ImportsAndExports) {
  folder.write("quad.obj", "v 0 0 0\nv 4 0 0\nv 4 2 0\nv 0 2 0\nf 1 2 3 4\n");
  const test::RunResult result = run("import " + in("quad.obj") + " export " + in("a.off") +
                                     " export " + in("b") + " --ascii --normals");
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.errors, HasSubstr("1 polygon cut into triangles"));
  EXPECT_THAT(test::contentOf(folder.file("a.off")),
              HasSubstr("\n4 2 0\n0 0 0\n4 0 0\n4 2 0\n0 2 0\n3 0 1 2\n3 0 2 3\n"));
  EXPECT_THAT(test::contentOf(folder.file("b.ply")), HasSubstr("\n4 2 0 0 0 1\n"));
  const test::RunResult quiet = run("import " + in("a.off") + " export " + in("c.stl") +
                                    " import " + in("c.stl") + " dump - --fields faces");
  EXPECT_EQ(quiet.status, 0);
  EXPECT_THAT(quiet.output, HasSubstr("0,1,2,0,2,3"));
}

TEST_F(Program, WeldsWhereItIsTold) {
  folder.write("split.obj",
               "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 0 0\nv 1 1 0\nv 0 1 0\nf 1 2 3\nf 4 5 6\n");
  EXPECT_THAT(run("import " + in("split.obj") + " dump - --fields vertexCount").output,
              HasSubstr("6"));
  EXPECT_THAT(run("import " + in("split.obj") + " --weld dump - --fields vertexCount").output,
              HasSubstr("4"));
}

/// Of a file that Import would read Open makes nothing, so the chain ends and names the step.
TEST_F(Program, OpenOnAStandardFileEndsTheChainAndNamesImport) {
  for (const auto& [name, content] : {std::pair{"a.obj", "v 0 0 0\n"},
                                      {"a.OFF", "OFF 0 0 0\n"},
                                      {"a.ply", "ply\nformat ascii 1.0\n"}}) {
    folder.write(name, content);
    const test::RunResult result = run("open " + in(name) + " save " + in("out.ply2"));
    EXPECT_EQ(result.status, 1) << name;
    EXPECT_THAT(result.errors, HasSubstr("The step import reads it.")) << name;
    EXPECT_FALSE(exists("out.ply2"));
  }
}

TEST_F(Program, AFileThatCannotBeImportedEndsTheChain) {
  folder.write("bad.obj", "v 0 0 0\nv 1 x 0\n");
  const test::RunResult result = run("import " + in("bad.obj") + " export " + in("out.ply"));
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.errors, HasSubstr("bad.obj: line 2: \"x\" is no number."));
  EXPECT_FALSE(exists("out.ply"));
  EXPECT_EQ(run("import " + in("missing.ply")).status, 1);
}

TEST_F(Program, RefusesAValueOutsideItsRangeBeforeTheFirstStepRuns) {
  const test::RunResult result =
      run("open " + mesh + " save " + in("out.ply2") + " visualization --line-width 100.5");
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.errors,
            "gravlin-batch: visualization --line-width: Enter a number between 0 and 100.\n");
  EXPECT_FALSE(exists("out.ply2"));
}

TEST_F(Program, RefusesAMethodThatIsNoEntryBeforeTheFirstStepRunsAndNamesTheEntries) {
  const std::string save = "open " + mesh + " save " + in("out.ply2") + " ";
  for (const auto& [step, entries] :
       {std::pair<std::string, std::vector<std::string>>{
            "subdivision", {"\"Loop\"", "\"Modified butterfly\"", "\"Linear\""}},
        {"smooth-shape", {"\"Laplacian Flow\"", "\"Bilaplacian (Kobbelt)\""}}}) {
    for (const std::string prefix : {"", "preset "}) {
      std::string chain = save;
      chain += prefix + step;
      const test::RunResult result = run(chain + " --method linear");
      EXPECT_EQ(result.status, 2);
      EXPECT_THAT(result.errors, StartsWith("gravlin-batch: " + step + " --method: "));
      EXPECT_THAT(result.errors, HasSubstr("\"linear\""));
      EXPECT_THAT(result.errors, HasSubstr("--any-text"));
      for (const std::string& entry : entries) EXPECT_THAT(result.errors, HasSubstr(entry));
      EXPECT_FALSE(exists("out.ply2"));
    }
  }
  EXPECT_EQ(run(save + "noise --any-text").status, 2) << "it has no list of entries";
}

// A quarter of each face: 2 faces become 8, and a method that does not exist smooths nothing.
TEST_F(Program, PassesAnyTextOnAsTypedIntoTheDialogWhenToldTo) {
  const auto dumped = [&](const std::string& chain) {
    test::RunResult result =
        run("open " + mesh + " " + chain + " dump - --fields faceCount,vertices");
    EXPECT_EQ(result.status, 0) << result.errors;
    return result;
  };
  const std::string linear = dumped("subdivision --method Linear").output;
  EXPECT_EQ(json::parse(linear)["faceCount"], 8);
  EXPECT_EQ(dumped("subdivision --any-text --method linear").output, linear);
  EXPECT_EQ(dumped("preset subdivision --any-text --method '' subdivision").output, linear);
  EXPECT_EQ(dumped("subdivision --any-text --method Linear").output, linear);
  const std::string rough = "subdivision noise ";
  const test::RunResult smoothed = dumped(rough + "smooth-shape --any-text --method 'no flow'");
  EXPECT_EQ(smoothed.output, dumped(rough).output);
  EXPECT_THAT(smoothed.errors, HasSubstr("No method is called \"no flow\""));
  EXPECT_NE(dumped(rough + "smooth-shape").output, smoothed.output);
}

TEST_F(Program, RefusesWhatItDoesNotUnderstandBeforeTheFirstStepRuns) {
  const std::string save = "open " + mesh + " save " + in("out.ply2") + " ";
  for (const auto& [words, reason] :
       {std::pair<std::string, std::string>{"frobnicate", "unknown step frobnicate"},
        {"points --size 3", "points: unknown option --size"},
        {"open", "open: FILE is required"},
        {"visualization --line-width", "visualization: --line-width"},
        {"visualization --line-width wide", "--line-width: Enter a number."},
        {"preset visualization --point-size x", "visualization --point-size: Enter a number."},
        {"camera --translate 1,2", "camera --translate: Enter three numbers"},
        {"pick 3 top", "pick top: Enter an integer."},
        {"dump x.json --fields vertices,colour",
         "dump --fields: there is no field 'colour'. The fields are vertexCount, "}}) {
    const test::RunResult result = run(save + words);
    EXPECT_EQ(result.status, 2) << words;
    EXPECT_THAT(result.errors, StartsWith("gravlin-batch: ")) << words;
    EXPECT_THAT(result.errors, HasSubstr(reason)) << words;
    EXPECT_FALSE(exists("out.ply2")) << words;
  }
}

TEST_F(Program, AFileThatCannotBeReadEndsTheChain) {
  const test::RunResult result =
      run("open " + mesh + " open " + in("missing.ply2") + " save " + in("out.ply2"));
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.errors, StartsWith("gravlin-batch: Cannot open "));
  EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), 1);
  EXPECT_FALSE(exists("out.ply2"));
}

TEST_F(Program, AFileOfWhichNothingCanBeReadEndsTheChainAndStaysAsItIs) {
  for (const std::string content : {"", "garbage", "ply\nformat ascii 1.0\n"}) {
    const std::string bad = folder.write("bad.ply2", content);
    for (const std::string target : {"bad.ply2", "out.ply2"}) {
      const test::RunResult result = run("open '" + bad + "' save " + in(target));
      EXPECT_EQ(result.status, 1);
      EXPECT_THAT(result.errors, StartsWith("gravlin-batch: Nothing was read from " + bad + ": "));
      EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), 1);
    }
    EXPECT_EQ(test::contentOf(bad), content);
    EXPECT_FALSE(exists("out.ply2"));
  }
}

TEST_F(Program, ADamagedFileIsNotOverwrittenWithThePartThatWasRead) {
  const std::string damaged = folder.write("damaged.ply2", "3 1 0 0 0 1 0 0 0 1 x 3 0 1 2");
  const test::RunResult elsewhere = run("open '" + damaged + "' save " + in("out.ply2"));
  EXPECT_EQ(elsewhere.status, 0);
  EXPECT_THAT(elsewhere.errors, HasSubstr("vertex 3 of 3 could not be read"));
  const test::RunResult result =
      run("open '" + damaged + "' save " + in("damaged.ply2") + " save " + in("later.ply2"));
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.errors, HasSubstr("Cannot save " + damaged));
  EXPECT_EQ(test::contentOf(damaged), "3 1 0 0 0 1 0 0 0 1 x 3 0 1 2");
  EXPECT_FALSE(exists("later.ply2"));
}

TEST_F(Program, AFileThatCannotBeWrittenEndsTheChain) {
  for (const std::string step : {"save ", "dump "}) {
    const test::RunResult result =
        run("open " + mesh + " " + step + in("no/folder/x.ply2") + " save " + in("out.ply2"));
    EXPECT_EQ(result.status, 1) << step;
    EXPECT_THAT(result.errors, HasSubstr("no/folder/x.ply2")) << step;
    EXPECT_FALSE(exists("out.ply2")) << step;
  }
  EXPECT_EQ(run("save " + in("out.ply2")).status, 1) << "there is no mesh";
  EXPECT_EQ(run("open " + mesh + " dump - > /dev/full").status, 1);
  EXPECT_EQ(run("open " + mesh + " report > /dev/full").status, 1);
  const std::string large = GRAVLIN_SOURCE_DIR "/examples/gear.ply2";
  EXPECT_EQ(run("open " + large + " dump - > /dev/full").status, 1) << "more than one buffer";
}

TEST_F(Program, AFileThatNothingReadsEndsTheChain) {
  const std::string obj = folder.write("mesh.txt", "v 0 0 0\n");
  const test::RunResult result = run("open '" + obj + "' dump " + in("out.json"));
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.errors, HasSubstr("no reader"));
  EXPECT_FALSE(exists("out.json"));
}

TEST_F(Program, ANameThatNothingWritesBecomesAnEmptyFileAndEndsTheChain) {
  const test::RunResult result = run("open " + mesh + " save " + in("new.obj") + " report");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.errors,
            "gravlin-batch: " + folder.file("new.obj") +
                " is empty: Save writes no .obj files. The mesh is not saved; "
                "choose a name that ends in .ply2 or .plyR. File > Export writes them.\n");
  EXPECT_TRUE(exists("new.obj"));
  EXPECT_EQ(test::contentOf(folder.file("new.obj")), "");
}

TEST_F(Program, AFileIsNotEmptiedBecauseNothingWritesItsExtension) {
  for (const char* name : {"model.obj", "picture.png", "square.PLY2"}) {
    const std::string path = folder.write(name, "something");
    const test::RunResult result = run("open " + mesh + " save '" + path + "' report");
    EXPECT_EQ(result.status, 1) << name;
    EXPECT_EQ(result.output, "") << name;
    EXPECT_THAT(result.errors, StartsWith("gravlin-batch: " + path + " stays as it is.")) << name;
    EXPECT_EQ(test::contentOf(path), "something");
  }
}

TEST_F(Program, NoStepWritesOverTheFileOfTheMesh) {
  std::filesystem::create_symlink(folder.file("square.ply2"), folder.file("link.png"));
  std::filesystem::create_hard_link(folder.file("square.ply2"), folder.file("same"));
  const std::string creases = "face-angle --threshold-mode angle ";
  for (const std::string& step :
       {"dump " + mesh, "dump " + in("same"), "dump " + in("link.png"), "render " + in("link.png"),
        "render " + in("same"), "render-histogram " + in("link.png"),
        creases + "export-lines " + mesh, creases + "export-lines " + in("same")}) {
    const test::RunResult result = run("open " + mesh + " " + step + " report");
    EXPECT_EQ(result.status, 1) << step;
    EXPECT_EQ(result.output, "") << step;
    EXPECT_THAT(result.errors, HasSubstr("the mesh was opened from it")) << step;
    EXPECT_EQ(test::contentOf(folder.file("square.ply2")), square) << step;
  }
  const test::RunResult saved =
      run("open " + mesh + " save " + in("out.ply2") + " dump " + in("out.ply2"));
  EXPECT_EQ(saved.status, 1);
  EXPECT_THAT(saved.errors, HasSubstr("the mesh was saved to it"));
  EXPECT_THAT(test::contentOf(folder.file("out.ply2")), StartsWith("4\n2\n"));
}

TEST_F(Program, AMeshThatTheDigitsOfItsFileDoNotHoldIsSavedElsewhereOnly) {
  constexpr const char* rising = "4 2\n0.13 0 0\n0.24 2 0\n0.37 0 1\n0.41 1 0\n3 0 1 2\n3 1 2 3\n";
  const std::string path = folder.write("rising.ply2", rising);
  const test::RunResult refused = run("open '" + path + "' save '" + path + "' report");
  EXPECT_EQ(refused.status, 1);
  EXPECT_EQ(refused.output, "");
  EXPECT_THAT(refused.errors, HasSubstr("its box could not be measured along x"));
  EXPECT_THAT(refused.errors, HasSubstr("Cannot save " + path + ": its vertices would move by up"));
  EXPECT_EQ(test::contentOf(path), rising);
  const test::RunResult elsewhere = run("open '" + path + "' save " + in("copy.ply2"));
  EXPECT_EQ(elsewhere.status, 0);
  EXPECT_THAT(elsewhere.errors, HasSubstr("copy.ply2; its vertices are off by up to 0.0"));
  EXPECT_THAT(test::contentOf(folder.file("copy.ply2")), StartsWith("4\n2\n"));
}

TEST_F(Program, AFewCountsDoNotTakeAllMemory) {
  const std::string path = folder.write("huge.ply2", "160000000 160000000\n");
  const test::RunResult result = run("open '" + path + "' report");
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.errors, HasSubstr("and 160000000 faces, but only 1 byte follows."));
}

TEST_F(Program, RunsStepsFromLeftToRightOnOneDocument) {
  const test::RunResult result =
      run("open " + mesh + " points dump " + in("a.json") + " wire-frame dump " + in("b.json"));
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(json::parse(test::contentOf(folder.file("a.json")))["displayMode"], Points);
  EXPECT_EQ(json::parse(test::contentOf(folder.file("b.json")))["displayMode"], WireFrame);
}

TEST_F(Program, RunsAScript) {
  const std::string script = folder.write("chain.txt", "open " + mesh + " # a square\nreport\n");
  const test::RunResult result =
      run("--script '" + script + "' points dump - --fields displayMode");
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.output, HasSubstr("Euler characteristic  1\n"));
  EXPECT_THAT(result.output, HasSubstr("\"displayMode\": 26"));
  EXPECT_EQ(run("--script " + in("missing.txt")).status, 1);
}

TEST_F(Program, RemembersPresetValuesAndCancelsADialogOnce) {
  const test::RunResult result =
      run("preset visualization --line-width 3 visualization --point-size 5 cancel visualization "
          "visualization --line-width 9 dump - --fields view");
  EXPECT_EQ(result.status, 0);
  const json view = json::parse(result.output)["view"];
  EXPECT_EQ(view["lineWidth"], 3);
  EXPECT_EQ(view["pointSize"], 5);
}

TEST_F(Program, TurnsTheViewByTheAnglesThatAreGivenAndKeepsTheOthers) {
  const test::RunResult result =
      run("view-direction --rx 10 --rz -5.5 view-direction --ry 20 camera --translate 1,-2,0.5 "
          "camera --field-of-view 30 lighting-blue dump - --fields view");
  EXPECT_EQ(result.status, 0);
  const json view = json::parse(result.output)["view"];
  EXPECT_EQ(view["angleX"], 10);
  EXPECT_EQ(view["angleY"], 20);
  EXPECT_EQ(view["angleZ"], -5.5);
  EXPECT_EQ(view["translation"], json({1, -2, 0.5}));
  EXPECT_EQ(view["fieldOfView"], 30);
  EXPECT_EQ(view["lightingMode"], 3);
}

TEST_F(Program, PicksTheFaceInTheMiddleOfThePicture) {
  const test::RunResult hit =
      run("open " + mesh + " pick 400 300 dump - --fields pickedFace,displayMode");
  EXPECT_EQ(hit.status, 0);
  EXPECT_THAT(hit.errors, HasSubstr("Face 0: corners 0, 1, 2; area 4; normal (0, 0, 1)"));
  EXPECT_EQ(json::parse(hit.output)["pickedFace"], 0);
  EXPECT_EQ(json::parse(hit.output)["displayMode"], PickedFace);
  const test::RunResult miss =
      run("open " + mesh + " pick 0 0 dump - --fields pickedFace,displayMode");
  EXPECT_EQ(miss.status, 0);
  EXPECT_TRUE(json::parse(miss.output)["pickedFace"].is_null());
  EXPECT_EQ(json::parse(miss.output)["displayMode"], FlatShading);
}

/// Whether every pixel is white.
bool blank(const Image& image) {
  return std::all_of(image.rgb.begin(), image.rgb.end(), [](int byte) { return byte == 255; });
}

TEST_F(Program, RendersWithoutADisplay) {
  const test::RunResult result = test::runShell(
      "unset DISPLAY WAYLAND_DISPLAY; " + std::string(program) + " open " + mesh + " render " +
      in("a.png") + " render " + in("b.png") + " --no-overlay wire-frame render " + in("c.png") +
      " --size 64x48 camera --translate 99,0,0 render " + in("d.png") + " --no-overlay");
  ASSERT_EQ(result.status, 0) << result.errors;
  const Image flat = readPng(folder.file("a.png"));
  EXPECT_EQ(flat.width, 800);
  EXPECT_EQ(flat.height, 600);
  EXPECT_NE(flat.rgb, readPng(folder.file("b.png")).rgb) << "the counts stand in the corner";
  const Image wire = readPng(folder.file("c.png"));
  EXPECT_EQ(wire.width, 64);
  EXPECT_EQ(wire.height, 48);
  EXPECT_FALSE(blank(wire));
  EXPECT_TRUE(blank(readPng(folder.file("d.png")))) << "the mesh is out of sight";
}

TEST_F(Program, RendersWhatTheDocumentOfAWindowShows) {
  test::ScriptedOutside outside;
  CGravlinDoc doc(outside);
  ASSERT_TRUE(doc.openFile(folder.file("square.ply2")));
  doc.OnPoints();
  ViewState view;
  view.camera.setAngles({10.0F, 20.0F, 30.0F});
  const Image expected = Picture().draw(doc.shown(), view, {.size = {300, 200}});
  const test::RunResult result =
      run("open " + mesh + " view-direction --rx 10 --ry 20 --rz 30 points render " + in("a.png") +
          " --size 300x200");
  ASSERT_EQ(result.status, 0) << result.errors;
  EXPECT_EQ(readPng(folder.file("a.png")).rgb, expected.rgb);
}

TEST_F(Program, RendersTheHistogramOfTheFieldOnShow) {
  const std::string sphere = test::writeMeshFile(folder, "sphere.ply2", test::icosphere(2));
  const test::RunResult result =
      run("open '" + sphere + "' render-histogram " + in("none.png") +
          " curvature-mean render-histogram " + in("mean.png") + " --size 200x120");
  ASSERT_EQ(result.status, 0) << result.errors;
  EXPECT_TRUE(blank(readPng(folder.file("none.png"))));
  EXPECT_EQ(readPng(folder.file("none.png")).width, 330);
  const Image mean = readPng(folder.file("mean.png"));
  EXPECT_EQ(mean.width, 200);
  EXPECT_EQ(mean.height, 120);
  EXPECT_FALSE(blank(mean));
}

TEST_F(Program, PicksInThePictureThatComesNext) {
  const std::string step = "open " + mesh + " pick 150 100 dump - --fields pickedFace";
  EXPECT_TRUE(json::parse(run(step).output)["pickedFace"].is_null());
  const test::RunResult result =
      run(step + " render " + in("a.png") + " --size 300x200 render " + in("b.png"));
  EXPECT_EQ(json::parse(result.output)["pickedFace"], 0);
}

// At (15, 10) in the small picture is its middle; in the large one that is a corner.
TEST_F(Program, PicksInThePictureThatComesNextAfterOneHasBeenDrawn) {
  const auto pickedBetween = [&](const std::string& before, const std::string& behind) {
    const test::RunResult result =
        run("open " + mesh + " render " + in("a.png") + " --size " + before +
            " pick 15 10 dump - --fields pickedFace render " + in("b.png") + " --size " + behind);
    EXPECT_EQ(result.status, 0) << result.errors;
    return json::parse(result.output)["pickedFace"];
  };
  EXPECT_EQ(pickedBetween("300x200", "30x20"), 0);
  EXPECT_TRUE(pickedBetween("30x20", "300x200").is_null());
}

// A dialog that a step without a mesh does not show takes its answer with it.
TEST_F(Program, AnAnswerThatNoDialogAskedForIsForgotten) {
  const std::string bumps = test::writeMeshFile(folder, "bumps.ply2", test::bumpyGrid(6, 5));
  const std::string smoothed = "open '" + bumps +
                               "' local-max --pre-smoothing common --extract-on face dump - "
                               "--fields vertices";
  const test::RunResult alone = run(smoothed);
  ASSERT_EQ(alone.status, 0) << alone.errors;
  EXPECT_EQ(run("smooth-shape --method 'Taubin Smoothing (k=0.1)' " + smoothed).output,
            alone.output);
}

// Before each step the next picture is looked for only where one has been drawn since, so that this
// is no matter of minutes.
TEST_F(Program, RunsAScriptOfManySteps) {
  std::string steps;
  for (int k = 0; k < 200000; ++k) steps += "lighting-red lighting-rgb\n";
  const std::string script = folder.write("long.txt", steps);
  EXPECT_EQ(run("--script '" + script + "'").status, 0);
}

TEST_F(Program, TellsWhatIsWrongWithAPicture) {
  EXPECT_EQ(run("render " + in("a.png") + " --size 800").status, 2);
  EXPECT_EQ(run("render-histogram " + in("a.png") + " --size 2000000000x2").status, 2);
  for (const std::string step : {"render ", "render-histogram "}) {
    const test::RunResult nowhere = run(step + in("no/folder/a.png") + " save " + in("b.ply2"));
    EXPECT_EQ(nowhere.status, 1);
    EXPECT_THAT(nowhere.errors, StartsWith("gravlin-batch: "));
    EXPECT_THAT(nowhere.errors, HasSubstr("no/folder/a.png"));
  }
}

TEST_F(Program, WritesNoPictureUnderTheNameOfAnotherFormat) {
  for (const std::string step : {"render ", "render-histogram "}) {
    for (const std::string name : {"a.jpg", "a.png.svg", "a.ply2"}) {
      const test::RunResult result =
          run("open " + mesh + " save " + in("b.ply2") + " " + step + in(name));
      EXPECT_EQ(result.status, 2) << step << name;
      EXPECT_THAT(result.errors, HasSubstr(".png")) << step << name;
      EXPECT_FALSE(exists(name)) << step << name;
      EXPECT_FALSE(exists("b.ply2")) << step << name;
    }
    for (const std::string name : {"A.PNG", "picture"}) {
      EXPECT_EQ(run("open " + mesh + " " + step + in(name) + " --size 8x8").status, 0)
          << step << name;
      EXPECT_EQ(readPng(folder.file(name)).width, 8) << step << name;
    }
  }
}

TEST_F(Program, WritesNoLinesThatWereLostOnTheWay) {
  const test::RunResult result = run("open " + mesh +
                                     " face-angle --threshold-mode angle flat-shading subdivision "
                                     "--method Linear export-lines " +
                                     in("lines.obj") + " save " + in("after.ply2"));
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.errors, HasSubstr("none were looked for since"));
  EXPECT_FALSE(exists("lines.obj"));
  EXPECT_FALSE(exists("after.ply2"));
}

TEST_F(Program, ReportsTheSameCurvatureBeforeAndAfterSaving) {
  const std::string bumpy =
      test::writeMeshFile(folder, "bumpy.ply2", test::jittered(test::icosphere(3), 0.05));
  const std::string shrunk = "open '" + bumpy +
                             "' smooth-shape --iteration-count 50 --no-animate "
                             "--no-preserve-volume curvature-max edge-curvature report";
  const test::RunResult once = run(shrunk);
  ASSERT_EQ(once.status, 0) << once.errors;
  const test::RunResult twice = run(shrunk + " save " + in("z.ply2") + " report");
  const std::string second = twice.output.substr(once.output.size());
  const auto curvatures = [](const std::string& text) {
    return text.substr(text.find("maximum curv"));
  };
  EXPECT_THAT(curvatures(once.output), HasSubstr("edge curvature"));
  EXPECT_EQ(curvatures(second), curvatures(once.output));
}

TEST_F(Program, HelpGoesToStandardOutputAndSucceeds) {
  const test::RunResult all = run("--help");
  EXPECT_EQ(all.status, 0);
  EXPECT_THAT(all.output, HasSubstr("save FILE"));
  const test::RunResult one = run("visualization --help");
  EXPECT_EQ(one.status, 0);
  EXPECT_THAT(one.output, HasSubstr("--line-width X"));
  EXPECT_THAT(one.output, HasSubstr("0 to 100"));
  EXPECT_THAT(run("--version").output, StartsWith("gravlin-batch "));
}

TEST_F(Program, AnAnswerThatCannotBeWrittenIsAFailure) {
  for (const std::string option : {"--help", "--version", "--man", "visualization --help"}) {
    const test::RunResult result = run(option + " > /dev/full");
    EXPECT_EQ(result.status, 1) << option;
    EXPECT_EQ(result.errors, "gravlin-batch: Standard output could not be written.\n") << option;
  }
}

TEST_F(Program, HelpInsideAChainIsPrintedAndTellsThatNothingWasRun) {
  const test::RunResult result = run("open --help save " + in("out.ply2"));
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.output, StartsWith("Usage: gravlin-batch ... open FILE"));
  EXPECT_THAT(result.errors, HasSubstr("nothing was run"));
  EXPECT_FALSE(exists("out.ply2"));
  EXPECT_EQ(run("open --help").status, 0);
}

TEST_F(Program, NamesThatBeginWithAHyphenAreFilesBehindTheSeparator) {
  const test::RunResult result = test::runShell(
      "cd " + in("") + " && " + program +
      " open square.ply2 save -- -y.ply2 open ./-y.ply2 dump -- --fields save -- --script.ply2"
      " open -- --script.ply2 save ./--help dump -- --script");
  EXPECT_EQ(result.status, 0) << result.errors;
  for (const char* name : {"-y.ply2", "--fields", "--help.ply2", "--script"}) {
    EXPECT_TRUE(exists(name)) << name;
  }
}

TEST_F(Program, ShowsControlCharactersOfFileNamesEscaped) {
  const std::string name = "'" + folder.file("a\x1b[31m\nb.ply2") + "'";
  const test::RunResult missing = run("open " + name);
  EXPECT_EQ(missing.status, 1);
  EXPECT_THAT(missing.errors, HasSubstr(R"(a\x1b[31m\nb.ply2: )"));
  EXPECT_EQ(std::count(missing.errors.begin(), missing.errors.end(), '\n'), 1);
  const std::string lines = "'" + folder.file("l\x1b\n.obj") + "'";
  const test::RunResult written =
      run("open " + mesh + " face-angle --threshold-mode angle export-lines " + lines);
  EXPECT_EQ(written.status, 0);
  EXPECT_THAT(written.errors, HasSubstr(R"(l\x1b\n.obj.)"));
  EXPECT_TRUE(exists("l\x1b\n.obj"));
  EXPECT_THAT(run("'frob\x1b'").errors, HasSubstr(R"(unknown step frob\x1b)"));
}

// A picture over a file, a link and a device, none of which can take all of it.
TEST_F(Program, AFailedPictureLeavesWhatWasThere) {
  namespace fs = std::filesystem;
  folder.write("old.png", "old");
  fs::create_symlink("/dev/full", folder.file("full.png"));
  fs::create_symlink("old.png", folder.file("link.png"));
  for (const std::string step : {"render ", "render-histogram "}) {
    const test::RunResult full = run(step + in("full.png"));
    EXPECT_EQ(full.status, 1);
    EXPECT_EQ(full.errors, "gravlin-batch: Cannot write " + folder.file("full.png") +
                               ": No space left on device.\n");
    EXPECT_TRUE(fs::is_symlink(folder.file("full.png")));
    const test::RunResult large =
        test::runShell("trap '' XFSZ; ulimit -f 1; " + std::string(program) + " " + step +
                       in("link.png") + " --size 2000x1500");
    EXPECT_EQ(large.status, 1) << large.errors;
    EXPECT_THAT(large.errors, HasSubstr("File too large"));
    EXPECT_EQ(test::contentOf(folder.file("old.png")), "old");
  }
  EXPECT_EQ(folder.entryCount(), 4);
  EXPECT_EQ(run("render " + in("link.png")).status, 0);
  EXPECT_TRUE(fs::is_symlink(folder.file("link.png")));
  EXPECT_EQ(readPng(folder.file("old.png")).width, 800);
}

TEST_F(Program, NeedsNeitherADisplayNorItsLibraries) {
  const test::RunResult linked = test::runShell(std::string("ldd ") + program);
  ASSERT_EQ(linked.status, 0);
  EXPECT_THAT(linked.output, HasSubstr("libc.so"));
  for (const char* library : {"libQt", "libX11", "libxcb", "libGLX", "libGL.so", "libwayland"}) {
    EXPECT_THAT(linked.output, Not(HasSubstr(library)));
  }
}

/// The libraries that a run of the program sets up, in the words of the dynamic linker.
std::set<std::string> librariesOf(const std::string& arguments) {
  const test::TemporaryFolder folder;
  const std::string trace = folder.file("trace");
  const test::RunResult result =
      test::runShell("LD_DEBUG=files LD_DEBUG_OUTPUT='" + trace + "' " + program + " " + arguments);
  EXPECT_EQ(result.status, 0) << result.errors;
  std::set<std::string> libraries;
  for (const auto& file : std::filesystem::directory_iterator(folder.file("."))) {
    std::istringstream lines(test::contentOf(file.path()));
    for (std::string line; std::getline(lines, line);) {
      constexpr std::string_view setsUp = "calling init: ";
      const std::size_t at = line.find(setsUp);
      if (at != std::string::npos) libraries.insert(line.substr(at + setsUp.size()));
    }
  }
  return libraries;
}

// Drivers for drawing are large: loading one takes longer than all else that a small chain does.
TEST_F(Program, LoadsLibrariesForDrawingOnlyForAPicture) {
  const std::set<std::string> least = librariesOf("--version");
  EXPECT_GT(least.size(), 1U);
  EXPECT_EQ(librariesOf("open " + mesh + " local-max save " + in("out.ply2")), least);
  EXPECT_GT(librariesOf("open " + mesh + " render " + in("out.png")).size(), least.size());
}

// --- The same bits as the handlers of menu items ---

/// A chain as the batch program takes it, what is entered for it and the handlers that it stands
/// for.
struct Chain {
  std::string arguments;
  std::vector<test::DialogAnswer> answers;
  std::vector<void (CGravlinDoc::*)()> clicks;
};

class SameBits : public Program, public ::testing::WithParamInterface<Chain> {};

TEST_P(SameBits, AsTheHandlersOfTheMenuItems) {
  const Chain& chain = GetParam();
  const std::string path = test::writeMeshFile(folder, "bumpy.ply2", test::bumpyGrid(12, 9));
  test::ScriptedOutside outside;
  outside.dialogAnswers.assign(chain.answers.begin(), chain.answers.end());
  CGravlinDoc doc(outside);
  const ScopedTextSink quiet(quietTextSink());
  ASSERT_TRUE(doc.openFile(path));
  for (const auto click : chain.clicks) (doc.*click)();
  EXPECT_TRUE(outside.finished());

  std::vector<std::string> fields;
  std::string names;
  for (const std::string_view field : dumpFieldNames()) {
    if (field == "view") continue;
    fields.emplace_back(field);
    names += (names.empty() ? "" : ",") + fields.back();
  }
  const std::string expected = folder.file("expected.json");
  std::FILE* stream = std::fopen(expected.c_str(), "w");
  const ViewState view;
  Histogram histogram;
  histogram.setValues(outside.histogramValues);
  dump({doc, view, histogram}, fields, stream);
  std::fclose(stream);

  const test::RunResult result =
      run("open '" + path + "' " + chain.arguments + " dump - --fields " + names);
  EXPECT_EQ(result.status, 0) << result.errors;
  EXPECT_TRUE(result.output == test::contentOf(expected));
}

using Doc = CGravlinDoc;

INSTANTIATE_TEST_SUITE_P(
    Program, SameBits,
    ::testing::Values(
        Chain{"wire-frame", {}, {&Doc::OnWireFrame}},
        Chain{"noise --noise-size 0.2 undo",
              {test::okWith({{"noiseSize", "0.2"}})},
              {&Doc::OnSmoothingNoise, &Doc::OnEditUndo}},
        Chain{"noise smooth-shape --method 'Mean Curvature Flow (Desbrun, implicit)' "
              "--iteration-count 2 --step-size 0.1 --no-preserve-volume",
              {test::ok(), test::okWith({{"method", "Mean Curvature Flow (Desbrun, implicit)"},
                                         {"iterationCount", "2"},
                                         {"stepSize", "0.1"},
                                         {"preserveVolume", "0"}})},
              {&Doc::OnSmoothingNoise, &Doc::OnSmoothingShape}},
        Chain{"noise smooth-adaptive --averaging-kind weight --weight-shape similar",
              {test::ok(), test::okWith({{"averagingKind", "weight"}, {"weightShape", "similar"}})},
              {&Doc::OnSmoothingNoise, &Doc::OnSmoothingShapeAdaptive}},
        Chain{"curvature-gauss smooth-tensor --display-choice min-direction",
              {test::okWith({{"displayChoice", "min-direction"}})},
              {&Doc::OnCurvatureGauss, &Doc::OnSmoothingCurvatureTensor}},
        Chain{"stroke-max --seed-amount 30 stroke-min",
              {test::okWith({{"seedAmount", "30"}}), test::ok()},
              {&Doc::OnStrokeMax, &Doc::OnStrokeMin}},
        Chain{"edge-curvature cancel noise noise smooth-shape show-vertex-error",
              {test::cancel(), test::ok()},
              {&Doc::OnEdgeCurvature, &Doc::OnSmoothingNoise, &Doc::OnSmoothingShape,
               &Doc::OnShowVertexError}}));

}  // namespace
}  // namespace gravlin
