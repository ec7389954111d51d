// XML stacks that are damaged in one place: each check says its own text, and nothing harms or hangs.
#include "persist/XmlStackTest.h"

namespace {

class XmlDamage : public XmlStack {
protected:
  // Puts aBytes in the place of the aNum-th (from 1) occurrence of aFind.
  static QByteArray Replaced(QByteArray aText, const QByteArray& aFind, int aNum, const QByteArray& aBytes) {
    qsizetype at = -1;
    for (int i = 0; i < aNum; ++i) at = aText.indexOf(aFind, at + 1);
    EXPECT_GE(at, 0) << aFind.toStdString();
    return at < 0 ? aText : aText.replace(at, aFind.size(), aBytes);
  }
  static QByteArray Case(const char* aName) { return CaseFiles::Bytes(PathOf(EGood, aName)); }
  // The text of a file with aFind damaged must fail with aText.
  void Expect(const char* aFile, const QByteArray& aFind, int aNum, const QByteArray& aBytes,
              const QString& aText) {
    const QString shown = Failure(Replaced(Case(aFile), aFind, aNum, aBytes));
    EXPECT_TRUE(shown.contains(aText)) << aText.toStdString() << " but " << shown.toStdString();
  }
  // A tag that stands where another is wanted.
  void ExpectTag(const char* aFile, const QByteArray& aFind, int aNum, const QString& aText) {
    Expect(aFile, aFind, aNum, QByteArray(aFind).replace('<', "<Q"), aText);
  }
};

TEST_F(XmlDamage, EachArrayOfTheStackHasItsName) {
  const char* const names[] = {"iBackground", "iCard", "iOrderIndex", "iNameIndex", "iSortKey", "iKeyIndex"};
  int num = 0;
  for (const char* name : names)
    ExpectTag("empty.xml", "\r\n    <Array", ++num, u"InternalizeXml "_s + QString::fromLatin1(name));
}

TEST_F(XmlDamage, EachOtherChildHasItsName) {
  ExpectTag("one_card.xml", "<IdGen", 1, u"InternalizeXml iIdGen"_s);
  ExpectTag("one_card.xml", "<BlobStore", 1, u"InternalizeXml iBlobStore"_s);
  ExpectTag("one_card.xml", "\r\n            <Array", 1, u"InternalizeXml iSet"_s);
  ExpectTag("one_card.xml", "\r\n            <Array", 2, u"InternalizeXml iIdIndex"_s);
  ExpectTag("one_card.xml", "\r\n            <Array", 3, u"InternalizeXml iValue"_s);
  ExpectTag("one_card.xml", "\r\n      <Array", 1, u"InternalizeXml iIdIndex"_s);
  ExpectTag("one_card.xml", "\r\n      <Array", 2, u"InternalizeXml iPosTab"_s);
  ExpectTag("one_card.xml", "\r\n      <Array", 3, u"InternalizeXml iBlob"_s);
  ExpectTag("scripts.xml", "\r\n    <Array", 7, u"InternalizeXml iScript"_s);
  ExpectTag("fonts_colors.xml", "\r\n    <Font", 1, u"InternalizeXml iFont"_s);
  ExpectTag("fonts_colors.xml", "\r\n    <Font", 2, u"InternalizeXml iListFont"_s);
  ExpectTag("one_card.xml", "<Rect", 1, u"iCardViewRect"_s);
  ExpectTag("one_card.xml", "<Rect", 2, u"iCardListRect"_s);
}

TEST_F(XmlDamage, EachKindOfObjectHasItsName) {
  ExpectTag("one_card.xml", "<Card ", 1, u"InternalizeXml iCard"_s);
  ExpectTag("all_controls.xml", "<Control ", 1, u"InternalizeXml iControl"_s);
  ExpectTag("one_card.xml", "<ControlSet ", 1, u"InternalizeXml iControlSet"_s);
  ExpectTag("sorted_up.xml", "<SortKey ", 1, u"InternalizeXml iSortKey"_s);
  ExpectTag("blobs.xml", "<Blob ", 1, u"InternalizeXml iBlob"_s);
}

TEST_F(XmlDamage, TextChildrenAreToldByTheReader) {
  const QString wanted = u"ReadTheNext name wanted="_s;
  ExpectTag("one_card.xml", "<ScriptSource", 1, wanted + u"ScriptSource,got=QScriptSource"_s);
  ExpectTag("all_controls.xml", "<DefaultVal", 1, wanted + u"DefaultVal,got=QDefaultVal"_s);
  ExpectTag("blobs.xml", "<Bytes", 1, wanted + u"Bytes,got=QBytes"_s);
  ExpectTag("one_card.xml", "<Elem", 1, wanted + u"Elem,got=QElem"_s);
  ExpectTag("one_card.xml", "<VelumStack", 1, wanted + u"VelumStack,got=QVelumStack"_s);
}

TEST_F(XmlDamage, KindsOfTagsAreChecked) {
  Expect("one_card.xml", "<BlobStore gen", 1, "</BlobStore gen", u"GetTheSym sym"_s);
  Expect("one_card.xml", "</Card>", 1, "<Card>", u"ReadTheNext Card term"_s);
  Expect("sorted_up.xml", "pos=\"0\"/>", 1, "pos=\"0\">", u"Part term"_s);
  Expect("fonts_colors.xml", "<Array gen=\"3\"", 1, "<Array/", u"GetTheSym sym"_s);
}

TEST_F(XmlDamage, GenerationsBeyondAreRefused) {
  Expect("fonts_colors.xml", "<Font gen=\"0\"", 1, "<Font gen=\"1\"", u"gen"_s);
  Expect("blobs.xml", "<Blob gen=\"5\"", 1, "<Blob gen=\"2\"", u"gen"_s);
  EXPECT_EQ(Failure(Replaced(Case("blobs.xml"), "<Blob gen=\"5\"", 1, "<Blob gen=\"3\"")), u""_s);
  EXPECT_NE(Failure(Replaced(Case("all_controls.xml"), "<Control gen=\"3\"", 1, "<Control gen=\"1\"")),
            u""_s);
  EXPECT_NE(Failure(Replaced(Case("all_controls.xml"), "<Control gen=\"3\"", 1, "<Control gen=\"4\"")),
            u""_s);
  EXPECT_EQ(Failure(Replaced(Case("one_card.xml"), "<BlobStore gen=\"0\"", 1, "<BlobStore gen=\"3\"")),
            u""_s);
}

TEST_F(XmlDamage, MissingCountsAndFlagsMeanNone) {
  QByteArray text = Case("one_card.xml");
  for (const char* name : {" numScripts=\"0\"", " fontDef=\"0\"", " listFontDef=\"0\"", " numListCol=\"0\""})
    text.replace(name, "");
  EXPECT_EQ(Failure(text), u""_s);
  const QByteArray flags = text.mid(text.indexOf("<Card "), 400);
  EXPECT_EQ(Failure(Replaced(text, " flags=\"0\"", 1, "")), u""_s) << flags.toStdString();
}

TEST_F(XmlDamage, CutAtAnyByteItEndsCleanly) {
  const QByteArray bytes = Case("empty.xml");
  for (qsizetype len = 1; len < bytes.lastIndexOf('>'); ++len)
    EXPECT_FALSE(Failure(bytes.first(len)).isEmpty()) << len;
}

TEST_F(XmlDamage, CutAtAnyByteItEndsCleanlyWhenOverruled) {
  const QByteArray bytes = Case("empty.xml");
  iPresenter.SetDefaultAnswer(true);
  // Of a cut in the last tag nothing is left but questions.
  for (qsizetype len = 1; len < bytes.lastIndexOf('<'); ++len)
    EXPECT_FALSE(Failure(bytes.first(len)).isEmpty()) << len;
}

TEST_F(XmlDamage, AnyByteChangedItEndsCleanly) {
  const QByteArray bytes = Case("empty.xml");
  for (qsizetype pos = 0; pos < bytes.size(); ++pos) {
    iPresenter.SetDefaultAnswer(pos % 2 == 0);
    for (const int ch : {int{'<'}, bytes[pos] ^ 1}) {
      QByteArray changed = bytes;
      changed[pos] = static_cast<char>(ch);
      static_cast<void>(Failure(changed)); // any outcome but harm
    }
  }
}

} // namespace
