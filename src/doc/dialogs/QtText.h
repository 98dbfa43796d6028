#pragma once

#include <QFile>
#include <QString>
#include <string>
#include <string_view>

#include "numeric/PrintableText.h"

namespace gravlin {

/// Text of the lower floors is UTF-8.
inline QString toQString(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// The same text for a control that would take "&" as the mark of a mnemonic.
inline QString toPlainLabel(std::string_view text) {
  return toQString(text).replace(QLatin1Char('&'), QLatin1String("&&"));
}

/// The same text on one line; control characters are escaped.
inline QString toPrintable(const QString& text) {
  return toQString(printable(text.toStdString()));
}

/// File names as the C library takes them.
inline std::string toPath(const QString& name) {
  return QFile::encodeName(name).toStdString();
}
inline QString fromPath(const std::string& path) {
  return QFile::decodeName(QByteArray::fromStdString(path));
}

}  // namespace gravlin
