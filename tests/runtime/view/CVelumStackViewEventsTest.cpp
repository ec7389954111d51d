#include "core/CVelumMsg.h"
#include "runtime/StackViewTest.h"
#include "toolkit/CVelumBaseCheckBox.h"

#include <QClipboard>
#include <QTest>

namespace {

using CVelumStackViewEventsTest = StackViewTest;

TEST_F(CVelumStackViewEventsTest, ACheckBoxStoresWhenItIsClickedAndAgainWhenItIsLeft) {
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

TEST_F(CVelumStackViewEventsTest, AReadOnlyCheckBoxKeepsItsStateAndSaysSo) {
  const auto done = AddField(iSet, u"Done"_s, EConBoolean, EConReadOnly);
  const auto card = AddCard(u"a"_s);
  Open();
  QTest::mouseClick(Base(done).Widget(), Qt::LeftButton, {}, QPoint(8, 10));
  EXPECT_EQ(iPresenter.Told(), QList<QString>{u"Read-only!"_s});
  EXPECT_EQ(static_cast<CVelumBaseCheckBox&>(Base(done)).Value(), 0);
  EXPECT_FALSE(card->ControlValDef(done->Id()));
}

TEST_F(CVelumStackViewEventsTest, ProgramsOwnCheckMarksAreNoClicks) {
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

TEST_F(CVelumStackViewEventsTest, AReadOnlyCheckBoxStaysCheckedAndShowingItIsNoClick) {
  OpenThree();
  const auto done = AddField(iSet, u"Done"_s, EConBoolean, EConReadOnly);
  iCards[1]->SetControlVal(done->Id(), TVelumValue::OfBoolean(true));
  View().RefreshViews(true, false);
  View().GoToCard(iCards[1]);
  EXPECT_TRUE(iPresenter.Told().isEmpty()) << "another value that the program shows is no click";
  QTest::mouseClick(Base(done).Widget(), Qt::LeftButton, {}, QPoint(8, 10));
  EXPECT_EQ(iPresenter.Told(), QList<QString>{u"Read-only!"_s});
  EXPECT_EQ(static_cast<CVelumBaseCheckBox&>(Base(done)).Value(), 1);
  EXPECT_TRUE(iCards[1]->GetControlVal(done->Id(), false).Boolean());
}

TEST_F(CVelumStackViewEventsTest, AClickThatBelongsToNoCommandOfTheCardDoesNothing) {
  OpenThree();
  const auto go = AddField(iSet, u"Go"_s, EConCommand, EConAsButton);
  go->SetStdCmd(EStdNextCard);
  View().RefreshViews(true, false);
  iRunner.iSent.clear();
  View().BaseObjClick(&Pool(u"fGenButton5"_s));
  View().BaseObjClick(iFrame.iActions[u"fGenFunc3"_s]);
  EXPECT_TRUE(iRunner.iSent.isEmpty());
  EXPECT_EQ(Cur(), u"a"_s);
}

TEST_F(CVelumStackViewEventsTest, AButtonSendsSelectAndRunsItsStandardCommand) {
  OpenThree();
  const auto next = AddField(iSet, u"Next"_s, EConCommand, EConAsButton);
  next->SetStdCmd(EStdNextCard);
  View().RefreshViews(true, false);
  iRunner.iSent.clear();
  QTest::mouseClick(Base(next).Widget(), Qt::LeftButton);
  EXPECT_EQ(Cur(), u"b"_s);
  EXPECT_EQ(iRunner.iSent, (QStringList{u"exitField a.Name"_s, u"select a.Next"_s, u"openCard b"_s}));
}

TEST_F(CVelumStackViewEventsTest, ClickingAButtonTakesWhatWasTypedFirst) {
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

TEST_F(CVelumStackViewEventsTest, AMenuItemSendsSelectOnlyForACommandOfTheCardView) {
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

TEST_F(CVelumStackViewEventsTest, LinksGoToCardsOrSendSelect) {
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

TEST_F(CVelumStackViewEventsTest, StandardCommandsGoWhereTheySay) {
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

TEST_F(CVelumStackViewEventsTest, AStandardCommandBeyondTheLastAsserts) {
  OpenThree();
  EXPECT_THROW(View().ExecStdCmd(9, *iName), CVelumException);
  EXPECT_TRUE(iPresenter.LastText().contains(u"ExecStdCmd"_s));
}

TEST_F(CVelumStackViewEventsTest, TextsAreTakenRawWithCrLf) {
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

TEST_F(CVelumStackViewEventsTest, DoubleClicksOpenTheirWindows) {
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

TEST_F(CVelumStackViewEventsTest, AFailingScriptIsShownAndTheRunnerReset) {
  OpenThree();
  iRunner.iOnMessage = [](const QString&) { CVelumError::RaiseHost(EHostOverflow); };
  View().GoToCard(iCards[1]);
  EXPECT_EQ(Cur(), u"b"_s);
  EXPECT_GE(iPresenter.CountOf(EMsgSystemError), 1);
  EXPECT_GE(iRunner.iResets, 1);
}

TEST_F(CVelumStackViewEventsTest, AMessageWithoutAnObjectGoesToTheCurrentCard) {
  OpenThree();
  View().ExecScript(nullptr, u"openStack"_s);
  EXPECT_EQ(iRunner.iSent, QStringList{u"openStack a"_s});
}

TEST_F(CVelumStackViewEventsTest, WithoutARunnerNoHandlerIsFound) {
  OpenThree();
  CVelumScriptRunner::Install(nullptr);
  View().GoToCard(iCards[1]);
  EXPECT_EQ(Cur(), u"b"_s);
}

} // namespace
