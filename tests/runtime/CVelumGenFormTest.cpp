#include "core/CVelumMsg.h"
#include "runtime/RuntimeFixture.h"
#include "toolkit/CVelumBaseCheckBox.h"
#include "toolkit/CVelumListWidget.h"

#include <QAbstractScrollArea>
#include <QCloseEvent>
#include <QComboBox>
#include <QTest>

namespace {

class CVelumGenFormTest : public RuntimeTest {};

TEST_F(CVelumGenFormTest, ThePoolHasItsNumbersAndNames) {
  AddCard(u"a"_s);
  Open();
  const std::map<QString, int> sizes{
      {u"fGenTextBox"_s, 20},  {u"fGenRichTextBox"_s, 10}, {u"fGenComboBox"_s, 10},
      {u"fGenCheckBox"_s, 10}, {u"fGenButton"_s, 10},      {u"fGenListView"_s, 10},
      {u"fGenLabel"_s, 30},    {u"fGenPictureBox"_s, 10},  {u"fGenLine"_s, 1}};
  for (const auto& [prefix, size] : sizes) {
    EXPECT_NE(Form().FindControl(prefix + QString::number(size - 1)), nullptr) << prefix.toStdString();
    EXPECT_EQ(Form().FindControl(prefix + QString::number(size)), nullptr) << prefix.toStdString();
  }
  for (const auto& name : {u"fProgressBox"_s, u"fProgress"_s, u"fWallPaperBox"_s, u"fTempPicBox"_s})
    EXPECT_NE(Form().FindControl(name), nullptr) << name.toStdString();
  EXPECT_EQ(Form().FindControl(u"fgentextbox0"_s), nullptr) << "names are exact";
}

TEST_F(CVelumGenFormTest, ALightCardStaysLightWhenTheDesktopTurnsDark) {
  iSet->SetBackColor(0xF0F0E0);
  AddCard(u"a"_s);
  Open();
  const QPalette before = QApplication::palette();
  QApplication::setPalette(QPalette(QColor(56, 56, 60), QColor(45, 45, 48)));
  EXPECT_GT(Form().palette().color(QPalette::Button).lightness(), 200);
  EXPECT_GT(Pool(u"fGenTextBox0"_s).Widget()->palette().color(QPalette::Base).lightness(), 200);
  EXPECT_EQ(Form().palette().color(QPalette::Window), QColor(0xE0, 0xF0, 0xF0));
  QApplication::setPalette(before);
}

TEST_F(CVelumGenFormTest, ADoubleClickOnTheFormSaysSo) {
  const auto field = AddField(iSet, u"A"_s, EConText);
  AddCard(u"a"_s);
  Open();
  QTest::mouseDClick(&Form(), Qt::LeftButton, {}, QPoint(390, 490));
  EXPECT_EQ(iPresenter.Told(), QList<QString>{u"DblClick"_s});
  QTest::mouseDClick(Label(field).Widget(), Qt::LeftButton);
  EXPECT_EQ(iPresenter.Told().size(), 1) << "labels are passive";
}

TEST_F(CVelumGenFormTest, TheRightButtonOpensTheCommandsMenu) {
  AddField(iSet, u"Go"_s, EConCommand, EConInMenu);
  AddCard(u"a"_s);
  Open();
  QTest::mouseClick(&Form(), Qt::LeftButton, {}, QPoint(390, 490));
  EXPECT_FALSE(iFrame.iMenu.isVisible());
  QTest::mouseClick(&Form(), Qt::RightButton, {}, QPoint(390, 490));
  EXPECT_TRUE(iFrame.iMenu.isVisible());
  iFrame.iMenu.close();
}

TEST_F(CVelumGenFormTest, AClickOnTheProgressBreaksEvenWhenNoScriptRuns) {
  iSet->SetFlags(ECseDenseLayout | ECseShowCardName);
  AddCard(u"a"_s);
  Open();
  QTest::mouseClick(Pool(u"fProgressBox"_s).Widget(), Qt::LeftButton);
  EXPECT_EQ(iRunner.iBreaks, 1);
  Pool(u"fProgress"_s).SetSize(600, 180);
  QTest::mouseClick(Pool(u"fProgress"_s).Widget(), Qt::LeftButton);
  EXPECT_EQ(iRunner.iBreaks, 2);
}

TEST_F(CVelumGenFormTest, ClosingTheWindowClosesTheStackAndIsCancelledWhenItStaysOpen) {
  AddCard(u"a"_s);
  Open();
  iFrame.iCloses = false;
  QCloseEvent stays;
  QCoreApplication::sendEvent(&Form(), &stays);
  EXPECT_FALSE(stays.isAccepted());
  iFrame.iCloses = true;
  QCloseEvent goes;
  QCoreApplication::sendEvent(&Form(), &goes);
  EXPECT_TRUE(goes.isAccepted());
  EXPECT_EQ(iFrame.iCalls.count(u"CloseStack"_s), 2);
}

TEST_F(CVelumGenFormTest, AValueThatCannotBeTakenKeepsTheFocus) {
  const auto field = AddField(iSet, u"A"_s, EConText);
  const auto other = AddField(iSet, u"B"_s, EConText);
  AddCard(u"a"_s);
  Open();
  Type(field, u"x"_s);
  iSet->DeleteControl(field->Id()); // storing into it will fail
  Base(other).SetFocus();
  QCoreApplication::processEvents();
  EXPECT_GE(iPresenter.Count(), 1);
  EXPECT_EQ(Base(field).Text(), u"x"_s);
  EXPECT_TRUE(Base(field).HasFocus());
}

TEST_F(CVelumGenFormTest, EventsWithoutAnOpenStackGoNowhere) {
  CVelumGenForm form;
  auto* box = static_cast<CVelumBaseCheckBox*>(form.FindControl(u"fGenCheckBox0"_s));
  box->SetValue(1);
  form.FindControl(u"fGenTextBox0"_s)->SetText(u"x"_s);
  form.resize(10, 10);
  form.grab();
  EXPECT_EQ(iPresenter.Count(), 0);
}

// --- Values between card and controls

TEST_F(CVelumGenFormTest, ShowsAndTakesAValueOfEachType) {
  const auto text = AddField(iSet, u"Text"_s, EConText);
  const auto num = AddField(iSet, u"Num"_s, EConInteger);
  const auto real = AddField(iSet, u"Real"_s, EConReal);
  const auto date = AddField(iSet, u"Date"_s, EConDate);
  const auto time = AddField(iSet, u"Time"_s, EConTime);
  const auto done = AddField(iSet, u"Done"_s, EConBoolean);
  const auto card = AddCard(u"a"_s);
  card->SetControlVal(text->Id(), TVelumValue::OfStr(u"Ada"_s));
  card->SetControlVal(num->Id(), TVelumValue::OfInt(-7));
  card->SetControlVal(real->Id(), TVelumValue::OfReal(2.5));
  card->SetControlVal(date->Id(), TVelumValue::OfDate(29221.0));
  card->SetControlVal(time->Id(), TVelumValue::OfTime(0.5));
  card->SetControlVal(done->Id(), TVelumValue::OfBoolean(true));
  Open();
  EXPECT_EQ(Base(text).Text(), u"Ada"_s);
  EXPECT_EQ(Base(num).Text(), u"-7"_s);
  EXPECT_EQ(Base(real).Text(), u"2.5"_s);
  EXPECT_EQ(Base(date).Text(), u"1/1/1980"_s);
  EXPECT_EQ(Base(time).Text(), u"12:00:00 PM"_s);
  EXPECT_EQ(static_cast<CVelumBaseCheckBox&>(Base(done)).Value(), 1);
  for (const auto& field : {text, num, real, date, time, done})
    EXPECT_EQ(View().CardView()->GetBaseControlVal(*field).Type(),
              card->GetControlVal(field->Id(), false).Type());
  EXPECT_EQ(View().CardView()->GetBaseControlVal(*num).Int(), -7);
  EXPECT_TRUE(View().CardView()->GetBaseControlVal(*done).Boolean());
}

TEST_F(CVelumGenFormTest, UndefinedValuesShowAsNothing) {
  const auto num = AddField(iSet, u"Num"_s, EConInteger);
  const auto date = AddField(iSet, u"Date"_s, EConDate);
  const auto done = AddField(iSet, u"Done"_s, EConBoolean);
  const auto five = AddField(iSet, u"Five"_s, EConInteger);
  five->SetDefaultVal(u"5"_s);
  AddCard(u"a"_s);
  Open();
  EXPECT_EQ(Base(num).Text(), QString());
  EXPECT_EQ(Base(date).Text(), QString());
  EXPECT_EQ(static_cast<CVelumBaseCheckBox&>(Base(done)).Value(), 0);
  EXPECT_EQ(Base(five).Text(), u"5"_s);
}

TEST_F(CVelumGenFormTest, AFieldOutsideTheViewGivesTheEmptyTextAndNotTheEmptyRecord) {
  const auto hidden = AddField(iSet, u"Num"_s, EConInteger);
  hidden->SetFlag(EConInCardView, false);
  const auto card = AddCard(u"a"_s);
  Open();
  EXPECT_EQ(View().CardView()->GetBaseControlVal(*hidden).Type(), EValStr);
  EXPECT_THROW(View().CardView()->SetBaseControlVal(*hidden, TVelumValue::OfInt(1), *card), CVelumException);
  EXPECT_TRUE(iPresenter.LastText().contains(u"SetBaseControlVal baseControl"_s));
  iPresenter.SetDefaultAnswer(true);
  View().CardView()->SetBaseControlVal(*hidden, TVelumValue::OfInt(1), *card);
}

TEST_F(CVelumGenFormTest, ValuesThatAControlCannotShowAssert) {
  const auto text = AddField(iSet, u"Text"_s, EConText);
  text->SetVisLines(2);
  const auto done = AddField(iSet, u"Done"_s, EConBoolean);
  const auto list = AddField(iSet, u"List"_s, EConList);
  const auto picture = AddField(iSet, u"Pict"_s, EConPicture);
  const auto card = AddCard(u"a"_s);
  Open();
  const auto fails = [&](const Ref<CVelumControl>& aControl, const QString& aText) {
    EXPECT_THROW(View().CardView()->SetBaseControlVal(*aControl, TVelumValue::OfReal(1), *card),
                 CVelumException);
    EXPECT_TRUE(iPresenter.LastText().contains(aText)) << iPresenter.LastText().toStdString();
  };
  fails(text, u"aVal.iType"_s);
  fails(done, u"aVal.iType"_s);
  fails(list, u"aVal.iType"_s);
  fails(picture, u"EValBlobId"_s);
  EXPECT_FALSE(Form().iShowing) << "the mark falls also when showing fails";
}

TEST_F(CVelumGenFormTest, AGreyCheckBoxAsserts) {
  const auto done = AddField(iSet, u"Done"_s, EConBoolean);
  AddCard(u"a"_s);
  Open();
  Form().iShowing = true;
  static_cast<CVelumBaseCheckBox&>(Base(done)).SetValue(2);
  Form().iShowing = false;
  EXPECT_THROW(static_cast<void>(View().CardView()->GetBaseControlVal(*done)), CVelumException);
  EXPECT_TRUE(iPresenter.LastText().contains(u"GetBaseControlVal 01"_s));
}

TEST_F(CVelumGenFormTest, PicturesAndButtonsAreNeverReadBack) {
  const auto picture = AddField(iSet, u"Pict"_s, EConPicture);
  const auto button = AddField(iSet, u"Go"_s, EConCommand, EConAsButton);
  AddCard(u"a"_s);
  Open();
  EXPECT_EQ(View().CardView()->GetBaseControlVal(*picture).Type(), EValUndef);
  EXPECT_EQ(View().CardView()->GetBaseControlVal(*button).Type(), EValUndef);
}

TEST_F(CVelumGenFormTest, AnUnknownKindOfControlAsserts) {
  const auto text = AddField(iSet, u"Text"_s, EConText);
  const auto card = AddCard(u"a"_s);
  Open();
  text->SetBaseControl(text->BaseControl(), 9);
  EXPECT_THROW(View().CardView()->SetBaseControlVal(*text, {}, *card), CVelumException);
  EXPECT_TRUE(iPresenter.LastText().contains(u"SetBaseControlVal iBaseType"_s));
  EXPECT_THROW(static_cast<void>(View().CardView()->GetBaseControlVal(*text)), CVelumException);
  EXPECT_TRUE(iPresenter.LastText().contains(u"GetBaseControlVal iBaseType"_s));
  text->SetBaseControl(text->BaseControl(), EBaseTextBox);
}

TEST_F(CVelumGenFormTest, EachFieldThatCanBeTypedInTellsThatItHasTheFocus) {
  const auto line = AddField(iSet, u"Line"_s, EConText);
  const auto rich = AddField(iSet, u"Rich"_s, EConText);
  rich->SetVisLines(2);
  const auto done = AddField(iSet, u"Done"_s, EConBoolean);
  const auto combo = AddField(iSet, u"Town"_s, EConText, EConComboText);
  const auto list = AddField(iSet, u"Towns"_s, EConList, EConComboList);
  combo->SetPartnerId(list->Id());
  list->SetPartnerId(combo->Id());
  AddCard(u"a"_s);
  Open();
  for (const auto& field : {rich, done, combo, line}) {
    Base(field).SetFocus();
    EXPECT_EQ(View().CurObj(), &Base(field)) << field->Name().toStdString();
    EXPECT_EQ(View().CardView()->FocusControl(), field.Get());
  }
}

TEST_F(CVelumGenFormTest, AChoiceFromAComboIsAChange) {
  const auto combo = AddField(iSet, u"Town"_s, EConText, EConComboText);
  const auto list = AddField(iSet, u"Towns"_s, EConList, EConComboList);
  combo->SetPartnerId(list->Id());
  list->SetPartnerId(combo->Id());
  AddCard(u"a"_s);
  Open();
  EXPECT_FALSE(View().CurObjChanged());
  bool cancel = false;
  Form().BaseEvent(Base(combo), EBaseClick, cancel);
  EXPECT_TRUE(View().CurObjChanged());
}

TEST_F(CVelumGenFormTest, ADoubleClickOnALongTextOpensItsEditor) {
  const auto text = AddField(iSet, u"Text"_s, EConText, EConWikiText);
  AddCard(u"a"_s);
  Open();
  auto* box = qobject_cast<QAbstractScrollArea*>(Base(text).Widget());
  QTest::mouseDClick(box->viewport(), Qt::LeftButton);
  EXPECT_TRUE(iFrame.iCalls.contains(u"ShowForm CVelumWikiTextEdit"_s));
}

TEST_F(CVelumGenFormTest, NoFieldTakesMoreThanItsMostCharacters) {
  const auto line = AddField(iSet, u"Line"_s, EConText);
  const auto rich = AddField(iSet, u"Rich"_s, EConText);
  rich->SetVisLines(2);
  const auto combo = AddField(iSet, u"Town"_s, EConText, EConComboText);
  const auto list = AddField(iSet, u"Towns"_s, EConList, EConComboList);
  combo->SetPartnerId(list->Id());
  list->SetPartnerId(combo->Id());
  for (const auto& field : {line, rich, combo}) field->SetMaxChar(3);
  const auto card = AddCard(u"a"_s);
  Open();
  for (const auto& field : {line, rich, combo}) {
    Type(field, u"abcde"_s);
    View().ValidateCurControl();
    EXPECT_EQ(TextOf(card, field), u"abc"_s) << field->Name().toStdString();
  }
}

TEST_F(CVelumGenFormTest, ALongTextIsShownFromItsBeginning) {
  const auto text = AddField(iSet, u"Text"_s, EConText);
  text->SetVisLines(2);
  const auto wiki = AddField(iSet, u"Wiki"_s, EConText, EConWikiText);
  AddCard(u"a"_s);
  const auto card = AddCard(u"b"_s);
  for (const auto& field : {text, wiki})
    card->SetControlVal(field->Id(), TVelumValue::OfStr(u"many words "_s.repeated(100)));
  Open();
  View().GoToCard(card);
  EXPECT_EQ(Base(text).Cursor(), 0);
  EXPECT_EQ(Base(wiki).Cursor(), 0);
  Base(text).SetCursor(50);
  View().SetCardValue(card, text->Id(), TVelumValue::OfStr(u"other words "_s.repeated(100)));
  EXPECT_EQ(Base(text).Cursor(), 0);
}

TEST_F(CVelumGenFormTest, TheFieldOfTheNameStandsInTheHeaderEvenWithoutAValue) {
  iSet->SetFlags(ECseDenseLayout | ECseShowCardName);
  AddField(iSet, u"Name"_s, EConText, EConCardName);
  AddCard(u"a"_s);
  Open();
  EXPECT_EQ(Pool(u"fGenLabel0"_s).Text(), QString());
  EXPECT_EQ(Form().Caption(), u"a - 1 of 1"_s);
}

// --- Lists and combo boxes

class CardListsTest : public CVelumGenFormTest {
protected:
  // A combo box "Town" whose choices are the default of "Towns".
  void AddCombo(const QString& aChoices, qint32 aType = EConText) {
    iText = AddField(iSet, u"Town"_s, aType, EConComboText);
    iList = AddField(iSet, u"Towns"_s, EConList, EConComboList);
    iText->SetPartnerId(iList->Id());
    iList->SetPartnerId(iText->Id());
    iList->SetDefaultVal(aChoices);
  }
  QComboBox& Combo() { return *qobject_cast<QComboBox*>(Base(iText).Widget()); }
  CVelumListWidget& ListOf(const Ref<CVelumControl>& aControl) {
    return *qobject_cast<CVelumListWidget*>(Base(aControl).Widget());
  }
  CVelumBaseControl& LinesBox() { return Form().LinesBox(); }
  QStringList Shown(const Ref<CVelumControl>& aControl) {
    QStringList lines;
    for (int i = 0; i < ListOf(aControl).model()->rowCount(); ++i)
      lines.append(ListOf(aControl).CellText(i, 0));
    return lines;
  }

  Ref<CVelumControl> iText;
  Ref<CVelumControl> iList;
};

TEST_F(CardListsTest, AComboIsAPairOfFields) {
  AddCombo(u"Bern\r\nBonn\r\nUlm"_s);
  const auto card = AddCard(u"a"_s);
  const auto other = AddCard(u"b"_s);
  card->SetControlVal(iText->Id(), TVelumValue::OfStr(u"Bonn"_s));
  other->SetControlVal(iText->Id(), TVelumValue::OfStr(u"Zug"_s));
  Open();
  EXPECT_TRUE(Base(iText).Enabled());
  EXPECT_EQ(Combo().count(), 3);
  EXPECT_EQ(Combo().currentText(), u"Bonn"_s);
  EXPECT_EQ(Combo().completer(), nullptr);
  EXPECT_EQ(View().CardView()->GetBaseControlVal(*iText).Str(), u"Bonn"_s);
  EXPECT_EQ(View().CardView()->GetBaseControlVal(*iList).Str(), u"Bern\r\nBonn\r\nUlm"_s);
  View().GoToCard(other);
  EXPECT_EQ(Combo().currentText(), u"Zug"_s) << "a text that is no choice";
  EXPECT_EQ(Combo().count(), 3);
  other->SetControlVal(iText->Id(), TVelumValue::OfStr({}));
  View().GoToCard(card);
  View().GoToCard(other);
  EXPECT_EQ(Combo().currentText(), QString());
  EXPECT_EQ(Combo().currentIndex(), -1);
}

TEST_F(CardListsTest, AChoiceIsAChangeAndStored) {
  AddCombo(u"Bern\r\nBonn"_s);
  const auto next = AddField(iSet, u"Next"_s, EConText);
  const auto card = AddCard(u"a"_s);
  Open();
  iRunner.iSent.clear();
  Base(iText).SetFocus();
  QTest::keyClick(&Combo(), Qt::Key_Down);
  EXPECT_TRUE(View().CurObjChanged());
  Base(next).SetFocus();
  EXPECT_EQ(TextOf(card, iText), u"Bern"_s);
  EXPECT_EQ(iRunner.iSent.first(), u"closeField a.Town"_s);
  Type(iText, u"e"_s);
  Base(next).SetFocus();
  EXPECT_EQ(TextOf(card, iText), u"Berne"_s);
  EXPECT_EQ(Combo().count(), 2) << "typing adds nothing to the list";
}

TEST_F(CardListsTest, WhileTheListIsEmptyATextWaitsForIt) {
  AddCombo({});
  const auto card = AddCard(u"a"_s);
  Open();
  View().CardView()->SetBaseControlVal(*iText, TVelumValue::OfStr(u"Bonn"_s), *card);
  EXPECT_EQ(Combo().currentText(), QString());
  card->SetControlVal(iText->Id(), TVelumValue::OfStr(u"Bonn"_s));
  View().CardView()->SetBaseControlVal(*iList, {}, *card);
  EXPECT_EQ(Combo().currentText(), u"Bonn"_s);
}

TEST_F(CardListsTest, AComboOfNumbersStoresNumbers) {
  AddCombo(u"1\r\n22"_s, EConInteger);
  const auto card = AddCard(u"a"_s);
  card->SetControlVal(iText->Id(), TVelumValue::OfInt(22));
  Open();
  EXPECT_EQ(Combo().currentText(), u"22"_s);
  Type(iText, u"3"_s);
  View().ValidateCurControl();
  EXPECT_EQ(card->GetControlVal(iText->Id(), false).Int(), 223);
}

TEST_F(CardListsTest, AComboWithoutAPartnerAsserts) {
  AddCombo(u"a"_s);
  const auto card = AddCard(u"a"_s);
  Open();
  iText->SetPartnerId(ENoInt);
  EXPECT_THROW(View().CardView()->SetBaseControlVal(*iText, TVelumValue::OfStr(u"x"_s), *card),
               CVelumException);
  EXPECT_TRUE(iPresenter.LastText().contains(u"SetBaseControlVal partner"_s));
  iPresenter.SetDefaultAnswer(true);
  View().CardView()->SetBaseControlVal(*iText, TVelumValue::OfStr(u"x"_s), *card);
  EXPECT_EQ(Combo().currentText(), u"x"_s);
}

TEST_F(CardListsTest, AListWhoseTextHasNoPlaceIsAskedAboutOnce) {
  AddCombo(u"a"_s);
  iText->SetFlag(EConInCardView, false);
  const auto name = AddField(iSet, u"Name"_s, EConText);
  for (const auto& text : {u"a"_s, u"b"_s, u"c"_s})
    AddCard(text)->SetControlVal(name->Id(), TVelumValue::OfStr(text));
  iPresenter.SetDefaultAnswer(true);
  Open();
  EXPECT_EQ(iPresenter.Count(), 1);
  EXPECT_TRUE(iPresenter.LastText().contains(u"SetBaseControlVal baseControl"_s));
  Ref<CVelumCard> card;
  while (View().OrderNext(card)) EXPECT_EQ(Base(name).Text(), card->Name());
  View().RefreshViews(true, false);
  EXPECT_EQ(iPresenter.Count(), 1) << "the same background";
  const auto other = AddCard(u"x"_s, AddBackground(u"Other"_s));
  View().GoToCard(other);
  EXPECT_TRUE(View().OrderFirst(card));
  EXPECT_EQ(iPresenter.Count(), 2) << "a new layout of it";
}

TEST_F(CardListsTest, ALongNumberIsAskedAboutOnceAndThenShown) {
  const auto num = AddField(iSet, u"Num"_s, EConInteger);
  num->SetVisLines(2);
  for (const int value : {1, 2, 3}) AddCard(u"a"_s)->SetControlVal(num->Id(), TVelumValue::OfInt(value));
  Open(); // answered with no
  EXPECT_EQ(iPresenter.CountOf(EMsgAssertFailedOk), 1);
  Ref<CVelumCard> card;
  for (const auto& text : {u"2"_s, u"3"_s}) {
    EXPECT_TRUE(View().OrderNext(card));
    EXPECT_EQ(Base(num).Text(), text);
  }
  EXPECT_EQ(iPresenter.CountOf(EMsgAssertFailedOk), 1);
}

// A list box that only counts how often it is to bring its lines to the screen.
class NotingBox final : public CVelumListBoxBase {
public:
  explicit NotingBox(int& aShows) : iShows(aShows) {}
  [[nodiscard]] QString ObjDescr() const override { return u"NotingBox"_s; }
  [[nodiscard]] int LisType() const override { return ELisCombo; }
  void SetFlag4(bool) override {}
  void Clear() override {}
  void AddLine(const QString&, const Ref<CVelumObject>&) override {}
  [[nodiscard]] int NumLines() const override { return 0; }
  [[nodiscard]] QString Line(int) const override { return {}; }
  void DefineColumns(const QList<QString>&, const QList<float>&) override {}
  void Define1Column(const QString&) override {}
  void Show() override { ++iShows; }
  void SetBaseObj(QObject*) override {}

private:
  int& iShows;
};

TEST_F(CardListsTest, ALayoutBringsTheLinesOfAComboToItsBox) {
  class NotingFactory final : public CVelumCompanionFactory {
  public:
    Ref<CVelumListBoxBase> NewListBox(int) override { return MakeRef<NotingBox>(iShows); }
    int iShows = 0;
  } factory;
  CVelumCompanions::SetFactory(&factory);
  AddCombo(u"a\r\nb"_s);
  const auto card = AddCard(u"a"_s);
  Open();
  View().CardView()->ResetCurSet();
  factory.iShows = 0;
  View().CardView()->AssignControlSet(card, iSet);
  EXPECT_EQ(factory.iShows, 1);
  CVelumLib::InitRuntime();
}

TEST_F(CardListsTest, AComboNeverShowsCards) {
  const auto town = AddCard(u"Bern"_s);
  AddCombo(QString::number(town->Id()) + u"\tshown"_s);
  iList->SetFlag(EConCardList, true);
  iList->SetSelBackgroundId(iSet->Id());
  AddCard(u"a"_s);
  Open();
  View().CardView()->SetBaseControlVal(*iList, TVelumValue::OfStr(u"Ulm\r\nZug"_s), *town);
  ASSERT_EQ(Combo().count(), 2);
  EXPECT_EQ(Combo().itemText(0), u"Ulm"_s);
  EXPECT_EQ(Combo().itemText(1), u"Zug"_s);
}

TEST_F(CardListsTest, ATextOfAComboThatIsNoTextAsserts) {
  AddCombo(u"1\r\n2"_s, EConInteger);
  const auto card = AddCard(u"a"_s);
  card->SetControlVal(iText->Id(), TVelumValue::OfInt(5));
  Open();
  iText->SetConType(EConText);
  EXPECT_THROW(View().CardView()->SetBaseControlVal(*iList, TVelumValue::OfStr(u"1"_s), *card),
               CVelumException);
  EXPECT_TRUE(iPresenter.LastText().contains(u"Partner str"_s)) << iPresenter.LastText().toStdString();
}

TEST_F(CardListsTest, AListShowsItsLinesAndAClickOnThemGoesNowhere) {
  const auto list = AddField(iSet, u"List"_s, EConList);
  const auto card = AddCard(u"a"_s);
  AddCard(u"b"_s);
  card->SetControlVal(list->Id(), TVelumValue::OfStr(u"1\r\n2\r\n3"_s));
  Open();
  EXPECT_TRUE(Base(list).Enabled());
  EXPECT_EQ(Shown(list), (QStringList{u"1"_s, u"2"_s, u"3"_s}));
  EXPECT_EQ(View().CardView()->GetBaseControlVal(*list).Str(), u"1\r\n2\r\n3"_s);
  const QRect line = ListOf(list).visualRect(ListOf(list).model()->index(1, 0));
  QTest::mouseClick(ListOf(list).viewport(), Qt::LeftButton, {}, line.center());
  EXPECT_EQ(View().CurCard(), card);
  Ref<CVelumCard> next;
  EXPECT_TRUE(View().OrderNext(next));
  EXPECT_TRUE(Shown(list).isEmpty());
}

TEST_F(CardListsTest, ACardListShowsOtherCardsAndGoesToThem) {
  const auto other = AddBackground(u"Other"_s);
  const auto town = AddField(other, u"Town"_s, EConText);
  const auto x = AddCard(u"x"_s, other);
  AddCard(u"y"_s, other);
  x->SetControlVal(town->Id(), TVelumValue::OfStr(u"Ulm"_s));
  const auto list = AddField(iSet, u"List"_s, EConList, EConCardList);
  list->SetSelBackgroundId(other->Id());
  const auto cols = MakeRef<CVelumArray>(0, EValInt);
  TVelumElem elem;
  elem.iVal = TVelumValue::OfInt(town->Id());
  cols->CreateAtEnd(elem);
  list->SetListCol(cols);
  gStack->SetControlDynFlags();
  const auto a = AddCard(u"a"_s);
  gStack->SetCardListsDirty(nullptr);
  Open();
  View().GoToCard(a);
  ASSERT_EQ(View().CurCard(), a);
  EXPECT_EQ(Shown(list), (QStringList{u"Ulm"_s, QString()}));
  EXPECT_EQ(ListOf(list).model()->headerData(0, Qt::Horizontal).toString(), u"Town"_s);
  const QRect line = ListOf(list).visualRect(ListOf(list).model()->index(1, 0));
  QTest::mouseClick(ListOf(list).viewport(), Qt::LeftButton, {}, line.center());
  EXPECT_EQ(View().CurCard()->Name(), u"y"_s);
}

TEST_F(CardListsTest, ADoubleClickOnACardDoesNotReachTheNextCard) {
  const auto other = AddBackground(u"Other"_s);
  const auto list = AddField(iSet, u"List"_s, EConList, EConCardList);
  list->SetSelBackgroundId(other->Id());
  gStack->SetControlDynFlags();
  // Where the list was, the other background has a button.
  const auto button = AddField(other, u"Go"_s, EConCommand, EConAsButton);
  button->SetVisChar(50);
  const auto a = AddCard(u"a"_s);
  AddCard(u"x"_s, other);
  gStack->SetCardListsDirty(nullptr);
  Open();
  const QRect line = ListOf(list).visualRect(ListOf(list).model()->index(0, 0));
  const QPoint place = ListOf(list).viewport()->mapTo(&Form(), line.center());
  QTest::mouseClick(ListOf(list).viewport(), Qt::LeftButton, {}, line.center());
  ASSERT_EQ(View().CurCard()->Name(), u"x"_s);
  QWidget* widget = Base(button).Widget();
  Base(button).SetTop(CVelumTwips::FromPixel(place.y()) - 100);
  const QPoint inside = widget->mapFrom(&Form(), place);
  ASSERT_TRUE(widget->rect().contains(inside));
  iRunner.iSent.clear();
  const auto send = [&](QEvent::Type aType) {
    QMouseEvent event(aType, inside, widget->mapToGlobal(inside), Qt::LeftButton,
                      aType == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton, {});
    QApplication::sendEvent(widget, &event);
  };
  send(QEvent::MouseButtonDblClick);
  send(QEvent::MouseButtonRelease);
  EXPECT_TRUE(iRunner.iSent.isEmpty()) << iRunner.iSent.join(u' ').toStdString();
  // The next click is one, and so is a double click after it.
  QTest::mouseClick(widget, Qt::LeftButton, {}, inside);
  EXPECT_EQ(iRunner.iSent.count(u"select x.Go"_s), 1);
  send(QEvent::MouseButtonDblClick);
  send(QEvent::MouseButtonRelease);
  EXPECT_EQ(iRunner.iSent.count(u"select x.Go"_s), 2);
}

TEST_F(CardListsTest, F2OpensTheLinesOfAListInATextBox) {
  const auto list = AddField(iSet, u"List"_s, EConList);
  const auto next = AddField(iSet, u"Next"_s, EConText);
  const auto card = AddCard(u"a"_s);
  card->SetControlVal(list->Id(), TVelumValue::OfStr(u"1\r\n2"_s));
  Open();
  iRunner.iSent.clear();
  EXPECT_FALSE(LinesBox().Visible());
  Base(list).SetFocus();
  QTest::keyClick(Base(list).Widget(), Qt::Key_F2);
  ASSERT_TRUE(LinesBox().Visible());
  EXPECT_TRUE(LinesBox().HasFocus());
  EXPECT_EQ(LinesBox().Text(), u"1\r\n2"_s);
  LinesBox().SetCursor(100);
  QTest::keyClick(LinesBox().Widget(), Qt::Key_Return);
  QTest::keyClicks(LinesBox().Widget(), u"3"_s);
  Base(next).SetFocus();
  EXPECT_FALSE(LinesBox().Visible());
  EXPECT_EQ(TextOf(card, list), u"1\r\n2\r\n3"_s);
  EXPECT_EQ(Shown(list), (QStringList{u"1"_s, u"2"_s, u"3"_s}));
  EXPECT_TRUE(iRunner.iSent.contains(u"closeField a.List"_s));
}

TEST_F(CardListsTest, ADoubleClickOpensTheLinesAndEscapeLeavesThem) {
  const auto list = AddField(iSet, u"List"_s, EConList);
  const auto card = AddCard(u"a"_s);
  card->SetControlVal(list->Id(), TVelumValue::OfStr(u"1"_s));
  Open();
  QTest::mouseDClick(ListOf(list).viewport(), Qt::LeftButton);
  ASSERT_TRUE(LinesBox().Visible());
  QTest::keyClicks(LinesBox().Widget(), u"x"_s);
  QTest::keyClick(LinesBox().Widget(), Qt::Key_Escape);
  EXPECT_FALSE(LinesBox().Visible());
  EXPECT_EQ(TextOf(card, list), u"1"_s);
}

TEST_F(CardListsTest, LinesAreNotLostWhenTheCardIsLeftOrTheStackSaved) {
  const auto list = AddField(iSet, u"List"_s, EConList);
  const auto card = AddCard(u"a"_s);
  AddCard(u"b"_s);
  Open();
  const auto type = [&](const QString& aText) {
    QTest::mouseDClick(ListOf(list).viewport(), Qt::LeftButton);
    QTest::keyClicks(LinesBox().Widget(), aText);
  };
  type(u"1"_s);
  Ref<CVelumCard> next;
  EXPECT_TRUE(View().OrderNext(next));
  EXPECT_EQ(TextOf(card, list), u"1"_s);
  EXPECT_EQ(TextOf(next, list), QString()) << "no line lands on another card";
  EXPECT_TRUE(View().OrderPrev(next));
  type(u"2"_s);
  View().ValidateCurControl();
  EXPECT_EQ(TextOf(card, list), u"21"_s);
  type(u"3"_s);
  Form().resize(300, 300);
  EXPECT_EQ(TextOf(card, list), u"321"_s);
  type(u"4"_s);
  View().CloseCardView(true);
  EXPECT_EQ(TextOf(card, list), u"4321"_s);
}

TEST_F(CardListsTest, TheLinesOfAComboAreEditedToo) {
  AddCombo(u"Bern"_s);
  const auto card = AddCard(u"a"_s);
  card->SetControlVal(iText->Id(), TVelumValue::OfStr(u"Zug"_s));
  Open();
  Base(iText).SetFocus();
  QTest::keyClick(&Combo(), Qt::Key_F2);
  ASSERT_TRUE(LinesBox().Visible());
  EXPECT_EQ(LinesBox().Text(), u"Bern"_s);
  LinesBox().SetCursor(100);
  QTest::keyClick(LinesBox().Widget(), Qt::Key_Return);
  QTest::keyClicks(LinesBox().Widget(), u"Bonn"_s);
  QTest::keyClick(LinesBox().Widget(), Qt::Key_Return, Qt::ControlModifier);
  EXPECT_FALSE(LinesBox().Visible());
  EXPECT_EQ(TextOf(card, iList), u"Bern\r\nBonn"_s);
  EXPECT_EQ(Combo().count(), 2);
  EXPECT_EQ(Combo().currentText(), u"Zug"_s);
}

TEST_F(CardListsTest, LinesOfReadOnlyAndOfComputedListsAreNotEdited) {
  const auto list = AddField(iSet, u"List"_s, EConList, EConReadOnly);
  const auto cards = AddField(iSet, u"Cards"_s, EConList, EConCardList);
  cards->SetSelBackgroundId(iSet->Id());
  AddCard(u"a"_s);
  Open();
  QTest::mouseDClick(ListOf(list).viewport(), Qt::LeftButton);
  EXPECT_EQ(iPresenter.Told(), QList<QString>{u"Read-only!"_s});
  EXPECT_FALSE(LinesBox().Visible());
  View().EditLines(&Base(cards));
  EXPECT_FALSE(LinesBox().Visible());
  EXPECT_EQ(iPresenter.Told().size(), 1);
}

TEST_F(CardListsTest, EmptyingTheStackDropsLinesThatAreBeingEdited) {
  const auto list = AddField(iSet, u"List"_s, EConList);
  AddCard(u"a"_s);
  Open();
  QTest::mouseDClick(ListOf(list).viewport(), Qt::LeftButton);
  QTest::keyClicks(LinesBox().Widget(), u"x"_s);
  View().EmptyStack();
  EXPECT_FALSE(LinesBox().Visible());
  View().AddCard(iSet, u"b"_s);
  Ref<CVelumCard> card;
  EXPECT_TRUE(View().OrderFirst(card));
  View().ValidateCurControl();
  EXPECT_EQ(TextOf(card, list), QString());
}

TEST_F(CardListsTest, ANewLayoutBindsNothingOfTheOld) {
  AddCombo(u"Bern"_s);
  const auto list = AddField(iSet, u"List"_s, EConList);
  const auto card = AddCard(u"a"_s);
  card->SetControlVal(list->Id(), TVelumValue::OfStr(u"1"_s));
  const auto other = AddBackground(u"Other"_s);
  const auto otherList = AddField(other, u"Others"_s, EConList);
  const auto next = AddCard(u"b"_s, other);
  next->SetControlVal(otherList->Id(), TVelumValue::OfStr(u"9"_s));
  Open();
  const QObject* widget = list->BaseControl();
  View().GoToCard(next);
  for (const auto& control : {iText, iList, list}) {
    EXPECT_EQ(control->BaseControl(), nullptr);
    EXPECT_EQ(control->BaseLabel(), nullptr);
  }
  EXPECT_EQ(otherList->BaseControl(), widget) << "the pool is handed out again";
  EXPECT_EQ(Shown(otherList), QStringList{u"9"_s});
  list->SetList(nullptr, u"x"_s, false);
  EXPECT_EQ(Shown(otherList), QStringList{u"9"_s}) << "the old list box has lost the widget";
}

} // namespace
