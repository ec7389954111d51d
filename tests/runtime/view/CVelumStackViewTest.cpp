#include "runtime/StackViewTest.h"
#include "toolkit/CVelumWinMan.h"

#include <QAbstractItemView>
#include <QTest>

namespace {

// A card that the windows are not told of.
void AddUnseen(CVelumStack& aStack, const Ref<CVelumControlSet>& aSet) {
  aStack.AddCard(MakeRef<CVelumCard>(u"unseen"_s, aSet), nullptr, false);
}

using CVelumStackViewTest = StackViewTest;

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
  View().AddCard(MakeRef<CVelumCard>(u"d"_s, iSet), iCards[1]);
  EXPECT_EQ(Form().Caption(), u"a - 1 of 4"_s);
  EXPECT_EQ(Cur(), u"a"_s);
  EXPECT_TRUE(View().OrderNext(iFound));
  EXPECT_EQ(Cur(), u"d"_s);
}

TEST_F(CVelumStackViewTest, DeletingTheCurrentCardShowsTheNext) {
  OpenThree();
  View().GoToCard(iCards[1]);
  View().DeleteCard(iCards[1], nullptr);
  EXPECT_EQ(Cur(), u"c"_s);
  EXPECT_EQ(gStack->NumCards(), 2);
  EXPECT_EQ(Form().Caption(), u"c - 2 of 2"_s) << "counted without the card that went";
  View().DeleteCard(iCards[2], nullptr);
  EXPECT_EQ(Cur(), u"a"_s) << "the first one when there is none behind";
}

TEST_F(CVelumStackViewTest, DeletingAnotherCardLeavesTheCurrentOne) {
  OpenThree();
  View().GoToCard(iCards[2]);
  View().DeleteCard(iCards[0], nullptr);
  EXPECT_EQ(Cur(), u"c"_s);
  EXPECT_EQ(View().History().Len(), 1);
  EXPECT_EQ(Form().Caption(), u"c - 2 of 2"_s);
}

TEST_F(CVelumStackViewTest, ADeletedCardLeavesTheListsOfTheCurrentOne) {
  OpenThree();
  const auto list = AddReferredList();
  for (const auto& card : {iCards[1], iCards[2]})
    card->SetControlVal(iName->Id(), TVelumValue::OfStr(u"x"_s));
  iCards[0]->SetControlVal(iRef->Id(), TVelumValue::OfStr(u"x"_s));
  View().UpdateAfterControlChange();
  View().RefreshViews(true, false);
  const auto lines = [&] {
    return qobject_cast<QAbstractItemView*>(Base(list).Widget())->model()->rowCount();
  };
  ASSERT_EQ(lines(), 2);
  View().DeleteCard(iCards[1], nullptr);
  EXPECT_FALSE(iCards[0]->Dirty());
  EXPECT_EQ(lines(), 1) << "and its line is not seen any more";
}

TEST_F(CVelumStackViewTest, ACardDeletedAtSeveralPlacesOfTheHistoryLeavesThePlaceOnItsCard) {
  OpenThree();
  for (const int card : {1, 0, 2, 1}) View().GoToCard(iCards[card]);
  View().HistoryPrev(iFound);
  ASSERT_EQ(Cur(), u"c"_s);
  View().DeleteCard(iCards[0], nullptr);
  EXPECT_EQ(View().History().Len(), 3);
  EXPECT_EQ(View().History().At(View().History().Index()), iCards[2]);
  EXPECT_TRUE(View().HistoryPrev(iFound));
  EXPECT_EQ(Cur(), u"b"_s);
  EXPECT_FALSE(View().HistoryPrev(iFound));
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
  View().AddCard(MakeRef<CVelumCard>(u"new"_s, iSet), nullptr);
  EXPECT_TRUE(View().OrderFirst(iFound));
  EXPECT_EQ(Cur(), u"new"_s);
  EXPECT_EQ(View().History().Len(), 1);
}

TEST_F(CVelumStackViewTest, OneEntryIsNoWayBackAndTheCardIsNotLeft) {
  OpenThree();
  EXPECT_FALSE(View().HistoryPrev(iFound));
  EXPECT_EQ(iFound, nullptr);
  EXPECT_FALSE(View().HistoryNext(iFound));
  EXPECT_EQ(Cur(), u"a"_s);
  EXPECT_TRUE(iRunner.iSent.isEmpty());
}

TEST_F(CVelumStackViewTest, AnotherCardIsSoughtForwardFirstAndThenFromTheBeginning) {
  const auto other = AddBackground(u"Other"_s);
  AddCard(u"x"_s, other);
  const auto a = AddCard(u"a"_s);
  const auto b = AddCard(u"b"_s);
  const auto y = AddCard(u"y"_s, other);
  Open();
  View().GoToCard(a);
  View().DeleteCard(a, iSet);
  EXPECT_EQ(Cur(), u"y"_s) << "b is left out, and x lies behind";
  View().DeleteCard(y, iSet);
  EXPECT_EQ(Cur(), u"x"_s);
  View().GoToCard(b);
  View().DeleteCard(b, other);
  EXPECT_EQ(View().CurCard(), nullptr) << "only cards that are to be left out remain";
  EXPECT_EQ(Form().Caption(), u"(No Card)"_s);
}

TEST_F(CVelumStackViewTest, LeavingAChangedCardFillsTheOpenListAnew) {
  OpenThree();
  View().OpenCardList();
  AddUnseen(*gStack, iSet);
  View().GoToCard(iCards[1]);
  EXPECT_EQ(View().CardListView()->CardBox().NumLines(), 3) << "nothing was changed on the card";
  View().SetCardValue(iCards[1], iName->Id(), TVelumValue::OfStr(u"x"_s));
  View().GoToCard(iCards[2]);
  EXPECT_EQ(View().CardListView()->CardBox().NumLines(), 4);
}

TEST_F(CVelumStackViewTest, TheFocusGoesToTheFieldOfTheCardWindow) {
  OpenThree();
  View().OpenCardList();
  iFrame.iCalls.clear();
  View().SetFocusToCardView();
  EXPECT_EQ(iFrame.iCalls, QStringList{u"raise CVelumGenForm"_s});
  EXPECT_TRUE(Base(iName).HasFocus());
}

TEST_F(CVelumStackViewTest, AtThePhonesSizeTheSameRulesHold) {
  const auto wide = AddField(iSet, u"Name"_s, EConText);
  wide->SetVisChar(200);
  const auto low = AddField(iSet, u"Low"_s, EConText, EConFromBottom);
  AddCard(u"a"_s);
  Open(208 * 20, 255 * 20);
  EXPECT_NEAR(Form().ClientWidth(), 208 * 20, ETwipsPerPixel);
  EXPECT_NEAR(Form().ClientHeight(), 255 * 20, ETwipsPerPixel);
  EXPECT_EQ(Base(wide).Left() + Base(wide).Width(), Form().ClientWidth() - 20);
  EXPECT_EQ(Base(low).Top() + Base(low).Height(), Form().ClientHeight() - 20);
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
  Form().setGeometry(20, 40, 400, 500);
  View().CloseCardView(true);
  EXPECT_EQ(View().CardViewPlace(), QRectF(300, 600, 6000, 7500)) << "also when it closes";
}

TEST_F(CVelumStackViewTest, ReleaseUnloadsTheWindowAndFreesTheFields) {
  OpenThree();
  View().OpenCardList();
  Type(iName, u"Ada"_s);
  View().Release();
  EXPECT_FALSE(View().CardListIsOpen());
  EXPECT_TRUE(View().State()->iCardListOpen) << "the stack keeps that it was open";
  EXPECT_FALSE(CVelumWinMan::FormIsLoaded(u"CVelumGenForm"_s));
  EXPECT_EQ(iName->BaseControl(), nullptr);
  EXPECT_EQ(TextOf(iCards[0], iName), u"Ada"_s);
}

} // namespace
