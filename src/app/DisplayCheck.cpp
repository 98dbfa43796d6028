#include "app/DisplayCheck.h"

#include <cstdio>
#include <cstdlib>
#include <QString>
#include <QtGlobal>
#include <string>

namespace gravlin {
namespace {

std::string& warnings() {
  static std::string text;
  return text;
}

void take(QtMsgType type, const QMessageLogContext& context, const QString& message) {
  if (type != QtFatalMsg) {
    warnings() += qFormatLogMessage(type, context, message).toStdString() + '\n';
    return;
  }
  std::fprintf(stderr, "gravlin: There is no display to open a window on. %s\n",
               adviceWithoutDisplay);
  std::_Exit(1);
}

}  // namespace

const char* const adviceWithoutDisplay =
    "To draw pictures without one, run \"gravlin-batch open FILE render PICTURE.png\".";

DisplayCheck::DisplayCheck() {
  warnings().clear();
  qInstallMessageHandler(take);
}

DisplayCheck::~DisplayCheck() {
  qInstallMessageHandler(nullptr);
  std::fputs(warnings().c_str(), stderr);
}

}  // namespace gravlin
