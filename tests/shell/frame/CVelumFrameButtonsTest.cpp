// What the main window offers and says: arrows, keys, its last report, files of one name.
#include "shell/FrameTest.h"
#include "shell/dialogs/CVelumOptions.h"
#include "shell/frame/CVelumReport.h"
#include "toolkit/CVelumMdiArea.h"
#include "toolkit/CVelumWinMan.h"

#include <QLabel>
#include <QMdiSubWindow>
#include <QStatusBar>

namespace {

class CVelumFrameButtonsTest : public FrameTest {
protected:
  // The arrows of the toolbar that can be pressed.
  static QString Arrows() {
    QStringList arrows;
    for (const auto& [key, name] :
         {std::pair(u"FirstCard"_s, u"first"_s), std::pair(u"PrevCard"_s, u"prev"_s),
          std::pair(u"NextCard"_s, u"next"_s), std::pair(u"LastCard"_s, u"last"_s),
          std::pair(u"BackInHistory"_s, u"back"_s), std::pair(u"ForwInHistory"_s, u"forw"_s)})
      if (Action(key)->isEnabled()) arrows.append(name);
    return arrows.join(u' ');
  }
  static QImage Picture(const QString& aKey) {
    return gFrame->ToolbarIcon(aKey).pixmap(QSize(48, 48), 1.0).toImage();
  }
  static void Press(Qt::Key aKey, Qt::KeyboardModifiers aModifiers) {
    ASSERT_TRUE(QTest::qWaitForWindowActive(gFrame));
    QTest::keyClick(gFrame, aKey, aModifiers);
    QCoreApplication::processEvents();
  }
  static QWidget* ActiveChild() {
    const QMdiSubWindow* child = gFrame->findChild<CVelumMdiArea*>()->activeSubWindow();
    return child ? child->widget() : nullptr;
  }
};

} // namespace

TEST_F(CVelumFrameButtonsTest, ArrowsCanBePressedWhereTheyLeadSomewhere) {
  Start();
  EXPECT_EQ(Arrows(), QString());
  iPath = CopyStack(u"a.Orvelle"_s);
  Choose(u"fOpenStack"_s);
  EXPECT_EQ(Arrows(), u"next last"_s);
  Click(u"NextCard"_s);
  EXPECT_EQ(Arrows(), u"first prev next last back"_s);
  Click(u"LastCard"_s);
  EXPECT_EQ(Arrows(), u"first prev back"_s);
  Click(u"BackInHistory"_s);
  EXPECT_EQ(Arrows(), u"first prev next last back forw"_s);
  iPresenter.Answer(true);
  Choose(u"fEmptyStack"_s);
  EXPECT_EQ(Arrows(), QString());
}

TEST_F(CVelumFrameButtonsTest, ArrowsFollowADeletion) {
  Start(CopyStack(u"a.Orvelle"_s));
  Click(u"LastCard"_s);
  Click(u"PrevCard"_s);
  gStackView->DeleteCard(gStack->GetCardById(gStackView->History().At(1)->Id()), nullptr);
  EXPECT_EQ(Arrows(), u"first prev back"_s) << "it has become the last card";
}

// An arrow that bends stands for taking a change back.
TEST_F(CVelumFrameButtonsTest, PicturesOfTheHistoryAreStraightArrows) {
  Start();
  const QImage back = Picture(u"BackInHistory"_s);
  const QImage forw = Picture(u"ForwInHistory"_s);
  EXPECT_NE(back, forw);
  const auto differs = [](const QImage& aOne, const QImage& aOther) {
    int pixels = 0;
    for (int y = 0; y < aOne.height(); ++y)
      for (int x = 0; x < aOne.width(); ++x)
        pixels += std::abs(qAlpha(aOne.pixel(x, y)) - qAlpha(aOther.pixel(x, y))) > 64;
    return pixels;
  };
  EXPECT_LE(differs(back, back.mirrored(false, true)), 8) << "the upper half is as the lower one";
  EXPECT_LE(differs(back, forw.mirrored(true, false)), 8) << "one is the mirror of the other";
  EXPECT_GT(differs(back, forw), 100);
}

TEST_F(CVelumFrameButtonsTest, KeysMakeAndDeleteACard) {
  Start(CopyStack(u"a.Orvelle"_s));
  iPresenter.Answer(true);
  Press(Qt::Key_Delete, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(gStack->NumCards(), 12);
  Press(Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_TRUE(CVelumWinMan::FormIsLoaded(u"CVelumCardEdit"_s));
}

TEST_F(CVelumFrameButtonsTest, KeysGoToTheNextWindowOfTheStackAndCloseIt) {
  Start(CopyStack(u"a.Orvelle"_s));
  gStackView->ShowCardList();
  QWidget* list = CVelumWinMan::NameToForm(u"CVelumCardListForm"_s)->Widget();
  QWidget* card = CVelumWinMan::NameToForm(u"CVelumGenForm"_s)->Widget();
  ASSERT_EQ(ActiveChild(), list);
  Press(Qt::Key_F6, Qt::ControlModifier);
  EXPECT_EQ(ActiveChild(), card);
  EXPECT_TRUE(card->isAncestorOf(QApplication::focusWidget()) || card->hasFocus());
  Press(Qt::Key_F6, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(ActiveChild(), list);
  Press(Qt::Key_F4, Qt::ControlModifier);
  EXPECT_FALSE(gStackView->CardListIsOpen());
  EXPECT_TRUE(gStackView->CardViewIsOpen());
}

TEST_F(CVelumFrameButtonsTest, TheStatusBarSaysWhatWasDoneLast) {
  Start(CopyStack(u"a.Orvelle"_s));
  EXPECT_EQ(Report(), QString());
  Change();
  Choose(u"fSaveStack"_s);
  EXPECT_EQ(Report(), u"Saved a.Orvelle, 13 cards"_s);
  iPresenter.Answer(true);
  Choose(u"fDeleteCard"_s);
  EXPECT_EQ(Report(), u"Deleted the card \u201ccard 00\u201d"_s);
  iPresenter.Answer(true);
  const QString cards = CVelumReport::CardsOf(*gStack);
  Choose(u"fEmptyStack"_s);
  EXPECT_EQ(Report(), u"Deleted "_s + cards);
  AnswerSave(u"fDiscardBut"_s);
  Choose(u"fCloseStack"_s);
  EXPECT_EQ(Report(), QString());
}

TEST_F(CVelumFrameButtonsTest, WhatIsSaidBeforeStandsOnTheLeftOfTheReport) {
  Start();
  gFrame->show();
  auto* panel = new QLabel(u"panel"_s, gFrame);
  auto* bar = gFrame->findChild<QStatusBar*>(u"fStatusBar"_s);
  bar->insertWidget(0, panel);
  panel->show();
  gFrame->Report(QString(1000, u'x'));
  QCoreApplication::processEvents();
  const auto* report = gFrame->findChild<QLabel*>(u"fReport"_s);
  EXPECT_TRUE(report->isVisible());
  EXPECT_LE(panel->geometry().right(), report->geometry().left());
  EXPECT_LT(gFrame->minimumSizeHint().width(), 800) << "a long text does not widen the window";
}

TEST_F(CVelumFrameButtonsTest, CardsAreCountedByBackground) {
  const auto stack = MakeRef<CVelumStack>(u"s"_s);
  Ref<CVelumControlSet> first;
  qint32 index = 0;
  ASSERT_TRUE(stack->GetFirstBackground(first, index));
  first->SetName(u"Books"_s);
  EXPECT_EQ(CVelumReport::CardsOf(*stack), u"0 cards"_s);
  stack->AddCard(MakeRef<CVelumCard>(u"a"_s, first), nullptr, true);
  EXPECT_EQ(CVelumReport::CardsOf(*stack), u"1 card of \u201cBooks\u201d"_s);
  auto second = MakeRef<CVelumControlSet>(u"People"_s, stack->IdGen().NextId());
  stack->AddBackground(second);
  for (int i = 0; i < 2; ++i) stack->AddCard(MakeRef<CVelumCard>(u"b"_s, second), nullptr, true);
  EXPECT_EQ(CVelumReport::CardsOf(*stack), u"3 cards: 1 of \u201cBooks\u201d, 2 of \u201cPeople\u201d"_s);
  for (int i = 0; i < 9; ++i) {
    auto more = MakeRef<CVelumControlSet>(u"m"_s, stack->IdGen().NextId());
    stack->AddBackground(more);
    stack->AddCard(MakeRef<CVelumCard>(u"c"_s, more), nullptr, true);
  }
  EXPECT_TRUE(CVelumReport::CardsOf(*stack).endsWith(u", \u2026"_s));
}

TEST_F(CVelumFrameButtonsTest, RecentFilesOfOneNameAreToldApart) {
  Start();
  for (const auto& name : {u"/x/a.Orvelle"_s, u"/y/a.Orvelle"_s, u"/x/b.Orvelle"_s})
    CVelumOptions::AddToFileHistory(name);
  Open(u"fOpenRecent"_s);
  EXPECT_EQ(Captions(*Menu(u"fOpenRecent"_s)).first(3),
            (QStringList{u"a.Orvelle in /x"_s, u"a.Orvelle in /y"_s, u"b.Orvelle"_s}));
}
