#include "toolkit/CVelumRtf.h"

#include "support/PrintQt.h"
#include "support/WidgetApp.h"
#include "toolkit/CVelumRtfDocument.h"

#include <QColor>
#include <QRandomGenerator>
#include <QTextBlock>
#include <QTextDocument>
#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace {

const QString EHead = u"{\\rtf1\\ansi\\ansicpg1252\\deff0\\deflang2055{\\fonttbl "
                      u"{\\f0\\fswiss\\fprq2\\fcharset0 Courier New;}}\r\n"
                      u"{\\colortbl ;\\red0\\green-128\\blue0;\\red255\\green1\\blue2;}\r\n"_s;
const QString EPara = u"\\uc1\\pard\\fi-0\\li0\\tx0\\f0\\fs20 "_s;

// The text in a paragraph like that of a wiki text.
QString Rtf(const QString& aText) {
  return EHead + EPara + aText + u"\\par }"_s;
}

// The paragraphs with their runs; a run is its text behind its signs.
QStringList Shape(const TRtfText& aText) {
  QStringList paras;
  for (const TRtfPara& para : aText.iParas) {
    QString text;
    for (const TRtfRun& run : para.iRuns) {
      const TRtfLook& look = run.iLook;
      text += u'<' + (look.iBold ? u"b"_s : QString()) + (look.iItalic ? u"i"_s : QString()) +
              (look.iUnderline ? u"u"_s : QString()) +
              (look.iColor ? QString::number(look.iColor) : QString()) + u'>' + run.iText;
    }
    paras.append(text);
  }
  return paras;
}

QStringList ShapeOf(const QString& aText) {
  return Shape(CVelumRtf::Read(Rtf(aText)));
}

TEST(CVelumRtf, ReadsTheHead) {
  const TRtfText text = CVelumRtf::Read(Rtf(u"a"_s));
  EXPECT_EQ(text.iFonts.value(0), u"Courier New"_s);
  EXPECT_EQ(text.iColors, (QList<qint32>{ENoInt, 0x008000, 0x0201FF}));
  EXPECT_EQ(text.iParas.at(0).iRuns.at(0).iLook.iHalfPoints, 20);
}

TEST(CVelumRtf, ReadsParagraphsWithoutOneBehindTheLast) {
  EXPECT_EQ(ShapeOf(QString()), QStringList{QString()});
  EXPECT_EQ(ShapeOf(u"a"_s), QStringList{u"<>a"_s});
  EXPECT_EQ(ShapeOf(u"a\\par "_s + EPara + u"b"_s), (QStringList{u"<>a"_s, u"<>b"_s}));
  const TRtfText gap = CVelumRtf::Read(Rtf(u"a\\par \\pard\\fs10 \\par \\pard\\fs20 b"_s));
  EXPECT_EQ(Shape(gap), (QStringList{u"<>a"_s, QString(), u"<>b"_s}));
  EXPECT_EQ(gap.iParas.at(1).iLook.iHalfPoints, 10) << "the small one between";
  EXPECT_EQ(gap.iParas.at(2).iLook.iHalfPoints, 20);
}

TEST(CVelumRtf, ReadsStyles) {
  EXPECT_EQ(ShapeOf(u"a\\b1 b\\i1 c\\ul1 d\\b0 e\\i0 \\ul0 f"_s),
            QStringList{u"<>a<b>b<bi>c<biu>d<iu>e<>f"_s});
  EXPECT_EQ(ShapeOf(u"\\ul1 \\cf1 x\\cf0 \\ul0 y"_s), QStringList{u"<u1>x<>y"_s});
  EXPECT_EQ(ShapeOf(u"\\b a\\plain b"_s), QStringList{u"<b>a<>b"_s});
}

TEST(CVelumRtf, ReadsCharacters) {
  EXPECT_EQ(ShapeOf(u"\\\\\\{\\}\\'E9{\\u8364}{\\u55357}{\\u56832}\\u-10179?!"_s),
            QStringList{u"<>\\{}\u00E9\u20AC\U0001F600\xD83D!"_s});
  EXPECT_EQ(ShapeOf(u"\\'80\\'9f\\'81"_s), QStringList{u"<>\u20AC\u0178\u0081"_s}) << "the Windows code page";
  EXPECT_EQ(ShapeOf(QString(QChar(0)) + QChar(0x2029) + QChar(0xFDD0)),
            QStringList{u"<>\uFFFD\uFFFD\uFFFD"_s});
}

TEST(CVelumRtf, BracesOfTheTextAreHiddenButCounted) {
  const TRtfText text = CVelumRtf::Read(Rtf(u"a {b} c"_s));
  EXPECT_EQ(Shape(text), QStringList{u"<>a b c"_s});
  EXPECT_EQ(text.iHidden.first(2), (QList<int>{2, 3}));
  EXPECT_EQ(ShapeOf(u"{\\b1 a\\b0 }b"_s), QStringList{u"<b>a<>b"_s}) << "a style in braces";
  EXPECT_EQ(ShapeOf(u"\\b1 {a\\b0 }b"_s), QStringList{u"<b>ab"_s}) << "which is the group's own";
}

TEST(CVelumRtf, ASurplusBraceEndsNothing) {
  EXPECT_EQ(ShapeOf(u"a}}b"_s), QStringList{u"<>ab"_s});
  EXPECT_EQ(ShapeOf(u"a{{b"_s), QStringList{u"<>ab"_s});
  EXPECT_EQ(ShapeOf(u"{\\u8364"_s), QStringList{u"<>\u20AC"_s});
}

TEST(CVelumRtf, ABareLineEndIsABlank) {
  EXPECT_EQ(ShapeOf(u"a\nb\rc"_s), QStringList{u"<>a b c"_s});
}

TEST(CVelumRtf, SkipsWhatItDoesNotKnow) {
  EXPECT_EQ(ShapeOf(u"a\\foo123 b\\bar-7c{\\*\\baz d}e\\~f"_s), QStringList{u"<>abcef"_s});
  EXPECT_EQ(ShapeOf(u"\\fs0 \\fs-4 a"_s), QStringList{u"<>a"_s});
  EXPECT_EQ(CVelumRtf::Read(Rtf(u"\\fs99999999999999999999 a"_s)).iParas.at(0).iRuns.at(0).iLook.iHalfPoints,
            2000);
}

TEST(CVelumRtf, TakesWhatIsNoRtf) {
  EXPECT_EQ(Shape(CVelumRtf::Read(QString())), QStringList{QString()});
  EXPECT_EQ(Shape(CVelumRtf::Read(u"plain } text"_s)), QStringList{u"<>plain  text"_s});
  for (const QString& text : {u"\\"_s, u"\\'"_s, u"\\'e"_s, u"\\u"_s, u"{"_s, u"}"_s, u"{\\*"_s, u"\\b-"_s})
    EXPECT_EQ(CVelumRtf::Read(text).iParas.size(), 1) << text.toStdString();
}

// The shown text keeps step with the counts, whatever comes in.
void ExpectSound(const QString& aRtf) {
  const TRtfText text = CVelumRtf::Read(aRtf);
  QTextDocument document;
  CVelumRtfDocument::Show(document, text, 0, [](qint32) { return QColor(); });
  ASSERT_EQ(document.blockCount(), text.iParas.size()) << aRtf.toStdString();
  int shown = 0;
  for (const TRtfPara& para : text.iParas) {
    for (const TRtfRun& run : para.iRuns) shown += static_cast<int>(run.iText.size());
    ++shown;
  }
  EXPECT_EQ(document.characterCount(), shown) << aRtf.toStdString();
  EXPECT_TRUE(std::is_sorted(text.iHidden.begin(), text.iHidden.end()));
}

TEST(CVelumRtf, SurvivesEveryCutAndEveryChangedCharacter) {
  WidgetApp();
  const QString whole = Rtf(u"a\\b1 {b}\\par \\uc1\\pard\\fs10 {\\u8364}\\'E9\\\\\\ul1 \\cf1 c\\cf0 "_s);
  for (qsizetype i = 0; i <= whole.size(); ++i) ExpectSound(whole.first(i));
  for (qsizetype i = 0; i < whole.size(); ++i)
    for (const QChar c : {u'{', u'}', u'\\', u'\'', u'*', u'9', u'-', u' ', u'\0', u'\r', u'\u2029'}) {
      QString changed = whole;
      changed[i] = c;
      ExpectSound(changed);
    }
}

TEST(CVelumRtf, SurvivesAnything) {
  WidgetApp();
  const QStringList pieces{u"{"_s,          u"}"_s,         u"\\"_s,      u"\\par "_s, u"\\pard"_s,
                           u"\\u"_s,        u"\\'"_s,       u"\\uc9 "_s,  u"12345"_s,  u"-"_s,
                           u"a"_s,          u"\\fonttbl"_s, u"\\f0 x;"_s, u"\\red"_s,  u";"_s,
                           u"\\colortbl"_s, u"\\*"_s,       u"\\cf7 "_s};
  QRandomGenerator random(20250101);
  for (int round = 0; round < 3000; ++round) {
    QString text = round % 2 ? EHead + EPara : QString();
    for (quint32 left = random.bounded(60U); left > 0; --left)
      text += random.bounded(4U) == 0 ? QString(QChar(static_cast<char16_t>(random.bounded(65536U))))
                                      : pieces.at(static_cast<int>(random.bounded(quint32(pieces.size()))));
    ExpectSound(text);
  }
}

TEST(CVelumRtf, NestingCostsNoStack) {
  EXPECT_EQ(CVelumRtf::Read(QString(1000000, u'{') + u'a').iParas.size(), 1);
}

TEST(CVelumRtfDocument, CountsParagraphEndsAsTwo) {
  WidgetApp();
  QTextDocument document;
  CVelumRtfDocument::Show(document, CVelumRtf::Read(Rtf(u"ab\\par \\par c"_s)), 0,
                          [](qint32) { return QColor(); });
  EXPECT_EQ(CVelumRtfDocument::ToCount(document, 2), 2);
  EXPECT_EQ(CVelumRtfDocument::ToCount(document, 3), 4);
  EXPECT_EQ(CVelumRtfDocument::ToCount(document, 4), 6);
  for (const int pos : {0, 1, 2, 3, 4, 5})
    EXPECT_EQ(CVelumRtfDocument::FromCount(document, CVelumRtfDocument::ToCount(document, pos)), pos);
  EXPECT_EQ(CVelumRtfDocument::FromCount(document, 3), 2) << "between CR and LF";
  EXPECT_EQ(CVelumRtfDocument::FromCount(document, 99), 5);
  EXPECT_EQ(CVelumRtfDocument::FromCount(document, -1), 0);
  EXPECT_EQ(CVelumRtfDocument::ToCount(document, 1, {0, 1, 2}), 3);
}

TEST(CVelumRtf, ACharacterInATableIsNoText) {
  EXPECT_EQ(Shape(CVelumRtf::Read(u"{\\rtf1{\\fonttbl {\\f0 A\\u8364 B;}}{\\colortbl ;\\u8364 ;}x}"_s)),
            QStringList{u"<>x"_s});
}

TEST(CVelumRtfDocument, TheSizeItBeginsWithIsThatOfItsBox) {
  WidgetApp();
  QTextDocument document;
  const auto noColor = [](qint32) { return QColor(); };
  CVelumRtfDocument::Show(document, CVelumRtf::Read(Rtf(u"a\\par \\pard\\fs10 b"_s)), 8, noColor);
  EXPECT_EQ(document.begin().begin().fragment().charFormat().fontPointSize(), 8.0);
  EXPECT_EQ(document.lastBlock().begin().fragment().charFormat().fontPointSize(), 4.0) << "half as large";
}

TEST(CVelumRtfDocument, GivesTheTextItsLooks) {
  WidgetApp();
  QTextDocument document;
  CVelumRtfDocument::Show(document, CVelumRtf::Read(Rtf(u"a\\b1 \\cf2 b"_s)), 0,
                          [](qint32 aColor) { return aColor == ENoInt ? QColor() : QColor(Qt::blue); });
  QTextBlock::iterator part = document.begin().begin();
  EXPECT_EQ(part.fragment().charFormat().fontPointSize(), 10.0);
  EXPECT_EQ(part.fragment().charFormat().fontFamilies().toStringList(), QStringList{u"Courier New"_s});
  EXPECT_EQ(part.fragment().charFormat().foreground().style(), Qt::NoBrush);
  ++part;
  EXPECT_EQ(part.fragment().charFormat().fontWeight(), int(QFont::Bold));
  EXPECT_EQ(part.fragment().charFormat().foreground().color(), QColor(Qt::blue));
}

} // namespace
