#include "runtime/lists/CVelumCardSelect.h"

#include "runtime/RuntimeFixture.h"
#include "toolkit/CVelumComboWidget.h"
#include "toolkit/CVelumListWidget.h"
#include "toolkit/CVelumWinMan.h"

#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

namespace {

class TakingWindow final : public QWidget, public CVelumCardTaker {
public:
  void SetCard(int aTag, const Ref<CVelumCard>& aCard) override {
    iTaken.append(QString::number(aTag) + u' ' + aCard->Name());
    if (iGoes) delete this;
  }
  QStringList iTaken;
  bool iGoes = false;
};

class CVelumCardSelectTest : public RuntimeTest {
protected:
  CVelumCardSelectTest() {
    iSecond = AddBackground(u"Second"_s);
    iX = AddCard(u"x"_s, iSecond);
    for (const auto& name : {u"a"_s, u"b"_s}) AddCard(name);
    Open();
    iForm = dynamic_cast<CVelumCardSelect*>(CVelumWinMan::NameToForm(u"CVelumCardSelect"_s));
  }
  ~CVelumCardSelectTest() override {
    if (CVelumWinMan::FormIsLoaded(u"CVelumCardSelect"_s)) CVelumWinMan::UnloadForm(*iForm);
  }
  CVelumListWidget& List() { return *iForm->findChild<CVelumListWidget*>(u"fCardBox"_s); }
  CVelumComboWidget& Combo() { return *iForm->findChild<CVelumComboWidget*>(u"fBackgroundCombo"_s); }
  QPushButton& Select() { return *iForm->findChild<QPushButton*>(u"fSelectBut"_s); }
  QStringList Names() {
    QStringList names;
    for (int i = 0; i < List().model()->rowCount(); ++i) names.append(List().CellText(i, 0));
    return names;
  }
  void ClickLine(int aRow, bool aTwice = false) {
    const QPoint at = List().visualRect(List().model()->index(aRow, 0)).center();
    QTest::mouseClick(List().viewport(), Qt::LeftButton, {}, at);
    if (aTwice) QTest::mouseDClick(List().viewport(), Qt::LeftButton, {}, at);
  }

  Ref<CVelumControlSet> iSecond;
  Ref<CVelumCard> iX;
  CVelumCardSelect* iForm = nullptr;
  TakingWindow iOwner;
};

TEST_F(CVelumCardSelectTest, TheCardsOfAGivenBackgroundAreFilledInOnce) {
  iForm->SelectCard(&iOwner, iSecond, 3);
  QSignalSpy filled(List().model(), &QAbstractItemModel::modelReset);
  iForm->SelectCard(&iOwner, iSet, 3);
  EXPECT_EQ(Names(), (QStringList{u"a"_s, u"b"_s}));
  const qsizetype once = filled.size();
  filled.clear();
  iForm->SelectCard(&iOwner, iSet, 3);
  EXPECT_EQ(once, filled.size()) << "the choice that changed must not fill them too";
}

TEST_F(CVelumCardSelectTest, ListsTheCardsOfTheChosenBackground) {
  iForm->SelectCard(&iOwner, nullptr, 3);
  EXPECT_EQ(iForm->windowTitle(), u"Select Card"_s);
  EXPECT_EQ(Select().text(), u"Select"_s);
  EXPECT_EQ(List().model()->headerData(0, Qt::Horizontal).toString(), u"Name"_s);
  EXPECT_EQ(List().model()->columnCount(), 1);
  EXPECT_TRUE(Combo().isEnabled());
  EXPECT_EQ(Combo().count(), 2);
  EXPECT_EQ(Combo().currentText(), u"Second"_s) << "that of the card on show";
  EXPECT_EQ(Names(), QStringList{u"x"_s});
  Combo().setCurrentIndex(0);
  EXPECT_EQ(Names(), (QStringList{u"a"_s, u"b"_s}));
  EXPECT_FALSE(Select().isEnabled());
  ClickLine(1);
  EXPECT_EQ(iForm->Card()->Name(), u"b"_s);
  EXPECT_TRUE(Select().isEnabled());
  Combo().setCurrentIndex(1);
  EXPECT_EQ(Names(), QStringList{u"x"_s});
  EXPECT_FALSE(Select().isEnabled()) << "a card that is not seen is not chosen";
  Combo().setCurrentIndex(-1);
  EXPECT_TRUE(Names().isEmpty()) << "without a background there are no cards";
}

TEST_F(CVelumCardSelectTest, ABackgroundThatIsGivenCannotBeChanged) {
  iForm->SelectCard(&iOwner, iSecond, 3);
  EXPECT_FALSE(Combo().isEnabled());
  EXPECT_EQ(Combo().currentText(), u"Second"_s);
  EXPECT_EQ(Names(), QStringList{u"x"_s});
  iForm->SelectCard(&iOwner, nullptr, 3);
  EXPECT_TRUE(Combo().isEnabled());
  const auto later = AddBackground(u"Later"_s);
  AddCard(u"l"_s, later);
  iForm->SelectCard(&iOwner, later, 3);
  EXPECT_EQ(Combo().currentText(), u"Later"_s) << "also one that was made meanwhile";
  EXPECT_EQ(Names(), QStringList{u"l"_s});
}

TEST_F(CVelumCardSelectTest, TheOwnerComesToTheFrontAndMayCloseItself) {
  iOwner.show();
  iForm->SelectCard(&iOwner, nullptr, 3);
  ASSERT_TRUE(QTest::qWaitForWindowActive(iForm));
  ClickLine(0);
  Select().click();
  EXPECT_TRUE(QTest::qWaitForWindowActive(&iOwner));
  auto* closing = new TakingWindow;
  closing->iGoes = true;
  iForm->SelectCard(closing, nullptr, 3);
  ClickLine(0);
  Select().click();
  EXPECT_EQ(iPresenter.Count(), 0);
}

TEST_F(CVelumCardSelectTest, TheChoiceGoesToTheOwnerOnce) {
  iForm->SelectCard(&iOwner, nullptr, 3);
  Combo().setCurrentIndex(0);
  ClickLine(1);
  QTest::mouseClick(&Select(), Qt::LeftButton);
  QTest::mouseClick(&Select(), Qt::LeftButton);
  EXPECT_EQ(iOwner.iTaken, QStringList{u"3 b"_s});
  iForm->SelectCard(&iOwner, nullptr, 4);
  ClickLine(0, true);
  EXPECT_EQ(iOwner.iTaken.last(), u"4 a"_s) << "a double click does the same";
}

TEST_F(CVelumCardSelectTest, WithoutOwnerOrCardNothingHappens) {
  CVelumWinMan::ShowDialog(*iForm);
  ClickLine(0, true);
  EXPECT_EQ(View().CurCard()->Name(), u"x"_s);
  iForm->SelectCard(&iOwner, nullptr, 1);
  List().SetSelLine(-1);
  Select().setEnabled(true);
  Select().click();
  EXPECT_TRUE(iOwner.iTaken.isEmpty());
  {
    TakingWindow gone;
    iForm->SelectCard(&gone, nullptr, 1);
  }
  ClickLine(0, true);
  iForm->SelectCard(&iOwner, iSecond, 1);
  ClickLine(0);
  gStack->DeleteCard(iX);
  Select().click();
  EXPECT_TRUE(iOwner.iTaken.isEmpty()) << "a card that is gone is no choice";
}

TEST_F(CVelumCardSelectTest, UnloadsItselfWhenTheStackCloses) {
  iForm->SelectCard(&iOwner, nullptr, 1);
  CVelumSeams::ChangeNotify(EChangeStructure);
  EXPECT_TRUE(CVelumWinMan::FormIsLoaded(u"CVelumCardSelect"_s));
  CVelumSeams::ChangeNotify(EChangeStackCloses);
  EXPECT_FALSE(CVelumWinMan::FormIsLoaded(u"CVelumCardSelect"_s));
}

TEST_F(CVelumCardSelectTest, LetsGoOfABackgroundThatIsDeleted) {
  iForm->SelectCard(&iOwner, nullptr, 0);
  const QString first = Combo().itemText(0);
  ASSERT_EQ(Names(), QStringList(u"x"_s));
  ClickLine(0);
  iForm->ChangeNotify(EChangeBackgroundGoes, iSecond.Get(), nullptr);
  EXPECT_EQ(Combo().count(), 1);
  EXPECT_EQ(Combo().currentText(), first);
  EXPECT_EQ(Names(), (QStringList{u"a"_s, u"b"_s}));
  EXPECT_FALSE(iForm->Card());
}

TEST_F(CVelumCardSelectTest, KeepsItsChoiceWhenAnotherBackgroundIsDeleted) {
  iForm->SelectCard(&iOwner, nullptr, 0);
  Combo().setCurrentIndex(0);
  ClickLine(1);
  iForm->ChangeNotify(EChangeBackgroundGoes, iSecond.Get(), nullptr);
  EXPECT_EQ(Combo().count(), 1);
  ASSERT_TRUE(iForm->Card());
  EXPECT_EQ(iForm->Card()->Name(), u"b"_s);
}

TEST_F(CVelumCardSelectTest, ClosesWhenTheOnlyBackgroundThatWillDoIsDeleted) {
  iForm->SelectCard(&iOwner, iSecond, 0);
  iForm->ChangeNotify(EChangeBackgroundGoes, iSecond.Get(), nullptr);
  EXPECT_FALSE(CVelumWinMan::FormIsLoaded(u"CVelumCardSelect"_s));
}

TEST_F(CVelumCardSelectTest, OpensOnTheFirstBackgroundWhileNoCardIsOnShow) {
  View().EmptyStack();
  iForm->SelectCard(&iOwner, nullptr, 0);
  EXPECT_EQ(Combo().currentIndex(), 0);
}

TEST_F(CVelumCardSelectTest, AButtonClosesIt) {
  iForm->SelectCard(&iOwner, nullptr, 0);
  ClickLine(0);
  QTest::mouseClick(iForm->findChild<QPushButton*>(u"fCloseBut"_s), Qt::LeftButton);
  EXPECT_FALSE(CVelumWinMan::FormIsLoaded(u"CVelumCardSelect"_s));
  EXPECT_TRUE(iOwner.iTaken.isEmpty());
}

} // namespace
