// The command-line program.
#include "cli/CVelumCli.h"
#include "persist/CVelumAccess.h"

#include <QApplication>
#include <clocale>
#include <cstring>
#include <langinfo.h>
#include <memory>

namespace {

QtMessageHandler gHandler = nullptr; // the toolkit's own

// Qt wants a UTF-8 locale and grumbles on standard error about a bare C locale, which is what scripts and
// servers often have.
void PreferUtf8() {
  std::setlocale(LC_ALL, "");
  const char* name = std::setlocale(LC_CTYPE, nullptr);
  const bool isC = name && (std::strcmp(name, "C") == 0 || std::strcmp(name, "POSIX") == 0);
  if (isC && std::strcmp(nl_langinfo(CODESET), "UTF-8") != 0)
    qputenv(qEnvironmentVariableIsEmpty("LC_ALL") ? "LC_CTYPE" : "LC_ALL", "C.UTF-8");
}

// A machine without a desktop has no folder of the session, which the toolkit wants to talk about.
void LeaveOutNoise(QtMsgType aType, const QMessageLogContext& aContext, const QString& aText) {
  if (!aText.startsWith(u"QStandardPaths: ")) gHandler(aType, aContext, aText);
}

// The command that draws needs widgets, though no screen.
std::unique_ptr<QCoreApplication> MakeApp(int& aArgc, char** aArgv) {
  QStringList arguments;
  for (int i = 1; i < aArgc; ++i) arguments.append(QString::fromLocal8Bit(aArgv[i]));
  if (!CVelumCli::NeedsWidgets(arguments)) return std::make_unique<QCoreApplication>(aArgc, aArgv);
  qputenv("QT_QPA_PLATFORM", "offscreen");
  gHandler = qInstallMessageHandler(LeaveOutNoise);
  return std::make_unique<QApplication>(aArgc, aArgv);
}

} // namespace

int main(int aArgc, char** aArgv) {
  PreferUtf8();
  const std::unique_ptr<QCoreApplication> app = MakeApp(aArgc, aArgv);
  CVelumAccess::SetInstalledFolder(CVelumAccess::FolderOfProgram());
  return CVelumCli::Run(QCoreApplication::arguments().mid(1));
}
