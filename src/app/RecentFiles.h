#pragma once

#include <QSettings>
#include <QStringList>

namespace gravlin {

/// The files used last, the latest first, kept in the settings under "Recent File List".
class RecentFiles {
 public:
  static constexpr int mostFiles = 4;

  /// `storage` must outlive the list.
  explicit RecentFiles(QSettings& storage);

  const QStringList& paths() const { return files; }
  void add(const QString& path);
  void remove(const QString& path);

 private:
  void store();

  QSettings& settings;
  QStringList files;
};

}  // namespace gravlin
