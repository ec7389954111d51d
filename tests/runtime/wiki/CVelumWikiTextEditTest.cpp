#include "runtime/wiki/CVelumWikiTextEdit.h"

#include "runtime/RuntimeFixture.h"
#include "toolkit/CVelumBaseRichTextBox.h"
#include "toolkit/CVelumWinMan.h"

#include <QPushButton>
#include <QTest>
#include <QTextEdit>

namespace {

const QString EName = u"CVelumWikiTextEdit"_s;

class CVelumWikiTextEditTest : public RuntimeTest {
protected:
  CVelumWikiTextEditTest() {
    iWiki = AddField(iSet, u"Page"_s, EConText, EConWikiText);
    iWiki->SetVisLines(4);
    iCard = AddCard(u"a"_s);
    SetText(u"go to the b page\r\nnow"_s);
  }
  void SetText(const QString& aText) { iCard->SetControlVal(iWiki->Id(), TVelumValue::OfStr(aText)); }
  // A double click into the field.
  void OpenEditor() {
    if (!gStackView) Open();
    View().BaseObjDblClick(&Base(iWiki));
  }
  CVelumWikiTextEdit& Editor() { return static_cast<CVelumWikiTextEdit&>(*CVelumWinMan::NameToForm(EName)); }
  QTextEdit& Edit() { return *Editor().findChild<QTextEdit*>(u"fWikiText"_s); }
  [[nodiscard]] QString Shown() { return CVelumBaseControl::OfWidget(&Edit())->Text(); }
  QPushButton& Button(const QString& aName) { return *Editor().findChild<QPushButton*>(aName); }
  void Press(const QString& aName) { QTest::mouseClick(&Button(aName), Qt::LeftButton); }
  void Select(int aStart, int aLen) {
    static_cast<CVelumBaseRichTextBox*>(CVelumBaseControl::OfWidget(&Edit()))->Select(aStart, aLen);
  }
  [[nodiscard]] bool IsOpen() const { return CVelumWinMan::FormIsLoaded(EName); }

  Ref<CVelumControl> iWiki;
  Ref<CVelumCard> iCard;
};

TEST_F(CVelumWikiTextEditTest, ADoubleClickOpensItOnTheSource) {
  OpenEditor();
  EXPECT_TRUE(IsOpen());
  EXPECT_EQ(Editor().windowTitle(), u"Edit Wiki Text"_s);
  EXPECT_EQ(Shown(), u"go to the b page\r\nnow"_s);
  EXPECT_EQ(Button(u"fSelToLinkBut"_s).text().remove(u'&'), u"Selection to Link"_s);
  EXPECT_EQ(Button(u"fSaveBut"_s).text().remove(u'&'), u"Save"_s);
  EXPECT_EQ(Button(u"fCancelBut"_s).text().remove(u'&'), u"Cancel"_s);
}

TEST_F(CVelumWikiTextEditTest, TabGoesFromTheTextOverTheButtons) {
  OpenEditor();
  EXPECT_FALSE(Edit().accessibleName().isEmpty());
  Edit().setFocus();
  for (const auto& name : {u"fSelToLinkBut"_s, u"fSaveBut"_s, u"fCancelBut"_s}) {
    QTest::keyClick(Editor().focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(Editor().focusWidget()->objectName(), name);
  }
  QTest::keyClick(Editor().focusWidget(), Qt::Key_Escape);
  EXPECT_FALSE(IsOpen());
}

TEST_F(CVelumWikiTextEditTest, MakesTheSelectionALink) {
  OpenEditor();
  Select(10, 1);
  Press(u"fSelToLinkBut"_s);
  EXPECT_EQ(Shown(), u"go to the [[b]] page\r\nnow"_s);
}

TEST_F(CVelumWikiTextEditTest, ABlankAtTheEndStaysOutside) {
  OpenEditor();
  Select(0, 3);
  Press(u"fSelToLinkBut"_s);
  EXPECT_EQ(Shown(), u"[[go]] to the b page\r\nnow"_s);
  Select(6, 1);
  Press(u"fSelToLinkBut"_s);
  EXPECT_EQ(Shown(), u"[[go]][[]] to the b page\r\nnow"_s) << "a blank alone";
}

TEST_F(CVelumWikiTextEditTest, ASelectionOverLinesCountsThemAsTwo) {
  OpenEditor();
  Select(12, 9);
  Press(u"fSelToLinkBut"_s);
  EXPECT_EQ(Shown(), u"go to the b [[page\r\nnow]]"_s);
}

TEST_F(CVelumWikiTextEditTest, WithoutASelectionThereIsNoLink) {
  OpenEditor();
  Select(4, 0);
  Press(u"fSelToLinkBut"_s);
  EXPECT_EQ(Shown(), u"go to the b page\r\nnow"_s);
}

TEST_F(CVelumWikiTextEditTest, ALinkThatDoesNotFitIsRefused) {
  iWiki->SetMaxChar(23);
  OpenEditor();
  Select(10, 1);
  Press(u"fSelToLinkBut"_s);
  EXPECT_EQ(Shown(), u"go to the b page\r\nnow"_s);
  EXPECT_EQ(iPresenter.Told(), QList<QString>{u"The text would get too long."_s});
}

TEST_F(CVelumWikiTextEditTest, SaveStoresTheTextAndShowsIt) {
  OpenEditor();
  Edit().setFocus();
  QTest::keyClicks(&Edit(), u"**x**"_s);
  QTest::keyClick(&Edit(), Qt::Key_Return);
  Press(u"fSaveBut"_s);
  EXPECT_EQ(TextOf(iCard, iWiki), u"**x**\r\ngo to the b page\r\nnow"_s);
  EXPECT_EQ(Base(iWiki).Text(), u"x go to the b page now"_s);
  EXPECT_FALSE(IsOpen());
}

TEST_F(CVelumWikiTextEditTest, CancelForgetsWithoutAQuestion) {
  OpenEditor();
  QTest::keyClicks(&Edit(), u"x"_s);
  Press(u"fCancelBut"_s);
  EXPECT_EQ(TextOf(iCard, iWiki), u"go to the b page\r\nnow"_s);
  EXPECT_FALSE(IsOpen());
  EXPECT_EQ(iPresenter.Count(), 0);
  EXPECT_TRUE(iPresenter.Told().isEmpty());
}

TEST_F(CVelumWikiTextEditTest, ATextBeingEditedIsNotReplaced) {
  const auto other = AddCard(u"b"_s);
  OpenEditor();
  QTest::keyClicks(&Edit(), u"x"_s);
  OpenEditor();
  EXPECT_EQ(Shown(), u"xgo to the b page\r\nnow"_s);
  EXPECT_TRUE(iPresenter.Told().isEmpty()) << "the same field again";
  View().GoToCard(other);
  OpenEditor();
  EXPECT_EQ(Shown(), u"xgo to the b page\r\nnow"_s);
  EXPECT_EQ(iPresenter.Told().size(), 1);
  Press(u"fSaveBut"_s);
  EXPECT_EQ(TextOf(iCard, iWiki), u"xgo to the b page\r\nnow"_s) << "of the card it was opened for";
  OpenEditor();
  EXPECT_EQ(Shown(), QString());
}

TEST_F(CVelumWikiTextEditTest, ALineEndOfAnotherKindIsNoChange) {
  const auto other = AddCard(u"b"_s);
  SetText(u"one\ntwo"_s);
  OpenEditor();
  EXPECT_EQ(Shown(), u"one\r\ntwo"_s);
  View().GoToCard(other);
  OpenEditor();
  EXPECT_EQ(Shown(), QString()) << "nothing was typed that had to be kept";
  EXPECT_TRUE(iPresenter.Told().isEmpty());
}

TEST_F(CVelumWikiTextEditTest, WhatIsTypedOnTheCardIsEditedFurther) {
  iWiki->SetFlag(EConWikiText, false);
  Open();
  Type(iWiki, u"!"_s);
  OpenEditor();
  EXPECT_EQ(Shown(), u"go to the b page\r\nnow!"_s);
}

TEST_F(CVelumWikiTextEditTest, AReadOnlyFieldIsOnlyShown) {
  iWiki->SetFlag(EConReadOnly, true);
  OpenEditor();
  EXPECT_TRUE(Edit().isReadOnly());
  EXPECT_FALSE(Button(u"fSaveBut"_s).isEnabled());
  EXPECT_FALSE(Button(u"fSelToLinkBut"_s).isEnabled());
}

TEST_F(CVelumWikiTextEditTest, AFieldThatIsGoneIsNotSaved) {
  const auto stays = AddCard(u"b"_s);
  OpenEditor();
  QTest::keyClicks(&Edit(), u"x"_s);
  View().DeleteCard(iCard, nullptr);
  Press(u"fSaveBut"_s);
  EXPECT_EQ(iPresenter.Told().size(), 1);
  EXPECT_TRUE(IsOpen()) << "the text can still be copied";
  EXPECT_EQ(TextOf(stays, iWiki), QString());
}

TEST_F(CVelumWikiTextEditTest, ClosesWithTheStack) {
  OpenEditor();
  CVelumSeams::ChangeNotify(EChangeStructure);
  EXPECT_TRUE(IsOpen());
  CVelumSeams::ChangeNotify(EChangeStackCloses);
  EXPECT_FALSE(IsOpen());
}

TEST_F(CVelumWikiTextEditTest, ANumberOfSeveralLinesStaysANumber) {
  const auto number = AddField(iSet, u"Number"_s, EConInteger);
  number->SetVisLines(2);
  iCard->SetControlVal(number->Id(), TVelumValue::OfInt(5));
  Open();
  View().BaseObjDblClick(&Base(number));
  QTest::keyClicks(&Edit(), u"1"_s);
  Press(u"fSaveBut"_s);
  const TVelumValue value = iCard->GetControlVal(number->Id(), false);
  EXPECT_EQ(value.Type(), EValInt);
  EXPECT_EQ(value.Int(), 15);
}

} // namespace
