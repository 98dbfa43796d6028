// Every display mode with a field, as the table of modes lists them: a new one is tested here
// without being told to.

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

#include "batch/BatchRun.h"
#include "doc/CommandTable.h"
#include "doc/ModeTable.h"
#include "support/DocumentAccess.h"
#include "support/ImageComparison.h"
#include "support/Meshes.h"
#include "support/OffscreenView.h"
#include "support/ScriptedOutside.h"
#include "view/Legend.h"
#include "view/RenderDispatcher.h"

namespace gravlin {
namespace {

using nlohmann::json;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

// --- The modes, and the commands that lead to them ---

struct ScalarMode {
  const Mode* mode;
  const Command* command;  ///< null: there is none
};

std::ostream& operator<<(std::ostream& out, const ScalarMode& scalar) {
  return out << scalar.mode->field;
}

/// The first command that asks nothing and leads to the mode.
const Command* commandOf(const Mode& mode) {
  for (const Command& row : commandTable()) {
    if (row.handler == nullptr || row.form != nullptr || row.file || row.step.empty()) continue;
    test::ScriptedOutside outside;
    CGravlinDoc document(outside);
    test::setMesh(document, test::bumpyGrid(3, 3));
    (document.*row.handler)();
    if (document.displayMode == mode.number) return &row;
  }
  return nullptr;
}

std::vector<ScalarMode> scalarModes() {
  std::vector<ScalarMode> found;
  for (const Mode& mode : modeTable()) {
    if (mode.site != Site::None) found.push_back({&mode, commandOf(mode)});
  }
  return found;
}

TEST(ModeTable, HasEveryNumberOnceAndFieldsThatAreWhole) {
  std::set<int> numbers;
  std::set<std::string_view> fields;
  for (const Mode& mode : modeTable()) {
    SCOPED_TRACE(mode.number);
    EXPECT_TRUE(numbers.insert(mode.number).second);
    EXPECT_EQ(findMode(mode.number), &mode);
    EXPECT_EQ(mode.field.empty(), mode.site == Site::None);
    EXPECT_EQ(mode.values == nullptr, mode.site == Site::None);
    if (!mode.field.empty()) {
      EXPECT_TRUE(fields.insert(mode.field).second) << mode.field;
    }
  }
  EXPECT_EQ(findMode(firstOwnMode - 1), nullptr);
}

TEST(ModeTable, BeginsTitlesWithACapital) {
  EXPECT_EQ(fieldTitle(*findMode(CurvatureMean)), "Mean curvature");
  EXPECT_EQ(fieldTitle(*findMode(CurvatureGauss)), "Gaussian curvature");
  EXPECT_EQ(fieldTitle(*findMode(FlatShading)), "");
}

// --- What is known of values without knowing what they are ---

std::size_t placesOf(Site site, const TriangleMesh& mesh) {
  const std::map<Site, std::size_t> counts = {{Site::Vertices, mesh.vertices.size() / 3},
                                              {Site::Edges, mesh.faces.size()},
                                              {Site::Faces, mesh.faces.size() / 3}};
  return counts.at(site);
}

struct Statistics {
  double least, largest, mean, deviation;
};

Statistics statisticsOf(const std::vector<double>& values) {
  if (values.empty()) return {NAN, NAN, NAN, NAN};
  double sum = 0.0;
  for (const double v : values) sum += v;
  const double mean = sum / static_cast<double>(values.size());
  double squares = 0.0;
  for (const double v : values) squares += (v - mean) * (v - mean);
  const auto [least, largest] = std::ranges::minmax(values);
  return {least, largest, mean, std::sqrt(squares / static_cast<double>(values.size()))};
}

/// The colours at the ends of the scale's bands, which are straight between them.
std::array<double, 3> colourOnScale(double t) {
  constexpr double stops[8][3] = {{0, 0, 0}, {0, 0, 1}, {0, 1, 1}, {0, 1, 0},
                                  {1, 1, 0}, {1, 0, 0}, {1, 0, 1}, {1, 0.75, 1}};
  const double place = std::clamp((t + 2.1) / 0.6, 0.0, 6.999999);
  const auto band = static_cast<std::size_t>(place);
  const double share = place - static_cast<double>(band);
  std::array<double, 3> colour = {};
  for (std::size_t k = 0; k < 3; ++k) {
    colour[k] = (1.0 - share) * stops[band][k] + share * stops[band + 1][k];
  }
  return colour;
}

using Place = std::vector<std::array<float, 3>>;  // the corners, in order of their coordinates

Place placeOf(Place corners) {
  std::ranges::sort(corners);
  return corners;
}

/// The values by the places that they belong to. Several at an edge: one of each face.
std::multimap<Place, double> valuesByPlace(const TriangleMesh& mesh, Site site,
                                           std::span<const double> values) {
  const auto at = [&](int v) {
    const float* p = mesh.vertices.data() + 3 * static_cast<std::size_t>(v);
    return std::array<float, 3>{p[0], p[1], p[2]};
  };
  std::multimap<Place, double> found;
  for (std::size_t k = 0; k < values.size(); ++k) {
    if (site == Site::Vertices) {
      found.insert({placeOf({at(static_cast<int>(k))}), values[k]});
      continue;
    }
    const auto c = mesh.corners(static_cast<int>(site == Site::Faces ? k : k / 3));
    if (site == Site::Faces) found.insert({placeOf({at(c[0]), at(c[1]), at(c[2])}), values[k]});
    if (site == Site::Edges) {
      found.insert({placeOf({at(c[k % 3]), at(c[(k + 1) % 3])}), values[k]});
    }
  }
  return found;
}

class ScalarModes : public ::testing::TestWithParam<ScalarMode> {
 protected:
  const Mode& mode() const { return *GetParam().mode; }
  const Command& command() const { return *GetParam().command; }
  std::string step() const { return std::string(command().step); }

  void SetUp() override { ASSERT_NE(GetParam().command, nullptr) << "no command leads there"; }

  /// A document with a mesh of which every vertex has moved since the undo copy.
  void load(const TriangleMesh& mesh) {
    test::setMesh(document, mesh);
    move(0.05);
  }
  void move(double most) {
    document.keepUndoCopy();
    TriangleMesh& mesh = test::meshOf(document);
    for (int i = 0; i < mesh.vertexCount; ++i) {
      mesh.setPosition(i, mesh.position(i) +
                              most * Vec3{std::sin(3.0 * i), std::sin(5.0 * i), std::cos(7.0 * i)});
    }
    document.geometryChanged();
    document.redraw();
  }
  void show() { (document.*command().handler)(); }
  std::vector<double> values() const {
    const Shown shown = document.shown();
    return {shown.fieldValues.begin(), shown.fieldValues.end()};
  }

  test::ScriptedOutside outside;
  CGravlinDoc document{outside};
};

TEST_P(ScalarModes, HaveOneValueAPlaceAndGiveThemToTheHistogram) {
  for (const TriangleMesh& mesh : {test::torus(12, 8), test::bumpyGrid(9, 7)}) {
    load(mesh);
    outside.forget();
    show();
    EXPECT_THAT(values(), SizeIs(placesOf(mode().site, mesh)));
    EXPECT_EQ(outside.histogramValues, values());
    EXPECT_EQ(outside.histogramAge, HistogramAge::Current);
    const std::string title = "histogram " + fieldTitle(mode());
    EXPECT_THAT(outside.calls, ::testing::Contains(title));
  }
  EXPECT_GT(statisticsOf(values()).deviation, 0.0) << "the same everywhere on a bumpy sheet";
}

TEST_P(ScalarModes, AreDrawnWithEveryValueInItsColourOfTheScale) {
  for (const TriangleMesh& mesh : {test::torus(12, 8), test::bumpyGrid(9, 7)}) {
    load(mesh);
    show();
    const Scene scene = gatherScene(document.shown());
    ASSERT_FALSE(scene.batches.empty());
    const Batch& batch = scene.batches.front();
    const std::map<Site, std::size_t> corners = {
        {Site::Vertices, 1}, {Site::Edges, 2}, {Site::Faces, 3}};
    const std::size_t n = corners.at(mode().site);
    EXPECT_EQ(batch.primitive == Primitive::Lines, mode().site == Site::Edges);
    EXPECT_FALSE(batch.lit);
    ASSERT_EQ(batch.colours.size(), batch.positions.size());

    const auto known = valuesByPlace(*document.mesh(), mode().site, values());
    const Statistics field = statisticsOf(values());
    std::set<Place> drawn;
    for (std::size_t k = 0; k + n <= batch.vertexCount(); k += n) {
      Place place;
      for (std::size_t c = k; c < k + n; ++c) {
        const float* p = batch.positions.data() + 3 * c;
        place.push_back({p[0], p[1], p[2]});
      }
      place = placeOf(place);
      drawn.insert(place);
      const auto [first, last] = known.equal_range(place);
      ASSERT_NE(first, last) << "drawn where no value is";
      for (std::size_t c = 3 * k; c < 3 * (k + n); ++c) {
        const auto hasColour = [&](const auto& placed) {
          const double t = (placed.second - field.mean) / field.deviation * 1.5;
          const double expected = field.deviation > 0.0 ? colourOnScale(t)[c % 3] : 0.0;
          return std::abs(static_cast<double>(batch.colours[c]) - expected) < 1e-4;
        };
        EXPECT_TRUE(std::any_of(first, last, hasColour));
      }
    }
    std::set<Place> places;
    for (const auto& placed : known) places.insert(placed.first);
    EXPECT_EQ(drawn, places) << "every value is drawn";
  }
}

TEST_P(ScalarModes, AreOfTheShapeAsItIsNow) {
  load(test::bumpyGrid(9, 7));
  show();
  move(0.2);
  EXPECT_EQ(outside.histogramValues, values());
  EXPECT_EQ(outside.histogramAge, HistogramAge::Current);

  test::ScriptedOutside other;
  CGravlinDoc fresh(other);
  test::setMesh(fresh, *document.mesh());
  test::meshOf(fresh).dropDerived();
  test::meshOf(fresh).buildAdjacency();
  test::meshOf(fresh).buildFaceAdjacency();
  test::meshOf(fresh).computeNormals();
  fresh.undoMesh = std::make_unique<TriangleMesh>();
  fresh.undoMesh->copyGeometryFrom(*document.undoMesh);
  (fresh.*command().handler)();
  EXPECT_TRUE(std::ranges::equal(fresh.shown().fieldValues, values()));
}

TEST_P(ScalarModes, TakeAnyMesh) {
  for (const test::NamedMesh& hostile : test::hostileMeshes()) {
    SCOPED_TRACE(hostile.name);
    test::setMesh(document, hostile.mesh);
    show();
    EXPECT_EQ(document.displayMode, mode().number);
    EXPECT_THAT(values(), SizeIs(placesOf(mode().site, hostile.mesh)));
    EXPECT_FALSE(gatherScene(document.shown()).batches.empty());
  }
}

TEST_P(ScalarModes, HaveALegendThatNamesTheirMean) {
  load(test::bumpyGrid(9, 7));
  show();
  const Scene scene = gatherScene(document.shown());
  ASSERT_TRUE(scene.scale.has_value());
  const LegendLayout legend = legendOf(*scene.scale, {300, 300});
  ASSERT_THAT(legend.labels, SizeIs(3));
  const Statistics field = statisticsOf(values());
  // Three places of which four digits are printed: mean and 1.4 deviations beside it.
  for (const int part : {0, 1, 2}) {
    const double expected = field.mean + 1.4 * (1 - part) * field.deviation;
    const double named = std::stod(legend.labels[static_cast<std::size_t>(part)].text);
    EXPECT_NEAR(named, expected, 1e-3 * (std::abs(field.mean) + field.deviation));
  }
}

TEST_P(ScalarModes, ArePicturesInColoursOrInGreyWithOrWithoutALegend) {
  test::OffscreenView offscreen;
  offscreen.target.overlay = false;
  offscreen.show(test::bumpySphere(), FlatShading);
  CGravlinDoc& shown = offscreen.document;
  shown.keepUndoCopy();
  for (int i = 0; i < shown.mesh()->vertexCount; ++i) {
    test::meshOf(shown).setPosition(i, (1.0 + 0.02 * std::sin(i)) * shown.mesh()->position(i));
  }
  shown.geometryChanged();
  shown.redraw();
  const Image flat = offscreen.draw();
  (shown.*command().handler)();
  const Image field = offscreen.draw();
  EXPECT_GT(test::differentPixels(flat, field), 1000);
  shown.OnColourLegend();
  EXPECT_GT(test::differentPixels(field, offscreen.draw()), 14 * 141);
  shown.visualizationParameters.grayScale = true;
  const Image grey = offscreen.draw();
  EXPECT_GT(test::differentPixels(field, grey), 1000);
  for (std::size_t p = 0; p < grey.rgb.size(); p += 3) {
    ASSERT_TRUE(grey.rgb[p] == grey.rgb[p + 1] && grey.rgb[p] == grey.rgb[p + 2]);
  }
}

// --- From the command line ---

class ScalarModeChains : public ScalarModes {
 protected:
  /// Runs a chain on a bumpy sheet and returns what it wrote to the dump.
  json chain(const std::vector<std::string>& steps) {
    std::vector<std::string> arguments = {"open", mesh, "noise", "--noise-size", "0.02"};
    arguments.insert(arguments.end(), steps.begin(), steps.end());
    result = test::runBatchHere(arguments);
    EXPECT_EQ(result.status, 0) << result.errors;
    return json::parse(test::contentOf(dumped));
  }

  const test::TemporaryFolder folder;
  std::string mesh = test::writeMeshFile(folder, "sheet.ply2", test::bumpyGrid(9, 7));
  std::string dumped = folder.file("dump.json");
  test::RunResult result;
};

TEST_P(ScalarModeChains, AreDumpedByName) {
  const json all = chain({step(), "dump", dumped, "--fields", "shownField,histogram,displayMode"});
  EXPECT_EQ(all["displayMode"], mode().number);
  const json& field = all["shownField"];
  EXPECT_EQ(field["name"], std::string(mode().field));
  const std::map<std::string, Site> sites = {
      {"vertices", Site::Vertices}, {"edges", Site::Edges}, {"faces", Site::Faces}};
  EXPECT_EQ(sites.at(field["site"].get<std::string>()), mode().site);
  const auto shown = field["values"].get<std::vector<double>>();
  EXPECT_THAT(shown, SizeIs(placesOf(mode().site, test::bumpyGrid(9, 7))));
  const Statistics expected = statisticsOf(shown);
  const double size = std::abs(expected.mean) + expected.deviation;
  EXPECT_NEAR(all["histogram"]["mean"].get<double>(), expected.mean, 1e-12 * size);
  EXPECT_NEAR(all["histogram"]["deviation"].get<double>(), expected.deviation, 1e-12 * size);
  std::size_t counted = 0;
  for (const json& bin : all["histogram"]["bins"]) counted += bin.get<std::size_t>();
  EXPECT_EQ(counted, shown.size());
}

TEST_P(ScalarModeChains, AreInADumpOfEverythingOnlyWithANumberOfOurOwn) {
  const bool own = mode().number >= 100;
  EXPECT_EQ(chain({step(), "dump", dumped}).contains("shownField"), own);
  EXPECT_FALSE(chain({step(), "flat-shading", "dump", dumped}).contains("shownField"));
  const json asked = chain({step(), "flat-shading", "dump", dumped, "--fields", "shownField"});
  EXPECT_TRUE(asked.at("shownField").is_null());
}

TEST_P(ScalarModeChains, AreReportedInUnitsOfTheFile) {
  const json all =
      chain({step(), "dump", dumped, "--fields", "shownField,extentTolerance", "report"});
  const std::string row = "\n" + std::string(mode().field) + " ";
  const bool own = mode().number >= 100;
  if (!own && mode().origin == nullptr) {
    EXPECT_THAT(result.output, Not(HasSubstr(row)));
    return;
  }
  const std::size_t at = result.output.find(row);
  ASSERT_NE(at, std::string::npos) << result.output;
  Statistics told = {};
  ASSERT_EQ(std::sscanf(result.output.c_str() + at + row.size(),
                        " from %lf to %lf, mean %lf, deviation %lf", &told.least, &told.largest,
                        &told.mean, &told.deviation),
            4);
  const double scale = std::pow(all["extentTolerance"].get<double>(), mode().lengthPower);
  const Statistics field = statisticsOf(all["shownField"]["values"].get<std::vector<double>>());
  // Six digits are printed.
  const double error = 1e-5 * scale * (std::abs(field.mean) + field.deviation);
  EXPECT_NEAR(told.least, scale * field.least, 10 * error);
  EXPECT_NEAR(told.largest, scale * field.largest, 10 * error);
  EXPECT_NEAR(told.mean, scale * field.mean, error);
  EXPECT_NEAR(told.deviation, scale * field.deviation, error);
}

std::string nameOf(const ::testing::TestParamInfo<ScalarMode>& tested) {
  std::string name = fieldTitle(*tested.param.mode);
  std::erase_if(name, [](unsigned char c) { return std::isalnum(c) == 0; });
  return name;
}

INSTANTIATE_TEST_SUITE_P(Table, ScalarModes, ::testing::ValuesIn(scalarModes()), nameOf);
INSTANTIATE_TEST_SUITE_P(Table, ScalarModeChains, ::testing::ValuesIn(scalarModes()), nameOf);

}  // namespace
}  // namespace gravlin
