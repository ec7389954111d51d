#include "shell/dialogs/CVelumOptions.h"

#include "support/WidgetTest.h"
#include "toolkit/CVelumReg.h"

#include <QDir>
#include <QFile>

namespace {

class CVelumOptionsTest : public WidgetTest {
protected:
  CVelumOptionsTest() {
    qputenv("HOME", iFolder.Path().toLocal8Bit());
    CVelumReg::SetFolder(iFolder.Path());
    CVelumOptions::LoadOptions();
  }
  ~CVelumOptionsTest() override {
    qputenv("HOME", iHome);
    CVelumReg::SetFolder({});
    gOptions = {};
    gFileHistory.fill({});
  }
  // Saves and loads again, as the next start of the program does.
  void Restart() {
    CVelumOptions::SaveOptions();
    gOptions = {};
    gFileHistory.fill(u"left over"_s);
    CVelumReg::SetFolder(iFolder.Path());
    CVelumOptions::LoadOptions();
  }
  static QStringList History() { return {gFileHistory.begin(), gFileHistory.end()}; }

  QByteArray iHome = qgetenv("HOME");
};

} // namespace

TEST_F(CVelumOptionsTest, FirstRunHasAllDefaults) {
  EXPECT_EQ(gOptions.iAutoLoadName, QString());
  EXPECT_EQ(gOptions.iStackFolder, QString()); // no folder "Orvelles" in the documents yet
  EXPECT_TRUE(gOptions.iShowWelcome);
  EXPECT_EQ(gOptions.iLoadDialogInitDir, QString());
  EXPECT_EQ(gOptions.iCsvExportDelimiter, QString());
  EXPECT_TRUE(gOptions.iCsvDetectTypes);
  EXPECT_TRUE(gOptions.iCsvGuessKey);
  EXPECT_TRUE(gOptions.iCsvTryCardName);
  EXPECT_FALSE(gOptions.iSuppressFontInfo);
  EXPECT_EQ(History(), QStringList(8));
}

TEST_F(CVelumOptionsTest, StackFolderIsTheDocumentsFolderWhenItIsThere) {
  QDir(iFolder.Path()).mkpath(u"Documents/Orvelles"_s);
  CVelumOptions::LoadOptions();
  EXPECT_EQ(gOptions.iStackFolder, iFolder.Path(u"Documents/Orvelles"_s));
  EXPECT_EQ(gOptions.iLoadDialogInitDir, gOptions.iStackFolder);
  // An emptied folder is replaced at the next start.
  gOptions.iStackFolder = u"/mine"_s;
  Restart();
  EXPECT_EQ(gOptions.iStackFolder, u"/mine"_s);
  gOptions.iStackFolder.clear();
  Restart();
  EXPECT_EQ(gOptions.iStackFolder, iFolder.Path(u"Documents/Orvelles"_s));
}

TEST_F(CVelumOptionsTest, EverySettingSurvives) {
  gOptions = {u"auto"_s, u"folder"_s, false,  u"load"_s, u"csv"_s, u"xml"_s, u"hand"_s, u"orv"_s, u"text"_s,
              u"pic"_s,  u"ecsv"_s,   u";"_s, u"exml"_s, false,    false,    false,     true};
  for (size_t i = 0; i < 7; ++i) gFileHistory[i] = u"/stack "_s + QString::number(i);
  Restart();
  EXPECT_EQ(gOptions.iAutoLoadName, u"auto"_s);
  EXPECT_EQ(gOptions.iStackFolder, u"folder"_s);
  EXPECT_FALSE(gOptions.iShowWelcome);
  EXPECT_EQ(gOptions.iLoadDialogInitDir, u"load"_s);
  EXPECT_EQ(gOptions.iImportCsvDialogInitDir, u"csv"_s);
  EXPECT_EQ(gOptions.iImportXmlDialogInitDir, u"xml"_s);
  EXPECT_EQ(gOptions.iImportHandBaseDialogInitDir, u"hand"_s);
  EXPECT_EQ(gOptions.iImportOrvelleDialogInitDir, u"orv"_s);
  EXPECT_EQ(gOptions.iImportTextDialogInitDir, u"text"_s);
  EXPECT_EQ(gOptions.iImportPicDialogInitDir, u"pic"_s);
  EXPECT_EQ(gOptions.iExportCsvDialogInitDir, u"ecsv"_s);
  EXPECT_EQ(gOptions.iCsvExportDelimiter, u";"_s);
  EXPECT_EQ(gOptions.iExportXmlDialogInitDir, u"exml"_s);
  EXPECT_FALSE(gOptions.iCsvDetectTypes);
  EXPECT_FALSE(gOptions.iCsvGuessKey);
  EXPECT_FALSE(gOptions.iCsvTryCardName);
  EXPECT_TRUE(gOptions.iSuppressFontInfo);
  for (size_t i = 0; i < 7; ++i) EXPECT_EQ(gFileHistory[i], u"/stack "_s + QString::number(i));
  EXPECT_EQ(gFileHistory[7], QString());
}

TEST_F(CVelumOptionsTest, ValuesStandUnderTheirNames) {
  CVelumOptions::SaveOptions();
  const QByteArray written = iFolder.Read(u"Brindleway/Orvelles.conf"_s);
  for (const char* name :
       {"AutoLoadName", "StackFolder", "ShowWelcome", "LoadDialogInitDir", "ImportCsvDialogInitDir",
        "ImportXmlDialogInitDir", "ImportHandBaseDialogInitDir", "ImportOrvelleDialogInitDir",
        "ImportTextDialogInitDir", "ImportPicDialogInitDir", "ExportCsvDialogInitDir", "CsvExportDelimiter",
        "ExportXmlDialogInitDir", "CsvDetectTypes", "CsvGuessKey", "CsvTryCardName", "SuppressFontInfo",
        "FileHistory0", "FileHistory6"})
    EXPECT_TRUE(written.contains(QByteArray("Options\\") + name + '=')) << name;
  EXPECT_FALSE(written.contains("FileHistory7"));
  EXPECT_TRUE(written.contains("ShowWelcome=True"));
}

TEST_F(CVelumOptionsTest, TextThatIsNoBooleanIsTheDefault) {
  CVelumReg::PutVal(u"Options"_s, u"ShowWelcome"_s, u"yes"_s, false);
  CVelumReg::PutVal(u"Options"_s, u"SuppressFontInfo"_s, u"yes"_s, false);
  CVelumOptions::LoadOptions();
  EXPECT_TRUE(gOptions.iShowWelcome);
  EXPECT_FALSE(gOptions.iSuppressFontInfo);
}

TEST_F(CVelumOptionsTest, HistoryIsNewestFirstWithoutDuplicates) {
  for (const QString& name : {u"a"_s, u"b"_s, u"c"_s, u"a"_s}) CVelumOptions::AddToFileHistory(name);
  EXPECT_EQ(History().mid(0, 4), (QStringList{u"a"_s, u"c"_s, u"b"_s, QString()}));
  CVelumOptions::AddToFileHistory(u"a"_s);
  EXPECT_EQ(History().mid(0, 4), (QStringList{u"a"_s, u"c"_s, u"b"_s, QString()}));
  // The comparison is exact.
  CVelumOptions::AddToFileHistory(u"A"_s);
  EXPECT_EQ(History().mid(0, 4), (QStringList{u"A"_s, u"a"_s, u"c"_s, u"b"_s}));
}

TEST_F(CVelumOptionsTest, EighthFilePushesTheOldestOut) {
  for (int i = 0; i < 8; ++i) CVelumOptions::AddToFileHistory(QString::number(i));
  EXPECT_EQ(History(), (QStringList{u"7"_s, u"6"_s, u"5"_s, u"4"_s, u"3"_s, u"2"_s, u"1"_s, QString()}));
  CVelumOptions::AddToFileHistory(u"1"_s);
  EXPECT_EQ(History(), (QStringList{u"1"_s, u"7"_s, u"6"_s, u"5"_s, u"4"_s, u"3"_s, u"2"_s, QString()}));
}

TEST_F(CVelumOptionsTest, EmptyLoadFolderIsTheStackFolder) {
  gOptions.iStackFolder = u"/mine"_s;
  gOptions.iLoadDialogInitDir.clear();
  Restart();
  EXPECT_EQ(gOptions.iLoadDialogInitDir, u"/mine"_s);
  // Both are kept from there on, each by itself.
  gOptions.iStackFolder = u"/other"_s;
  Restart();
  EXPECT_EQ(gOptions.iLoadDialogInitDir, u"/mine"_s);
}

TEST_F(CVelumOptionsTest, FolderThatIsGoneIsKeptButNotBegunIn) {
  const QString stacks = iFolder.Path(u"stacks"_s);
  QDir().mkpath(stacks);
  gOptions.iStackFolder = stacks;
  gOptions.iLoadDialogInitDir = u"/gone"_s;
  Restart();
  EXPECT_EQ(gOptions.iLoadDialogInitDir, u"/gone"_s);
  EXPECT_EQ(CVelumOptions::StartFolder(gOptions.iLoadDialogInitDir), stacks);
  EXPECT_EQ(CVelumOptions::StartFolder(iFolder.Path()), iFolder.Path());
  EXPECT_EQ(CVelumOptions::StartFolder({}), stacks);
  QDir(iFolder.Path()).mkpath(u"Documents/Orvelles"_s);
  gOptions.iStackFolder = u"/gone too"_s;
  EXPECT_EQ(CVelumOptions::StartFolder({}), iFolder.Path(u"Documents/Orvelles"_s));
}
