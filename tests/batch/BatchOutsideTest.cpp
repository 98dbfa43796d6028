#include <cstdlib>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <unistd.h>

#include "batch/BatchOutside.h"
#include "support/DocumentAccess.h"
#include "support/Meshes.h"

namespace gravlin {
namespace {

using ::testing::HasSubstr;

/// A world whose stream for errors is caught.
class BatchWorld : public ::testing::Test {
 public:
  ~BatchWorld() override {
    std::fclose(errors);
    std::free(text);
  }

 protected:
  std::string said() {
    std::fflush(errors);
    return {text, size};
  }

  char* text = nullptr;
  std::size_t size = 0;
  std::FILE* errors = open_memstream(&text, &size);
  ViewState view;
  BatchOutside outside{view, errors};
  VisualizationParameters values;
};

TEST_F(BatchWorld, ClosesADialogWithTheValuesThatItRemembers) {
  values.lineWidth = 7.0F;
  EXPECT_TRUE(outside.showDialog(values.form()));
  EXPECT_EQ(values.lineWidth, 7.0F);
}

TEST_F(BatchWorld, FillsAnAnswerIntoTheNextDialogOfThatNameOnly) {
  outside.answerNext("CVisualizationDlg", {{"lineWidth", "2"}, {"grayScale", "1"}});
  ViewAngleParameters angles;
  EXPECT_TRUE(outside.showDialog(angles.form()));
  EXPECT_TRUE(outside.showDialog(values.form()));
  EXPECT_EQ(values.lineWidth, 2.0F);
  EXPECT_TRUE(values.grayScale);
  values.lineWidth = 5.0F;
  EXPECT_TRUE(outside.showDialog(values.form()));
  EXPECT_EQ(values.lineWidth, 5.0F);
}

TEST_F(BatchWorld, ForgetsAnAnswerThatNoDialogAskedFor) {
  outside.answerNext("CVisualizationDlg", {{"lineWidth", "2"}});
  outside.forgetAnswers();
  EXPECT_TRUE(outside.showDialog(values.form()));
  EXPECT_EQ(values.lineWidth, 1.0F);
}

TEST_F(BatchWorld, CancelsAsOftenAsItWasTold) {
  outside.cancelNext("CVisualizationDlg");
  outside.cancelNext("CVisualizationDlg");
  EXPECT_FALSE(outside.showDialog(values.form()));
  EXPECT_FALSE(outside.showDialog(values.form()));
  EXPECT_TRUE(outside.showDialog(values.form()));
}

TEST_F(BatchWorld, AMessageIsAFailureAndASentenceIsNot) {
  outside.showStatus("Odd.");
  outside.showStatus("");
  outside.showSuccess("Nothing odd.");
  EXPECT_FALSE(outside.failed);
  outside.showMessage("Bad.");
  EXPECT_TRUE(outside.failed);
  EXPECT_EQ(said(), "gravlin-batch: Odd.\ngravlin-batch: Bad.\n");
}

TEST_F(BatchWorld, PassesTheViewOn) {
  outside.setViewAngles({1.0F, 2.0F, 3.0F});
  EXPECT_EQ(view.camera.angleX, 1.0F);
  EXPECT_EQ(outside.viewAngles().rz, 3.0F);
  outside.setLineWidthAndPointSize(4.0F, 5.0F);
  EXPECT_EQ(view.pointSize, 5.0F);
  outside.setLightingMode(LightingMode::Green);
  EXPECT_EQ(view.lightingMode, LightingMode::Green);
  EXPECT_EQ(view.lineWidth, 1.0F) << "setting the lights up takes the widths back";
}

TEST_F(BatchWorld, DrawsLinesForTheSizeOfTheView) {
  outside.viewSize = {320, 200};
  EXPECT_EQ(outside.linesAsSvg(test::cube(), {}),
            linesAsSvg(test::cube(), {}, view.camera, {320, 200}));
  EXPECT_NE(outside.linesAsSvg(test::cube(), {}),
            linesAsSvg(test::cube(), {}, view.camera, {640, 480}));
}

TEST_F(BatchWorld, RedrawCountsTheMeshOnShow) {
  CGravlinDoc document(outside);
  outside.attach(&document);
  test::setMesh(document, test::cube());
  document.redraw();
  EXPECT_EQ(view.shownVertexCount, 8);
  EXPECT_EQ(view.shownFaceCount, 12);
  test::dropMesh(document);
  document.redraw();
  EXPECT_EQ(view.shownVertexCount, 0);
}

TEST_F(BatchWorld, DrawsNoBarIntoAFile) {
  outside.showProgress({10, 1});
  outside.stepProgress();
  outside.hideProgress();
  EXPECT_EQ(said(), "");
}

/// What the world draws on a terminal while `use` works with it.
template <class Use>
std::string drawnOnATerminal(Use use) {
  int screen = -1;
  int keyboard = -1;
  if (openpty(&screen, &keyboard, nullptr, nullptr, nullptr) != 0) return "no terminal";
  fcntl(screen, F_SETFL, O_NONBLOCK);
  std::FILE* terminal = fdopen(keyboard, "w");
  ViewState view;
  BatchOutside outside(view, terminal);
  use(outside);
  std::fflush(terminal);
  std::string drawn;
  char text[1024];
  for (ssize_t size = 0; (size = read(screen, text, sizeof text)) > 0;) {
    drawn.append(text, static_cast<std::size_t>(size));
  }
  std::fclose(terminal);
  close(screen);
  return drawn;
}

TEST(BatchProgress, DrawsABarOnATerminalAndTakesItAway) {
  const std::string drawn = drawnOnATerminal([](BatchOutside& outside) {
    outside.showProgress({4, 3});
    outside.stepProgress();
    outside.stepProgress();  // beyond the end: the bar stays full
    outside.hideProgress();
  });
  EXPECT_EQ(drawn,
            "\r[........................................]   0%"
            "\r[##############################..........]  75%"
            "\r[########################################] 100%"
            "\r" +
                std::string(47, ' ') + "\r");
}

TEST(BatchProgress, SurvivesARangeWithoutExtent) {
  const std::string drawn = drawnOnATerminal([](BatchOutside& outside) {
    for (const ProgressRange range : {ProgressRange{0, 1}, {-5, 2}, {2147483647, 2147483647}}) {
      outside.showProgress(range);
      outside.stepProgress();
      outside.stepProgress();
    }
  });
  EXPECT_THAT(drawn, HasSubstr("100%"));
}

}  // namespace
}  // namespace gravlin
