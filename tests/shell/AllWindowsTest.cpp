// What every window of the program owes to those who work with the keyboard or hear the screen.
#include "core/CVelumMsg.h"
#include "runtime/view/CVelumGenForm.h"
#include "shell/ShellTest.h"
#include "shell/dialogs/CVelumMsgForm.h"
#include "shell/dialogs/CVelumNotBuilt.h"
#include "shell/dialogs/CVelumSave.h"
#include "shell/help/CVelumHelpBook.h"
#include "shell/help/CVelumHelpForm.h"
#include "toolkit/CVelumBaseControl.h"
#include "toolkit/CVelumWinMan.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QAccessible>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QRegularExpression>
#include <QTabBar>
#include <QTest>
#include <algorithm>
#include <functional>

namespace {

// A window of the program, opened on a stack with a card.
struct TWindow {
  QString iName;
  std::function<QWidget*()> iOpen;
};

class AllWindowsTest : public ShellTest {
protected:
  AllWindowsTest() {
    Start(CopyStack(u"a.Orvelle"_s));
    gFrame->resize(1000, 760);
  }
  ~AllWindowsTest() override { CloseAll(); }

  static void CloseAll() {
    CloseDialogs();
    if (CVelumHelpForm::Instance()) CVelumHelpForm::Instance()->close();
    if (CVelumNotBuilt::Instance()) CVelumNotBuilt::Instance()->close();
  }

  // Those of the table that exist, and those that stand outside it.
  static QList<TWindow> Windows() {
    QList<TWindow> windows;
    for (int i = 0; i < CVelumWinMan::FormCount(); ++i) {
      const QString name = CVelumWinMan::FormName(i);
      if (CVelumWinMan::HasForm(name)) windows.append({name, [name] { return OpenForm(name); }});
    }
    windows.append({u"CVelumMsgForm"_s, [] { return OpenQuestion(); }});
    windows.append({u"CVelumSave"_s, [] { return Shown(new CVelumSave(u"a.Orvelle"_s, gFrame)); }});
    windows.append({u"CVelumHelpForm"_s, [] {
                      CVelumHelpForm::ShowPage(u"Frame"_s);
                      return static_cast<QWidget*>(CVelumHelpForm::Instance());
                    }});
    windows.append({u"CVelumNotBuilt"_s, [] {
                      CVelumNotBuilt::Tell(u"Stack, Sort Keys"_s, gFrame);
                      return static_cast<QWidget*>(CVelumNotBuilt::Instance());
                    }});
    return windows;
  }
  // Runs aCheck on every window, one after the other.
  static void ForAll(const std::function<void(QWidget& aWindow)>& aCheck) {
    for (const TWindow& window : Windows()) {
      SCOPED_TRACE(window.iName.toStdString());
      QWidget* widget = window.iOpen();
      ASSERT_NE(widget, nullptr);
      QCoreApplication::processEvents();
      aCheck(*widget);
      CloseAll();
    }
  }

  // What a user can put the focus on with the keyboard.
  static QList<QWidget*> Reachable(const QWidget& aWindow) {
    QList<QWidget*> controls;
    for (QWidget* widget : aWindow.findChildren<QWidget*>())
      if (IsReachable(*widget, aWindow)) controls.append(widget);
    return controls;
  }
  static QRect PlaceOf(const QWidget& aControl, const QWidget& aWindow) {
    return {aControl.mapTo(&aWindow, QPoint()), aControl.size()};
  }
  // The same in the order of Tab, from the topmost on.
  static QList<QWidget*> TabOrder(QWidget& aWindow) {
    const QList<QWidget*> controls = Reachable(aWindow);
    QList<QWidget*> order;
    for (QWidget* widget = aWindow.nextInFocusChain(); widget != &aWindow;
         widget = widget->nextInFocusChain())
      if (controls.contains(widget)) order.append(widget);
    const auto above = [&](const QWidget* aOne, const QWidget* aOther) {
      const QPoint one = PlaceOf(*aOne, aWindow).topLeft();
      const QPoint other = PlaceOf(*aOther, aWindow).topLeft();
      return std::pair(one.y(), one.x()) < std::pair(other.y(), other.x());
    };
    std::rotate(order.begin(), std::min_element(order.begin(), order.end(), above), order.end());
    return order;
  }
  // How a control is called in the failure of a test.
  static std::string NameOf(const QWidget& aWidget) {
    return (QString::fromLatin1(aWidget.metaObject()->className()) + u' ' + aWidget.objectName())
        .toStdString();
  }
  static QString AccessibleName(QWidget& aWidget) {
    QAccessibleInterface* face = QAccessible::queryAccessibleInterface(&aWidget);
    return face ? face->text(QAccessible::Name) : QString();
  }

private:
  static QWidget* Shown(QWidget* aWidget) {
    aWidget->setParent(gFrame, aWidget->windowFlags());
    aWidget->setAttribute(Qt::WA_DeleteOnClose);
    aWidget->show();
    return aWidget;
  }
  static QWidget* OpenQuestion() {
    auto* box = new CVelumMsgForm(gFrame);
    box->SetClass(EMsgQuestion);
    box->SetText(u"Really?"_s);
    return Shown(box);
  }
  static QWidget* OpenForm(const QString& aName) {
    CVelumForm* form = CVelumWinMan::NameToForm(aName);
    if (aName == u"CVelumCardListForm"_s)
      gStackView->OpenCardList();
    else if (!form->IsLoaded())
      CVelumWinMan::ShowDialog(*form);
    return form->Widget();
  }
  // The inner parts of a control (the entry of a combo box, the view of a list) belong to it; so do the
  // controls of a window inside this one to that window.
  static bool IsPart(const QWidget& aWidget, const QWidget& aWindow) {
    if (aWidget.objectName().startsWith(u"qt_")) return true;
    for (const QWidget* above = aWidget.parentWidget(); above && above != &aWindow;
         above = above->parentWidget())
      if (qobject_cast<const QComboBox*>(above) || qobject_cast<const QAbstractScrollArea*>(above) ||
          qobject_cast<const QTabBar*>(above) || qobject_cast<const QMdiSubWindow*>(above) ||
          above->isWindow())
        return true;
    return qobject_cast<const QMdiSubWindow*>(&aWidget) || aWidget.isWindow();
  }
  static bool IsReachable(const QWidget& aWidget, const QWidget& aWindow) {
    return (aWidget.focusPolicy() & Qt::TabFocus) != 0 && aWidget.isVisibleTo(&aWindow) &&
           !IsPart(aWidget, aWindow);
  }
};

} // namespace

TEST_F(AllWindowsTest, EachHasATitle) {
  ForAll([](QWidget& aWindow) { EXPECT_FALSE(aWindow.windowTitle().isEmpty()); });
}

TEST_F(AllWindowsTest, EveryControlHasAnAccessibleName) {
  ForAll([](QWidget& aWindow) {
    for (QWidget* control : Reachable(aWindow))
      EXPECT_FALSE(AccessibleName(*control).isEmpty()) << NameOf(*control);
  });
}

TEST_F(AllWindowsTest, CombosAreCalledByWhatTheyAreFor) {
  int combos = 0;
  ForAll([&](QWidget& aWindow) {
    for (QComboBox* combo : aWindow.findChildren<QComboBox*>()) {
      // Those of the card window wait for a field, and have its name then.
      if (!combo->objectName().startsWith(u'f') || combo->objectName().startsWith(u"fGen")) continue;
      ++combos;
      if (combo->count() == 0) combo->addItem(u"shown"_s);
      combo->setCurrentIndex(0);
      ASSERT_FALSE(combo->currentText().isEmpty());
      EXPECT_NE(AccessibleName(*combo), combo->currentText()) << NameOf(*combo);
      EXPECT_FALSE(AccessibleName(*combo).isEmpty()) << NameOf(*combo);
    }
  });
  EXPECT_GE(combos, 3);
}

TEST_F(AllWindowsTest, AllHaveThePictureOfTheProgram) {
  ForAll([](QWidget& aWindow) { EXPECT_FALSE(aWindow.windowIcon().isNull()); });
}

TEST_F(AllWindowsTest, LabelsOfEntriesHaveBuddies) {
  static const QRegularExpression access(u"(^|[^&])&[^& ]"_s);
  ForAll([](QWidget& aWindow) {
    for (const QLabel* label : aWindow.findChildren<QLabel*>()) {
      if (!label->isVisibleTo(&aWindow) || !label->text().endsWith(u':')) continue;
      const bool hasKey = access.match(label->text()).hasMatch();
      EXPECT_TRUE(!hasKey || label->buddy()) << NameOf(*label);
      EXPECT_TRUE(!label->buddy() || label->buddy()->focusPolicy() != Qt::NoFocus) << NameOf(*label);
    }
  });
}

TEST_F(AllWindowsTest, NoTwoAccessKeysOfADialogAreTheSame) {
  static const QRegularExpression access(u"(?:^|[^&])&([^& ])"_s);
  ForAll([](QWidget& aWindow) {
    if (!qobject_cast<QDialog*>(&aWindow)) return;
    QHash<QString, QString> seen;
    for (const QWidget* widget : aWindow.findChildren<QWidget*>()) {
      const auto* button = qobject_cast<const QAbstractButton*>(widget);
      const auto* label = qobject_cast<const QLabel*>(widget);
      if (!widget->isVisibleTo(&aWindow) || (!button && !(label && label->buddy()))) continue;
      const QRegularExpressionMatch match = access.match(button ? button->text() : label->text());
      if (!match.hasMatch()) continue;
      const QString key = match.captured(1).toLower();
      EXPECT_FALSE(seen.contains(key)) << NameOf(*widget) << " has the key of " << seen[key].toStdString();
      seen.insert(key, widget->objectName());
    }
  });
}

TEST_F(AllWindowsTest, TabReachesEveryControlOnce) {
  ForAll([](QWidget& aWindow) {
    QList<QWidget*> chain;
    for (QWidget* widget = aWindow.nextInFocusChain(); widget && widget != &aWindow;
         widget = widget->nextInFocusChain()) {
      ASSERT_FALSE(chain.contains(widget)) << NameOf(*widget);
      chain.append(widget);
    }
    for (QWidget* control : Reachable(aWindow)) EXPECT_TRUE(chain.contains(control)) << NameOf(*control);
  });
}

// Down the window, and along each line: no step of Tab goes up past what it has come by, but to another
// column.
TEST_F(AllWindowsTest, TabGoesDownTheDialogs) {
  ForAll([](QWidget& aWindow) {
    if (!qobject_cast<QDialog*>(&aWindow)) return;
    const QList<QWidget*> controls = TabOrder(aWindow);
    for (qsizetype i = 1; i < controls.size(); ++i) {
      const QRect last = PlaceOf(*controls[i - 1], aWindow);
      const QRect place = PlaceOf(*controls[i], aWindow);
      EXPECT_TRUE(place.center().y() >= last.top() || place.left() >= last.right())
          << NameOf(*controls[i - 1]) << " to " << NameOf(*controls[i]);
    }
  });
}

TEST_F(AllWindowsTest, EscapeClosesTheDialogs) {
  ForAll([](QWidget& aWindow) {
    if (!qobject_cast<QDialog*>(&aWindow)) return;
    const QPointer<QWidget> window(&aWindow);
    const QString name = aWindow.objectName();
    QWidget* focus = aWindow.focusWidget();
    QTest::keyClick(focus ? focus : &aWindow, Qt::Key_Escape);
    EXPECT_TRUE(!window || !window->isVisible());
    EXPECT_FALSE(CVelumWinMan::FormIsLoaded(name));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  });
  EXPECT_EQ(iPresenter.Count(), 0);
}

TEST_F(AllWindowsTest, EachHasAHelpPage) {
  const CVelumHelpBook book;
  ASSERT_TRUE(book.IsOpen());
  ForAll([&](QWidget& aWindow) {
    const QString page = CVelumMsg::HelpPage(aWindow.objectName(), {});
    if (aWindow.objectName() == u"CVelumMsgForm"_s) return; // the page of its message
    EXPECT_FALSE(book.Data(CVelumHelpBook::Url(page)).isEmpty()) << page.toStdString();
  });
}

TEST_F(AllWindowsTest, EachFitsASmallScreen) {
  ForAll([](QWidget& aWindow) {
    EXPECT_LE(aWindow.minimumSizeHint().width(), 1000);
    EXPECT_LE(aWindow.minimumSizeHint().height(), 680);
  });
}
