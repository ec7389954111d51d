// RTF in a rich text box: links under the pointer, positions, colours, and the way back to plain text.
#include "toolkit/CVelumBaseRichTextBox.h"

#include "support/PrintQt.h"
#include "support/WidgetApp.h"
#include "toolkit/CVelumBaseColor.h"

#include <QHelpEvent>
#include <QScrollBar>
#include <QTest>
#include <QTextBlock>
#include <QTextEdit>
#include <QToolTip>
#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace {

const QString EHead =
    u"{\\rtf1{\\fonttbl {\\f0 DejaVu Sans;}}\r\n"
    u"{\\colortbl ;\\red0\\green-128\\blue0;\\red0\\green0\\blue0;}\r\n\\uc1\\pard\\f0\\fs20 "_s;

QString Rtf(const QString& aText) {
  return EHead + aText + u"\\par }"_s;
}

class CSink : public CVelumBaseSink {
public:
  void BaseEvent(CVelumBaseControl&, EBaseEvent aEvent, bool&) override { iSeen.append(aEvent); }
  QList<EBaseEvent> iSeen;
};

class CVelumBaseRichTextBoxTest : public testing::Test {
protected:
  CVelumBaseRichTextBoxTest() {
    iForm.resize(400, 300);
    iForm.show();
    iForm.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&iForm));
    iBox.SetSize(5000, 3000);
    iBox.SetLocked(true);
    iBox.SetVisible(true);
  }
  // A link from aFrom up to but excluding aTo.
  void Show(const QString& aText, int aFrom = 0, int aTo = 0) {
    iBox.SetRtf(Rtf(aText), [aFrom, aTo](int aPos, QString& aTarget) {
      aTarget = u"<b>Home</b>"_s;
      return aPos >= aFrom && aPos < aTo;
    });
  }
  [[nodiscard]] QTextEdit& Edit() { return *static_cast<QTextEdit*>(iBox.Widget()); }
  [[nodiscard]] QWidget* Port() { return Edit().viewport(); }
  // A point inside the character at a place of the document; aPart of its width from the left.
  [[nodiscard]] QPoint PointIn(int aPos, double aPart = 0.5) {
    QTextCursor cursor(Edit().document());
    cursor.setPosition(aPos);
    const QRect left = Edit().cursorRect(cursor);
    cursor.setPosition(aPos + 1);
    const QRect right = Edit().cursorRect(cursor);
    return {left.left() + static_cast<int>((right.left() - left.left()) * aPart), left.center().y()};
  }
  void Click(const QPoint& aPoint) { QTest::mouseClick(Port(), Qt::LeftButton, {}, aPoint); }
  void MoveTo(int aPos) {
    const QPoint point = PointIn(aPos);
    QMouseEvent event(QEvent::MouseMove, point, Port()->mapToGlobal(point), Qt::NoButton, Qt::NoButton, {});
    QApplication::sendEvent(Port(), &event);
  }
  [[nodiscard]] QTextCharFormat FormatAt(int aPos) {
    QTextCursor cursor(Edit().document());
    cursor.setPosition(aPos + 1);
    return cursor.charFormat();
  }
  [[nodiscard]] QColor ColorAt(int aPos) {
    const QTextCharFormat format = FormatAt(aPos);
    return format.hasProperty(QTextFormat::ForegroundBrush) ? format.foreground().color() : QColor();
  }
  void UsePalette(const QColor& aBack, const QColor& aText) {
    QPalette palette = iForm.palette();
    palette.setColor(QPalette::Base, aBack);
    palette.setColor(QPalette::Text, aText);
    iForm.setPalette(palette);
    iBox.RefreshColors();
  }

  QApplication& iApp = WidgetApp();
  CSink iSink;
  QWidget iForm;
  CVelumBaseRichTextBox iBox{u"fGenRichTextBox0"_s, &iForm, &iSink};
};

TEST_F(CVelumBaseRichTextBoxTest, ShowsRtfThatCannotBeTyped) {
  Show(u"a\\b1 b\\b0 \\par c"_s);
  EXPECT_EQ(iBox.Text(), u"ab\r\nc"_s);
  EXPECT_EQ(FormatAt(1).fontWeight(), int(QFont::Bold));
  iBox.SetFocus();
  QTest::keyClicks(&Edit(), u"xyz"_s);
  QTest::keyClick(&Edit(), Qt::Key_Delete);
  QTest::keyClick(&Edit(), Qt::Key_Return, Qt::ShiftModifier);
  Edit().paste();
  EXPECT_EQ(iBox.Text(), u"ab\r\nc"_s);
}

TEST_F(CVelumBaseRichTextBoxTest, AClickTellsTheCharacterUnderThePointer) {
  Show(u"see Home now\\par {b} c"_s, 4, 8);
  Click(PointIn(4, 0.1));
  EXPECT_EQ(iBox.ClickPos(), 4);
  Click(PointIn(7, 0.9));
  EXPECT_EQ(iBox.ClickPos(), 7) << "the right half of the last character still belongs to it";
  Click(PointIn(13));
  EXPECT_EQ(iBox.ClickPos(), 15) << "two for the paragraph, and one for the brace";
  Click(PointIn(15));
  EXPECT_EQ(iBox.ClickPos(), 18);
  EXPECT_EQ(iSink.iSeen.count(EBaseClick), 4);
}

TEST_F(CVelumBaseRichTextBoxTest, AClickBesideTheTextHitsNothing) {
  Show(u"Home"_s, 0, 5);
  Click(PointIn(3) + QPoint(60, 0));
  EXPECT_EQ(iBox.ClickPos(), -1);
  Click(PointIn(0) + QPoint(0, 60));
  EXPECT_EQ(iBox.ClickPos(), -1);
  QTest::mouseClick(Port(), Qt::RightButton, {}, PointIn(0));
  EXPECT_EQ(iSink.iSeen.count(EBaseClick), 2) << "the right button follows no link";
}

TEST_F(CVelumBaseRichTextBoxTest, ThePointerIsAHandOverALink) {
  Show(u"see Home now"_s, 4, 8);
  MoveTo(5);
  EXPECT_EQ(Port()->cursor().shape(), Qt::PointingHandCursor);
  MoveTo(9);
  EXPECT_EQ(Port()->cursor().shape(), Qt::IBeamCursor);
}

TEST_F(CVelumBaseRichTextBoxTest, AToolTipTellsTheTarget) {
  Show(u"see Home now"_s, 4, 8);
  const auto tip = [this](int aPos) {
    const QPoint point = PointIn(aPos);
    QHelpEvent event(QEvent::ToolTip, point, Port()->mapToGlobal(point));
    QApplication::sendEvent(Port(), &event);
    return QToolTip::text();
  };
  EXPECT_TRUE(tip(5).contains(u"&lt;b&gt;Home&lt;/b&gt;"_s)) << QToolTip::text().toStdString();
  tip(0);
  QTRY_VERIFY_WITH_TIMEOUT(!QToolTip::isVisible(), 3000);
}

TEST_F(CVelumBaseRichTextBoxTest, EnterStandsForAClickOnALink) {
  Show(u"see Home now"_s, 4, 8);
  iBox.SetFocus();
  QTest::keyClick(&Edit(), Qt::Key_Return);
  EXPECT_EQ(iSink.iSeen.count(EBaseClick), 0) << "no link at the cursor";
  iBox.SetCursor(5);
  QTest::keyClick(&Edit(), Qt::Key_Return);
  EXPECT_EQ(iSink.iSeen.count(EBaseClick), 1);
  EXPECT_EQ(iBox.ClickPos(), 5);
}

TEST_F(CVelumBaseRichTextBoxTest, ADoubleClickOnALinkIsTwoClicks) {
  Show(u"see Home now"_s, 4, 8);
  const auto doubleClick = [this](int aPos) {
    Click(PointIn(aPos));
    QTest::mouseDClick(Port(), Qt::LeftButton, {}, PointIn(aPos));
  };
  doubleClick(5);
  EXPECT_EQ(iSink.iSeen.count(EBaseDblClick), 0);
  doubleClick(0);
  EXPECT_EQ(iSink.iSeen.count(EBaseDblClick), 1);
}

TEST_F(CVelumBaseRichTextBoxTest, CountsTheSelectionAsTheTextIsStored) {
  Show(u"ab\\par {c}d"_s);
  Edit().selectAll();
  EXPECT_EQ(iBox.SelStart(), 0);
  EXPECT_EQ(iBox.SelLen(), 8);
  iBox.SetLocked(false);
  iBox.SetText(u"ab\r\ncd"_s);
  iBox.Select(1, 4);
  EXPECT_EQ(Edit().textCursor().selectedText(), u"b\u2029c"_s);
  EXPECT_EQ(iBox.SelStart(), 1);
  EXPECT_EQ(iBox.SelLen(), 4);
}

TEST_F(CVelumBaseRichTextBoxTest, SurroundsAPartInOneStep) {
  iBox.SetLocked(false);
  iBox.SetText(u"a\r\nbc d"_s);
  EXPECT_TRUE(iBox.Surround(3, 2, u"[["_s, u"]]"_s));
  EXPECT_EQ(iBox.Text(), u"a\r\n[[bc]] d"_s);
  EXPECT_EQ(iBox.SelStart(), 9);
  Edit().undo();
  EXPECT_EQ(iBox.Text(), u"a\r\nbc d"_s);
  EXPECT_TRUE(iBox.Surround(0, 0, u"[["_s, u"]]"_s));
  EXPECT_EQ(iBox.Text(), u"[[]]a\r\nbc d"_s);
  iBox.SetMaxChar(12);
  EXPECT_FALSE(iBox.Surround(0, 1, u"[["_s, u"]]"_s)) << "too long";
  EXPECT_EQ(iBox.Text(), u"[[]]a\r\nbc d"_s);
}

TEST_F(CVelumBaseRichTextBoxTest, TheSameRtfStaysWhereItIs) {
  Show(u"a\\par "_s.repeated(200) + u"b"_s);
  Edit().verticalScrollBar()->setValue(300);
  const int scrolled = Edit().verticalScrollBar()->value();
  EXPECT_GT(scrolled, 0);
  Show(u"a\\par "_s.repeated(200) + u"b"_s);
  EXPECT_EQ(Edit().verticalScrollBar()->value(), scrolled);
  Show(u"a\\par "_s.repeated(200) + u"c"_s);
  EXPECT_EQ(Edit().verticalScrollBar()->value(), 0) << "another text begins at its beginning";
}

TEST_F(CVelumBaseRichTextBoxTest, LinksAreReadableInLightAndDark) {
  Show(u"a\\cf1 link\\cf0 \\cf2 black"_s);
  UsePalette(Qt::white, Qt::black);
  EXPECT_EQ(ColorAt(1), QColor(0, 128, 0));
  EXPECT_FALSE(ColorAt(0).isValid()) << "the palette's own";
  UsePalette(QColor(30, 30, 30), Qt::white);
  EXPECT_NE(ColorAt(1), QColor(0, 128, 0));
  EXPECT_GE(CVelumBaseColor::Contrast(ColorAt(1), QColor(30, 30, 30)), 4.5);
  iBox.SetForeColor(0);
  iBox.RefreshColors();
  EXPECT_FALSE(ColorAt(5).isValid()) << "black is the default of fonts";
  UsePalette(Qt::white, Qt::black);
  EXPECT_EQ(ColorAt(1), QColor(0, 128, 0)) << "and back";
  iBox.SetBackColor(0x200000);
  EXPECT_GE(CVelumBaseColor::Contrast(ColorAt(1), QColor(0, 0, 32)), 4.5) << "on a dark field";
}

TEST_F(CVelumBaseRichTextBoxTest, ANewPaletteLeavesThePlace) {
  Show(u"a\\par "_s.repeated(200) + u"b"_s);
  iBox.SetCursor(7);
  Edit().verticalScrollBar()->setValue(300);
  const int scrolled = Edit().verticalScrollBar()->value();
  UsePalette(QColor(30, 30, 30), Qt::white);
  EXPECT_EQ(Edit().verticalScrollBar()->value(), scrolled);
  EXPECT_EQ(iBox.Cursor(), 7);
}

TEST_F(CVelumBaseRichTextBoxTest, PlainTextAfterRtfIsPlain) {
  Show(u"\\b1 \\fs60 \\cf1 ab"_s, 0, 2);
  MoveTo(0);
  iBox.SetLocked(false);
  iBox.SetText(u"ab"_s);
  EXPECT_NE(FormatAt(0).fontWeight(), int(QFont::Bold));
  EXPECT_FALSE(ColorAt(0).isValid());
  EXPECT_FALSE(FormatAt(0).hasProperty(QTextFormat::FontPointSize));
  EXPECT_EQ(Port()->cursor().shape(), Qt::IBeamCursor);
  iBox.SetFocus();
  QTest::keyClick(&Edit(), Qt::Key_End, Qt::ControlModifier);
  QTest::keyClicks(&Edit(), u"c"_s);
  EXPECT_EQ(iBox.Text(), u"abc"_s);
  EXPECT_NE(FormatAt(2).fontWeight(), int(QFont::Bold));
  Edit().undo();
  EXPECT_EQ(iBox.Text(), u"ab"_s) << "and undo does not bring the RTF back";
  QTest::keyClick(&Edit(), Qt::Key_Return);
  EXPECT_EQ(iSink.iSeen.count(EBaseClick), 0);
}

TEST_F(CVelumBaseRichTextBoxTest, ClearEndsTheRtf) {
  Show(u"Home"_s, 0, 4);
  const QPoint link = PointIn(1);
  iBox.Clear();
  EXPECT_EQ(iBox.Text(), QString());
  Click(link);
  EXPECT_EQ(iBox.ClickPos(), -1);
  Show(u"Home"_s, 0, 4);
  EXPECT_EQ(iBox.Text(), u"Home"_s) << "the same again is shown again";
}

} // namespace
