// The terminal as the program's presenter, and where results go.
#pragma once

#include "core/CVelumSeams.h"

#include <QFile>

class QJsonObject;

// Results go to standard output, messages to standard error as "orvelles-cli: EMsgName: text". Questions
// are answered as the caller said beforehand; nothing is ever asked.
class CVelumTerminal final : public CVelumPresenter {
public:
  CVelumTerminal();

  // The answer to every question; no unless set.
  void SetAnswer(bool aYes) { iAnswer = aYes; }

  bool Message(qint32 aMsg, EMsgClass aClass, const QString& aName, const QString& aText) override;
  // A line of output: what a script tells its user is its result.
  void Tell(const QString& aText) override;
  void HelpPage(const QString& aPage) override;
  void ScriptProgress(int aSteps) override;

  // Progress of long work, up to 1,000; only a terminal shows it. To be ended with ClearProgress.
  void WorkProgress(int aPermille);
  void ClearProgress();
  // A line of output.
  void Line(const QString& aText);
  void Json(const QJsonObject& aObject);
  // Output that is a file of its own: in UTF-8, with its line ends as they are.
  void File(const QString& aText) { Write(aText.toUtf8()); }
  void Bytes(const QByteArray& aBytes) { Write(aBytes); }
  // Messages say aName where they would say aPath.
  void ShowAs(const QString& aPath, const QString& aName);
  // A line on standard error, behind the program's name.
  void Complain(const QString& aText);
  // Writes what is buffered; false when standard output did not take all of it.
  [[nodiscard]] bool Flush();

private:
  void Write(const QByteArray& aBytes);
  void ShowProgress(const QByteArray& aText);

  QFile iOut;
  QFile iErr;
  QByteArray iBuffer;
  QString iShownPath;
  QString iShownName;
  bool iAnswer = false;
  bool iOk = true;
  bool iShowProgress;
  bool iProgressShown = false;
};
