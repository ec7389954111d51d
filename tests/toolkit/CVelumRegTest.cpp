#include "toolkit/CVelumReg.h"

#include "core/CVelumError.h"
#include "core/CVelumMsg.h"
#include "support/WidgetTest.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <random>
#include <unistd.h>

namespace {

const QString EOptions = u"Options"_s;

class CVelumRegTest : public WidgetTest {
protected:
  CVelumRegTest() { CVelumReg::SetFolder(iFolder.Path()); }
  ~CVelumRegTest() override { CVelumReg::SetFolder({}); }
  // What another program would see in the file.
  QByteArray Written() const {
    QFile file(CVelumReg::FileName());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
  }
  static QString Get(const QString& aName) {
    QString val = u"left over"_s;
    bool found = true;
    CVelumReg::GetVal(EOptions, aName, val, found, false);
    EXPECT_EQ(found, !val.isEmpty());
    return val;
  }
  static bool GetBool(const QString& aName, bool aDefault) {
    bool val = !aDefault;
    CVelumReg::GetBoolVal(aName, val, aDefault);
    return val;
  }
};

} // namespace

TEST_F(CVelumRegTest, StandsBelowTheNamesOfOrganisationAndApplication) {
  EXPECT_EQ(CVelumReg::FileName(), iFolder.Path(u"Brindleway/Orvelles.conf"_s));
  CVelumReg::PutVal(EOptions, u"AutoLoadName"_s, u"/home/a stack"_s, false);
  EXPECT_EQ(Written(), "[1.x]\nOptions\\AutoLoadName=/home/a stack\n");
}

TEST_F(CVelumRegTest, MissingAndEmptyValuesAreNotFound) {
  EXPECT_EQ(Get(u"StackFolder"_s), QString());
  CVelumReg::PutVal(EOptions, u"StackFolder"_s, QString(), false);
  EXPECT_EQ(Get(u"StackFolder"_s), QString());
}

TEST_F(CVelumRegTest, GivesBackAnyText) {
  for (const QString& text : {u"plain"_s, u" blanks "_s, u"a, b,c"_s, u"\"quoted\""_s, u"C:\\x\\n"_s,
                              u"@Invalid()"_s, u"äöü €"_s, u"a=b;c#d%20"_s, u"line\r\nend"_s}) {
    CVelumReg::PutVal(EOptions, u"Text"_s, text, false);
    CVelumReg::SetFolder(iFolder.Path()); // reads the file anew
    EXPECT_EQ(Get(u"Text"_s), text);
  }
}

TEST_F(CVelumRegTest, SectionsAreApart) {
  CVelumReg::PutVal(EOptions, u"Same"_s, u"one"_s, false);
  CVelumReg::PutVal(u"Windows"_s, u"Same"_s, u"two"_s, false);
  EXPECT_EQ(Get(u"Same"_s), u"one"_s);
}

TEST_F(CVelumRegTest, BooleansAreTextsAndAnythingElseIsTheDefault) {
  CVelumReg::PutBoolVal(u"B"_s, true);
  EXPECT_EQ(Get(u"B"_s), u"True"_s);
  EXPECT_TRUE(GetBool(u"B"_s, false));
  CVelumReg::PutBoolVal(u"B"_s, false);
  EXPECT_EQ(Get(u"B"_s), u"False"_s);
  EXPECT_FALSE(GetBool(u"B"_s, true));
  for (const QString& text : {u"yes"_s, u"1"_s, QString(), u" true"_s}) {
    CVelumReg::PutVal(EOptions, u"B"_s, text, false);
    EXPECT_TRUE(GetBool(u"B"_s, true)) << text.toStdString();
    EXPECT_FALSE(GetBool(u"B"_s, false)) << text.toStdString();
  }
  CVelumReg::PutVal(EOptions, u"B"_s, u"tRuE"_s, false);
  EXPECT_TRUE(GetBool(u"B"_s, false));
  CVelumReg::PutVal(EOptions, u"B"_s, u"fALSE"_s, false);
  EXPECT_FALSE(GetBool(u"B"_s, true));
}

TEST_F(CVelumRegTest, ValueTypedByHandWithACommaIsOneText) {
  iFolder.Write(u"x"_s, {});
  QDir(iFolder.Path()).mkdir(u"Brindleway"_s);
  iFolder.Write(u"Brindleway/Orvelles.conf"_s, "[1.x]\nOptions\\AutoLoadName=/a, b\n");
  CVelumReg::SetFolder(iFolder.Path());
  EXPECT_EQ(Get(u"AutoLoadName"_s), u"/a, b"_s);
}

TEST_F(CVelumRegTest, BrokenFileIsSetAsideAndCountsAsEmpty) {
  QDir(iFolder.Path()).mkdir(u"Brindleway"_s);
  const QByteArray broken("[1.x]\nOptions\\ShowWelcome=False\n\x01\x02 no line of a settings file\n[\n");
  for (const QString& name : {u"Brindleway/Orvelles.conf.broken1"_s, u"Brindleway/Orvelles.conf.broken2"_s}) {
    iFolder.Write(u"Brindleway/Orvelles.conf"_s, broken);
    CVelumReg::SetFolder(iFolder.Path());
    EXPECT_TRUE(GetBool(u"ShowWelcome"_s, true));
    EXPECT_EQ(iFolder.Read(name), broken);
    EXPECT_EQ(iPresenter.Count(), 0);
  }
  CVelumReg::PutBoolVal(u"ShowWelcome"_s, false);
  CVelumReg::SetFolder(iFolder.Path());
  EXPECT_FALSE(GetBool(u"ShowWelcome"_s, true));
}

TEST_F(CVelumRegTest, RandomBytesAreSetAsideWhole) {
  QDir(iFolder.Path()).mkdir(u"Brindleway"_s);
  std::mt19937 random(1);
  for (int round = 1; round <= 50; ++round) {
    QByteArray bytes(1 + static_cast<int>(random() % 3000), '\0');
    for (char& byte : bytes) byte = static_cast<char>(random());
    bytes += '\0';
    iFolder.Write(u"Brindleway/Orvelles.conf"_s, bytes);
    CVelumReg::SetFolder(iFolder.Path());
    EXPECT_TRUE(GetBool(u"ShowWelcome"_s, true));
    EXPECT_EQ(Get(u"AutoLoadName"_s), QString());
    EXPECT_EQ(iFolder.Read(u"Brindleway/Orvelles.conf.broken%1"_s.arg(round)), bytes);
  }
  CVelumReg::PutBoolVal(u"ShowWelcome"_s, false);
  EXPECT_EQ(Written(), "[1.x]\nOptions\\ShowWelcome=False\n");
  EXPECT_EQ(iPresenter.Count(), 0);
}

TEST_F(CVelumRegTest, WhatIsNoSmallTextIsSetAside) {
  QDir(iFolder.Path()).mkdir(u"Brindleway"_s);
  const QByteArray good("[1.x]\nOptions\\ShowWelcome=False\n");
  int num = 0;
  for (const QByteArray& bytes : {good + QByteArray("X=\0", 3), good + "X=\x07", good + "X=\xff\xfe",
                                  good + "X=" + QByteArray(2'000'000, 'x')}) {
    iFolder.Write(u"Brindleway/Orvelles.conf"_s, bytes);
    CVelumReg::SetFolder(iFolder.Path());
    EXPECT_TRUE(GetBool(u"ShowWelcome"_s, true));
    EXPECT_EQ(iFolder.Read(u"Brindleway/Orvelles.conf.broken%1"_s.arg(++num)), bytes);
  }
}

TEST_F(CVelumRegTest, FolderInPlaceOfTheFileIsSetAside) {
  QDir(iFolder.Path()).mkpath(u"Brindleway/Orvelles.conf/kept"_s);
  CVelumReg::SetFolder(iFolder.Path());
  EXPECT_TRUE(GetBool(u"ShowWelcome"_s, true));
  CVelumReg::PutBoolVal(u"ShowWelcome"_s, false);
  EXPECT_FALSE(GetBool(u"ShowWelcome"_s, true));
  EXPECT_TRUE(QDir(iFolder.Path(u"Brindleway/Orvelles.conf.broken1/kept"_s)).exists());
}

TEST_F(CVelumRegTest, ValuesOfOtherTypesAreDefaults) {
  QDir(iFolder.Path()).mkdir(u"Brindleway"_s);
  iFolder.Write(u"Brindleway/Orvelles.conf"_s,
                "[1.x]\nOptions\\ShowWelcome=@Size(3 4)\nOptions\\AutoLoadName=@Rect(1 2 3 4)\n"
                // Lists and texts that claim to have some thousand million items.
                "Options\\A=@Variant(\\0\\0\\0\\x9\\0\\xff\\xff\\xff\\xf0)\n"
                "Options\\B=@Variant(\\0\\0\\0\\xa\\0\\xff\\xff\\xff\\xf0)\n"
                "Windows\\CVelumFrame=@Invalid()\n");
  CVelumReg::SetFolder(iFolder.Path());
  EXPECT_TRUE(GetBool(u"ShowWelcome"_s, true));
  for (const QString& name : {u"AutoLoadName"_s, u"A"_s, u"B"_s}) EXPECT_EQ(Get(name), QString());
  CVelumReg::PutBoolVal(u"ShowWelcome"_s, false);
  CVelumReg::SetFolder(iFolder.Path());
  EXPECT_FALSE(GetBool(u"ShowWelcome"_s, true));
  EXPECT_EQ(iPresenter.Count(), 0);
}

TEST_F(CVelumRegTest, RecordsWithinRecordsAreSetAside) {
  QDir(iFolder.Path()).mkdir(u"Brindleway"_s);
  const QByteArray deep = QByteArray("\\0\\0\\0\\x9\\0\\0\\0\\x1").repeated(50'000) + ')';
  int num = 0;
  for (const QByteArray& start : {QByteArray("=@Variant("), QByteArray("= \"\"@Variant("),
                                  QByteArray("=a, @Variant("), QByteArray("=\\x40Variant(")}) {
    iFolder.Write(u"Brindleway/Orvelles.conf"_s,
                  "[1.x]\nOptions\\ShowWelcome=False\nOptions\\AutoLoadName" + start + deep + '\n');
    CVelumReg::SetFolder(iFolder.Path());
    EXPECT_EQ(Get(u"AutoLoadName"_s), QString());
    EXPECT_TRUE(GetBool(u"ShowWelcome"_s, true));
    EXPECT_TRUE(iFolder.Has(u"Brindleway/Orvelles.conf.broken%1"_s.arg(++num))) << start.toStdString();
  }
  EXPECT_EQ(iPresenter.Count(), 0);
}

TEST_F(CVelumRegTest, TextThatLooksLikeARecordIsKept) {
  for (const QString& text : {u"@Variant(x)"_s, u"/a @Variant(x), b"_s, u"=@Variant("_s}) {
    CVelumReg::PutVal(EOptions, u"Text"_s, text, false);
    CVelumReg::SetFolder(iFolder.Path());
    EXPECT_EQ(Get(u"Text"_s), text);
  }
}

TEST_F(CVelumRegTest, FailureToWriteAsserts) {
  // A file where the folder should be: no user, not even root, can write below it.
  iFolder.Write(u"blocked"_s, "x");
  CVelumReg::SetFolder(iFolder.Path(u"blocked"_s));
  try {
    CVelumReg::PutVal(EOptions, u"Name"_s, u"val"_s, false);
    FAIL() << "no assertion";
  } catch (const CVelumException& e) {
    EXPECT_EQ(e.Number(), EMsgAssertFailed);
  }
  EXPECT_TRUE(iPresenter.LastText().contains(u"PutVal res 1, key=Name"_s));
  iPresenter.Answer(true);
  CVelumReg::PutVal(EOptions, u"Name"_s, u"val"_s, false);
  EXPECT_EQ(iPresenter.CountOf(EMsgAssertFailedOk), 2);
}
