#include "toolkit/CVelumFieldNote.h"

#include "support/WidgetTest.h"
#include "toolkit/CVelumBaseTextBox.h"

#include <QLineEdit>
#include <QTest>

using namespace Qt::Literals::StringLiterals;

namespace {

class CVelumFieldNoteTest : public WidgetTest {
protected:
  CVelumFieldNoteTest() {
    iWindow.resize(300, 200);
    iBox.SetSize(3000, 300);
    iOther.SetPlace(0, 600);
    iOther.SetSize(3000, 300);
    iBox.SetVisible(true);
    iOther.SetVisible(true);
    iWindow.show();
    iWindow.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&iWindow));
  }
  CVelumFieldNote* NoteWidget() {
    for (auto* note : iWindow.findChildren<QLabel*>(u"fFieldNote"_s))
      if (note->isVisible()) return static_cast<CVelumFieldNote*>(note);
    return nullptr;
  }

  QWidget iWindow;
  CVelumBaseTextBox iBox{u"fBox"_s, &iWindow, nullptr};
  CVelumBaseTextBox iOther{u"fOther"_s, &iWindow, nullptr};
};

TEST_F(CVelumFieldNoteTest, StandsBelowItsFieldOrAboveAndInsideTheWindow) {
  iBox.ShowNote(u"why"_s);
  ASSERT_TRUE(NoteWidget());
  EXPECT_EQ(NoteWidget()->geometry().topLeft(), QPoint(0, 22));
  iBox.SetPlace(2900, 2600);
  iBox.ShowNote(u"a note of some more words than fit onto a line of the window, so that it has two"_s);
  ASSERT_TRUE(NoteWidget());
  const QRect note = NoteWidget()->geometry();
  EXPECT_TRUE(iWindow.rect().contains(note));
  EXPECT_LT(note.bottom(), iBox.Widget()->y());
}

TEST_F(CVelumFieldNoteTest, IsToldToThoseWhoHearTheScreen) {
  iBox.ShowNote(u"why"_s);
  EXPECT_EQ(iBox.Note(), u"why"_s);
  EXPECT_EQ(iBox.Widget()->accessibleDescription(), u"why"_s);
  iBox.HideNote();
  EXPECT_EQ(iBox.Note(), QString());
  EXPECT_EQ(iBox.Widget()->accessibleDescription(), QString());
}

TEST_F(CVelumFieldNoteTest, GoesWithTheNextChangeTheFocusTheFieldAndAClick) {
  iBox.SetFocus();
  iBox.ShowNote(u"1"_s);
  QTest::keyClicks(iBox.Widget(), u"x"_s);
  EXPECT_EQ(iBox.Note(), QString());
  iBox.ShowNote(u"2"_s);
  iOther.SetFocus();
  EXPECT_EQ(iBox.Note(), QString());
  iBox.ShowNote(u"3"_s);
  iBox.SetVisible(false);
  EXPECT_EQ(iBox.Note(), QString());
  EXPECT_FALSE(NoteWidget());
  iBox.SetVisible(true);
  iBox.ShowNote(u"4"_s);
  ASSERT_TRUE(NoteWidget());
  QTest::mouseClick(NoteWidget(), Qt::LeftButton);
  EXPECT_EQ(iBox.Note(), QString());
}

TEST_F(CVelumFieldNoteTest, ALineThatIsLeftIsSeenFromItsBeginning) {
  auto* edit = static_cast<QLineEdit*>(iBox.Widget());
  iBox.SetFocus();
  QTest::keyClicks(edit, u"a text that is longer than the box in which it stands"_s);
  EXPECT_GT(edit->cursorPosition(), 0);
  iOther.SetFocus();
  EXPECT_EQ(edit->cursorPosition(), 0);
}

} // namespace
