// The command-line program.
#include "cli/CVelumCli.h"

#include <QCoreApplication>
#include <clocale>
#include <cstring>
#include <langinfo.h>

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

} // namespace

int main(int aArgc, char** aArgv) {
  PreferUtf8();
  const QCoreApplication app(aArgc, aArgv);
  return CVelumCli::Run(QCoreApplication::arguments().mid(1));
}
