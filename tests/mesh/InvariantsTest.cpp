#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "support/Invariants.h"
#include "support/Meshes.h"

namespace gravlin {
namespace {

using test::brokenInvariants;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(Invariants, HoldOnEveryFamily) {
  for (const auto& family : {test::closedMeshes(), test::openMeshes(), test::hostileMeshes()}) {
    for (const test::NamedMesh& named : family) {
      EXPECT_THAT(brokenInvariants(named.mesh), IsEmpty()) << named.name;
    }
  }
  EXPECT_THAT(brokenInvariants(test::touchingOctahedra()), IsEmpty());
  EXPECT_THAT(brokenInvariants(TriangleMesh()), IsEmpty());
}

TEST(Invariants, EveryOneIsMissedWhereItIsBroken) {
  using Damage = std::function<void(TriangleMesh&)>;
  // A grid of 2 x 2 squares: vertex 4 is inside, all others are on the boundary.
  const std::vector<std::pair<std::string, Damage>> damages = {
      {"vertices is not float[3V]", [](auto& m) { m.vertices.pop_back(); }},
      {"faces is not int[3F]", [](auto& m) { m.faces.push_back(0); }},
      {"face 0 is out of range", [](auto& m) { m.faces[2] = 9; }},
      {"face 0 repeats a corner", [](auto& m) { m.faces[1] = m.faces[0]; }},
      {"face 1 is invalid in one corner only", [](auto& m) { m.faces[3] = -1; }},
      {"vertexNeighbours has not one row for each index",
       [](auto& m) { m.vertexNeighbours.offsets.pop_back(); }},
      {"vertexFaces does not end with its items", [](auto& m) { m.vertexFaces.items.pop_back(); }},
      {"vertex 4 is not of the kind that its faces make", [](auto& m) { m.vertexKind[4] = 1; }},
      {"vertex 4 has a ring that does not turn as its faces do",
       [](auto& m) {
         int* ring = m.vertexNeighbours.items.data() + m.vertexNeighbours.offsets[4];
         std::swap(ring[0], ring[1]);
       }},
      {"vertex 4 has a ring that does not turn as its faces do",
       [](auto& m) {
         int* faces = m.vertexFaces.items.data() + m.vertexFaces.offsets[4];
         std::swap(faces[0], faces[1]);
       }},
      {"vertex 4 has a face twice in its ring",
       [](auto& m) {
         int* faces = m.vertexFaces.items.data() + m.vertexFaces.offsets[4];
         faces[0] = faces[1];
       }},
      {"face 2 has the wrong face across an edge", [](auto& m) { m.faceAdjacency[6] = 7; }},
      {"faceNormals holds a vector that is neither 0 nor of unit length",
       [](auto& m) { m.faceNormals[2] = 0.5F; }},
      {"vertexNormals has not three numbers for each index",
       [](auto& m) { m.vertexNormals.pop_back(); }},
      {"maxDirection has the wrong extent", [](auto& m) { m.maxDirection.resize(9); }},
      {"no such face is picked", [](auto& m) { m.pickedFace = 8; }},
      {"ridgeMarks holds something else than 0 and 1",
       [](auto& m) {
         m.ridgeMarks.assign(9, 0);
         m.valleyMarks.assign(9, 0);
         m.ridgeMarks[3] = 2;
       }},
      {"valleyLinks does not lead both ways between vertex 2 and vertex 5",
       [](auto& m) {
         m.ridgeLinks.resize(9);
         m.valleyLinks.resize(9);
         m.valleyLinks[5].append(2);
       }},
      {"ridgeLinks leads to no vertex",
       [](auto& m) {
         m.valleyLinks.resize(9);
         m.ridgeLinks.resize(9);
         m.ridgeLinks[5].append(9);
       }},
      {"ridgeLinks leaves the edges",
       [](auto& m) {
         m.ridgeLinks.resize(9);
         m.valleyLinks.resize(9);
         m.ridgeLinks[0].append(8);
         m.ridgeLinks[8].append(0);
       }},
      {"only one kind of link is there", [](auto& m) { m.ridgeLinks.resize(9); }},
      {"only one kind of mark is there", [](auto& m) { m.valleyMarks.resize(9); }},
      {"only one gradient is there", [](auto& m) { m.maxDerivativeGradient.resize(27); }},
      {"only a part of the curvature is there",
       [](auto& m) {
         m.maxCurvature.resize(9);
         m.minCurvature.resize(9);
       }},
      {"the principal directions of a vertex are neither 0 nor is the longer one of unit length",
       [](auto& m) {
         m.maxCurvature.resize(9);
         m.minCurvature.resize(9);
         m.maxDirection.resize(27);
         m.minDirection.resize(27);
         m.minDirection[4] = 0.9;
       }},
      {"only one kind of ring is built", [](auto& m) { m.vertexNeighbours.clear(); }},
      {"there are kinds without rings",
       [](auto& m) {
         m.vertexFaces.clear();
         m.vertexNeighbours.clear();
         m.faceAdjacency.clear();
       }},
      {"a corner neighbour is no other face",
       [](auto& m) {
         m.cornerNeighbourFaces = {{0, 1, 1, 1, 1, 1, 1, 1, 1}, {0}};
       }},
      {"corner neighbours do not meet",
       [](auto& m) {
         m.cornerNeighbourFaces = {{0, 1, 1, 1, 1, 1, 1, 1, 1}, {5}};
       }},
      {"corner neighbours share an edge",
       [](auto& m) {
         m.cornerNeighbourFaces = {{0, 1, 1, 1, 1, 1, 1, 1, 1}, {1}};
       }},
      {"there is not one stroke of each kind for every seed",
       [](auto& m) {
         m.strokes.strokeSeeds.push_back({0, 0.2, 0.2});
       }},
      {"a stroke runs over a face that is not there", [](auto& m) {
         m.strokes.strokeSeeds.push_back({0, 0.2, 0.2});
         m.strokes.maxStrokes.push_back({{8, 0.2, 0.2}});
         m.strokes.minStrokes.push_back({{0, 0.2, 0.2}});
       }}};
  for (const auto& [words, damage] : damages) {
    TriangleMesh mesh = test::grid(2, 2);
    damage(mesh);
    EXPECT_THAT(brokenInvariants(mesh), ElementsAre(words));
  }
}

}  // namespace
}  // namespace gravlin
