// orvelles: the desktop program.
#include "app/CVelumApplication.h"

#include "persist/CVelumAccess.h"
#include "runtime/CVelumIcons.h"
#include "shell/frame/CVelumMain.h"
#include "shell/frame/CVelumPictures.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTemporaryFile>
#include <QTimer>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

namespace {

constexpr const char* EUsage = "Usage: orvelles [STACK]\n"
                               "       orvelles --pictures FOLDER STACK\n"
                               "\n"
                               "Opens STACK, or the stack that the options name.\n"
                               "\n"
                               "  --pictures FOLDER STACK  write pictures of the windows, without a display\n"
                               "  --help                   show this text\n"
                               "  --version                show the version\n";
constexpr const char* ESockets = "XDG_RUNTIME_DIR";
// Set for the processes that write the pictures of one scale.
constexpr const char* EOneScale = "ORVELLES_PICTURES";

bool HasDisplay() {
  for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
    if (!qEnvironmentVariableIsEmpty(name)) return true;
  return false;
}

QtMessageHandler gUsualHandler = nullptr;

// A platform without a screen notes each call that it has no use for.
void LeaveOutPlatformNotes(QtMsgType aType, const QMessageLogContext& aContext, const QString& aText) {
  if (!aText.startsWith(u"This plugin does not support "_s)) gUsualHandler(aType, aContext, aText);
}

// In a process that has been given a screen: writes the pictures of that screen.
int WritePicturesHere(int aArgc, char** aArgv) {
  gUsualHandler = qInstallMessageHandler(LeaveOutPlatformNotes);
  CVelumApplication app(aArgc, aArgv);
  const QStringList arguments = QCoreApplication::arguments();
  // The windows behave as in the program only inside its event loop.
  QTimer::singleShot(0, &app, [&] {
    QCoreApplication::exit(CVelumPictures::Write(arguments.value(2), arguments.value(3)));
  });
  return QApplication::exec();
}

// Describes a screen of 1600 by 1200 logical pixels to the offscreen platform.
QByteArray ScreenOf(int aScale) {
  return QByteArray(R"({"screens":[{"name":"picture","x":0,"y":0,"width":%1,"height":%2}]})")
      .replace("%1", QByteArray::number(1600 * aScale))
      .replace("%2", QByteArray::number(1200 * aScale));
}

// The scale of the screen is fixed when a process starts: one process for each.
int WritePictures(int aArgc, char** aArgv) {
  if (!qEnvironmentVariableIsEmpty(EOneScale)) return WritePicturesHere(aArgc, aArgv);
  qputenv(EOneScale, "1");
  // The toolkit wants a folder for its sockets; a machine without a session has none, and is told so.
  const QTemporaryDir sockets;
  if (qEnvironmentVariableIsEmpty(ESockets)) qputenv(ESockets, QFile::encodeName(sockets.path()));
  const QStringList arguments{u"--pictures"_s, QString::fromLocal8Bit(aArgv[2]),
                              QString::fromLocal8Bit(aArgv[3])};
  for (const int scale : {1, 2}) {
    QTemporaryFile screen;
    if (!screen.open() || screen.write(ScreenOf(scale)) < 0 || !screen.flush()) return 1;
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + QFile::encodeName(screen.fileName()));
    qputenv("QT_SCALE_FACTOR", QByteArray::number(scale));
    if (QProcess::execute(u"/proc/self/exe"_s, arguments) != 0) return 1;
  }
  return 0;
}

int RunDesktop(int& aArgc, char** aArgv) {
  if (!HasDisplay()) {
    std::cerr << "orvelles: There is no display here (neither DISPLAY nor WAYLAND_DISPLAY is set).\n"
                 "orvelles: The command-line program orvelles-cli works without one.\n";
    return 1;
  }
  CVelumApplication app(aArgc, aArgv);
  CVelumAccess::SetInstalledFolder(CVelumAccess::FolderOfProgram());
  // What the toolkit has left of the arguments. The end of the main window is the end of the process,
  // whatever else is open or under way, and already while the program starts.
  CVelumMain::Main(CVelumMain::CommandLine(QCoreApplication::arguments().mid(1)), nullptr,
                   [] { std::_Exit(EXIT_SUCCESS); });
  return QApplication::exec();
}

} // namespace

int main(int aArgc, char** aArgv) {
  QCoreApplication::setOrganizationName(u"Brindleway"_s);
  QCoreApplication::setApplicationName(u"Orvelles"_s);
  QCoreApplication::setApplicationVersion(QStringLiteral(ORVELLES_VERSION));
  QGuiApplication::setDesktopFileName(u"orvelles"_s);
  const std::string first = aArgc > 1 ? aArgv[1] : "";
  if (first == "--help" || first == "-h") {
    std::cout << EUsage;
    return 0;
  }
  if (first == "--version") {
    std::cout << "orvelles " ORVELLES_VERSION "\n";
    return 0;
  }
  if (first != "--pictures") return RunDesktop(aArgc, aArgv);
  if (aArgc != 4) {
    std::cerr << EUsage;
    return 2;
  }
  return WritePictures(aArgc, aArgv);
}
