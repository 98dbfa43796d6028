#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "support/DocumentAccess.h"
#include "support/DocumentInvariants.h"
#include "support/Meshes.h"
#include "support/ScriptedOutside.h"

namespace gravlin {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(DocumentInvariants, AreMissedWhereTheyAreBroken) {
  using Damage = std::function<void(CGravlinDoc&)>;
  const std::vector<std::pair<std::string, Damage>> damages = {
      {"face 0 repeats a corner", [](auto& d) { test::meshOf(d).faces[1] = d.mesh()->faces[0]; }},
      {"the current mesh has no topology", [](auto& d) { test::meshOf(d).dropDerived(); }},
      {"creaseLinks does not lead both ways between vertex 0 and vertex 1",
       [](auto& d) {
         d.creaseLinks.resize(9);
         d.creaseLinks[0].append(1);
       }},
      {"it is known where lines come from that are not there",
       [](auto& d) { d.linesFrom = CGravlinDoc::LinesFrom::LocalMax; }},
      {"vertices is not float[3V]", [](auto& d) { d.undoMesh->vertices.pop_back(); }},
      {"the undo copy is more than geometry", [](auto& d) { d.undoMesh->computeFaceNormals(); }}};
  for (const auto& [words, damage] : damages) {
    test::ScriptedOutside outside;
    CGravlinDoc document(outside);
    test::setMesh(document, test::grid(2, 2));
    document.keepUndoCopy();
    ASSERT_THAT(test::brokenInvariants(document), IsEmpty());
    damage(document);
    EXPECT_THAT(test::brokenInvariants(document), ElementsAre(words));
  }
}

TEST(DocumentInvariants, HoldWithoutAMesh) {
  test::ScriptedOutside outside;
  const CGravlinDoc document(outside);
  EXPECT_THAT(test::brokenInvariants(document), IsEmpty());
}

}  // namespace
}  // namespace gravlin
