#include "core/CVelumLib.h"
#include "core/CVelumMsg.h"
#include "core/file/CVelumFile.h"
#include "support/PrintQt.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace {

class CVelumLibFrameTest : public testing::Test {
protected:
  // Reads the frame aHex as type 3 of generation aMin to aMax: the generation, or minus the error's number.
  int Read(const char* aHex, int aMin, int aMax) {
    CVelumFile file(iFolder.Write(u"f"_s, QByteArray::fromHex(aHex)), EFilRead);
    file.OpenFile();
    try {
      return CVelumLib::ReadBinObjStart(file, 3, aMin, aMax);
    } catch (const CVelumException& e) {
      return -e.Number();
    }
  }
  TempFolder iFolder;
};

TEST_F(CVelumLibFrameTest, Writes) {
  CVelumFile file(iFolder.Path(u"f"_s), EFilWrite);
  file.OpenFile();
  CVelumLib::WriteBinObjStart(file, 10, 5);
  file.CloseFile();
  EXPECT_EQ(iFolder.Read(u"f"_s), QByteArray::fromHex("0a000500"));
}

TEST_F(CVelumLibFrameTest, ReadsGenerationsInRange) {
  EXPECT_EQ(Read("03000200", 2, 4), 2);
  EXPECT_EQ(Read("03000400", 2, 4), 4);
}

TEST_F(CVelumLibFrameTest, WrongType) {
  EXPECT_EQ(Read("05000200", 2, 4), -EMsgBadStruct);
  EXPECT_EQ(gLastError.iP0, u"CVelumFile name="_s + iFolder.Path(u"f"_s) + u", access=0"_s);
  EXPECT_EQ(gLastError.iP1, u"CVelumLib.ReadBinObjStart: typeId expected= 3, got= 5"_s);
  EXPECT_EQ(Read("fdff0200", 2, 4), -EMsgBadStruct);
  EXPECT_EQ(gLastError.iP1, u"CVelumLib.ReadBinObjStart: typeId expected= 3, got=-3"_s);
}

TEST_F(CVelumLibFrameTest, WrongGeneration) {
  EXPECT_EQ(Read("03000100", 2, 4), -EMsgGenTooLow);
  EXPECT_EQ(gLastError.iP0, u"expected= 2"_s);
  EXPECT_EQ(gLastError.iP1, u"got= 1"_s);
  EXPECT_EQ(Read("03000500", 2, 4), -EMsgGenTooHigh);
  EXPECT_EQ(gLastError.iP0, u"expected= 2"_s) << "the lowest, also here";
  EXPECT_EQ(gLastError.iP1, u"got= 5"_s);
  EXPECT_EQ(gLastError.iProc, u"CVelumLib.ReadBinObjStart"_s);
}

TEST_F(CVelumLibFrameTest, ChecksAreLeftToTheNextFrameOnceTheFileEnded) {
  CVelumFile file(iFolder.Write(u"f"_s, QByteArray(6, 'x')), EFilRead);
  file.OpenFile();
  const auto check = [&file](bool aCond) {
    CVelumLib::CheckRead(file, aCond, &file, u"Proc"_s, u"detail"_s);
  };
  static_cast<void>(file.ReadInt());
  EXPECT_FALSE(file.PastEnd());
  EXPECT_NO_THROW(check(true));
  EXPECT_THROW(check(false), CVelumException);
  EXPECT_EQ(gLastError.iMsgId, EMsgBadStruct);
  EXPECT_EQ(gLastError.iP1, u"Proc: detail"_s);
  static_cast<void>(file.ReadShort());
  EXPECT_FALSE(file.PastEnd()) << "the last byte was there";
  static_cast<void>(file.ReadShort());
  EXPECT_TRUE(file.PastEnd());
  EXPECT_NO_THROW(check(false));
  file.SeekPos(4);
  EXPECT_FALSE(file.PastEnd());
  static_cast<void>(file.ReadInt());
  EXPECT_TRUE(file.PastEnd()) << "half of it was missing";
}

} // namespace
