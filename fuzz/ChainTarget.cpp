// Chains of steps with any values on a mesh that has been damaged, each step in this process. Every
// byte is a decision: which mesh, what is wrong with it, which steps, which values.

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdio>
#include <functional>
#include <limits>
#include <new>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "batch/BatchRun.h"
#include "batch/Session.h"
#include "fuzz/ByteSource.h"
#include "fuzz/FuzzTarget.h"
#include "mesh/io/MeshReader.h"
#include "numeric/Index.h"
#include "numeric/TextSink.h"
#include "support/DocumentAccess.h"
#include "support/Invariants.h"
#include "support/Meshes.h"
#include "support/MoebiusBand.h"
#include "support/TemporaryFolder.h"
#include "support/UsableFaces.h"

namespace gravlin::fuzz {
namespace {

constexpr int longestChain = 10;
constexpr int mostDamages = 8;
/// Iterations of one command, seeds: more only take more time.
constexpr int largestCount = 3;
/// A mesh that is larger is not subdivided again.
constexpr int mostFaces = 1500;

/// Every coordinate larger than the one before.
TriangleMesh risingSpiral() {
  TriangleMesh mesh = test::grid(4, 4);
  for (std::size_t c = 0; c < mesh.vertices.size(); ++c) {
    mesh.vertices[c] = static_cast<float>(c * c) * 0.01F;
  }
  return mesh;
}

TriangleMesh anyMesh(ByteSource& source) {
  static const std::vector<std::function<TriangleMesh()>> families = {
      test::tetrahedron,
      test::octahedron,
      test::cube,
      [] { return test::icosphere(1); },
      [] { return test::torus(8, 5); },
      [] { return test::fineCube(3); },
      [] { return test::bumpyGrid(6, 6); },
      [] { return test::grid(5, 4); },
      test::singleTriangle,
      test::twoTriangles,
      test::hexagonFan,
      test::bowTie,
      test::touchingOctahedra,
      test::threeFacesOnAnEdge,
      test::degenerateFace,
      test::withNan,
      test::pointsOnly,
      test::emptyMesh,
      test::insideOutCube,
      [] { return test::flangedHub(8); },
      [] { return test::moebiusBand(12); },
      risingSpiral};
  return source.anyOf(families)();
}

void damageOnce(TriangleMesh& mesh, ByteSource& source) {
  const auto anyVertex = [&] { return source.below(mesh.vertexCount); };
  const auto anyFace = [&] { return 3 * toIndex(source.below(mesh.faceCount)); };
  const int kind = source.below(7);
  if (mesh.vertexCount == 0 || mesh.faceCount == 0) return;
  switch (kind) {
    case 0:  // a coordinate
      mesh.vertices[3 * toIndex(anyVertex()) + toIndex(source.below(3))] = source.number();
      return;
    case 1:  // one vertex upon another
      mesh.setPosition(anyVertex(), mesh.position(anyVertex()));
      return;
    case 2:  // a corner
      mesh.faces[anyFace() + toIndex(source.below(3))] = anyVertex();
      return;
    case 3: {  // a face turned over
      const std::size_t c = anyFace();
      std::swap(mesh.faces[c], mesh.faces[c + 1]);
      return;
    }
    case 4: {  // a face in the place of another
      const std::size_t from = anyFace();
      const std::size_t to = anyFace();
      for (std::size_t k = 0; k < 3; ++k) mesh.faces[to + k] = mesh.faces[from + k];
      return;
    }
    case 5:  // a face out
      mesh.faces[anyFace()] = -1;
      return;
    default: {  // all coordinates
      const float factor = source.number();
      for (float& coordinate : mesh.vertices) coordinate *= factor;
    }
  }
}

/// Whether the number says how often something is done. So does the length of a chunk: the median
/// ends with a whole one.
bool isCount(const Field& field) {
  const auto endsWith = [&](std::string_view ending) { return field.name.ends_with(ending); };
  return std::holds_alternative<int*>(field.value) && field.choices.empty() &&
         (endsWith("Iterations") || endsWith("Count") || endsWith("Amount") || endsWith("Every"));
}

std::string anyText(const Field& field, ByteSource& source) {
  using Limits = std::numeric_limits<int>;
  static constexpr std::array<int, 8> ints = {0, 1, 2, -1, 100, 7, Limits::max(), Limits::min()};
  if (std::holds_alternative<bool*>(field.value)) return source.flip() ? "1" : "0";
  if (!field.choices.empty() && source.below(16) != 15) {
    const Choice choice = source.anyOf(field.choices);
    return std::string(choice.word.empty() ? choice.text : choice.word);
  }
  if (isCount(field)) return std::to_string(source.below(largestCount + 2) - 1);
  if (std::holds_alternative<int*>(field.value)) return std::to_string(source.anyOf(ints));
  if (std::holds_alternative<std::string*>(field.value)) {
    static const std::vector<std::string> texts = {"",    "1,-2,3", "0,0,1e30", "vertices,view",
                                                   "1,2", "none",   "40x30"};
    return source.anyOf(texts);
  }
  char text[64];
  std::snprintf(text, sizeof text, "%.9g", static_cast<double>(source.number()));
  return text;
}

/// One document with everything that a chain does to it.
class Chain {
 public:
  Chain(ByteSource& decisions, const test::TemporaryFolder& files)
      : source(decisions), folder(files), session({nowhere(), nowhere()}) {}

  void run() {
    TriangleMesh mesh = anyMesh(source);
    for (int k = source.below(mostDamages + 1); k > 0; --k) damageOnce(mesh, source);
    meshFile = test::writeMeshFile(folder, "mesh.ply2", mesh);
    for (const Step& step : allSteps()) keepCountsLow(step);
    runStep(stepCalled("open"));
    for (int k = 0; k < longestChain && !source.empty(); ++k) runStep(source.anyOf(allSteps()));
    checkUndo();
    checkSaving();
  }

 private:
  static std::FILE* nowhere() {
    static std::FILE* const stream = std::fopen("/dev/null", "w");
    return stream;
  }

  static const Step& stepCalled(const std::string& name) {
    const auto steps = allSteps();
    return *std::find_if(steps.begin(), steps.end(), [&](const Step& s) { return s.name == name; });
  }

  const TriangleMesh* mesh() const { return session.document.mesh(); }

  void keepCountsLow(const Step& step) {
    if (!step.form) return;
    for (const Field& field : step.form(session).fields) {
      if (isCount(field)) storeText(field, "2");
    }
  }

  std::string operandOf(const Step& step, const std::string& operand) {
    if (operand != "FILE") return std::to_string(source.below(900) - 50);
    if (step.name == "open") return meshFile;
    if (step.name == "dump") return "-";
    static const std::vector<std::string> names = {"a.ply2",    "b.plyR",    "c.obj",    "d",
                                                   "lines.vtk", "lines.svg", "mesh.ply2"};
    return folder.file(source.anyOf(names));
  }

  /// Texts that the fields of the step take, of about half of them.
  std::vector<Setting> anySettings(const Step& described) {
    std::vector<Setting> settings;
    if (!described.form) return settings;
    for (const Field& field : described.form(session).fields) {
      if (!field.enabled || !source.flip()) continue;
      const std::string text = anyText(field, source);
      if (storeText(field, text).empty()) settings.push_back({std::string(field.name), text});
    }
    return settings;
  }

  void runStep(const Step& step) {
    // Pictures need a driver and its threads; they have tests of their own.
    if (step.name.starts_with("render")) return;
    if (step.name == "subdivision" && mesh() != nullptr && mesh()->faceCount > mostFaces) return;
    StepCall call = {.step = &step};
    if (step.subject != Subject::None) {
      call.subject = &source.anyOf(dialogSteps()).get();
    } else {
      for (const std::string& operand : step.operands) {
        call.operands.push_back(operandOf(step, operand));
      }
    }
    if (step.subject != Subject::Named) call.settings = anySettings(call.described());
    try {
      if (step.check) step.check(session, call);
      step.run(session, call);
    } catch (const UsageError&) {
    } catch (const StepFailure&) {
    }
    session.outside.failed = false;  // the next step runs all the same, as in the window
    checkMesh(step.name);
  }

  static const std::vector<std::reference_wrapper<const Step>>& dialogSteps() {
    static const auto steps = [] {
      std::vector<std::reference_wrapper<const Step>> found;
      for (const Step& step : allSteps()) {
        if (step.hasDialog) found.emplace_back(step);
      }
      return found;
    }();
    return steps;
  }

  void checkMesh(const std::string& after) const {
    if (mesh() == nullptr) return;
    demandNone(test::brokenInvariants(*mesh()), "after " + after);
  }

  /// Undo brings back the positions and faces that were kept, bit by bit.
  void checkUndo() {
    if (!session.document.undoMesh) return;
    TriangleMesh kept;
    kept.copyGeometryFrom(*session.document.undoMesh);
    session.document.OnEditUndo();
    checkMesh("undo");
    const auto bits = [](float number) { return std::bit_cast<std::uint32_t>(number); };
    demand(std::equal(kept.vertices.begin(), kept.vertices.end(), mesh()->vertices.begin(),
                      mesh()->vertices.end(), [&](float a, float b) { return bits(a) == bits(b); }),
           "undo brings back every position");
    demand(test::sameUsableFaces(kept.faces, *mesh()), "undo brings back every face");
  }

  void checkSaving() {
    if (mesh() == nullptr) return;
    const int used = mesh()->countUsedVertices();
    const int valid = mesh()->countValidFaces();
    const std::string path = folder.file("end.ply2");
    const SaveResult saved = saveMeshFile(path, test::meshOf(session.document));
    demand(saved.error.empty(), "a mesh can be saved: " + saved.error);
    const OpenResult back = openMeshFile(path);
    demand(back.mesh != nullptr, "what was saved can be opened: " + back.error);
    demand(back.mesh->vertexCount == used && back.mesh->countValidFaces() == valid,
           "what was saved comes back");
  }

  ByteSource& source;
  const test::TemporaryFolder& folder;
  Session session;
  std::string meshFile;
};

}  // namespace
}  // namespace gravlin::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace gravlin;
  static const test::TemporaryFolder folder;
  const ScopedTextSink sink(quietTextSink());
  fuzz::ByteSource source(data, size);
  fuzz::Chain(source, folder).run();
  return 0;
}
