// Where a layout puts the fields of a card.
#include "core/CVelumFieldTypes.h"
#include "runtime/RuntimeFixture.h"

#include <QTest>
#include <QTextEdit>

namespace {

using CVelumCardLayoutTest = RuntimeTest;

// Lines are 160 twips high at the default 8 points, characters 100 wide; the dense gap is 20.

TEST_F(CVelumCardLayoutTest, PlacesOneLineFieldsBelowEachOther) {
  const auto name = AddField(iSet, u"Name"_s, EConText);
  const auto year = AddField(iSet, u"Year"_s, EConInteger);
  AddCard(u"a"_s);
  Open();
  EXPECT_EQ(RectOf(Label(name)), QRectF(20, 22, 400, 160));
  EXPECT_EQ(RectOf(Base(name)), QRectF(440, 20, 1130, 280));
  EXPECT_EQ(RectOf(Label(year)), QRectF(20, 322, 400, 160));
  EXPECT_EQ(RectOf(Base(year)), QRectF(440, 320, 1130, 280));
  EXPECT_EQ(Base(name).Name(), u"fGenTextBox0"_s);
  EXPECT_EQ(Base(year).Name(), u"fGenTextBox1"_s);
  EXPECT_EQ(name->BaseType(), EBaseTextBox);
  EXPECT_TRUE(Base(name).Visible());
  EXPECT_FALSE(Pool(u"fGenTextBox2"_s).Visible());
}

TEST_F(CVelumCardLayoutTest, ANormalLayoutHasTheWiderGap) {
  iSet->SetFlags(0);
  const auto name = AddField(iSet, u"Name"_s, EConText);
  AddCard(u"a"_s);
  Open();
  EXPECT_EQ(RectOf(Label(name)), QRectF(100, 102, 400, 160));
  EXPECT_EQ(RectOf(Base(name)), QRectF(600, 100, 1130, 280));
}

TEST_F(CVelumCardLayoutTest, LabelsAreAlignedToTheRightAgainstTheValues) {
  const auto name = AddField(iSet, u"Name"_s, EConText);
  const auto street = AddField(iSet, u"Street"_s, EConText);
  AddCard(u"a"_s);
  Open();
  EXPECT_EQ(Base(name).Left(), 640);
  EXPECT_EQ(Label(name).Left(), 220);
  EXPECT_EQ(Label(street).Left(), 20);
}

TEST_F(CVelumCardLayoutTest, ALongLabelTakesNoMoreThanHalfTheCard) {
  const auto field = AddField(iSet, QString(100, u'x'), EConText);
  AddCard(u"a"_s);
  Open();
  EXPECT_EQ(Base(field).Left(), 2980);
  EXPECT_EQ(Label(field).Left(), 20);
  EXPECT_EQ(Label(field).Width(), 10000) << "its text runs into the value column";
}

TEST_F(CVelumCardLayoutTest, AFieldWithoutALabelGetsAnEmptyOneAtTheValues) {
  const auto field = AddField(iSet, u"Name"_s, EConText);
  field->SetLabel({});
  AddCard(u"a"_s);
  Open();
  EXPECT_EQ(Base(field).Left(), 20);
  EXPECT_EQ(RectOf(Label(field)), QRectF(20, 22, 0, 160));
}

TEST_F(CVelumCardLayoutTest, AValueNeverGoesPastTheRightMarginButAButtonMay) {
  const auto field = AddField(iSet, u"Name"_s, EConText);
  field->SetVisChar(200);
  const auto button = AddField(iSet, u"Go"_s, EConCommand, EConAsButton);
  button->SetVisChar(200);
  AddCard(u"a"_s);
  Open();
  EXPECT_EQ(Base(field).Width(), 6000 - 440 - 20);
  EXPECT_EQ(Base(button).Width(), 2 * 130 + 200 * 100);
}

TEST_F(CVelumCardLayoutTest, EachKindOfValueEndsAtTheRightMargin) {
  const auto rich = AddField(iSet, u"Rich"_s, EConText);
  rich->SetVisLines(2);
  const auto combo = AddField(iSet, u"Town"_s, EConText, EConComboText);
  const auto choices = AddField(iSet, u"Towns"_s, EConList, EConComboList);
  combo->SetPartnerId(choices->Id());
  choices->SetPartnerId(combo->Id());
  const auto list = AddField(iSet, u"List"_s, EConList);
  const auto picture = AddField(iSet, u"Pict"_s, EConPicture);
  for (const auto& field : {rich, combo, list, picture}) field->SetVisChar(32000);
  AddCard(u"a"_s);
  Open();
  for (const auto& field : {rich, combo, list, picture})
    EXPECT_EQ(Base(field).Left() + Base(field).Width(), 6000 - 20) << field->Name().toStdString();
}

TEST_F(CVelumCardLayoutTest, TheHeaderHoldsTheCardsNameAndTheProgress) {
  iSet->SetFlags(ECseDenseLayout | ECseShowCardName);
  const auto name = AddField(iSet, u"Name"_s, EConText);
  AddCard(u"Ada"_s);
  Open();
  CVelumBaseControl& label = Pool(u"fGenLabel0"_s);
  EXPECT_EQ(RectOf(label), QRectF(20, 20, 6000, 160));
  EXPECT_EQ(label.Text(), u"Ada"_s);
  EXPECT_TRUE(label.Visible());
  EXPECT_TRUE(Pool(u"fProgressBox"_s).Visible());
  EXPECT_EQ(Pool(u"fProgressBox"_s).Top(), 20);
  EXPECT_EQ(Pool(u"fProgressBox"_s).Left() + Pool(u"fProgressBox"_s).Width(), 6000 - 20);
  EXPECT_EQ(Pool(u"fProgress"_s).Width(), 0);
  EXPECT_TRUE(Pool(u"fProgress"_s).Visible());
  EXPECT_EQ(RectOf(Pool(u"fGenLine0"_s)), QRectF(0, 200, 6000, 15));
  EXPECT_TRUE(Pool(u"fGenLine0"_s).Visible());
  EXPECT_EQ(Base(name).Top(), 220);
  EXPECT_EQ(Label(name).Name(), u"fGenLabel1"_s);
}

TEST_F(CVelumCardLayoutTest, FieldsFromTheBottomAreStackedUpward) {
  const auto low = AddField(iSet, u"Low"_s, EConText, EConFromBottom);
  const auto high = AddField(iSet, u"High"_s, EConText, EConFromBottom);
  AddCard(u"a"_s);
  Open();
  EXPECT_EQ(Base(low).Top(), 7500 - 20 - 280);
  EXPECT_EQ(Label(low).Top(), 7500 - 20 - 160 + 2);
  EXPECT_EQ(Base(high).Top(), 7500 - 20 - 300 - 280);
}

TEST_F(CVelumCardLayoutTest, FieldsOfSeveralLinesAreRichTextBoxes) {
  const auto text = AddField(iSet, u"Text"_s, EConText);
  text->SetVisLines(3);
  const auto wiki = AddField(iSet, u"Wiki"_s, EConText, EConWikiText);
  AddCard(u"a"_s);
  Open();
  EXPECT_EQ(text->BaseType(), EBaseRichTextBox);
  EXPECT_EQ(RectOf(Base(text)), QRectF(440, 20, 1130, 3 * 160 + 120));
  EXPECT_EQ(wiki->BaseType(), EBaseRichTextBox);
  EXPECT_TRUE(static_cast<QTextEdit*>(Base(wiki).Widget())->isReadOnly());
  EXPECT_TRUE(Base(wiki).Enabled());
  EXPECT_FALSE(static_cast<QTextEdit*>(Base(text).Widget())->isReadOnly());
}

TEST_F(CVelumCardLayoutTest, ACheckBoxKeepsItsWidth) {
  const auto field = AddField(iSet, u"Done"_s, EConBoolean);
  AddCard(u"a"_s);
  Open();
  EXPECT_EQ(field->BaseType(), EBaseCheckBox);
  EXPECT_EQ(RectOf(Base(field)), QRectF(440, 20, 300, 320));
  EXPECT_EQ(Base(field).Text(), QString());
}

TEST_F(CVelumCardLayoutTest, ListsAndPicturesAreLabelledPlaces) {
  const auto list = AddField(iSet, u"List"_s, EConList);
  list->SetVisLines(4);
  const auto picture = AddField(iSet, u"Pict"_s, EConPicture);
  picture->SetVisLines(2);
  AddCard(u"a"_s);
  Open();
  EXPECT_EQ(RectOf(Base(list)), QRectF(440, 20, 10 * 100 + 50, 200 * 5 + 240));
  EXPECT_EQ(RectOf(Base(picture)), QRectF(440, 20 + 1240 + 20, 10 * 100 + 130, 200 * 3 + 240));
  EXPECT_TRUE(Base(list).Enabled());
  EXPECT_TRUE(Base(picture).Enabled());
  EXPECT_TRUE(Label(list).Visible());
}

TEST_F(CVelumCardLayoutTest, APictureFromTheBottomIsPlacedByTheHeightItHadBefore) {
  const auto picture = AddField(iSet, u"Pict"_s, EConPicture, EConFromBottom);
  AddCard(u"a"_s);
  Open();
  EXPECT_EQ(RectOf(Base(picture)), QRectF(440, 7480 - 495, 1130, 640));
  View().RefreshViews(true, false);
  EXPECT_EQ(Base(picture).Top(), 7480 - 640);
}

TEST_F(CVelumCardLayoutTest, AComboSharesItsBoxWithItsList) {
  const auto text = AddField(iSet, u"Town"_s, EConText, EConComboText);
  const auto list = AddField(iSet, u"Towns"_s, EConList, EConComboList);
  text->SetPartnerId(list->Id());
  list->SetPartnerId(text->Id());
  AddCard(u"a"_s);
  Open();
  EXPECT_EQ(text->BaseType(), EBaseComboBox);
  EXPECT_EQ(list->BaseControl(), text->BaseControl());
  EXPECT_EQ(Base(text).Width(), 1130);
  EXPECT_EQ(Base(text).Left(), 440) << "the list has no label of its own";
  EXPECT_EQ(View().CardView()->VelumControl(&Base(text)), text.Get());
}

TEST_F(CVelumCardLayoutTest, AComboIsAsHighAsTheToolkitMakesItAndGrowsFromTheBottomToo) {
  Ref<CVelumControl> texts[2];
  const qint32 flags[] = {0, EConFromBottom};
  for (int i = 0; i < 2; ++i) {
    texts[i] = AddField(iSet, u"Town"_s, EConText, EConComboText | flags[i]);
    const auto list = AddField(iSet, u"Towns"_s, EConList, EConComboList);
    texts[i]->SetPartnerId(list->Id());
    list->SetPartnerId(texts[i]->Id());
  }
  const auto below = AddField(iSet, u"Name"_s, EConText);
  AddCard(u"a"_s);
  Open();
  const float height = Base(texts[0]).Height();
  EXPECT_GT(height, 150);
  EXPECT_EQ(Base(texts[0]).Top(), 20);
  EXPECT_EQ(Base(below).Top(), 20 + height + 20);
  EXPECT_EQ(Base(texts[1]).Top(), 7480 - height);
}

TEST_F(CVelumCardLayoutTest, AComboBelowAGrownFieldMovesOnce) {
  const auto grown = AddField(iSet, u"A"_s, EConText, EConMaxHeight);
  const auto text = AddField(iSet, u"Town"_s, EConText, EConComboText);
  const auto list = AddField(iSet, u"Towns"_s, EConList, EConComboList);
  text->SetPartnerId(list->Id());
  list->SetPartnerId(text->Id());
  AddCard(u"a"_s);
  Open();
  EXPECT_EQ(Base(text).Top(), Base(grown).Top() + Base(grown).Height() + 20);
  EXPECT_EQ(Label(text).Top(), Base(text).Top() + 2);
}

TEST_F(CVelumCardLayoutTest, AComboWithoutItsListAsserts) {
  AddField(iSet, u"Town"_s, EConText, EConComboText);
  AddCard(u"a"_s);
  iPresenter.SetDefaultAnswer(true);
  Open();
  EXPECT_TRUE(iPresenter.FirstShown().iText.contains(u"AssignBaseControl partner"_s));
}

TEST_F(CVelumCardLayoutTest, ATextFieldOfNoLinesAsserts) {
  const auto text = AddField(iSet, u"Town"_s, EConText);
  text->SetVisLines(0);
  AddCard(u"a"_s);
  iPresenter.SetDefaultAnswer(true);
  Open();
  EXPECT_TRUE(iPresenter.FirstShown().iText.contains(u"AssignBaseControl TextBox 1"_s));
  EXPECT_EQ(text->BaseType(), EBaseTextBox) << "and goes on when it is overruled";
}

TEST_F(CVelumCardLayoutTest, AnUnknownTypeAsserts) {
  const auto field = AddField(iSet, u"Town"_s, EConText);
  AddCard(u"a"_s);
  field->SetConType(static_cast<qint32>(CVelumFieldTypes::gRows.size()));
  Open();
  EXPECT_TRUE(iPresenter.FirstShown().iText.contains(u"AssignBaseControl conType"_s));
}

TEST_F(CVelumCardLayoutTest, FreeHeightGoesToTheFieldThatWantsItAndMovesWhatLiesBelow) {
  const auto above = AddField(iSet, u"A"_s, EConText);
  const auto grown = AddField(iSet, u"B"_s, EConText, EConMaxHeight);
  grown->SetVisLines(5);
  const auto below = AddField(iSet, u"C"_s, EConText);
  const auto low = AddField(iSet, u"D"_s, EConText, EConFromBottom);
  AddCard(u"a"_s);
  Open();
  const float free = 7180 - 920;
  EXPECT_EQ(Base(above).Top(), 20);
  EXPECT_EQ(Base(grown).Top(), 320);
  EXPECT_EQ(Base(grown).Height(), 280 + free) << "it started with one line";
  EXPECT_EQ(Base(below).Top(), 620 + free);
  EXPECT_EQ(Label(below).Top(), 622 + free);
  EXPECT_EQ(Label(grown).Top(), 322);
  EXPECT_EQ(Base(low).Top(), 7200);
}

TEST_F(CVelumCardLayoutTest, FreeHeightIsSplitEvenly) {
  const auto one = AddField(iSet, u"A"_s, EConText, EConMaxHeight);
  const auto two = AddField(iSet, u"B"_s, EConList, EConMaxHeight);
  AddCard(u"a"_s);
  Open();
  const float share = (7480 - (20 + 300 + 640 + 20)) / 2.0F;
  EXPECT_EQ(Base(one).Height(), 280 + share);
  EXPECT_EQ(Base(two).Height(), 640 + share);
  EXPECT_EQ(Base(two).Top(), 320 + share);
}

TEST_F(CVelumCardLayoutTest, FieldsThatMeetOverlapAndNothingGrows) {
  const auto top = AddField(iSet, u"A"_s, EConText, EConMaxHeight);
  const auto low = AddField(iSet, u"B"_s, EConText, EConFromBottom);
  AddCard(u"a"_s);
  Open(6000, 450);
  EXPECT_EQ(Base(top).Height(), 280);
  EXPECT_LT(Base(low).Top(), Base(top).Top() + Base(top).Height());
}

TEST_F(CVelumCardLayoutTest, LessThanALineOfFreeHeightIsNotSpread) {
  const auto field = AddField(iSet, u"A"_s, EConText, EConMaxHeight);
  AddCard(u"a"_s);
  // Free height is the client's less 20 below and 320 above: 200 is the height of a character.
  Open(6000, 525);
  EXPECT_EQ(Base(field).Height(), 280);
  Resize(400, 36);
  EXPECT_EQ(Base(field).Height(), 480);
}

TEST_F(CVelumCardLayoutTest, TabOrderFollowsTheBackgroundWhereThePoolStandsInAnother) {
  const auto box = AddField(iSet, u"A"_s, EConBoolean);
  const auto text = AddField(iSet, u"B"_s, EConText);
  text->SetVisLines(2);
  const auto line = AddField(iSet, u"C"_s, EConText);
  AddCard(u"a"_s);
  Open();
  Base(box).SetFocus();
  for (const auto& next : {text, line}) {
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    EXPECT_TRUE(Base(next).HasFocus()) << next->Name().toStdString();
  }
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
  EXPECT_TRUE(Base(text).HasFocus());
}

TEST_F(CVelumCardLayoutTest, AfterALayoutThatFailedTheHeaderIsTheCardsOwn) {
  iSet->SetFlags(ECseDenseLayout | ECseShowCardName);
  for (int i = 0; i < 21; ++i) AddField(iSet, u"A"_s + QString::number(i), EConText);
  AddCard(u"first"_s);
  const auto second = AddCard(u"second"_s);
  Open();
  EXPECT_EQ(Pool(u"fGenLabel0"_s).Text(), u"first"_s);
  View().GoToCard(second);
  EXPECT_EQ(Pool(u"fGenLabel0"_s).Text(), u"second"_s);
}

TEST_F(CVelumCardLayoutTest, TabOrderFollowsTheBackgroundTopAndBottomMixed) {
  const auto one = AddField(iSet, u"A"_s, EConText, EConFromBottom);
  const auto two = AddField(iSet, u"B"_s, EConText);
  const auto three = AddField(iSet, u"C"_s, EConBoolean, EConFromBottom);
  AddCard(u"a"_s);
  Open();
  EXPECT_EQ(Base(one).TabIndex(), 0);
  EXPECT_EQ(Base(two).TabIndex(), 1);
  EXPECT_EQ(Base(three).TabIndex(), 2);
  Base(one).SetFocus();
  QTest::keyClick(Base(one).Widget(), Qt::Key_Tab);
  EXPECT_TRUE(Base(two).HasFocus());
  QTest::keyClick(Base(two).Widget(), Qt::Key_Tab);
  EXPECT_TRUE(Base(three).HasFocus());
}

TEST_F(CVelumCardLayoutTest, ADisabledFieldIsDisabledWithItsLabel) {
  const auto field = AddField(iSet, u"A"_s, EConText, EConDisabled);
  const auto other = AddField(iSet, u"B"_s, EConText);
  AddCard(u"a"_s);
  Open();
  EXPECT_FALSE(Base(field).Enabled());
  EXPECT_FALSE(Label(field).Enabled());
  EXPECT_TRUE(Base(other).Enabled());
  EXPECT_EQ(View().CardView()->FocusControl(), other.Get()) << "the first that can have the focus";
}

TEST_F(CVelumCardLayoutTest, AFieldOutsideTheCardViewHasNoPlace) {
  const auto hidden = AddField(iSet, u"Hidden and long"_s, EConText);
  hidden->SetFlag(EConInCardView, false);
  const auto field = AddField(iSet, u"A"_s, EConText);
  AddCard(u"a"_s);
  Open();
  EXPECT_EQ(hidden->BaseControl(), nullptr);
  EXPECT_EQ(RectOf(Base(field)), QRectF(140, 20, 1130, 280));
}

TEST_F(CVelumCardLayoutTest, AMaximizedFieldOutsideTheCardViewIsAnErrorOnceThereIsSomethingToSpread) {
  const auto hidden = AddField(iSet, u"A"_s, EConText, EConMaxHeight);
  hidden->SetFlag(EConInCardView, false);
  AddField(iSet, u"B"_s, EConText, EConMaxHeight);
  AddCard(u"a"_s);
  Open();
  EXPECT_EQ(CVelumError::GetErrorCode(), EHostObjectNotSet);
}

} // namespace
