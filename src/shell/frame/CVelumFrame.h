// The main window.
#pragma once

#include "runtime/view/CVelumFrameHost.h"
#include "shell/frame/CVelumChangeMark.h"
#include "shell/frame/CVelumCommandTable.h"
#include "shell/frame/CVelumEditCommands.h"
#include "shell/frame/CVelumFileDrop.h"
#include "shell/frame/CVelumPictureCommands.h"
#include "shell/frame/CVelumScriptBar.h"
#include "shell/frame/CVelumStackCommands.h"
#include "shell/frame/CVelumUndoKeys.h"
#include "toolkit/CVelumForm.h"

#include <QMainWindow>
#include <functional>
#include <memory>

namespace Ui {
class CVelumFrame;
}
class QLabel;

// Owns menus, toolbar, status bar and the area in which the card window and the card list stand. It holds no
// document logic: a command opens a dialog, or calls the stack view, or one of the stack commands.
class CVelumFrame final : public QMainWindow, public CVelumForm, public CVelumFrameHost {
  Q_OBJECT

public:
  CVelumFrame();
  ~CVelumFrame() override;

  [[nodiscard]] CVelumStackCommands& Commands() { return iCommands; }
  // How the process ends when the window has been unloaded; QCoreApplication::exit unless told otherwise.
  void SetEndProcess(std::function<void()> aEnd) { iEndProcess = std::move(aEnd); }
  // Where a running script shows; never null.
  [[nodiscard]] CVelumScriptBar* ScriptBar() const { return iScriptBar; }
  // Does what the toolbar button of a key does. Asserts "fToolbar_ButtonClick Button.Key " and the key for a
  // key that no button has.
  void ButtonClick(const QString& aKey);
  // Stands in the status bar, behind whatever else says its state there, until the next report.
  void Report(const QString& aText);
  // Sets what depends on the open stack: toolbar, commands menu, items of the menus.
  void UpdateToolbar();

  // CVelumForm
  [[nodiscard]] QWidget* Widget() override { return this; }
  void Load() override;
  void Unload() override;
  void ChangeNotify(int aKind, CVelumObject* aObj1, CVelumObject* aObj2) override;

  // CVelumFrameHost
  [[nodiscard]] QAction* FindAction(const QString& aName) override;
  [[nodiscard]] QMenu* CmdMenu() override;
  [[nodiscard]] QIcon ToolbarIcon(const QString& aKey) override;
  void AddChild(QWidget* aForm) override;
  void RemoveChild(QWidget* aForm) override;
  void ShowChild(QWidget* aForm, bool aRaise) override;
  void HideChild(QWidget* aForm) override;
  [[nodiscard]] bool CloseStack() override;
  QWidget* ShowForm(const QString& aName) override;
  void ShowPicture() override;
  void CardShown() override;
  void AddToFileHistory(const QString& aPath) override;

protected:
  // The query-unload and unload steps.
  void closeEvent(QCloseEvent* aEvent) override;
  // None: its only use would be to hide the toolbar, which nothing brings back.
  QMenu* createPopupMenu() override;
  // Page Up, Page Down and, in the card list, Delete, where what has the focus has no use for them.
  void keyPressEvent(QKeyEvent* aEvent) override;

private:
  void ConnectMenus();
  void ConnectEditMenu();
  // What can be undone, and what it is called.
  void ShowSteps();
  void UpdateEditMenu();
  void ConnectToolbar();
  void AddReport();
  // The card list can be opened from the status bar too, for no menu names it.
  void AddCardListButton();
  // How the user knows the command of a menu item: "Card, New".
  [[nodiscard]] QString CaptionOf(const QAction& aItem) const;
  void ConnectKeys();
  // Ctrl+F6 goes to the next window in the area, Ctrl+F4 closes it.
  void ConnectChildKeys();
  void TakeDrops();
  void UpdateMenus();
  void FillHistory();
  [[nodiscard]] static QString HistoryCaption(const QString& aPath);
  void ShowStackName();
  void SetPhoneSize();

  std::unique_ptr<Ui::CVelumFrame> iUi;
  QString iTitle; // the caption as designed
  CVelumChangeMark iChangeMark;
  CVelumStackCommands iCommands;
  CVelumEditCommands iEditCommands;
  CVelumUndoKeys iUndoKeys;
  CVelumPictureCommands iPictureCommands;
  std::function<void()> iEndProcess;
  CVelumScriptBar* iScriptBar = nullptr;
  QAction* iShowCardList = nullptr;
  QLabel* iReport = nullptr;
  QList<std::pair<QAction*, EVelumNeed>> iButtons; // of the toolbar
  std::unique_ptr<CVelumFileDrop> iFileDrop;
};

// The main window; null before it is made.
extern CVelumFrame* gFrame;
