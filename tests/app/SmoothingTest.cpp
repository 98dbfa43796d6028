// The smoothing commands as a user gives them: menu, dialog, pictures, undo.

#include "app/Controls.h"
#include "app/Program.h"

namespace gravlin {
namespace {

using namespace test;

class SmoothingTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void smoothingRunsWithWhatIsTypedAndIsUndone();
  void noiseAndAdaptiveSmoothingRunFromTheirDialogs();
  void everyDialogRemembersAllItsValues();
  void cancelChangesNothing();
  void withoutAMeshNoDialogComes();
  void aTypedMethodThatThereIsNotMovesNothingAndCanBeUndone();
  void valuesOutOfRangeAreRefused();
  void noiseOfAnyFiniteSizeIsAccepted();
  void anAnimatedFlowIsDrawnAfterEveryChunkAndOnceMoreAtTheEnd();
  void anAnimatedImplicitFlowIsDrawnAfterEveryStep();
  void anAnimatedAdaptiveSmoothingIsDrawnAfterEveryChunkAndOnceMoreAtTheEnd();
};

/// Names of controls and what they hold, as scripts write it.
using Texts = std::vector<std::pair<const char*, QString>>;

/// A command and, for every field of its dialog, a value that the field does not have at first.
struct SmoothingDialog {
  const char* step;
  const char* name;
  Texts texts;
};

const std::vector<SmoothingDialog> smoothingDialogs = {
    {"smooth-shape",
     "CSmoothingDlg",
     {{"method", "Bilaplacian (Kobbelt)"},
      {"iterationCount", "2"},
      {"stepSize", "0.25"},
      {"animate", "0"},
      {"animateEvery", "3"},
      {"preserveVolume", "0"}}},
    {"smooth-adaptive",
     "CAdaptiveSmoothingDlg",
     {{"outerIterations", "2"},
      {"threshold", "2.5"},
      {"meetAtVertex", "0.25"},
      {"animate", "0"},
      {"animateEvery", "3"},
      {"integrationError", "0"},
      {"integrationIterations", "4"},
      {"integrationStep", "0.125"},
      {"derivativeVariant", "5"},
      {"averagingIterations", "6"},
      {"weightShape", "0"},
      {"medianWeighted", "0"},
      {"averagingKind", "0"},
      {"normalDifference", "0"}}},
    {"noise", "CNoiseDlg", {{"noiseSize", "0.25"}}}};

Texts textsIn(QDialog& dialog, const Texts& fields) {
  Texts texts;
  for (const auto& [name, text] : fields) texts.emplace_back(name, textIn(dialog, name));
  return texts;
}

/// An answer that enters the texts and closes the dialog by the button, or without it when OK is
/// refused.
auto enterAll(const Texts& texts, const char* button = "ok") {
  return [texts, button](QDialog& dialog) {
    for (const auto& [name, text] : texts) enter(dialog, name, text);
    const NextDialog refusal("refusal", [](QDialog& box) { box.accept(); });
    click(dialog, button);
    if (dialog.isVisible()) dialog.reject();
  };
}

/// Chooses the command and answers its dialog. False when the dialog did not come.
bool run(Program& program, const SmoothingDialog& command,
         const std::function<void(QDialog&)>& answer) {
  NextDialog dialog(command.name, answer);
  program.step(command.step).trigger();
  return dialog.answered();
}

/// Runs the command with these values and the others as they are.
bool run(Program& program, const SmoothingDialog& command, const Texts& texts) {
  return run(program, command, enterAll(texts));
}

const SmoothingDialog& shape = smoothingDialogs[0];
const SmoothingDialog& adaptive = smoothingDialogs[1];
const SmoothingDialog& noise = smoothingDialogs[2];

void SmoothingTest::smoothingRunsWithWhatIsTypedAndIsUndone() {
  Program program;
  openGourd(program);
  const auto before = program.document().mesh()->vertices;
  QVERIFY(run(program, shape,
              {{"method", "Taubin Smoothing (k=0.1)"}, {"iterationCount", "3"}, {"animate", "0"}}));
  QVERIFY(program.document().mesh()->vertices != before);
  program.step("undo").trigger();
  QVERIFY(program.document().mesh()->vertices == before);
}

void SmoothingTest::noiseAndAdaptiveSmoothingRunFromTheirDialogs() {
  Program program;
  openGourd(program);
  const auto smooth = program.document().mesh()->vertices;
  QVERIFY(run(program, noise, {{"noiseSize", "0.1"}}));
  const auto noisy = program.document().mesh()->vertices;
  QVERIFY(noisy != smooth);
  QVERIFY(run(program, adaptive, {{"outerIterations", "1"}}));
  QVERIFY(program.document().mesh()->vertices != noisy);
  program.step("undo").trigger();
  QVERIFY(program.document().mesh()->vertices == noisy);
}

// --- What the dialogs keep, and what they leave alone ---

void SmoothingTest::everyDialogRemembersAllItsValues() {
  for (const SmoothingDialog& command : smoothingDialogs) {
    Program program;
    program.open("t.ply2", tetrahedronText);
    Texts first;
    Texts second;
    QVERIFY2(run(program, command,
                 [&](QDialog& dialog) {
                   first = textsIn(dialog, command.texts);
                   enterAll(command.texts)(dialog);
                 }),
             command.name);
    QVERIFY2(run(program, command,
                 [&](QDialog& dialog) {
                   second = textsIn(dialog, command.texts);
                   click(dialog, "cancel");
                 }),
             command.name);
    for (std::size_t i = 0; i < command.texts.size(); ++i) {
      QVERIFY2(first[i].second != command.texts[i].second, command.texts[i].first);
      QVERIFY2(second[i] == command.texts[i], command.texts[i].first);
    }
  }
}

void SmoothingTest::cancelChangesNothing() {
  for (const SmoothingDialog& command : smoothingDialogs) {
    Program program;
    program.open("t.ply2", tetrahedronText);
    const CGravlinDoc& document = program.document();
    const auto vertices = document.mesh()->vertices;
    const auto revision = document.revision;
    const int mode = document.displayMode;
    Texts first;
    Texts second;
    QVERIFY2(run(program, command,
                 [&](QDialog& dialog) {
                   first = textsIn(dialog, command.texts);
                   enterAll(command.texts, "cancel")(dialog);
                 }),
             command.name);
    QVERIFY(document.mesh()->vertices == vertices);
    QCOMPARE(document.revision, revision);
    QCOMPARE(document.displayMode, mode);
    QVERIFY(!document.modified && !program.frame().activeFrame()->isWindowModified());
    QVERIFY(!document.undoMesh && !program.step("undo").isEnabled());
    QVERIFY2(run(program, command,
                 [&](QDialog& dialog) {
                   second = textsIn(dialog, command.texts);
                   click(dialog, "cancel");
                 }),
             command.name);
    QVERIFY2(second == first, command.name);
  }
}

void SmoothingTest::withoutAMeshNoDialogComes() {
  Program program;
  const auto revision = program.document().revision;
  for (const SmoothingDialog& command : smoothingDialogs) {
    QVERIFY(program.step(command.step).isEnabled());
    QVERIFY2(!run(program, command, pressOk), command.name);
  }
  QCOMPARE(program.document().revision, revision);
  QVERIFY(!program.document().modified && !program.document().undoMesh);
}

void SmoothingTest::aTypedMethodThatThereIsNotMovesNothingAndCanBeUndone() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  const CGravlinDoc& document = program.document();
  const auto before = document.mesh()->vertices;
  QVERIFY(run(program, noise, pressOk));
  const auto noisy = document.mesh()->vertices;
  const auto revision = document.revision;
  QVERIFY(run(program, shape, {{"method", "laplacian flow"}}));
  QCOMPARE(document.smoothingParameters.method, std::string("laplacian flow"));
  QVERIFY(document.mesh()->vertices == noisy);
  QCOMPARE(document.revision, revision + 1);
  // What the noise left for undo has been replaced.
  program.step("undo").trigger();
  QVERIFY(document.mesh()->vertices == noisy);
  QVERIFY(noisy != before && !program.step("undo").isEnabled());
}

/// The sentence by which OK is refused while the field holds the text.
QString refusalOf(QDialog& dialog, const char* field, const QString& text) {
  enter(dialog, field, text);
  QString sentence;
  NextDialog refusal("refusal", [&](QDialog& box) {
    sentence = qobject_cast<QMessageBox*>(&box)->text();
    press(box, QMessageBox::Ok);
  });
  click(dialog, "ok");
  return refusal.answered() && dialog.isVisible() ? sentence : QString();
}

void SmoothingTest::valuesOutOfRangeAreRefused() {
  struct Case {
    const SmoothingDialog& command;
    const char* field;
    QStringList texts;
    QString sentence;
  };
  const QString count = "Enter an integer between 1 and 10000.";
  const QString share = "Enter a number between 0 and 1.";
  for (const Case& c : {Case{shape, "iterationCount", {"0", "-1", "10001"}, count},
                        Case{adaptive, "meetAtVertex", {"-0.01", "1.01"}, share},
                        Case{adaptive, "integrationStep", {"-0.01", "1.01"}, share}}) {
    Program program;
    program.open("t.ply2", tetrahedronText);
    const auto revision = program.document().revision;
    QStringList sentences;
    QVERIFY(run(program, c.command, [&](QDialog& dialog) {
      for (const QString& text : c.texts) sentences.append(refusalOf(dialog, c.field, text));
      if (dialog.isVisible()) click(dialog, "cancel");
    }));
    QCOMPARE(sentences, QStringList(c.texts.size(), c.sentence));
    QCOMPARE(program.document().revision, revision);
  }
}

void SmoothingTest::noiseOfAnyFiniteSizeIsAccepted() {
  for (const float size : {-0.25F, -1e20F, 1e20F}) {
    Program program;
    program.open("t.ply2", tetrahedronText);
    const auto before = program.document().mesh()->vertices;
    QVERIFY(run(program, noise, {{"noiseSize", QString::number(size)}}));
    QCOMPARE(program.document().noiseParameters.noiseSize, size);
    QVERIFY(program.document().mesh()->vertices != before);
  }
}

// --- Animation ---

/// The pictures that a view shows while a progress dialog stands, each different one once.
class Film : public QObject {
 public:
  Film(QWidget& progressDialog, CGravlinView& shownView)
      : progress(progressDialog), view(shownView) {
    progress.installEventFilter(this);
  }

  std::vector<QImage> pictures;

  bool eventFilter(QObject* /*dialog*/, QEvent* event) override {
    if (event->type() == QEvent::Show) wait();
    if (event->type() == QEvent::Hide) expose();
    return false;
  }

 private:
  void expose() {
    QImage picture = view.grabFramebuffer();
    if (pictures.empty() || picture != pictures.back()) pictures.push_back(std::move(picture));
  }

  /// Events are processed at the start and at every step of the bar, which comes before a redraw.
  void wait() {
    const auto exposeAndWait = [this] {
      if (!progress.isVisible()) return;
      expose();
      wait();
    };
    QMetaObject::invokeMethod(this, exposeAndWait, Qt::QueuedConnection);
  }

  QWidget& progress;
  CGravlinView& view;
};

/// The pictures of an animated command, from the one before it to the one behind it.
std::vector<QImage> animation(Program& program, const SmoothingDialog& command, Texts texts) {
  auto& progress = control<QDialog>(program.frame(), "CProgressDlg");
  Film film(progress, program.view());
  texts.emplace_back("animate", "1");
  if (!run(program, command, texts) || progress.isVisible()) return {};
  const QImage last = program.view().grabFramebuffer();
  if (film.pictures.empty() || film.pictures.back() != last) film.pictures.push_back(last);
  return film.pictures;
}

/// Undoes a command and gives the picture that it would have come to at once and with the texts.
QImage pictureAfter(Program& program, const SmoothingDialog& command, Texts texts) {
  program.step("undo").trigger();
  texts.emplace_back("animate", "0");
  return run(program, command, texts) ? program.view().grabFramebuffer() : QImage();
}

void SmoothingTest::anAnimatedFlowIsDrawnAfterEveryChunkAndOnceMoreAtTheEnd() {
  Program program;
  openGourd(program);
  std::vector<QImage> expected = {program.view().grabFramebuffer()};
  const auto revision = program.document().revision;
  const std::vector<QImage> pictures = animation(
      program, shape, {{"iterationCount", "10"}, {"animateEvery", "3"}, {"preserveVolume", "0"}});
  QCOMPARE(program.document().revision, revision + 4);  // none between the last two iterations
  for (const char* count : {"3", "6", "9", "10"}) {
    expected.push_back(pictureAfter(program, shape, {{"iterationCount", count}}));
  }
  QCOMPARE(pictures.size(), expected.size());
  QVERIFY(pictures == expected);
}

void SmoothingTest::anAnimatedImplicitFlowIsDrawnAfterEveryStep() {
  for (const char* method :
       {"Laplacian Flow (implicit)", "Mean Curvature Flow (Desbrun, implicit)"}) {
    Program program;
    openGourd(program);
    std::vector<QImage> expected = {program.view().grabFramebuffer()};
    const auto revision = program.document().revision;
    const std::vector<QImage> pictures = animation(program, shape,
                                                   {{"method", method},
                                                    {"iterationCount", "4"},
                                                    {"animateEvery", "3"},
                                                    {"preserveVolume", "0"}});
    QCOMPARE(program.document().revision, revision + 5);  // the last picture comes twice
    for (const char* count : {"1", "2", "3", "4"}) {
      expected.push_back(pictureAfter(program, shape, {{"iterationCount", count}}));
    }
    QCOMPARE(pictures.size(), expected.size());
    QVERIFY2(pictures == expected, method);
  }
}

void SmoothingTest::anAnimatedAdaptiveSmoothingIsDrawnAfterEveryChunkAndOnceMoreAtTheEnd() {
  struct Case {
    const char* kind;
    const char* count;
    std::vector<const char*> countsAtOnce;
  };
  // Up to nine iterations at once are chunks of one, and the median has one chunk more than chosen.
  for (const Case& c : {Case{"0", "7", {"3", "6", "7"}}, Case{"1", "7", {"2", "5", "8"}}}) {
    Program program;
    openGourd(program);
    std::vector<QImage> expected = {program.view().grabFramebuffer()};
    const auto revision = program.document().revision;
    const std::vector<QImage> pictures =
        animation(program, adaptive,
                  {{"averagingKind", c.kind}, {"outerIterations", c.count}, {"animateEvery", "3"}});
    QCOMPARE(program.document().revision, revision + 3);
    for (const char* count : c.countsAtOnce) {
      expected.push_back(pictureAfter(program, adaptive, {{"outerIterations", count}}));
    }
    QCOMPARE(pictures.size(), expected.size());
    QVERIFY2(pictures == expected, c.kind);
  }
}

}  // namespace
}  // namespace gravlin

int main(int argc, char** argv) {
  return gravlin::test::runGuiTest<gravlin::SmoothingTest>(argc, argv);
}

#include "SmoothingTest.moc"
