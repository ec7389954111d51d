#include "runtime/wiki/CVelumRichText.h"

#include "core/CVelumError.h"
#include "core/CVelumMsg.h"
#include "support/PrintQt.h"
#include "support/ScriptedPresenter.h"

#include <gtest/gtest.h>

namespace {

const QString EHead = u"{\\rtf1\\ansi\\ansicpg1252\\deff0\\deflang2055{\\fonttbl "
                      u"{\\f0\\fswiss\\fprq2\\fcharset0 Arial;}}\r\n"_s;

class CVelumRichTextTest : public testing::Test {
protected:
  CVelumRichTextTest() { CVelumMsg::InitMessages(); }
  // What was written behind the head since BeginText.
  QString Body() const {
    EXPECT_TRUE(iRich.TextStr().startsWith(EHead));
    return iRich.TextStr().mid(EHead.size());
  }
  Ref<CVelumFont> Font(const QString& aFace, qint16 aSize, qint32 aColor, qint32 aFlags) {
    auto font = MakeRef<CVelumFont>(aFace, aSize, aColor);
    font->SetFlags(aFlags);
    return font;
  }
  // The number behind "\fs" of a paragraph in a font of so many twentieths of a point.
  QString SizeOf(qint16 aSize) {
    iRich.SetFont(Font(QString(), aSize, ENoInt, 0));
    iRich.BeginText();
    iRich.BeginPara();
    return Body().section(u"\\fs"_s, 1).trimmed();
  }
  ScriptedPresenter iPresenter;
  CVelumRichText iRich;
};

void ExpectHost(qint32 aNumber, const std::function<void()>& aRun) {
  try {
    aRun();
    ADD_FAILURE() << "nothing raised";
  } catch (const CVelumException& e) {
    EXPECT_EQ(e.Number(), aNumber);
  }
}

TEST_F(CVelumRichTextTest, PutsTheColourTableAheadOfTheText) {
  iRich.BeginText();
  iRich.BeginColor(0x030201);
  iRich.AddStr(u"a"_s);
  iRich.EndColor();
  iRich.EndText();
  EXPECT_EQ(Body(), u"{\\colortbl ;\\red1\\green2\\blue3;}\r\n\\cf1 a\\cf0 }"_s);
}

TEST_F(CVelumRichTextTest, WritesEachCharacterByItsCode) {
  iRich.BeginText();
  iRich.AddStr(u"\\{}~\u0080\u00E9\u00FF\u0100\u20AC\U0001F600"_s);
  EXPECT_EQ(Body(), u"\\\\{}~\\'80\\'E9\\'FF{\\u256}{\\u8364}{\\u55357}{\\u56832}"_s);
}

TEST_F(CVelumRichTextTest, StylesAreCounted) {
  iRich.BeginText();
  iRich.BeginBold();
  iRich.BeginBold();
  iRich.EndBold();
  iRich.AddStr(u"a"_s);
  iRich.EndBold();
  iRich.BeginItalic();
  iRich.EndItalic();
  iRich.BeginUnderline();
  iRich.EndUnderline();
  EXPECT_EQ(Body(), u"\\b1 a\\b0 \\i1 \\i0 \\ul1 \\ul0 "_s);
}

TEST_F(CVelumRichTextTest, AnEndWithoutABeginAsserts) {
  const auto refused = [this](void (CVelumRichText::*aEnd)(), const QString& aText) {
    iRich.BeginText();
    EXPECT_THROW((iRich.*aEnd)(), CVelumException);
    EXPECT_TRUE(iPresenter.LastText().contains(aText)) << iPresenter.LastText().toStdString();
  };
  refused(&CVelumRichText::EndBold, u"iBold>0"_s);
  refused(&CVelumRichText::EndItalic, u"iItalic>0"_s);
  refused(&CVelumRichText::EndUnderline, u"iUnderline>0"_s);
  refused(&CVelumRichText::EndColor, u"iNumCurColors>0"_s);
}

TEST_F(CVelumRichTextTest, AnOverruledEndIsHarmless) {
  iPresenter.SetDefaultAnswer(true);
  iRich.BeginText();
  iRich.EndColor();
  iRich.EndBold();
  iRich.BeginColor(0);
  iRich.EndText();
  EXPECT_TRUE(Body().endsWith(u"\\cf0 \\cf1 }"_s)) << Body().toStdString();
}

TEST_F(CVelumRichTextTest, ColoursNestAndComeBack) {
  iRich.BeginText();
  iRich.BeginColor(255);
  iRich.BeginColor(65280);
  iRich.EndColor();
  iRich.BeginColor(255);
  iRich.EndColor();
  iRich.EndColor();
  EXPECT_EQ(Body(), u"\\cf1 \\cf2 \\cf0 \\cf1 \\cf1 \\cf0 \\cf1 \\cf0 "_s);
}

TEST_F(CVelumRichTextTest, PartsOfANegativeColourHaveItsSign) {
  iRich.BeginText();
  iRich.BeginColor(-32768);
  iRich.BeginColor(-1);
  iRich.BeginColor(-2147483647 - 1);
  iRich.EndText();
  EXPECT_TRUE(Body().startsWith(u"{\\colortbl ;\\red0\\green-128\\blue0;\\red-1\\green0\\blue0;"
                                u"\\red0\\green0\\blue-32768;}\r\n"_s))
      << Body().toStdString();
}

TEST_F(CVelumRichTextTest, TwentyOneColoursAreTheMost) {
  iRich.BeginText();
  for (qint32 i = 0; i < 21; ++i) {
    iRich.BeginColor(i);
    iRich.EndColor();
  }
  iRich.BeginColor(20);
  iRich.EndColor();
  ExpectHost(EHostIndex, [this] { iRich.BeginColor(21); });
}

TEST_F(CVelumRichTextTest, TwentyOneColoursNest) {
  iRich.BeginText();
  for (int i = 0; i < 21; ++i) iRich.BeginColor(7);
  ExpectHost(EHostIndex, [this] { iRich.BeginColor(7); });
}

TEST_F(CVelumRichTextTest, TheFontOpensWithItsFlagsAndColour) {
  iRich.SetFont(Font(u"Courier New"_s, 300, 255, EFntBold | EFntItalic | EFntUnderline));
  iRich.BeginText();
  iRich.BeginPara();
  EXPECT_TRUE(iRich.TextStr().endsWith(u"\\fcharset0 Courier New;}}\r\n\\b1 \\i1 \\ul1 \\cf1 "
                                       u"\\uc1\\pard\\fi-0\\li0\\tx0\\f0\\fs30 "_s));
}

TEST_F(CVelumRichTextTest, WhatAFontLeavesUnsetStays) {
  iRich.SetFont(Font(u"Courier New"_s, 300, ENoInt, 0));
  iRich.SetFont(Font(QString(), ENoShort, ENoInt, 0));
  iRich.BeginText();
  iRich.BeginPara();
  EXPECT_TRUE(iRich.TextStr().contains(u"Courier New;"_s));
  EXPECT_TRUE(iRich.TextStr().endsWith(u"\\fs30 "_s));
  EXPECT_FALSE(iRich.TextStr().contains(u"\\cf"_s));
  iRich.SetFont(nullptr);
  iRich.BeginText();
  EXPECT_TRUE(iRich.TextStr().contains(u"Courier New;"_s));
}

TEST_F(CVelumRichTextTest, TheSizeIsTwiceThePointsRoundedToEven) {
  EXPECT_EQ(SizeOf(220), u"22"_s) << "not the size on the desktop";
  EXPECT_EQ(SizeOf(215), u"22"_s);
  EXPECT_EQ(SizeOf(205), u"20"_s);
  EXPECT_EQ(SizeOf(32767), u"3277"_s);
}

TEST_F(CVelumRichTextTest, ASmallParagraphHasHalfTheSizeRoundedToEven) {
  const auto small = [this](qint16 aSize) {
    iRich.SetFont(Font(QString(), aSize, ENoInt, 0));
    iRich.BeginText();
    iRich.AddSmallPara();
    iRich.BeginPara();
    return Body();
  };
  const QString lead = u"\\uc1\\pard\\fi-0\\li0\\tx0\\f0\\fs"_s;
  EXPECT_EQ(small(220), lead + u"11 \\par "_s + lead + u"22 "_s);
  EXPECT_EQ(small(210), lead + u"10 \\par "_s + lead + u"21 "_s);
  EXPECT_EQ(small(230), lead + u"12 \\par "_s + lead + u"23 "_s);
}

TEST_F(CVelumRichTextTest, EachTextStartsAfresh) {
  iRich.BeginText();
  iRich.BeginBold();
  iRich.BeginColor(255);
  iRich.EndText();
  iRich.BeginText();
  iRich.BeginBold();
  iRich.EndText();
  EXPECT_EQ(Body(), u"{\\colortbl ;}\r\n\\b1 }"_s);
}

} // namespace
