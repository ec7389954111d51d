#include "runtime/StackViewTest.h"
#include "toolkit/CVelumToolkitPump.h"

#include <QLineEdit>
#include <QTest>
#include <QTimer>

namespace {

using CVelumStackViewFieldsTest = StackViewTest;

TEST_F(CVelumStackViewFieldsTest, AFieldLeftAfterAChangeIsClosed) {
  OpenThree();
  const auto other = AddField(iSet, u"Other"_s, EConText);
  View().RefreshViews(true, false);
  iRunner.iSent.clear();
  Type(iName, u"Ada"_s);
  Base(other).SetFocus();
  EXPECT_EQ(TextOf(iCards[0], iName), u"Ada"_s);
  EXPECT_TRUE(View().CardChanged());
  Base(iName).SetFocus();
  EXPECT_EQ(iRunner.iSent, (QStringList{u"closeField a.Name"_s, u"exitField a.Other"_s}));
}

TEST_F(CVelumStackViewFieldsTest, AValueTypedBackToWhatItWasIsOnlyLeft) {
  OpenThree();
  Type(iName, u"x"_s);
  QTest::keyClick(Base(iName).Widget(), Qt::Key_Backspace);
  View().GoToCard(iCards[1]);
  // Without a value of its own the field differs from the empty text; with one it does not.
  iRunner.iSent.clear();
  View().GoToCard(iCards[0]);
  iRunner.iSent.clear();
  Type(iName, u"x"_s);
  QTest::keyClick(Base(iName).Widget(), Qt::Key_Backspace);
  View().GoToCard(iCards[1]);
  EXPECT_EQ(iRunner.iSent, (QStringList{u"exitField a.Name"_s, u"openCard b"_s}));
}

TEST_F(CVelumStackViewFieldsTest, NumbersAndDatesAreShownInTheirNormalForm) {
  const auto num = AddField(iSet, u"Num"_s, EConInteger);
  const auto real = AddField(iSet, u"Real"_s, EConReal);
  real->SetDigits(2);
  const auto date = AddField(iSet, u"Date"_s, EConDate);
  const auto card = AddCard(u"a"_s);
  Open();
  Type(num, u" 012 "_s);
  Type(real, u"1234.5"_s);
  EXPECT_EQ(Base(num).Text(), u"12"_s);
  Type(date, u"7/4/1976"_s);
  EXPECT_EQ(Base(real).Text(), u"1,234.50"_s);
  Base(num).SetFocus();
  EXPECT_EQ(Base(date).Text(), u"7/4/1976"_s);
  EXPECT_EQ(card->GetControlVal(num->Id(), false).Int(), 12);
  EXPECT_DOUBLE_EQ(card->GetControlVal(real->Id(), false).Real(), 1234.5);
}

TEST_F(CVelumStackViewFieldsTest, ANumberTypedInAnotherFormIsNoChangeButIsShownInItsOwn) {
  const auto num = AddField(iSet, u"Num"_s, EConInteger);
  const auto card = AddCard(u"a"_s);
  card->SetControlVal(num->Id(), TVelumValue::OfInt(12));
  Open();
  iRunner.iSent.clear();
  Type(num, u".0"_s);
  View().ValidateCurControl();
  EXPECT_EQ(Base(num).Text(), u"12"_s);
  EXPECT_EQ(iRunner.iSent, QStringList{u"exitField a.Num"_s});
}

TEST_F(CVelumStackViewFieldsTest, SaveTakesTheValueAndWhatIsTypedNextIsTakenToo) {
  OpenThree();
  Type(iName, u"Ad"_s);
  View().ValidateCurControl();
  EXPECT_EQ(TextOf(iCards[0], iName), u"Ad"_s);
  EXPECT_TRUE(Base(iName).HasFocus());
  EXPECT_EQ(View().CurObj(), &Base(iName));
  QTest::keyClicks(Base(iName).Widget(), u"a"_s);
  View().ValidateCurControl();
  EXPECT_EQ(TextOf(iCards[0], iName), u"Ada"_s);
}

TEST_F(CVelumStackViewFieldsTest, TheCursorStaysWhereItWasInALongTextToo) {
  const auto text = AddField(iSet, u"Text"_s, EConText, EConMaxHeight);
  const auto card = AddCard(u"a"_s);
  card->SetControlVal(text->Id(), TVelumValue::OfStr(u"one\r\ntwo"_s));
  Open();
  Type(text, u" and"_s);
  View().ValidateCurControl();
  QTest::keyClicks(Base(text).Widget(), u" a"_s);
  Resize(300, 300);
  QTest::keyClicks(Base(text).Widget(), u" half"_s);
  View().ValidateCurControl();
  EXPECT_EQ(TextOf(card, text), u"one\r\ntwo and a half"_s);
}

TEST_F(CVelumStackViewFieldsTest, AMenuTakesTheValueAndWhatIsTypedNextIsTakenToo) {
  OpenThree();
  Type(iName, u"Ad"_s);
  QMenu menu(&iFrame.iArea);
  menu.addAction(u"x"_s);
  menu.popup({0, 0});
  QCoreApplication::processEvents();
  EXPECT_EQ(TextOf(iCards[0], iName), u"Ad"_s);
  EXPECT_EQ(iRunner.iSent, QStringList{u"closeField a.Name"_s});
  menu.close();
  menu.popup({0, 0});
  QCoreApplication::processEvents();
  menu.close();
  EXPECT_EQ(iRunner.iSent.size(), 1) << "without a change a menu leaves no field";
  EXPECT_EQ(View().CardView()->FocusControl(), iName.Get()) << "a menu does not take the field away";
  QTest::keyClicks(Base(iName).Widget(), u"a"_s);
  View().GoToCard(iCards[1]);
  EXPECT_EQ(TextOf(iCards[0], iName), u"Ada"_s);
}

TEST_F(CVelumStackViewFieldsTest, WhileAWindowIsBeingDeactivatedNothingIsDone) {
  OpenThree();
  Type(iName, u"Ada"_s);
  CVelumToolkitPump pump;
  CVelumSeams::SetEventPump(&pump);
  int timers = 0;
  QTimer::singleShot(0, &Form(), [&] { ++timers; });
  QEvent event(QEvent::WindowDeactivate);
  QCoreApplication::sendEvent(&Form(), &event);
  CVelumSeams::SetEventPump(nullptr);
  EXPECT_EQ(timers, 0) << "no events are let in";
  EXPECT_TRUE(iRunner.iSent.isEmpty());
  EXPECT_TRUE(View().CurObjChanged()) << "what was typed is still to be taken";
}

TEST_F(CVelumStackViewFieldsTest, AnotherWindowTakesTheValue) {
  OpenThree();
  Type(iName, u"Ada"_s);
  QWidget other;
  other.show();
  other.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
  EXPECT_EQ(TextOf(iCards[0], iName), u"Ada"_s);
  EXPECT_EQ(iRunner.iSent, QStringList{u"closeField a.Name"_s}) << "it was left once";
  iFrame.iArea.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&iFrame.iArea));
  QTest::keyClicks(Base(iName).Widget(), u"!"_s);
  View().LeaveCurCard();
  EXPECT_EQ(iCards[0]->GetControlVal(iName->Id(), false).Str().size(), 4);
}

TEST_F(CVelumStackViewFieldsTest, AResizeWhileTypingLosesNothing) {
  OpenThree();
  Type(iName, u"Ada"_s);
  Resize(300, 400);
  EXPECT_EQ(Base(iName).Text(), u"Ada"_s);
  EXPECT_EQ(View().CurObj(), &Base(iName));
  QTest::keyClicks(Base(iName).Widget(), u"x"_s);
  View().LeaveCurCard();
  EXPECT_EQ(TextOf(iCards[0], iName), u"Adax"_s);
}

TEST_F(CVelumStackViewFieldsTest, TextDroppedIntoAFieldWithoutFocusIsTaken) {
  OpenThree();
  const auto other = AddField(iSet, u"Other"_s, EConText);
  View().RefreshViews(true, false);
  Type(iName, u"Ada"_s);
  static_cast<QLineEdit*>(Base(other).Widget())->insert(u"dropped"_s);
  View().GoToCard(iCards[1]);
  EXPECT_EQ(TextOf(iCards[0], iName), u"Ada"_s);
  EXPECT_EQ(TextOf(iCards[0], other), u"dropped"_s);
}

TEST_F(CVelumStackViewFieldsTest, AReadOnlyFieldKeepsItsValueAndSaysSo) {
  OpenThree();
  iName->SetFlag(EConReadOnly, true);
  iCards[0]->SetControlVal(iName->Id(), TVelumValue::OfStr(u"Ada"_s));
  View().RefreshViews(true, false);
  Type(iName, u"x"_s);
  View().ValidateCurControl();
  EXPECT_EQ(iPresenter.Told(), QList<QString>{u"Read-only!"_s});
  EXPECT_EQ(Base(iName).Text(), u"Ada"_s);
  EXPECT_EQ(TextOf(iCards[0], iName), u"Ada"_s);
}

TEST_F(CVelumStackViewFieldsTest, ProgramsOwnWritesAreNoChanges) {
  OpenThree();
  iCards[1]->SetControlVal(iName->Id(), TVelumValue::OfStr(u"Ada"_s));
  View().GoToCard(iCards[1]);
  iRunner.iSent.clear();
  View().GoToCard(iCards[0]);
  EXPECT_EQ(iRunner.iSent, (QStringList{u"exitField b.Name"_s, u"openCard a"_s}));
}

TEST_F(CVelumStackViewFieldsTest, AKeptSortedBackgroundNotesTheKeyWhenAFieldIsEntered) {
  OpenThree();
  const auto key = KeepSortedByName();
  iCards[0]->SetControlVal(iName->Id(), TVelumValue::OfStr(u"Ada"_s));
  View().GoToCard(iCards[1]);
  View().GoToCard(iCards[0]);
  EXPECT_EQ(View().OldKey(), key->BuildKey(*iCards[0]));
}

TEST_F(CVelumStackViewFieldsTest, AKeyChangeMovesTheCard) {
  OpenThree();
  KeepSortedByName();
  for (int i = 1; i < 3; ++i)
    View().SetCardValue(iCards[i], iName->Id(), TVelumValue::OfStr(QString(QChar(u'k' + i))));
  Type(iName, u"z"_s);
  View().ValidateCurControl();
  qint32 num = 0;
  EXPECT_EQ(gStack->GetCardIndex(*iCards[0], num), 2);
  EXPECT_EQ(Form().Caption(), u"a - 3 of 3"_s);
  // Another card that moves past the current one moves it too.
  View().SetCardValue(iCards[1], iName->Id(), TVelumValue::OfStr(u"zz"_s));
  EXPECT_EQ(Form().Caption(), u"a - 2 of 3"_s);
}

TEST_F(CVelumStackViewFieldsTest, TheFieldOfTheNameRenamesTheCard) {
  iSet->SetFlags(ECseDenseLayout | ECseShowCardName);
  const auto field = AddField(iSet, u"Name"_s, EConText, EConCardName);
  const auto card = AddCard(u"a"_s);
  Open();
  Type(field, u"Ada"_s);
  View().ValidateCurControl();
  EXPECT_EQ(card->Name(), u"Ada"_s);
  EXPECT_EQ(Form().Caption(), u"Ada - 1 of 1"_s);
  EXPECT_EQ(Pool(u"fGenLabel0"_s).Text(), u"Ada"_s);
}

TEST_F(CVelumStackViewFieldsTest, SetCardValueShowsTheValueOfTheCurrentCardOnly) {
  OpenThree();
  View().SetCardValue(iCards[1], iName->Id(), TVelumValue::OfStr(u"other"_s));
  EXPECT_EQ(Base(iName).Text(), QString());
  EXPECT_FALSE(View().CardChanged());
  View().SetCardValue(iCards[0], iName->Id(), TVelumValue::OfStr(u"mine"_s));
  EXPECT_EQ(Base(iName).Text(), u"mine"_s);
  EXPECT_TRUE(View().CardChanged());
}

TEST_F(CVelumStackViewFieldsTest, ValuesSetWhileAFieldIsTypedInLeaveItsText) {
  OpenThree();
  AddReferredList();
  View().UpdateAfterControlChange();
  View().RefreshViews(true, false);
  Type(iName, u"typing"_s);
  View().SetCardValue(iCards[0], iRef->Id(), TVelumValue::OfStr(u"x"_s));
  EXPECT_EQ(Base(iName).Text(), u"typing"_s);
  EXPECT_FALSE(iCards[0]->Dirty());
  View().ValidateCurControl();
  EXPECT_EQ(TextOf(iCards[0], iName), u"typing"_s);
}

TEST_F(CVelumStackViewFieldsTest, AReferenceFieldBringsTheListsUpToDate) {
  OpenThree();
  const auto list = AddReferredList();
  iCards[1]->SetControlVal(iName->Id(), TVelumValue::OfStr(u"x"_s));
  View().UpdateAfterControlChange();
  View().RefreshViews(true, false);
  Type(iRef, u"x"_s);
  View().ValidateCurControl();
  EXPECT_FALSE(iCards[0]->Dirty());
  EXPECT_EQ(iCards[0]->GetControlVal(list->Id(), false).Str(), u"%1\tb"_s.arg(iCards[1]->Id()));
}

TEST_F(CVelumStackViewFieldsTest, ValidatingAnObjectThatHasNotTheFocusAsserts) {
  OpenThree();
  Base(iName).SetFocus();
  bool cancel = false;
  EXPECT_THROW(View().BaseObjValidate(&Pool(u"fGenTextBox5"_s), cancel), CVelumException);
  EXPECT_TRUE(iPresenter.LastText().contains(u"curObj"_s));
  View().ValidateCurControl();
  EXPECT_EQ(iPresenter.Count(), 1) << "the guard against nesting is off again";
}

TEST_F(CVelumStackViewFieldsTest, AScriptThatGoesElsewhereWhileAFieldIsLeftIsHeard) {
  OpenThree();
  const auto other = AddField(iSet, u"Other"_s, EConText);
  View().RefreshViews(true, false);
  Type(iName, u"Ada"_s);
  iRunner.iOnMessage = [this](const QString& aSent) {
    if (aSent == u"closeField a.Name"_s) View().GoToCard(iCards[2]);
  };
  Base(other).SetFocus();
  EXPECT_EQ(Cur(), u"c"_s);
  EXPECT_EQ(TextOf(iCards[0], iName), u"Ada"_s);
  EXPECT_EQ(TextOf(iCards[2], iName), QString());
}

TEST_F(CVelumStackViewFieldsTest, AScriptThatDeletesTheCardGoneToLeavesTheViewSound) {
  OpenThree();
  Type(iName, u"Ada"_s);
  iRunner.iOnMessage = [this](const QString& aSent) {
    if (aSent == u"closeField a.Name"_s) View().DeleteCard(iCards[1], nullptr);
  };
  View().GoToCard(iCards[1]);
  EXPECT_EQ(gStack->NumCards(), 2);
  EXPECT_EQ(View().CurCard(), nullptr);
  EXPECT_EQ(Form().Caption(), u"(No Card)"_s);
  for (const CVelumBaseControl* base : Form().Controls())
    EXPECT_FALSE(base->Visible()) << "typing would be lost";
  EXPECT_TRUE(View().OrderFirst(iFound));
  EXPECT_EQ(Base(iName).Text(), u"Ada"_s);
}

} // namespace
