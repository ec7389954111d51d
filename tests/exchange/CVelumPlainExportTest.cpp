#include "exchange/CVelumPlainExport.h"

#include "CsvImportTest.h"
#include "support/Raised.h"

namespace {

class CVelumPlainExportTest : public CsvImportTest {
protected:
  // A field of the background, with one card.
  void Make(const QList<qint32>& aTypes) {
    iNew.iStack = MakeRef<CVelumStack>(u"s"_s);
    for (const qint32 type : aTypes)
      Set()->AddControl(MakeRef<CVelumControl>(iNew.iStack->IdGen().NextId(), u"f"_s, type), ENoInt);
    iCard = MakeRef<CVelumCard>(u"1"_s, Set());
    iNew.iStack->AddCard(iCard, nullptr, false);
  }
  void Value(qint32 aField, const TVelumValue& aValue) { iCard->SetControlVal(Field(aField).Id(), aValue); }

  Ref<CVelumCard> iCard;
};

TEST_F(CVelumPlainExportTest, WritesValuesForOtherPrograms) {
  Make({EConText, EConInteger, EConReal, EConReal, EConDate, EConTime, EConBoolean, EConText});
  Value(0, TVelumValue::OfStr(u"\u00E9\u20AC"_s));
  Value(1, TVelumValue::OfInt(1234567));
  Value(2, TVelumValue::OfReal(1234567.123456789));
  Value(3, TVelumValue::OfReal(12));
  Value(4, TVelumValue::OfDate(ENoDate));
  Value(5, TVelumValue::OfTime(0.5));
  Value(6, TVelumValue::OfBoolean(false));
  CVelumLocale::Init(u"de_DE"_s);
  EXPECT_EQ(Exported(), "f,f,f,f,f,f,f,f\r\n"
                        "\xC3\xA9\xE2\x82\xAC,1234567,1234567.123456789,12,1980-01-01,12:00:00,false,\r\n");
}

TEST_F(CVelumPlainExportTest, FindsValuesWhoseFieldsStandInAnotherOrder) {
  Make({EConText, EConText});
  const auto front = MakeRef<CVelumControl>(iNew.iStack->IdGen().NextId(), u"front"_s, EConText);
  Set()->AddControl(front, Field(0).Id());
  Value(0, TVelumValue::OfStr(u"a"_s));
  Value(1, TVelumValue::OfStr(u"b"_s));
  Value(2, TVelumValue::OfStr(u"c"_s));
  EXPECT_EQ(Exported(), "front,f,f\r\na,b,c\r\n");
}

TEST_F(CVelumPlainExportTest, QuotesOnlyWhereACellNeedsIt) {
  Make({EConText, EConText, EConText, EConText, EConText});
  Value(0, TVelumValue::OfStr(u" a;b "_s));
  Value(1, TVelumValue::OfStr(u"a,b"_s));
  Value(2, TVelumValue::OfStr(u"say \"x\""_s));
  Value(3, TVelumValue::OfStr(u"a\r\nb\nc\rd"_s));
  Field(4).SetDefaultVal(u"preset"_s);
  EXPECT_EQ(Exported(), "f,f,f,f,f\r\n a;b ,\"a,b\",\"say \"\"x\"\"\",\"a\r\nb\nc\rd\",\r\n");
  Value(4, TVelumValue::OfStr(u""_s));
  EXPECT_TRUE(Exported().endsWith(",\"\"\r\n")) << "an empty text is not the default";
  ASSERT_TRUE(CVelumPlainExport::Write(iFolder.Path(u"out.csv"_s), *Set(), u';'));
  EXPECT_TRUE(iFolder.Read(u"out.csv"_s).startsWith("f;f;f;f;f\r\n\" a;b \";a,b;"));
}

TEST_F(CVelumPlainExportTest, QuotesNumbersThatHoldTheDelimiter) {
  Make({EConReal, EConText});
  Value(0, TVelumValue::OfReal(-1.5));
  ASSERT_TRUE(CVelumPlainExport::Write(iFolder.Path(u"out.csv"_s), *Set(), u'.'));
  EXPECT_EQ(iFolder.Read(u"out.csv"_s), "f.f\r\n\"-1.5\".\r\n");
}

TEST_F(CVelumPlainExportTest, KeepsEveryCardOfOneFieldOnALine) {
  Make({EConInteger});
  EXPECT_EQ(Exported(), "f\r\n\"\"\r\n");
}

TEST_F(CVelumPlainExportTest, QuotesWhatWouldBeAMark) {
  Make({EConText, EConText});
  Field(0).SetName(QChar(0xFEFF) + u"x"_s);
  EXPECT_TRUE(Exported().startsWith("\"\xEF\xBB\xBFx\",f\r\n"));
}

TEST_F(CVelumPlainExportTest, LeavesOutWhatHasNoText) {
  Make({EConText, EConCommand, EConPicture, EConList});
  Field(2).SetName(u"photo"_s);
  Field(3).SetName(u"list"_s);
  Field(3).SetFlag(EConCardList, true);
  QStringList leftOut;
  ASSERT_TRUE(CVelumPlainExport::Write(iFolder.Path(u"out.csv"_s), *Set(), u',', {}, &leftOut));
  EXPECT_EQ(leftOut, QStringList({u"photo"_s, u"list"_s}));
  EXPECT_EQ(iFolder.Read(u"out.csv"_s), "f\r\n\"\"\r\n");
}

TEST_F(CVelumPlainExportTest, LeavesWhatIsThereUntilAllIsWritten) {
  Make({EConText});
  for (int i = 0; i < 2000; ++i)
    iNew.iStack->AddCard(MakeRef<CVelumCard>(QString::number(i), Set()), nullptr, false);
  const QString path = iFolder.Write(u"out.csv"_s, "old");
  EXPECT_FALSE(
      CVelumPlainExport::Write(path, *Set(), u',', [](qint64 aDone, qint64) { return aDone < 1000; }));
  EXPECT_EQ(iFolder.Read(u"out.csv"_s), "old");
  iNew.iStack->SetFilename(path);
  EXPECT_EQ(Raised([&] { CVelumPlainExport::Write(path, *Set()); }), EHostPermissionDenied);
}

} // namespace
