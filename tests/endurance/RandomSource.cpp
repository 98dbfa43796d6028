#include "endurance/RandomSource.h"

#include <array>
#include <cmath>
#include <functional>
#include <numbers>
#include <sstream>

#include "numeric/Index.h"
#include "support/Meshes.h"
#include "support/MoebiusBand.h"

namespace gravlin::endurance {
namespace {

constexpr const char* largest = "3.40282347e38";  ///< number in single precision
constexpr const char* lowest = "-3.40282347e38";

/// Positions as texts, because some of them are no numbers, and faces.
struct Pieces {
  std::vector<std::array<std::string, 3>> vertices;
  std::vector<std::array<int, 3>> faces;
};

std::string textOf(double number) {
  std::ostringstream text;
  text.imbue(std::locale::classic());
  text.precision(9);
  text << number;
  return text.str();
}

void addVertex(Pieces& pieces, double x, double y, double z) {
  pieces.vertices.push_back({textOf(x), textOf(y), textOf(z)});
}

Pieces piecesOf(const TriangleMesh& mesh, const std::array<double, 3>& scale, double shift) {
  Pieces pieces;
  for (int i = 0; i < mesh.vertexCount; ++i) {
    const Vec3 p = mesh.position(i);
    addVertex(pieces, p.x * scale[0] + shift, p.y * scale[1], p.z * scale[2]);
  }
  for (int f = 0; f < mesh.faceCount; ++f) {
    const auto c = mesh.corners(f);
    pieces.faces.push_back({c[0], c[1], c[2]});
  }
  return pieces;
}

const std::vector<TriangleMesh>& families() {
  static const std::vector<TriangleMesh> all = [] {
    std::vector<TriangleMesh> meshes;
    for (const auto& family : {test::closedMeshes(), test::openMeshes(), test::hostileMeshes()}) {
      for (const test::NamedMesh& named : family) {
        if (named.mesh.faceCount < 600) meshes.push_back(named.mesh);
      }
    }
    meshes.push_back(test::jittered(test::torus(9, 6), 0.1));
    meshes.push_back(test::jittered(test::icosphere(1), 0.05));
    meshes.push_back(test::bumpyGrid(7, 6));
    return meshes;
  }();
  return all;
}

Pieces ofAFamily(RandomSource& random) {
  return piecesOf(random.anyOf(families()), {1, 1, 1}, 0);
}

/// Flat in one direction, long in another, far away.
Pieces stretched(RandomSource& random) {
  static const std::vector<double> factors = {1, 1e-3, 1e3, 1e10, 1e30, 1e-30, 1e-40, 3e38, 0, -1};
  static const std::vector<double> shifts = {0, 0, 1e3, 1e7, -1e30};
  const auto factor = [&] { return random.anyOf(factors); };
  const double all = factor();
  const bool evenly = random.oneIn(2);
  return piecesOf(random.anyOf(families()),
                  evenly ? std::array{all, all, all} : std::array{all, factor(), factor()},
                  random.anyOf(shifts));
}

Pieces twisted(RandomSource& random) {
  return piecesOf(test::moebiusBand(3 + random.below(30)), {1, 1, 1}, 0);
}

/// Every coordinate above the one before, on one axis or on all: the box is not found then.
Pieces rising(RandomSource& random) {
  const int n = 4 + random.below(30);
  const bool everywhere = random.oneIn(2);
  Pieces pieces;
  for (int k = 0; k < n; ++k) {
    const double other = everywhere ? k * k : random.share();
    addVertex(pieces, k, everywhere ? 2.0 * k : random.share(), other);
  }
  for (int k = 0; k + 2 < n; ++k) {
    pieces.faces.push_back(k % 2 == 0 ? std::array{k, k + 1, k + 2} : std::array{k + 1, k, k + 2});
  }
  return pieces;
}

/// Any numbers, any faces.
Pieces soup(RandomSource& random) {
  static const std::vector<std::string> numbers = {
      "0",     "1",    "-1",    "0.5", "1e30", "-1e30", "1e-30",   "1.4e-45", "-1e-40",
      largest, lowest, "1e999", "nan", "inf",  "7",     "1000000", "1e7"};
  const int n = 1 + random.below(20);
  Pieces pieces;
  for (int k = 0; k < n; ++k) {
    pieces.vertices.push_back(
        {random.anyOf(numbers), random.anyOf(numbers), random.anyOf(numbers)});
  }
  const int faces = random.below(40);
  for (int k = 0; k < faces; ++k) {
    const auto corner = [&] { return random.oneIn(20) ? random.below(40) - 20 : random.below(n); };
    pieces.faces.push_back({corner(), corner(), corner()});
  }
  return pieces;
}

/// Many faces at one vertex or at one edge.
Pieces crowded(RandomSource& random) {
  const int n = 3 + random.below(300);
  const bool onOneEdge = random.oneIn(3);
  Pieces pieces;
  addVertex(pieces, 0, 0, 1);
  addVertex(pieces, 0, 0, -1);
  for (int k = 0; k < n; ++k) {
    const double turn = 2.0 * std::numbers::pi * k / n;
    addVertex(pieces, std::cos(turn), std::sin(turn), 0.1 * random.share());
    pieces.faces.push_back(onOneEdge ? std::array{0, 1, k + 2}
                                     : std::array{0, k + 2, (k + 1) % n + 2});
  }
  return pieces;
}

MeshText written(const Pieces& pieces, const std::string& extension) {
  std::ostringstream text;
  text << pieces.vertices.size() << ' ' << pieces.faces.size() << '\n';
  for (const auto& v : pieces.vertices) text << v[0] << ' ' << v[1] << ' ' << v[2] << '\n';
  for (const auto& f : pieces.faces) {
    text << "3 " << f[0] << ' ' << f[1] << ' ' << f[2] << '\n';
  }
  return {extension, text.str()};
}

bool contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

}  // namespace

std::string anyText(RandomSource& random, const NamedField& named) {
  static const std::vector<std::string> counts = {
      "0", "1", "1", "2", "3", "5", "-1", "-2147483648", "", "2147483648", "1e2", "x"};
  static const std::vector<std::string> seeds = {"0",       "1",  "7", "40",         "200",
                                                 "1000001", "-1", "",  "4294967295", "x"};
  static const std::vector<std::string> numbers = {
      "0",          "-0",          "1",      "-1",       "2",       "0.5",   "0.1",   "-0.25",
      "0.001",      "10",          "90",     "165",      "179.999", "180",   "360",   "1e30",
      "-1e30",      "1e-30",       "-1e-30", largest,    lowest,    "1e-45", "1e-40", "1.17549e-38",
      "2147483647", "-2147483648", "65536",  "16777217", "nan",     "inf",   "",      "abc",
      "1e400",      "2147483648",  " 3 "};
  // The median ends with one whole chunk more, so its size is a count of iterations, too.
  const bool isChunk = named.dialog == "CAdaptiveSmoothingDlg" && named.field == "animateEvery";
  // The one count of iterations with a range, which refuses this.
  if (named.field == "iterationCount" && random.oneIn(10)) return "2147483647";
  if (isChunk || contains(named.field, "teration")) return random.anyOf(counts);
  if (contains(named.field, "seed")) return random.anyOf(seeds);
  return random.anyOf(numbers);
}

MeshText anyMeshText(RandomSource& random) {
  static const std::vector<std::function<Pieces(RandomSource&)>> kinds = {
      ofAFamily, ofAFamily, ofAFamily, stretched, twisted, rising, soup, crowded};
  static const std::vector<std::string> extensions = {"ply2", "ply2", "ply2", "plyR",
                                                      "ply",  "data", "obj"};
  MeshText mesh = written(random.anyOf(kinds)(random), random.anyOf(extensions));
  if (random.oneIn(15) && !mesh.text.empty()) {
    mesh.text.resize(toIndex(random.below(static_cast<int>(mesh.text.size()))));
  }
  return mesh;
}

}  // namespace gravlin::endurance
