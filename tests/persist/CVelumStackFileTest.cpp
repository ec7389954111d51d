#include "persist/CVelumStackFile.h"

#include "core/CVelumMsg.h"
#include "core/text/CVelumLocale.h"
#include "model/CVelumModel.h"
#include "persist/StackTeller.h"
#include "support/PrintQt.h"
#include "support/ScriptedPresenter.h"
#include "support/TempFolder.h"
#include "support/TestTree.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QJsonDocument>

namespace {

const QString EData = TestTree::Data() + u"/stacks/"_s;

QByteArray ReadData(const QString& aName) {
  QFile file(EData + aName);
  EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << aName.toStdString();
  return file.readAll();
}

QJsonObject Expected(const QString& aName) {
  return QJsonDocument::fromJson(ReadData(aName + u".expected.json"_s)).object();
}

std::vector<QString> StackNames(const QString& aFolder) {
  std::vector<QString> names;
  for (const QString& name : QDir(EData + aFolder).entryList({u"*.Orvelle"_s}, QDir::Files, QDir::Name))
    names.push_back(aFolder + u'/' + name);
  return names;
}

std::string TestName(const testing::TestParamInfo<QString>& aInfo) {
  QString name;
  for (QChar c : aInfo.param.section(u'/', -1).chopped(8)) name += c.isLetterOrNumber() ? c : QChar(u'_');
  return name.toStdString();
}

class CVelumStackFileTest : public testing::TestWithParam<QString> {
protected:
  CVelumStackFileTest() {
    CVelumModel::Install();
    CVelumLocale::Init(u"en_US"_s);
  }
  // Copies a test file, loads the copy.
  void Load(const QString& aName) {
    iPath = iFolder.Write(u"t.Orvelle"_s, ReadData(aName));
    CVelumStackFile(iPath).LoadStack(iStack, iView);
  }
  void Save(const QString& aPath) { CVelumStackFile(aPath).SaveStack(iStack, iView); }

  TempFolder iFolder;
  ScriptedPresenter iPresenter;
  QString iPath;
  Ref<CVelumStack> iStack;
  Ref<CVelumViewState> iView;
};

using GoodStack = CVelumStackFileTest;

TEST_P(GoodStack, SaysWhatItsDescriptionSays) {
  QJsonObject expected = Expected(GetParam());
  Load(GetParam());
  EXPECT_EQ(iStack->OrderCorrections(), expected[u"orderCorrections"_s].toInt());
  EXPECT_EQ(iStack->Changed(), expected[u"changedAfterLoad"_s].toBool());
  EXPECT_EQ(iStack->Filename(), iPath);
  EXPECT_EQ(StackTeller::Difference(expected[u"canonical"_s], StackTeller::Tell(*iStack, *iView), {}), u""_s);
  EXPECT_EQ(StackTeller::Difference(expected[u"layout"_s], StackTeller::TellLayout(*iStack->BlobStore()), {}),
            u""_s);
  EXPECT_EQ(iPresenter.Count(), 0);
}

TEST_P(GoodStack, SavedUnderANewNameHasTheExpectedBytes) {
  QString saveAs = Expected(GetParam())[u"saveAs"_s].toString();
  if (saveAs.isEmpty()) GTEST_SKIP() << "no bytes are given for this one";
  Load(GetParam());
  Save(iFolder.Path(u"new.Orvelle"_s));
  EXPECT_EQ(iFolder.Read(u"new.Orvelle"_s), ReadData(u"good/"_s + saveAs));
  EXPECT_FALSE(iStack->Changed());
  EXPECT_EQ(QDir(iFolder.Path()).entryList(QDir::Files).size(), 2) << "nothing else was left behind";
}

TEST_P(GoodStack, SavedInPlaceSaysTheSame) {
  QJsonObject expected = Expected(GetParam());
  Load(GetParam());
  Save(iPath);
  Save(iPath);
  CVelumStackFile(iPath).LoadStack(iStack, iView);
  EXPECT_EQ(StackTeller::Difference(expected[u"canonical"_s], StackTeller::Tell(*iStack, *iView), {}), u""_s);
  EXPECT_EQ(QDir(iFolder.Path()).entryList(QDir::Files).size(), 1);
}

TEST_P(GoodStack, LengthsAreThoseOfTheBytes) {
  Load(GetParam());
  EXPECT_EQ(11 + iStack->ExtLen() + iView->ExtLen(),
            QJsonDocument::fromJson(ReadData(GetParam() + u".expected.json"_s))[u"pointerPos"_s].toInt() +
                (GetParam().contains(u"control_gen2"_s) ? 4 : 0));
}

INSTANTIATE_TEST_SUITE_P(Files, GoodStack, testing::ValuesIn(StackNames(u"good"_s)), TestName);

using DamagedStack = CVelumStackFileTest;

TEST_P(DamagedStack, IsAnsweredAsDescribed) {
  QJsonObject expected = Expected(GetParam());
  QString path = iFolder.Path(u"t.Orvelle"_s);
  auto text = [&](const char* aKey) {
    return expected[QLatin1String(aKey)].toString().replace(u"<path>"_s, path);
  };
  QString kind = text("kind");
  try {
    Load(GetParam());
    EXPECT_EQ(text("outcome"), u"loads"_s);
    EXPECT_EQ(iStack->NumCards(), expected[u"numCards"_s].toInt());
  } catch (const CVelumException& e) {
    EXPECT_EQ(text("outcome"), u"error"_s) << e.what();
    EXPECT_FALSE(iStack) << "what was open stays";
    if (kind == u"system"_s) {
      EXPECT_EQ(e.Number(), EHostOutOfMemory);
    } else {
      EXPECT_EQ(e.Number(), expected[u"msg"_s].toInt());
    }
    if (kind == u"thrown"_s) {
      EXPECT_EQ(gLastError.iP0, text("p0"));
      EXPECT_EQ(gLastError.iP1, text("p1"));
    }
    if (kind == u"assert"_s) {
      EXPECT_TRUE(gLastError.iP1.startsWith(text("text"))) << gLastError.iP1.toStdString();
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Files, DamagedStack, testing::ValuesIn(StackNames(u"damaged"_s)), TestName);

TEST_F(CVelumStackFileTest, ObjDescr) {
  EXPECT_EQ(CVelumStackFile(u"/a"_s).ObjDescr(), u"CVelumStackFile name=/a"_s);
}

TEST_F(CVelumStackFileTest, TellsTheFormats) {
  EXPECT_TRUE(CVelumStackFile(iFolder.Write(u"a"_s, "Orvelle")).IsBinStack());
  EXPECT_FALSE(CVelumStackFile(iFolder.Write(u"a"_s, "Orvellf")).IsBinStack());
  EXPECT_FALSE(CVelumStackFile(iFolder.Write(u"a"_s, "Orv")).IsBinStack());
  EXPECT_TRUE(CVelumStackFile(iFolder.Write(u"a"_s, "<x")).IsXmlStack());
  EXPECT_FALSE(CVelumStackFile(iFolder.Write(u"a"_s, " <x")).IsXmlStack());
  EXPECT_FALSE(CVelumStackFile(iFolder.Write(u"a"_s, "\xEF\xBB\xBF<x")).IsXmlStack());
  EXPECT_FALSE(CVelumStackFile(iFolder.Path(u"none"_s)).IsXmlStack());
  EXPECT_TRUE(iFolder.Has(u"none"_s)) << "asking makes the file";
}

TEST_F(CVelumStackFileTest, LoadSetsTheBinaryFlag) {
  QByteArray bytes = ReadData(u"good/one_card.Orvelle"_s);
  Load(u"good/one_card.Orvelle"_s);
  qsizetype flags = 11 + 4 + 2 + 2 * iStack->Name().size() + 4;
  ASSERT_EQ(bytes[flags], 1);
  bytes[flags] = 0;
  CVelumStackFile(iFolder.Write(u"n"_s, bytes)).LoadStack(iStack, iView);
  EXPECT_TRUE(iStack->Flag(EStaBinary));
  EXPECT_FALSE(iStack->Changed());
}

TEST_F(CVelumStackFileTest, OldNameIndexIsUpgradedAndChanged) {
  Load(u"good/deleted_cards.Orvelle"_s);
  QByteArray bytes = ReadData(u"good/deleted_cards.Orvelle"_s);
  // The flags of the name index, 41, stand behind its frame and unset id.
  QByteArray head = QByteArray::fromHex("05000300ff93357729000000");
  qsizetype at = bytes.indexOf(head);
  ASSERT_GE(at, 0);
  bytes[at + 8] = 9;
  CVelumStackFile(iFolder.Write(u"old"_s, bytes)).LoadStack(iStack, iView);
  EXPECT_EQ(iStack->NameIndex().Flags(), 41);
  EXPECT_TRUE(iStack->Changed());
}

TEST_F(CVelumStackFileTest, FailedLoadKeepsWhatWasOpen) {
  Load(u"good/one_card.Orvelle"_s);
  CVelumStack* before = iStack.Get();
  EXPECT_THROW(Load(u"damaged/cut_02276.Orvelle"_s), CVelumException);
  EXPECT_EQ(iStack.Get(), before);
}

TEST_F(CVelumStackFileTest, NewStackStartsItsBlobAreaBehindThePointer) {
  iStack = MakeRef<CVelumStack>(u"New"_s);
  iStack->SetFlag(EStaBinary, true);
  iView = MakeRef<CVelumViewState>(u"New"_s);
  iPath = iFolder.Path(u"n.Orvelle"_s);
  Save(iPath);
  EXPECT_FALSE(iStack->Changed());
  qint64 pointerPos = 11 + iStack->ExtLen() + iView->ExtLen();
  CVelumFile file(iPath, EFilRead);
  file.OpenFile();
  file.SeekPos(pointerPos);
  EXPECT_EQ(file.ReadInt(), pointerPos + 4);
}

} // namespace
