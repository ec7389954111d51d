#include "shell/frame/CVelumEditCommands.h"

#include "core/CVelumMsg.h"
#include "runtime/lists/CVelumCardListForm.h"
#include "runtime/view/CVelumGenForm.h"
#include "shell/ShellTest.h"
#include "shell/dialogs/CVelumCardEdit.h"
#include "toolkit/CVelumDialogForm.h"
#include "toolkit/CVelumWinMan.h"

#include <QAbstractEventDispatcher>
#include <QAbstractItemView>
#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

namespace {

// What the windows were told: kinds, and whether the card was still there.
QStringList gTold;

class CTold final : public CVelumDialogForm {
public:
  CTold() : CVelumDialogForm(u"CVelumSearchForm"_s, false) {}
  void ChangeNotify(int aKind, CVelumObject*, CVelumObject* aObj2) override {
    const auto* card = dynamic_cast<CVelumCard*>(aObj2);
    gTold.append(card ? u"%1 %2"_s.arg(aKind).arg(card->Stack() ? u"there"_s : u"gone"_s)
                      : QString::number(aKind));
  }
};

class CVelumEditCommandsTest : public ShellTest {
protected:
  ~CVelumEditCommandsTest() override {
    CloseDialogs();
    CVelumWinMan::SetFactory(u"CVelumSearchForm"_s, {});
    gTold.clear();
  }
  void Open() {
    Start(CopyStack(u"a.Orvelle"_s));
    gFrame->activateWindow();
    QApplication::processEvents();
  }
  static QLineEdit* Field() {
    return gStackView->CardView()->ViewForm().findChild<QLineEdit*>(u"fGenTextBox0"_s);
  }
  static void Type(const QString& aText) {
    QTest::mouseClick(Field(), Qt::LeftButton);
    Field()->selectAll();
    QTest::keyClicks(Field(), aText);
  }
  // Types, and leaves the field.
  static void Enter(const QString& aText) {
    Type(aText);
    QTest::keyClick(Field(), Qt::Key_Tab);
    Settle();
  }
  static void Settle() {
    QApplication::processEvents();
    QCoreApplication::sendPostedEvents();
    Q_EMIT QAbstractEventDispatcher::instance()->aboutToBlock();
  }
  static void Key(QWidget* aWidget, Qt::Key aKey, Qt::KeyboardModifiers aModifiers) {
    QTest::keyClick(aWidget, aKey, aModifiers);
    Settle();
  }
  static qint32 NumCards() { return gStack->NumCards(); }
};

} // namespace

TEST_F(CVelumEditCommandsTest, AValueComesBackAndGoesAgainByKey) {
  Open();
  const QString before = Field()->text();
  Enter(u"typed"_s);
  EXPECT_TRUE(gStackView->HasUnsavedChanges());
  Key(gFrame, Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(Field()->text(), before);
  EXPECT_FALSE(gStackView->HasUnsavedChanges()) << "that is what the file has";
  Key(gFrame, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(Field()->text(), u"typed"_s);
  EXPECT_TRUE(gStackView->HasUnsavedChanges());
  Key(gFrame, Qt::Key_Z, Qt::ControlModifier);
  Key(gFrame, Qt::Key_Y, Qt::ControlModifier);
  EXPECT_EQ(Field()->text(), u"typed"_s);
  EXPECT_EQ(gStackView->Steps()->Recorder().Strays(), 0);
}

TEST_F(CVelumEditCommandsTest, TypingInAFieldIsOneStepWithItsName) {
  Open();
  Enter(u"typed by hand"_s);
  EXPECT_EQ(gStackView->Steps()->NumSteps(), 1);
  EXPECT_TRUE(gStackView->UndoName().startsWith(u"Change "_s)) << gStackView->UndoName().toStdString();
  EXPECT_TRUE(gStackView->UndoName().endsWith(u" of card 00"_s)) << gStackView->UndoName().toStdString();
  EXPECT_EQ(Action(u"fUndo"_s)->text(), u"&Undo "_s + gStackView->UndoName());
  EXPECT_EQ(Action(u"Undo"_s)->toolTip(), u"Undo "_s + gStackView->UndoName());
  EXPECT_TRUE(Action(u"Undo"_s)->isEnabled());
  EXPECT_FALSE(Action(u"Redo"_s)->isEnabled());
}

TEST_F(CVelumEditCommandsTest, AnEntryWithChangesOfItsOwnComesFirst) {
  Open();
  const QString before = Field()->text();
  Enter(u"first"_s);
  Type(u"second"_s);
  Settle();
  EXPECT_EQ(Action(u"fUndo"_s)->text(), u"&Undo typing"_s);
  while (Field()->isUndoAvailable()) Key(Field(), Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(Field()->text(), u"first"_s);
  EXPECT_EQ(gStackView->Steps()->NumSteps(), 1) << "the entry took its own changes back";
  Key(Field(), Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(Field()->text(), before) << "and then the stack's";
}

TEST_F(CVelumEditCommandsTest, ADeletedCardComesBackAndIsShown) {
  Open();
  iPresenter.SetDefaultAnswer(true);
  Choose(u"fDeleteCard"_s);
  Settle();
  EXPECT_EQ(NumCards(), 12);
  EXPECT_EQ(CardName(), u"card 01"_s);
  EXPECT_EQ(Action(u"fUndo"_s)->text(), u"&Undo Delete card 'card 00'"_s);
  Choose(u"fUndo"_s);
  EXPECT_EQ(NumCards(), 13);
  EXPECT_EQ(CardName(), u"card 00"_s);
  EXPECT_EQ(Report(), u"Taken back: Delete card 'card 00'"_s);
  Choose(u"fRedo"_s);
  EXPECT_EQ(NumCards(), 12);
  EXPECT_NE(CardName(), u"card 00"_s);
  EXPECT_EQ(Report(), u"Made again: Delete card 'card 00'"_s);
}

TEST_F(CVelumEditCommandsTest, AllDeletedCardsComeBack) {
  Open();
  iPresenter.SetDefaultAnswer(true);
  Choose(u"fEmptyStack"_s);
  Settle();
  EXPECT_EQ(NumCards(), 0);
  EXPECT_EQ(gStackView->UndoName(), u"Delete all cards"_s);
  Choose(u"fUndo"_s);
  EXPECT_EQ(NumCards(), 13);
  EXPECT_TRUE(gStackView->CurCard());
  Ref<CVelumCard> card;
  EXPECT_TRUE(gStack->GetCard(u"card 12"_s, card));
}

TEST_F(CVelumEditCommandsTest, StepsSurviveASave) {
  Open();
  const QString before = Field()->text();
  Enter(u"typed"_s);
  gFrame->Commands().SaveStack();
  EXPECT_FALSE(gStackView->HasUnsavedChanges());
  Choose(u"fUndo"_s);
  EXPECT_EQ(Field()->text(), before);
  EXPECT_TRUE(gStackView->HasUnsavedChanges());
  Choose(u"fRedo"_s);
  EXPECT_FALSE(gStackView->HasUnsavedChanges());
}

TEST_F(CVelumEditCommandsTest, WindowsHearBeforeACardGoes) {
  Open();
  CVelumWinMan::SetFactory(u"CVelumSearchForm"_s, [] { return new CTold; });
  Choose(u"fSearch"_s);
  {
    const CVelumError::CCommand command(u"New card 'x'"_s);
    gStackView->AddCard(MakeRef<CVelumCard>(u"x"_s, gStackView->CurCard()->Background()), nullptr);
  }
  gTold.clear();
  gStackView->Undo();
  EXPECT_EQ(gTold.value(0), u"9 there"_s);
  EXPECT_TRUE(gTold.contains(u"3"_s));
  EXPECT_EQ(NumCards(), 13);
}

TEST_F(CVelumEditCommandsTest, NothingIsTakenBackWhileAScriptRuns) {
  Open();
  Enter(u"typed"_s);
  iRunner.iRunning = true;
  EXPECT_FALSE(gStackView->CanUndo());
  gStackView->Undo();
  EXPECT_EQ(Field()->text(), u"typed"_s);
  iRunner.iRunning = false;
  EXPECT_TRUE(gStackView->CanUndo());
}

TEST_F(CVelumEditCommandsTest, UndoRunsNoScripts) {
  Open();
  Enter(u"typed"_s);
  const auto runs = iRunner.iSent.size();
  Choose(u"fUndo"_s);
  EXPECT_EQ(iRunner.iSent.size(), runs);
}

TEST_F(CVelumEditCommandsTest, AWindowWithEntriesAsksFirst) {
  Open();
  Enter(u"typed"_s);
  Choose(u"fEditCard"_s);
  auto* window = dynamic_cast<CVelumCardEdit*>(CVelumWinMan::NameToForm(u"CVelumCardEdit"_s));
  auto* name = window->findChild<QLineEdit*>(u"fName"_s);
  name->selectAll();
  QTest::keyClicks(name, u"Other"_s);
  ASSERT_TRUE(window->HasEntries());
  gFrame->setFocus();
  gFrame->activateWindow();
  iPresenter.SetDefaultAnswer(false);
  CVelumEditCommands commands(*gFrame);
  Field()->clearFocus();
  gFrame->setFocus();
  commands.Undo();
  EXPECT_EQ(iPresenter.CountOf(EMsgDiscardChangesOk), 1);
  EXPECT_EQ(Field()->text(), u"typed"_s) << "No leaves all as it is";
  EXPECT_EQ(name->text(), u"Other"_s);
  iPresenter.SetDefaultAnswer(true);
  commands.Undo();
  EXPECT_NE(Field()->text(), u"typed"_s);
  EXPECT_EQ(name->text(), u"card 00"_s);
}

TEST_F(CVelumEditCommandsTest, EditsTheEntryThatHasTheFocus) {
  Open();
  CVelumEditCommands commands(*gFrame);
  Type(u"abc"_s);
  EXPECT_FALSE(commands.CanCut());
  commands.SelectAll();
  EXPECT_TRUE(commands.CanCut());
  commands.Cut();
  EXPECT_EQ(Field()->text(), QString());
  EXPECT_EQ(QApplication::clipboard()->text(), u"abc"_s);
  EXPECT_TRUE(commands.CanPaste());
  commands.Paste();
  commands.Paste();
  EXPECT_EQ(Field()->text(), u"abcabc"_s);
  commands.SelectAll();
  commands.Copy();
  EXPECT_EQ(QApplication::clipboard()->text(), u"abcabc"_s);
  EXPECT_TRUE(commands.Delete());
  EXPECT_EQ(Field()->text(), QString());
}

TEST_F(CVelumEditCommandsTest, DeletesTheCardInTheList) {
  Open();
  gStackView->ShowCardList();
  auto* list = gFrame->findChild<CVelumCardListForm*>();
  ASSERT_TRUE(list);
  QWidget* focus = list->focusWidget() ? list->focusWidget() : list;
  focus->setFocus();
  ASSERT_TRUE(CVelumEditCommands::InCardList());
  iPresenter.SetDefaultAnswer(true);
  Choose(u"fDelete"_s);
  EXPECT_EQ(iPresenter.CountOf(EMsgDeleteCardOk), 1);
  EXPECT_EQ(NumCards(), 12);
}

TEST_F(CVelumEditCommandsTest, ListsKeepTheirKeys) {
  Open();
  gStackView->ShowCardList();
  auto* list = gFrame->findChild<CVelumCardListForm*>();
  ASSERT_TRUE(list);
  auto* focus = list->findChild<QAbstractItemView*>();
  ASSERT_TRUE(focus);
  focus->setFocus();
  QApplication::clipboard()->setText(u"before"_s);
  QTest::keyClick(focus, Qt::Key_C, Qt::ControlModifier);
  EXPECT_NE(QApplication::clipboard()->text(), u"before"_s) << "the list copied its line";
  iPresenter.SetDefaultAnswer(true);
  QTest::keyClick(focus, Qt::Key_Delete);
  EXPECT_EQ(iPresenter.CountOf(EMsgDeleteCardOk), 1);
  EXPECT_EQ(NumCards(), 12);
}

TEST_F(CVelumEditCommandsTest, WhatIsStillBeingTypedIsTheStepThatIsReported) {
  Open();
  iPresenter.SetDefaultAnswer(true);
  Choose(u"fDeleteCard"_s);
  const QString before = Field()->text();
  Type(u"typed"_s);
  EXPECT_TRUE(gStackView->Undo().startsWith(u"Change "_s));
  EXPECT_EQ(Field()->text(), before);
  EXPECT_EQ(gStackView->Undo(), u"Delete card 'card 00'"_s);
  EXPECT_EQ(gStackView->Undo(), QString()) << "nothing is left";
}

TEST_F(CVelumEditCommandsTest, MovingACardIsAStepWithItsName) {
  Open();
  gStackView->ShowCardList();
  auto* list = gFrame->findChild<CVelumCardListForm*>();
  ASSERT_TRUE(list);
  QTest::mouseClick(list->findChild<QPushButton*>(u"fDownBut"_s), Qt::LeftButton);
  EXPECT_EQ(gStackView->UndoName(), u"Move card 'card 00'"_s);
  Ref<CVelumCard> first;
  static_cast<void>(gStackView->Undo());
  ASSERT_TRUE(gStack->GetCardByNum(0, first));
  EXPECT_EQ(first->Name(), u"card 00"_s);
}

TEST_F(CVelumEditCommandsTest, ADeletionThatUndoCannotHoldAsksFirst) {
  Open();
  for (int i = 0; i < 3; ++i) {
    Ref<CVelumCard> card;
    ASSERT_TRUE(gStack->GetCardByNum(i, card));
    card->SetName(QString(50'000'000, u'x'));
  }
  iPresenter.SetDefaultAnswer(false);
  EXPECT_FALSE(gStackView->MayDelete(nullptr));
  EXPECT_EQ(iPresenter.CountOf(EMsgCannotUndoOk), 1);
  iPresenter.SetDefaultAnswer(true);
  EXPECT_TRUE(gStackView->MayDelete(nullptr));
  EXPECT_EQ(NumCards(), 13);
}
