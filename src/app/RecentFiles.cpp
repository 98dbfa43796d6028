#include "app/RecentFiles.h"

namespace gravlin {
namespace {

QString keyOf(int place) {
  return QString("Recent File List/File%1").arg(place + 1);
}

}  // namespace

RecentFiles::RecentFiles(QSettings& storage) : settings(storage) {
  for (int i = 0; i < mostFiles; ++i) {
    const QString path = settings.value(keyOf(i)).toString();
    if (!path.isEmpty()) files.append(path);
  }
}

void RecentFiles::add(const QString& path) {
  files.removeAll(path);
  files.prepend(path);
  while (files.size() > mostFiles) files.removeLast();
  store();
}

void RecentFiles::remove(const QString& path) {
  files.removeAll(path);
  store();
}

void RecentFiles::store() {
  settings.remove("Recent File List");
  for (int i = 0; i < files.size(); ++i) settings.setValue(keyOf(i), files[i]);
}

}  // namespace gravlin
