// Random chains of commands with random values on random meshes, in this process: after each of
// them the invariants hold and everything can be drawn, and what is saved can be opened. Now and
// then an allocation is refused to a command, and then saving, undoing, picking and drawing still
// work.

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <map>
#include <new>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "doc/CommandTable.h"
#include "endurance/Journal.h"
#include "endurance/Options.h"
#include "endurance/RandomSource.h"
#include "mesh/io/MeshFile.h"
#include "mesh/MeshMeasures.h"
#include "numeric/TextSink.h"
#include "support/Allocations.h"
#include "support/DisplayModes.h"
#include "support/DocumentAccess.h"
#include "support/DocumentInvariants.h"
#include "support/MeshFields.h"
#include "support/TemporaryFolder.h"
#include "support/UsableFaces.h"
#include "view/LineSvg.h"
#include "view/RenderDispatcher.h"

namespace gravlin::endurance {
namespace {

constexpr int longestChain = 10;
constexpr int mostFaces = 1000;  ///< larger meshes only take more time

struct Counts {
  int chains = 0;
  int commands = 0;
  std::map<std::string, int> refusals;  ///< by command: where an allocation was refused

  int allRefusals() const {
    int sum = 0;
    for (const auto& [command, count] : refusals) sum += count;
    return sum;
  }
};

/// A desktop that answers at random and draws whatever it is asked to.
class RandomOutside : public Outside {
 public:
  RandomOutside(RandomSource& source, Journal& log, const test::TemporaryFolder& files)
      : random(source), journal(log), folder(files) {}

  const CGravlinDoc* document = nullptr;
  std::string meshFile;        ///< what Open offers
  bool memoryIsShort = false;  ///< views have no memory either and show that
  bool agrees = false;         ///< to every question

  bool showDialog(const Form& form) override {
    std::string words(form.name);
    for (const Field& field : form.fields) {
      if (!field.enabled || random.oneIn(2)) continue;
      const std::string text = textFor(form, field);
      if (storeText(field, text).empty()) {
        words.append(" ").append(field.name).append("=").append(text);
      }
    }
    const bool ok = !random.oneIn(6);
    journal.note(words + (ok ? " OK" : " CANCEL"));
    return ok;
  }
  std::optional<std::string> chooseFile(FileDialog kind) override {
    static const std::vector<std::string> names = {"a.ply2", "b.plyR",    "c.obj",     "d",
                                                   "e.png",  "lines.obj", "lines.vtk", "lines.svg",
                                                   "f.ply",  "g.stl",     "h.off"};
    if (random.oneIn(6)) return std::nullopt;
    std::string name = kind == FileDialog::Open || kind == FileDialog::Import
                           ? meshFile
                           : folder.file(random.anyOf(names));
    journal.note("file " + name);
    return name;
  }
  bool confirm(const Question& /*question*/) override { return agrees || random.oneIn(2); }
  StandardFileAnswer askAboutStandardFile(const StandardFileQuestion& /*question*/) override {
    return random.oneIn(2) ? StandardFileAnswer::Import : StandardFileAnswer::OpenAsItIs;
  }
  void showMessage(const std::string& text) override { journal.note("message " + text); }
  void showStatus(const std::string& sentence) override { status = sentence; }
  void showSuccess(const std::string& sentence) override { status = sentence; }
  void showProgress(ProgressRange /*range*/) override {}
  void stepProgress() override {}
  void hideProgress() override {}
  void redraw() override {
    try {
      (void)gatherScene(document->shown());
    } catch (const std::bad_alloc&) {
      if (!memoryIsShort) throw;
    }
  }
  void showHistogram(std::string_view /*field*/) override {}
  void setHistogramValues(const std::vector<double>& values) override { histogram = values; }
  void setHistogramAge(HistogramAge /*age*/) override {}
  void setLightingMode(LightingMode /*mode*/) override {}
  void setLineWidthAndPointSize(float /*width*/, float /*size*/) override {}
  ViewAngles viewAngles() const override { return camera.angles(); }
  void setViewAngles(const ViewAngles& angles) override { camera.setAngles(angles); }
  std::string linesAsSvg(const TriangleMesh& mesh, const LinesToDraw& drawing) const override {
    return gravlin::linesAsSvg(mesh, drawing, camera, {200, 150});
  }
  void setShownCounts(int /*usedVertices*/, int /*validFaces*/) override {}

  std::string status;  ///< the last sentence

 private:
  std::string textFor(const Form& form, const Field& field) {
    if (std::holds_alternative<bool*>(field.value)) return random.oneIn(2) ? "1" : "0";
    if (field.choices.empty()) return anyText(random, {form.name, field.name});
    const int choice = random.below(static_cast<int>(field.choices.size()));
    if (std::holds_alternative<int*>(field.value)) return std::to_string(choice);
    return std::string(field.choices[static_cast<std::size_t>(choice)].text);
  }

  RandomSource& random;
  Journal& journal;
  const test::TemporaryFolder& folder;
  Camera camera;
  std::vector<double> histogram;
};

/// One document and what is done with it.
class Chain {
 public:
  Chain(unsigned long long seed, Journal& log, Counts& allCounts)
      : random(seed), journal(log), counts(allCounts) {
    outside.document = &document;
  }

  void run(const std::string& plant) {
    newMeshFile();
    document.openFile(outside.meshFile);
    check("opening");
    const int length = 1 + random.below(longestChain);
    for (int k = 0; k < length; ++k) {
      if (random.oneIn(12)) newMeshFile();
      if (tooLarge()) break;
      random.oneIn(6) ? runWithoutMemory() : runCommand();
      ++counts.commands;
    }
    if (plant == "damage" && document.mesh()) test::meshOf(document).faces.push_back(0);
    if (plant == "crash") std::abort();
    if (plant == "hang") std::this_thread::sleep_for(std::chrono::hours(1));
    drawEverything();
    check("drawing");
    pick();
    saveAndOpen();
    ++counts.chains;
  }

 private:
  bool tooLarge() const { return document.mesh() && document.mesh()->faceCount > mostFaces; }

  void newMeshFile() {
    const MeshText mesh = anyMeshText(random);
    outside.meshFile = folder.write("mesh." + mesh.extension, mesh.text);
    journal.note("mesh of " + std::to_string(mesh.text.size()) + " bytes, " + mesh.extension);
  }

  const Command& anyCommand() {
    for (;;) {
      const Command& row = random.anyOf(commandTable());
      if (row.handler != nullptr) return row;
    }
  }

  void check(const std::string& after) {
    for (const std::string& words : test::brokenInvariants(document)) {
      journal.fail(std::string("after ").append(after).append(": ").append(words));
    }
  }

  /// What must work whatever came before.
  template <class Work>
  void demand(const std::string& name, Work work) {
    try {
      work();
    } catch (const std::exception& error) {
      journal.fail(name + " ended with " + error.what());
    }
    check(name);
  }

  void runCommand() {
    const Command& command = anyCommand();
    const std::string name(command.text);
    journal.note(name);
    demand(name, [&] { (document.*command.handler)(); });
  }

  void runWithoutMemory() {
    const Command& command = anyCommand();
    const std::string name(command.text);
    const std::vector<int> magnitudes = {5, 30, 200, 1500};
    const std::size_t refused =
        1 + static_cast<std::size_t>(random.below(random.anyOf(magnitudes)));
    journal.note(name + " without allocation " + std::to_string(refused));
    int& refusals = counts.refusals[name];
    outside.memoryIsShort = true;
    {
      const test::AllocationFailure failure(refused);
      try {
        (document.*command.handler)();
      } catch (const std::bad_alloc&) {
      } catch (const std::exception& error) {
        journal.fail(name + " without memory ended with " + error.what());
      }
      if (failure.happened()) ++refusals;  // short commands end before that
    }
    outside.memoryIsShort = false;
    check(name + " without memory");
    std::vector<std::pair<const char*, std::function<void()>>> works = {
        {"saving", [&] { save(); }},
        {"undoing", [&] { undo(); }},
        {"picking", [&] { pick(); }},
        {"redrawing", [&] { document.redraw(); }}};
    for (std::size_t n = works.size(); n > 1; --n) {
      std::swap(works[n - 1], works[static_cast<std::size_t>(random.below(static_cast<int>(n)))]);
    }
    outside.agrees = true;
    for (const auto& [what, work] : works) {
      journal.note(what);
      demand(what + std::string(" after ") + name + " without memory", work);
    }
    outside.agrees = false;
  }

  void pick() {
    const auto number = [&] { return 2.0 * random.share() - 1.0; };
    const Vec3 from = {20 * number(), 20 * number(), 20 * number()};
    const Vec3 to = {8 * number(), 8 * number(), 8 * number()};
    demand("picking a point", [&] { document.pickFace(Ray{from, unitOrZero(to - from)}); });
    if (!document.mesh() || document.mesh()->faceCount == 0) return;
    const int face = random.below(document.mesh()->faceCount);
    if (!document.mesh()->validFace(face)) return;
    demand("picking a face", [&] { document.pickFace(face); });
  }

  /// To a new file, with every question answered by yes: the mesh is saved, if there is one.
  void save() {
    if (!document.mesh()) return;
    lastSaved = folder.file("saved" + std::to_string(++saves) + ".ply2");
    if (!document.saveFile(lastSaved)) journal.fail("a mesh is not saved: " + outside.status);
  }

  /// Brings back the positions, bit by bit, and the faces that were kept; a mesh with nothing kept
  /// stays.
  void undo() {
    const TriangleMesh* source = document.undoMesh ? document.undoMesh.get()  //
                                                   : document.mesh();
    if (source == nullptr) return document.OnEditUndo();
    TriangleMesh kept;
    kept.copyGeometryFrom(*source);
    document.OnEditUndo();
    if (!document.mesh()) journal.fail("undoing has lost the mesh");
    const TriangleMesh& mesh = *document.mesh();
    if (!test::sameVertices(kept, mesh)) journal.fail("undoing brings back other positions");
    if (!test::sameUsableFaces(kept.faces, mesh)) journal.fail("undoing brings back other faces");
  }

  void drawEverything() {
    demand("drawing every mode", [&] {
      const int shown = document.displayMode;
      for (const int mode : test::everyDisplayMode()) {
        document.displayMode = mode;
        document.redraw();
      }
      document.displayMode = shown;
    });
  }

  /// What was saved has every used vertex and every valid face.
  void saveAndOpen() {
    outside.agrees = true;
    demand("saving", [&] { save(); });
    if (!document.mesh() || !hasFiniteShape(*document.mesh())) return;
    const int used = document.mesh()->countUsedVertices();
    const int valid = document.mesh()->countValidFaces();
    const OpenResult opened = openMeshFile(lastSaved);
    if (!opened.mesh) journal.fail("what was saved cannot be opened: " + opened.error);
    if (opened.mesh->vertexCount != used || opened.mesh->countValidFaces() != valid) {
      journal.fail("what was saved has lost a part of the mesh");
    }
  }

  RandomSource random;
  Journal& journal;
  Counts& counts;
  const test::TemporaryFolder folder{test::folderInMemory()};
  RandomOutside outside{random, journal, folder};
  CGravlinDoc document{outside};
  int saves = 0;
  std::string lastSaved;
};

/// The commands to which no allocation has been refused, one behind the other.
std::string neverRefused(const Counts& counts) {
  std::string names;
  for (const Command& row : commandTable()) {
    const auto found = counts.refusals.find(std::string(row.text));
    if (row.handler == nullptr || (found != counts.refusals.end() && found->second > 0)) continue;
    names.append(names.empty() ? "" : ", ").append(row.text.substr(0, row.text.find('\t')));
  }
  return names;
}

int run(const Options& options) {
  const ScopedTextSink quiet(quietTextSink());
  Journal journal(options.journal("endurance_chains"));
  const Extent extent(options);
  Counts counts;
  for (int k = 0; extent.goesOn(k); ++k) {
    const unsigned long long seed = options.seed + static_cast<unsigned long long>(k);
    journal.begin("chain of --seed " + std::to_string(seed) + " --count 1");
    Chain(seed, journal, counts).run(options.plant);
  }
  std::printf("%d chains of %d commands, %d of these with an allocation refused\n", counts.chains,
              counts.commands, counts.allRefusals());
  const std::string never = neverRefused(counts);
  std::printf("An allocation was refused to %s\n",
              never.empty() ? "every command" : ("all commands but " + never).c_str());
  return 0;
}

}  // namespace
}  // namespace gravlin::endurance

int main(int argc, char** argv) {
  return gravlin::endurance::run(gravlin::endurance::readOptions(argc, argv));
}
