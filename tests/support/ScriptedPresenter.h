// A presenter for tests: answers from a script, and remembers all that it was told.
#pragma once

#include "core/CVelumSeams.h"

#include <QList>
#include <QString>

// Installs itself, and puts the silent presenter back when it goes.
class ScriptedPresenter final : public CVelumPresenter {
public:
  struct TShown {
    qint32 iMsg = -1;
    EMsgClass iClass = static_cast<EMsgClass>(-1);
    QString iName;
    QString iText;
  };

  ScriptedPresenter() { CVelumSeams::SetPresenter(this); }
  ~ScriptedPresenter() override { CVelumSeams::SetPresenter(nullptr); }

  // Queues the answer to the next question without one.
  ScriptedPresenter& Answer(bool aYes) {
    iAnswers.append(aYes);
    return *this;
  }
  // The answer when none is queued; no at first.
  void SetDefaultAnswer(bool aYes) { iDefault = aYes; }
  // Forgets all that was shown and the answers that are left.
  void Clear();

  [[nodiscard]] const QList<TShown>& Shown() const { return iShown; }
  [[nodiscard]] qsizetype Count() const { return iShown.size(); }
  // How often message aMsg was shown.
  [[nodiscard]] qsizetype CountOf(qint32 aMsg) const;
  // Number and text of the last message; -1 and empty when there was none.
  [[nodiscard]] qint32 LastMsg() const { return iShown.isEmpty() ? -1 : iShown.last().iMsg; }
  [[nodiscard]] QString LastText() const { return iShown.isEmpty() ? QString() : iShown.last().iText; }
  // The first and the last message, and what was told first and last; without any an empty one, so that a
  // test which fails is the only one.
  [[nodiscard]] TShown FirstShown() const { return iShown.isEmpty() ? TShown{} : iShown.first(); }
  [[nodiscard]] TShown LastShown() const { return iShown.isEmpty() ? TShown{} : iShown.last(); }
  [[nodiscard]] QString FirstTold() const { return iTold.value(0); }
  [[nodiscard]] QString LastTold() const { return iTold.value(iTold.size() - 1); }
  [[nodiscard]] const QList<QString>& Told() const { return iTold; }
  [[nodiscard]] const QList<QString>& HelpPages() const { return iHelpPages; }
  [[nodiscard]] const QList<int>& Progress() const { return iProgress; }
  [[nodiscard]] qsizetype AnswersLeft() const { return iAnswers.size(); }

  bool Message(qint32 aMsg, EMsgClass aClass, const QString& aName, const QString& aText) override;
  void Tell(const QString& aText) override { iTold.append(aText); }
  // What is chosen; nothing at first.
  void SetChoice(int aChoice) { iChoice = aChoice; }
  [[nodiscard]] const QList<QStringList>& Choices() const { return iChoices; }
  int Choose(const QString& aText, const QStringList& aChoices) override {
    iTold.append(aText);
    iChoices.append(aChoices);
    return iChoice;
  }
  void HelpPage(const QString& aPage) override { iHelpPages.append(aPage); }
  void ScriptProgress(int aSteps) override { iProgress.append(aSteps); }

private:
  QList<bool> iAnswers;
  bool iDefault = false;
  int iChoice = -1;
  QList<QStringList> iChoices;
  QList<TShown> iShown;
  QList<QString> iTold;
  QList<QString> iHelpPages;
  QList<int> iProgress;
};
