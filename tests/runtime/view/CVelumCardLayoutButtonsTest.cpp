// Rows of buttons, and the commands of the menu.
#include "core/CVelumMsg.h"
#include "runtime/RuntimeFixture.h"
#include "toolkit/CVelumBaseButton.h"

#include <QPushButton>

namespace {

using CVelumCardLayoutButtonsTest = RuntimeTest;

// Lines are 160 twips high at the default 8 points, characters 100 wide; the dense gap is 20.

TEST_F(CVelumCardLayoutButtonsTest, ButtonsStandInRowsFromTheLeftMargin) {
  const auto name = AddField(iSet, u"Name"_s, EConText);
  const auto one = AddField(iSet, u"One"_s, EConCommand, EConAsButton);
  const auto two = AddField(iSet, u"Two"_s, EConCommand, EConAsButton);
  const auto last = AddField(iSet, u"Last"_s, EConText);
  const auto three = AddField(iSet, u"Three"_s, EConCommand, EConAsButton);
  AddCard(u"a"_s);
  Open();
  EXPECT_EQ(RectOf(Base(one)), QRectF(20, 320, 560, 375)) << "the first after a field starts a row";
  EXPECT_EQ(RectOf(Base(two)), QRectF(600, 320, 560, 375));
  EXPECT_EQ(Base(last).Top(), 320 + 375 + 20) << "the row counts once";
  EXPECT_EQ(RectOf(Base(three)), QRectF(20, 1015, 760, 375));
  EXPECT_EQ(Base(one).Text(), u"One"_s);
  EXPECT_EQ(one->BaseLabel(), nullptr);
  EXPECT_EQ(name->BaseType(), EBaseTextBox);
}

TEST_F(CVelumCardLayoutButtonsTest, AButtonThatDoesNotFitStartsARow) {
  const auto one = AddField(iSet, u"One"_s, EConCommand, EConAsButton);
  const auto two = AddField(iSet, u"Two"_s, EConCommand, EConAsButton);
  AddCard(u"a"_s);
  // The second one ends at 1160, and may end at the width less the gap.
  Open(1185, 3000);
  EXPECT_EQ(Base(two).Top(), Base(one).Top());
  Resize(78, 200);
  EXPECT_EQ(RectOf(Base(two)), QRectF(20, 20 + 375 + 20, 560, 375));
}

TEST_F(CVelumCardLayoutButtonsTest, ALabelIsShownInTheMenuAsOnItsButton) {
  const auto go = AddField(iSet, u"Fish & Chips &co"_s, EConCommand, EConAsButton | EConInMenu);
  AddCard(u"a"_s);
  Open();
  EXPECT_EQ(static_cast<QPushButton*>(Base(go).Widget())->text(), u"Fish && Chips &&co"_s);
  EXPECT_EQ(iFrame.iActions[u"fGenFunc0"_s]->text(), u"Fish && Chips &&co"_s) << "no key is taken out of it";
}

TEST_F(CVelumCardLayoutButtonsTest, RowsFromTheBottomAreTheirOwn) {
  const auto top = AddField(iSet, u"Top"_s, EConCommand, EConAsButton);
  const auto low = AddField(iSet, u"Low"_s, EConCommand, EConAsButton | EConFromBottom);
  const auto low2 = AddField(iSet, u"Lo2"_s, EConCommand, EConAsButton | EConFromBottom);
  AddCard(u"a"_s);
  Open();
  EXPECT_EQ(Base(top).Top(), 20);
  EXPECT_EQ(RectOf(Base(low)), QRectF(20, 7480 - 375, 560, 375));
  EXPECT_EQ(RectOf(Base(low2)), QRectF(600, 7480 - 375, 560, 375));
}

TEST_F(CVelumCardLayoutButtonsTest, ACommandOfTheMenuDoesNotEndARow) {
  const auto one = AddField(iSet, u"One"_s, EConCommand, EConAsButton);
  AddField(iSet, u"Menu"_s, EConCommand, EConInMenu);
  const auto two = AddField(iSet, u"Two"_s, EConCommand, EConAsButton);
  AddCard(u"a"_s);
  Open();
  EXPECT_EQ(RectOf(Base(two)), QRectF(600, Base(one).Top(), 560, 375));
  EXPECT_EQ(Base(two).TabIndex(), 1) << "it has no place among the tabs either";
}

TEST_F(CVelumCardLayoutButtonsTest, AButtonBehindAMenuCommandStartsARowWhereThereIsNone) {
  AddField(iSet, u"Menu"_s, EConCommand, EConInMenu);
  const auto first = AddField(iSet, u"First"_s, EConCommand, EConAsButton);
  const auto name = AddField(iSet, u"Name"_s, EConText);
  AddField(iSet, u"More"_s, EConCommand, EConInMenu);
  const auto second = AddField(iSet, u"Second"_s, EConCommand, EConAsButton);
  AddCard(u"a"_s);
  Open();
  for (const bool again : {false, true}) {
    if (again) View().RefreshViews(true, false);
    EXPECT_EQ(RectOf(Base(first)), QRectF(20, 20, 760, 375)) << again;
    EXPECT_EQ(Base(name).Top(), 415) << again;
    EXPECT_EQ(RectOf(Base(second)), QRectF(20, 715, 860, 375))
        << again << ": the row before the field is over";
  }
}

TEST_F(CVelumCardLayoutButtonsTest, WithoutAMainWindowPicturesAreThereToo) {
  const auto next = AddField(iSet, u"Next"_s, EConCommand, EConAsButton | EConPictButton | EConStdCmd);
  next->SetStdCmd(EStdNextCard);
  AddCard(u"a"_s);
  gFrameHost = nullptr;
  Open();
  EXPECT_TRUE(static_cast<CVelumBaseButton&>(Base(next)).HasPicture());
  gFrameHost = &iFrame;
}

TEST_F(CVelumCardLayoutButtonsTest, StandardCommandsCanShowTheirPicture) {
  const auto next = AddField(iSet, u"Next"_s, EConCommand, EConAsButton | EConPictButton | EConStdCmd);
  next->SetStdCmd(EStdNextCard);
  AddCard(u"a"_s);
  Open();
  EXPECT_TRUE(iFrame.iCalls.contains(u"ToolbarIcon NextCard"_s));
  EXPECT_TRUE(static_cast<CVelumBaseButton&>(Base(next)).HasPicture());
  EXPECT_EQ(Base(next).Text(), QString());
  EXPECT_EQ(Base(next).Width(), 260);
}

TEST_F(CVelumCardLayoutButtonsTest, EachPictureHasItsKey) {
  const QStringList keys{u"FirstCard"_s,     u"PrevCard"_s,      u"NextCard"_s,     u"LastCard"_s,
                         u"BackInHistory"_s, u"ForwInHistory"_s, u"ShowCardList"_s, u"SelectCard"_s};
  const qint16 commands[] = {0, 1, 2, 3, 4, 5, 7, 8};
  for (const qint16 command : commands)
    AddField(iSet, QString::number(command), EConCommand, EConAsButton | EConPictButton | EConStdCmd)
        ->SetStdCmd(command);
  AddCard(u"a"_s);
  Open();
  QStringList asked;
  for (const QString& call : iFrame.iCalls)
    if (call.startsWith(u"ToolbarIcon "_s)) asked.append(call.mid(12));
  EXPECT_EQ(asked, keys);
}

TEST_F(CVelumCardLayoutButtonsTest, ThePictureOfGoToCardAsserts) {
  AddField(iSet, u"Go"_s, EConCommand, EConAsButton | EConPictButton | EConStdCmd)->SetStdCmd(EStdGoToCard);
  AddCard(u"a"_s);
  Open();
  EXPECT_TRUE(iPresenter.FirstShown().iText.contains(u"AssignBaseControl pict stdCmd"_s));
}

TEST_F(CVelumCardLayoutButtonsTest, ACommandThatIsNeitherButtonNorMenuItemMustNotBeInTheCardView) {
  const auto command = AddField(iSet, u"Go"_s, EConCommand);
  AddCard(u"a"_s);
  Open();
  EXPECT_EQ(CVelumError::GetErrorCode(), EHostObjectNotSet);
  EXPECT_TRUE(iPresenter.LastText().contains(u"\"Go\" has no place on the card"_s));
  command->SetFlag(EConInCardView, false);
  iPresenter.Clear();
  View().RefreshViews(true, false);
  EXPECT_EQ(iPresenter.Count(), 0);
}

TEST_F(CVelumCardLayoutButtonsTest, CommandsOfTheMenuTakeItsItemsInOrder) {
  AddField(iSet, u"Name"_s, EConText);
  const auto one = AddField(iSet, u"One"_s, EConCommand, EConInMenu);
  const auto two = AddField(iSet, u"Two"_s, EConCommand, EConInMenu | EConAsButton);
  AddCard(u"a"_s);
  Open();
  EXPECT_EQ(iFrame.iActions[u"fGenFunc0"_s]->text(), u"One"_s);
  EXPECT_EQ(iFrame.iActions[u"fGenFunc1"_s]->text(), u"Two"_s);
  EXPECT_TRUE(iFrame.iActions[u"fGenFunc1"_s]->isVisible());
  EXPECT_FALSE(iFrame.iActions[u"fGenFunc2"_s]->isVisible());
  EXPECT_FALSE(iFrame.iActions[u"fGenFunc9"_s]->isVisible());
  EXPECT_FALSE(iFrame.iActions[u"fNoCmd"_s]->isVisible());
  EXPECT_TRUE(iFrame.iActions[u"fCmd"_s]->isEnabled());
  EXPECT_EQ(one->BaseFunc(), iFrame.iActions[u"fGenFunc0"_s]);
  EXPECT_EQ(one->BaseControl(), nullptr);
  EXPECT_EQ(iPresenter.Count(), 0);
}

TEST_F(CVelumCardLayoutButtonsTest, ABackgroundWithoutCommandsDisablesTheMenu) {
  const auto one = AddField(iSet, u"One"_s, EConCommand, EConInMenu);
  const auto set = AddBackground(u"Other"_s);
  AddCard(u"a"_s);
  const auto card = AddCard(u"b"_s, set);
  Open();
  View().GoToCard(card);
  EXPECT_FALSE(iFrame.iActions[u"fCmd"_s]->isEnabled());
  EXPECT_TRUE(iFrame.iActions[u"fNoCmd"_s]->isVisible());
  EXPECT_FALSE(iFrame.iActions[u"fGenFunc0"_s]->isVisible());
  EXPECT_EQ(one->BaseFunc(), nullptr);
}

TEST_F(CVelumCardLayoutButtonsTest, AnEleventhMenuCommandAsserts) {
  for (int i = 0; i < 11; ++i) AddField(iSet, QString::number(i), EConCommand, EConInMenu);
  AddCard(u"a"_s);
  Open();
  EXPECT_TRUE(iPresenter.FirstShown().iText.contains(u"ControlByName fGenFunc10"_s));
  EXPECT_EQ(iFrame.iActions[u"fGenFunc9"_s]->text(), u"9"_s);
}

TEST_F(CVelumCardLayoutButtonsTest, MoreThanAHundredAndOneMenuCommandsAreABoundsFailure) {
  for (int i = 0; i < 102; ++i)
    AddField(iSet, QString::number(i), EConCommand, EConInMenu)->SetFlag(EConInCardView, false);
  AddCard(u"a"_s);
  Open();
  EXPECT_EQ(CVelumError::GetErrorCode(), EHostIndex);
  EXPECT_EQ(iPresenter.CountOf(EMsgSystemError), 1);
}

} // namespace
