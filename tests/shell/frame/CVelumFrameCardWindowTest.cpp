// The card window and the card list in the main window, with a field that is being typed in.
#include "core/CVelumValue.h"
#include "runtime/lists/CVelumCardListForm.h"
#include "runtime/lists/CVelumCardSelect.h"
#include "runtime/view/CVelumGenForm.h"
#include "shell/ShellTest.h"
#include "shell/frame/CVelumMain.h"
#include "toolkit/CVelumListWidget.h"
#include "toolkit/CVelumWinMan.h"

#include <QMenuBar>
#include <QPushButton>
#include <QTest>
#include <QToolBar>
#include <QToolButton>

namespace {

class CVelumFrameCardWindowTest : public ShellTest {
protected:
  void OpenCopy() {
    Start(CopyStack(u"a.Orvelle"_s));
    gFrame->resize(1200, 900);
    gFrame->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(gFrame));
    iCard = gStackView->CurCard();
    const CVelumCardLayout& layout = gStackView->CardView()->Layout();
    for (int i = 0; i < layout.NumControls() && !iField; ++i)
      if (layout.ControlAt(i)->BaseType() == EBaseTextBox && layout.ControlAt(i)->ConType() == EConText)
        iField = layout.ControlAt(i);
    ASSERT_TRUE(iField);
  }
  void Type(const QString& aText) {
    auto* base = qobject_cast<CVelumBaseControl*>(iField->BaseControl());
    QTest::mouseClick(base->Widget(), Qt::LeftButton);
    ASSERT_TRUE(base->HasFocus());
    QTest::keyClick(base->Widget(), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(base->Widget(), aText);
  }
  QString Stored() {
    return CVelumValue::ValToExtText(iCard->GetControlVal(iField->Id(), false), iField->FieldInfo());
  }
  static QWidget& Child() { return *CVelumWinMan::NameToForm(u"CVelumGenForm"_s)->Widget()->parentWidget(); }
  static CVelumCardListForm& ListForm() {
    return *dynamic_cast<CVelumCardListForm*>(CVelumWinMan::NameToForm(u"CVelumCardListForm"_s));
  }

  Ref<CVelumCard> iCard;
  Ref<CVelumControl> iField;
};

TEST_F(CVelumFrameCardWindowTest, TabTakesWhatWasTyped) {
  OpenCopy();
  Type(u"tab"_s);
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
  EXPECT_EQ(Stored(), u"tab"_s);
}

TEST_F(CVelumFrameCardWindowTest, AToolbarButtonTakesWhatWasTyped) {
  OpenCopy();
  Type(u"toolbar"_s);
  auto* bar = gFrame->findChild<QToolBar*>(u"fToolbar"_s);
  QTest::mouseClick(bar->widgetForAction(Action(u"NextCard"_s)), Qt::LeftButton);
  EXPECT_EQ(Stored(), u"toolbar"_s);
  EXPECT_NE(gStackView->CurCard(), iCard);
}

TEST_F(CVelumFrameCardWindowTest, AMenuTakesWhatWasTyped) {
  OpenCopy();
  Type(u"menu"_s);
  QTest::mouseClick(gFrame->menuBar(), Qt::LeftButton, {},
                    gFrame->menuBar()->actionGeometry(gFrame->menuBar()->actions().first()).center());
  EXPECT_EQ(Stored(), u"menu"_s);
  if (QWidget* popup = QApplication::activePopupWidget()) popup->close();
}

TEST_F(CVelumFrameCardWindowTest, AClickInTheCardListTakesWhatWasTyped) {
  OpenCopy();
  gStackView->OpenCardList();
  Type(u"list"_s);
  CVelumListWidget& list = *ListForm().CardBox();
  QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, list.visualRect(list.model()->index(2, 0)).center());
  EXPECT_EQ(Stored(), u"list"_s);
  EXPECT_EQ(CardName(), u"card 02"_s);
}

TEST_F(CVelumFrameCardWindowTest, AnotherWindowTakesWhatWasTyped) {
  OpenCopy();
  Type(u"window"_s);
  Choose(u"fSelectCard"_s);
  EXPECT_TRUE(CVelumWinMan::FormIsLoaded(u"CVelumCardSelect"_s));
  QCoreApplication::processEvents();
  EXPECT_EQ(Stored(), u"window"_s);
}

TEST_F(CVelumFrameCardWindowTest, ClosingWithAnUnfinishedFieldAsksToSaveIt) {
  OpenCopy();
  Type(u"closing"_s);
  AnswerSave(u"fSaveBut"_s);
  const QString path = gStack->Filename();
  EXPECT_TRUE(gFrame->close());
  EXPECT_TRUE(iAsked);
  const qint32 id = iField->Id();
  CVelumMain::End();
  Start(path);
  EXPECT_EQ(gStackView->CurCard()->GetControlVal(id, false).Str(), u"closing"_s);
}

TEST_F(CVelumFrameCardWindowTest, ClosingTheCardWindowWithAnUnfinishedFieldAsksToSaveIt) {
  OpenCopy();
  Type(u"box"_s);
  AnswerSave(u"fBackBut"_s);
  QWidget* child = CVelumWinMan::NameToForm(u"CVelumGenForm"_s)->Widget()->parentWidget();
  EXPECT_FALSE(child->close());
  EXPECT_TRUE(iAsked);
  EXPECT_EQ(Stored(), u"box"_s);
}

TEST_F(CVelumFrameCardWindowTest, AnEntryThatIsNoValueIsNeitherSavedNorLeftBehind) {
  OpenCopy();
  const QString path = gStack->Filename();
  iField = MakeRef<CVelumControl>(gStack->IdGen().NextId(), u"Num"_s, EConInteger);
  iField->SetVisChar(10);
  iCard->Background()->AddControl(iField, ENoInt);
  iCard->SetControlVal(iField->Id(), TVelumValue::OfInt(7));
  gStackView->RefreshViews(true, true);
  gStackView->OpenCardList();
  Type(u"12x"_s);
  auto* base = qobject_cast<CVelumBaseControl*>(iField->BaseControl());
  const auto expectRefused = [&] {
    QCoreApplication::processEvents();
    EXPECT_FALSE(base->Note().isEmpty());
    EXPECT_TRUE(base->HasFocus());
    EXPECT_EQ(base->Text(), u"12x"_s);
    EXPECT_EQ(Stored(), u"7"_s);
    EXPECT_EQ(gStackView->CurCard(), iCard);
    base->HideNote();
  };
  Choose(u"fSaveStack"_s);
  expectRefused();
  EXPECT_TRUE(gStack->Changed()) << "nothing was saved";
  iPath = path;
  Choose(u"fSaveStackAs"_s);
  expectRefused();
  EXPECT_EQ(iDialogs, 0);
  EXPECT_FALSE(gFrame->close());
  expectRefused();
  EXPECT_FALSE(iAsked) << "not asked to save what cannot be";
  EXPECT_FALSE(Child().close());
  expectRefused();
  Action(u"NextCard"_s)->trigger();
  expectRefused();
  CVelumListWidget& list = *ListForm().CardBox();
  QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, list.visualRect(list.model()->index(2, 0)).center());
  expectRefused();
  EXPECT_EQ(gStackView->CardListView()->SelCard(), iCard) << "the line of the card on show is chosen again";
  QTest::keyClick(base->Widget(), Qt::Key_Escape);
  EXPECT_EQ(base->Text(), u"7"_s);
  Action(u"NextCard"_s)->trigger();
  EXPECT_NE(gStackView->CurCard(), iCard);
}

TEST_F(CVelumFrameCardWindowTest, TheStatusBarOpensTheCardList) {
  Start();
  EXPECT_FALSE(Action(u"fShowCardList"_s)->isEnabled());
  iPath = CopyStack(u"a.Orvelle"_s);
  Choose(u"fOpenStack"_s);
  gStackView->CloseCardList();
  Action(u"fShowCardList"_s)->trigger();
  EXPECT_TRUE(gStackView->CardListIsOpen());
  EXPECT_TRUE(ListForm().isVisible());
  EXPECT_EQ(gStackView->CardListView()->CardBox().NumLines(), 13);
  EXPECT_TRUE(gFrame->isAncestorOf(&ListForm()));
}

TEST_F(CVelumFrameCardWindowTest, AnOpenCardListComesBackWithItsStackWhereItWas) {
  OpenCopy();
  gStackView->OpenCardList();
  ListForm().SetPlace(QRectF(450, 600, 4500, 5400), true);
  const QString path = gStack->Filename();
  Choose(u"fSaveStack"_s);
  Choose(u"fCloseStack"_s);
  EXPECT_FALSE(CVelumWinMan::FormIsLoaded(u"CVelumCardListForm"_s));
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  iPath = path;
  Choose(u"fOpenStack"_s);
  ASSERT_TRUE(gStackView->CardListIsOpen());
  EXPECT_EQ(ListForm().Place(), QRectF(450, 600, 4500, 5400));
}

TEST_F(CVelumFrameCardWindowTest, TheCardThatIsChosenIsGoneTo) {
  OpenCopy();
  Choose(u"fSelectCard"_s);
  auto* select = dynamic_cast<CVelumCardSelect*>(CVelumWinMan::NameToForm(u"CVelumCardSelect"_s));
  auto* list = select->findChild<CVelumListWidget*>(u"fCardBox"_s);
  const QString name = list->CellText(1, 0);
  list->SetSelLine(1);
  QTest::mouseClick(select->findChild<QPushButton*>(u"fSelectBut"_s), Qt::LeftButton);
  EXPECT_EQ(CardName(), name);
  Choose(u"fCloseStack"_s);
  EXPECT_FALSE(CVelumWinMan::FormIsLoaded(u"CVelumCardSelect"_s));
}

} // namespace
