#include "app/GuideWindow.h"

#include <QAbstractTextDocumentLayout>
#include <QDir>
#include <QFile>
#include <QListWidget>
#include <QScrollBar>
#include <QSplitter>
#include <QTextBlock>
#include <QTextBrowser>
#include <QVBoxLayout>

#include "doc/dialogs/WindowRoom.h"

namespace gravlin {
namespace {

/// The name by which links refer to a heading: small letters, blanks as hyphens, no punctuation.
QString anchorOf(const QString& heading) {
  QString anchor;
  for (const QChar letter : heading.toLower()) {
    if (letter == ' ') anchor += '-';
    if (letter.isLetterOrNumber() || letter == '-' || letter == '_') anchor += letter;
  }
  return anchor;
}

/// The text of the page's first heading.
QString titleOf(const QString& page) {
  QFile file(page);
  if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) return {};
  while (!file.atEnd()) {
    const QString line = QString::fromUtf8(file.readLine()).trimmed();
    if (line.startsWith("# ")) return line.mid(2);
  }
  return QFileInfo(page).completeBaseName();
}

/// A browser that finds the headings of a Markdown page, which carry no anchors of their own.
class PageBrowser : public QTextBrowser {
 public:
  using QTextBrowser::QTextBrowser;

 protected:
  void doSetSource(const QUrl& url, QTextDocument::ResourceType type) override {
    QTextBrowser::doSetSource(url, type);
    if (url.hasFragment()) scrollToHeading(url.fragment());
  }

 private:
  void scrollToHeading(const QString& anchor) {
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
      if (block.blockFormat().headingLevel() == 0 || anchorOf(block.text()) != anchor) continue;
      const QRectF place = document()->documentLayout()->blockBoundingRect(block);
      verticalScrollBar()->setValue(static_cast<int>(place.top()));
      return;
    }
  }
};

}  // namespace

GuideWindow::GuideWindow(const QString& pagesFolder)
    : folder(pagesFolder), contents(new QListWidget(this)), text(new PageBrowser(this)) {
  setObjectName("GuideWindow");
  setWindowTitle("Gravlin Guide");
  contents->setObjectName("contents");
  text->setObjectName("text");
  text->setOpenExternalLinks(true);
  auto* splitter = new QSplitter(this);
  splitter->addWidget(contents);
  splitter->addWidget(text);
  splitter->setStretchFactor(1, 1);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(splitter);
  listPages();
  connect(contents, &QListWidget::currentItemChanged, this, [this](QListWidgetItem* chosen) {
    const QUrl page = chosen == nullptr ? QUrl() : chosen->data(Qt::UserRole).toUrl();
    if (text->source().adjusted(QUrl::RemoveFragment) != page) text->setSource(page);
  });
  connect(text, &QTextBrowser::sourceChanged, this, [this](const QUrl& shown) {
    const QUrl page = shown.adjusted(QUrl::RemoveFragment);
    for (int i = 0; i < contents->count(); ++i) {
      if (contents->item(i)->data(Qt::UserRole).toUrl() == page) contents->setCurrentRow(i);
    }
  });
  contents->setCurrentRow(0);
  const int letter = fontMetrics().averageCharWidth();
  resize(sizeOnScreen(*this, {130 * letter, 45 * fontMetrics().lineSpacing()}));
  const int widestTitle = contents->sizeHintForColumn(0) + 2 * contents->frameWidth() + 2 * letter;
  splitter->setSizes({widestTitle, width() - widestTitle});
}

void GuideWindow::listPages() {
  QStringList names = QDir(folder).entryList({"*.md"}, QDir::Files, QDir::Name);
  if (names.removeOne("index.md")) names.prepend("index.md");
  for (const QString& name : names) {
    const QString path = folder + '/' + name;
    auto* item = new QListWidgetItem(titleOf(path), contents);
    item->setData(Qt::UserRole,
                  path.startsWith(':') ? QUrl("qrc" + path) : QUrl::fromLocalFile(path));
  }
}

}  // namespace gravlin
