// The command-line program.
#include "cli/CVelumCli.h"

#include <QApplication>
#include <clocale>
#include <cstring>
#include <langinfo.h>
#include <memory>

namespace {

// Qt wants a UTF-8 locale and grumbles on standard error about a bare C locale, which is what scripts and
// servers often have.
void PreferUtf8() {
  std::setlocale(LC_ALL, "");
  const char* name = std::setlocale(LC_CTYPE, nullptr);
  const bool isC = name && (std::strcmp(name, "C") == 0 || std::strcmp(name, "POSIX") == 0);
  if (isC && std::strcmp(nl_langinfo(CODESET), "UTF-8") != 0)
    qputenv(qEnvironmentVariableIsEmpty("LC_ALL") ? "LC_CTYPE" : "LC_ALL", "C.UTF-8");
}

// The command that draws needs widgets, though no screen. Any other that is taken for it works as well.
std::unique_ptr<QCoreApplication> MakeApp(int& aArgc, char** aArgv) {
  for (int i = 1; i < aArgc; ++i) {
    if (std::strcmp(aArgv[i], "render") != 0) continue;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    return std::make_unique<QApplication>(aArgc, aArgv);
  }
  return std::make_unique<QCoreApplication>(aArgc, aArgv);
}

} // namespace

int main(int aArgc, char** aArgv) {
  PreferUtf8();
  const std::unique_ptr<QCoreApplication> app = MakeApp(aArgc, aArgv);
  return CVelumCli::Run(QCoreApplication::arguments().mid(1));
}
