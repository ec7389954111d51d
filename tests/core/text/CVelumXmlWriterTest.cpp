#include "core/text/CVelumXmlWriter.h"

#include "core/text/CVelumXmlLib.h"
#include "support/PrintQt.h"
#include "support/ScriptedPresenter.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

const QByteArray EHeader = "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\r\n";

QString Escaped(QString aText) {
  CVelumLib::EscapeXml(aText);
  return aText;
}

QString Unescaped(QString aText) {
  CVelumLib::UnescapeXml(aText);
  return aText;
}

class XmlWriter : public testing::Test {
protected:
  XmlWriter() : iWriter(iFolder.Path(u"t.xml"_s)) { iWriter.OpenFile(); }
  // What was written behind the header.
  QByteArray Written() {
    iWriter.CloseFile();
    const QByteArray all = iFolder.Read(u"t.xml"_s);
    EXPECT_TRUE(all.startsWith(EHeader));
    return all.mid(EHeader.size());
  }
  QByteArray TextOf(const QString& aText) {
    iWriter.WriteTextElem(u"T"_s, aText);
    return Written();
  }
  qint32 ErrorOf(const QString& aText) {
    try {
      iWriter.WriteTextElem(u"T"_s, aText);
    } catch (const CVelumException& e) {
      return e.Number();
    }
    return 0;
  }

  TempFolder iFolder;
  ScriptedPresenter iPresenter;
  CVelumXmlWriter iWriter;
};

TEST(XmlEntities, EachCharacterHasItsOwn) {
  EXPECT_EQ(Escaped(u"a&b<c>d\"e'f\r\ng"_s), u"a&amp;b&lt;c&gt;d&quot;e&apos;f&eol;g"_s);
  EXPECT_EQ(Unescaped(u"a&amp;b&lt;c&gt;d&quot;e&apos;f&eol;g"_s), u"a&b<c>d\"e'f\r\ng"_s);
}

TEST(XmlEntities, LoneLineEndsStay) {
  EXPECT_EQ(Escaped(u"a\rb\nc\n\rd"_s), u"a\rb\nc\n\rd"_s);
}

TEST(XmlEntities, AnEntityThatWasTypedComesBackAsTyped) {
  EXPECT_EQ(Escaped(u"&eol;"_s), u"&amp;eol;"_s);
  EXPECT_EQ(Unescaped(u"&amp;eol;"_s), u"&eol;"_s);
  EXPECT_EQ(Unescaped(u"&amp;lt;"_s), u"&lt;"_s);
}

TEST(XmlEntities, OthersStay) {
  EXPECT_EQ(Unescaped(u"&nbsp; & &#65; &LT; &am"_s), u"&nbsp; & &#65; &LT; &am"_s);
}

TEST_F(XmlWriter, IndentsByTwoBlanksALevel) {
  iWriter.BeginElem(u"A"_s);
  iWriter.BeginStruct();
  iWriter.BeginElem(u"B"_s);
  iWriter.AddAttr(u"x"_s, u"1"_s);
  iWriter.BeginStruct();
  iWriter.BeginElem(u"C"_s);
  iWriter.EndEmptyElem();
  iWriter.EndElem(u"B"_s);
  iWriter.BeginElem(u"D"_s);
  iWriter.AddElemText(u"text"_s);
  iWriter.EndElem(u"D"_s);
  iWriter.EndElem(u"A"_s);
  EXPECT_EQ(Written(), "<A>\r\n  <B x=\"1\">\r\n    <C/>\r\n  </B>\r\n  <D>text</D>\r\n</A>\r\n");
}

TEST_F(XmlWriter, WritesNumbersAsPlainDecimals) {
  iWriter.BeginElem(u"A"_s);
  iWriter.AddIntAttr(u"i"_s, -1999999999);
  iWriter.AddShortAttr(u"s"_s, 31999);
  iWriter.AddRealAttr(u"r"_s, 0.1);
  iWriter.AddSingleAttr(u"f"_s, 0.1F);
  iWriter.AddSingleAttr(u"g"_s, 7248.5F);
  iWriter.AddBooleanAttr(u"t"_s, true);
  iWriter.AddBooleanAttr(u"n"_s, false);
  iWriter.EndEmptyElem();
  EXPECT_EQ(Written(),
            "<A i=\"-1999999999\" s=\"31999\" r=\"0.1\" f=\"0.1\" g=\"7248.5\" t=\"-1\" n=\"0\"/>\r\n");
}

TEST_F(XmlWriter, WritesAllDigitsOfIntegers) {
  iWriter.BeginElem(u"A"_s);
  const std::vector<qint32> nums = {0,           9,   10, 99,         100,        -100,     -2147483648,
                                    -2147483647, -10, -9, 2147483647, 1000000000, 999999999};
  QByteArray expected = "<A";
  for (const qint32 num : nums) {
    iWriter.AddIntAttr(u"i"_s, num);
    expected += " i=\"" + QByteArray::number(num) + "\"";
  }
  iWriter.EndEmptyElem();
  EXPECT_EQ(Written(), expected + "/>\r\n");
}

TEST_F(XmlWriter, LongDocumentsAreWrittenInOrder) {
  constexpr int EElems = 400000; // beyond all buffers, and what the disk is given at a time
  QByteArray expected;
  for (int i = 0; i < EElems; ++i) {
    iWriter.BeginElem(u"Element"_s);
    iWriter.AddIntAttr(u"number"_s, i);
    iWriter.EndEmptyElem();
    expected += "<Element number=\"" + QByteArray::number(i) + "\"/>\r\n";
  }
  EXPECT_TRUE(Written() == expected);
}

TEST_F(XmlWriter, EscapesALineEndInAnAttribute) {
  iWriter.BeginElem(u"A"_s);
  iWriter.AddAttr(u"a"_s, u"x\r\n\"y\""_s);
  iWriter.EndEmptyElem();
  EXPECT_EQ(Written(), "<A a=\"x&eol;&quot;y&quot;\"/>\r\n");
}

TEST_F(XmlWriter, AnEmptyTextIsNoEmptyElement) {
  EXPECT_EQ(TextOf({}), "<T></T>\r\n");
}

TEST_F(XmlWriter, EightyCharactersAreOnePiece) {
  EXPECT_EQ(TextOf(QString(80, u'x')), "<T>" + QByteArray(80, 'x') + "</T>\r\n");
}

TEST_F(XmlWriter, EightyOneCharactersAreTwoPieces) {
  EXPECT_EQ(TextOf(QString(81, u'x')), "<T>" + QByteArray(80, 'x') + "\r\nx</T>\r\n");
}

TEST_F(XmlWriter, APieceMayEndInsideAnEntity) {
  EXPECT_EQ(TextOf(QString(78, u'x') + u'<'), "<T>" + QByteArray(78, 'x') + "&l\r\nt;</T>\r\n");
}

TEST_F(XmlWriter, APieceDoesNotEndInsideASurrogatePair) {
  EXPECT_EQ(TextOf(QString(79, u'x') + u"\U0001F600y"_s),
            "<T>" + QByteArray(79, 'x') + "\xF0\x9F\x98\x80\r\ny</T>\r\n");
}

TEST_F(XmlWriter, RefusesWhatCouldNotBeReadBack) {
  EXPECT_EQ(ErrorOf(u"a\x01z"_s), EHostBadCall);
  EXPECT_EQ(ErrorOf(u"a\rz"_s), EHostBadCall);
  EXPECT_EQ(ErrorOf(QString(QChar(0xD83D))), EHostBadCall);
  EXPECT_EQ(ErrorOf(QString(QChar(0xDE00)) + u'x'), EHostBadCall);
  EXPECT_EQ(ErrorOf(u"a\nz\t"_s), 0);
}

TEST_F(XmlWriter, RefusesALineThatIsTooLongToBeRead) {
  iWriter.BeginElem(u"A"_s);
  iWriter.AddAttr(u"a"_s, QString(32766 - 9, u'x')); // 9: <A a=""/>
  iWriter.EndEmptyElem();
  iWriter.BeginElem(u"A"_s);
  iWriter.AddAttr(u"a"_s, QString(32766 - 8, u'x'));
  EXPECT_THROW(iWriter.EndEmptyElem(), CVelumException);
}

TEST_F(XmlWriter, TheLimitOfALineCountsCharactersNotBytes) {
  for (const QString& character : {u"\u00E9"_s, u"\u20AC"_s}) {
    iWriter.BeginElem(u"A"_s);
    iWriter.AddAttr(u"a"_s, character.repeated(32766 - 9));
    iWriter.EndEmptyElem();
  }
  iWriter.BeginElem(u"A"_s);
  iWriter.AddAttr(u"a"_s, u"\u20AC"_s.repeated(32766 - 8));
  const QString beginning = u"<A a=\""_s + u"\u20AC"_s.repeated(54);
  try {
    iWriter.EndEmptyElem();
    ADD_FAILURE() << "no refusal";
  } catch (const CVelumException& e) {
    EXPECT_TRUE(e.Descr().endsWith(beginning)) << e.Descr().toStdString();
  }
}

TEST_F(XmlWriter, TextsOfEveryKindStandBesideEachOther) {
  iWriter.BeginElem(u"A"_s);
  iWriter.AddAttr(u"a"_s, u"x<\u00E9"_s);
  iWriter.AddAttr(u"b"_s, u"plain"_s);
  iWriter.AddAttr(u"c"_s, u"\U0001F600"_s);
  iWriter.AddIntAttr(u"d"_s, -5);
  iWriter.AddElemText(u"\u20AC "_s + QString(79, u'x') + u"&"_s);
  iWriter.EndElem(u"A"_s);
  EXPECT_EQ(Written(), "<A a=\"x&lt;\xC3\xA9\" b=\"plain\" c=\"\xF0\x9F\x98\x80\" d=\"-5\">\xE2\x82\xAC " +
                           QByteArray(78, 'x') + "\r\nx&amp;</A>\r\n");
}

TEST_F(XmlWriter, ClosingInTheMiddleOfALineAsserts) {
  iWriter.BeginElem(u"A"_s);
  EXPECT_THROW(iWriter.CloseFile(), CVelumException);
  EXPECT_TRUE(iPresenter.LastText().contains(u"CloseFile line"_s));
}

} // namespace
