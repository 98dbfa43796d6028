#include <array>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iostream>
#include <memory>
#include <new>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "doc/CommandTable.h"
#include "mesh/io/MeshExport.h"
#include "support/Allocations.h"
#include "support/DisplayModes.h"
#include "support/DocumentAccess.h"
#include "support/DocumentInvariants.h"
#include "support/Meshes.h"
#include "support/ScriptedOutside.h"
#include "support/TemporaryFolder.h"
#include "view/RenderDispatcher.h"

// Every command of the table with its allocations refused, one in each run: whatever state that
// leaves behind, saving, undoing, picking and drawing work, and the mesh is never half of anything.
// As a test it takes a part of the allocations; GRAVLIN_EVERY_ALLOCATION=1 takes them all.

namespace gravlin {
namespace {

using ::testing::Contains;
using ::testing::FloatNear;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Pointwise;

struct Shape {
  std::vector<float> vertices;
  std::vector<int> faces;
  bool operator==(const Shape&) const = default;
  bool operator<(const Shape& other) const {
    return std::tie(vertices, faces) < std::tie(other.vertices, other.faces);
  }
};

Shape shapeOf(const TriangleMesh& mesh) {
  return {mesh.vertices, mesh.faces};
}

// --- Where a command starts ---

/// A bumpy sheet with a fin on one of its edges, a triangle that hangs at one vertex, a face that
/// cannot be used and a vertex that no face uses.
TriangleMesh tornSheet() {
  const TriangleMesh sheet = test::bumpyGrid(4, 4);
  std::vector<std::array<float, 3>> vertices;
  std::vector<std::array<int, 3>> faces;
  for (std::size_t c = 0; c < sheet.vertices.size(); c += 3) {
    vertices.push_back({sheet.vertices[c], sheet.vertices[c + 1], sheet.vertices[c + 2]});
  }
  for (std::size_t c = 0; c < sheet.faces.size(); c += 3) {
    faces.push_back({sheet.faces[c], sheet.faces[c + 1], sheet.faces[c + 2]});
  }
  const int n = static_cast<int>(vertices.size());
  vertices.insert(vertices.end(), {{1.5F, 1, 1}, {-1, -1, 0.5F}, {-1, 0, 0.5F}, {9, 9, 9}});
  faces.insert(faces.end(), {{6, 7, n}, {0, n + 1, n + 2}, {3, 3, 4}});
  return test::makeMesh(vertices, faces);
}

/// What a document is given before the command.
struct Start {
  std::string name;
  TriangleMesh mesh;
  std::unique_ptr<TriangleMesh> undo = {};
  int displayMode = FlatShading;
  CGravlinDoc::LinesFrom linesFrom = CGravlinDoc::LinesFrom::Nothing;
  SilhouetteLines silhouetteLines = {};
  std::vector<IndexList> creaseLinks = {};
};

/// A document that has been worked on: curvature, strokes, lines and an undo copy are there, of the
/// same counts or of others.
Start usedStart(const std::string& name, const TriangleMesh& mesh, bool sameCounts) {
  test::ScriptedOutside outside;
  CGravlinDoc doc(outside);
  test::setMesh(doc, mesh);
  doc.seedParameters.seedAmount = 5;
  outside.dialogAnswers = {test::ok(), test::ok()};
  doc.OnStrokeMax();
  doc.ridgeParameters.extractOn = RidgeParameters::OnEdge;
  doc.ridgeParameters.smoothTensor = false;
  doc.OnEdgeDetectionLocalMax();
  if (!sameCounts) {
    outside.dialogAnswers = {test::ok()};
    doc.OnEdgeDetectionFaceAngle();
  }
  test::meshOf(doc).pickedFace = 0;
  Start start{.name = name, .mesh = *doc.mesh()};
  start.undo = std::make_unique<TriangleMesh>();
  start.undo->copyGeometryFrom(sameCounts ? test::jittered(mesh, 0.01) : test::cube());
  start.displayMode = sameCounts ? static_cast<int>(CurvatureMean) : doc.displayMode;
  start.linesFrom = doc.linesFrom;
  start.creaseLinks = doc.creaseLinks;
  return start;
}

const std::vector<Start>& starts() {
  static const std::vector<Start> all = [] {
    std::vector<Start> made;
    made.push_back(usedStart("closed", test::jittered(test::torus(8, 6), 0.05), true));
    made.push_back({.name = "open", .mesh = test::bumpyGrid(5, 4)});
    made.push_back(usedStart("torn", tornSheet(), false));
    return made;
  }();
  return all;
}

// --- What is done ---

/// A command with the values that its dialogs have.
struct Variant {
  std::string name;
  const Command* command;
  std::function<void(CGravlinDoc&)> choose = {};
  std::string file = {};  ///< what a file dialog answers, in the test's folder
};

std::ostream& operator<<(std::ostream& stream, const Variant& variant) {
  return stream << variant.name;
}

std::vector<Variant> smoothings(const Command& row) {
  std::vector<Variant> variants;
  for (const std::string_view method : smoothingMethodTexts) {
    variants.push_back({"method" + std::to_string(variants.size()), &row, [method](auto& doc) {
                          doc.smoothingParameters.method = method;
                          doc.smoothingParameters.iterationCount = 2;
                        }});
  }
  variants.push_back({"unknown", &row, [](auto& doc) { doc.smoothingParameters.method = "x"; }});
  return variants;
}

std::vector<Variant> adaptiveSmoothings(const Command& row) {
  const auto with = [&row](const char* name, AdaptiveSmoothingParameters values) {
    values.outerIterations = 2;
    values.integrationIterations = 2;
    return Variant{name, &row, [values](auto& doc) { doc.adaptiveSmoothingParameters = values; }};
  };
  return {
      with("median", {}),
      with("weighted", {.averagingKind = AdaptiveSmoothingParameters::WeightFunctionAveraging}),
      with("edgesOnly", {.meetAtVertex = 0.0F,
                         .averagingKind = AdaptiveSmoothingParameters::WeightFunctionAveraging}),
      with("distance", {.integrationError = DistanceError}),
      with("byArea", {.derivativeVariant = 2})};
}

std::vector<Variant> ridges(const Command& row) {
  using P = RidgeParameters;
  const auto with = [&row](const char* name, P values) {
    values.ridgeSmoothIterations = 2;
    return Variant{name, &row, [values](auto& doc) { doc.ridgeParameters = values; }};
  };
  return {with("vertices", {.thresholdMode = P::NoThreshold, .showRidgeDirection = true}),
          with("edges", {.extractOn = P::OnEdge}),
          with("faired", {.thresholdMode = P::NoThreshold,
                          .extractOn = P::OnEdge,
                          .smoothTensor = false,
                          .smoothRidgeEdges = true}),
          with("smoothed", {.preSmoothing = P::Common, .extractOn = P::OnEdge}),
          with("staysSmoothed", {.preSmoothing = P::Adaptive, .extractOn = P::OnFace})};
}

std::vector<Variant> creases(const Command& row) {
  const auto with = [&row](const char* name, AngleParameters values) {
    return Variant{name, &row, [values](auto& doc) { doc.angleParameters = values; }};
  };
  return {with("histogram", {.histogramHi = 60, .histogramLow = 30}),
          with("angle", {.thresholdMode = AngleParameters::ConstantAngle}),
          with("smoothed", {.preSmoothing = true})};
}

std::vector<Variant> variantsOf(const Command& row) {
  if (row.step == "smooth-shape") return smoothings(row);
  if (row.step == "smooth-adaptive") return adaptiveSmoothings(row);
  if (row.step == "local-max") return ridges(row);
  if (row.step == "face-angle") return creases(row);
  if (row.step == "subdivision") {
    const auto by = [&](const char* name, const char* method) {
      return Variant{name, &row,
                     [method](auto& doc) { doc.subdivisionParameters.method = method; }};
    };
    return {by("Loop", "Loop"), by("butterfly", "Modified butterfly"), by("linear", "Linear")};
  }
  if (row.step == "export-lines") {
    return {{"obj", &row, {}, "l.obj"}, {"vtk", &row, {}, "l.vtk"}, {"svg", &row, {}, "l.svg"}};
  }
  if (row.step == "open") return {{"cube", &row, {}, "cube.ply2"}};
  if (row.step == "import") {
    const auto weld = [](auto& doc) { doc.importParameters.weld = true; };
    return {{"ply", &row, {}, "cube.ply"},
            {"obj", &row, {}, "cube.obj"},
            {"off", &row, weld, "cube.off"}};
  }
  if (row.step == "export") {
    const auto fields = [](auto& doc) {
      doc.exportParameters.normals = true;
      doc.exportParameters.curvature = true;
      doc.exportParameters.directions = true;
    };
    const auto used = [](auto& doc) { doc.exportParameters.leaveOutUnused = true; };
    return {{"fields", &row, fields, "x.ply"},
            {"stl", &row, used, "x.stl"},
            {"obj", &row, {}, "x.obj"}};
  }
  return {{"", &row, {}, "saved.ply2"}};
}

/// "Smoothing_Shape_method3", as far as names of tests allow.
std::vector<Variant> allVariants() {
  std::vector<Variant> all;
  for (const Command& row : commandTable()) {
    if (row.handler == nullptr) continue;
    for (Variant& variant : variantsOf(row)) {
      std::string name(row.step.empty() ? row.text : row.step);
      name += '_' + variant.name + '_' + std::to_string(row.id);
      std::erase_if(name, [](unsigned char c) { return std::isalnum(c) == 0 && c != '_'; });
      variant.name = name;
      all.push_back(std::move(variant));
    }
  }
  return all;
}

/// A document in the middle of a desktop whose views draw it whenever it asks for that.
struct Session {
  Session(const Start& start, const Variant& variant, const test::TemporaryFolder& files)
      : folder(files) {
    test::setMesh(doc, start.mesh);
    if (start.undo) doc.undoMesh = std::make_unique<TriangleMesh>(*start.undo);
    doc.displayMode = start.displayMode;
    doc.linesFrom = start.linesFrom;
    doc.silhouetteLines = start.silhouetteLines;
    doc.creaseLinks = start.creaseLinks;
    doc.smoothingParameters.iterationCount = 1;
    doc.adaptiveSmoothingParameters.outerIterations = 1;
    doc.tensorSmoothingParameters.curvatureIterations = 2;
    doc.tensorSmoothingParameters.directionIterations = 2;
    doc.tensorSmoothingParameters.animate = true;
    doc.seedParameters.seedAmount = 5;
    if (variant.choose) variant.choose(doc);
    outside.dialogAnswers = {test::ok(), test::ok(), test::ok(), test::ok()};
    outside.fileAnswers = {folder.file(variant.file)};
    outside.whenRedrawn = [this] { draw(); };
  }

  void draw() {
    if (onlyRecords) seen.insert(shapeOf(*doc.mesh()));
    try {
      (void)gatherScene(doc.shown());
    } catch (const std::bad_alloc&) {
      // A view shows that there is no memory, and the document goes on.
    }
  }

  /// Runs the command; with `refused` that allocation is refused to it, with 0 none.
  void run(const Variant& variant, std::size_t refused) {
    onlyRecords = refused == 0;
    const std::size_t before = test::allocationCount();
    {
      const test::AllocationFailure failure(refused);
      try {
        (doc.*variant.command->handler)();
      } catch (const std::bad_alloc&) {
        escaped = true;  // the desktop tells about it
      }
    }
    allocations = test::allocationCount() - before;
    onlyRecords = false;
    if (refused == 0) seen.insert(shapeOf(*doc.mesh()));
  }

  test::ScriptedOutside outside;
  CGravlinDoc doc{outside};
  const test::TemporaryFolder& folder;
  bool onlyRecords = false;
  bool escaped = false;
  std::size_t allocations = 0;
  std::set<Shape> seen;  ///< drawn or left by a command to which nothing was refused
};

// --- What comes after ---

void expectSaves(Session& session) {
  const std::string path = session.folder.file("after.ply2");
  const int used = session.doc.mesh()->countUsedVertices();
  const int valid = session.doc.mesh()->countValidFaces();
  ASSERT_TRUE(session.doc.saveFile(path));
  int vertices = -1;
  int faces = -1;
  std::ifstream(path) >> vertices >> faces;
  EXPECT_EQ(vertices, used);
  EXPECT_EQ(faces, valid);
}

void expectUndoes(Session& session) {
  if (!session.doc.undoMesh) return session.doc.OnEditUndo();
  const Shape kept = shapeOf(*session.doc.undoMesh);
  session.doc.OnEditUndo();
  EXPECT_EQ(session.doc.mesh()->vertices, kept.vertices);
  EXPECT_EQ(session.doc.undoMesh, nullptr);
}

void expectPicks(Session& session) {
  const TriangleMesh& mesh = *session.doc.mesh();
  const auto c = mesh.corners(0);
  const Vec3 a = mesh.position(c[0]);
  const Vec3 b = mesh.position(c[1]);
  const Vec3 d = mesh.position(c[2]);
  const Vec3 normal = unitOrZero(cross(b - a, d - a));
  const Vec3 centre = (a + b + d) / 3.0;
  session.outside.forget();
  ASSERT_TRUE(session.doc.pickFace(Ray{centre + 0.001 * normal, -normal}));
  EXPECT_THAT(session.outside.statuses, Contains(HasSubstr("Face ")));
  EXPECT_EQ(session.doc.displayMode, PickedFace);
}

void expectRedraws(Session& session) {
  session.doc.redraw();
  EXPECT_FALSE(session.doc.needsRecompute);
  TriangleMesh fresh = *session.doc.mesh();
  fresh.computeNormals();
  const TriangleMesh& mesh = *session.doc.mesh();
  if (mesh.faceNormals.empty()) fresh.faceNormals.clear();
  if (mesh.vertexNormals.empty()) fresh.vertexNormals.clear();
  // Saving moves positions by a rounding or two and leaves the normals as they are.
  EXPECT_THAT(mesh.faceNormals, Pointwise(FloatNear(1e-4F), fresh.faceNormals));
  EXPECT_THAT(mesh.vertexNormals, Pointwise(FloatNear(1e-4F), fresh.vertexNormals));
  for (const int mode : test::everyDisplayMode()) {
    session.doc.displayMode = mode;
    session.doc.redraw();
    (void)gatherScene(session.doc.shown());
  }
}

constexpr std::array<void (*)(Session&), 4> followUps = {expectSaves, expectUndoes, expectPicks,
                                                         expectRedraws};

/// Whether nothing is left out, however long it takes.
bool isComplete() {
  const char* wish = std::getenv("GRAVLIN_EVERY_ALLOCATION");
  return wish != nullptr && std::string(wish) == "1";
}

/// What has been tried, for who wants to know how much it was.
class Tally : public ::testing::Environment {
 public:
  void SetUp() override { counts = {}; }
  void TearDown() override {
    if (!isComplete()) return;
    std::cout << "Refused " << counts.refusals << " allocations, each with all " << counts.followUps
              << " follow-ups together, to " << counts.commands << " commands.\n";
  }

  struct Counts {
    int commands = 0;  ///< on one mesh each
    int refusals = 0;
    int followUps = 0;
  };
  static Counts counts;
};
Tally::Counts Tally::counts;
const ::testing::Environment* const tally = ::testing::AddGlobalTestEnvironment(new Tally);

class OutOfMemory : public ::testing::TestWithParam<Variant> {
 protected:
  OutOfMemory() {
    folder.write("cube.ply2", cubeText);
    const TriangleMesh cube = test::cube();
    const MeshToWrite mesh(cube, {}, MeshToWrite::Vertices::All);
    for (const char* name : {"cube.ply", "cube.obj", "cube.off"}) {
      EXPECT_EQ(exportMeshFile(folder.file(name), mesh, {}).error, "");
    }
  }

  /// Every allocation at first, where one stage follows the other; of what then repeats itself
  /// (iterations, strokes, links of one vertex after the other, texts) a spread over the whole run
  /// that meets each of its parts.
  static std::vector<std::size_t> refusals(std::size_t count) {
    constexpr std::size_t all = 60;
    constexpr std::size_t spread = 20;
    std::vector<std::size_t> chosen;
    const bool takesAll = isComplete() || count <= all;
    const std::size_t stride = takesAll ? 1 : (count - all) / spread + 1;
    for (std::size_t n = 1; n <= count; n += n < all ? 1 : stride) chosen.push_back(n);
    return chosen;
  }

  static bool replacesMesh(const Command& command) {
    return command.step == "open" || command.step == "import" || command.step == "undo";
  }

  /// The mesh is one that was seen, and what came before it can be had again or is told to be gone.
  static void expectNothingHalf(const Session& session, const Start& start,
                                const std::set<Shape>& whole, const Command& command) {
    const CGravlinDoc& doc = session.doc;
    EXPECT_THAT(test::brokenInvariants(doc), IsEmpty());
    const Shape now = shapeOf(*doc.mesh());
    const Shape before = shapeOf(start.mesh);
    EXPECT_TRUE(now == before || whole.contains(now)) << "half a shape";
    if (command.step == "open" || command.step == "import") {
      EXPECT_EQ(doc.path.empty(), now == before) << "a mesh under the name of another file";
    }
    if (replacesMesh(command)) return;
    const bool wasReplaced = doc.undoMesh && shapeOf(*doc.undoMesh) == before;
    const bool isAsItWas = doc.undoMesh && start.undo &&
                           doc.undoMesh->vertices == start.undo->vertices &&
                           doc.undoMesh->faces == start.undo->faces;
    if (!start.undo && !doc.undoMesh) return;
    if (doc.undoMesh) {
      EXPECT_TRUE(wasReplaced || isAsItWas) << "an undo copy of neither shape";
      EXPECT_TRUE(!wasReplaced || doc.modified);
      return;
    }
    EXPECT_THAT(session.outside.messages, Contains(HasSubstr("given up to make room")));
    EXPECT_TRUE(now == before);
  }

  static constexpr const char* cubeText =
      "8 12\n-1 -1 -1\n1 -1 -1\n1 1 -1\n-1 1 -1\n-1 -1 1\n1 -1 1\n1 1 1\n-1 1 1\n"
      "3 0 2 1\n3 0 3 2\n3 4 5 6\n3 4 6 7\n3 0 1 5\n3 0 5 4\n3 1 2 6\n3 1 6 5\n"
      "3 2 3 7\n3 2 7 6\n3 3 0 4\n3 3 4 7\n";
  const test::TemporaryFolder folder{test::folderInMemory()};
};

TEST_P(OutOfMemory, LeavesNoHalfMeshAndNoStateInWhichALaterCommandFails) {
  const Variant& variant = GetParam();
  for (const Start& start : starts()) {
    SCOPED_TRACE(start.name);
    Session whole(start, variant, folder);
    whole.run(variant, 0);
    ASSERT_THAT(test::brokenInvariants(whole.doc), IsEmpty());
    ++Tally::counts.commands;
    for (const std::size_t n : refusals(whole.allocations)) {
      ++Tally::counts.refusals;
      for (std::size_t k = 0; k < followUps.size(); ++k) {
        // On the first mesh all of them behind every refusal, on the others one after the other.
        const bool isDue = isComplete() || &start == &starts().front() || n % followUps.size() == k;
        if (!isDue) continue;
        ++Tally::counts.followUps;
        SCOPED_TRACE("allocation " + std::to_string(n));
        Session session(start, variant, folder);
        session.run(variant, n);
        expectNothingHalf(session, start, whole.seen, *variant.command);
        if (HasFailure()) return;
        followUps[k](session);
        EXPECT_THAT(test::brokenInvariants(session.doc), IsEmpty());
        if (HasFailure()) return;
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(EveryCommand, OutOfMemory, ::testing::ValuesIn(allVariants()),
                         [](const auto& tested) { return tested.param.name; });

}  // namespace
}  // namespace gravlin
