// Entries that are no value of their field: they stay, with a note, and nothing leaves them behind.
#include "core/CVelumMsg.h"
#include "runtime/StackViewTest.h"
#include "runtime/script/CVelumViewScriptHost.h"
#include "script/CVelumInterpreter.h"
#include "support/Raised.h"
#include "toolkit/CVelumBaseCheckBox.h"
#include "toolkit/CVelumBaseRichTextBox.h"

#include <QClipboard>
#include <QComboBox>
#include <QLineEdit>
#include <QTest>
#include <QTextEdit>

namespace {

class CVelumStackViewEntryTest : public StackViewTest {
protected:
  // Two cards with the value 7 in "Num", a text "Name" and a yes-or-no "Done".
  void OpenWithNumber(qint32 aType = EConInteger) {
    iNum = AddField(iSet, u"Num"_s, aType);
    iName = AddField(iSet, u"Name"_s, EConText);
    iDone = AddField(iSet, u"Done"_s, EConBoolean);
    for (const auto& name : {u"a"_s, u"b"_s}) iCards.append(AddCard(name));
    iCards[0]->SetControlVal(iNum->Id(), CVelumValueOf(aType));
    Open(6000, 9000);
    iRunner.iSent.clear();
  }
  static TVelumValue CVelumValueOf(qint32 aType) {
    if (aType == EConDate) return TVelumValue::OfDate(36000);
    if (aType == EConTime) return TVelumValue::OfTime(0.5);
    return aType == EConReal ? TVelumValue::OfReal(7) : TVelumValue::OfInt(7);
  }
  void Replace(const QString& aText) {
    Base(iNum).SetFocus();
    QTest::keyClick(Base(iNum).Widget(), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(Base(iNum).Widget(), aText);
  }
  void ExpectRefused(const QString& aText) {
    QCoreApplication::processEvents();
    EXPECT_TRUE(Base(iNum).HasFocus());
    EXPECT_EQ(Base(iNum).Text(), aText);
    EXPECT_TRUE(Base(iNum).Note().contains(aText)) << Base(iNum).Note().toStdString();
    EXPECT_EQ(iCards[0]->GetControlVal(iNum->Id(), false).Int(), 7);
    EXPECT_EQ(Cur(), u"a"_s);
    EXPECT_EQ(View().CurObj(), &Base(iNum));
    EXPECT_TRUE(View().CurObjChanged());
  }

  Ref<CVelumControl> iNum;
  Ref<CVelumControl> iDone;
};

TEST_F(CVelumStackViewEntryTest, TheFocusStaysAndANoteSaysWhy) {
  OpenWithNumber();
  Replace(u"12x"_s);
  EXPECT_EQ(Base(iNum).Note(), QString()) << "not while it is typed";
  QTest::keyClick(Base(iNum).Widget(), Qt::Key_Tab);
  ExpectRefused(u"12x"_s);
  EXPECT_EQ(Base(iNum).Note(), u"\"12x\" is no whole number that this field can hold, such as 1234. "
                               u"Esc brings back what was there."_s);
  EXPECT_TRUE(iRunner.iSent.isEmpty()) << "the field was not left";
  EXPECT_EQ(iPresenter.Count(), 0) << "no box in the way";
}

TEST_F(CVelumStackViewEntryTest, WhatIsMendedIsTaken) {
  OpenWithNumber();
  Replace(u"12x"_s);
  QTest::keyClick(Base(iNum).Widget(), Qt::Key_Tab);
  QCoreApplication::processEvents();
  QTest::keyClick(Base(iNum).Widget(), Qt::Key_End);
  QTest::keyClick(Base(iNum).Widget(), Qt::Key_Backspace);
  EXPECT_EQ(Base(iNum).Note(), QString());
  QTest::keyClick(Base(iNum).Widget(), Qt::Key_Tab);
  QCoreApplication::processEvents();
  EXPECT_TRUE(Base(iName).HasFocus());
  EXPECT_EQ(View().CurObj(), &Base(iName));
  EXPECT_EQ(iCards[0]->GetControlVal(iNum->Id(), false).Int(), 12);
  EXPECT_EQ(iRunner.iSent, QStringList{u"closeField a.Num"_s});
}

TEST_F(CVelumStackViewEntryTest, EscapeBringsBackWhatWasThere) {
  OpenWithNumber();
  Replace(u"12x"_s);
  EXPECT_FALSE(View().ValidateCurControl());
  QTest::keyClick(Base(iNum).Widget(), Qt::Key_Escape);
  EXPECT_EQ(Base(iNum).Text(), u"7"_s);
  EXPECT_EQ(Base(iNum).Note(), QString());
  EXPECT_TRUE(View().ValidateCurControl());
  EXPECT_EQ(iCards[0]->GetControlVal(iNum->Id(), false).Int(), 7);
  EXPECT_EQ(iRunner.iSent, QStringList{u"exitField a.Num"_s});
  Replace(u"12"_s);
  QTest::keyClick(Base(iNum).Widget(), Qt::Key_Escape);
  EXPECT_EQ(Base(iNum).Text(), u"12"_s) << "what can be taken stays";
}

TEST_F(CVelumStackViewEntryTest, EachTypeSaysWhatItTakes) {
  const std::tuple<qint32, QString, QString> cases[] = {
      {EConReal, u"1,5"_s, u"no number"_s},
      {EConReal, u"12 34"_s, u"no number"_s},
      {EConDate, u"30/02/1999"_s, u"no date"_s},
      {EConTime, u"25:99"_s, u"no time"_s},
  };
  for (const auto& [type, entry, what] : cases) {
    const auto field = AddField(iSet, entry, type);
    const auto card = AddCard(u"x"_s);
    card->SetControlVal(field->Id(), CVelumValueOf(type));
    if (!gStackView) Open(6000, 9000);
    View().RefreshViews(true, false);
    View().GoToCard(card);
    const QString before = Base(field).Text();
    Base(field).SetFocus();
    QTest::keyClick(Base(field).Widget(), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(Base(field).Widget(), entry);
    EXPECT_FALSE(View().ValidateCurControl()) << entry.toStdString();
    EXPECT_TRUE(Base(field).Note().contains(what)) << Base(field).Note().toStdString();
    EXPECT_EQ(TextOf(card, field), before);
    EXPECT_TRUE(View().TakeBackEntry());
    EXPECT_EQ(Base(field).Text(), before);
  }
}

TEST_F(CVelumStackViewEntryTest, LeafingIsRefused) {
  OpenWithNumber();
  View().GoToCard(iCards[1]);
  View().GoToCard(iCards[0]);
  Replace(u"12x"_s);
  Ref<CVelumCard> card;
  View().GoToCard(iCards[1]);
  ExpectRefused(u"12x"_s);
  static_cast<void>(View().OrderNext(card));
  ExpectRefused(u"12x"_s);
  static_cast<void>(View().OrderLast(card));
  ExpectRefused(u"12x"_s);
  const int index = View().History().Index();
  EXPECT_FALSE(View().HistoryPrev(card));
  EXPECT_FALSE(View().HistoryNext(card));
  ExpectRefused(u"12x"_s);
  EXPECT_EQ(View().History().Index(), index);
  QTest::keyClick(Base(iNum).Widget(), Qt::Key_Escape);
  View().GoToCard(iCards[1]);
  EXPECT_EQ(Cur(), u"b"_s);
}

TEST_F(CVelumStackViewEntryTest, OtherControlsWait) {
  const auto go = AddField(iSet, u"Go"_s, EConCommand, EConAsButton);
  const auto list = AddField(iSet, u"List"_s, EConList);
  OpenWithNumber();
  Replace(u"12x"_s);
  QTest::mouseClick(Base(go).Widget(), Qt::LeftButton);
  EXPECT_EQ(iRunner.CountOf(u"select"_s), 0);
  ExpectRefused(u"12x"_s);
  QTest::mouseClick(Base(iDone).Widget(), Qt::LeftButton, {}, QPoint(8, 10));
  ExpectRefused(u"12x"_s);
  EXPECT_EQ(static_cast<CVelumBaseCheckBox&>(Base(iDone)).Value(), 0);
  EXPECT_FALSE(iCards[0]->GetControlVal(iDone->Id(), false).Boolean());
  View().EditLines(&Base(list));
  EXPECT_FALSE(Form().LinesBox().Visible());
  static_cast<QLineEdit*>(Base(iName).Widget())->insert(u"dropped"_s);
  ExpectRefused(u"12x"_s);
  EXPECT_EQ(Base(iName).Text(), QString()) << "not left standing where it would be forgotten";
}

TEST_F(CVelumStackViewEntryTest, ALinkWaits) {
  const auto wiki = AddField(iSet, u"Wiki"_s, EConText, EConWikiText);
  OpenWithNumber();
  Replace(u"12x"_s);
  View().BaseObjLink(&Base(wiki), u"b"_s);
  View().BaseObjLink(&Base(wiki), u"select:x"_s);
  ExpectRefused(u"12x"_s);
  EXPECT_EQ(iRunner.CountOf(u"select"_s), 0);
}

TEST_F(CVelumStackViewEntryTest, AResizeKeepsTheEntryAndItsNote) {
  OpenWithNumber();
  Replace(u"12x"_s);
  EXPECT_FALSE(View().ValidateCurControl());
  Base(iNum).SetCursor(1);
  Resize(500, 400);
  ExpectRefused(u"12x"_s);
  EXPECT_EQ(Base(iNum).Cursor(), 1);
  View().RefreshViews(true, false);
  ExpectRefused(u"12x"_s);
  QTest::keyClick(Base(iNum).Widget(), Qt::Key_Escape);
  EXPECT_EQ(Base(iNum).Text(), u"7"_s);
}

TEST_F(CVelumStackViewEntryTest, ACardThatIsDeletedTakesItsEntryAlong) {
  OpenWithNumber();
  Replace(u"12x"_s);
  View().DeleteCard(iCards[0], nullptr);
  EXPECT_EQ(Cur(), u"b"_s);
  EXPECT_EQ(Base(iNum).Text(), QString());
  EXPECT_EQ(Base(iNum).Note(), QString());
}

TEST_F(CVelumStackViewEntryTest, AViewThatIsReleasedKeepsTheValueOfBefore) {
  OpenWithNumber();
  Replace(u"12x"_s);
  View().CloseCardView(true);
  EXPECT_EQ(iCards[0]->GetControlVal(iNum->Id(), false).Int(), 7);
  EXPECT_EQ(Base(iNum).Note(), QString());
  EXPECT_EQ(iRunner.iSent, QStringList{u"exitField a.Num"_s});
}

TEST_F(CVelumStackViewEntryTest, AFieldThatIsReadOnlySaysThatAndNoMore) {
  OpenWithNumber();
  iNum->SetFlag(EConReadOnly, true);
  Replace(u"12x"_s);
  EXPECT_TRUE(View().ValidateCurControl());
  EXPECT_EQ(iPresenter.Told(), QList<QString>{u"Read-only!"_s});
  EXPECT_EQ(Base(iNum).Text(), u"7"_s);
}

TEST_F(CVelumStackViewEntryTest, AValueThatIsShownAsItCannotBeReadIsNoWrongEntry) {
  OpenWithNumber(EConDate);
  iCards[0]->SetControlVal(iNum->Id(), TVelumValue::OfDate(-690000)); // a year of two digits
  View().RefreshViews(true, false);
  const QString shown = Base(iNum).Text();
  Type(iNum, u"x"_s);
  EXPECT_FALSE(View().ValidateCurControl());
  QTest::keyClick(Base(iNum).Widget(), Qt::Key_Backspace);
  EXPECT_EQ(Base(iNum).Text(), shown);
  EXPECT_TRUE(View().ValidateCurControl());
  EXPECT_EQ(iCards[0]->GetControlVal(iNum->Id(), false).Date(), -690000);
}

TEST_F(CVelumStackViewEntryTest, ACombosNumberIsHeldToTheSame) {
  iNum = AddField(iSet, u"Num"_s, EConInteger, EConComboText);
  const auto list = AddField(iSet, u"Nums"_s, EConList, EConComboList);
  iNum->SetPartnerId(list->Id());
  list->SetPartnerId(iNum->Id());
  list->SetDefaultVal(u"7\r\n8"_s);
  iCards.append(AddCard(u"a"_s));
  iCards[0]->SetControlVal(iNum->Id(), TVelumValue::OfInt(7));
  Open();
  Replace(u"12x"_s);
  EXPECT_FALSE(View().ValidateCurControl());
  ExpectRefused(u"12x"_s);
  QTest::keyClick(Base(iNum).Widget(), Qt::Key_Escape);
  EXPECT_EQ(Base(iNum).Text(), u"7"_s);
}

TEST_F(CVelumStackViewEntryTest, AScriptThatLeafsStops) {
  OpenWithNumber();
  Replace(u"12x"_s);
  CVelumViewScriptHost host;
  EXPECT_EQ(Raised([&] { host.GoToCard(iCards[1]); }), EHostBadCall);
  EXPECT_EQ(Raised([&] { host.GoToNextCard(); }), EHostBadCall);
  ExpectRefused(u"12x"_s);
  CVelumScriptRunner::Install(&iRunner);
}

// --- Pastes

TEST_F(CVelumStackViewEntryTest, APasteThatIsCutSaysSo) {
  const auto text = AddField(iSet, u"Text"_s, EConText);
  text->SetVisLines(3);
  const auto card = AddCard(u"a"_s);
  Open();
  QApplication::clipboard()->setText(QString(28000, u'x'));
  Base(text).SetFocus();
  QTest::keyClick(Base(text).Widget(), Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(Base(text).Text().size(), 15000);
  EXPECT_EQ(Base(text).Note(), u"13,000 characters did not fit. No more than 15,000 can stand here."_s);
  View().ValidateCurControl();
  EXPECT_EQ(card->GetControlVal(text->Id(), false).Str().size(), 15000);
}

TEST_F(CVelumStackViewEntryTest, APasteIntoOneLineIsStoredAsItIsSeen) {
  OpenThree();
  QApplication::clipboard()->setText(u"one\r\ntwo\nthree\tfour"_s);
  Base(iName).SetFocus();
  QTest::keyClick(Base(iName).Widget(), Qt::Key_V, Qt::ControlModifier);
  View().ValidateCurControl();
  EXPECT_EQ(TextOf(iCards[0], iName), u"one two three four"_s);
}

TEST_F(CVelumStackViewEntryTest, CtrlUPutsTheClipboardIntoAWikiFieldAndShowsIt) {
  const auto wiki = AddField(iSet, u"Wiki"_s, EConText, EConWikiText);
  const auto card = AddCard(u"a"_s);
  Open();
  QApplication::clipboard()->setText(u"see **this**\nnow\u00A0"_s);
  Base(wiki).SetFocus();
  QTest::keyClick(Base(wiki).Widget(), Qt::Key_U, Qt::ControlModifier);
  EXPECT_EQ(card->GetControlVal(wiki->Id(), false).Str(), u"see **this**\r\nnow\u00A0"_s);
  EXPECT_EQ(Base(wiki).Text(), u"see this now\u00A0"_s);
  QApplication::clipboard()->setText(QString(15001, u'x'));
  QTest::keyClick(Base(wiki).Widget(), Qt::Key_U, Qt::ControlModifier);
  EXPECT_EQ(card->GetControlVal(wiki->Id(), false).Str().size(), 15000);
  EXPECT_TRUE(Base(wiki).Note().startsWith(u"One character did not fit."_s));
  QApplication::clipboard()->clear();
  QTest::keyClick(Base(wiki).Widget(), Qt::Key_U, Qt::ControlModifier);
  EXPECT_EQ(card->GetControlVal(wiki->Id(), false).Str().size(), 15000) << "nothing to paste";
}

TEST_F(CVelumStackViewEntryTest, CtrlUKeepsToFieldsThatMayBeChanged) {
  const auto wiki = AddField(iSet, u"Wiki"_s, EConText, EConWikiText | EConReadOnly);
  const auto card = AddCard(u"a"_s);
  card->SetControlVal(wiki->Id(), TVelumValue::OfStr(u"old"_s));
  Open();
  QApplication::clipboard()->setText(u"new"_s);
  Base(wiki).SetFocus();
  QTest::keyClick(Base(wiki).Widget(), Qt::Key_U, Qt::ControlModifier);
  EXPECT_EQ(card->GetControlVal(wiki->Id(), false).Str(), u"old"_s);
  EXPECT_EQ(Base(wiki).Text(), u"old"_s);
  EXPECT_EQ(iPresenter.Told(), QList<QString>{u"Read-only!"_s});
}

TEST_F(CVelumStackViewEntryTest, CtrlUIsNoKeyOfALongText) {
  const auto text = AddField(iSet, u"Text"_s, EConText);
  text->SetVisLines(3);
  const auto card = AddCard(u"a"_s);
  card->SetControlVal(text->Id(), TVelumValue::OfStr(u"old"_s));
  Open();
  QApplication::clipboard()->setText(u"new"_s);
  Base(text).SetFocus();
  QTest::keyClick(Base(text).Widget(), Qt::Key_U, Qt::ControlModifier);
  EXPECT_EQ(Base(text).Text(), u"old"_s);
  View().ValidateCurControl();
  EXPECT_EQ(TextOf(card, text), u"old"_s);
}

// --- Selections

TEST_F(CVelumStackViewEntryTest, ASelectionWithoutTheFocusIsPale) {
  const auto text = AddField(iSet, u"Text"_s, EConText);
  text->SetVisLines(3);
  const auto other = AddField(iSet, u"Other"_s, EConText);
  const auto card = AddCard(u"a"_s);
  Open();
  auto* edit = static_cast<QTextEdit*>(Base(text).Widget());
  const QColor full = edit->palette().color(QPalette::Active, QPalette::Highlight);
  const auto count = [&] {
    const QImage image = edit->viewport()->grab().toImage();
    int pixels = 0;
    for (int y = 0; y < image.height(); ++y)
      for (int x = 0; x < image.width(); ++x) pixels += image.pixelColor(x, y) == full ? 1 : 0;
    return pixels;
  };
  card->SetControlVal(text->Id(), TVelumValue::OfStr(u"a  b"_s));
  View().RefreshViews(true, false);
  Base(text).SetFocus();
  edit->selectAll();
  EXPECT_GT(count(), 20);
  Base(other).SetFocus();
  EXPECT_EQ(count(), 0);
  EXPECT_TRUE(edit->textCursor().hasSelection());
}

} // namespace
