#pragma once

#include <QString>
#include <QWidget>

class QListWidget;
class QTextBrowser;

namespace gravlin {

/// The user's guide: the titles of its pages at the left ("contents"), a page at the right
/// ("text"). Links between pages and to their headings are followed; links to elsewhere open in the
/// desktop's browser.
class GuideWindow : public QWidget {
 public:
  /// `pagesFolder` holds the pages as *.md files; they are listed by name, "index.md" first.
  explicit GuideWindow(const QString& pagesFolder = ":/guide");

 private:
  void listPages();

  const QString folder;
  QListWidget* contents;
  QTextBrowser* text;
};

}  // namespace gravlin
