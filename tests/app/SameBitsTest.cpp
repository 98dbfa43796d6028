// The window and gravlin-batch come to the same bits: every chain is clicked and typed in the
// window, with its dialogs, and run by the shipped program, and all that a dump tells is compared.

#include <deque>
#include <QApplication>
#include <QProcess>

#include "app/Controls.h"
#include "app/Program.h"
#include "batch/Dump.h"
#include "view/windows/GraphWindow.h"

namespace gravlin {
namespace {

using namespace test;

/// A dialog by its name and what is entered there, fields by name.
struct Entry {
  const char* dialog;
  std::vector<std::pair<const char*, const char*>> values = {};
};

/// A menu item and the dialogs that come of it; the values of the first are its options in a
/// script, where the others are confirmed as they are.
struct Click {
  const char* step;
  std::vector<Entry> dialogs = {};
};

class SameBitsTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void aWindowAndTheBatchProgramDumpTheSame_data();
  void aWindowAndTheBatchProgramDumpTheSame();
};

bool isSwitch(const QWidget& control) {
  return qobject_cast<const QCheckBox*>(&control) != nullptr;
}

/// Chooses the item and answers its dialogs. The words that a script has for the same.
QStringList clickThrough(Program& program, const Click& click) {
  QStringList words = {click.step};
  std::deque<NextDialog> dialogs;
  for (const Entry& entry : click.dialogs) {
    dialogs.emplace_back(entry.dialog, [&](QDialog& dialog) {
      for (const auto& [name, value] : entry.values) {
        const QString option = QString::fromStdString(kebabCase(name));
        if (isSwitch(control<QWidget>(dialog, name))) {
          words << (QString(value) == "1" ? "--" : "--no-") + option;
        } else {
          words << "--" + option << value;
        }
        enter(dialog, name, value);
      }
      test::click(dialog, "ok");
    });
  }
  program.step(click.step).trigger();
  for (const NextDialog& dialog : dialogs) {
    if (!dialog.answered()) qFatal("a dialog of %s did not come", click.step);
  }
  return words;
}

/// All that a dump tells of the window's document.
QByteArray dumpOf(Program& program) {
  Histogram histogram;
  for (const QWidget* window : QApplication::topLevelWidgets()) {
    if (const auto* graph = qobject_cast<const GraphWindow*>(window))
      histogram = graph->histogram();
  }
  char* text = nullptr;
  std::size_t size = 0;
  std::FILE* stream = open_memstream(&text, &size);
  dump({program.document(), program.view().state, histogram}, {}, stream);
  std::fclose(stream);
  QByteArray bytes(text, static_cast<qsizetype>(size));
  std::free(text);
  return bytes;
}

QByteArray dumpOfBatch(const QStringList& words) {
  QProcess batch;
  batch.start(GRAVLIN_BATCH_PROGRAM, words);
  if (!batch.waitForFinished(-1) || batch.exitCode() != 0) {
    qFatal("%s: %s", qPrintable(words.join(' ')), batch.readAllStandardError().constData());
  }
  return batch.readAllStandardOutput();
}

/// Chains by what they show.
const std::vector<std::pair<const char*, std::vector<Click>>> chains = [] {
  const Entry tensor = {"CTensorSmoothDlg"};
  const Click creases = {"face-angle", {{"CAngleDlg", {{"thresholdMode", "0"}, {"angle", "150"}}}}};
  const Click edges = {"local-max",
                       {{"CRidgeDlg",
                         {{"extractOn", "1"},
                          {"connectThreshold", "100000"},
                          {"smoothRidgeEdges", "1"},
                          {"ridgeSmoothIterations", "3"}}},
                        tensor}};
  const Click implicitFlow = {"smooth-shape",
                              {{"CSmoothingDlg",
                                {{"method", "Mean Curvature Flow (Desbrun, implicit)"},
                                 {"iterationCount", "2"},
                                 {"animate", "0"}}}}};
  return std::vector<std::pair<const char*, std::vector<Click>>>{
      {"ridge vertices of a shape smoothed before",
       {{"local-max",
         {{"CRidgeDlg", {{"preSmoothing", "1"}, {"thresholdMode", "0"}}},
          {"CSmoothingDlg"},
          tensor}}}},
      {"ridge lines, joined and smoothed", {edges}},
      {"creases by angle", {creases}},
      {"creases by their share of a noisy shape, smoothed for it",
       {{"noise", {{"CNoiseDlg", {{"noiseSize", "0.3"}}}}},
        {"face-angle",
         {{"CAngleDlg", {{"thresholdMode", "1"}, {"preSmoothing", "1"}}},
          {"CAdaptiveSmoothingDlg"}}}}},
      {"a pen drawing", {{"silhouette"}}},
      {"refined twice, with creases found again",
       {{"simplification", {{"CDecimationDlg", {{"reductionRate", "0.95"}}}}},
        creases,
        {"subdivision", {{"CSubdivisionDlg", {{"method", "Loop"}}}}},
        {"subdivision", {{"CSubdivisionDlg", {{"method", "Modified butterfly"}}}}}}},
      {"simplified, then smoothed, then undone",
       {{"simplification", {{"CDecimationDlg", {{"reductionRate", "0.7"}}}}},
        implicitFlow,
        {"curvature-gauss"},
        {"undo"}}},
      {"errors of a smoothed shape",
       {{"smooth-shape", {{"CSmoothingDlg", {{"preserveVolume", "0"}}}}},
        {"show-vertex-error"},
        {"show-face-error"}}},
      {"strokes, curvature and lines of one shape",
       {{"stroke-max", {{"CSeedDlg", {{"seedAmount", "40"}}}}}, {"edge-curvature"}, edges}},
      {"lights, widths and angles of the view",
       {{"lighting-red"},
        {"visualization", {{"CVisualizationDlg", {{"lineWidth", "2.5"}, {"pointSize", "7"}}}}},
        {"view-direction", {{"CViewAngleDlg", {{"rx", "30"}, {"rz", "-12.5"}}}}},
        {"curvature-total"}}}};
}();

void SameBitsTest::aWindowAndTheBatchProgramDumpTheSame_data() {
  QTest::addColumn<std::size_t>("number");
  for (std::size_t k = 0; k < chains.size(); ++k) QTest::newRow(chains[k].first) << k;
}

void SameBitsTest::aWindowAndTheBatchProgramDumpTheSame() {
  QFETCH(std::size_t, number);
  const QString path = GRAVLIN_SOURCE_DIR "/examples/gourd.ply2";
  Program program;
  program.frame().openFile(path);
  QStringList words = {"open", path};
  for (const Click& click : chains[number].second) words << clickThrough(program, click);
  words << "dump"
        << "-";
  const QByteArray window = dumpOf(program);
  QVERIFY(window.size() > 10000);
  QVERIFY2(dumpOfBatch(words) == window, qPrintable(words.join(' ')));
}

}  // namespace
}  // namespace gravlin

int main(int argc, char** argv) {
  return gravlin::test::runGuiTest<gravlin::SameBitsTest>(argc, argv);
}

#include "SameBitsTest.moc"
