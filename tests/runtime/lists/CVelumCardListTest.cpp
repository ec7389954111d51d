#include "runtime/RuntimeFixture.h"
#include "runtime/lists/CVelumCardListForm.h"
#include "runtime/lists/CVelumCardListView.h"
#include "toolkit/CVelumComboWidget.h"
#include "toolkit/CVelumListWidget.h"
#include "toolkit/CVelumWinMan.h"

#include <QClipboard>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

namespace {

class CVelumCardListTest : public RuntimeTest {
protected:
  // Cards "a", "b", "c" of the first background with the fields "Name" and "Size".
  void OpenThree() {
    iName = AddField(iSet, u"Name"_s, EConText);
    iSize = AddField(iSet, u"Size"_s, EConInteger);
    int size = 10;
    for (const auto& name : {u"a"_s, u"b"_s, u"c"_s}) {
      iCards.append(AddCard(name));
      iCards.last()->SetControlVal(iName->Id(), TVelumValue::OfStr(u"N"_s + name));
      iCards.last()->SetControlVal(iSize->Id(), TVelumValue::OfInt(size));
      size -= 1;
    }
    OpenList();
  }
  // A second background with three fields, a name column and the cards "x" and "y".
  void AddSecond() {
    iSecond = AddBackground(u"Second"_s);
    for (const auto& name : {u"P"_s, u"Q"_s, u"R"_s}) AddField(iSecond, name, EConText);
    for (const auto& name : {u"x"_s, u"y"_s}) iCards.append(AddCard(name, iSecond));
  }
  void KeepSorted(const Ref<CVelumControlSet>& aSet, const Ref<CVelumControl>& aField) {
    const auto key = MakeRef<CVelumSortKey>(gStack->IdGen().NextId(), u"k"_s, aSet->Id());
    key->AddKeyPart(EConText, aField->Id(), EWayAscending, 5);
    gStack->AddSortKey(key);
    aSet->SetFlag(ECseKeepCardsSorted, true);
    gStack->NewIndexForSortKey(key);
    gStack->SetControlDynFlags();
  }
  void OpenList() {
    Open();
    View().OpenCardList();
    QCoreApplication::processEvents();
    iRunner.iSent.clear();
  }
  CVelumCardListForm& ListForm() {
    return *dynamic_cast<CVelumCardListForm*>(CVelumWinMan::NameToForm(u"CVelumCardListForm"_s));
  }
  CVelumCardListView& List() { return *View().CardListView(); }
  CVelumListBox& Box() { return List().CardBox(); }
  CVelumListWidget& Widget() { return *ListForm().CardBox(); }
  QStringList Lines() {
    QStringList lines;
    for (int i = 0; i < Box().NumLines(); ++i) lines.append(Box().Line(i));
    return lines;
  }
  QStringList Names() {
    QStringList names;
    for (int i = 0; i < Box().NumLines(); ++i) {
      const Ref<CVelumObject> obj = Box().Obj(i);
      const auto* card = dynamic_cast<CVelumCard*>(obj.Get());
      names.append(card ? card->Name() : u"-"_s);
    }
    return names;
  }
  QStringList Order() {
    QStringList names;
    Ref<CVelumCard> card;
    for (qint32 i = 0; gStack->GetNextCard(card, i);) names.append(card->Name());
    return names;
  }
  void Press(const QString& aButton) {
    QTest::mouseClick(ListForm().findChild<QPushButton*>(aButton), Qt::LeftButton);
  }
  void ClickLine(int aRow, Qt::KeyboardModifiers aModifiers = {}) {
    const QRect rect = Widget().visualRect(Widget().model()->index(aRow, 0));
    QTest::mouseClick(Widget().viewport(), Qt::LeftButton, aModifiers, rect.center());
  }
  QString Cur() { return View().CurCard() ? View().CurCard()->Name() : QString(); }

  Ref<CVelumControl> iName;
  Ref<CVelumControl> iSize;
  Ref<CVelumControlSet> iSecond;
  QList<Ref<CVelumCard>> iCards;
};

TEST_F(CVelumCardListTest, OneBackgroundShowsItsColumns) {
  OpenThree();
  EXPECT_FALSE(List().Mixed());
  EXPECT_FALSE(List().WithName());
  EXPECT_FALSE(List().Background()) << "\"(All)\" is chosen";
  EXPECT_EQ(Box().ColTitles(), (QList<QString>{u"Name"_s, u"Size"_s}));
  EXPECT_EQ(Box().ColWidths(), (QList<float>{10 * 100 + 50, 10 * 100 + 50}));
  EXPECT_EQ(Lines(), (QStringList{u"Na\t10"_s, u"Nb\t9"_s, u"Nc\t8"_s}));
  EXPECT_EQ(Names(), (QStringList{u"a"_s, u"b"_s, u"c"_s}));
  EXPECT_EQ(ListForm().windowTitle(), u"Card List"_s);
}

TEST_F(CVelumCardListTest, TheNameComesFirstWhereTheBackgroundSaysSo) {
  iSet->SetFlag(ECseCardNameInList, true);
  OpenThree();
  EXPECT_TRUE(List().WithName());
  EXPECT_EQ(Box().ColTitles(), (QList<QString>{u"Card"_s, u"Name"_s, u"Size"_s}));
  EXPECT_EQ(Box().ColWidths().at(0), 10 * 100 + 50);
  EXPECT_EQ(Lines().first(), u"a\tNa\t10"_s);
  EXPECT_EQ(Widget().CellText(1, 0), u"b"_s);
  EXPECT_EQ(Widget().CellText(1, 2), u"9"_s);
  iSet->SetFlag(ECseCardNameInList, false);
  List().FillAndShowCardList(true);
  EXPECT_FALSE(List().WithName());
}

TEST_F(CVelumCardListTest, SeveralBackgroundsShowMixedColumns) {
  AddSecond();
  OpenThree();
  EXPECT_TRUE(List().Mixed());
  EXPECT_EQ(Box().ColTitles(), (QList<QString>{u"Field 1"_s, u"Field 2"_s, u"Field 3"_s}));
  EXPECT_EQ(Box().ColWidths().at(2), 25 * 100);
  EXPECT_EQ(Names(), (QStringList{u"x"_s, u"y"_s, u"a"_s, u"b"_s, u"c"_s}));
  ListForm().BackgroundCombo()->setCurrentIndex(2);
  EXPECT_TRUE(List().Background() == iSecond);
  EXPECT_FALSE(List().Mixed());
  EXPECT_EQ(Box().ColTitles(), (QList<QString>{u"P"_s, u"Q"_s, u"R"_s}));
  EXPECT_EQ(Names(), (QStringList{u"x"_s, u"y"_s}));
}

TEST_F(CVelumCardListTest, WithoutABackgroundThereAreNoColumns) {
  gStack->DeleteBackground(iSet, false);
  OpenList();
  EXPECT_TRUE(List().Mixed());
  EXPECT_EQ(Box().NumCols(), 0);
  EXPECT_EQ(Box().NumLines(), 0);
}

TEST_F(CVelumCardListTest, TheSameBackgroundIsFilledAnewOnlyByForce) {
  AddSecond();
  OpenThree();
  List().BackgroundCombo().SetSelIndexByLine(u"Second"_s);
  EXPECT_EQ(Names().size(), 2);
  AddCard(u"z"_s, iSecond);
  List().FillAndShowCardList(false);
  EXPECT_EQ(Names().size(), 2);
  List().FillAndShowCardList(true);
  EXPECT_EQ(Names().size(), 3);
}

TEST_F(CVelumCardListTest, UpdateCardShowsItsNewLine) {
  AddSecond();
  OpenThree();
  const auto card = iCards[2];
  QSignalSpy renewed(Widget().model(), &QAbstractItemModel::dataChanged);
  QSignalSpy filled(Widget().model(), &QAbstractItemModel::modelReset);
  card->SetControlVal(iName->Id(), TVelumValue::OfStr(u"new"_s));
  List().UpdateCard(*card);
  EXPECT_EQ(Lines().at(2), u"new\t10"_s);
  ASSERT_EQ(renewed.size(), 1) << "that line alone is drawn anew";
  EXPECT_EQ(renewed.first().first().toModelIndex().row(), 2);
  EXPECT_TRUE(filled.isEmpty());
  List().BackgroundCombo().SetSelIndexByLine(u"Second"_s);
  renewed.clear();
  filled.clear();
  List().UpdateCard(*card);
  EXPECT_EQ(Names(), (QStringList{u"x"_s, u"y"_s})) << "a card that is not listed is left alone";
  EXPECT_TRUE(renewed.isEmpty() && filled.isEmpty());
}

TEST_F(CVelumCardListTest, WhileAScriptRunsTheListWaits) {
  OpenThree();
  QSignalSpy renewed(Widget().model(), &QAbstractItemModel::dataChanged);
  iRunner.iRunning = true;
  View().SetCardValue(iCards[1], iName->Id(), TVelumValue::OfStr(u"x"_s));
  Type(iName, u"y"_s);
  View().ValidateCurControl();
  EXPECT_TRUE(renewed.isEmpty());
  iRunner.iRunning = false;
  View().SetCardValue(iCards[1], iName->Id(), TVelumValue::OfStr(u"z"_s));
  ASSERT_EQ(renewed.size(), 1);
  EXPECT_EQ(renewed.first().first().toModelIndex().row(), 1);
}

TEST_F(CVelumCardListTest, AFieldThatIsLeftRenewsItsLine) {
  OpenThree();
  QSignalSpy renewed(Widget().model(), &QAbstractItemModel::dataChanged);
  Type(iName, u"y"_s);
  View().ValidateCurControl();
  ASSERT_FALSE(renewed.isEmpty());
  EXPECT_EQ(renewed.first().first().toModelIndex().row(), 0);
}

TEST_F(CVelumCardListTest, ANewKeyMovesTheLineOfItsCard) {
  OpenThree();
  KeepSorted(iSet, iName);
  View().RefreshViews(true, true);
  Type(iName, u"z"_s);
  View().GoToCard(iCards[1]);
  View().GoToCard(iCards[0]);
  ASSERT_EQ(Names(), (QStringList{u"a"_s, u"b"_s, u"c"_s}));
  View().SetCardValue(iCards[0], iName->Id(), TVelumValue::OfStr(u"Z"_s));
  EXPECT_EQ(Names(), (QStringList{u"b"_s, u"c"_s, u"a"_s}));
  // While a script runs the list waits.
  iRunner.iRunning = true;
  View().SetCardValue(iCards[1], iName->Id(), TVelumValue::OfStr(u"ZZ"_s));
  iRunner.iRunning = false;
  EXPECT_EQ(Names(), (QStringList{u"b"_s, u"c"_s, u"a"_s}));
}

TEST_F(CVelumCardListTest, MixedCardsHaveTheirNamesWhereTheFirstBackgroundSaysSo) {
  AddSecond();
  iSet->SetFlag(ECseCardNameInList, true);
  OpenThree();
  Ref<CVelumControlSet> first;
  qint32 index = 0;
  ASSERT_TRUE(gStack->GetFirstBackground(first, index));
  ASSERT_EQ(first, iSet);
  EXPECT_TRUE(List().Mixed());
  EXPECT_EQ(Box().ColTitles(), (QList<QString>{u"Card"_s, u"Field 1"_s, u"Field 2"_s, u"Field 3"_s}));
  EXPECT_EQ(Lines().first(), u"x\t\t\t"_s);
  EXPECT_EQ(Lines().last(), u"c\tNc\t8"_s);
}

TEST_F(CVelumCardListTest, ALeftCardIsSkippedAndNeverRead) {
  OpenThree();
  gStack->DeleteCard(iCards[1]);
  EXPECT_EQ(Names(), (QStringList{u"a"_s, u"-"_s, u"c"_s}));
  EXPECT_EQ(Lines().at(1), QString());
  Widget().grab();
  ClickLine(1);
  EXPECT_EQ(Cur(), u"a"_s);
  Widget().SortDisplay(0, Qt::AscendingOrder);
  EXPECT_EQ(Widget().CellText(2, 0), QString());
  List().UpdateCard(*iCards[1]);
  List().FillAndShowCardList(true);
  EXPECT_EQ(Names(), (QStringList{u"a"_s, u"c"_s}));
}

TEST_F(CVelumCardListTest, TheCardsOfADeletedBackgroundLeaveTheList) {
  AddSecond();
  OpenThree();
  View().GoToCard(iCards[2]);
  ASSERT_EQ(Names(), (QStringList{u"x"_s, u"y"_s, u"a"_s, u"b"_s, u"c"_s}));
  View().DeleteBackground(iSecond, false);
  EXPECT_EQ(Names(), (QStringList{u"a"_s, u"b"_s, u"c"_s}));
}

TEST_F(CVelumCardListTest, AClickedLineIsGoneTo) {
  OpenThree();
  ClickLine(2);
  EXPECT_EQ(Cur(), u"c"_s);
  EXPECT_TRUE(Widget().hasFocus()) << "who works in the list goes on there";
  ClickLine(0, Qt::ControlModifier);
  EXPECT_EQ(Cur(), u"c"_s) << "a line that is added to the selection is not";
  ClickLine(1);
  QTest::keyClick(&Widget(), Qt::Key_Up);
  EXPECT_EQ(Cur(), u"b"_s);
  QTest::keyClick(&Widget(), Qt::Key_Return);
  EXPECT_EQ(Cur(), u"a"_s);
}

TEST_F(CVelumCardListTest, WhatWasTypedIsTakenWhenALineIsClicked) {
  OpenThree();
  Type(iName, u"!"_s);
  ClickLine(2);
  EXPECT_EQ(TextOf(iCards[0], iName), u"Na!"_s);
  EXPECT_EQ(Lines().first(), u"Na!\t10"_s);
}

TEST_F(CVelumCardListTest, DownAndUpMoveACard) {
  OpenThree();
  Box().SetSelIndex(0);
  Press(u"fDownBut"_s);
  EXPECT_EQ(Order(), (QStringList{u"b"_s, u"a"_s, u"c"_s}));
  EXPECT_EQ(Names(), Order());
  EXPECT_EQ(Box().SelIndex(), 1) << "the card stays selected";
  EXPECT_TRUE(Widget().hasFocus());
  Press(u"fDownBut"_s);
  EXPECT_EQ(Order(), (QStringList{u"b"_s, u"c"_s, u"a"_s}));
  Press(u"fUpBut"_s);
  Press(u"fUpBut"_s);
  EXPECT_EQ(Order(), (QStringList{u"a"_s, u"b"_s, u"c"_s}));
}

TEST_F(CVelumCardListTest, DownOnTheLastAndUpOnTheFirstDoNothing) {
  OpenThree();
  gStack->SetChanged(false);
  Box().SetSelIndex(2);
  EXPECT_FALSE(List().MoveSelected(true));
  Box().SetSelIndex(0);
  EXPECT_FALSE(List().MoveSelected(false));
  Box().SetSelIndexOrClear(-1);
  EXPECT_FALSE(List().MoveSelected(true));
  Box().SetSelIndex(2);
  QSignalSpy filled(Widget().model(), &QAbstractItemModel::modelReset);
  Press(u"fDownBut"_s);
  EXPECT_TRUE(filled.isEmpty()) << "nothing is refreshed";
  EXPECT_EQ(Order(), (QStringList{u"a"_s, u"b"_s, u"c"_s}));
  EXPECT_FALSE(gStack->Changed());
}

TEST_F(CVelumCardListTest, AKeptGroupMovesAsAWholeAndIsNeverParted) {
  OpenThree();
  AddSecond();
  KeepSorted(iSecond, iSecond->ControlAt(0));
  const auto last = AddCard(u"z"_s);
  View().RefreshViews(true, true);
  ASSERT_EQ(Order(), (QStringList{u"a"_s, u"b"_s, u"c"_s, u"x"_s, u"y"_s, u"z"_s}));
  Box().SetSelIndexByObj(iCards[2].Get());
  Press(u"fDownBut"_s);
  EXPECT_EQ(Order(), (QStringList{u"a"_s, u"b"_s, u"x"_s, u"y"_s, u"c"_s, u"z"_s})) << "over the whole group";
  Box().SetSelIndexByObj(iCards[4].Get());
  Press(u"fDownBut"_s);
  EXPECT_EQ(Order(), (QStringList{u"a"_s, u"b"_s, u"c"_s, u"x"_s, u"y"_s, u"z"_s})) << "the group itself";
  Press(u"fDownBut"_s);
  EXPECT_EQ(Order().last(), u"y"_s);
  Press(u"fDownBut"_s);
  EXPECT_EQ(Order().last(), u"y"_s);
  Box().SetSelIndexByObj(iCards[3].Get());
  Press(u"fUpBut"_s);
  EXPECT_EQ(Order(), (QStringList{u"a"_s, u"b"_s, u"c"_s, u"x"_s, u"y"_s, u"z"_s}));
  Box().SetSelIndexByObj(last.Get());
  Press(u"fUpBut"_s);
  EXPECT_EQ(Order(), (QStringList{u"a"_s, u"b"_s, u"c"_s, u"z"_s, u"x"_s, u"y"_s}));
}

TEST_F(CVelumCardListTest, ASortedDisplayChangesNothingAndStopsTheMoves) {
  OpenThree();
  gStack->SetChanged(false);
  Widget().SortDisplay(1, Qt::AscendingOrder);
  EXPECT_EQ(Widget().CellText(0, 1), u"8"_s) << "numbers go by their value";
  EXPECT_EQ(Widget().CellText(2, 1), u"10"_s);
  EXPECT_FALSE(gStack->Changed());
  EXPECT_EQ(Order(), (QStringList{u"a"_s, u"b"_s, u"c"_s}));
  EXPECT_FALSE(ListForm().findChild<QPushButton*>(u"fUpBut"_s)->isEnabled());
  EXPECT_FALSE(ListForm().findChild<QPushButton*>(u"fDownBut"_s)->isEnabled());
  Box().SetSelIndex(0);
  EXPECT_FALSE(List().MoveSelected(true));
  View().RefreshViews(true, true);
  EXPECT_EQ(Widget().CellText(0, 1), u"8"_s) << "it stays sorted when it is filled anew";
  ClickLine(0);
  EXPECT_EQ(Cur(), u"c"_s);
  Widget().SortDisplay(-1, Qt::AscendingOrder);
  EXPECT_TRUE(ListForm().findChild<QPushButton*>(u"fUpBut"_s)->isEnabled());
}

TEST_F(CVelumCardListTest, ARefillKeepsTheSelectionAndThePlace) {
  for (int i = 0; i < 200; ++i) AddCard(u"card "_s + QString::number(i));
  OpenThree();
  Box().SetSelIndex(150);
  const int top = Widget().TopRow();
  EXPECT_GT(top, 0);
  View().RefreshViews(true, true);
  EXPECT_EQ(Box().SelIndex(), 150);
  EXPECT_EQ(Widget().TopRow(), top);
}

TEST_F(CVelumCardListTest, ARefillKeepsThePlaceWhereTheChosenLineIsNotSeen) {
  for (int i = 0; i < 200; ++i) AddCard(u"card "_s + QString::number(i));
  OpenThree();
  Box().SetSelIndex(0);
  Widget().SetTopRow(100);
  ASSERT_EQ(Widget().TopRow(), 100);
  View().RefreshViews(true, true);
  EXPECT_EQ(Box().SelIndex(), 0);
  EXPECT_EQ(Widget().TopRow(), 100);
}

TEST_F(CVelumCardListTest, TakesItsPlaceFromTheStackAndGivesItBack) {
  AddCard(u"a"_s);
  Open();
  View().CardListRect()->SetX(300);
  View().CardListRect()->SetY(450);
  View().CardListRect()->SetWidth(4500);
  View().CardListRect()->SetHeight(6000);
  View().OpenCardList();
  EXPECT_EQ(ListForm().Place(), QRectF(300, 450, 4500, 6000));
  ListForm().SetPlace(QRectF(600, 750, 5400, 6600), true);
  View().UpdateRect();
  EXPECT_EQ(View().CardListPlace(), QRectF(600, 750, 5400, 6600));
  ListForm().SetPlace(QRectF(750, 900, 5400, 6600), true);
  View().CloseCardList();
  EXPECT_EQ(View().CardListPlace(), QRectF(750, 900, 5400, 6600)) << "also when it closes";
  EXPECT_GT(Widget().height(), 300) << "the list fills the window";
}

TEST_F(CVelumCardListTest, ClosingTheWindowHidesIt) {
  OpenThree();
  ListForm().close();
  EXPECT_FALSE(View().CardListIsOpen());
  EXPECT_FALSE(View().State()->iCardListOpen);
  EXPECT_FALSE(ListForm().isVisible());
  EXPECT_EQ(Box().NumLines(), 0) << "a closed list holds no cards";
  EXPECT_EQ(Widget().model()->rowCount(), 0);
  View().GoToCard(iCards[1]);
  View().OpenCardList();
  EXPECT_TRUE(ListForm().isVisible());
  EXPECT_EQ(Names().size(), 3);
}

TEST_F(CVelumCardListTest, ChangesRefillTheBackgroundsAndKeepTheChoice) {
  AddSecond();
  OpenThree();
  List().BackgroundCombo().SetSelIndexByLine(u"Second"_s);
  AddBackground(u"Third"_s);
  CVelumSeams::ChangeNotify(EChangeStructure);
  EXPECT_EQ(List().BackgroundCombo().NumLines(), 4);
  const auto fourth = AddBackground(u"Fourth"_s);
  CVelumSeams::ChangeNotify(EChangeStack);
  EXPECT_EQ(List().BackgroundCombo().NumLines(), 5);
  gStack->DeleteBackground(fourth, false);
  CVelumSeams::ChangeNotify(EChangeStack);
  EXPECT_EQ(List().BackgroundCombo().NumLines(), 4);
  EXPECT_EQ(List().BackgroundCombo().SelLine(), u"Second"_s);
  CVelumSeams::ChangeNotify(EChangeBackgroundGoes, iSecond.Get());
  EXPECT_EQ(List().BackgroundCombo().NumLines(), 3);
  EXPECT_EQ(List().BackgroundCombo().SelLine(), u"(All)"_s);
  EXPECT_FALSE(List().Background());
}

TEST_F(CVelumCardListTest, TheListFollowsWhatHappensToTheStack) {
  OpenThree();
  View().AddCard(MakeRef<CVelumCard>(u"d"_s, iSet), nullptr);
  EXPECT_EQ(Names().size(), 4);
  View().DeleteCard(iCards[0], nullptr);
  EXPECT_EQ(Names(), (QStringList{u"b"_s, u"c"_s, u"d"_s}));
  View().SetCardValue(iCards[1], iName->Id(), TVelumValue::OfStr(u"set"_s));
  EXPECT_EQ(Lines().first(), u"set\t9"_s);
  View().EmptyStack();
  EXPECT_EQ(Box().NumLines(), 0);
}

TEST_F(CVelumCardListTest, AButtonBringsTheListUpToDate) {
  const auto go = AddField(iSet, u"Go"_s, EConCommand, EConAsButton);
  OpenThree();
  iRunner.iRunning = true;
  View().SetCardValue(iCards[2], iName->Id(), TVelumValue::OfStr(u"one"_s));
  iRunner.iRunning = false;
  gStack->ResetChangeInfo();
  gStack->ChangeCard(*iCards[2]);
  View().BaseObjClick(&Base(go));
  EXPECT_EQ(Widget().CellText(2, 0), u"one"_s);
  EXPECT_FALSE(gStack->ChangeInfo().iCardChanged);
  AddCard(u"d"_s);
  View().BaseObjClick(&Base(go));
  EXPECT_EQ(Names().size(), 4) << "a card more: the list is filled anew";
}

TEST_F(CVelumCardListTest, TheListFontOfTheStackIsUsed) {
  const auto font = MakeRef<CVelumFont>(u"Arial"_s, qint16{420}, ENoInt);
  gStack->SetListFont(font);
  OpenThree();
  EXPECT_EQ(Box().Font()->PointSize(), 21);
  EXPECT_GT(Widget().font().pointSizeF(), 14);
}

TEST_F(CVelumCardListTest, TheLineOfTheCardOnShowIsSelected) {
  OpenThree();
  EXPECT_EQ(Box().SelIndex(), 0) << "as soon as the list opens";
  Ref<CVelumCard> card;
  ASSERT_TRUE(View().OrderNext(card));
  EXPECT_EQ(Box().SelIndexes(), QList<int>{1});
  ASSERT_TRUE(View().OrderLast(card));
  EXPECT_EQ(Box().SelIndexes(), QList<int>{2});
  ASSERT_TRUE(View().HistoryPrev(card));
  EXPECT_EQ(Box().SelIndexes(), QList<int>{1});
  ASSERT_TRUE(View().HistoryNext(card));
  EXPECT_EQ(Box().SelIndexes(), QList<int>{2});
  View().GoToCard(iCards[0]);
  EXPECT_EQ(Box().SelIndexes(), QList<int>{0});
  Box().SetSelIndex(1);
  View().GoToCard(iCards[0]);
  EXPECT_EQ(Box().SelIndexes(), QList<int>{0}) << "also when it was on show already";
  Widget().SortDisplay(1, Qt::AscendingOrder);
  View().GoToCard(iCards[2]);
  EXPECT_EQ(List().SelCard(), iCards[2]) << "in whatever order the lines are";
  EXPECT_TRUE(Widget().selectionModel()->isRowSelected(0, {}));
}

TEST_F(CVelumCardListTest, TheSelectedLineIsScrolledTo) {
  for (int i = 0; i < 200; ++i) AddCard(u"card "_s + QString::number(i));
  OpenThree();
  Ref<CVelumCard> card;
  ASSERT_TRUE(View().OrderLast(card));
  EXPECT_EQ(List().SelCard(), card);
  const QRect line = Widget().visualRect(Widget().currentIndex());
  EXPECT_TRUE(Widget().viewport()->rect().contains(line.center()));
}

TEST_F(CVelumCardListTest, TheSelectionFollowsADeletion) {
  OpenThree();
  View().GoToCard(iCards[1]);
  View().DeleteCard(iCards[1], nullptr);
  EXPECT_EQ(Cur(), u"c"_s);
  EXPECT_EQ(List().SelCard(), iCards[2]);
  Box().SetSelIndex(0);
  View().DeleteCard(iCards[0], nullptr);
  EXPECT_EQ(Cur(), u"c"_s);
  EXPECT_EQ(List().SelCard(), iCards[2]) << "the chosen one is gone, the one on show takes its place";
  View().DeleteCard(iCards[2], nullptr);
  EXPECT_EQ(Box().SelIndex(), -1);
}

TEST_F(CVelumCardListTest, ACardThatIsNotListedHasNoLineUntilItIs) {
  AddSecond();
  OpenThree();
  List().BackgroundCombo().SetSelIndexByLine(u"Second"_s);
  View().GoToCard(iCards[3]);
  EXPECT_EQ(Box().SelIndex(), -1);
  List().BackgroundCombo().SetSelIndex(0);
  EXPECT_EQ(List().SelCard(), iCards[3]);
  View().CloseCardList();
  View().GoToCard(iCards[2]);
  View().OpenCardList();
  EXPECT_EQ(List().SelCard(), iCards[2]) << "a list that was closed meanwhile catches up";
}

TEST_F(CVelumCardListTest, SeveralMarkedLinesStayMarked) {
  OpenThree();
  ClickLine(1);
  ClickLine(2, Qt::ControlModifier);
  ASSERT_EQ(Box().SelIndexes().size(), 2);
  View().SetCardValue(iCards[1], iName->Id(), TVelumValue::OfStr(u"set"_s));
  EXPECT_EQ(Box().SelIndexes().size(), 2);
}

TEST_F(CVelumCardListTest, TheRightButtonChoosesALine) {
  OpenThree();
  const auto rightClick = [&](int aRow) {
    const QRect rect = Widget().visualRect(Widget().model()->index(aRow, 0));
    QTest::mouseClick(Widget().viewport(), Qt::RightButton, {}, rect.center());
  };
  rightClick(2);
  EXPECT_EQ(Box().SelIndexes(), QList<int>{2});
  EXPECT_EQ(Cur(), u"c"_s);
  ClickLine(0);
  ClickLine(1, Qt::ControlModifier);
  rightClick(1);
  EXPECT_EQ(Box().SelIndexes().size(), 2) << "of several marked lines none is chosen";
  EXPECT_EQ(Cur(), u"a"_s);
  QTest::mouseClick(Widget().viewport(), Qt::RightButton, {}, QPoint(5, Widget().viewport()->height() - 3));
  EXPECT_EQ(Cur(), u"a"_s);
}

TEST_F(CVelumCardListTest, UpAndDownCanBePressedWhereTheyMoveSomething) {
  OpenThree();
  const auto movable = [&] {
    QString ways;
    if (ListForm().findChild<QPushButton*>(u"fUpBut"_s)->isEnabled()) ways += u"up"_s;
    if (ListForm().findChild<QPushButton*>(u"fDownBut"_s)->isEnabled()) ways += u"down"_s;
    return ways;
  };
  EXPECT_EQ(movable(), u"down"_s);
  ClickLine(1);
  EXPECT_EQ(movable(), u"updown"_s);
  Press(u"fDownBut"_s);
  EXPECT_EQ(movable(), u"up"_s) << "it is the last one";
  Box().SetSelIndexOrClear(-1);
  EXPECT_EQ(movable(), QString()) << "nothing is chosen";
  for (const auto& name : {u"fUpBut"_s, u"fDownBut"_s})
    EXPECT_FALSE(ListForm().findChild<QPushButton*>(name)->toolTip().isEmpty());
  View().EmptyStack();
  EXPECT_EQ(movable(), QString());
}

TEST_F(CVelumCardListTest, TheMainWindowHearsOfTheCardOnShow) {
  OpenThree();
  int shown = iFrame.iShown;
  const auto heard = [&] { return std::exchange(shown, iFrame.iShown) != iFrame.iShown; };
  Ref<CVelumCard> card;
  ASSERT_TRUE(View().OrderNext(card));
  EXPECT_TRUE(heard());
  ASSERT_TRUE(View().HistoryPrev(card));
  EXPECT_TRUE(heard());
  EXPECT_FALSE(View().CanGoUp());
  EXPECT_TRUE(View().CanGoDown());
  EXPECT_TRUE(View().CanGoForw());
  View().DeleteCard(iCards[2], nullptr);
  EXPECT_TRUE(heard());
  Press(u"fDownBut"_s);
  EXPECT_TRUE(heard());
  EXPECT_TRUE(View().CanGoUp());
  EXPECT_FALSE(View().CanGoDown());
  View().EmptyStack();
  EXPECT_TRUE(heard());
  EXPECT_FALSE(View().CanGoUp() || View().CanGoDown() || View().CanGoBack() || View().CanGoForw());
}

TEST_F(CVelumCardListTest, TheDefaultSizeOfTheListFontIsThatOfTheDesktop) {
  OpenThree();
  EXPECT_EQ(Box().Flags(), ELisFollowHeight | ELisFollowWidth);
  EXPECT_EQ(Widget().font().pointSizeF(), 8.0);
}

TEST_F(CVelumCardListTest, TheListFontKeepsItsColourWhenTheDesktopChanges) {
  gStack->SetListFont(MakeRef<CVelumFont>(u"Arial"_s, qint16{220}, 0x0000FF));
  OpenThree();
  const QColor red = Widget().palette().color(QPalette::Text);
  EXPECT_GT(red.red(), red.green() + 60);
  Widget().setPalette(QPalette(QColor(56, 56, 60), QColor(45, 45, 48)));
  QEvent change(QEvent::ThemeChange);
  QCoreApplication::sendEvent(&ListForm(), &change);
  QCoreApplication::processEvents();
  EXPECT_EQ(Widget().palette().color(QPalette::Text), red);
}

TEST_F(CVelumCardListTest, ADoubleClickOrEnterGoesOnInTheCardInFront) {
  OpenThree();
  View().GoToCard(iCards[0]);
  const auto open = [&](auto aHow) {
    Widget().setFocus();
    iFrame.iCalls.clear();
    aHow();
    EXPECT_TRUE(Base(iName).HasFocus());
    EXPECT_TRUE(iFrame.iCalls.contains(u"raise CVelumGenForm"_s));
  };
  const QPoint second = Widget().visualRect(Widget().model()->index(1, 0)).center();
  open([&] {
    QTest::mouseClick(Widget().viewport(), Qt::LeftButton, {}, second);
    EXPECT_TRUE(Widget().hasFocus()) << "one click stays in the list";
    QTest::mouseDClick(Widget().viewport(), Qt::LeftButton, {}, second);
  });
  EXPECT_EQ(Cur(), u"b"_s);
  open([&] {
    Box().SetSelIndex(2);
    QTest::keyClick(&Widget(), Qt::Key_Return);
  });
  EXPECT_EQ(Cur(), u"c"_s);
}

} // namespace
