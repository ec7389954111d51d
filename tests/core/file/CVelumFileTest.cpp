#include "core/file/CVelumFile.h"

#include "core/CVelumLib.h"
#include "core/CVelumMsg.h"
#include "support/DropRights.h"
#include "support/FaultInjection.h"
#include "support/PrintQt.h"
#include "support/ScriptedPresenter.h"
#include "support/TempFolder.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

#include <cmath>
#include <fcntl.h>
#include <functional>
#include <sys/stat.h>
#include <unistd.h>

namespace {

class CVelumFileTest : public testing::Test {
protected:
  TempFolder iFolder;
  ScriptedPresenter iPresenter;

  QString Path(const QString& aName = u"f"_s) const { return iFolder.Path(aName); }
  QByteArray Bytes(const QString& aName = u"f"_s) const { return iFolder.Read(aName); }
  // The bytes that aWrite writes.
  QByteArray Written(const std::function<void(CVelumFile&)>& aWrite) {
    CVelumFile file(Path(), EFilWrite);
    file.OpenFile();
    aWrite(file);
    file.CloseFile();
    return Bytes();
  }
  static void ExpectError(qint32 aNumber, const std::function<void()>& aDo) {
    try {
      aDo();
      ADD_FAILURE() << "no failure, expected " << aNumber;
    } catch (const CVelumException& e) {
      EXPECT_EQ(e.Number(), aNumber) << e.what();
    }
  }
  // aDo fails an assertion with aText when the user says no.
  void ExpectAssert(const QString& aText, const std::function<void()>& aDo) {
    ExpectError(EMsgAssertFailed, aDo);
    EXPECT_TRUE(iPresenter.LastText().contains(aText)) << iPresenter.LastText().toStdString();
  }
  QList<QString> Lines(const QByteArray& aBytes, qint32 aCoding = ECodLatin1) {
    CVelumFile file(iFolder.Write(u"t"_s, aBytes), EFilSeqRead);
    file.SetCoding(aCoding);
    file.OpenFile();
    QList<QString> lines;
    QString line;
    while (file.ReadLine(line)) lines.append(line);
    file.CloseFile();
    return lines;
  }
};

TEST_F(CVelumFileTest, PrimitivesHaveTheirBytes) {
  EXPECT_EQ(Written([](CVelumFile& f) { f.WriteStr(u"ab"_s); }), QByteArray::fromHex("040061006200"));
  EXPECT_EQ(Written([](CVelumFile& f) { f.WriteStr({}); }).left(2), QByteArray::fromHex("0000"));
  CVelumLib::KillFile(Path());
  EXPECT_EQ(Written([](CVelumFile& f) {
              f.WriteByte(0xFE);
              f.WriteShort(-2);
              f.WriteInt(1999999999);
              f.WriteSingle(1.5F);
              f.WriteReal(-2.0);
              f.WriteBoolean(true);
              f.WriteBoolean(false);
              f.WriteBytes("xyz");
              f.WriteRawBytes("raw");
              f.WriteStr(u"\u20ac\U0001F600"_s);
            }),
            QByteArray::fromHex("fe feff ff933577 0000c03f 00000000000000c0 ffff 0000 0300000078797a 726177"
                                "0600ac203dd800de"));
}

TEST_F(CVelumFileTest, PrimitivesReadBack) {
  CVelumFile file(Path(), EFilReadWrite);
  file.OpenFile();
  for (int i = 0; i < 9000; ++i) { // crosses the buffer at odd places
    file.WriteInt(i);
    file.WriteStr(QString::number(i));
    file.WriteReal(i / 4.0);
    file.WriteBoolean(i % 3 == 0);
  }
  file.SeekPos(0);
  bool eof = true;
  for (int i = 0; i < 9000; ++i) {
    ASSERT_EQ(file.ReadInt(), i);
    ASSERT_EQ(file.ReadStr(), QString::number(i));
    ASSERT_EQ(file.ReadReal(), i / 4.0);
    ASSERT_EQ(file.ReadBoolean(), i % 3 == 0);
  }
  EXPECT_EQ(file.CurrentPos(), file.Size());
  EXPECT_EQ(file.ReadByte(eof), 0);
  EXPECT_FALSE(eof) << "the end of the file is not told";
}

TEST_F(CVelumFileTest, LengthsAreThoseOfTheBytes) {
  EXPECT_EQ(CVelumFile::ExtStrLen({}), 2);
  EXPECT_EQ(CVelumFile::ExtStrLen(u"ab"_s), 6);
  EXPECT_EQ(CVelumFile::ExtBytesLen("xyz"), 7);
}

TEST_F(CVelumFileTest, BehindTheEndAllIsZero) {
  iFolder.Write(u"f"_s, "\x01");
  CVelumFile file(Path(), EFilRead);
  file.OpenFile();
  EXPECT_EQ(file.ReadInt(), 1) << "what there is comes first";
  EXPECT_EQ(file.CurrentPos(), 1);
  EXPECT_EQ(file.ReadStr(), QString());
  EXPECT_EQ(file.ReadReal(), 0.0);
  EXPECT_EQ(file.ReadRawBytes(3), QByteArray(3, '\0'));
  EXPECT_EQ(file.BytesLeft(), 0);
}

TEST_F(CVelumFileTest, StrLengthIsChecked) {
  auto read = [this](const char* aLen) {
    iFolder.Write(u"f"_s, QByteArray::fromHex(aLen) + QByteArray(40000, 'a'));
    CVelumFile file(Path(), EFilRead);
    file.OpenFile();
    return file.ReadStr().size();
  };
  EXPECT_EQ(read("3075"), 15000);
  ExpectAssert(u"len 30002"_s, [&] { (void)read("3275"); });
  ExpectAssert(u"len -2"_s, [&] { (void)read("feff"); });
  iPresenter.SetDefaultAnswer(true);
  EXPECT_EQ(read("3275"), 15001);
  ExpectError(EHostIndex, [&] { (void)read("feff"); });
  EXPECT_EQ(read("0300"), 2) << "half a character";
}

TEST_F(CVelumFileTest, WriterTakesMoreThanTheReader) {
  QString str(16383, u'x');
  EXPECT_EQ(Written([&](CVelumFile& f) { f.WriteStr(str); }).size(), 32768);
  ExpectError(EHostOverflow, [&] { Written([&](CVelumFile& f) { f.WriteStr(str + u'x'); }); });
}

TEST_F(CVelumFileTest, BlockLengthIsChecked) {
  auto read = [this](const char* aLen, qsizetype aRest) {
    iFolder.Write(u"f"_s, QByteArray::fromHex(aLen) + QByteArray(aRest, 'a'));
    CVelumFile file(Path(), EFilRead);
    file.OpenFile();
    return file.ReadBytes();
  };
  EXPECT_EQ(read("80969800", 10000000).size(), 10000000);
  EXPECT_EQ(read("04000000", 2), QByteArray("aa\0\0", 4)) << "a file cut short";
  ExpectAssert(u"len 10000001"_s, [&] { (void)read("81969800", 1); });
  ExpectAssert(u"len -1"_s, [&] { (void)read("ffffffff", 1); });
  ExpectError(EHostIndex, [&] { (void)read("00000000", 1); });
  ExpectError(EHostOutOfMemory, [&] { (void)read("80969800", 100); });
  iPresenter.SetDefaultAnswer(true);
  ExpectError(EHostIndex, [&] { (void)read("ffffffff", 1); });
  ExpectError(EHostOutOfMemory, [&] { (void)read("ffffff7f", 1); });
}

TEST_F(CVelumFileTest, EmptyBlocksFail) {
  ExpectError(EHostIndex, [this] { Written([](CVelumFile& f) { f.WriteBytes({}); }); });
  ExpectError(EHostIndex, [this] { Written([](CVelumFile& f) { f.WriteRawBytes({}); }); });
}

TEST_F(CVelumFileTest, TwoOnOneFileSeeEachOthersBytes) {
  CVelumFile a(Path(), EFilReadWrite);
  CVelumFile b(Path(), EFilReadWrite);
  a.OpenFile();
  b.OpenFile();
  a.WriteInt(1);
  a.WriteInt(2);
  EXPECT_EQ(b.ReadInt(), 1);
  EXPECT_EQ(b.Size(), 8);
  a.SeekPos(4);
  a.WriteInt(3);
  EXPECT_EQ(b.ReadInt(), 3) << "b had these bytes in its buffer";
  b.WriteInt(4);
  EXPECT_EQ(a.ReadInt(), 4);
  a.SeekPos(0);
  b.SeekPos(0);
  a.WriteInt(5);
  b.WriteInt(6); // the later one stands
  EXPECT_EQ(a.PeekAt(0, 100).toHex(), "06000000030000"
                                      "0004000000");
  EXPECT_EQ(a.CurrentPos(), 4);
  EXPECT_EQ(a.ReadInt(), 3);
}

TEST_F(CVelumFileTest, LargePiecesGoPastTheBuffer) {
  QByteArray big(300000, 'b');
  CVelumFile file(Path(), EFilReadWrite);
  file.OpenFile();
  file.WriteInt(7);
  file.WriteRawBytes(big);
  file.WriteInt(8);
  EXPECT_EQ(file.CurrentPos(), 300008);
  file.SeekPos(4);
  EXPECT_EQ(file.ReadRawBytes(300000), big);
  EXPECT_EQ(file.ReadInt(), 8);
  file.Truncate(4);
  EXPECT_EQ(file.Size(), 4);
}

TEST_F(CVelumFileTest, AccessIsAsserted) {
  CVelumFile reader(Path(), EFilRead);
  CVelumFile writer(Path(), EFilWrite);
  CVelumFile text(iFolder.Write(u"t"_s, "abc"), EFilSeqRead);
  CVelumFile out(Path(u"o"_s), EFilSeqWrite);
  for (CVelumFile* f : {&reader, &writer, &text, &out}) f->OpenFile();
  QString line;
  ExpectAssert(u"Access EFilWrite 0"_s, [&] { reader.WriteInt(1); });
  ExpectAssert(u"Access EFilWrite 0"_s, [&] { reader.WriteStr(u"a"_s); });
  ExpectAssert(u"Access EFilWrite 0"_s, [&] { reader.WriteBytes("a"); });
  ExpectAssert(u"Access EFilRead2"_s, [&] { (void)writer.ReadInt(); });
  ExpectAssert(u"Access EFilRead2"_s, [&] { (void)writer.ReadStr(); });
  ExpectAssert(u"Access EFilRead2"_s, [&] { (void)writer.ReadBytes(); });
  ExpectAssert(u"Access EFilRead2"_s, [&] { (void)writer.ReadRawBytes(1); });
  ExpectAssert(u"Access EFilSeqRead 3"_s, [&] { (void)out.ReadLine(line); });
  ExpectAssert(u"Access EFilSeqWrite 1"_s, [&] { text.WriteLine(line); });
  ExpectAssert(u"handle"_s, [&] { text.SeekPos(0); });
  ExpectAssert(u"handle"_s, [&] { (void)text.CurrentPos(); });
  ExpectAssert(u"handle"_s, [&] { (void)text.ReadInt(); });
  iPresenter.SetDefaultAnswer(true);
  writer.WriteInt(258);
  writer.SeekPos(0);
  EXPECT_EQ(writer.ReadInt(), 258);
  ExpectError(EHostBadCall, [&] { text.SeekPos(0); });
  ExpectError(EHostBadCall, [&] { (void)writer.ReadLine(line); });
  ExpectError(EHostBadCall, [&] { text.WriteLine(line); });
}

TEST_F(CVelumFileTest, ObjDescr) {
  EXPECT_EQ(CVelumFile(u"/a/b"_s, 4).ObjDescr(), u"CVelumFile name=/a/b, access=4"_s);
}

TEST_F(CVelumFileTest, ClosedFile) {
  CVelumFile file(Path(), EFilReadWrite);
  EXPECT_FALSE(file.IsOpen());
  ExpectError(EHostBadCall, [&] { (void)file.ReadInt(); });
  file.OpenFile();
  file.WriteInt(1);
  file.CloseFile();
  file.CloseFile();
  EXPECT_TRUE(file.IsOpen());
  ExpectError(EHostBadCall, [&] { (void)file.ReadInt(); });
  ExpectError(EHostBadCall, [&] { file.WriteInt(1); });
}

TEST_F(CVelumFileTest, OpeningCreates) {
  CVelumFile file(Path(), EFilRead);
  file.OpenFile();
  EXPECT_TRUE(iFolder.Has(u"f"_s));
  EXPECT_EQ(file.Size(), 0);
}

TEST_F(CVelumFileTest, OpeningFails) {
  ExpectError(EMsgNoFileAccess, [this] { CVelumFile(iFolder.Path(), EFilRead).OpenFile(); });
  EXPECT_EQ(gLastError.iP0, iFolder.Path());
  EXPECT_EQ(gLastError.iP1, u"0"_s);
  ExpectError(EMsgFileNotFound, [this] { CVelumFile(Path(u"no/f"_s), EFilReadWrite).OpenFile(); });
  ExpectError(EMsgFileNotFound, [this] { CVelumFile(Path(), EFilSeqRead).OpenFile(); });
  ExpectError(EMsgNoFileAccess, [this] { CVelumFile(iFolder.Path(), EFilSeqRead).OpenFile(); });
  FaultInjection faults(FaultInjection::EAct::Stay, 0, 5 /* EIO */);
  ExpectError(EHostDeviceIo, [this] { CVelumFile(Path(), EFilSeqRead).OpenFile(); });
}

TEST_F(CVelumFileTest, AFileThatMayNotBeWrittenIsOnlyRead) {
  iFolder.Write(u"f"_s, "abc");
  DropRights::SetMode(Path(), 0444);
  DropRights::SetMode(iFolder.Path(), 0755);
  const DropRights nobody;
  if (!nobody.Works()) GTEST_SKIP() << "root cannot be given up here";
  for (const EFil access : {EFilRead, EFilReadWrite}) {
    CVelumFile file(Path(), access);
    file.OpenFile();
    EXPECT_TRUE(file.ReadOnly());
    EXPECT_EQ(file.ReadRawBytes(3), "abc");
    EXPECT_TRUE(file.TryLockShared());
    EXPECT_TRUE(file.TryLockAlone());
  }
  ExpectError(EMsgNoFileAccess, [this] { CVelumFile(Path(), EFilWrite).OpenFile(); });
  ExpectError(EMsgNoFileAccess, [this] { CVelumFile(Path(), EFilSeqWrite).OpenFile(); });
}

TEST_F(CVelumFileTest, OnlyWhatIsNotThereIsNotFound) {
  iFolder.Write(u"f"_s, "abc");
  DropRights::SetMode(Path(), 0);
  DropRights::SetMode(iFolder.Path(), 0755);
  const QString inside = Path(u"shut"_s) + u"/f"_s;
  QDir(iFolder.Path()).mkdir(u"shut"_s);
  DropRights::SetMode(Path(u"shut"_s), 0);
  const DropRights nobody;
  if (!nobody.Works()) GTEST_SKIP() << "root cannot be given up here";
  for (const EFil access : {EFilRead, EFilReadWrite, EFilWrite}) {
    ExpectError(EMsgNoFileAccess, [&] { CVelumFile(Path(), access).OpenFile(); });
    ExpectError(EMsgNoFileAccess, [&] { CVelumFile(inside, access).OpenFile(); });
  }
  ExpectError(EMsgFileNotFound, [&] { CVelumFile(Path(u"none"_s), EFilReadWrite).OpenFile(); });
}

TEST_F(CVelumFileTest, PipesAreRefusedWithoutWaiting) {
  ASSERT_EQ(::mkfifo(QFile::encodeName(Path()).constData(), 0444), 0);
  DropRights::SetMode(iFolder.Path(), 0755);
  ExpectError(EMsgNoFileAccess, [this] { CVelumFile(Path(), EFilRead).OpenFile(); });
  const DropRights nobody;
  ExpectError(EMsgNoFileAccess, [this] { CVelumFile(Path(), EFilRead).OpenFile(); });
}

TEST_F(CVelumFileTest, ABrokenDiskIsNoMissingFile) {
  FaultInjection faults(FaultInjection::EAct::Stay, 0, 5 /* EIO */);
  ExpectError(EHostDeviceIo, [this] { CVelumFile(Path(), EFilRead).OpenFile(); });
}

TEST_F(CVelumFileTest, FailedWriteIsToldWithThePath) {
  CVelumFile file(Path(), EFilReadWrite);
  file.OpenFile();
  file.WriteInt(1);
  {
    FaultInjection faults(FaultInjection::EAct::Fail, 0);
    try {
      file.Flush();
      ADD_FAILURE() << "no failure";
    } catch (const CVelumException& e) {
      EXPECT_EQ(e.Number(), EHostDiskFull);
      EXPECT_TRUE(e.Descr().contains(Path())) << e.what();
    }
  }
  file.SeekPos(0);
  file.WriteInt(2);
  FaultInjection faults(FaultInjection::EAct::Fail, 0);
  ExpectError(EHostDiskFull, [&] { file.CloseFile(); });
  ExpectError(EHostBadCall, [&] { file.WriteInt(2); });
}

TEST_F(CVelumFileTest, APatchLiesOverTheFile) {
  iFolder.Write(u"f"_s, QByteArray(2000, 'o'));
  CVelumFile file(Path(), EFilReadWrite);
  file.OpenFile();
  auto patch = MakeRef<CVelumFilePatch>(file.Size());
  file.SetPatch(patch);
  file.SeekPos(600);
  file.WriteRawBytes("new");
  file.SeekPos(1990);
  file.WriteRawBytes(QByteArray(100000, 'x'));
  EXPECT_EQ(file.Size(), 101990);
  EXPECT_EQ(file.PeekAt(598, 7), QByteArray("oonewoo"));
  file.SeekPos(1988);
  EXPECT_EQ(file.ReadRawBytes(4), QByteArray("ooxx"));
  file.Truncate(10);
  EXPECT_EQ(file.Size(), 10);
  EXPECT_EQ(iFolder.Read(u"f"_s), QByteArray(2000, 'o')) << "nothing went to the file";
  file.SetPatch(nullptr);
  EXPECT_EQ(file.Size(), 2000);
  EXPECT_EQ(file.PeekAt(599, 3), QByteArray("ooo"));
}

TEST_F(CVelumFileTest, TheSameOpenFileSharesItsLock) {
  iFolder.Write(u"f"_s, "old");
  const int fd = CVelumOs::Open(Path(), O_RDWR);
  ASSERT_TRUE(CVelumOs::TryLock(fd, Path()));
  CVelumFile same(Path(), EFilReadWrite);
  same.OpenSame(fd);
  CVelumOs::Close(fd);
  CVelumFile other(Path(), EFilReadWrite);
  other.OpenFile();
  EXPECT_FALSE(other.TryLockShared());
  EXPECT_TRUE(same.TryLockShared()) << "its own lock is no hindrance";
  EXPECT_TRUE(other.TryLockShared());
  EXPECT_FALSE(same.TryLockAlone());
  EXPECT_FALSE(other.TryLockAlone()) << "the shared one is held as before";
  other.CloseFile();
  EXPECT_TRUE(same.TryLockAlone());
}

TEST_F(CVelumFileTest, LinesEndAtCrOrCrLf) {
  EXPECT_EQ(Lines("a\r\nb\rc\r\n\r\nd"), (QList<QString>{u"a"_s, u"b"_s, u"c"_s, u""_s, u"d"_s}));
  EXPECT_EQ(Lines("a\rb\nc\r"), (QList<QString>{u"a"_s, u"b\nc"_s})) << "an LF alone is no end here";
  EXPECT_EQ(Lines("a\nb\n\nc\r\nd"), (QList<QString>{u"a"_s, u"b"_s, u""_s, u"c"_s, u"d"_s}));
  EXPECT_EQ(Lines("\n"), (QList<QString>{u""_s}));
  EXPECT_EQ(Lines(""), QList<QString>());
  EXPECT_EQ(Lines("a"), (QList<QString>{u"a"_s}));
}

TEST_F(CVelumFileTest, LinesCrossTheBuffer) {
  for (int extra : {-2, -1, 0, 1}) {
    QByteArray a(65536 + extra, 'a');
    EXPECT_EQ(Lines(a + "\r\nb\r\n"), (QList<QString>{QString::fromLatin1(a), u"b"_s}));
  }
}

TEST_F(CVelumFileTest, ALineWithoutAnEndIsRefused) {
  CVelumFile file(u"/dev/zero"_s, EFilSeqRead);
  file.OpenFile();
  QString line;
  ExpectError(EHostOutOfMemory, [&] { (void)file.ReadLine(line); });
}

TEST_F(CVelumFileTest, ALineThatIsRefusedIsNamed) {
  const QString path = iFolder.Write(u"t"_s, "a\nb\n");
  ASSERT_TRUE(QFile::resize(path, qint64{1} << 30)); // takes no room on the disk
  CVelumFile file(path, EFilSeqRead);
  file.OpenFile();
  QString line;
  ASSERT_TRUE(file.ReadLine(line) && file.ReadLine(line));
  try {
    static_cast<void>(file.ReadLine(line));
    FAIL();
  } catch (const CVelumException& e) {
    EXPECT_EQ(e.Number(), EHostOutOfMemory);
    EXPECT_EQ(e.Descr().section(u'/', -1), u"t, line 3"_s) << e.what();
  }
}

TEST_F(CVelumFileTest, Codings) {
  EXPECT_EQ(Lines("\x80\xE4", ECodLatin1), (QList<QString>{u"\u20ac\u00e4"_s}));
  EXPECT_EQ(Lines("\xC3\xA4", ECodUtf8), (QList<QString>{u"\u00e4"_s}));
  EXPECT_EQ(Lines("\xC3\xA4", ECodLatin1), (QList<QString>{u"\u00c3\u00a4"_s}));
}

TEST_F(CVelumFileTest, ByteOrderMarkOverridesTheCoding) {
  CVelumFile file(iFolder.Write(u"t"_s, "\xEF\xBB\xBF\xC3\xA4\r\xEF\xBB\xBFx"), EFilSeqRead);
  file.OpenFile();
  EXPECT_EQ(file.Coding(), ECodLatin1);
  QString line;
  ASSERT_TRUE(file.ReadLine(line));
  EXPECT_EQ(line, u"\u00e4"_s);
  EXPECT_EQ(file.Coding(), ECodUtf8);
  ASSERT_TRUE(file.ReadLine(line));
  EXPECT_EQ(line, u"\ufeffx"_s) << "only the first line's mark is cut off";
  file.OpenFile();
  ASSERT_TRUE(file.ReadLine(line));
  EXPECT_EQ(line, u"\u00e4"_s) << "and that of the first line when the file is opened anew";
}

TEST_F(CVelumFileTest, EndLeavesTheLine) {
  CVelumFile file(iFolder.Write(u"t"_s, ""), EFilSeqRead);
  file.OpenFile();
  QString line = u"kept"_s;
  EXPECT_FALSE(file.ReadLine(line));
  EXPECT_EQ(line, u"kept"_s);
}

TEST_F(CVelumFileTest, WritesLines) {
  auto write = [this](qint32 aCoding) {
    iFolder.Write(u"t"_s, "what was there");
    CVelumFile file(Path(u"t"_s), EFilSeqWrite);
    file.SetCoding(aCoding);
    file.OpenFile();
    file.WriteLine(u"\u00e4\u20ac"_s);
    file.WriteLine({});
    file.CloseFile();
    return Bytes(u"t"_s);
  };
  EXPECT_EQ(write(ECodLatin1), QByteArray("\xE4\x80\r\n\r\n"));
  EXPECT_EQ(write(ECodUtf8), QByteArray("\xC3\xA4\xE2\x82\xAC\r\n\r\n"));
}

TEST_F(CVelumFileTest, TenTextFilesAtOnce) {
  iFolder.Write(u"t"_s, "a");
  QList<std::shared_ptr<CVelumFile>> files;
  for (int i = 0; i < 11; ++i) files.append(std::make_shared<CVelumFile>(Path(u"t"_s), EFilSeqRead));
  for (int i = 0; i < 10; ++i) files[i]->OpenFile();
  ExpectError(EHostIndex, [&] { files[10]->OpenFile(); });
  files[3]->CloseFile();
  files[10]->OpenFile();
  EXPECT_TRUE(files[10]->IsOpen());
}

} // namespace
