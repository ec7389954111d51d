#include "shell/dialogs/CVelumCardEdit.h"

#include "core/CVelumMsg.h"
#include "core/text/CVelumLocale.h"
#include "runtime/view/CVelumGenForm.h"
#include "shell/ShellTest.h"
#include "shell/dialogs/CVelumNotBuilt.h"
#include "toolkit/CVelumBaseColor.h"
#include "toolkit/CVelumListWidget.h"
#include "toolkit/CVelumWinMan.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>

namespace {

// On a stack of one background "Main" with the fields "Title" and "Size" and the cards "a", "b", "c"; the
// current card is "a".
class CVelumCardEditTest : public ShellTest {
protected:
  CVelumCardEditTest() {
    Start();
    gStack = MakeRef<CVelumStack>(u"Test"_s);
    qint32 index = 0;
    EXPECT_TRUE(gStack->GetFirstBackground(iSet, index));
    iSet->SetName(u"Main"_s);
    iTitle = AddField(u"Title"_s, EConText);
    iSize = AddField(u"Size"_s, EConInteger);
    for (const QString& name : {u"a"_s, u"b"_s, u"c"_s}) iCards.append(AddCard(name, iSet));
    gStackView = MakeRef<CVelumStackView>(u"Test"_s, gStack);
    gStackView->OpenCardView();
    CVelumSeams::ChangeNotify(EChangeStack);
  }

  Ref<CVelumControl> AddField(const QString& aName, qint32 aType) const {
    auto control = MakeRef<CVelumControl>(gStack->IdGen().NextId(), aName, aType);
    iSet->AddControl(control, ENoInt);
    return control;
  }
  static Ref<CVelumCard> AddCard(const QString& aName, const Ref<CVelumControlSet>& aSet) {
    auto card = MakeRef<CVelumCard>(aName, aSet);
    gStack->AddCard(card, nullptr, true);
    return card;
  }
  static Ref<CVelumControlSet> AddBackground(const QString& aName) {
    auto set = MakeRef<CVelumControlSet>(aName, gStack->IdGen().NextId());
    gStack->AddBackground(set);
    return set;
  }
  CVelumCardEdit& OpenForm() {
    iForm = dynamic_cast<CVelumCardEdit*>(CVelumWinMan::NameToForm(u"CVelumCardEdit"_s));
    CVelumWinMan::ShowDialog(*iForm);
    return *iForm;
  }
  static bool IsOpen() { return CVelumWinMan::FormIsLoaded(u"CVelumCardEdit"_s); }
  template <class T> T& Find(const QString& aName) { return *iForm->findChild<T*>(aName); }
  QString Text(const QString& aName) { return Find<QLineEdit>(aName).text(); }
  QString ModeText() { return Find<QLabel>(u"fModeText"_s).text(); }
  bool Checked(const QString& aName) { return Find<QAbstractButton>(aName).isChecked(); }
  bool Enabled(const QString& aName) { return Find<QWidget>(aName).isEnabled(); }
  void Press(const QString& aName) { QTest::mouseClick(&Find<QPushButton>(aName), Qt::LeftButton); }
  void Choose1(const QString& aRadio) { Find<QRadioButton>(aRadio).setChecked(true); }
  QStringList Column(const QString& aList, int aColumn) {
    QStringList lines;
    const auto& list = Find<CVelumListWidget>(aList);
    for (int i = 0; i < list.model()->rowCount(); ++i) lines.append(list.CellText(i, aColumn));
    return lines;
  }
  void Select(const QString& aList, int aLine) { Find<CVelumListWidget>(aList).SetSelLine(aLine); }
  QString Selected(const QString& aList) {
    const int line = Find<CVelumListWidget>(aList).SelLine();
    return line < 0 ? QString() : Find<CVelumListWidget>(aList).CellText(line, 0);
  }
  static QStringList Order() {
    QStringList names;
    Ref<CVelumCard> card;
    for (qint32 i = 0; gStack->GetNextCard(card, i);) names.append(card->Name());
    return names;
  }
  // Makes a card at a place.
  void Create(const QString& aName, const QString& aRadio) {
    iForm->NewCard(iSet);
    Find<QLineEdit>(u"fName"_s).setText(aName);
    Choose1(aRadio);
    Press(u"fCreateBut"_s);
  }

  Ref<CVelumControlSet> iSet;
  Ref<CVelumControl> iTitle;
  Ref<CVelumControl> iSize;
  QList<Ref<CVelumCard>> iCards;
  CVelumCardEdit* iForm = nullptr;
};

} // namespace

TEST_F(CVelumCardEditTest, OpensWithItsListsAndNothingChosen) {
  AddBackground(u"Other"_s);
  OpenForm();
  EXPECT_EQ(Column(u"fBackgroundBox"_s, 0), (QStringList{u"Main"_s, u"Other"_s}));
  EXPECT_EQ(Selected(u"fBackgroundBox"_s), u"Main"_s);
  EXPECT_EQ(Column(u"fCardBox"_s, 0), (QStringList{u"a"_s, u"b"_s, u"c"_s}));
  EXPECT_EQ(Selected(u"fCardBox"_s), QString());
  EXPECT_EQ(ModeText(), QString());
  for (const QString& name : {u"fAtEnd"_s, u"fBeforeCur"_s, u"fAfterCur"_s, u"fBeforeSpec"_s, u"fCreateBut"_s,
                              u"fModifyBut"_s, u"fDeleteBut"_s, u"fScriptBut"_s, u"fSelectFontBut"_s})
    EXPECT_FALSE(Enabled(name)) << name.toStdString();
  EXPECT_TRUE(Find<QLineEdit>(u"fName"_s).isReadOnly());
}

TEST_F(CVelumCardEditTest, WithoutAStackItSaysSo) {
  gStackView->Release();
  gStackView = nullptr;
  gStack = nullptr;
  OpenForm();
  EXPECT_EQ(Column(u"fBackgroundBox"_s, 0), QStringList{u"(No stack available)"_s});
  EXPECT_FALSE(Enabled(u"fNewBut"_s));
}

TEST_F(CVelumCardEditTest, ColumnsHaveTheirTitles) {
  OpenForm();
  const auto title = [&](const QString& aList, int aColumn) {
    return Find<CVelumListWidget>(aList).model()->headerData(aColumn, Qt::Horizontal).toString();
  };
  EXPECT_EQ(title(u"fCardBox"_s, 0), u"Card Name"_s);
  EXPECT_EQ(title(u"fControlBox"_s, 0), u"Name"_s);
  EXPECT_EQ(title(u"fControlBox"_s, 1), u"Current Value"_s);
}

TEST_F(CVelumCardEditTest, ACardIsShownWithItsValues) {
  iCards[1]->SetControlVal(iTitle->Id(), TVelumValue::OfStr(u"Tale"_s));
  iCards[1]->SetControlVal(iSize->Id(), TVelumValue::OfInt(12));
  iCards[1]->SetBackColor(0x0000FF);
  iCards[1]->SetFont(MakeRef<CVelumFont>(u"Courier"_s, qint16{250}, 0x00FF00));
  OpenForm().SetAndShowCard(iCards[1]);
  EXPECT_EQ(Selected(u"fCardBox"_s), u"b"_s);
  EXPECT_EQ(ModeText(), u"b"_s);
  EXPECT_EQ(Text(u"fName"_s), u"b"_s);
  EXPECT_EQ(Column(u"fControlBox"_s, 0), (QStringList{u"Title"_s, u"Size"_s}));
  EXPECT_EQ(Column(u"fControlBox"_s, 1), (QStringList{u"Tale"_s, u"12"_s}));
  EXPECT_EQ(Text(u"fFontName"_s), u"Courier"_s);
  EXPECT_EQ(Text(u"fFontSize"_s), u"12.5"_s);
  EXPECT_EQ(Find<QLabel>(u"fFontColor"_s).palette().color(QPalette::Window), QColor(0, 255, 0));
  EXPECT_EQ(Find<QLabel>(u"fColorSample"_s).palette().color(QPalette::Window), QColor(255, 0, 0));
  EXPECT_TRUE(Text(u"fCreDate"_s).startsWith(CVelumLocale::ShortDate(iCards[1]->CreDate())));
  EXPECT_TRUE(Text(u"fModDate"_s).contains(CVelumLocale::LongTime(iCards[1]->ModTime())));
  EXPECT_TRUE(Checked(u"fChanged"_s));
  for (const QString& name : {u"fModifyBut"_s, u"fDeleteBut"_s, u"fScriptBut"_s, u"fSelectFontBut"_s,
                              u"fSelectColorBut"_s, u"fClearColorBut"_s})
    EXPECT_TRUE(Enabled(name)) << name.toStdString();
  for (const QString& name : {u"fCreateBut"_s, u"fAtEnd"_s, u"fSelectCardBut"_s, u"fChanged"_s})
    EXPECT_FALSE(Enabled(name)) << name.toStdString();
  for (const QString& name : {u"fFontName"_s, u"fFontSize"_s, u"fCardName"_s, u"fCreDate"_s, u"fModDate"_s})
    EXPECT_TRUE(Find<QLineEdit>(name).isReadOnly()) << name.toStdString();
  EXPECT_FALSE(Find<QLineEdit>(u"fName"_s).isReadOnly());
}

TEST_F(CVelumCardEditTest, ClicksInTheListsChooseBackgroundAndCard) {
  const Ref<CVelumControlSet> other = AddBackground(u"Other"_s);
  AddCard(u"x"_s, other);
  OpenForm();
  Select(u"fCardBox"_s, 2);
  EXPECT_EQ(ModeText(), u"c"_s);
  // The card window stays where it is.
  EXPECT_EQ(CardName(), u"a"_s);
  Select(u"fBackgroundBox"_s, 1);
  EXPECT_EQ(Column(u"fCardBox"_s, 0), QStringList{u"x"_s});
  EXPECT_EQ(ModeText(), QString());
  EXPECT_EQ(Text(u"fName"_s), QString());
  EXPECT_TRUE(Column(u"fControlBox"_s, 0).isEmpty());
}

TEST_F(CVelumCardEditTest, NewCardOpensTheEntries) {
  OpenForm().SetAndShowCard(iCards[1]);
  iForm->NewCard(iSet);
  EXPECT_EQ(ModeText(), u"<new \"Main\">"_s);
  EXPECT_EQ(Text(u"fName"_s), QString());
  EXPECT_EQ(iForm->focusWidget(), &Find<QLineEdit>(u"fName"_s));
  EXPECT_TRUE(Checked(u"fAtEnd"_s));
  for (const QString& name :
       {u"fAtEnd"_s, u"fBeforeCur"_s, u"fAfterCur"_s, u"fBeforeSpec"_s, u"fSelectCardBut"_s, u"fCreateBut"_s})
    EXPECT_TRUE(Enabled(name)) << name.toStdString();
  EXPECT_FALSE(Enabled(u"fModifyBut"_s));
  EXPECT_FALSE(Enabled(u"fDeleteBut"_s));
}

TEST_F(CVelumCardEditTest, EmptyNameIsRefused) {
  OpenForm().NewCard(iSet);
  Press(u"fCreateBut"_s);
  EXPECT_EQ(iPresenter.LastText(), u"An empty name is not allowed for a card."_s);
  EXPECT_EQ(gStack->NumCards(), 3);
  iForm->SetAndShowCard(iCards[0]);
  Find<QLineEdit>(u"fName"_s).clear();
  Find<QWidget>(u"fCardBox"_s).setFocus();
  Press(u"fModifyBut"_s);
  EXPECT_EQ(iPresenter.CountOf(EMsgEmptyName), 2);
  EXPECT_EQ(iForm->focusWidget(), &Find<QLineEdit>(u"fName"_s));
  EXPECT_EQ(iCards[0]->Name(), u"a"_s);
}

TEST_F(CVelumCardEditTest, NewCardAtTheEnd) {
  OpenForm();
  Create(u"n"_s, u"fAtEnd"_s);
  EXPECT_EQ(Order(), (QStringList{u"a"_s, u"b"_s, u"c"_s, u"n"_s}));
  // It is on show in the card window and here.
  EXPECT_EQ(CardName(), u"n"_s);
  EXPECT_EQ(ModeText(), u"n"_s);
  EXPECT_EQ(Selected(u"fCardBox"_s), u"n"_s);
  EXPECT_EQ(iPresenter.Count(), 0);
}

TEST_F(CVelumCardEditTest, NewCardBeforeAndAfterTheCurrentOne) {
  gStackView->GoToCard(iCards[1]);
  OpenForm();
  Create(u"n"_s, u"fBeforeCur"_s);
  EXPECT_EQ(Order(), (QStringList{u"a"_s, u"n"_s, u"b"_s, u"c"_s}));
  Create(u"m"_s, u"fAfterCur"_s);
  EXPECT_EQ(Order(), (QStringList{u"a"_s, u"n"_s, u"m"_s, u"b"_s, u"c"_s}));
}

TEST_F(CVelumCardEditTest, AfterTheLastCardIsAtTheEnd) {
  gStackView->GoToCard(iCards[2]);
  OpenForm();
  Create(u"n"_s, u"fAfterCur"_s);
  EXPECT_EQ(Order(), (QStringList{u"a"_s, u"b"_s, u"c"_s, u"n"_s}));
}

TEST_F(CVelumCardEditTest, NewCardBeforeACardThatIsNamed) {
  OpenForm().NewCard(iSet);
  Press(u"fSelectCardBut"_s);
  auto* select = dynamic_cast<CVelumCardSelect*>(CVelumWinMan::NameToForm(u"CVelumCardSelect"_s));
  ASSERT_TRUE(select && select->isVisible());
  select->findChild<CVelumListWidget*>(u"fCardBox"_s)->SetSelLine(2);
  QTest::mouseClick(select->findChild<QPushButton*>(u"fSelectBut"_s), Qt::LeftButton);
  EXPECT_EQ(Text(u"fCardName"_s), u"c"_s);
  EXPECT_TRUE(Checked(u"fBeforeSpec"_s));
  Find<QLineEdit>(u"fName"_s).setText(u"n"_s);
  Press(u"fCreateBut"_s);
  EXPECT_EQ(Order(), (QStringList{u"a"_s, u"b"_s, u"n"_s, u"c"_s}));
}

TEST_F(CVelumCardEditTest, BeforeANamedCardThatWasNotNamedIsAtTheEnd) {
  OpenForm();
  Create(u"n"_s, u"fBeforeSpec"_s);
  EXPECT_EQ(Order(), (QStringList{u"a"_s, u"b"_s, u"c"_s, u"n"_s}));
  // The same for one that went without a word.
  iForm->NewCard(iSet);
  iForm->SetCard(0, iCards[1]);
  gStack->DeleteCard(iCards[1]);
  Find<QLineEdit>(u"fName"_s).setText(u"m"_s);
  Press(u"fCreateBut"_s);
  EXPECT_EQ(Order(), (QStringList{u"a"_s, u"c"_s, u"n"_s, u"m"_s}));
  EXPECT_EQ(iPresenter.Count(), 0);
}

TEST_F(CVelumCardEditTest, InAnEmptyStackEveryPlaceIsTheSame) {
  gStackView->EmptyStack();
  OpenForm();
  for (const QString& place : {u"fBeforeCur"_s, u"fAfterCur"_s, u"fAtEnd"_s}) {
    Create(u"n"_s, place);
    EXPECT_EQ(Order(), QStringList{u"n"_s}) << place.toStdString();
    EXPECT_EQ(CardName(), u"n"_s);
    gStackView->EmptyStack();
  }
  EXPECT_EQ(iPresenter.Count(), 0);
}

TEST_F(CVelumCardEditTest, WithNoPlaceChosenItAsserts) {
  OpenForm().NewCard(iSet);
  Find<QLineEdit>(u"fName"_s).setText(u"n"_s);
  Find<QRadioButton>(u"fAtEnd"_s).setAutoExclusive(false);
  Find<QRadioButton>(u"fAtEnd"_s).setChecked(false);
  Press(u"fCreateBut"_s);
  EXPECT_TRUE(iPresenter.Shown().first().iText.contains(u"< CreateCard pos >"_s));
  EXPECT_EQ(gStack->NumCards(), 3);
  iPresenter.Answer(true);
  Press(u"fCreateBut"_s);
  EXPECT_EQ(Order().last(), u"n"_s);
}

TEST_F(CVelumCardEditTest, NewCardTakesDefaultsAndTheCardNameField) {
  iTitle->SetDefaultVal(u"untold"_s);
  iSize->SetDefaultVal(u"7"_s);
  iTitle->SetFlag(EConCardName, true);
  OpenForm();
  Create(u"n"_s, u"fAtEnd"_s);
  Ref<CVelumCard> card;
  ASSERT_TRUE(gStack->GetCard(u"n"_s, card));
  EXPECT_EQ(card->GetControlVal(iTitle->Id(), false).Str(), u"n"_s);
  EXPECT_EQ(card->GetControlVal(iSize->Id(), false).Int(), 7);
  EXPECT_FALSE(gStack->GetCard(u"untold"_s, card));
}

TEST_F(CVelumCardEditTest, NewCardTakesFontAndColour) {
  OpenForm().NewCard(iSet);
  iForm->SetFont(0, MakeRef<CVelumFont>(u"Courier"_s, qint16{250}, ENoInt));
  EXPECT_EQ(Text(u"fFontName"_s), u"Courier"_s);
  WhenOpen([](QWidget& aDialog) {
    auto& dialog = dynamic_cast<QColorDialog&>(aDialog);
    dialog.setCurrentColor(Qt::green);
    dialog.accept();
  });
  Press(u"fSelectColorBut"_s);
  Find<QLineEdit>(u"fName"_s).setText(u"n"_s);
  Press(u"fCreateBut"_s);
  Ref<CVelumCard> card;
  ASSERT_TRUE(gStack->GetCard(u"n"_s, card));
  EXPECT_EQ(card->BackColor(), CVelumBaseColor::FromColor(Qt::green));
  ASSERT_TRUE(card->Font());
  EXPECT_EQ(card->Font()->FaceName(), u"Courier"_s);
}

TEST_F(CVelumCardEditTest, TwoCardsMayHaveTheSameName) {
  OpenForm();
  Create(u"a"_s, u"fAtEnd"_s);
  EXPECT_EQ(Order(), (QStringList{u"a"_s, u"b"_s, u"c"_s, u"a"_s}));
  EXPECT_EQ(iPresenter.Count(), 0);
  // The selection is that of the new one, although the other has the same name.
  EXPECT_EQ(Find<CVelumListWidget>(u"fCardBox"_s).SelLine(), 3);
}

TEST_F(CVelumCardEditTest, ModifyRenamesAndShowsItEverywhere) {
  gStackView->OpenCardList();
  OpenForm().SetAndShowCard(iCards[0]);
  Find<QLineEdit>(u"fName"_s).setText(u"z"_s);
  WhenOpen([](QWidget& aDialog) {
    auto& dialog = dynamic_cast<QColorDialog&>(aDialog);
    dialog.setCurrentColor(Qt::red);
    dialog.accept();
  });
  Press(u"fSelectColorBut"_s);
  Press(u"fModifyBut"_s);
  Ref<CVelumCard> card;
  EXPECT_TRUE(gStack->GetCard(u"z"_s, card));
  EXPECT_EQ(iCards[0]->BackColor(), CVelumBaseColor::FromColor(Qt::red));
  EXPECT_EQ(ModeText(), u"z"_s);
  EXPECT_EQ(Column(u"fCardBox"_s, 0).first(), u"z"_s);
  EXPECT_EQ(gStackView->CardView()->ViewForm().windowTitle(), u"z - 1 of 3"_s);
  Press(u"fClearColorBut"_s);
  Press(u"fModifyBut"_s);
  EXPECT_EQ(iCards[0]->BackColor(), ENoInt);
}

TEST_F(CVelumCardEditTest, DeleteAsksNothingAndTellsTheOthers) {
  OpenForm().SetAndShowCard(iCards[0]);
  Press(u"fDeleteBut"_s);
  EXPECT_EQ(iPresenter.Count(), 0);
  EXPECT_EQ(Order(), (QStringList{u"b"_s, u"c"_s}));
  EXPECT_EQ(CardName(), u"b"_s);
  EXPECT_EQ(ModeText(), QString());
  EXPECT_EQ(Column(u"fCardBox"_s, 0), (QStringList{u"b"_s, u"c"_s}));
  EXPECT_FALSE(Enabled(u"fDeleteBut"_s));
}

TEST_F(CVelumCardEditTest, DeletingTheNamedCardMovesThePlaceToTheEnd) {
  OpenForm().NewCard(iSet);
  iForm->SetCard(0, iCards[1]);
  Find<QLineEdit>(u"fName"_s).setText(u"n"_s);
  EXPECT_TRUE(Checked(u"fBeforeSpec"_s));
  gStackView->GoToCard(iCards[2]);
  iPresenter.Answer(true);
  Choose(u"fDeleteCard"_s);
  EXPECT_TRUE(Checked(u"fBeforeSpec"_s));
  gStackView->GoToCard(iCards[1]);
  iPresenter.Answer(true);
  Choose(u"fDeleteCard"_s);
  EXPECT_EQ(Text(u"fCardName"_s), QString());
  EXPECT_TRUE(Checked(u"fAtEnd"_s));
  EXPECT_EQ(Text(u"fName"_s), u"n"_s);
  EXPECT_EQ(Column(u"fCardBox"_s, 0), QStringList{u"a"_s});
  Press(u"fCreateBut"_s);
  EXPECT_EQ(Order(), (QStringList{u"a"_s, u"n"_s}));
}

TEST_F(CVelumCardEditTest, DeletingTheCardOnShowLetsGoOfIt) {
  OpenForm().SetAndShowCard(iCards[0]);
  iPresenter.Answer(true);
  Choose(u"fDeleteCard"_s);
  EXPECT_EQ(ModeText(), QString());
  EXPECT_FALSE(Enabled(u"fModifyBut"_s));
}

TEST_F(CVelumCardEditTest, CardsThatWentWithoutAWordAreNotTouched) {
  OpenForm().SetAndShowCard(iCards[0]);
  gStackView->EmptyStack();
  Find<QLineEdit>(u"fName"_s).setText(u"z"_s);
  Press(u"fModifyBut"_s);
  Press(u"fDeleteBut"_s);
  EXPECT_EQ(gStack->NumCards(), 0);
  EXPECT_EQ(iPresenter.Count(), 0);
}

TEST_F(CVelumCardEditTest, FollowsChangesAndKeepsItsSelection) {
  OpenForm().SetAndShowCard(iCards[1]);
  AddCard(u"d"_s, iSet);
  iCards[1]->SetControlVal(iTitle->Id(), TVelumValue::OfStr(u"Tale"_s));
  for (const int kind : {1, 2, 3}) {
    CVelumSeams::ChangeNotify(kind);
    EXPECT_EQ(Selected(u"fBackgroundBox"_s), u"Main"_s);
    EXPECT_EQ(Selected(u"fCardBox"_s), u"b"_s);
    EXPECT_EQ(ModeText(), u"b"_s);
  }
  EXPECT_EQ(Column(u"fCardBox"_s, 0).last(), u"d"_s);
  EXPECT_EQ(Column(u"fControlBox"_s, 1).first(), u"Tale"_s);
  iSet->SetName(u"Renamed"_s);
  CVelumSeams::ChangeNotify(EChangeStructure);
  EXPECT_EQ(Selected(u"fBackgroundBox"_s), u"Renamed"_s);
}

TEST_F(CVelumCardEditTest, ChangesElsewhereKeepWhatIsBeingTyped) {
  OpenForm().SetAndShowCard(iCards[1]);
  Find<QLineEdit>(u"fName"_s).clear();
  QTest::keyClicks(&Find<QLineEdit>(u"fName"_s), u"half a na"_s);
  CVelumSeams::ChangeNotify(EChangeValues);
  EXPECT_EQ(Text(u"fName"_s), u"half a na"_s);
  iForm->NewCard(iSet);
  QTest::keyClicks(&Find<QLineEdit>(u"fName"_s), u"new"_s);
  Choose1(u"fBeforeCur"_s);
  CVelumSeams::ChangeNotify(EChangeCards);
  EXPECT_EQ(Text(u"fName"_s), u"new"_s);
  EXPECT_TRUE(Checked(u"fBeforeCur"_s));
  EXPECT_EQ(ModeText(), u"<new \"Main\">"_s);
}

TEST_F(CVelumCardEditTest, LetsGoOfABackgroundThatIsDeleted) {
  const Ref<CVelumControlSet> other = AddBackground(u"Other"_s);
  const Ref<CVelumCard> x = AddCard(u"x"_s, other);
  OpenForm().SetAndShowCard(x);
  CVelumSeams::ChangeNotify(EChangeBackgroundGoes, other.Get());
  gStackView->DeleteBackground(other, false);
  EXPECT_EQ(ModeText(), QString());
  CVelumSeams::ChangeNotify(EChangeStructure);
  EXPECT_EQ(Column(u"fBackgroundBox"_s, 0), QStringList{u"Main"_s});
}

TEST_F(CVelumCardEditTest, AnotherCaseOfAnAnswerAsserts) {
  OpenForm().NewCard(iSet);
  EXPECT_THROW(iForm->SetCard(1, iCards[0]), CVelumException);
  EXPECT_TRUE(iPresenter.LastText().contains(u"< SetCard aCase >"_s));
  EXPECT_THROW(iForm->SetFont(1, nullptr), CVelumException);
  EXPECT_TRUE(iPresenter.LastText().contains(u"< SetFont aCase >"_s));
  EXPECT_TRUE(Checked(u"fAtEnd"_s));
}

TEST_F(CVelumCardEditTest, CommandsOfTheMainWindowLeadHere) {
  Choose(u"fEditCard"_s);
  iForm = dynamic_cast<CVelumCardEdit*>(CVelumWinMan::NameToForm(u"CVelumCardEdit"_s));
  ASSERT_TRUE(iForm && iForm->isVisible());
  EXPECT_EQ(ModeText(), u"a"_s);
  Choose(u"fNewCard"_s);
  EXPECT_EQ(ModeText(), u"<new \"Main\">"_s);
}

TEST_F(CVelumCardEditTest, WindowsThatAreMissingAreExcused) {
  OpenForm().SetAndShowCard(iCards[0]);
  for (const QString& name : {u"fScriptBut"_s, u"fSelectFontBut"_s}) {
    Press(name);
    ASSERT_TRUE(CVelumNotBuilt::Instance() && CVelumNotBuilt::Instance()->isVisible());
    CVelumNotBuilt::Instance()->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
  EXPECT_EQ(iPresenter.Count(), 0);
}

// An editor of fields that notes what it is asked for.
class FakeControlEdit final : public CVelumDialogForm, public CVelumControlEditor {
public:
  FakeControlEdit() : CVelumDialogForm(u"CVelumControlEdit"_s, true) {}
  void SetAndShowBackground(const Ref<CVelumControlSet>&) override {}
  void SetAndShowControl(const Ref<CVelumControlSet>& aSet, const Ref<CVelumControl>& aControl) override {
    iAsked = aSet->Name() + u'.' + aControl->Name();
  }
  QString iAsked;
};

TEST_F(CVelumCardEditTest, DoubleClickOnAValueEditsItsField) {
  CVelumWinMan::SetFactory(u"CVelumControlEdit"_s, [] { return new FakeControlEdit; });
  OpenForm().SetAndShowCard(iCards[0]);
  Select(u"fControlBox"_s, 1);
  Q_EMIT Find<CVelumListWidget>(u"fControlBox"_s).ItemDblClick();
  const auto* editor = dynamic_cast<FakeControlEdit*>(CVelumWinMan::NameToForm(u"CVelumControlEdit"_s));
  ASSERT_TRUE(editor);
  EXPECT_TRUE(editor->isVisible());
  EXPECT_EQ(editor->iAsked, u"Main.Size"_s);
  CloseDialogs();
  CVelumWinMan::SetFactory(u"CVelumControlEdit"_s, {});
}

TEST_F(CVelumCardEditTest, TheChangedBoxOnlyTells) {
  OpenForm().SetAndShowCard(iCards[1]);
  auto& box = Find<QCheckBox>(u"fChanged"_s);
  box.setEnabled(true);
  box.click();
  EXPECT_TRUE(box.isChecked());
  iCards[1]->SetChanged(false);
  box.click();
  EXPECT_FALSE(box.isChecked());
}

TEST_F(CVelumCardEditTest, GoesWithTheStackAndKeepsItsPlace) {
  OpenForm().move(33, 44);
  CVelumSeams::ChangeNotify(EChangeStackCloses);
  EXPECT_FALSE(IsOpen());
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_EQ(OpenForm().pos(), QPoint(33, 44));
}

TEST_F(CVelumCardEditTest, OpensOnTheBackgroundOfTheCardOnShow) {
  const auto second = AddBackground(u"Second"_s);
  const auto x = AddCard(u"x"_s, second);
  gStackView->GoToCard(x);
  OpenForm();
  EXPECT_EQ(Column(u"fCardBox"_s, 0), QStringList{u"x"_s});
  EXPECT_EQ(ModeText(), QString()) << "no card is being edited";
}

TEST_F(CVelumCardEditTest, AButtonClosesIt) {
  OpenForm();
  Press(u"fCloseBut"_s);
  EXPECT_FALSE(IsOpen());
}
