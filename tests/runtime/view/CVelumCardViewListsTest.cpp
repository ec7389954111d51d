// Lists and combo boxes on the card, and the box in which their lines are typed.
#include "core/CVelumMsg.h"
#include "runtime/RuntimeFixture.h"
#include "toolkit/CVelumListWidget.h"

#include <QComboBox>
#include <QHeaderView>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTest>

namespace {

class CVelumCardViewListsTest : public RuntimeTest {
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

TEST_F(CVelumCardViewListsTest, AComboIsAPairOfFields) {
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

TEST_F(CVelumCardViewListsTest, AnEmptyTextIsNoChoiceWhateverWasChosenBefore) {
  AddCombo(u"Bern\r\nBonn"_s);
  const auto card = AddCard(u"a"_s);
  Open();
  Base(iText).SetFocus();
  for (const QString& town : {u"Bern"_s, u"Bonn"_s}) {
    QTest::keyClick(&Combo(), Qt::Key_Down);
    EXPECT_EQ(Combo().currentText(), town);
  }
  EXPECT_TRUE(View().ValidateCurControl());
  View().SetCardValue(card, iText->Id(), TVelumValue::OfStr({}));
  EXPECT_EQ(Combo().currentText(), QString());
  EXPECT_EQ(Combo().currentIndex(), -1);
  QTest::keyClick(&Combo(), Qt::Key_Down);
  EXPECT_EQ(Combo().currentText(), u"Bern"_s) << "the first line is the next one";
}

TEST_F(CVelumCardViewListsTest, AChoiceIsAChangeAndStored) {
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

TEST_F(CVelumCardViewListsTest, WhileTheListIsEmptyATextWaitsForIt) {
  AddCombo({});
  const auto card = AddCard(u"a"_s);
  Open();
  View().CardView()->SetBaseControlVal(*iText, TVelumValue::OfStr(u"Bonn"_s), *card);
  EXPECT_EQ(Combo().currentText(), QString());
  card->SetControlVal(iText->Id(), TVelumValue::OfStr(u"Bonn"_s));
  View().CardView()->SetBaseControlVal(*iList, {}, *card);
  EXPECT_EQ(Combo().currentText(), u"Bonn"_s);
}

TEST_F(CVelumCardViewListsTest, AComboOfNumbersStoresNumbers) {
  AddCombo(u"1\r\n22"_s, EConInteger);
  const auto card = AddCard(u"a"_s);
  card->SetControlVal(iText->Id(), TVelumValue::OfInt(22));
  Open();
  EXPECT_EQ(Combo().currentText(), u"22"_s);
  Type(iText, u"3"_s);
  View().ValidateCurControl();
  EXPECT_EQ(card->GetControlVal(iText->Id(), false).Int(), 223);
}

TEST_F(CVelumCardViewListsTest, AComboWithoutAPartnerAsserts) {
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

TEST_F(CVelumCardViewListsTest, AListWhoseTextHasNoPlaceIsAskedAboutOnce) {
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

TEST_F(CVelumCardViewListsTest, ALayoutBringsTheLinesOfAComboToItsBox) {
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

TEST_F(CVelumCardViewListsTest, AComboNeverShowsCards) {
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

TEST_F(CVelumCardViewListsTest, ATextOfAComboThatIsNoTextAsserts) {
  AddCombo(u"1\r\n2"_s, EConInteger);
  const auto card = AddCard(u"a"_s);
  card->SetControlVal(iText->Id(), TVelumValue::OfInt(5));
  Open();
  iText->SetConType(EConText);
  EXPECT_THROW(View().CardView()->SetBaseControlVal(*iList, TVelumValue::OfStr(u"1"_s), *card),
               CVelumException);
  EXPECT_TRUE(iPresenter.LastText().contains(u"Partner str"_s)) << iPresenter.LastText().toStdString();
}

TEST_F(CVelumCardViewListsTest, AListShowsItsLinesAndAClickOnThemGoesNowhere) {
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

TEST_F(CVelumCardViewListsTest, ACardListShowsOtherCardsAndGoesToThem) {
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

TEST_F(CVelumCardViewListsTest, ADoubleClickOnACardDoesNotReachTheNextCard) {
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

TEST_F(CVelumCardViewListsTest, ADisabledComboCannotBeUsed) {
  AddCombo(u"Bern\r\nBonn"_s);
  iText->SetFlag(EConDisabled, true);
  AddCard(u"a"_s);
  Open();
  EXPECT_FALSE(Base(iText).Enabled());
  EXPECT_FALSE(Label(iText).Enabled());
}

TEST_F(CVelumCardViewListsTest, AListFieldHasItsFontExactlyAsLargeAsItSays) {
  const auto list = AddField(iSet, u"List"_s, EConList);
  AddCard(u"a"_s);
  Open();
  EXPECT_EQ(ListOf(list).font().pointSizeF(), 11.0);
}

TEST_F(CVelumCardViewListsTest, AListOfOneLineHasNoBarOverItsLine) {
  const auto name = AddField(iSet, u"Name"_s, EConText);
  name->SetFlag(EConInCardList, true);
  name->SetListColTitle(u"Name"_s);
  name->SetListVisChar(90);
  const auto list = AddField(iSet, u"List"_s, EConList, EConCardList);
  list->SetSelBackgroundId(iSet->Id());
  list->SetVisLines(1);
  AddCard(u"a"_s);
  gStack->SetCardListsDirty(nullptr);
  Open();
  CVelumListWidget& widget = ListOf(list);
  ASSERT_GT(widget.model()->rowCount(), 0);
  EXPECT_FALSE(widget.horizontalHeader()->isHidden());
  EXPECT_FALSE(widget.horizontalScrollBar()->isVisible());
  EXPECT_EQ(widget.viewport()->height() + widget.horizontalHeader()->height() + 2 * widget.frameWidth(),
            widget.height())
      << "all that is left below the titles";
}

TEST_F(CVelumCardViewListsTest, TheLinesOfANarrowListHaveRoomToBeTyped) {
  const auto list = AddField(iSet, u"List"_s, EConList);
  list->SetVisChar(3);
  AddCard(u"a"_s);
  Open();
  View().EditLines(&Base(list));
  ASSERT_TRUE(LinesBox().Visible());
  EXPECT_EQ(Base(list).Width(), 3 * 100 + 50);
  EXPECT_EQ(LinesBox().Width(), 20 * 100) << "twenty characters";
}

TEST_F(CVelumCardViewListsTest, F2OpensTheLinesOfAListInATextBox) {
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

TEST_F(CVelumCardViewListsTest, ADoubleClickOpensTheLinesAndEscapeLeavesThem) {
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

TEST_F(CVelumCardViewListsTest, LinesAreNotLostWhenTheCardIsLeftOrTheStackSaved) {
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
  Resize(300, 300);
  EXPECT_EQ(TextOf(card, list), u"321"_s);
  type(u"4"_s);
  View().CloseCardView(true);
  EXPECT_EQ(TextOf(card, list), u"4321"_s);
}

TEST_F(CVelumCardViewListsTest, TheLinesOfAComboAreEditedToo) {
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

TEST_F(CVelumCardViewListsTest, LinesOfReadOnlyAndOfComputedListsAreNotEdited) {
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

TEST_F(CVelumCardViewListsTest, EmptyingTheStackDropsLinesThatAreBeingEdited) {
  const auto list = AddField(iSet, u"List"_s, EConList);
  AddCard(u"a"_s);
  Open();
  QTest::mouseDClick(ListOf(list).viewport(), Qt::LeftButton);
  QTest::keyClicks(LinesBox().Widget(), u"x"_s);
  View().EmptyStack();
  EXPECT_FALSE(LinesBox().Visible());
  View().AddCard(MakeRef<CVelumCard>(u"b"_s, iSet), nullptr);
  Ref<CVelumCard> card;
  EXPECT_TRUE(View().OrderFirst(card));
  View().ValidateCurControl();
  EXPECT_EQ(TextOf(card, list), QString());
}

TEST_F(CVelumCardViewListsTest, ANewLayoutBindsNothingOfTheOld) {
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
