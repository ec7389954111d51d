#include "cli/CVelumTerminal.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <unistd.h>

namespace {

constexpr qsizetype EBufferSize = 65536;

// Text as it stands on a terminal: line ends as line feeds.
QByteArray TerminalText(QString aText) {
  aText.replace(u"\r\n"_s, u"\n"_s);
  return aText.toUtf8();
}

} // namespace

CVelumTerminal::CVelumTerminal() : iShowProgress(isatty(STDERR_FILENO) != 0) {
  iOk = iOut.open(STDOUT_FILENO, QIODevice::WriteOnly | QIODevice::Unbuffered);
  // Without standard error there is nobody to tell.
  static_cast<void>(iErr.open(STDERR_FILENO, QIODevice::WriteOnly | QIODevice::Unbuffered));
}

bool CVelumTerminal::Message(qint32, EMsgClass aClass, const QString& aName, const QString& aText) {
  const QString text = aName.isEmpty() ? aText : aName + u": "_s + aText;
  if (aClass != EMsgQuestion) {
    Complain(text);
    return false;
  }
  Complain(text + (iAnswer ? u" [yes]"_s : u" [no]"_s));
  return iAnswer;
}

void CVelumTerminal::Tell(const QString& aText) {
  Line(aText);
}

void CVelumTerminal::HelpPage(const QString& aPage) {
  Complain(u"see the help page "_s + aPage);
}

void CVelumTerminal::ScriptProgress(int aSteps) {
  ClearProgress();
  if (aSteps > 0) ShowProgress(QByteArray::number(aSteps));
}

void CVelumTerminal::WorkProgress(int aPermille) {
  ShowProgress(QByteArray::number(aPermille / 10) + " %");
}

void CVelumTerminal::ShowProgress(const QByteArray& aText) {
  if (!iShowProgress) return;
  iErr.write("\r" + aText);
  iProgressShown = true;
}

void CVelumTerminal::ClearProgress() {
  if (iProgressShown) iErr.write("\r\033[K");
  iProgressShown = false;
}

void CVelumTerminal::Line(const QString& aText) {
  Write(TerminalText(aText) + '\n');
}

void CVelumTerminal::Json(const QJsonObject& aObject) {
  Write(QJsonDocument(aObject).toJson());
}

void CVelumTerminal::ShowAs(const QString& aPath, const QString& aName) {
  iShownPath = aPath;
  iShownName = aName;
}

void CVelumTerminal::Complain(const QString& aText) {
  // Results that came before stand before the message where both go to one place.
  static_cast<void>(Flush());
  ClearProgress();
  QString text = aText;
  if (!iShownPath.isEmpty()) text.replace(iShownPath, iShownName);
  iErr.write("orvelles-cli: " + TerminalText(text) + '\n');
}

bool CVelumTerminal::Flush() {
  if (iOk && !iBuffer.isEmpty()) iOk = iOut.write(iBuffer) == iBuffer.size();
  iBuffer.clear();
  return iOk;
}

void CVelumTerminal::Write(const QByteArray& aBytes) {
  iBuffer += aBytes;
  if (iBuffer.size() >= EBufferSize) static_cast<void>(Flush());
}
