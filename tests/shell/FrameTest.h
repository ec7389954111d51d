// What tests of the main window share: its buttons and menus.
#pragma once

#include "shell/ShellTest.h"
#include "shell/frame/CVelumFrame.h"

#include <QMenu>
#include <QTest>
#include <QToolBar>
#include <QToolButton>

class FrameTest : public ShellTest {
protected:
  static QToolButton* ButtonOf(const QString& aKey) {
    const auto* toolbar = gFrame->findChild<QToolBar*>(u"fToolbar"_s);
    return qobject_cast<QToolButton*>(toolbar->widgetForAction(Action(aKey)));
  }
  static void Click(const QString& aKey) { QTest::mouseClick(ButtonOf(aKey), Qt::LeftButton); }
  static QStringList Captions(const QMenu& aMenu) {
    QStringList captions;
    for (const QAction* action : aMenu.actions())
      captions.append(action->isSeparator() ? u"-"_s : action->text());
    return captions;
  }
  static QMenu* Menu(const QString& aName) { return gFrame->findChild<QMenu*>(aName); }
  static void Open(const QString& aMenu) { Q_EMIT Menu(aMenu)->aboutToShow(); }
};
