// The keys of the main window, and who has them first.
#include "runtime/view/CVelumGenForm.h"
#include "shell/ShellTest.h"
#include "shell/dialogs/CVelumNotBuilt.h"
#include "shell/help/CVelumHelpBook.h"
#include "support/TestTree.h"
#include "toolkit/CVelumWinMan.h"

#include <QComboBox>
#include <QFile>
#include <QLineEdit>
#include <QRegularExpression>
#include <QScrollBar>
#include <QTest>
#include <QTextEdit>

namespace {

// A stack of cards with a text of one line, one of many lines, and a combo box.
class CVelumShortcutsTest : public ShellTest {
protected:
  ~CVelumShortcutsTest() override { delete CVelumNotBuilt::Instance(); }

  void Open() {
    Start(CopyStack(u"a.Orvelle"_s));
    const Ref<CVelumControlSet> set = gStackView->CurCard()->Background();
    iMany = MakeRef<CVelumControl>(gStack->IdGen().NextId(), u"Many"_s, EConText);
    iMany->SetVisLines(4);
    set->AddControl(iMany, ENoInt);
    QStringList lines;
    for (int i = 0; i < 100; ++i) lines.append(QString::number(i));
    gStackView->CurCard()->SetControlVal(iMany->Id(), TVelumValue::OfStr(lines.join(u"\r\n"_s)));
    gStackView->RefreshViews(true, false);
    gFrame->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(gFrame));
  }
  [[nodiscard]] QWidget* WidgetOf(const CVelumControl& aField) const {
    return qobject_cast<CVelumBaseControl*>(aField.BaseControl())->Widget();
  }
  static QLineEdit* LineBox() {
    return gStackView->CardView()->ViewForm().findChild<QLineEdit*>(u"fGenTextBox0"_s);
  }
  static bool SaysNotBuilt() { return CVelumNotBuilt::Instance() && CVelumNotBuilt::Instance()->isVisible(); }

  Ref<CVelumControl> iMany;
};

} // namespace

TEST_F(CVelumShortcutsTest, ATextOfManyLinesKeepsItsPageKeys) {
  Open();
  auto* edit = qobject_cast<QTextEdit*>(WidgetOf(*iMany));
  ASSERT_TRUE(edit && edit->isVisible());
  QTest::mouseClick(edit->viewport(), Qt::LeftButton);
  edit->moveCursor(QTextCursor::Start);
  ASSERT_TRUE(edit->hasFocus());
  QTest::keyClick(edit, Qt::Key_PageDown);
  const int down = edit->textCursor().position();
  EXPECT_GT(down, 0);
  QTest::keyClick(edit, Qt::Key_PageUp);
  EXPECT_LT(edit->textCursor().position(), down);
  // Also at its ends, where they have nothing to do.
  QTest::keyClick(edit, Qt::Key_PageUp);
  edit->moveCursor(QTextCursor::End);
  QTest::keyClick(edit, Qt::Key_PageDown);
  EXPECT_EQ(CardName(), u"card 00"_s);
  EXPECT_TRUE(edit->hasFocus());
}

TEST_F(CVelumShortcutsTest, ATextOfOneLineHandsPageKeysOn) {
  Open();
  QTest::mouseClick(LineBox(), Qt::LeftButton);
  QTest::keyClick(LineBox(), Qt::Key_PageDown);
  EXPECT_EQ(CardName(), u"card 01"_s);
  QTest::mouseClick(LineBox(), Qt::LeftButton);
  QTest::keyClick(LineBox(), Qt::Key_PageUp);
  EXPECT_EQ(CardName(), u"card 00"_s);
}

TEST_F(CVelumShortcutsTest, HistoryKeysWorkFromATextAndTypeNothing) {
  Open();
  Action(u"NextCard"_s)->trigger();
  QTest::mouseClick(LineBox(), Qt::LeftButton);
  QTest::keyClick(LineBox(), Qt::Key_Left, Qt::AltModifier);
  EXPECT_EQ(CardName(), u"card 00"_s);
  auto* edit = qobject_cast<QTextEdit*>(WidgetOf(*iMany));
  QTest::mouseClick(edit->viewport(), Qt::LeftButton);
  const QString before = edit->toPlainText();
  QTest::keyClick(edit, Qt::Key_Right, Qt::AltModifier);
  EXPECT_EQ(CardName(), u"card 01"_s);
  QTest::keyClick(gFrame, Qt::Key_Left, Qt::AltModifier);
  EXPECT_EQ(edit->toPlainText(), before);
}

TEST_F(CVelumShortcutsTest, HistoryKeysWorkFromTheCardList) {
  Open();
  gStackView->OpenCardList();
  Action(u"NextCard"_s)->trigger();
  QWidget* list =
      CVelumWinMan::NameToForm(u"CVelumCardListForm"_s)->Widget()->findChild<QWidget*>(u"fCardBox"_s);
  ASSERT_TRUE(list);
  list->setFocus();
  QTest::keyClick(list, Qt::Key_Left, Qt::AltModifier);
  EXPECT_EQ(CardName(), u"card 00"_s);
  QTest::keyClick(list, Qt::Key_Right, Qt::AltModifier);
  EXPECT_EQ(CardName(), u"card 01"_s);
}

TEST_F(CVelumShortcutsTest, TextKeepsTheKeysOfEditing) {
  Open();
  LineBox()->setFocus();
  LineBox()->setText(u"one two"_s);
  LineBox()->setCursorPosition(7);
  QTest::keyClick(LineBox(), Qt::Key_Left, Qt::ControlModifier);
  EXPECT_EQ(LineBox()->cursorPosition(), 4);
  QTest::keyClick(LineBox(), Qt::Key_Home);
  EXPECT_EQ(LineBox()->cursorPosition(), 0);
  QTest::keyClick(LineBox(), Qt::Key_A, Qt::ControlModifier);
  EXPECT_EQ(LineBox()->selectedText(), u"one two"_s);
  QTest::keyClick(LineBox(), Qt::Key_Delete);
  EXPECT_EQ(LineBox()->text(), QString());
  QTest::keyClick(LineBox(), Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(LineBox()->text(), u"one two"_s);
  EXPECT_EQ(CardName(), u"card 00"_s);
}

TEST_F(CVelumShortcutsTest, CommandsAreReachedFromWithinATextWithoutATrace) {
  Open();
  LineBox()->setFocus();
  const QString before = LineBox()->text();
  CVelumWinMan::SetFactory(u"CVelumSearchForm"_s, {});
  QTest::keyClick(LineBox(), Qt::Key_F, Qt::ControlModifier);
  EXPECT_TRUE(SaysNotBuilt());
  CVelumNotBuilt::Instance()->close();
  gFrame->activateWindow();
  LineBox()->setFocus();
  QTest::keyClick(LineBox(), Qt::Key_O, Qt::ControlModifier);
  EXPECT_EQ(iDialogs, 1);
  gStack->SetChanged(true);
  QTest::keyClick(LineBox(), Qt::Key_S, Qt::ControlModifier);
  EXPECT_FALSE(gStack->Changed());
  EXPECT_EQ(LineBox()->text(), before);
}

TEST_F(CVelumShortcutsTest, CommandsHaveTheUsualKeys) {
  Start();
  const auto keyOf = [](const char* aName) {
    return Action(QString::fromLatin1(aName))->shortcut().toString();
  };
  EXPECT_EQ(keyOf("fNewStack"), u"Ctrl+N"_s);
  EXPECT_EQ(keyOf("fOpenStack"), u"Ctrl+O"_s);
  EXPECT_EQ(keyOf("fSaveStack"), u"Ctrl+S"_s);
  EXPECT_EQ(keyOf("fSearch"), u"Ctrl+F"_s);
  EXPECT_EQ(keyOf("fCloseStack"), u"Ctrl+W"_s);
  EXPECT_EQ(keyOf("fClose"), u"Ctrl+Q"_s);
  EXPECT_FALSE(Action(u"fSearch"_s)->isEnabled()) << "there is nothing to search";
}

TEST_F(CVelumShortcutsTest, StackAndProgramAreClosedFromWithinAText) {
  Open();
  gStack->SetChanged(false);
  LineBox()->setFocus();
  QTest::keyClick(LineBox(), Qt::Key_W, Qt::ControlModifier);
  EXPECT_FALSE(gStack);
  EXPECT_FALSE(iEnded);
  QTest::keyClick(gFrame, Qt::Key_Q, Qt::ControlModifier);
  EXPECT_TRUE(iEnded);
}

TEST_F(CVelumShortcutsTest, TheManualListsEveryKey) {
  Start();
  QFile file(TestTree::Source() + u"/docs/man/orvelles.1"_s);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  const QString manual = QString::fromUtf8(file.readAll());
  for (const QAction* action : gFrame->findChildren<QAction*>()) {
    QString key = action->shortcut().toString();
    key.replace(u"PgUp"_s, u"Page Up"_s).replace(u"PgDown"_s, u"Page Down"_s).replace(u"Del"_s, u"Delete"_s);
    const QRegularExpression word(QRegularExpression::escape(key) + u"\\b"_s);
    EXPECT_TRUE(key.isEmpty() || manual.contains(word)) << key.toStdString();
  }
}

TEST_F(CVelumShortcutsTest, TheHelpListsEveryKey) {
  Start();
  const CVelumHelpBook book;
  const QString page = QString::fromUtf8(book.Data(CVelumHelpBook::Url(u"Keys"_s)));
  for (const QAction* action : gFrame->findChildren<QAction*>()) {
    const QString key = action->shortcut().toString();
    if (key.isEmpty() || key.contains(u"Pg"_s)) continue;
    EXPECT_TRUE(page.contains(key)) << key.toStdString();
  }
  for (const QString& key : {u"Page Down, Page Up"_s, u"with Ctrl also"_s, u"Alt+Left, Alt+Right"_s, u"F1"_s})
    EXPECT_TRUE(page.contains(key)) << key.toStdString();
}
