#include "core/CVelumMsg.h"
#include "runtime/RuntimeFixture.h"
#include "toolkit/CVelumBaseCheckBox.h"

#include <QAbstractScrollArea>
#include <QCloseEvent>
#include <QComboBox>
#include <QTest>

namespace {

using CVelumGenFormTest = RuntimeTest;

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
  for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();
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

TEST_F(CVelumGenFormTest, ALongNumberIsAskedAboutOnceAndThenShown) {
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

} // namespace
