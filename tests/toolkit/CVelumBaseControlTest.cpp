#include "core/CVelumSeams.h"
#include "support/PrintQt.h"
#include "support/WidgetApp.h"
#include "toolkit/CVelumBaseButton.h"
#include "toolkit/CVelumBaseCheckBox.h"
#include "toolkit/CVelumBaseColor.h"
#include "toolkit/CVelumBaseComboBox.h"
#include "toolkit/CVelumBaseLabel.h"
#include "toolkit/CVelumBaseMeasure.h"
#include "toolkit/CVelumBaseRichTextBox.h"
#include "toolkit/CVelumBaseTextBox.h"

#include <QCheckBox>
#include <QClipboard>
#include <QLineEdit>
#include <QMenu>
#include <QTest>
#include <QTextEdit>
#include <QTimer>
#include <gtest/gtest.h>

namespace {

struct TSeen {
  QString iName;
  EBaseEvent iEvent;
  friend bool operator==(const TSeen&, const TSeen&) = default;
};

class CSink : public CVelumBaseSink {
public:
  void BaseEvent(CVelumBaseControl& aBase, EBaseEvent aEvent, bool& ioCancel) override {
    iSeen.append({aBase.Name(), aEvent});
    if (aEvent == EBaseValidate) ioCancel = iCancel;
  }
  [[nodiscard]] qsizetype CountOf(EBaseEvent aEvent) const {
    return std::count_if(iSeen.begin(), iSeen.end(),
                         [aEvent](const TSeen& aOne) { return aOne.iEvent == aEvent; });
  }
  QList<TSeen> iSeen;
  bool iCancel = false;
};

class CVelumBaseControlTest : public testing::Test {
protected:
  CVelumBaseControlTest() {
    iForm.resize(300, 200);
    iForm.show();
    iForm.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&iForm));
  }
  void Show(CVelumBaseControl& aBase, float aTop) {
    aBase.SetPlace(150, aTop);
    aBase.SetSize(3000, 600);
    aBase.SetVisible(true);
  }
  QApplication& iApp = WidgetApp(); // before any widget
  CSink iSink;
  QWidget iForm;
};

TEST_F(CVelumBaseControlTest, EdgesAreRoundedEachByItselfSoThatNeighboursNeitherOverlapNorPart) {
  CVelumBaseLabel first(u"fFirst"_s, &iForm);
  CVelumBaseLabel second(u"fSecond"_s, &iForm);
  float top = 7.0F;
  for (int i = 0; i < 40; ++i, top += 217.3F) {
    first.SetPlace(0, top);
    first.SetSize(100, 217.3F);
    second.SetPlace(0, top + 217.3F);
    second.SetSize(100, 50);
    EXPECT_EQ(first.Widget()->geometry().bottom() + 1, second.Widget()->geometry().top());
  }
  EXPECT_EQ(first.Height(), 217.3F) << "the exact size is kept";
}

TEST_F(CVelumBaseControlTest, ANudgeIsSeenButNotTold) {
  CVelumBaseLabel label(u"fLabel"_s, &iForm);
  label.SetPlace(0, 150);
  label.SetSize(300, 150);
  label.SetNudge(60);
  EXPECT_EQ(label.Widget()->geometry(), QRect(0, 14, 20, 10));
  EXPECT_EQ(label.Top(), 150);
}

TEST_F(CVelumBaseControlTest, PlacesBeyondAnyScreenAreHeld) {
  CVelumBaseLabel label(u"fLabel"_s, &iForm);
  label.SetPlace(1.0e30F, -1.0e30F);
  label.SetSize(1.0F, std::numeric_limits<float>::quiet_NaN());
  EXPECT_EQ(label.Widget()->geometry().left(), 100000);
  EXPECT_EQ(label.Widget()->geometry().top(), -100000);
  EXPECT_EQ(label.Left(), 1.0e30F);
}

TEST_F(CVelumBaseControlTest, StartsHiddenUnderItsName) {
  CVelumBaseTextBox box(u"fGenTextBox0"_s, &iForm, &iSink);
  EXPECT_FALSE(box.Visible());
  EXPECT_EQ(box.Name(), u"fGenTextBox0"_s);
  EXPECT_EQ(iForm.findChild<QLineEdit*>(u"fGenTextBox0"_s), box.Widget());
  box.SetVisible(true);
  EXPECT_TRUE(box.Visible());
  iForm.hide();
  EXPECT_TRUE(box.Visible()) << "hiding the form is not hiding the control";
  EXPECT_TRUE(iSink.iSeen.isEmpty());
}

TEST_F(CVelumBaseControlTest, FindsTheControlOfAnInnerWidget) {
  CVelumBaseRichTextBox box(u"fGenRichTextBox0"_s, &iForm, &iSink);
  auto* edit = static_cast<QTextEdit*>(box.Widget());
  EXPECT_EQ(CVelumBaseControl::OfWidget(edit->viewport()), &box);
  EXPECT_EQ(CVelumBaseControl::OfWidget(&iForm), nullptr);
  EXPECT_EQ(CVelumBaseControl::OfWidget(nullptr), nullptr);
}

TEST_F(CVelumBaseControlTest, TextBoxGivesTheTextRaw) {
  CVelumBaseTextBox box(u"fBox"_s, &iForm, &iSink);
  const QString text = u"a\u00A0b\tc\u2028d "_s;
  box.SetText(text);
  EXPECT_EQ(box.Text(), text);
  box.SetText(u"one\r\ntwo"_s);
  EXPECT_EQ(box.Text(), u"one\r\ntwo"_s);
  EXPECT_EQ(iSink.CountOf(EBaseChange), 2);
}

TEST_F(CVelumBaseControlTest, TextBoxShowsTheBeginningOfALongText) {
  CVelumBaseTextBox box(u"fBox"_s, &iForm, &iSink);
  box.SetText(QString(500, u'x'));
  EXPECT_EQ(static_cast<QLineEdit*>(box.Widget())->cursorPosition(), 0);
}

TEST_F(CVelumBaseControlTest, SettingTheSameTextKeepsTheSelection) {
  CVelumBaseTextBox box(u"fBox"_s, &iForm, &iSink);
  auto* edit = static_cast<QLineEdit*>(box.Widget());
  box.SetText(u"12"_s);
  edit->selectAll();
  box.SetText(u"12"_s);
  EXPECT_EQ(edit->selectedText(), u"12"_s);
}

TEST_F(CVelumBaseControlTest, RichTextBoxGivesTheTextRawWithCrLf) {
  CVelumBaseRichTextBox box(u"fBox"_s, &iForm, &iSink);
  box.SetText(u"a\u00A0b\r\n\r\n c\u2028d\r\n"_s);
  EXPECT_EQ(box.Text(), u"a\u00A0b\r\n\r\n c\u2028d\r\n"_s);
  box.SetText(u"a\nb\rc"_s);
  EXPECT_EQ(box.Text(), u"a\r\nb\r\nc"_s);
  box.SetText(u"<b>&amp;</b>"_s);
  EXPECT_EQ(box.Text(), u"<b>&amp;</b>"_s);
}

TEST_F(CVelumBaseControlTest, RichTextBoxTakesLineEndsByEnterAndShiftEnter) {
  CVelumBaseRichTextBox box(u"fBox"_s, &iForm, &iSink);
  Show(box, 0);
  box.SetFocus();
  QTest::keyClicks(box.Widget(), u"a"_s);
  QTest::keyClick(box.Widget(), Qt::Key_Return);
  QTest::keyClicks(box.Widget(), u"b"_s);
  QTest::keyClick(box.Widget(), Qt::Key_Return, Qt::ShiftModifier);
  QTest::keyClicks(box.Widget(), u"c"_s);
  EXPECT_EQ(box.Text(), u"a\r\nb\r\nc"_s);
}

TEST_F(CVelumBaseControlTest, ARichTextBoxOfNLinesIsAsHighAsTheyNeed) {
  CVelumScreenMeasure measure;
  CVelumBaseRichTextBox box(u"fBox"_s, &iForm, &iSink);
  for (const int size : {8, 9, 12, 20}) {
    const QFont font(u"DejaVu Sans"_s, size);
    box.SetFont(font);
    measure.SetFont(font);
    box.SetSize(3000, 3 * measure.TextHeight(u"A"_s) + 120);
    box.SetVisible(true);
    box.SetText(u"1\n2\n3"_s);
    auto* edit = static_cast<QTextEdit*>(box.Widget());
    EXPECT_LE(edit->document()->size().height(), edit->viewport()->height()) << size;
  }
}

TEST_F(CVelumBaseControlTest, CtrlUIsTheOnlyKeyThatIsToldByATextThatCannotBeTyped) {
  CVelumBaseRichTextBox box(u"fBox"_s, &iForm, &iSink);
  Show(box, 0);
  box.SetRtf(u"{\\rtf1 page}"_s, {});
  box.SetFocus();
  iSink.iSeen.clear();
  QTest::keyClick(box.Widget(), Qt::Key_U, Qt::ControlModifier);
  EXPECT_EQ(iSink.iSeen, (QList<TSeen>{{u"fBox"_s, EBasePaste}}));
}

TEST_F(CVelumBaseControlTest, CtrlUIsNoKeyOfATextThatIsTyped) {
  CVelumBaseRichTextBox box(u"fBox"_s, &iForm, &iSink);
  Show(box, 0);
  box.SetText(u"typed"_s);
  box.SetFocus();
  iSink.iSeen.clear();
  QTest::keyClick(box.Widget(), Qt::Key_U, Qt::ControlModifier);
  EXPECT_TRUE(iSink.iSeen.isEmpty());
  EXPECT_EQ(box.Text(), u"typed"_s);
  QTest::keyClick(box.Widget(), Qt::Key_Left);
  QTest::keyClick(box.Widget(), Qt::Key_E, Qt::ControlModifier);
  EXPECT_TRUE(iSink.iSeen.isEmpty());
  QTest::keyClick(box.Widget(), Qt::Key_U);
  EXPECT_EQ(iSink.iSeen, (QList<TSeen>{{u"fBox"_s, EBaseChange}}));
}

TEST_F(CVelumBaseControlTest, NothingCanBeTypedBeyondTheLimitButALongerTextStaysWhole) {
  CVelumBaseTextBox box(u"fBox"_s, &iForm, &iSink);
  Show(box, 0);
  box.SetMaxChar(5);
  box.SetText(u"abc"_s);
  box.SetFocus();
  static_cast<QLineEdit*>(box.Widget())->end(false);
  QTest::keyClicks(box.Widget(), u"defgh"_s);
  EXPECT_EQ(box.Text(), u"abcde"_s);
  box.SetText(u"0123456789"_s);
  EXPECT_EQ(box.Text(), u"0123456789"_s);
  QTest::keyClicks(box.Widget(), u"x"_s);
  EXPECT_EQ(box.Text(), u"0123456789"_s);
  box.SetText(u"ab"_s);
  QTest::keyClick(box.Widget(), Qt::Key_End);
  QTest::keyClicks(box.Widget(), u"cdefgh"_s);
  EXPECT_EQ(box.Text(), u"abcde"_s) << "the limit is back";
}

TEST_F(CVelumBaseControlTest, ARichTextBoxCutsWhatIsPastedAtTheLimit) {
  CVelumBaseRichTextBox box(u"fBox"_s, &iForm, &iSink);
  Show(box, 0);
  box.SetMaxChar(8);
  box.SetText(u"xyz"_s);
  box.SetFocus();
  auto* edit = static_cast<QTextEdit*>(box.Widget());
  edit->moveCursor(QTextCursor::Start);
  QApplication::clipboard()->setText(u"a\nb\nc"_s);
  edit->paste();
  EXPECT_EQ(box.Text(), u"a\r\nbxyz"_s) << "a line end is two units";
  QTest::keyClicks(edit, u"12"_s);
  EXPECT_EQ(box.Text(), u"a\r\nb1xyz"_s);
  box.SetText(u"0123456789"_s);
  EXPECT_EQ(box.Text(), u"0123456789"_s);
  QTest::keyClick(edit, Qt::Key_Delete);
  EXPECT_EQ(box.Text(), u"123456789"_s);
}

TEST_F(CVelumBaseControlTest, ALimitNeverSplitsAPairOfUnits) {
  CVelumBaseRichTextBox box(u"fBox"_s, &iForm, &iSink);
  Show(box, 0);
  box.SetMaxChar(3);
  box.SetFocus();
  static_cast<QTextEdit*>(box.Widget())->insertPlainText(u"ab\U0001F600"_s);
  EXPECT_EQ(box.Text(), u"ab"_s);
}

TEST_F(CVelumBaseControlTest, WithoutALimitATextIsHeldToWhatADocumentCanHold) {
  CVelumBaseRichTextBox box(u"fBox"_s, &iForm, &iSink);
  box.SetMaxChar(ENoShort);
  static_cast<QTextEdit*>(box.Widget())->insertPlainText(QString(20000, u'x'));
  EXPECT_EQ(box.Text().size(), 15000);
}

TEST_F(CVelumBaseControlTest, UndoNeverBringsBackWhatTheProgramReplaced) {
  CVelumBaseRichTextBox rich(u"fRich"_s, &iForm, &iSink);
  rich.SetText(u"card one"_s);
  rich.SetText(u"card two"_s);
  static_cast<QTextEdit*>(rich.Widget())->undo();
  EXPECT_EQ(rich.Text(), u"card two"_s);
  CVelumBaseTextBox line(u"fLine"_s, &iForm, &iSink);
  line.SetText(u"card one"_s);
  line.SetText(u"card two"_s);
  static_cast<QLineEdit*>(line.Widget())->undo();
  EXPECT_EQ(line.Text(), u"card two"_s);
}

TEST_F(CVelumBaseControlTest, FocusGoesWithGotFocusAndLeavesWithValidateFirst) {
  CVelumBaseTextBox one(u"f1"_s, &iForm, &iSink);
  CVelumBaseTextBox two(u"f2"_s, &iForm, &iSink);
  Show(one, 0);
  Show(two, 700);
  one.SetFocus();
  QTest::mouseClick(two.Widget(), Qt::LeftButton);
  EXPECT_EQ(iSink.iSeen,
            (QList<TSeen>{{u"f1"_s, EBaseGotFocus}, {u"f1"_s, EBaseValidate}, {u"f2"_s, EBaseGotFocus}}));
  EXPECT_TRUE(two.HasFocus());
  QTest::keyClick(two.Widget(), Qt::Key_Backtab, Qt::ShiftModifier);
  EXPECT_EQ(iSink.CountOf(EBaseValidate), 2);
}

TEST_F(CVelumBaseControlTest, ACancelledValidatePutsTheFocusBack) {
  CVelumBaseTextBox one(u"f1"_s, &iForm, &iSink);
  CVelumBaseTextBox two(u"f2"_s, &iForm, &iSink);
  Show(one, 0);
  Show(two, 700);
  one.SetFocus();
  iSink.iCancel = true;
  two.SetFocus();
  iSink.iCancel = false;
  QCoreApplication::processEvents();
  EXPECT_TRUE(one.HasFocus());
}

TEST_F(CVelumBaseControlTest, AMenuValidatesButTheBoxesOwnMenuDoesNot) {
  CVelumBaseTextBox one(u"f1"_s, &iForm, &iSink);
  Show(one, 0);
  one.SetFocus();
  iSink.iSeen.clear();
  {
    QMenu own(one.Widget());
    own.addAction(u"Paste"_s);
    own.popup({0, 0});
    QCoreApplication::processEvents();
    EXPECT_EQ(iSink.CountOf(EBaseValidate), 0);
    own.close();
  }
  QMenu menu(&iForm);
  menu.addAction(u"Save"_s);
  menu.popup({0, 0});
  QCoreApplication::processEvents();
  EXPECT_EQ(iSink.CountOf(EBaseValidate), 1);
  EXPECT_TRUE(one.HasFocus());
  menu.close();
}

TEST_F(CVelumBaseControlTest, AnotherWindowValidates) {
  CVelumBaseTextBox one(u"f1"_s, &iForm, &iSink);
  Show(one, 0);
  one.SetFocus();
  QWidget other;
  other.show();
  other.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
  EXPECT_EQ(iSink.CountOf(EBaseValidate), 1);
}

TEST_F(CVelumBaseControlTest, CheckBoxClicksOnEachChangeOfItsValueAndOnNoOther) {
  CVelumBaseCheckBox box(u"fBox"_s, &iForm, &iSink);
  Show(box, 0);
  box.SetValue(0);
  EXPECT_EQ(iSink.CountOf(EBaseClick), 0);
  box.SetValue(1);
  EXPECT_EQ(iSink.CountOf(EBaseClick), 1);
  EXPECT_EQ(box.Value(), 1);
  QTest::mouseClick(box.Widget(), Qt::LeftButton, {}, QPoint(8, 20));
  EXPECT_EQ(iSink.CountOf(EBaseClick), 2);
  EXPECT_EQ(box.Value(), 0);
  box.SetValue(2);
  EXPECT_EQ(box.Value(), 2);
}

TEST_F(CVelumBaseControlTest, ComboTellsTypingAsChangeAndAChoiceAsClick) {
  CVelumBaseComboBox combo(u"fCombo"_s, &iForm, &iSink);
  Show(combo, 0);
  combo.SetText(u"x\u00A0"_s);
  EXPECT_EQ(combo.Text(), u"x\u00A0"_s);
  EXPECT_EQ(iSink.CountOf(EBaseChange), 1);
  EXPECT_EQ(combo.ListCount(), 0);
  EXPECT_GT(combo.NaturalHeight(), 0.0F);
  combo.Clear();
  EXPECT_EQ(combo.Text(), QString());
}

TEST_F(CVelumBaseControlTest, ButtonShowsAnAmpersandAsItself) {
  CVelumBaseButton button(u"fButton"_s, &iForm, &iSink);
  Show(button, 0);
  button.SetText(u"Fish & Chips"_s);
  EXPECT_EQ(button.Text(), u"Fish & Chips"_s);
  QTest::mouseClick(button.Widget(), Qt::LeftButton);
  EXPECT_EQ(iSink.CountOf(EBaseClick), 1);
}

TEST_F(CVelumBaseControlTest, StatedColoursAreExactAndUnsetOnesAreThePalettes) {
  CVelumBaseTextBox box(u"fBox"_s, &iForm, &iSink);
  const QPalette before = box.Widget()->palette();
  box.SetForeColor(0x0000FF);
  box.SetBackColor(0x00FFFF);
  EXPECT_EQ(box.Widget()->palette().color(QPalette::Text), QColor(255, 0, 0));
  EXPECT_EQ(box.Widget()->palette().color(QPalette::Base), QColor(255, 255, 0));
  box.SetForeColor(0);
  box.SetBackColor(ENoInt);
  EXPECT_EQ(box.Widget()->palette().color(QPalette::Text), before.color(QPalette::Text));
  EXPECT_EQ(box.Widget()->palette().color(QPalette::Base), before.color(QPalette::Base));
}

TEST(CVelumBaseColorTest, ConvertsBothWays) {
  EXPECT_EQ(CVelumBaseColor::ToColor(0x010203), QColor(3, 2, 1));
  EXPECT_EQ(CVelumBaseColor::FromColor(QColor(3, 2, 1)), 0x010203);
  EXPECT_FALSE(CVelumBaseColor::ToColor(ENoInt).isValid());
  EXPECT_EQ(CVelumBaseColor::FromColor({}), ENoInt);
}

TEST(CVelumBaseColorTest, ContrastIsOneToTwentyOne) {
  EXPECT_DOUBLE_EQ(CVelumBaseColor::Contrast(Qt::black, Qt::white), 21.0);
  EXPECT_DOUBLE_EQ(CVelumBaseColor::Contrast(Qt::red, Qt::red), 1.0);
}

TEST(CVelumBaseColorTest, TextOnTheDesktopsBackgroundCanBeRead) {
  const QColor dark(30, 30, 30);
  const TVelumColors navy = CVelumBaseColor::Resolve(0x800000, ENoInt, dark);
  EXPECT_GE(CVelumBaseColor::Contrast(navy.iText, dark), 4.5);
  EXPECT_GT(navy.iText.blue(), navy.iText.red()) << "it stays blue";
  EXPECT_EQ(CVelumBaseColor::Resolve(0x800000, ENoInt, Qt::white).iText, QColor(0, 0, 128));
}

TEST(CVelumBaseColorTest, TextOnAStatedBackgroundIsBlackUnlessThatCannotBeRead) {
  EXPECT_EQ(CVelumBaseColor::Resolve(0, 0x00FFFF, Qt::black).iText, QColor(Qt::black));
  EXPECT_EQ(CVelumBaseColor::Resolve(0, 0x400000, Qt::black).iText, QColor(Qt::white));
  EXPECT_EQ(CVelumBaseColor::Resolve(0x010101, 0x020202, Qt::white).iText, QColor(1, 1, 1));
}

TEST(CVelumBaseColorTest, AStatedCardIsLightPaperOnADarkDesktopToo) {
  QPalette dark(QColor(50, 50, 50), QColor(45, 45, 45));
  dark.setColor(QPalette::Base, QColor(20, 20, 20));
  dark.setColor(QPalette::Text, Qt::white);
  const QPalette card = CVelumBaseColor::CardPalette(0xC0FFFF, dark);
  EXPECT_EQ(card.color(QPalette::Window), QColor(255, 255, 192));
  EXPECT_EQ(card.color(QPalette::Base), QColor(Qt::white));
  EXPECT_EQ(card.color(QPalette::Text), QColor(Qt::black));
  EXPECT_EQ(card.color(QPalette::WindowText), QColor(Qt::black));
  EXPECT_EQ(CVelumBaseColor::CardPalette(0x400000, dark).color(QPalette::WindowText), QColor(Qt::white));
  EXPECT_EQ(CVelumBaseColor::CardPalette(ENoInt, dark).resolveMask(), QPalette().resolveMask());
}

TEST(CVelumBaseMeasureTest, MeanWidthIsThatOfTheSampleOfSeventyTwo) {
  class CCount : public CVelumBaseMeasure {
  public:
    [[nodiscard]] float TextHeight(const QString&) const override { return 200; }
    [[nodiscard]] float TextWidth(const QString& aText) const override {
      return static_cast<float>(aText.size()) * 90 + 72;
    }
  };
  EXPECT_EQ(CCount().AvgCharWidth(), 91.0F);
}

TEST(CVelumBaseMeasureTest, InstallsTheMetricsOfAFont) {
  WidgetApp();
  const TVelumMetrics before = CVelumSeams::Metrics();
  CVelumScreenMeasure::InstallMetrics(QFont(u"DejaVu Sans"_s, 8));
  const TVelumMetrics small = CVelumSeams::Metrics();
  CVelumScreenMeasure::InstallMetrics(QFont(u"DejaVu Sans"_s, 16));
  EXPECT_GT(CVelumSeams::Metrics().iCharHeight, small.iCharHeight);
  EXPECT_GT(CVelumSeams::Metrics().iAvgCharWidth, small.iAvgCharWidth);
  EXPECT_EQ(small.iFieldGapX, 130.0F);
  CVelumSeams::SetMetrics(before);
}

} // namespace
