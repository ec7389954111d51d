#include "model/blobs/CVelumBlob.h"

#include "core/CVelumMsg.h"
#include "core/CVelumValue.h"
#include "core/file/CVelumFile.h"
#include "support/PrintQt.h"
#include "support/ScriptedPresenter.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace {

class CVelumBlobTest : public testing::Test {
protected:
  // A blob whose stored form does not depend on the clock.
  static Ref<CVelumBlob> Make(qint32 aId) {
    auto blob = MakeRef<CVelumBlob>(aId);
    blob->SetName(u"a"_s);
    blob->SetFilename(u"/b"_s);
    blob->SetMimeType(u"c"_s);
    blob->SetCreDate(CVelumValue::IntToDate(20040229));
    blob->SetCreTime(CVelumValue::IntToTime(235959));
    blob->SetFileDate(CVelumValue::IntToDate(20030704));
    blob->SetFileTime(CVelumValue::IntToTime(90807));
    blob->SetOriginalId(1);
    blob->SetSampleId(2);
    blob->SetWidth(3);
    blob->SetHeight(4);
    blob->SetBytes("xyz");
    return blob;
  }
  QByteArray Written(CVelumBlob& aBlob) {
    CVelumFile file(iFolder.Path(u"f"_s), EFilWrite);
    file.OpenFile();
    aBlob.Externalize(file);
    file.CloseFile();
    return iFolder.Read(u"f"_s);
  }
  Ref<CVelumBlob> ReadHex(const char* aHex, bool aInfoOnly = false) {
    CVelumFile file(iFolder.Write(u"f"_s, QByteArray::fromHex(aHex)), EFilRead);
    file.OpenFile();
    auto blob = MakeRef<CVelumBlob>();
    blob->SetInfoOnly(aInfoOnly);
    blob->Internalize(file);
    iBehind = file.CurrentPos();
    return blob;
  }
  TempFolder iFolder;
  ScriptedPresenter iPresenter;
  qint64 iBehind = 0;
};

TEST_F(CVelumBlobTest, ConstructSetsItsMembers) {
  CVelumBlob blob(7);
  EXPECT_EQ(blob.ObjDescr(), u"CVelumBlob 7"_s);
  EXPECT_EQ(blob.BlobType(), 0);
  EXPECT_EQ(blob.OriginalId(), ENoInt);
  EXPECT_EQ(blob.SampleId(), ENoInt);
  EXPECT_EQ(blob.Width(), ENoShort);
  EXPECT_EQ(blob.Height(), ENoShort);
  EXPECT_EQ(blob.CreDate(), CVelumValue::Today());
  EXPECT_EQ(blob.FileDate(), blob.CreDate());
  EXPECT_EQ(blob.FileTime(), blob.CreTime());
  EXPECT_TRUE(blob.Changed());
  EXPECT_FALSE(blob.OnFile());
  EXPECT_FALSE(blob.InfoOnly());
  EXPECT_EQ(blob.RefCount(), 0);
  EXPECT_EQ(blob.DynRefCount(), 0);
}

const char* const EGen5 = "0a000500 05000000 0000 02006100 04002f006200 25ca3101 b7990300 f0a43101 b7620100"
                          "02006300 01000000 02000000 0300 0400 00000000 0300000078797a";

TEST_F(CVelumBlobTest, HasItsBytes) {
  Ref<CVelumBlob> blob = Make(5);
  EXPECT_EQ(Written(*blob).toHex(), QByteArray::fromHex(EGen5).toHex());
  EXPECT_EQ(blob->ExtLen(), QByteArray::fromHex(EGen5).size());
  EXPECT_TRUE(blob->OnFile());
}

TEST_F(CVelumBlobTest, ReadsBack) {
  Ref<CVelumBlob> blob = ReadHex(EGen5);
  EXPECT_EQ(blob->Id(), 5);
  EXPECT_EQ(blob->Filename(), u"/b"_s);
  EXPECT_EQ(CVelumValue::TimeToInt(blob->FileTime()), 90807);
  EXPECT_EQ(blob->SampleId(), 2);
  EXPECT_EQ(blob->Height(), 4);
  EXPECT_EQ(blob->Bytes(), QByteArray("xyz"));
  EXPECT_TRUE(blob->OnFile());
  EXPECT_FALSE(blob->Changed());
}

TEST_F(CVelumBlobTest, OlderGenerationsLackMembers) {
  Ref<CVelumBlob> gen3 = ReadHex("0a000300 05000000 0000 0000 0000 25ca3101 b7990300 f0a43101 b7620100 0000"
                                 "00000000 0300000078797a");
  EXPECT_EQ(gen3->OriginalId(), ENoInt);
  EXPECT_EQ(gen3->SampleId(), ENoInt);
  EXPECT_EQ(gen3->Width(), ENoShort);
  EXPECT_EQ(gen3->Bytes(), QByteArray("xyz"));
  EXPECT_EQ(Written(*gen3).left(4), QByteArray::fromHex("0a000500")) << "written as the newest";
  Ref<CVelumBlob> gen4 = ReadHex("0a000400 05000000 0000 0000 0000 25ca3101 b7990300 f0a43101 b7620100 0000"
                                 "01000000 02000000 00000000 0300000078797a");
  EXPECT_EQ(gen4->OriginalId(), 1);
  EXPECT_EQ(gen4->Height(), ENoShort);
  EXPECT_THROW((void)ReadHex("0a000200"), CVelumException);
  EXPECT_EQ(gLastError.iMsgId, EMsgGenTooLow);
  EXPECT_THROW((void)ReadHex("0a000600"), CVelumException);
  EXPECT_EQ(gLastError.iMsgId, EMsgGenTooHigh);
}

TEST_F(CVelumBlobTest, InfoOnlyLeavesTheContentAndCannotBeWritten) {
  Ref<CVelumBlob> blob = ReadHex(EGen5, true);
  EXPECT_EQ(blob->SampleId(), 2);
  EXPECT_TRUE(blob->Bytes().isEmpty());
  EXPECT_EQ(iBehind, QByteArray::fromHex(EGen5).size() - 7);
  EXPECT_THROW(Written(*blob), CVelumException);
  EXPECT_TRUE(iPresenter.LastText().contains(u"iInfoOnly"_s));
  iPresenter.SetDefaultAnswer(true);
  EXPECT_THROW(Written(*blob), CVelumException);
  EXPECT_EQ(iFolder.Read(u"f"_s), QByteArray::fromHex(EGen5)) << "nothing was written";
}

TEST_F(CVelumBlobTest, Counts) {
  Ref<CVelumBlob> blob = ReadHex(EGen5);
  blob->IncRefCount();
  EXPECT_TRUE(blob->Changed());
  blob->SetChanged(false);
  blob->DecRefCount();
  EXPECT_FALSE(blob->Changed()) << "a fallen count does not mark";
  EXPECT_TRUE(blob->DiffersFromFile()) << "but it has to be saved";
  blob->SetChanged(false);
  EXPECT_FALSE(blob->DiffersFromFile());
  EXPECT_THROW(blob->DecRefCount(), CVelumException);
  EXPECT_TRUE(iPresenter.LastText().contains(u"iRefCount"_s));
  EXPECT_THROW(blob->DecDynRefCount(), CVelumException);
  EXPECT_TRUE(iPresenter.LastText().contains(u"iDynRefCount"_s));
  iPresenter.SetDefaultAnswer(true);
  blob->DecRefCount();
  EXPECT_EQ(blob->RefCount(), 0);
}

TEST_F(CVelumBlobTest, SpanTellsIdAndLengthWithoutTheContent) {
  QByteArray bytes = QByteArray(3, 'x') + QByteArray::fromHex(EGen5).chopped(3); // the content is cut off
  CVelumFile file(iFolder.Write(u"f"_s, bytes), EFilRead);
  file.OpenFile();
  CVelumBlob::TSpan span = CVelumBlob::SpanAt(file, 3);
  EXPECT_EQ(span.iId, 5);
  EXPECT_EQ(span.iLen, QByteArray::fromHex(EGen5).size());
  EXPECT_THROW((void)CVelumBlob::SpanAt(file, 2), CVelumException);
  EXPECT_EQ(gLastError.iMsgId, EMsgBadStruct);
  EXPECT_THROW((void)CVelumBlob::SpanAt(file, -1), CVelumException);
}

TEST_F(CVelumBlobTest, SpanReadsLongDescriptions) {
  Ref<CVelumBlob> blob = Make(5);
  blob->SetName(QString(15000, u'n'));
  blob->SetFilename(QString(15000, u'f'));
  Written(*blob);
  CVelumFile file(iFolder.Path(u"f"_s), EFilRead);
  file.OpenFile();
  EXPECT_EQ(CVelumBlob::SpanAt(file, 0).iLen, blob->ExtLen());
}

} // namespace
