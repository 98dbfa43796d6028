#include "support/GermanLocale.h"

#include <clocale>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace gravlin::test {

GermanLocale::GermanLocale() {
  const std::string command = "localedef -i de_DE -f UTF-8 '" + folder.file("de_DE.UTF-8") + "'";
  if (std::system(command.c_str()) != 0) {
    throw std::runtime_error("no German locale: the package \"locales\" is missing");
  }
  setenv("LOCPATH", folder.file("").c_str(), 1);
  setenv("LC_ALL", "de_DE.UTF-8", 1);
}

GermanLocale::~GermanLocale() {
  unsetenv("LOCPATH");
  setenv("LC_ALL", "C", 1);
  std::setlocale(LC_ALL, "C");
}

}  // namespace gravlin::test
