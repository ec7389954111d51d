// Two programs work on one document at the same time, call by call.
#include "persist/CutSave.h"
#include "persist/StackMaker.h"
#include "support/PowerLoss.h"
#include "support/PrintQt.h"
#include "support/ScriptedPresenter.h"
#include "support/SteppedProgram.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <climits>
#include <random>

namespace {

using EState = SteppedProgram::EState;

// What a program comes to: the number of its saves, until it was told that another one holds the document, or
enum { ESaves = 2, EFailed = 10, EDamaged = 11 };

enum class EKind { InPlace, Beside, Xml, CutOff };

constexpr int EPairs = 300; // choices of places where the two programs stop

QString FolderName() {
  return (QFileInfo(u"/dev/shm"_s).isWritable() ? u"/dev/shm"_s : QDir::tempPath()) + u"/orvelles-XXXXXX"_s;
}

// A card whose name tells its picture: a letter, and the number of bytes of that.
void AddCard(StackMaker& aDoc, QChar aLetter, int aBytes) {
  const Ref<CVelumCard> card = aDoc.AddCard(QString(aLetter) + QString::number(aBytes), 0);
  if (aBytes > 0) aDoc.SetPicture(*card, QByteArray(aBytes, aLetter.toLatin1()));
}

bool PicturesAreRight(StackMaker& aDoc) {
  for (int i = 0; i < aDoc.iStack->NumCards(); ++i) {
    const Ref<CVelumCard> card = aDoc.Card(i);
    const QByteArray expected(card->Name().mid(1).toInt(), card->Name().at(0).toLatin1());
    if (aDoc.Picture(*card) != expected) return false;
  }
  return true;
}

QString Letters(StackMaker& aDoc) {
  QString letters;
  for (int i = 0; i < aDoc.iStack->NumCards(); ++i) letters += aDoc.Card(i)->Name().at(0);
  return letters;
}

// Loads, looks at the pictures, and twice adds a card and saves; the second one has the letter in upper case.
int Work(const QString& aPath, QChar aLetter, int aBytes) {
  int saves = 0;
  try {
    StackMaker doc = StackMaker::Load(aPath);
    if (!PicturesAreRight(doc)) return EDamaged;
    for (const QChar letter : {aLetter, aLetter.toUpper()}) {
      const QString text(1500 * (saves + 1), letter); // moves pictures
      doc.Card(0)->SetControlVal(doc.TextId(), TVelumValue::OfStr(text));
      AddCard(doc, letter, aBytes);
      doc.Save(aPath);
      ++saves;
      if (!PicturesAreRight(doc)) return EDamaged;
    }
  } catch (const CVelumException& e) {
    if (e.Number() != EHostPermissionDenied) return EFailed;
  }
  return saves;
}

class TwoProgramsTest : public testing::TestWithParam<EKind> {
protected:
  TwoProgramsTest() {
    StackMaker doc = StackMaker::New(0, 0);
    for (int i = 0; i < 3; ++i) AddCard(doc, u'o', Bytes(700 + i));
    doc.iStack->SetFlag(EStaBinary, GetParam() != EKind::Xml);
    doc.Save(iPath);
    doc = StackMaker::New(0, 0);
    if (GetParam() == EKind::CutOff) CutSave::Run(iPath);
    iStart = PowerLoss::StateOf(iDir.path());
  }
  static int Bytes(int aBytes) { return GetParam() == EKind::Beside ? 0 : aBytes; }

  // Lets aOne run to its end. Where it has to wait, aOther goes on; where nobody can go on, it is told so.
  static void Finish(SteppedProgram& aOne, SteppedProgram& aOther) {
    int tries = 0;
    while (aOne.State() != EState::Ended) {
      aOne.Run(INT_MAX);
      if (aOne.State() != EState::Waiting) continue;
      if (aOther.State() == EState::Ready) aOther.Run(INT_MAX);
      constexpr int EPatience = 3;
      if (++tries > EPatience)
        aOne.GiveUp();
      else
        aOne.Step();
    }
  }
  // One program stops after aOne calls, the other after aTwo, then both go on. False when the first does not
  // make so many calls.
  bool Play(int aOne, int aTwo) {
    PowerLoss::Make(iDir.path(), iStart);
    SteppedProgram one([this] { return Work(iPath, u'a', Bytes(900)); });
    SteppedProgram two([this] { return Work(iPath, u'b', Bytes(1100)); });
    one.Run(aOne);
    const bool reached = one.State() == EState::Ready;
    two.Run(aTwo);
    Finish(one, two);
    Finish(two, one);
    SCOPED_TRACE(testing::Message() << "stopped after " << aOne << " and " << aTwo << " calls");
    ExpectNothingLost(one.Status(), two.Status());
    return reached;
  }
  void ExpectNothingLost(int aOne, int aTwo) {
    EXPECT_LE(aOne, ESaves);
    EXPECT_LE(aTwo, ESaves);
    EXPECT_TRUE(aOne == ESaves || aTwo == ESaves);
    QString letters; // of the cards that are anywhere
    for (const QString& name : QDir(iDir.path()).entryList(QDir::Files)) {
      EXPECT_TRUE(name == u"t.Orvelle"_s || name.startsWith(u"t (other version "_s)) << name.toStdString();
      StackMaker doc = StackMaker::Load(iDir.filePath(name));
      EXPECT_TRUE(PicturesAreRight(doc)) << name.toStdString();
      EXPECT_GE(doc.iStack->NumCards(), 3);
      letters += Letters(doc);
    }
    EXPECT_TRUE(aOne < 1 || letters.contains(u'a')) << "what the first one saved is nowhere";
    EXPECT_TRUE(aOne < 2 || letters.contains(u'A')) << "what the first one saved is nowhere";
    EXPECT_TRUE(aTwo < 1 || letters.contains(u'b')) << "what the second one saved is nowhere";
    EXPECT_TRUE(aTwo < 2 || letters.contains(u'B')) << "what the second one saved is nowhere";
  }
  // The number of calls of a program that is alone.
  int Calls(const std::function<int()>& aWork) {
    PowerLoss::Make(iDir.path(), iStart);
    SteppedProgram one(aWork);
    int num = 0;
    for (; one.State() == EState::Ready; ++num) one.Step();
    EXPECT_LE(one.Status(), ESaves);
    return num;
  }

  ScriptedPresenter iPresenter;
  QTemporaryDir iDir{FolderName()};
  QString iPath = iDir.filePath(u"t.Orvelle"_s);
  TFolderState iStart;
};

TEST_P(TwoProgramsTest, OneRunsWhileTheOtherStandsBeforeEachOfItsCalls) {
  int num = 0;
  while (Play(num, INT_MAX) && !HasFailure()) ++num;
  EXPECT_GT(num, 20);
}

TEST_P(TwoProgramsTest, OneThatHasLoadedSavesWhileTheOtherStandsBeforeEachOfItsCalls) {
  const int load = Calls([this] { return StackMaker::Load(iPath).iStack->NumCards() > 0 ? 0 : EFailed; });
  const int all = Calls([this] { return Work(iPath, u'a', Bytes(900)); });
  for (int num = 0; num <= all && !HasFailure(); ++num) Play(load, num);
}

TEST_P(TwoProgramsTest, BothStopAtAnyOfTheirCalls) {
  std::mt19937 random(4711);
  const auto calls = static_cast<unsigned>(Calls([this] { return Work(iPath, u'a', Bytes(900)); }));
  for (int i = 0; i < EPairs && !HasFailure(); ++i)
    Play(static_cast<int>(random() % calls), static_cast<int>(random() % calls));
}

// Something that knows no locks puts another document there while the first one is read.
TEST(OvertakenLoad, BeginsAgain) {
  class CPut : public CVelumFaults {
  public:
    CPut() { CVelumOs::SetFaults(this); }
    ~CPut() override { CVelumOs::SetFaults(nullptr); }
    int Before(EOsCall, const QString&, qint64&) override {
      if (iCalls++ == iAt) iPut();
      return 0;
    }
    int iAt = 0;
    int iCalls = 0;
    std::function<void()> iPut;
  };
  const ScriptedPresenter presenter;
  const TempFolder folder;
  const QString path = folder.Path(u"t.Orvelle"_s);
  for (const bool binary : {true, false}) {
    const auto save = [binary](int aCards, const QString& aPath) {
      StackMaker doc = StackMaker::New(aCards, 1000);
      doc.iStack->SetFlag(EStaBinary, binary);
      doc.Save(aPath);
    };
    save(2, folder.Path(u"first"_s));
    save(3, folder.Path(u"second"_s));
    const QByteArray first = folder.Read(u"first"_s);
    const QByteArray second = folder.Read(u"second"_s);
    for (const bool sameFile : {true, false}) {
      bool reached = true;
      for (int at = 0; reached && !testing::Test::HasFailure(); ++at) {
        folder.Write(u"t.Orvelle"_s, first);
        CPut put;
        put.iAt = at;
        put.iPut = [&] {
          if (!sameFile) QFile::remove(path);
          folder.Write(u"t.Orvelle"_s, second);
        };
        StackMaker doc = StackMaker::Load(path);
        reached = put.iCalls > at;
        EXPECT_EQ(doc.iStack->NumCards(), reached ? 3 : 2) << at;
        if (reached) {
          EXPECT_EQ(doc.iStack->BlobStore()->FileId(), CVelumOs::IdOf(path));
        }
        EXPECT_TRUE(reached || at > 4);
      }
    }
  }
}

TEST(OvertakenLoad, GoesOnWhenTheNameIsTakenAway) {
  const ScriptedPresenter presenter;
  const TempFolder folder;
  const QString path = folder.Path(u"t.Orvelle"_s);
  StackMaker::New(2, 1000).Save(path);
  class CTakeAway : public CVelumFaults {
  public:
    explicit CTakeAway(QString aPath) : iPath(std::move(aPath)) { CVelumOs::SetFaults(this); }
    ~CTakeAway() override { CVelumOs::SetFaults(nullptr); }
    int Before(EOsCall aCall, const QString&, qint64&) override {
      if (aCall == EOsCall::Read) QFile::remove(iPath);
      return 0;
    }
    QString iPath;
  };
  const CTakeAway faults(path);
  StackMaker doc = StackMaker::Load(path);
  EXPECT_EQ(doc.iStack->NumCards(), 2);
  EXPECT_FALSE(QFile::exists(path));
}

std::string KindName(const testing::TestParamInfo<EKind>& aInfo) {
  const char* names[] = {"InPlace", "Beside", "Xml", "CutOff"};
  return names[static_cast<int>(aInfo.param)];
}

INSTANTIATE_TEST_SUITE_P(Documents, TwoProgramsTest,
                         testing::Values(EKind::InPlace, EKind::Beside, EKind::Xml, EKind::CutOff), KindName);

} // namespace
