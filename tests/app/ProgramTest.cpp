// The shipped program as it is started from a shell.

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

namespace gravlin {
namespace {

class ProgramTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void helpAndVersionNeedNoDisplay_data();
  void helpAndVersionNeedNoDisplay();
  void anAnswerThatCannotBeWrittenIsAFailure();
  void withoutADisplayItSaysHowToGetPictures_data();
  void withoutADisplayItSaysHowToGetPictures();
  void aSenselessCommandLineIsComplainedAbout();
  void aFileAndSettingsOfTheCommandLineAreUsed();
};

struct Ending {
  int exitCode;
  QByteArray output;
  QByteArray error;
};

QProcessEnvironment withoutDisplay() {
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
    environment.remove(name);
  }
  return environment;
}

Ending run(const QStringList& arguments, const QProcessEnvironment& environment) {
  QProcess process;
  process.setProcessEnvironment(environment);
  process.start(GRAVLIN_PROGRAM, arguments);
  if (!process.waitForFinished()) qFatal("the program does not end");
  if (process.exitStatus() != QProcess::NormalExit) qFatal("the program crashed");
  return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

void ProgramTest::helpAndVersionNeedNoDisplay_data() {
  QTest::addColumn<QString>("option");
  QTest::addColumn<QByteArray>("expected");
  QTest::newRow("--help") << "--help" << QByteArray("--settings");
  QTest::newRow("-h") << "-h" << QByteArray("FILE");
  QTest::newRow("--version") << "--version" << QByteArray("gravlin " GRAVLIN_VERSION "\n");
}

void ProgramTest::helpAndVersionNeedNoDisplay() {
  QFETCH(QString, option);
  QFETCH(QByteArray, expected);
  const Ending ending = run({option}, withoutDisplay());
  QCOMPARE(ending.exitCode, 0);
  QVERIFY2(ending.output.contains(expected), ending.output);
  QVERIFY2(ending.error.isEmpty(), ending.error);
}

void ProgramTest::anAnswerThatCannotBeWrittenIsAFailure() {
  for (const char* option : {"--help", "--version"}) {
    QProcess process;
    process.setStandardOutputFile("/dev/full");
    process.start(GRAVLIN_PROGRAM, {option});
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 1);
    QCOMPARE(process.readAllStandardError(),
             QByteArray("gravlin: Standard output could not be written.\n"));
  }
}

void ProgramTest::withoutADisplayItSaysHowToGetPictures_data() {
  QTest::addColumn<QString>("display");
  QTest::newRow("none") << QString();
  QTest::newRow("out of reach") << ":4711";
}

void ProgramTest::withoutADisplayItSaysHowToGetPictures() {
  QFETCH(QString, display);
  QProcessEnvironment environment = withoutDisplay();
  if (!display.isEmpty()) environment.insert("DISPLAY", display);
  const Ending ending = run({"mesh.ply2"}, environment);
  QCOMPARE(ending.exitCode, 1);
  QCOMPARE(ending.error.count('\n'), 1);
  QVERIFY2(ending.error.contains("no display"), ending.error);
  QVERIFY2(ending.error.contains("gravlin-batch"), ending.error);
}

void ProgramTest::aSenselessCommandLineIsComplainedAbout() {
  const Ending ending = run({"--colour", "red"}, QProcessEnvironment::systemEnvironment());
  QCOMPARE(ending.exitCode, 2);
  QVERIFY2(ending.error.contains("--colour"), ending.error);
  const Ending escaped = run({"--col\x1b"}, QProcessEnvironment::systemEnvironment());
  QCOMPARE(escaped.exitCode, 2);
  QVERIFY2(escaped.error.contains("--col\\x1b"), escaped.error);
}

void ProgramTest::aFileAndSettingsOfTheCommandLineAreUsed() {
  const QTemporaryDir folder;
  QFile mesh(folder.filePath("point.data"));
  QVERIFY(mesh.open(QIODevice::WriteOnly));
  mesh.write("1 0 0 0\n");
  mesh.close();
  const QString settings = folder.filePath("settings.ini");
  QProcess process;
  process.setWorkingDirectory(folder.path());
  process.start(GRAVLIN_PROGRAM, {"--settings", settings, "point.data"});
  QVERIFY(process.waitForStarted());
  const auto lastFile = [&] {
    return QSettings(settings, QSettings::IniFormat).value("Recent File List/File1").toString();
  };
  QTRY_COMPARE_WITH_TIMEOUT(lastFile(), mesh.fileName(), 30000);
  QCOMPARE(process.state(), QProcess::Running);
  process.terminate();
  QVERIFY(process.waitForFinished());
  // The user's own settings stay as they were.
  QVERIFY(QDir(qEnvironmentVariable("XDG_CONFIG_HOME")).entryList({"*AppWizard*"}).isEmpty());
}

}  // namespace
}  // namespace gravlin

QTEST_GUILESS_MAIN(gravlin::ProgramTest)
#include "ProgramTest.moc"
