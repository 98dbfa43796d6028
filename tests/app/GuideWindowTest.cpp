#include <QDir>
#include <QListWidget>
#include <QRegularExpression>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextBrowser>

#include "app/GuideWindow.h"
#include "app/Program.h"

namespace gravlin {
namespace {

using namespace test;

class GuideWindowTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void theKeyF1OpensTheGuide();
  void everyPageIsListedByItsTitleTheIndexFirst();
  void choosingATitleShowsItsPage();
  void everyLinkLeadsToAPageThatIsThere();
  void aLinkToAHeadingScrollsToIt();
};

void GuideWindowTest::theKeyF1OpensTheGuide() {
  Program program;
  QTest::keyClick(program.frame().windowHandle(), Qt::Key_F1);
  const auto guide = [] {
    for (QWidget* window : QApplication::topLevelWidgets()) {
      if (window->objectName() == "GuideWindow" && window->isVisible()) return window;
    }
    return static_cast<QWidget*>(nullptr);
  };
  QTRY_VERIFY(guide() != nullptr);
  QVERIFY(control<QTextBrowser>(*guide(), "text").toPlainText().contains("Gravlin"));
}

void GuideWindowTest::everyPageIsListedByItsTitleTheIndexFirst() {
  GuideWindow guide;
  auto& contents = control<QListWidget>(guide, "contents");
  QCOMPARE(contents.count(), QDir(":/guide").entryList({"*.md"}).size());
  QVERIFY(contents.count() > 1);
  QVERIFY(contents.item(0)->data(Qt::UserRole).toUrl().path().endsWith("index.md"));
  QCOMPARE(contents.currentRow(), 0);
  for (int i = 0; i < contents.count(); ++i) QVERIFY(!contents.item(i)->text().isEmpty());
  QVERIFY(test::showActive(guide));
  QVERIFY(contents.viewport()->width() >= contents.sizeHintForColumn(0));
}

void GuideWindowTest::choosingATitleShowsItsPage() {
  GuideWindow guide;
  auto& contents = control<QListWidget>(guide, "contents");
  auto& text = control<QTextBrowser>(guide, "text");
  for (int i = 0; i < contents.count(); ++i) {
    contents.setCurrentRow(i);
    QCOMPARE(text.document()->begin().text(), contents.item(i)->text());
  }
}

/// The targets of all links of a page.
QStringList linksOf(const QTextDocument& document) {
  QStringList links;
  for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
    for (auto part = block.begin(); !part.atEnd(); ++part) {
      const QTextCharFormat format = part.fragment().charFormat();
      if (format.isAnchor()) links.append(format.anchorHref());
    }
  }
  return links;
}

void GuideWindowTest::everyLinkLeadsToAPageThatIsThere() {
  GuideWindow guide;
  auto& contents = control<QListWidget>(guide, "contents");
  auto& text = control<QTextBrowser>(guide, "text");
  int followed = 0;
  for (int i = 0; i < contents.count(); ++i) {
    contents.setCurrentRow(i);
    const QUrl page = text.source();
    for (const QString& link : linksOf(*text.document())) {
      if (link.startsWith("http")) continue;
      text.setSource(page.resolved(QUrl(link)));
      QVERIFY2(!text.toPlainText().isEmpty(), qPrintable(link));
      // The list shows where the reader is.
      const QUrl shown = contents.currentItem()->data(Qt::UserRole).toUrl();
      QCOMPARE(shown, text.source().adjusted(QUrl::RemoveFragment));
      ++followed;
    }
  }
  QVERIFY(followed > 0);
}

void GuideWindowTest::aLinkToAHeadingScrollsToIt() {
  const QTemporaryDir folder;
  QFile page(folder.filePath("index.md"));
  QVERIFY(page.open(QIODevice::WriteOnly));
  page.write("# Title\n\n[down](#the-end-of-it)\n\n");
  for (int i = 0; i < 200; ++i) page.write("A line.\n\n");
  page.write("## The end, of it!\n\nHere.\n");
  page.close();
  GuideWindow guide(folder.path());
  QVERIFY(showActive(guide));
  auto& text = control<QTextBrowser>(guide, "text");
  QCOMPARE(text.verticalScrollBar()->value(), 0);
  text.setSource(text.source().resolved(QUrl("#the-end-of-it")));
  QVERIFY(text.verticalScrollBar()->value() > 1000);
}

}  // namespace
}  // namespace gravlin

int main(int argc, char** argv) {
  return gravlin::test::runGuiTest<gravlin::GuideWindowTest>(argc, argv);
}
#include "GuideWindowTest.moc"
