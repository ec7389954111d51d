// The main window as the windows of the open stack see it: the shell implements it, this room uses it.
#pragma once

#include "core/CVelumObject.h"

#include <QIcon>

class QAction;
class QMenu;
class QWidget;

// All operations work while no stack is open too. Widgets handed over are owned by whoever made them.
class CVelumFrameHost {
public:
  virtual ~CVelumFrameHost() = default;

  // The action of a name: the commands "fGenFunc0" to "fGenFunc9", "fNoCmd", and "fCmd" (the menu's own
  // action, whose enabling counts for the whole menu). Null for any other name. Exact, case-sensitive. When
  // one of the commands is triggered, the main window calls BaseObjClick of the stack view with the action.
  [[nodiscard]] virtual QAction* FindAction(const QString& aName) = 0;
  // The commands menu, for a pop-up at the pointer.
  [[nodiscard]] virtual QMenu* CmdMenu() = 0;
  // The picture of the image list under a key ("FirstCard" to "ForwInHistory", "ShowCardList", "SelectCard",
  // ...); a null icon for an unknown key.
  [[nodiscard]] virtual QIcon ToolbarIcon(const QString& aKey) = 0;

  // Puts a window into the main window's area of child windows, as the widget of a QMdiSubWindow. It is
  // hidden until ShowChild and stays a child until RemoveChild, which leaves it hidden and without a parent.
  // A close of the child by the user arrives as the close event of aForm, which may ignore it.
  virtual void AddChild(QWidget* aForm) = 0;
  virtual void RemoveChild(QWidget* aForm) = 0;
  // Shows without changing its place; aRaise also brings it to the front and makes it the active one.
  virtual void ShowChild(QWidget* aForm, bool aRaise) = 0;
  virtual void HideChild(QWidget* aForm) = 0;

  // Runs the close command of the stack; true when no stack is open afterwards.
  [[nodiscard]] virtual bool CloseStack() = 0;
  // Opens a window by its name, such as "CVelumCardSelect", not modally and with no owner. Null while there
  // is no window of that name.
  virtual QWidget* ShowForm(const QString& aName) = 0;
  // Shows the picture of the field that has the focus.
  virtual void ShowPicture() = 0;
  // Another card is on show, or it has other neighbours, or the history leads elsewhere.
  virtual void CardShown() = 0;
  // Puts a path in front of the list of recent files.
  virtual void AddToFileHistory(const QString& aPath) = 0;
};

// The main window; null in programs without one, such as most tests.
extern CVelumFrameHost* gFrameHost;
