#include "core/CVelumMsg.h"
#include "runtime/CVelumListBox.h"
#include "runtime/RuntimeFixture.h"
#include "toolkit/CVelumBaseButton.h"
#include "toolkit/CVelumBaseCheckBox.h"
#include "toolkit/CVelumBasePictureBox.h"

#include <QAbstractItemView>
#include <QBuffer>
#include <QTest>
#include <QTextEdit>

namespace {

class CVelumCardLayoutTest : public RuntimeTest {
protected:
  // A picture of 20 by 10 pixels that nothing refers to.
  static Ref<CVelumBlob> AddGreenPicture() {
    const auto blob = MakeRef<CVelumBlob>(gStack->IdGen().NextId());
    QByteArray bytes;
    QPixmap picture(20, 10);
    picture.fill(Qt::green);
    QBuffer buffer(&bytes);
    picture.save(&buffer, "PNG");
    blob->SetBytes(bytes);
    gStack->BlobStore()->AddBlob(blob);
    return blob;
  }
};

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

TEST_F(CVelumCardLayoutTest, AnEleventhComboIsMoreThanThePoolHolds) {
  Ref<CVelumControl> last;
  for (int i = 0; i < 11; ++i) {
    last = AddField(iSet, u"Town"_s, EConText, EConComboText);
    const auto list = AddField(iSet, u"Towns"_s, EConList, EConComboList);
    last->SetPartnerId(list->Id());
    list->SetPartnerId(last->Id());
  }
  AddCard(u"a"_s);
  Open();
  EXPECT_EQ(last->BaseControl(), nullptr);
  EXPECT_EQ(CVelumError::GetErrorCode(), EHostObjectNotSet);
  EXPECT_EQ(iPresenter.CountOf(EMsgSystemError), 1);
}

TEST_F(CVelumCardLayoutTest, AComboWithoutItsListAsserts) {
  AddField(iSet, u"Town"_s, EConText, EConComboText);
  AddCard(u"a"_s);
  iPresenter.SetDefaultAnswer(true);
  Open();
  EXPECT_TRUE(iPresenter.Shown().first().iText.contains(u"AssignBaseControl partner"_s));
}

TEST_F(CVelumCardLayoutTest, ATextFieldOfNoLinesAsserts) {
  const auto text = AddField(iSet, u"Town"_s, EConText);
  text->SetVisLines(0);
  AddCard(u"a"_s);
  iPresenter.SetDefaultAnswer(true);
  Open();
  EXPECT_TRUE(iPresenter.Shown().first().iText.contains(u"AssignBaseControl TextBox 1"_s));
  EXPECT_EQ(text->BaseType(), EBaseTextBox) << "and goes on when it is overruled";
}

TEST_F(CVelumCardLayoutTest, AnUnknownTypeAsserts) {
  const auto field = AddField(iSet, u"Town"_s, EConText);
  AddCard(u"a"_s);
  field->SetConType(9);
  Open();
  EXPECT_TRUE(iPresenter.Shown().first().iText.contains(u"AssignBaseControl conType"_s));
}

TEST_F(CVelumCardLayoutTest, ButtonsStandInRowsFromTheLeftMargin) {
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

TEST_F(CVelumCardLayoutTest, AButtonThatDoesNotFitStartsARow) {
  const auto one = AddField(iSet, u"One"_s, EConCommand, EConAsButton);
  const auto two = AddField(iSet, u"Two"_s, EConCommand, EConAsButton);
  AddCard(u"a"_s);
  // The second one ends at 1160, and may end at the width less the gap.
  Open(1185, 3000);
  EXPECT_EQ(Base(two).Top(), Base(one).Top());
  Form().resize(78, 200);
  EXPECT_EQ(RectOf(Base(two)), QRectF(20, 20 + 375 + 20, 560, 375));
}

TEST_F(CVelumCardLayoutTest, RowsFromTheBottomAreTheirOwn) {
  const auto top = AddField(iSet, u"Top"_s, EConCommand, EConAsButton);
  const auto low = AddField(iSet, u"Low"_s, EConCommand, EConAsButton | EConFromBottom);
  const auto low2 = AddField(iSet, u"Lo2"_s, EConCommand, EConAsButton | EConFromBottom);
  AddCard(u"a"_s);
  Open();
  EXPECT_EQ(Base(top).Top(), 20);
  EXPECT_EQ(RectOf(Base(low)), QRectF(20, 7480 - 375, 560, 375));
  EXPECT_EQ(RectOf(Base(low2)), QRectF(600, 7480 - 375, 560, 375));
}

TEST_F(CVelumCardLayoutTest, ACommandOfTheMenuDoesNotEndARow) {
  const auto one = AddField(iSet, u"One"_s, EConCommand, EConAsButton);
  AddField(iSet, u"Menu"_s, EConCommand, EConInMenu);
  const auto two = AddField(iSet, u"Two"_s, EConCommand, EConAsButton);
  AddCard(u"a"_s);
  Open();
  EXPECT_EQ(RectOf(Base(two)), QRectF(600, Base(one).Top(), 560, 375));
  EXPECT_EQ(Base(two).TabIndex(), 1) << "it has no place among the tabs either";
}

TEST_F(CVelumCardLayoutTest, AButtonBehindAMenuCommandStartsARowWhereThereIsNone) {
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

TEST_F(CVelumCardLayoutTest, WithoutAMainWindowPicturesAreThereToo) {
  const auto next = AddField(iSet, u"Next"_s, EConCommand, EConAsButton | EConPictButton | EConStdCmd);
  next->SetStdCmd(EStdNextCard);
  AddCard(u"a"_s);
  gFrameHost = nullptr;
  Open();
  EXPECT_TRUE(static_cast<CVelumBaseButton&>(Base(next)).HasPicture());
  gFrameHost = &iFrame;
}

TEST_F(CVelumCardLayoutTest, StandardCommandsCanShowTheirPicture) {
  const auto next = AddField(iSet, u"Next"_s, EConCommand, EConAsButton | EConPictButton | EConStdCmd);
  next->SetStdCmd(EStdNextCard);
  AddCard(u"a"_s);
  Open();
  EXPECT_TRUE(iFrame.iCalls.contains(u"ToolbarIcon NextCard"_s));
  EXPECT_TRUE(static_cast<CVelumBaseButton&>(Base(next)).HasPicture());
  EXPECT_EQ(Base(next).Text(), QString());
  EXPECT_EQ(Base(next).Width(), 260);
}

TEST_F(CVelumCardLayoutTest, EachPictureHasItsKey) {
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

TEST_F(CVelumCardLayoutTest, ThePictureOfGoToCardAsserts) {
  AddField(iSet, u"Go"_s, EConCommand, EConAsButton | EConPictButton | EConStdCmd)->SetStdCmd(EStdGoToCard);
  AddCard(u"a"_s);
  Open();
  EXPECT_TRUE(iPresenter.Shown().first().iText.contains(u"AssignBaseControl pict stdCmd"_s));
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
  Form().resize(400, 36);
  EXPECT_EQ(Base(field).Height(), 480);
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

TEST_F(CVelumCardLayoutTest, FontsAndColoursComeFromTheirLevels) {
  gStack->SetFont(MakeRef<CVelumFont>(u"DejaVu Serif"_s, ENoShort, ENoInt));
  iSet->SetFont(MakeRef<CVelumFont>(QString(), qint16{240}, ENoInt));
  iSet->SetBackColor(0xC0FFFF);
  const auto field = AddField(iSet, u"A"_s, EConText);
  field->SetFont(MakeRef<CVelumFont>(QString(), qint16{400}, 0x0000FF));
  field->SetBackColor(0xFFC0C0);
  const auto box = AddField(iSet, u"B"_s, EConBoolean);
  const auto first = AddCard(u"a"_s);
  const auto second = AddCard(u"b"_s);
  second->SetBackColor(0x00FF00);
  Open();
  EXPECT_EQ(Base(field).Font().family(), u"DejaVu Serif"_s);
  EXPECT_EQ(Base(field).Font().pointSizeF(), 20.0);
  EXPECT_EQ(Base(field).Height(), 20 * 20 + 120);
  EXPECT_EQ(Base(field).ForeColor(), 0x0000FF);
  EXPECT_EQ(Base(field).BackColor(), 0xFFC0C0);
  EXPECT_EQ(Label(field).Font().pointSizeF(), 12.0) << "labels have no level of the field";
  EXPECT_EQ(Label(field).ForeColor(), 0);
  EXPECT_EQ(Label(field).BackColor(), 0xC0FFFF);
  EXPECT_EQ(Form().BackColor(), 0xC0FFFF);
  EXPECT_EQ(Base(box).BackColor(), 0xC0FFFF);
  View().GoToCard(second);
  EXPECT_EQ(Form().BackColor(), 0x00FF00);
  EXPECT_EQ(Label(field).BackColor(), 0x00FF00);
  EXPECT_EQ(Base(box).BackColor(), 0x00FF00);
  EXPECT_EQ(Base(field).BackColor(), 0xFFC0C0);
}

TEST_F(CVelumCardLayoutTest, AListHasTheFontOfItsLevels) {
  iSet->SetFont(MakeRef<CVelumFont>(u"DejaVu Serif"_s, qint16{240}, ENoInt));
  const auto list = AddField(iSet, u"List"_s, EConList);
  list->SetFont(MakeRef<CVelumFont>(QString(), qint16{400}, ENoInt));
  AddCard(u"a"_s);
  Open();
  const Ref<CVelumListBoxBase> base = list->ListBox();
  const auto* box = dynamic_cast<CVelumListBox*>(base.Get());
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(box->Font()->PointSize(), 20);
  EXPECT_EQ(box->Font()->FaceName(), u"DejaVu Serif"_s);
  EXPECT_EQ(Base(list).Font().pointSizeF(), 20.0);
}

TEST_F(CVelumCardLayoutTest, TheStacksColourIsTheCardsUnlessOneIsNearer) {
  gStack->SetBackColor(0x102030);
  const auto field = AddField(iSet, u"A"_s, EConText);
  AddCard(u"a"_s);
  Open();
  EXPECT_EQ(Form().BackColor(), 0x102030);
  EXPECT_EQ(Label(field).BackColor(), 0x102030);
  iSet->SetBackColor(0xC0FFFF);
  View().RefreshViews(true, false);
  EXPECT_EQ(Form().BackColor(), 0xC0FFFF);
}

TEST_F(CVelumCardLayoutTest, WhatIsHiddenHoldsNothingAndListsLieOutside) {
  const auto list = AddField(iSet, u"List"_s, EConList);
  const auto text = AddField(iSet, u"Text"_s, EConText);
  text->SetVisLines(2);
  const auto card = AddCard(u"a"_s);
  card->SetControlVal(list->Id(), TVelumValue::OfStr(u"1\r\n2"_s));
  card->SetControlVal(text->Id(), TVelumValue::OfStr(u"long"_s));
  Open();
  CVelumBaseControl& listView = Base(list);
  CVelumBaseControl& box = Base(text);
  const QAbstractItemModel& lines = *qobject_cast<QAbstractItemView*>(listView.Widget())->model();
  ASSERT_EQ(lines.rowCount(), 2);
  ASSERT_EQ(box.Text(), u"long"_s);
  EXPECT_EQ(Pool(u"fGenListView9"_s).Left(), 10000) << "as all that this layout does not use";
  View().CardView()->Clear();
  EXPECT_EQ(QPointF(static_cast<qreal>(listView.Left()), static_cast<qreal>(listView.Top())),
            QPointF(10000, 10000));
  EXPECT_FALSE(listView.Visible());
  EXPECT_EQ(lines.rowCount(), 0);
  EXPECT_EQ(box.Text(), QString());
}

TEST_F(CVelumCardLayoutTest, AnotherCardOfTheBackgroundCostsNoLayout) {
  const auto field = AddField(iSet, u"A"_s, EConText);
  AddCard(u"a"_s);
  const auto second = AddCard(u"b"_s);
  Open();
  Base(field).SetPlace(1, 2);
  View().GoToCard(second);
  EXPECT_EQ(Base(field).Left(), 1);
  View().RefreshViews(true, false);
  EXPECT_EQ(Base(field).Left(), 140);
}

TEST_F(CVelumCardLayoutTest, ANewLayoutTakesTheControlsFromTheOldFields) {
  const auto field = AddField(iSet, u"A"_s, EConText);
  const auto set = AddBackground(u"Other"_s);
  const auto other = AddField(set, u"B"_s, EConText);
  AddCard(u"a"_s);
  const auto card = AddCard(u"b"_s, set);
  Open();
  QObject* box = field->BaseControl();
  View().GoToCard(card);
  EXPECT_EQ(other->BaseControl(), box);
  EXPECT_EQ(field->BaseControl(), nullptr);
  EXPECT_EQ(field->BaseLabel(), nullptr);
  EXPECT_EQ(View().CardView()->VelumControl(&Base(other)), other.Get());
}

TEST_F(CVelumCardLayoutTest, WithoutACardTheFormIsBlankAndTheSetCountsAsLaidOut) {
  const auto field = AddField(iSet, u"A"_s, EConText);
  AddCard(u"a"_s);
  Open();
  CVelumBaseControl& box = Base(field);
  View().CardView()->ResetCurSet();
  View().CardView()->AssignControlSet(nullptr, iSet);
  EXPECT_FALSE(box.Visible());
  EXPECT_EQ(View().CardView()->CurSet(), iSet);
  EXPECT_EQ(Form().Caption(), u"(No Card)"_s);
  Form().SetCaption(u"left alone"_s);
  View().CardView()->AssignControlSet(nullptr, iSet);
  EXPECT_EQ(Form().Caption(), u"left alone"_s);
}

TEST_F(CVelumCardLayoutTest, VelumControlAssertsForAControlThatIsNotBound) {
  AddField(iSet, u"A"_s, EConText);
  AddCard(u"a"_s);
  Open();
  CVelumBaseControl& other = Pool(u"fGenTextBox7"_s);
  EXPECT_FALSE(View().CardView()->IsVelumControl(&other));
  EXPECT_THROW(static_cast<void>(View().CardView()->VelumControl(&other)), CVelumException);
  EXPECT_TRUE(iPresenter.LastText().contains(u"VelumControl found fGenTextBox7"_s));
  iPresenter.SetDefaultAnswer(true);
  EXPECT_EQ(View().CardView()->VelumControl(&other), nullptr);
}

struct TPoolCase {
  qint32 iType;
  qint32 iFlags;
  int iSize;
};

class CVelumPoolTest : public RuntimeTest, public testing::WithParamInterface<TPoolCase> {};

TEST_P(CVelumPoolTest, OneFieldMoreThanThePoolHoldsIsAnErrorThatIsToldOnce) {
  Ref<CVelumControl> last;
  for (int i = 0; i <= GetParam().iSize; ++i)
    last = AddField(iSet, QString::number(i), GetParam().iType, GetParam().iFlags);
  AddCard(u"a"_s);
  const auto second = AddCard(u"b"_s);
  Open();
  EXPECT_EQ(last->BaseControl(), nullptr);
  EXPECT_EQ(iPresenter.CountOf(EMsgSystemError), 1);
  EXPECT_EQ(CVelumError::GetErrorRecord().iProc, u"ShowCurCard"_s);
  EXPECT_EQ(CVelumError::GetErrorCode(), EHostObjectNotSet);
  View().GoToCard(second);
  EXPECT_EQ(iPresenter.Count(), 1);
  EXPECT_EQ(Form().Caption(), u"b - 2 of 2"_s);
}

TEST_P(CVelumPoolTest, AFullPoolIsNoError) {
  Ref<CVelumControl> last;
  for (int i = 0; i < GetParam().iSize; ++i)
    last = AddField(iSet, QString::number(i), GetParam().iType, GetParam().iFlags);
  AddCard(u"a"_s);
  Open();
  EXPECT_NE(last->BaseControl(), nullptr);
  EXPECT_EQ(iPresenter.Count(), 0);
}

INSTANTIATE_TEST_SUITE_P(Kinds, CVelumPoolTest,
                         testing::Values(TPoolCase{EConText, 0, 20}, TPoolCase{EConDate, EConMaxHeight, 10},
                                         TPoolCase{EConBoolean, 0, 10}, TPoolCase{EConList, 0, 10},
                                         TPoolCase{EConPicture, 0, 10},
                                         TPoolCase{EConCommand, EConAsButton, 10}));

TEST_F(CVelumCardLayoutTest, ThirtyLabelsAreEnoughForThirtyFields) {
  for (int i = 0; i < 20; ++i) AddField(iSet, u"t"_s, EConText);
  for (int i = 0; i < 10; ++i) AddField(iSet, u"b"_s, EConBoolean);
  const auto last = AddField(iSet, u"l"_s, EConList);
  AddCard(u"a"_s);
  Open();
  EXPECT_EQ(last->BaseControl(), nullptr);
  EXPECT_EQ(iPresenter.CountOf(EMsgSystemError), 1);
}

TEST_F(CVelumCardLayoutTest, AHalfBuiltLayoutShowsTheValuesOfItsOwnCard) {
  QList<Ref<CVelumControl>> fields;
  for (int i = 0; i <= 20; ++i) fields.append(AddField(iSet, QString::number(i), EConText));
  const auto first = AddCard(u"a"_s);
  const auto second = AddCard(u"b"_s);
  for (const auto& card : {first, second})
    card->SetControlVal(fields[3]->Id(), TVelumValue::OfStr(u"value of "_s + card->Name()));
  Open();
  EXPECT_EQ(Base(fields[3]).Text(), u"value of a"_s);
  View().GoToCard(second);
  EXPECT_EQ(Base(fields[3]).Text(), u"value of b"_s);
}

TEST_F(CVelumCardLayoutTest, MoreThanAHundredAndOneControlsAreABoundsFailure) {
  for (int i = 0; i < 102; ++i) AddField(iSet, QString::number(i), EConCommand, EConInMenu);
  AddCard(u"a"_s);
  Open();
  EXPECT_EQ(CVelumError::GetErrorCode(), EHostIndex);
  EXPECT_EQ(iPresenter.CountOf(EMsgSystemError), 1);
}

TEST_F(CVelumCardLayoutTest, ACommandThatIsNeitherButtonNorMenuItemMustNotBeInTheCardView) {
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

TEST_F(CVelumCardLayoutTest, AMaximizedFieldOutsideTheCardViewIsAnErrorOnceThereIsSomethingToSpread) {
  const auto hidden = AddField(iSet, u"A"_s, EConText, EConMaxHeight);
  hidden->SetFlag(EConInCardView, false);
  AddField(iSet, u"B"_s, EConText, EConMaxHeight);
  AddCard(u"a"_s);
  Open();
  EXPECT_EQ(CVelumError::GetErrorCode(), EHostObjectNotSet);
}

TEST_F(CVelumCardLayoutTest, CommandsOfTheMenuTakeItsItemsInOrder) {
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

TEST_F(CVelumCardLayoutTest, ABackgroundWithoutCommandsDisablesTheMenu) {
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

TEST_F(CVelumCardLayoutTest, AnEleventhMenuCommandAsserts) {
  for (int i = 0; i < 11; ++i) AddField(iSet, QString::number(i), EConCommand, EConInMenu);
  AddCard(u"a"_s);
  Open();
  EXPECT_TRUE(iPresenter.Shown().first().iText.contains(u"ControlByName fGenFunc10"_s));
  EXPECT_EQ(iFrame.iActions[u"fGenFunc9"_s]->text(), u"9"_s);
}

TEST_F(CVelumCardLayoutTest, MoreThanAHundredAndOneMenuCommandsAreABoundsFailure) {
  for (int i = 0; i < 102; ++i)
    AddField(iSet, QString::number(i), EConCommand, EConInMenu)->SetFlag(EConInCardView, false);
  AddCard(u"a"_s);
  Open();
  EXPECT_EQ(CVelumError::GetErrorCode(), EHostIndex);
  EXPECT_EQ(iPresenter.CountOf(EMsgSystemError), 1);
}

TEST_F(CVelumCardLayoutTest, AResizedWindowIsLaidOutAnew) {
  const auto field = AddField(iSet, u"A"_s, EConText);
  field->SetVisChar(200);
  AddCard(u"a"_s);
  Open();
  EXPECT_EQ(Base(field).Width(), 6000 - 140 - 20);
  Form().resize(300, 400);
  EXPECT_EQ(Base(field).Width(), 4500 - 140 - 20);
}

TEST_F(CVelumCardLayoutTest, TheWallpaperIsReadOnceAndGivenUp) {
  const Ref<CVelumBlob> blob = AddGreenPicture();
  blob->IncRefCount(); // of the two backgrounds
  blob->IncRefCount();
  iSet->SetFlags(ECseDenseLayout | ECseShowWallPaper | ECseTileWallPaper);
  iSet->SetWallPaperId(blob->Id());
  const auto set = AddBackground(u"Other"_s);
  set->SetFlags(ECseShowWallPaper);
  set->SetWallPaperId(blob->Id());
  AddCard(u"a"_s);
  const auto second = AddCard(u"b"_s);
  const auto other = AddCard(u"c"_s, set);
  const qint32 before = blob->DynRefCount();
  Open();
  CVelumBaseControl& box = Pool(u"fWallPaperBox"_s);
  EXPECT_EQ(box.Tag(), QString::number(blob->Id()));
  EXPECT_EQ(blob->DynRefCount(), before + 1);
  View().GoToCard(second);
  EXPECT_EQ(blob->DynRefCount(), before + 1);
  EXPECT_EQ(Form().grab().toImage().pixelColor(390, 490), QColor(Qt::green)) << "tiled over the whole form";
  const qint64 decoded = static_cast<CVelumBasePictureBox&>(box).Picture().cacheKey();
  View().GoToCard(other);
  EXPECT_EQ(blob->DynRefCount(), before + 1);
  EXPECT_EQ(static_cast<CVelumBasePictureBox&>(box).Picture().cacheKey(), decoded) << "decoded once";
  const QImage middle = Form().grab().toImage();
  EXPECT_EQ(middle.pixelColor(200, 250), QColor(Qt::green));
  EXPECT_NE(middle.pixelColor(10, 10), QColor(Qt::green));
  set->SetWallPaperId(ENoInt);
  View().RefreshViews(true, false);
  EXPECT_EQ(box.Tag(), QString());
  EXPECT_EQ(blob->DynRefCount(), before);
}

TEST_F(CVelumCardLayoutTest, AWindowThatIsClearedOrClosedGivesItsPicturesUp) {
  const Ref<CVelumBlob> paper = AddGreenPicture();
  const Ref<CVelumBlob> shown = AddGreenPicture();
  paper->IncRefCount();
  iSet->SetFlags(ECseDenseLayout | ECseShowWallPaper);
  iSet->SetWallPaperId(paper->Id());
  const auto field = AddField(iSet, u"Pict"_s, EConPicture);
  const auto card = AddCard(u"a"_s);
  card->SetControlVal(field->Id(), TVelumValue::OfBlobId(shown->Id()));
  const auto held = [&] { return QPoint(paper->DynRefCount(), shown->DynRefCount()); };
  const QPoint before = held();
  Open();
  EXPECT_EQ(held(), before + QPoint(1, 1));
  View().CardView()->Clear();
  EXPECT_EQ(held(), before);
  View().RefreshViews(true, false);
  EXPECT_EQ(held(), before + QPoint(1, 1));
  View().CloseCardView(true);
  EXPECT_EQ(held(), before);
}

} // namespace
