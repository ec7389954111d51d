#include "core/CVelumMsg.h"
#include "runtime/RuntimeFixture.h"
#include "toolkit/CVelumBaseCheckBox.h"
#include "toolkit/CVelumWinMan.h"

#include <QClipboard>
#include <QLineEdit>
#include <QTest>

namespace {

class CVelumStackViewTest : public RuntimeTest {
protected:
  // Three cards with a text field "Name".
  void OpenThree() {
    iName = AddField(iSet, u"Name"_s, EConText);
    for (const auto& name : {u"a"_s, u"b"_s, u"c"_s}) iCards.append(AddCard(name));
    Open();
    iRunner.iSent.clear();
  }
  Ref<CVelumSortKey> KeepSortedByName() {
    const auto key = MakeRef<CVelumSortKey>(gStack->IdGen().NextId(), u"k"_s, iSet->Id());
    key->AddKeyPart(EConText, iName->Id(), EWayAscending, 5);
    gStack->AddSortKey(key);
    iSet->SetFlag(ECseKeepCardsSorted, true);
    gStack->NewIndexForSortKey(key);
    gStack->SetControlDynFlags();
    return key;
  }
  [[nodiscard]] QString Cur() { return View().CurCard() ? View().CurCard()->Name() : u"-"_s; }

  Ref<CVelumControl> iName;
  QList<Ref<CVelumCard>> iCards;
  Ref<CVelumCard> iFound;
};

TEST_F(CVelumStackViewTest, OpensOnTheFirstCardAtTheStoredPlace) {
  AddCard(u"a"_s);
  Open(6000, 7500);
  EXPECT_EQ(Cur(), u"a"_s);
  EXPECT_EQ(Form().Caption(), u"a - 1 of 1"_s);
  EXPECT_EQ(Form().size(), QSize(400, 500));
  EXPECT_TRUE(Form().isVisible());
  EXPECT_EQ(iRunner.iSent, QStringList{u"openCard a"_s});
  EXPECT_EQ(View().ObjDescr(), u"CVelumStackView name=View"_s);
}

TEST_F(CVelumStackViewTest, AnEmptyStackOpensWithoutACard) {
  Open();
  EXPECT_EQ(View().CurCard(), nullptr);
  EXPECT_EQ(Form().Caption(), u"(No Card)"_s);
  EXPECT_FALSE(View().GetCurCard(iFound));
  EXPECT_FALSE(View().OrderNext(iFound));
  EXPECT_FALSE(View().OrderPrev(iFound));
  EXPECT_FALSE(View().OrderLast(iFound));
  EXPECT_FALSE(View().HistoryPrev(iFound));
}

TEST_F(CVelumStackViewTest, DefaultPlacesStandInForUnsetOnes) {
  const auto state = MakeRef<CVelumViewState>(u"v"_s);
  state->iCardListRect = MakeRef<CVelumRect>(0.0F, std::nanf(""), 5.0F, 5.0F);
  const CVelumStackView view(state, gStack);
  EXPECT_EQ(view.CardViewRect()->X(), 7248);
  EXPECT_EQ(view.CardViewRect()->Y(), 160);
  EXPECT_GE(view.CardViewRect()->Width(), 208 * 20);
  EXPECT_GE(view.CardViewRect()->Height(), 255 * 20);
  EXPECT_EQ(view.CardListRect()->X(), 180);
  EXPECT_EQ(view.CardListRect()->Y(), 160);
  EXPECT_EQ(view.CardListRect()->Width(), 5472);
  EXPECT_EQ(view.CardListRect()->Height(), 7056);
}

TEST_F(CVelumStackViewTest, TheListOpensOnlyWhenItWasOpen) {
  Open();
  EXPECT_FALSE(View().CardListIsOpen());
  EXPECT_FALSE(View().State()->iCardListOpen);
  View().OpenCardList();
  EXPECT_TRUE(View().State()->iCardListOpen);
  View().CloseCardList();
  EXPECT_FALSE(View().State()->iCardListOpen);
}

TEST_F(CVelumStackViewTest, LeafsThroughTheOrder) {
  OpenThree();
  EXPECT_TRUE(View().OrderNext(iFound));
  EXPECT_EQ(Cur(), u"b"_s);
  EXPECT_EQ(iFound, View().CurCard());
  EXPECT_EQ(Form().Caption(), u"b - 2 of 3"_s);
  EXPECT_TRUE(View().OrderLast(iFound));
  EXPECT_FALSE(View().OrderNext(iFound));
  EXPECT_EQ(Cur(), u"c"_s);
  EXPECT_TRUE(View().OrderPrev(iFound));
  EXPECT_TRUE(View().OrderFirst(iFound));
  EXPECT_EQ(Cur(), u"a"_s);
  EXPECT_TRUE(View().HistoryPrev(iFound));
  EXPECT_EQ(Cur(), u"b"_s);
  EXPECT_TRUE(View().HistoryNext(iFound));
  EXPECT_EQ(Cur(), u"a"_s);
}

TEST_F(CVelumStackViewTest, GoingToTheCurrentCardNeitherLeavesItNorOpensIt) {
  OpenThree();
  Type(iName, u"x"_s);
  View().GoToCard(iCards[0]);
  EXPECT_TRUE(iRunner.iSent.isEmpty());
  EXPECT_EQ(TextOf(iCards[0], iName), QString());
  EXPECT_EQ(View().History().Len(), 1);
  View().GoToCard(iCards[1]);
  View().HistoryPrev(iFound);
  View().GoToCard(iCards[0]);
  EXPECT_EQ(View().History().Len(), 2) << "but it is added when it is not the last entry";
  EXPECT_EQ(View().History().At(1), iCards[0]);
}

TEST_F(CVelumStackViewTest, ACardOfAnotherStackOrADeletedOneIsNotShown) {
  OpenThree();
  View().GoToCard(nullptr);
  View().GoToCard(MakeRef<CVelumCard>(u"x"_s, iSet));
  EXPECT_EQ(Cur(), u"a"_s);
  gStack->DeleteCard(iCards[1]);
  View().GoToCard(iCards[1]);
  EXPECT_EQ(Cur(), u"a"_s);
  EXPECT_EQ(View().History().Len(), 1);
}

TEST_F(CVelumStackViewTest, LeavingACardTakesWhatWasTyped) {
  OpenThree();
  Type(iName, u"Ada"_s);
  View().GoToCard(iCards[1]);
  EXPECT_EQ(TextOf(iCards[0], iName), u"Ada"_s);
  EXPECT_EQ(Base(iName).Text(), QString());
  EXPECT_EQ(iRunner.iSent, (QStringList{u"closeField a.Name"_s, u"openCard b"_s}));
}

TEST_F(CVelumStackViewTest, TheFieldKeepsTheFocusFromCardToCard) {
  OpenThree();
  const auto other = AddField(iSet, u"Other"_s, EConText);
  View().RefreshViews(true, false);
  Base(other).SetFocus();
  View().GoToCard(iCards[1]);
  EXPECT_EQ(View().CurObj(), &Base(other));
  QTest::keyClicks(Base(other).Widget(), u"x"_s);
  View().GoToCard(iCards[2]);
  EXPECT_EQ(TextOf(iCards[1], other), u"x"_s);
}

TEST_F(CVelumStackViewTest, AnotherBackgroundPutsTheFocusInItsFirstField) {
  OpenThree();
  const auto set = AddBackground(u"Other"_s);
  const auto first = AddField(set, u"First"_s, EConInteger);
  const auto card = AddCard(u"d"_s, set);
  Type(iName, u"Ada"_s);
  View().GoToCard(card);
  EXPECT_EQ(TextOf(iCards[0], iName), u"Ada"_s);
  EXPECT_EQ(View().CurObj(), &Base(first));
  EXPECT_FALSE(card->ControlValDef(first->Id())) << "no value lands in another field";
  QTest::keyClicks(Base(first).Widget(), u"7"_s);
  View().GoToCard(iCards[0]);
  EXPECT_EQ(TextOf(card, first), u"7"_s);
}

TEST_F(CVelumStackViewTest, AddedCardsAreCountedInTheTitle) {
  OpenThree();
  const auto card = View().AddCard(iSet, u"d"_s);
  EXPECT_EQ(card->Name(), u"d"_s);
  EXPECT_EQ(Form().Caption(), u"a - 1 of 4"_s);
  EXPECT_EQ(Cur(), u"a"_s);
}

TEST_F(CVelumStackViewTest, DeletingTheCurrentCardShowsTheNext) {
  OpenThree();
  View().GoToCard(iCards[1]);
  View().DeleteCard(iCards[1], nullptr);
  EXPECT_EQ(Cur(), u"c"_s);
  EXPECT_EQ(gStack->NumCards(), 2);
  View().DeleteCard(iCards[2], nullptr);
  EXPECT_EQ(Cur(), u"a"_s) << "the first one when there is none behind";
}

TEST_F(CVelumStackViewTest, DeletingAnotherCardLeavesTheCurrentOne) {
  OpenThree();
  View().GoToCard(iCards[2]);
  View().DeleteCard(iCards[0], nullptr);
  EXPECT_EQ(Cur(), u"c"_s);
  EXPECT_EQ(View().History().Len(), 1);
}

TEST_F(CVelumStackViewTest, DeletingTheOnlyCardLeavesAClearedView) {
  AddField(iSet, u"Name"_s, EConText);
  const auto card = AddCard(u"a"_s);
  Open();
  View().DeleteCard(card, nullptr);
  EXPECT_EQ(View().CurCard(), nullptr);
  EXPECT_EQ(View().History().Len(), 0);
  EXPECT_EQ(Form().Caption(), u"(No Card)"_s);
  for (const CVelumBaseControl* base : Form().Controls()) EXPECT_FALSE(base->Visible());
}

TEST_F(CVelumStackViewTest, DeletingWithAClosedWindowLeavesNoCurrentCard) {
  OpenThree();
  View().CloseCardView(true);
  EXPECT_EQ(View().CurCard(), nullptr);
  View().DeleteCard(iCards[0], nullptr);
  EXPECT_EQ(View().CurCard(), nullptr);
  EXPECT_EQ(gStack->NumCards(), 2);
}

TEST_F(CVelumStackViewTest, ACardOfAnotherStackCannotBeDeleted) {
  OpenThree();
  EXPECT_THROW(View().DeleteCard(MakeRef<CVelumCard>(u"x"_s, iSet), nullptr), CVelumException);
  EXPECT_TRUE(iPresenter.LastText().contains(u"stack"_s));
  iPresenter.SetDefaultAnswer(true);
  View().DeleteCard(MakeRef<CVelumCard>(u"x"_s, iSet), nullptr);
  EXPECT_EQ(gStack->NumCards(), 3);
}

TEST_F(CVelumStackViewTest, DeletingABackgroundShowsACardOfAnother) {
  OpenThree();
  const auto set = AddBackground(u"Other"_s);
  const auto card = AddCard(u"d"_s, set);
  View().GoToCard(iCards[1]);
  View().GoToCard(card);
  View().GoToCard(iCards[0]);
  View().DeleteBackground(iSet, false);
  EXPECT_EQ(Cur(), u"d"_s);
  EXPECT_EQ(gStack->NumCards(), 1);
  while (View().HistoryPrev(iFound)) EXPECT_EQ(Cur(), u"d"_s) << "no way leads to a deleted card";
}

TEST_F(CVelumStackViewTest, AnEmptiedStackHasNoHistory) {
  OpenThree();
  View().GoToCard(iCards[1]);
  Type(iName, u"x"_s);
  View().EmptyStack();
  EXPECT_EQ(gStack->NumCards(), 0);
  EXPECT_EQ(View().History().Index(), ENoShort);
  EXPECT_EQ(Form().Caption(), u"(No Card)"_s);
  EXPECT_TRUE(View().CardViewIsOpen());
  EXPECT_EQ(View().CurObj(), nullptr);
  View().AddCard(iSet, u"new"_s);
  EXPECT_TRUE(View().OrderFirst(iFound));
  EXPECT_EQ(Cur(), u"new"_s);
  EXPECT_EQ(View().History().Len(), 1);
}

TEST_F(CVelumStackViewTest, ATitleTakesAnyName) {
  AddCard(u"[*] %1 & \"x\""_s);
  Open();
  EXPECT_EQ(Form().Caption(), u"[*] %1 & \"x\" - 1 of 1"_s);
  EXPECT_EQ(Form().windowTitle(), u"[*][*] %1 & \"x\" - 1 of 1"_s) << "not the mark of a changed document";
}

TEST_F(CVelumStackViewTest, UpdateRectTakesThePlaceOfTheWindow) {
  OpenThree();
  Form().setGeometry(10, 20, 300, 400);
  View().UpdateRect();
  EXPECT_EQ(View().CardViewRect()->X(), 150);
  EXPECT_EQ(View().CardViewRect()->Y(), 300);
  EXPECT_EQ(View().CardViewRect()->Width(), 4500);
  EXPECT_EQ(View().CardViewRect()->Height(), 6000);
}

TEST_F(CVelumStackViewTest, ReleaseUnloadsTheWindowAndFreesTheFields) {
  OpenThree();
  Type(iName, u"Ada"_s);
  View().Release();
  EXPECT_FALSE(CVelumWinMan::FormIsLoaded(u"CVelumGenForm"_s));
  EXPECT_EQ(iName->BaseControl(), nullptr);
  EXPECT_EQ(TextOf(iCards[0], iName), u"Ada"_s);
}

// --- Focus, typing and validation

TEST_F(CVelumStackViewTest, AFieldLeftAfterAChangeIsClosed) {
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

TEST_F(CVelumStackViewTest, AValueTypedBackToWhatItWasIsOnlyLeft) {
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

TEST_F(CVelumStackViewTest, NumbersAndDatesAreShownInTheirNormalForm) {
  const auto num = AddField(iSet, u"Num"_s, EConInteger);
  const auto real = AddField(iSet, u"Real"_s, EConReal);
  real->SetDigits(2);
  const auto date = AddField(iSet, u"Date"_s, EConDate);
  const auto card = AddCard(u"a"_s);
  Open();
  Type(num, u"12abc"_s);
  Type(real, u"1234.5"_s);
  EXPECT_EQ(Base(num).Text(), u"12"_s);
  Type(date, u"7/4/1976"_s);
  EXPECT_EQ(Base(real).Text(), u"1,234.50"_s);
  Base(num).SetFocus();
  EXPECT_EQ(Base(date).Text(), u"7/4/1976"_s);
  EXPECT_EQ(card->GetControlVal(num->Id(), false).Int(), 12);
  EXPECT_DOUBLE_EQ(card->GetControlVal(real->Id(), false).Real(), 1234.5);
}

TEST_F(CVelumStackViewTest, SaveTakesTheValueAndWhatIsTypedNextIsTakenToo) {
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

TEST_F(CVelumStackViewTest, TheCursorStaysWhereItWasInALongTextToo) {
  const auto text = AddField(iSet, u"Text"_s, EConText, EConMaxHeight);
  const auto card = AddCard(u"a"_s);
  card->SetControlVal(text->Id(), TVelumValue::OfStr(u"one\r\ntwo"_s));
  Open();
  Type(text, u" and"_s);
  View().ValidateCurControl();
  QTest::keyClicks(Base(text).Widget(), u" a"_s);
  Form().resize(300, 300);
  QTest::keyClicks(Base(text).Widget(), u" half"_s);
  View().ValidateCurControl();
  EXPECT_EQ(TextOf(card, text), u"one\r\ntwo and a half"_s);
}

TEST_F(CVelumStackViewTest, AMenuTakesTheValueAndWhatIsTypedNextIsTakenToo) {
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

TEST_F(CVelumStackViewTest, AnotherWindowTakesTheValue) {
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

TEST_F(CVelumStackViewTest, AResizeWhileTypingLosesNothing) {
  OpenThree();
  Type(iName, u"Ada"_s);
  Form().resize(300, 400);
  EXPECT_EQ(Base(iName).Text(), u"Ada"_s);
  EXPECT_EQ(View().CurObj(), &Base(iName));
  QTest::keyClicks(Base(iName).Widget(), u"x"_s);
  View().LeaveCurCard();
  EXPECT_EQ(TextOf(iCards[0], iName), u"Adax"_s);
}

TEST_F(CVelumStackViewTest, TextDroppedIntoAFieldWithoutFocusIsTaken) {
  OpenThree();
  const auto other = AddField(iSet, u"Other"_s, EConText);
  View().RefreshViews(true, false);
  Type(iName, u"Ada"_s);
  static_cast<QLineEdit*>(Base(other).Widget())->insert(u"dropped"_s);
  View().GoToCard(iCards[1]);
  EXPECT_EQ(TextOf(iCards[0], iName), u"Ada"_s);
  EXPECT_EQ(TextOf(iCards[0], other), u"dropped"_s);
}

TEST_F(CVelumStackViewTest, AReadOnlyFieldKeepsItsValueAndSaysSo) {
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

TEST_F(CVelumStackViewTest, ProgramsOwnWritesAreNoChanges) {
  OpenThree();
  iCards[1]->SetControlVal(iName->Id(), TVelumValue::OfStr(u"Ada"_s));
  View().GoToCard(iCards[1]);
  iRunner.iSent.clear();
  View().GoToCard(iCards[0]);
  EXPECT_EQ(iRunner.iSent, (QStringList{u"exitField b.Name"_s, u"openCard a"_s}));
}

TEST_F(CVelumStackViewTest, AKeptSortedBackgroundNotesTheKeyWhenAFieldIsEntered) {
  OpenThree();
  const auto key = KeepSortedByName();
  iCards[0]->SetControlVal(iName->Id(), TVelumValue::OfStr(u"Ada"_s));
  View().GoToCard(iCards[1]);
  View().GoToCard(iCards[0]);
  EXPECT_EQ(View().OldKey(), key->BuildKey(*iCards[0]));
}

TEST_F(CVelumStackViewTest, AKeyChangeThatMovesTheCardShowsInTheTitle) {
  OpenThree();
  KeepSortedByName();
  for (int i = 1; i < 3; ++i)
    View().SetCardValue(iCards[i], iName->Id(), TVelumValue::OfStr(QString(QChar(u'k' + i))));
  Type(iName, u"z"_s);
  View().ValidateCurControl();
  qint32 num = 0;
  EXPECT_EQ(gStack->GetCardIndex(*iCards[0], num), 2);
}

TEST_F(CVelumStackViewTest, TheFieldOfTheNameRenamesTheCard) {
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

TEST_F(CVelumStackViewTest, SetCardValueShowsTheValueOfTheCurrentCardOnly) {
  OpenThree();
  View().SetCardValue(iCards[1], iName->Id(), TVelumValue::OfStr(u"other"_s));
  EXPECT_EQ(Base(iName).Text(), QString());
  EXPECT_FALSE(View().CardChanged());
  View().SetCardValue(iCards[0], iName->Id(), TVelumValue::OfStr(u"mine"_s));
  EXPECT_EQ(Base(iName).Text(), u"mine"_s);
  EXPECT_TRUE(View().CardChanged());
}

TEST_F(CVelumStackViewTest, ValuesSetWhileAFieldIsTypedInLeaveItsText) {
  OpenThree();
  const auto ref = AddField(iSet, u"Ref"_s, EConText);
  const auto list = AddField(iSet, u"List"_s, EConList, EConCardList);
  list->SetSelBackgroundId(iSet->Id());
  list->SetSelControlId(iName->Id());
  list->SetRefControlId(ref->Id());
  View().UpdateAfterControlChange();
  View().RefreshViews(true, false);
  Type(iName, u"typing"_s);
  View().SetCardValue(iCards[0], ref->Id(), TVelumValue::OfStr(u"x"_s));
  EXPECT_EQ(Base(iName).Text(), u"typing"_s);
  EXPECT_FALSE(iCards[0]->Dirty());
  View().ValidateCurControl();
  EXPECT_EQ(TextOf(iCards[0], iName), u"typing"_s);
}

TEST_F(CVelumStackViewTest, AReferenceFieldBringsTheListsUpToDate) {
  OpenThree();
  const auto ref = AddField(iSet, u"Ref"_s, EConText);
  const auto list = AddField(iSet, u"List"_s, EConList, EConCardList);
  list->SetSelBackgroundId(iSet->Id());
  list->SetSelControlId(iName->Id());
  list->SetRefControlId(ref->Id());
  iCards[1]->SetControlVal(iName->Id(), TVelumValue::OfStr(u"x"_s));
  View().UpdateAfterControlChange();
  View().RefreshViews(true, false);
  Type(ref, u"x"_s);
  View().ValidateCurControl();
  EXPECT_FALSE(iCards[0]->Dirty());
  EXPECT_EQ(iCards[0]->GetControlVal(list->Id(), false).Str(), u"%1\tb"_s.arg(iCards[1]->Id()));
}

TEST_F(CVelumStackViewTest, ValidatingAnObjectThatHasNotTheFocusAsserts) {
  OpenThree();
  Base(iName).SetFocus();
  bool cancel = false;
  EXPECT_THROW(View().BaseObjValidate(&Pool(u"fGenTextBox5"_s), cancel), CVelumException);
  EXPECT_TRUE(iPresenter.LastText().contains(u"curObj"_s));
  View().ValidateCurControl();
  EXPECT_EQ(iPresenter.Count(), 1) << "the guard against nesting is off again";
}

TEST_F(CVelumStackViewTest, AScriptThatGoesElsewhereWhileAFieldIsLeftIsHeard) {
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

TEST_F(CVelumStackViewTest, AScriptThatDeletesTheCardGoneToLeavesTheViewSound) {
  OpenThree();
  Type(iName, u"Ada"_s);
  iRunner.iOnMessage = [this](const QString& aSent) {
    if (aSent == u"closeField a.Name"_s) View().DeleteCard(iCards[1], nullptr);
  };
  View().GoToCard(iCards[1]);
  EXPECT_EQ(gStack->NumCards(), 2);
  EXPECT_EQ(View().CurCard(), nullptr);
  EXPECT_TRUE(View().OrderFirst(iFound));
}

// --- Check boxes, commands, clicks

TEST_F(CVelumStackViewTest, ACheckBoxStoresWhenItIsClickedAndAgainWhenItIsLeft) {
  OpenThree();
  const auto done = AddField(iSet, u"Done"_s, EConBoolean);
  View().RefreshViews(true, false);
  iRunner.iSent.clear();
  Base(done).SetFocus();
  iRunner.iSent.clear();
  QTest::keyClick(Base(done).Widget(), Qt::Key_Space);
  EXPECT_TRUE(iCards[0]->GetControlVal(done->Id(), false).Boolean());
  QTest::keyClick(Base(done).Widget(), Qt::Key_Space);
  Base(iName).SetFocus();
  EXPECT_FALSE(iCards[0]->GetControlVal(done->Id(), false).Boolean());
  EXPECT_EQ(iRunner.iSent, QStringList{u"closeField a.Done"_s});
}

TEST_F(CVelumStackViewTest, AReadOnlyCheckBoxKeepsItsStateAndSaysSo) {
  const auto done = AddField(iSet, u"Done"_s, EConBoolean, EConReadOnly);
  const auto card = AddCard(u"a"_s);
  Open();
  QTest::mouseClick(Base(done).Widget(), Qt::LeftButton, {}, QPoint(8, 10));
  EXPECT_EQ(iPresenter.Told(), QList<QString>{u"Read-only!"_s});
  EXPECT_EQ(static_cast<CVelumBaseCheckBox&>(Base(done)).Value(), 0);
  EXPECT_FALSE(card->ControlValDef(done->Id()));
}

TEST_F(CVelumStackViewTest, ProgramsOwnCheckMarksAreNoClicks) {
  OpenThree();
  const auto done = AddField(iSet, u"Done"_s, EConBoolean);
  iCards[1]->SetControlVal(done->Id(), TVelumValue::OfBoolean(true));
  View().RefreshViews(true, false);
  const double before = iCards[1]->ModTime();
  View().GoToCard(iCards[1]);
  EXPECT_EQ(static_cast<CVelumBaseCheckBox&>(Base(done)).Value(), 1);
  EXPECT_EQ(iCards[1]->ModTime(), before);
  EXPECT_FALSE(View().CardChanged());
}

TEST_F(CVelumStackViewTest, AButtonSendsSelectAndRunsItsStandardCommand) {
  OpenThree();
  const auto next = AddField(iSet, u"Next"_s, EConCommand, EConAsButton);
  next->SetStdCmd(EStdNextCard);
  View().RefreshViews(true, false);
  iRunner.iSent.clear();
  QTest::mouseClick(Base(next).Widget(), Qt::LeftButton);
  EXPECT_EQ(Cur(), u"b"_s);
  EXPECT_EQ(iRunner.iSent, (QStringList{u"exitField a.Name"_s, u"select a.Next"_s, u"openCard b"_s}));
}

TEST_F(CVelumStackViewTest, ClickingAButtonTakesWhatWasTypedFirst) {
  OpenThree();
  const auto go = AddField(iSet, u"Go"_s, EConCommand, EConAsButton);
  View().RefreshViews(true, false);
  iRunner.iSent.clear();
  Type(iName, u"Ada"_s);
  QString seen;
  iRunner.iOnMessage = [&](const QString& aSent) {
    if (aSent == u"select a.Go"_s) seen = TextOf(iCards[0], iName);
  };
  QTest::mouseClick(Base(go).Widget(), Qt::LeftButton);
  EXPECT_EQ(seen, u"Ada"_s);
}

TEST_F(CVelumStackViewTest, AMenuItemSendsSelectOnlyForACommandOfTheCardView) {
  OpenThree();
  const auto go = AddField(iSet, u"Go"_s, EConCommand, EConInMenu);
  View().RefreshViews(true, false);
  iRunner.iSent.clear();
  View().BaseObjClick(iFrame.iActions[u"fGenFunc0"_s]);
  EXPECT_EQ(iRunner.iSent, QStringList{u"select a.Go"_s});
  iRunner.iSent.clear();
  go->SetFlag(EConInCardView, false);
  View().RefreshViews(true, false);
  View().BaseObjClick(iFrame.iActions[u"fGenFunc0"_s]);
  EXPECT_TRUE(iRunner.iSent.isEmpty());
}

TEST_F(CVelumStackViewTest, LinksGoToCardsOrSendSelect) {
  OpenThree();
  View().BaseObjLink(&Base(iName), u"c"_s);
  EXPECT_EQ(Cur(), u"c"_s);
  EXPECT_EQ(iRunner.iParamVal, u"unset"_s);
  iRunner.iSent.clear();
  View().BaseObjLink(&Base(iName), u"select:two words"_s);
  EXPECT_EQ(iRunner.iSent, QStringList{u"select c.Name"_s});
  EXPECT_EQ(iRunner.iParamVal, u"two words"_s);
  View().BaseObjLink(&Base(iName), u"select:"_s);
  EXPECT_EQ(iRunner.iParamVal, QString()) << "an empty rest is sent too";
  EXPECT_EQ(iRunner.iSent.size(), 2);
  View().BaseObjLink(&Base(iName), u"nowhere"_s);
  EXPECT_EQ(iPresenter.LastMsg(), EMsgBadLinkTarget);
  EXPECT_TRUE(iPresenter.LastText().contains(u"nowhere"_s));
  EXPECT_EQ(Cur(), u"c"_s);
}

TEST_F(CVelumStackViewTest, StandardCommandsGoWhereTheySay) {
  OpenThree();
  const auto command = AddField(iSet, u"Go"_s, EConCommand, EConAsButton);
  command->SetDestCardId(iCards[2]->Id());
  const auto run = [&](qint16 aCmd) {
    View().ExecStdCmd(aCmd, *command);
    return Cur();
  };
  EXPECT_EQ(run(EStdNextCard), u"b"_s);
  EXPECT_EQ(run(EStdPrevCard), u"a"_s);
  EXPECT_EQ(run(EStdLastCard), u"c"_s);
  EXPECT_EQ(run(EStdFirstCard), u"a"_s);
  EXPECT_EQ(run(EStdBackInHistory), u"c"_s);
  EXPECT_EQ(run(EStdForwInHistory), u"a"_s);
  EXPECT_EQ(run(EStdGoToCard), u"c"_s);
  run(EStdShowCardList);
  EXPECT_TRUE(View().CardListIsOpen());
  EXPECT_EQ(iFrame.iCalls.last(), u"raise CVelumCardListForm"_s);
  run(EStdSelectCard);
  EXPECT_TRUE(iFrame.iCalls.contains(u"ShowForm CVelumCardSelect"_s));
  gStack->DeleteCard(iCards[1]);
  command->SetDestCardId(iCards[1]->Id());
  EXPECT_EQ(run(EStdGoToCard), u"c"_s) << "a card that is gone is nowhere to go";
}

TEST_F(CVelumStackViewTest, AStandardCommandBeyondTheLastAsserts) {
  OpenThree();
  EXPECT_THROW(View().ExecStdCmd(9, *iName), CVelumException);
  EXPECT_TRUE(iPresenter.LastText().contains(u"ExecStdCmd"_s));
}

TEST_F(CVelumStackViewTest, CtrlUStoresTheClipboardBehindTheWindowsBack) {
  const auto text = AddField(iSet, u"Text"_s, EConText);
  text->SetVisLines(3);
  const auto card = AddCard(u"a"_s);
  Open();
  QApplication::clipboard()->setText(u"one\ntwo\u00A0"_s);
  Base(text).SetFocus();
  QTest::keyClick(Base(text).Widget(), Qt::Key_U, Qt::ControlModifier);
  EXPECT_EQ(card->GetControlVal(text->Id(), false).Str(), u"one\r\ntwo\u00A0"_s);
  EXPECT_EQ(Base(text).Text(), QString());
}

TEST_F(CVelumStackViewTest, TextsAreTakenRawWithCrLf) {
  const auto text = AddField(iSet, u"Text"_s, EConText);
  text->SetVisLines(3);
  const auto card = AddCard(u"a"_s);
  Open();
  Type(text, u"a\u00A0b"_s);
  QTest::keyClick(Base(text).Widget(), Qt::Key_Return);
  QTest::keyClicks(Base(text).Widget(), u"c"_s);
  View().ValidateCurControl();
  EXPECT_EQ(card->GetControlVal(text->Id(), false).Str(), u"a\u00A0b\r\nc"_s);
}

TEST_F(CVelumStackViewTest, DoubleClicksOpenTheirWindows) {
  const auto text = AddField(iSet, u"Text"_s, EConText);
  text->SetVisLines(3);
  const auto picture = AddField(iSet, u"Pict"_s, EConPicture);
  AddCard(u"a"_s);
  Open();
  View().BaseObjDblClick(&Base(text));
  EXPECT_TRUE(iFrame.iCalls.contains(u"ShowForm CVelumWikiTextEdit"_s));
  View().BaseObjDblClick(&Base(picture));
  EXPECT_TRUE(iFrame.iCalls.contains(u"ShowPicture"_s));
}

TEST_F(CVelumStackViewTest, AFailingScriptIsShownAndTheRunnerReset) {
  OpenThree();
  iRunner.iOnMessage = [](const QString&) { CVelumError::RaiseHost(EHostOverflow); };
  View().GoToCard(iCards[1]);
  EXPECT_EQ(Cur(), u"b"_s);
  EXPECT_GE(iPresenter.CountOf(EMsgSystemError), 1);
  EXPECT_GE(iRunner.iResets, 1);
}

TEST_F(CVelumStackViewTest, AMessageWithoutAnObjectGoesToTheCurrentCard) {
  OpenThree();
  View().ExecScript(nullptr, u"openStack"_s);
  EXPECT_EQ(iRunner.iSent, QStringList{u"openStack a"_s});
}

TEST_F(CVelumStackViewTest, WithoutARunnerNoHandlerIsFound) {
  OpenThree();
  gScriptRunner = nullptr;
  View().GoToCard(iCards[1]);
  EXPECT_EQ(Cur(), u"b"_s);
}

} // namespace
