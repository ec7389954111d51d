#include "toolkit/CVelumLineEdit.h"

#include "support/WidgetTest.h"
#include "toolkit/CVelumBaseComboBox.h"
#include "toolkit/CVelumBaseTextBox.h"

#include <QAction>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QDropEvent>
#include <QMenu>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::Literals::StringLiterals;

namespace {

class CVelumLineEditTest : public WidgetTest {
protected:
  CVelumLineEditTest() {
    iWindow.resize(300, 200);
    iEdit.setGeometry(10, 10, 200, 24);
    iWindow.show();
    iWindow.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&iWindow));
    iEdit.setFocus();
  }
  static void Copy(const QString& aText) { QApplication::clipboard()->setText(aText); }
  void Paste() { QTest::keyClick(&iEdit, Qt::Key_V, Qt::ControlModifier); }
  void Drop(const QString& aText) {
    QMimeData data;
    data.setText(aText);
    QDragEnterEvent enter(QPoint(3, 10), Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(&iEdit, &enter);
    QDropEvent drop(QPointF(3, 10), Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(&iEdit, &drop);
    EXPECT_TRUE(drop.isAccepted());
  }

  QWidget iWindow;
  CVelumLineEdit iEdit{&iWindow};
};

TEST_F(CVelumLineEditTest, LineEndsAndTabsBecomeOneBlank) {
  EXPECT_EQ(CVelumLineEdit::OneLine(u"one\r\ntwo\nthree\tfour"_s), u"one two three four"_s);
  EXPECT_EQ(CVelumLineEdit::OneLine(u"a\rb\u0001c"_s), u"a b c"_s);
  EXPECT_EQ(CVelumLineEdit::OneLine(u"a\r\n\r\n\tb"_s), u"a b"_s) << "a row of them is one blank";
  EXPECT_EQ(CVelumLineEdit::OneLine(u"a\u2028b\u2029c\u0085d"_s), u"a b c d"_s);
  EXPECT_EQ(CVelumLineEdit::OneLine(u"  a  b "_s), u"  a  b "_s) << "blanks stay as they are";
  EXPECT_EQ(CVelumLineEdit::OneLine(u"line\r\n"_s), u"line"_s);
  EXPECT_EQ(CVelumLineEdit::OneLine(u"\r\n"_s), QString());
}

TEST_F(CVelumLineEditTest, APasteIsOneLineAndCanBeTakenBack) {
  iEdit.setText(u"<>"_s);
  iEdit.setCursorPosition(1);
  Copy(u"one\r\ntwo"_s);
  Paste();
  EXPECT_EQ(iEdit.text(), u"<one two>"_s);
  QTest::keyClick(&iEdit, Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(iEdit.text(), u"<>"_s);
  QTest::keyClick(&iEdit, Qt::Key_Insert, Qt::ShiftModifier);
  EXPECT_EQ(iEdit.text(), u"<one two>"_s);
}

TEST_F(CVelumLineEditTest, ADropIsOneLine) {
  Drop(u"one\r\ntwo\n"_s);
  EXPECT_EQ(iEdit.text(), u"one two"_s);
}

TEST_F(CVelumLineEditTest, TheMenuPastesOneLineToo) {
  Copy(u"one\ntwo"_s);
  QContextMenuEvent menuEvent(QContextMenuEvent::Keyboard, QPoint(3, 3), iEdit.mapToGlobal(QPoint(3, 3)));
  QCoreApplication::sendEvent(&iEdit, &menuEvent);
  auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
  ASSERT_TRUE(menu);
  for (QAction* action : menu->actions())
    if (action->text().contains(u"Paste"_s)) action->trigger();
  menu->close();
  EXPECT_EQ(iEdit.text(), u"one two"_s);
}

TEST_F(CVelumLineEditTest, ALockedOneTakesNothing) {
  iEdit.setReadOnly(true);
  Copy(u"x"_s);
  Paste();
  EXPECT_EQ(iEdit.text(), QString());
}

TEST_F(CVelumLineEditTest, TellsWhatFoundNoRoom) {
  QSignalSpy spy(&iEdit, &CVelumLineEdit::NotFitting);
  iEdit.setMaxLength(5);
  iEdit.setText(u"ab"_s);
  Copy(u"c\r\ndef"_s);
  Paste();
  EXPECT_EQ(iEdit.text(), u"abc d"_s);
  ASSERT_EQ(spy.size(), 1);
  EXPECT_EQ(spy.takeFirst().at(0).toInt(), 2);
  iEdit.selectAll();
  Paste();
  EXPECT_EQ(iEdit.text(), u"c def"_s) << "in place of what was selected";
  EXPECT_TRUE(spy.isEmpty());
  QTest::keyClicks(&iEdit, u"x"_s);
  ASSERT_EQ(spy.size(), 1);
  EXPECT_EQ(spy.takeFirst().at(0).toInt(), 1) << "a key that finds no room";
  iEdit.clear();
  Drop(u"1234567"_s);
  EXPECT_EQ(iEdit.text(), u"12345"_s);
  ASSERT_EQ(spy.size(), 1);
  EXPECT_EQ(spy.takeFirst().at(0).toInt(), 2);
}

TEST_F(CVelumLineEditTest, TextBoxesAndCombosSayIt) {
  CVelumBaseTextBox box(u"fBox"_s, &iWindow, nullptr);
  CVelumBaseComboBox combo(u"fCombo"_s, &iWindow, nullptr);
  float top = 600;
  for (CVelumBaseControl* base : std::initializer_list<CVelumBaseControl*>{&box, &combo}) {
    base->SetMaxChar(4);
    base->SetPlace(100, top);
    base->SetSize(2000, 360);
    base->SetVisible(true);
    base->SetFocus();
    Copy(u"one\r\ntwo"_s);
    QTest::keyClick(base->Widget(), Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(base->Text(), u"one "_s);
    EXPECT_EQ(base->Note(), u"3 characters did not fit. No more than 4 can stand here."_s);
    EXPECT_EQ(base->Widget()->accessibleDescription(), base->Note());
    QTest::keyClick(base->Widget(), Qt::Key_Backspace);
    EXPECT_EQ(base->Note(), QString()) << "gone with the next change";
    top += 600;
  }
}

} // namespace
