#include "CliRun.h"

#include "core/CVelumObject.h"
#include "support/TestTree.h"

#include <QProcess>
#include <QStandardPaths>
#include <unistd.h>

namespace {

// Far more than any of the tests needs, also under a sanitizer.
constexpr int ETimeout = 60000;

QStringList WithLocale(const QStringList& aArguments) {
  const bool named = aArguments.contains(u"--locale"_s);
  return named ? aArguments : QStringList{u"--locale"_s, u"en_US"_s} + aArguments;
}

} // namespace

TCliResult CliRun::RunProgram(const QString& aProgram, const QStringList& aArguments, const QString& aOutPath,
                              const QByteArray& aInput) {
  QProcess process;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  if (environment.value(u"LC_ALL"_s).isEmpty()) environment.insert(u"LC_ALL"_s, u"C.UTF-8"_s);
  process.setProcessEnvironment(environment);
  if (!aOutPath.isEmpty()) process.setStandardOutputFile(aOutPath);
  process.start(aProgram, aArguments);
  process.write(aInput);
  process.closeWriteChannel();
  TCliResult result;
  if (process.waitForFinished(ETimeout) && process.exitStatus() == QProcess::NormalExit)
    result.iStatus = process.exitCode();
  else
    process.kill();
  result.iOut = process.readAllStandardOutput();
  result.iErr = process.readAllStandardError();
  return result;
}

TCliResult CliRun::Run(const QStringList& aArguments) {
  return RunProgram(QStringLiteral(ORVELLES_CLI), WithLocale(aArguments));
}

TCliResult CliRun::RunFed(const QByteArray& aInput, const QStringList& aArguments) {
  return RunProgram(QStringLiteral(ORVELLES_CLI), WithLocale(aArguments), {}, aInput);
}

TCliResult CliRun::RunInto(const QString& aPath, const QStringList& aArguments) {
  return RunProgram(QStringLiteral(ORVELLES_CLI), WithLocale(aArguments), aPath);
}

TCliResult CliRun::RunWithoutRights(const QStringList& aArguments) {
  if (geteuid() != 0) return Run(aArguments);
  const QStringList drop{u"--reuid=65534"_s, u"--regid=65534"_s, u"--clear-groups"_s,
                         QStringLiteral(ORVELLES_CLI)};
  return RunProgram(u"setpriv"_s, drop + WithLocale(aArguments));
}

bool CliRun::CanDropRights() {
  return geteuid() != 0 || (!QStandardPaths::findExecutable(u"setpriv"_s).isEmpty() &&
                            RunWithoutRights({u"--version"_s}).iStatus == 0);
}

QString CliRun::Program() {
  return QStringLiteral(ORVELLES_CLI);
}

QString CliRun::XmlStack() {
  return TestTree::Data() + u"/stacks/xml-damaged/wrong_child.xml"_s;
}

QString CliRun::Data(const QString& aName) {
  return TestTree::Data() + u"/stacks/good/"_s + aName;
}

QString CliRun::Sample() {
  return TestTree::Source() + u"/samples/Countries.Orvelle"_s;
}
