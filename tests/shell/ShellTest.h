// The whole desktop program in a test, on a copy of a small stack.
#pragma once

#include "runtime/view/CVelumStackView.h"
#include "shell/frame/CVelumFrame.h"
#include "support/NotingRunner.h"
#include "support/WidgetTest.h"
#include "toolkit/CVelumFileDialog.h"

#include <QAction>
#include <functional>

// Start makes the program; the welcome box is switched off in the options. Messages go to iPresenter. File
// dialogs answer iPath, and nothing until it is set.
class ShellTest : public WidgetTest {
protected:
  ShellTest();
  ~ShellTest() override;

  void Start(const QString& aCommandLine = {});
  // Closes all windows but the main one and its children, and lets them go.
  static void CloseDialogs();
  // A copy of a stack of tests/data in the test's folder: 13 cards, "card 00" to "card 12".
  QString CopyStack(const QString& aName);
  [[nodiscard]] static QAction* Action(const QString& aName);
  // Chooses a menu item as a user does: opens its menu first. Fails when the item is disabled.
  static void Choose(const QString& aName);
  [[nodiscard]] static QString CardName();
  // What the main window says that was done last.
  [[nodiscard]] static QString Report();
  // Makes the open stack changed.
  static void Change();
  // Runs aUse on the dialog that opens next, and closes it if that did not.
  static void WhenOpen(std::function<void(QWidget&)> aUse);
  // Answers CVelumSave, when it opens next, with a click on a button.
  void AnswerSave(const QString& aButton);
  // Whether CVelumSave was shown.
  bool iAsked = false;

  NotingRunner iRunner;
  QString iPath;       // answer of file dialogs
  int iDialogs = 0;    // file dialogs shown
  bool iEnded = false; // the process would have ended
};
