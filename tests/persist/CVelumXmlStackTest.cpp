#include "persist/CVelumXmlStack.h"

#include "persist/StackTeller.h"
#include "persist/XmlStackTest.h"

namespace {

using GoodXml = XmlStack;

TEST_P(GoodXml, SaysWhatItsDescriptionSays) {
  LoadCase(EGood, GetParam());
  const QJsonObject expected = CaseFiles::Expected(PathOf(EGood, GetParam()));
  EXPECT_EQ(StackTeller::Difference(expected[u"canonical"_s], StackTeller::Tell(*iStack, *iView), {}), u""_s);
  EXPECT_EQ(iStack->OrderCorrections(), expected[u"orderCorrections"_s].toInt());
  EXPECT_EQ(iPresenter.Count(), 0);
  EXPECT_FALSE(iStack->Flag(EStaBinary));
  EXPECT_EQ(iStack->Id(), 0);
  EXPECT_EQ(iStack->Filename(), iPath);
}

TEST_P(GoodXml, SavedAgainIsTheSameText) {
  LoadCase(EGood, GetParam());
  EXPECT_EQ(Saved(), CaseFiles::Bytes(PathOf(EGood, GetParam())));
  EXPECT_FALSE(iStack->Changed());
  EXPECT_EQ(iStack->Filename(), iFolder.Path(u"saved.xml"_s));
}

TEST_P(GoodXml, AsBinaryAndBackIsTheSameText) {
  LoadCase(EGood, GetParam());
  iStack->SetFlag(EStaBinary, true);
  const QString path = iFolder.Path(u"b.Orvelle"_s);
  CVelumStackFile(path).SaveStack(iStack, iView);
  CVelumStackFile(path).LoadStack(iStack, iView);
  iStack->SetFlag(EStaBinary, false);
  QByteArray text = Saved();
  // Where the binary file had its blobs.
  text.replace(text.indexOf("startPos=\"") + 10,
               text.indexOf('"', text.indexOf("startPos=\"") + 10) - text.indexOf("startPos=\"") - 10,
               "1999999999");
  EXPECT_EQ(text, CaseFiles::Bytes(PathOf(EGood, GetParam())));
}

TEST_P(GoodXml, CutAnywhereFailsCleanly) {
  const QByteArray bytes = CaseFiles::Bytes(PathOf(EGood, GetParam()));
  for (bool overrule : {false, true}) {
    iPresenter.SetDefaultAnswer(overrule);
    for (qsizetype len = 1; len < bytes.size() - 16; len += 211)
      EXPECT_NE(Failure(bytes.first(len)), u""_s) << len;
  }
}

TEST_P(GoodXml, ChangedBytesNeverHarm) {
  const QByteArray bytes = CaseFiles::Bytes(PathOf(EGood, GetParam()));
  for (bool overrule : {false, true}) {
    iPresenter.SetDefaultAnswer(overrule);
    for (qsizetype pos = 0; pos < bytes.size(); pos += 157)
      for (const char ch : {'\0', '<', '9', '"'}) {
        QByteArray changed = bytes;
        changed[pos] = ch;
        static_cast<void>(Failure(changed)); // any outcome but harm
      }
  }
}

INSTANTIATE_TEST_SUITE_P(Files, GoodXml, testing::ValuesIn(CaseFiles::Names(EGood, u"*.xml"_s)),
                         CaseFiles::TestName);

using OddXml = XmlStack;

TEST_P(OddXml, IsAnsweredAsDescribed) {
  const QJsonObject expected = CaseFiles::Expected(PathOf(EOdd, GetParam()));
  const QByteArray bytes = CaseFiles::Bytes(PathOf(EOdd, GetParam()));
  if (expected.contains(u"canonical"_s)) {
    Load(bytes);
    EXPECT_EQ(StackTeller::Difference(expected[u"canonical"_s], StackTeller::Tell(*iStack, *iView), {}),
              u""_s);
    return;
  }
  const QString shown = Failure(bytes);
  EXPECT_TRUE(shown.contains(expected[u"text"_s].toString())) << shown.toStdString();
}

INSTANTIATE_TEST_SUITE_P(Files, OddXml, testing::ValuesIn(CaseFiles::Names(EOdd, u"*.xml"_s)),
                         CaseFiles::TestName);

// A document with something of everything, as text.
class XmlText : public XmlStack {
protected:
  QByteArray Text() { return CaseFiles::Bytes(PathOf(EGood, "one_card.xml")); }
  void ExpectFailure(const QByteArray& aFind, const QByteArray& aReplace, const QString& aText) {
    QByteArray bytes = Text();
    ASSERT_TRUE(bytes.contains(aFind)) << aFind.toStdString();
    bytes.replace(bytes.indexOf(aFind), aFind.size(), aReplace);
    const QString shown = Failure(bytes);
    EXPECT_TRUE(shown.contains(aText)) << shown.toStdString();
  }
};

TEST_F(XmlText, GenerationsAreChecked) {
  ExpectFailure("<Stack gen=\"4\"", "<Stack gen=\"5\"", u"InternalizeXml gen"_s);
  ExpectFailure("<ControlSet gen=\"3\"", "<ControlSet gen=\"2\"", u"gen"_s);
  ExpectFailure("<Card gen=\"1\"", "<Card gen=\"0\"", u"gen"_s);
  ExpectFailure("<BlobStore gen=\"0\"", "<BlobStore gen=\"1\"", u"gen"_s);
  ExpectFailure("<Rect gen=\"1\"", "<Rect gen=\"0\"", u"gen"_s);
}

TEST_F(XmlText, RootAttributesAreReadAndIgnored) {
  QByteArray bytes = Text();
  bytes.replace("<VelumStack>", "<VelumStack a=\"1\" b=\"x\">");
  EXPECT_EQ(Failure(bytes), u""_s);
}

TEST_F(XmlText, ChildrenAreTakenByTheirPlace) {
  ExpectFailure("<IdGen ", "<Gen ", u"InternalizeXml iIdGen"_s);
  ExpectFailure("<BlobStore", "<Store", u"InternalizeXml iBlobStore"_s);
  ExpectFailure("<StackView", "<View", u"LoadXml iStackView"_s);
  ExpectFailure("<Stack ", "<Stock ", u"LoadXml iStack"_s);
  ExpectFailure("<Rect", "<Rekt", u"iCardViewRect"_s);
  ExpectFailure("<ControlSet ", "<Card ", u"InternalizeXml iControlSet"_s);
}

TEST_F(XmlText, AnUnknownElementTypeIsToldByTheTextOfTheWriter) {
  ExpectFailure("<Elem type=\"100\"", "<Elem type=\"7\"", u"iElem.iVal.iType"_s);
}

TEST_F(XmlText, AnEmptyStructureElementIsRefused) {
  ExpectFailure("<Elem intKey=\"0\" type=\"102\">", "<Elem intKey=\"0\" type=\"102\"/>",
                u"InternalizeXml term"_s);
}

TEST_F(XmlText, AHugeCapacityIsNoMemory) {
  ExpectFailure("alloc=\"10\"", "alloc=\"2000000000\"", u"7"_s);
}

TEST_F(XmlText, AHugeCountEndsWithTheFile) {
  iPresenter.SetDefaultAnswer(true);
  QByteArray bytes = Text();
  bytes.replace("max=\"0\"", "max=\"2147483000\"");
  EXPECT_NE(Failure(bytes), u""_s);
}

TEST_F(XmlText, ANewStackHasAllItsArrays) {
  iStack = MakeRef<CVelumStack>(u"new"_s);
  iView = MakeRef<CVelumViewState>(u"new"_s);
  const QByteArray text = Saved();
  EXPECT_EQ(text.count("\r\n    <Array "), 6);
  EXPECT_EQ(text.count("<BlobStore "), 1);
  EXPECT_EQ(text.count("max=\"0\""), 2 + 5 + 3) << "of the background, of the stack, of the store";
}

class XmlSave : public XmlStack {
protected:
  XmlSave() {
    LoadCase(EGood, "blobs.xml");
    iBefore = iFolder.Read(u"t.xml"_s);
  }
  void Save() { CVelumStackFile(iPath).SaveStack(iStack, iView); }
  QByteArray iBefore;
};

TEST_F(XmlSave, ALongBlobIsLinesOfEightyCharacters) {
  Ref<CVelumBlob> blob = MakeRef<CVelumBlob>(iStack->IdGen().NextId());
  blob->SetBytes(QByteArray(1'000'000, '\xAB'));
  iStack->BlobStore()->AddBlob(blob);
  const QByteArray text = Saved();
  EXPECT_EQ(text.count(QByteArray("AB").repeated(40)), 25000);
  Load(text);
  EXPECT_EQ(iStack->BlobStore()->ReadBlob(blob->Id(), false)->Bytes(), blob->Bytes());
  EXPECT_EQ(iPresenter.Count(), 0);
}

TEST_F(XmlSave, ATextThatCouldNotBeReadBackIsRefusedAndTheOldFileStays) {
  iStack->SetDescr(u"a\x01z"_s);
  try {
    Save();
    FAIL();
  } catch (const CVelumException& e) {
    EXPECT_EQ(e.Number(), EMsgCouldNotSave);
  }
  EXPECT_EQ(iFolder.Read(u"t.xml"_s), iBefore);
  EXPECT_TRUE(iStack->Changed());
  iStack->SetDescr(u"mended"_s);
  Save();
  EXPECT_TRUE(iFolder.Read(u"t.xml"_s).contains("mended"));
  EXPECT_FALSE(iFolder.Has(u"t.xml-new"_s));
}

// Saved as binary once, it lies in memory as a binary stack does: the file that is there does not decide.
TEST_F(XmlSave, AStackThatIsNotBinaryIsWrittenAsXmlOverABinaryFile) {
  const QString path = iFolder.Path(u"b.Orvelle"_s);
  iStack->SetFlag(EStaBinary, true);
  CVelumStackFile(path).SaveStack(iStack, iView);
  iStack->SetFilename(path);
  ASSERT_TRUE(CVelumStackFile(path).IsBinStack());
  iStack->SetFlag(EStaBinary, false);
  CVelumStackFile(path).SaveStack(iStack, iView);
  EXPECT_TRUE(CVelumStackFile(path).IsXmlStack());
  EXPECT_TRUE(iFolder.Read(u"b.Orvelle"_s).contains("<VelumStack"));
  EXPECT_EQ(iPresenter.Count(), 0);
}

// All pictures are only in memory, which must not let one go.
TEST_F(XmlSave, EveryPictureHasAHolderAfterALoad) {
  const CVelumBlobStore& store = *iStack->BlobStore();
  ASSERT_GT(store.Cache().Count(), 0);
  for (qint32 i = 0; i < store.Cache().Count(); ++i)
    EXPECT_EQ(static_cast<const CVelumBlob*>(store.Cache().ValRef(i).Obj())->DynRefCount(), 1) << i;
}

TEST_F(XmlSave, AnotherVersionOfTheFileIsKept) {
  iFolder.Write(u"t.xml"_s, "<other/>");
  Save();
  ASSERT_EQ(iPresenter.Told().size(), 1);
  EXPECT_TRUE(iPresenter.Told().first().contains(u"other version"_s));
  Save();
  EXPECT_EQ(iPresenter.Told().size(), 1) << "the file is known again";
}

TEST_F(XmlSave, AFailedSaveOfABinaryStackLeavesItsPicturesOnFile) {
  iStack->SetFlag(EStaBinary, true);
  const QString path = iFolder.Path(u"b.Orvelle"_s);
  CVelumStackFile(path).SaveStack(iStack, iView);
  CVelumStackFile(path).LoadStack(iStack, iView);
  iStack->SetFlag(EStaBinary, false);
  iStack->SetDescr(u"a\x01z"_s);
  EXPECT_THROW(CVelumStackFile(iFolder.Path(u"x.xml"_s)).SaveStack(iStack, iView), CVelumException);
  EXPECT_FALSE(iFolder.Has(u"x.xml"_s));
  iStack->SetFlag(EStaBinary, true);
  iStack->SetDescr(u"mended"_s);
  CVelumStackFile(path).SaveStack(iStack, iView);
  CVelumStackFile(path).LoadStack(iStack, iView);
  iStack->SetFlag(EStaBinary, false);
  iStack->SetDescr({});
  QByteArray text = Saved();
  EXPECT_EQ(text.mid(text.indexOf("<Blob ")), iBefore.mid(iBefore.indexOf("<Blob ")));
}

TEST_F(XmlSave, ADamagedPictureIsAReasonNotToSave) {
  iStack->SetFlag(EStaBinary, true);
  const QString path = iFolder.Path(u"b.Orvelle"_s);
  CVelumStackFile(path).SaveStack(iStack, iView);
  const qint32 id = iStack->BlobStore()->Index().IntKeyAt(0);
  const qint32 pos =
      iStack->BlobStore()->PosTab().ValRef(iStack->BlobStore()->Index().ValRef(0).Int()).Int0();
  CVelumFile file(path, EFilReadWrite);
  file.OpenFile();
  file.SeekPos(pos);
  file.WriteRawBytes(QByteArray(6, '\xee'));
  file.CloseFile();
  iPresenter.SetDefaultAnswer(true);
  CVelumStackFile(path).LoadStack(iStack, iView);
  iStack->SetFlag(EStaBinary, false);
  for (const bool known : {false, true}) {
    try {
      CVelumStackFile(iFolder.Path(u"x.xml"_s)).SaveStack(iStack, iView);
      FAIL();
    } catch (const CVelumException& e) {
      EXPECT_EQ(e.Number(), EMsgCouldNotSave);
      const QString reason = e.Descr();
      EXPECT_TRUE(reason.contains(u"are damaged"_s) && reason.contains(u"binary format"_s))
          << reason.toStdString();
      EXPECT_EQ(reason.contains(u"(%1)"_s.arg(id)), known);
    }
    EXPECT_FALSE(iFolder.Has(u"x.xml"_s));
    // Reading any picture checks the others.
    const qint32 other = iStack->BlobStore()->Index().IntKeyAt(1);
    if (!known) static_cast<void>(iStack->BlobStore()->ReadBlob(other, false));
  }
  iStack->SetFlag(EStaBinary, true);
  CVelumStackFile(path).SaveStack(iStack, iView);
}

} // namespace
