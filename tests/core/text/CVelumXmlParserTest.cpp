#include "core/text/CVelumXmlParser.h"

#include "core/text/CVelumXmlWriter.h"
#include "support/PrintQt.h"
#include "support/ScriptedPresenter.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

const QByteArray EHeader = "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\r\n";

class XmlParser : public testing::Test {
protected:
  // Opens a document of these bytes; the header has been read.
  void Open(const QByteArray& aBody, const QByteArray& aHeader = EHeader) {
    iParser = MakeRef<CVelumXmlParser>(iFolder.Write(u"t.xml"_s, aHeader + aBody));
    iParser->OpenFile();
    iParser->ReadHeader();
  }
  // Opens an element "A" and reads its attributes.
  void OpenElem(const QByteArray& aAttrs) {
    Open("<A " + aAttrs + "/>\r\n");
    iParser->ReadTheNext(u"A"_s, false);
    iParser->ReadAttrTerm();
  }
  QString TextOf(const QByteArray& aElem, bool aKeepEol) {
    Open(aElem);
    iParser->ReadTheNext(u"T"_s, false);
    bool term = true;
    iParser->ReadAttr(term);
    EXPECT_FALSE(term);
    QString text;
    iParser->ReadElemText(text, aKeepEol);
    iParser->ReadTheNext(u"T"_s, true);
    return text;
  }
  // The assertion that aWork ends in when the user says no.
  template <class T> QString Assertion(const T& aWork) {
    iPresenter.Clear();
    try {
      aWork();
    } catch (const CVelumException&) {
      return iPresenter.Count() > 0 ? iPresenter.LastText() : u"no question"_s;
    }
    return u"nothing"_s;
  }
  void ExpectAssertion(const QByteArray& aElem, const QString& aText) {
    const QString shown = Assertion([&] {
      Open(aElem);
      QString name;
      bool term = false;
      iParser->ReadNext(name, term);
      iParser->ReadAttrAndSym(term);
    });
    EXPECT_TRUE(shown.contains(aText)) << shown.toStdString();
  }

  TempFolder iFolder;
  ScriptedPresenter iPresenter;
  Ref<CVelumXmlParser> iParser;
};

TEST_F(XmlParser, DescribesItself) {
  EXPECT_EQ(CVelumXmlParser({}).ObjDescr(), u"CVelumXmlParser"_s);
  EXPECT_EQ(CVelumXmlParser({}).Coding(), ECodUtf8);
}

TEST_F(XmlParser, HeaderSetsTheCodingOfTheLinesThatFollow) {
  Open("<A a=\"\xE9\"/>\r\n", "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\r\n");
  EXPECT_EQ(iParser->Coding(), ECodLatin1);
  iParser->ReadTheNext(u"A"_s, false);
  iParser->ReadAttrTerm();
  EXPECT_EQ(iParser->Attr(u"a"_s), u"\u00E9"_s);
}

TEST_F(XmlParser, HeaderOfAnotherCodingAssertsAndKeepsUtf8) {
  const QByteArray header = "<?xml version=\"2\" encoding=\"KOI8\" ?>\r\n";
  EXPECT_TRUE(Assertion([&] { Open("<A/>\r\n", header); }).contains(u"encoding KOI8"_s));
  iPresenter.SetDefaultAnswer(true);
  Open("<A/>\r\n", header);
  EXPECT_EQ(iParser->Coding(), ECodUtf8);
}

TEST_F(XmlParser, HeaderWithOtherWordsAsserts) {
  EXPECT_TRUE(Assertion([&] { Open("", "<A/>\r\n"); }).contains(u"GetTheSym sym"_s));
  EXPECT_TRUE(Assertion([&] { Open("", "A\r\n"); }).contains(u"ReadHeader lt"_s));
  EXPECT_TRUE(Assertion([&] {
                Open("", "<?xml encoding=\"UTF-8\" version=\"1.0\" ?>\r\n");
              }).contains(u"GetTheIdent ident"_s));
}

TEST_F(XmlParser, ByteOrderMarkIsPassedOver) {
  Open("<A/>\r\n", "\xEF\xBB\xBF" + EHeader);
  iParser->ReadTheNext(u"A"_s, false);
  EXPECT_EQ(iPresenter.Count(), 0);
}

TEST_F(XmlParser, NumbersAreReadFromTheirBeginning) {
  OpenElem("a=\"12abc\" b=\"abc\" c=\"2.5\" d=\"3.5\" e=\"\" f=\"-7.25E1x\"");
  EXPECT_EQ(iParser->IntAttr(u"a"_s), 12);
  EXPECT_EQ(iParser->IntAttr(u"b"_s), 0);
  EXPECT_EQ(iParser->IntAttr(u"c"_s), 2);
  EXPECT_EQ(iParser->IntAttr(u"d"_s), 4);
  EXPECT_EQ(iParser->ShortAttr(u"d"_s), 4);
  EXPECT_EQ(iParser->IntAttr(u"e"_s), ENoInt);
  EXPECT_EQ(iParser->IntAttr(u"none"_s), ENoInt);
  EXPECT_EQ(iParser->ShortAttr(u"none"_s), ENoShort);
  EXPECT_EQ(iParser->CountAttr(u"none"_s), 0);
  EXPECT_EQ(iParser->RealAttr(u"f"_s), -72.5);
  EXPECT_EQ(iParser->RealAttr(u"none"_s), 0.0);
  EXPECT_EQ(iParser->Attr(u"none"_s), u""_s);
}

TEST_F(XmlParser, IntegersMayHaveAllDigits) {
  OpenElem("a=\"999999999\" b=\"1999999999\" c=\"2147483647\" d=\"-2147483648\" e=\"-1\" f=\"0000000012\" "
           "g=\"+7\" h=\"1 2\" i=\" 5\"");
  EXPECT_EQ(iParser->IntAttr(u"a"_s), 999999999);
  EXPECT_EQ(iParser->IntAttr(u"b"_s), ENoInt);
  EXPECT_EQ(iParser->IntAttr(u"c"_s), 2147483647);
  EXPECT_EQ(iParser->IntAttr(u"d"_s), std::numeric_limits<qint32>::min());
  EXPECT_EQ(iParser->IntAttr(u"e"_s), -1);
  EXPECT_EQ(iParser->IntAttr(u"f"_s), 12);
  EXPECT_EQ(iParser->IntAttr(u"g"_s), 7);
  EXPECT_EQ(iParser->IntAttr(u"h"_s), 1) << "a blank ends the number";
  EXPECT_EQ(iParser->IntAttr(u"i"_s), 5);
}

TEST_F(XmlParser, AttributesMayGoOnInAnotherLine) {
  Open("<A a=\"1\"b=\"2\"   c=\"3\" d\r\n=\"4\" e=\r\n\"5\" f=\"6\"\r\ng=\"7\"/>\r\n");
  iParser->ReadTheNext(u"A"_s, false);
  iParser->ReadAttrTerm();
  for (const char16_t name : u"abcdefg")
    if (name != 0) {
      EXPECT_EQ(iParser->IntAttr(QStringView(&name, 1)), name - u'a' + 1);
    }
  EXPECT_EQ(iPresenter.Count(), 0);
}

TEST_F(XmlParser, NumbersTooLargeAreHostErrors) {
  OpenElem("a=\"2147483648\" b=\"40000\"");
  EXPECT_THROW(static_cast<void>(iParser->IntAttr(u"a"_s)), CVelumException);
  EXPECT_THROW(static_cast<void>(iParser->ShortAttr(u"b"_s)), CVelumException);
}

TEST_F(XmlParser, BooleansAreMinusOneOrZero) {
  OpenElem("t=\"-1\" f=\"0\" e=\"\" x=\"True\"");
  EXPECT_TRUE(iParser->BooleanAttr(u"t"_s));
  EXPECT_FALSE(iParser->BooleanAttr(u"f"_s));
  EXPECT_FALSE(iParser->BooleanAttr(u"e"_s));
  EXPECT_FALSE(iParser->BooleanAttr(u"none"_s));
  EXPECT_TRUE(Assertion([&] { static_cast<void>(iParser->BooleanAttr(u"x"_s)); }).contains(u"iStr True"_s));
  iPresenter.SetDefaultAnswer(true);
  EXPECT_TRUE(iParser->BooleanAttr(u"x"_s));
}

TEST_F(XmlParser, NamesOfAttributesAreComparedWithoutCase) {
  OpenElem("Name=\"x\"");
  EXPECT_EQ(iParser->Attr(u"name"_s), u"x"_s);
}

TEST_F(XmlParser, BlanksAndLineEndsMayStandBetweenSymbols) {
  for (const QByteArray space : {" ", "  ", "\r\n", " \r\n\r\n "}) {
    QByteArray elem = "<_A_ a_=_\"1\"_ b_=_\"&lt;_\"_>x<_/_A_>\r\n";
    Open(elem.replace("_", space).replace("&lt;" + space, "&lt;"));
    iParser->ReadTheNext(u"A"_s, false);
    bool term = true;
    iParser->ReadAttr(term);
    EXPECT_FALSE(term);
    EXPECT_EQ(iParser->Attr(u"a"_s), u"1"_s);
    EXPECT_EQ(iParser->Attr(u"b"_s), u"<"_s);
    QString text;
    iParser->ReadElemText(text, false);
    EXPECT_EQ(text, u"x"_s);
    iParser->ReadTheNext(u"A"_s, true);
    EXPECT_EQ(iPresenter.Count(), 0);
  }
}

TEST_F(XmlParser, AttributesAreFoundInAnyOrder) {
  OpenElem("a=\"1\" b=\"2\" c=\"3\"");
  for (const char16_t name : u"cbacabbc")
    if (name != 0) {
      EXPECT_EQ(iParser->IntAttr(QStringView(&name, 1)), name - u'a' + 1);
    }
}

TEST_F(XmlParser, ARepeatedAttributeAsserts) {
  ExpectAssertion("<A a=\"1\" A=\"2\"/>\r\n", u"Create duplicate"_s);
}

TEST_F(XmlParser, ManyAttributesAreFoundAndRepeatedOnesAssert) {
  constexpr int count = 5000;
  QByteArray attrs;
  for (int i = 0; i < count; ++i)
    attrs += "a" + QByteArray::number(i) + "=\"" + QByteArray::number(i) + "\"\r\n";
  OpenElem(attrs);
  for (const int i : {0, 63, 64, 65, 4999, 128}) EXPECT_EQ(iParser->IntAttr(u"a"_s + QString::number(i)), i);
  EXPECT_FALSE(iParser->HasAttr(u"a5000"_s));
  for (const char* repeated : {"a3=\"1\"", "A4998=\"1\"", "x=\"1\" X=\"2\""})
    ExpectAssertion("<A " + attrs + repeated + "/>\r\n", u"Create duplicate"_s);
  // The table is that of one element.
  Open("<A " + attrs + "/>\r\n<A a1=\"7\"/>\r\n<A " + attrs + "/>\r\n");
  for (const int expected : {1, 7, 1}) {
    iParser->ReadTheNext(u"A"_s, false);
    EXPECT_EQ(Assertion([&] { iParser->ReadAttrTerm(); }), u"nothing"_s);
    EXPECT_EQ(iParser->IntAttr(u"a1"_s), expected);
  }
}

TEST_F(XmlParser, AttributesComeBackUnescaped) {
  OpenElem("a=\"x&eol;&quot;y&quot; &amp;eol;\"");
  EXPECT_EQ(iParser->Attr(u"a"_s), u"x\r\n\"y\" &eol;"_s);
}

TEST_F(XmlParser, AnEmptyTextIsReadAsATextElement) {
  EXPECT_EQ(TextOf("<T></T>\r\n", false), u""_s);
  EXPECT_EQ(TextOf("<T></T>\r\n", true), u""_s);
}

TEST_F(XmlParser, BlanksOfATextBelongToIt) {
  EXPECT_EQ(TextOf("<T>  a  </T>\r\n", false), u"  a  "_s);
}

TEST_F(XmlParser, LineEndsOfTheFileBelongToATextOnlyWhenKept) {
  EXPECT_EQ(TextOf("<T>a\r\n b&eol;c</T>\r\n", false), u"a b\r\nc"_s);
  EXPECT_EQ(TextOf("<T>a\r\n b&eol;c</T>\r\n", true), u"a\r\n b\r\nc"_s);
}

TEST_F(XmlParser, ATextMayBeginWithAnEqualsSign) {
  EXPECT_EQ(TextOf("<T>=1+2</T>\r\n", false), u"=1+2"_s);
  EXPECT_EQ(TextOf("<T>=1+2</T>\r\n", true), u"=1+2"_s);
  ExpectAssertion("<T>=</T>\r\n", u"nothing"_s);
}

TEST_F(XmlParser, ATextWithoutItsEndAsserts) {
  EXPECT_TRUE(Assertion([&] { TextOf("<T>abc\r\n", false); }).contains(u"ReadLongElemText eof"_s));
  EXPECT_TRUE(Assertion([&] { TextOf("<T>abc\r\n", true); }).contains(u"ReadElemText eof"_s));
}

TEST_F(XmlParser, ReadElemTakesAttributesTextAndEnd) {
  Open("<A>\r\n<B x=\"1\">t</B><C/></A>\r\n");
  QString name;
  bool term = false;
  iParser->ReadNext(name, term);
  iParser->ReadAttrAndSym(term);
  iParser->ReadNext(name, term);
  QString text;
  iParser->ReadElem(text);
  EXPECT_EQ(text, u"t"_s);
  EXPECT_EQ(name, u"B"_s);
  EXPECT_EQ(iParser->Attr(u"x"_s), u"1"_s);
  iParser->ReadNext(name, term);
  iParser->ReadElem(text);
  EXPECT_EQ(name, u"C"_s);
  EXPECT_EQ(text, u""_s);
  iParser->ReadTheNext(u"A"_s, true);
}

TEST_F(XmlParser, OtherSyntaxAsserts) {
  ExpectAssertion("\t<A/>\r\n", u"ReadNext <"_s);
  ExpectAssertion("<!-- x -->\r\n", u"ReadNext sym"_s);
  ExpectAssertion("<A a='1'/>\r\n", u"GetTheSym sym"_s);
  ExpectAssertion("<A a-b=\"1\"/>\r\n", u"GetTheSym sym"_s);
  ExpectAssertion("<A 1=\"1\"/>\r\n", u"ReadAttr sym"_s);
  ExpectAssertion("", u"ReadNext <"_s);
}

// The value ends with its line; what is left of the tag is no attribute.
TEST_F(XmlParser, ALineBreakEndsAnAttributeAndTheRestFails) {
  ExpectAssertion("<A a=\"x\r\n+y\"/>\r\n", u"ReadAttr sym"_s);
}

TEST_F(XmlParser, AnotherTagThanTheOneWantedAsserts) {
  const auto wanted = [&](const char* aElem, bool aTerm) {
    return Assertion([&] {
      Open(aElem);
      iParser->ReadTheNext(u"A"_s, aTerm);
    });
  };
  EXPECT_TRUE(wanted("<B>", false).contains(u"ReadTheNext name wanted=A,got=B"_s));
  EXPECT_TRUE(wanted("<A>", true).contains(u"ReadTheNext A term"_s));
  EXPECT_EQ(wanted("</A>", true), u"nothing"_s);
}

TEST_F(XmlParser, OverrulingNeverLoops) {
  iPresenter.SetDefaultAnswer(true);
  EXPECT_THROW(OpenElem("+ + +"), CVelumException);
}

TEST_F(XmlParser, TheEndOfTheFileStopsWhoGoesOn) {
  iPresenter.SetDefaultAnswer(true);
  Open("<A>\r\n");
  QString name;
  bool term = false;
  iParser->ReadNext(name, term);
  iParser->ReadAttrAndSym(term);
  EXPECT_THROW(iParser->ReadNext(name, term), CVelumException);
}

TEST_F(XmlParser, ALineBeyondTheScannersLimitIsAHostError) {
  EXPECT_THROW(OpenElem("a=\"" + QByteArray(40000, 'x') + '"'), CVelumException);
  EXPECT_EQ(
      TextOf("<T>" + QByteArray(30000, 'x') + "\r\n" + QByteArray(30000, 'x') + "</T>\r\n", false).size(),
      60000);
}

TEST_F(XmlParser, ReadsWhatTheWriterWrites) {
  const QString text = QString(u"a<b>&\"'\r\n\u00E9\U0001F600=\t"_s).repeated(40);
  CVelumXmlWriter writer(iFolder.Path(u"w.xml"_s));
  writer.OpenFile();
  writer.BeginElem(u"A"_s);
  writer.AddAttr(u"a"_s, text);
  writer.BeginStruct();
  writer.WriteTextElem(u"T"_s, u'=' + text);
  writer.EndElem(u"A"_s);
  writer.CloseFile();
  Open(iFolder.Read(u"w.xml"_s), {});
  iParser->ReadTheNext(u"A"_s, false);
  bool term = true;
  iParser->ReadAttrAndSym(term);
  EXPECT_EQ(iParser->Attr(u"a"_s), text);
  EXPECT_EQ(iParser->ReadTextElem(u"T"_s), u'=' + text);
  iParser->ReadTheNext(u"A"_s, true);
  iParser->CloseFile();
}

} // namespace
