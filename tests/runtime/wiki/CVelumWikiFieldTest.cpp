// Wiki fields on a card: what they show, and where their links lead.
#include "core/CVelumMsg.h"
#include "runtime/RuntimeFixture.h"
#include "runtime/wiki/CVelumWikiTextBox.h"
#include "toolkit/CVelumBaseRichTextBox.h"

#include <QClipboard>
#include <QMouseEvent>
#include <QTest>
#include <QTextEdit>

namespace {

class CVelumWikiFieldTest : public RuntimeTest {
protected:
  CVelumWikiFieldTest() {
    iWiki = AddField(iSet, u"Page"_s, EConText, EConWikiText);
    iWiki->SetVisLines(5);
    iWiki->SetVisChar(40);
  }
  Ref<CVelumCard> AddPage(const QString& aName, const QString& aText) {
    const Ref<CVelumCard> card = AddCard(aName);
    card->SetControlVal(iWiki->Id(), TVelumValue::OfStr(aText));
    return card;
  }
  CVelumBaseRichTextBox& Box() { return static_cast<CVelumBaseRichTextBox&>(Base(iWiki)); }
  QTextEdit& Edit() { return *static_cast<QTextEdit*>(Box().Widget()); }
  [[nodiscard]] QPoint PointIn(int aPos) {
    QTextCursor cursor(Edit().document());
    cursor.setPosition(aPos);
    return Edit().cursorRect(cursor).center() + QPoint(2, 0);
  }
  // A click on the character at a place of the document.
  void Click(int aPos) { QTest::mouseClick(Edit().viewport(), Qt::LeftButton, {}, PointIn(aPos)); }
  void MoveTo(int aPos, Qt::MouseButtons aButtons) {
    QMouseEvent event(QEvent::MouseMove, PointIn(aPos), Edit().viewport()->mapToGlobal(PointIn(aPos)),
                      Qt::NoButton, aButtons, {});
    QApplication::sendEvent(Edit().viewport(), &event);
  }
  [[nodiscard]] QString Cur() { return View().CurCard()->Name(); }

  Ref<CVelumControl> iWiki;
};

TEST_F(CVelumWikiFieldTest, ShowsTheTextWithoutItsMarkup) {
  AddPage(u"a"_s, u"see **this** [[b|page]]\r\n\r\nnow"_s);
  Open();
  EXPECT_EQ(Box().Text(), u"see this page\r\n\r\nnow"_s);
  EXPECT_TRUE(Box().Enabled());
  EXPECT_TRUE(Edit().isReadOnly());
  QTextCursor cursor(Edit().document());
  cursor.setPosition(6);
  EXPECT_EQ(cursor.charFormat().fontWeight(), int(QFont::Bold));
  EXPECT_EQ(cursor.charFormat().fontPointSize(), 8.0) << "as in every other field";
  EXPECT_EQ(Box().Font().pointSizeF(), 8.0);
}

TEST_F(CVelumWikiFieldTest, ShowsTheFontOfTheField) {
  iWiki->SetFont(MakeRef<CVelumFont>(u"DejaVu Serif"_s, qint16{300}, 255));
  AddPage(u"a"_s, u"x"_s);
  Open();
  QTextCursor cursor(Edit().document());
  cursor.setPosition(1);
  EXPECT_EQ(cursor.charFormat().fontFamilies().toStringList(), QStringList{u"DejaVu Serif"_s});
  EXPECT_EQ(cursor.charFormat().fontPointSize(), 15.0);
  EXPECT_EQ(cursor.charFormat().foreground().color().hue(), QColor(Qt::red).hue());
}

TEST_F(CVelumWikiFieldTest, ALinkLeadsToItsCard) {
  AddPage(u"a"_s, u"go **to** [[b|the next]] page"_s);
  AddPage(u"b"_s, u"back to [[a]]"_s);
  Open();
  Click(3);
  EXPECT_EQ(Cur(), u"a"_s) << "no link there";
  Click(8);
  EXPECT_EQ(Cur(), u"b"_s);
  EXPECT_EQ(View().History().Len(), 2);
  EXPECT_EQ(Box().Text(), u"back to a"_s);
  Click(8);
  EXPECT_EQ(Cur(), u"a"_s);
  EXPECT_TRUE(iRunner.iSent.contains(u"openCard b"_s));
  EXPECT_EQ(iPresenter.Count(), 0);
}

TEST_F(CVelumWikiFieldTest, ADoubleClickOnALinkLeadsNoFurther) {
  AddPage(u"a"_s, u"[[b|a long link]]"_s);
  AddPage(u"b"_s, u"[[a|a long link]]"_s);
  Open();
  Click(2);
  ASSERT_EQ(Cur(), u"b"_s);
  for (const QEvent::Type type : {QEvent::MouseButtonDblClick, QEvent::MouseButtonRelease}) {
    QMouseEvent event(type, PointIn(2), Edit().viewport()->mapToGlobal(PointIn(2)), Qt::LeftButton,
                      type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton, {});
    QApplication::sendEvent(Edit().viewport(), &event);
  }
  EXPECT_EQ(Cur(), u"b"_s);
  EXPECT_FALSE(iFrame.iCalls.contains(u"ShowForm CVelumWikiTextEdit"_s));
  Click(2);
  EXPECT_EQ(Cur(), u"a"_s);
}

TEST_F(CVelumWikiFieldTest, LinksAreHitBehindParagraphsBreaksAndBraces) {
  AddPage(u"a"_s, u"one\r\n\r\ntwo\\\\{three} \U0001F600 \u20AC} [[b]]\r\n"_s);
  AddPage(u"b"_s, {});
  Open();
  EXPECT_EQ(Box().Text(), u"one\r\n\r\ntwo\r\nthree \U0001F600 \u20AC b "_s);
  const int link = static_cast<int>(QString(u"one\n\ntwo\nthree \U0001F600 \u20AC "_s).size());
  Click(link - 1);
  EXPECT_EQ(Cur(), u"a"_s);
  Click(link);
  EXPECT_EQ(Cur(), u"b"_s);
}

TEST_F(CVelumWikiFieldTest, EnterFollowsTheLinkAtTheCursor) {
  AddPage(u"a"_s, u"[[b]]"_s);
  AddPage(u"b"_s, {});
  Open();
  Box().SetFocus();
  QTest::keyClick(&Edit(), Qt::Key_Return);
  EXPECT_EQ(Cur(), u"b"_s);
}

TEST_F(CVelumWikiFieldTest, ASelectedTextIsNoClick) {
  AddPage(u"a"_s, u"[[b|a long link]]"_s);
  AddPage(u"b"_s, {});
  Open();
  QTest::mousePress(Edit().viewport(), Qt::LeftButton, {}, PointIn(1));
  MoveTo(6, Qt::LeftButton);
  QTest::mouseRelease(Edit().viewport(), Qt::LeftButton, {}, PointIn(6));
  EXPECT_GT(Box().SelLen(), 0);
  EXPECT_EQ(Cur(), u"a"_s);
}

TEST_F(CVelumWikiFieldTest, ASelectLinkSendsAMessage) {
  AddPage(u"a"_s, u"[[select:x y|this]] [[select:]] [[Select:z]]"_s);
  Open();
  iRunner.iSent.clear();
  Click(1);
  EXPECT_EQ(iRunner.iSent.last(), u"select a.Page"_s);
  EXPECT_EQ(iRunner.iParamVal, u"x y"_s);
  Click(6);
  EXPECT_EQ(iRunner.iSent.count(u"select a.Page"_s), 2);
  EXPECT_EQ(iRunner.iParamVal, QString());
  Click(14);
  EXPECT_EQ(iRunner.iSent.count(u"select a.Page"_s), 2) << "another case is a card's name";
  EXPECT_EQ(iPresenter.LastMsg(), EMsgBadLinkTarget);
}

TEST_F(CVelumWikiFieldTest, ALinkToNoCardIsReported) {
  AddPage(u"a"_s, u"[[nowhere]]"_s);
  Open();
  Click(2);
  EXPECT_EQ(Cur(), u"a"_s);
  ASSERT_EQ(iPresenter.Count(), 1);
  EXPECT_EQ(iPresenter.LastMsg(), EMsgBadLinkTarget);
  EXPECT_EQ(iPresenter.LastShown().iClass, EMsgCritical);
  EXPECT_TRUE(iPresenter.LastText().contains(u"nowhere"_s));
}

TEST_F(CVelumWikiFieldTest, NoEventChangesTheStoredText) {
  const auto other = AddField(iSet, u"Other"_s, EConText);
  const QString source = u"**a** [[b]]\r\n\r\nc"_s;
  const auto card = AddPage(u"a"_s, source);
  Open();
  gStack->SetChanged(false);
  Box().SetFocus();
  QApplication::clipboard()->setText(u"pasted"_s);
  QTest::keyClicks(&Edit(), u"typed"_s);
  QTest::keyClick(&Edit(), Qt::Key_V, Qt::ControlModifier);
  QTest::keyClick(&Edit(), Qt::Key_X, Qt::ControlModifier);
  Base(other).SetFocus();
  View().ValidateCurControl();
  View().RefreshViews(true, false);
  EXPECT_EQ(TextOf(card, iWiki), source);
  EXPECT_FALSE(gStack->Changed());
  EXPECT_TRUE(iRunner.iSent.contains(u"exitField a.Page"_s));
  EXPECT_FALSE(iRunner.iSent.contains(u"closeField a.Page"_s));
}

TEST_F(CVelumWikiFieldTest, APlainTextOfTheNextCardIsPlain) {
  const auto set = AddBackground(u"Plain"_s);
  const auto notes = AddField(set, u"Notes"_s, EConText);
  notes->SetVisLines(3);
  AddPage(u"a"_s, u"**x**"_s);
  const auto plain = AddCard(u"b"_s, set);
  plain->SetControlVal(notes->Id(), TVelumValue::OfStr(u"**y** [[a]]"_s));
  Open();
  View().GoToCard(plain);
  auto& edit = *static_cast<QTextEdit*>(Base(notes).Widget());
  EXPECT_EQ(Base(notes).Text(), u"**y** [[a]]"_s);
  EXPECT_FALSE(edit.isReadOnly());
  EXPECT_NE(edit.currentCharFormat().fontWeight(), int(QFont::Bold));
  Type(notes, u"!"_s);
  View().ValidateCurControl();
  EXPECT_EQ(TextOf(plain, notes), u"**y** [[a]]!"_s);
}

TEST_F(CVelumWikiFieldTest, AnUndefinedValueIsAnEmptyText) {
  AddPage(u"a"_s, u"x"_s);
  const auto empty = AddCard(u"b"_s);
  Open();
  View().GoToCard(empty);
  EXPECT_EQ(Box().Text(), QString());
  Click(0);
  EXPECT_EQ(iPresenter.Count(), 0);
}

TEST_F(CVelumWikiFieldTest, ATextWithTooManyLinksIsShownAsItIsStored) {
  const auto other = AddField(iSet, u"Other"_s, EConText);
  const auto first = AddPage(u"a"_s, u"[[b]]"_s);
  first->SetControlVal(other->Id(), TVelumValue::OfStr(u"of a"_s));
  const QString source = u"[[a]]"_s.repeated(1002);
  const auto second = AddPage(u"b"_s, source);
  second->SetControlVal(other->Id(), TVelumValue::OfStr(u"of b"_s));
  Open();
  Click(0);
  EXPECT_EQ(Cur(), u"b"_s);
  EXPECT_EQ(Box().Text(), source);
  EXPECT_TRUE(Edit().isReadOnly());
  EXPECT_EQ(Base(other).Text(), u"of b"_s) << "the fields behind it show this card";
  EXPECT_EQ(iPresenter.CountOf(EMsgSystemError), 1);
  Click(3);
  EXPECT_EQ(Cur(), u"b"_s) << "no link of another text is left";
  View().GoToCard(first);
  EXPECT_EQ(Box().Text(), u"b"_s);
  View().GoToCard(second);
  EXPECT_EQ(TextOf(second, iWiki), source);
}

TEST_F(CVelumWikiFieldTest, ATextChangedByAScriptIsShown) {
  const auto card = AddPage(u"a"_s, u"x"_s);
  AddPage(u"b"_s, {});
  Open();
  View().SetCardValue(card, iWiki->Id(), TVelumValue::OfStr(u"//y// [[b]]"_s));
  EXPECT_EQ(Box().Text(), u"y b"_s);
  Click(2);
  EXPECT_EQ(Cur(), u"b"_s);
}

TEST_F(CVelumWikiFieldTest, AFieldThatLosesTheFlagShowsItsSource) {
  AddPage(u"a"_s, u"**x**"_s);
  Open();
  iWiki->SetFlag(EConWikiText, false);
  View().RefreshViews(true, false);
  EXPECT_EQ(Box().Text(), u"**x**"_s);
  EXPECT_FALSE(Edit().isReadOnly());
  iWiki->SetFlag(EConWikiText, true);
  View().RefreshViews(true, false);
  EXPECT_EQ(Box().Text(), u"x"_s);
}

TEST_F(CVelumWikiFieldTest, ADisabledFieldFollowsNoLink) {
  iWiki->SetFlag(EConDisabled, true);
  AddPage(u"a"_s, u"[[b|a long link]]"_s);
  AddPage(u"b"_s, {});
  Open();
  EXPECT_FALSE(Box().Enabled());
  Click(2);
  EXPECT_EQ(Cur(), u"a"_s);
}

} // namespace
