// What the commands print and make.
#include "CliRun.h"

#include "model/CVelumModel.h"
#include "persist/CVelumJournal.h"
#include "persist/CVelumStackFile.h"
#include "runtime/wiki/CVelumWikiTextBox.h"
#include "support/PrintQt.h"
#include "support/TempFolder.h"
#include "support/TestTree.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>

namespace {

QJsonObject Json(const QStringList& aArguments) {
  const TCliResult result = CliRun::Run(QStringList{u"--json"_s} + aArguments);
  EXPECT_EQ(result.iStatus, 0) << result.iErr.toStdString();
  return QJsonDocument::fromJson(result.iOut).object();
}

QByteArray Bytes(const QString& aPath) {
  QFile file(aPath);
  EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << aPath.toStdString();
  return file.readAll();
}

QStringList Lines(const TCliResult& aResult) {
  EXPECT_EQ(aResult.iStatus, 0) << aResult.iErr.toStdString();
  QStringList lines = QString::fromUtf8(aResult.iOut).split(u'\n');
  EXPECT_EQ(lines.takeLast(), QString());
  return lines;
}

TEST(CVelumInfoCommand, TellsWhatAStackIsMadeOf) {
  const QJsonObject facts = Json({u"info"_s, CliRun::Data(u"multi_background.Orvelle"_s)});
  EXPECT_EQ(facts[u"format"_s].toString(), u"binary"_s);
  EXPECT_EQ(facts[u"cards"_s].toInt(), 13);
  EXPECT_EQ(facts[u"orderCorrections"_s].toInt(), 0);
  const QJsonArray backgrounds = facts[u"backgrounds"_s].toArray();
  ASSERT_EQ(backgrounds.size(), 4);
  EXPECT_EQ(backgrounds[2][u"name"_s].toString(), u"Third"_s);
  EXPECT_EQ(backgrounds[2][u"cards"_s].toInt(), 3);
  const QJsonArray fields = backgrounds[2][u"fields"_s].toArray();
  ASSERT_EQ(fields.size(), 3);
  EXPECT_EQ(fields[2][u"name"_s].toString(), u"F2"_s);
  EXPECT_EQ(fields[2][u"type"_s].toString(), u"Real"_s);
}

// A save was cut off, and the document is another one since.
TEST(CVelumCommands, ADocumentInDoubtIsNotOpenedAndBothAreNamed) {
  const TempFolder folder;
  const QString path = folder.Path(u"t.Orvelle"_s);
  ASSERT_TRUE(QFile::copy(CliRun::Data(u"blobs.Orvelle"_s), path));
  const QByteArray before = Bytes(path);
  CVelumFile file(path, EFilReadWrite);
  file.OpenFile();
  const auto patch = MakeRef<CVelumFilePatch>(file.Size());
  file.SetPatch(patch);
  file.SeekPos(100);
  file.WriteRawBytes("a save");
  file.Flush();
  file.SetPatch(nullptr);
  {
    CVelumJournal journal(path, file.Fd());
    journal.Write(*patch);
    ASSERT_TRUE(QFile::copy(path + u"-journal"_s, folder.Path(u"kept"_s)));
  }
  ASSERT_TRUE(QFile::rename(folder.Path(u"kept"_s), path + u"-journal"_s));
  file.SeekPos(100);
  file.WriteRawBytes("another");
  file.CloseFile();
  const QByteArray changed = Bytes(path);
  for (const QString& yes : {QString(), u"--yes"_s}) {
    QStringList arguments{u"info"_s, path};
    if (!yes.isEmpty()) arguments.prepend(yes);
    const TCliResult result = CliRun::Run(arguments);
    EXPECT_EQ(result.iStatus, 1);
    EXPECT_EQ(result.iOut, QByteArray());
    const QStringList old = QDir(folder.Path()).entryList({u"t (before the crash *).Orvelle"_s}, QDir::Files);
    ASSERT_EQ(old.size(), 1);
    EXPECT_EQ(Bytes(folder.Path(old.first())), before);
    const QString err = QString::fromUtf8(result.iErr);
    EXPECT_TRUE(err.contains(path + u" "_s) && err.contains(old.first())) << result.iErr.constData();
    EXPECT_EQ(Bytes(path), changed);
  }
}

TEST(CVelumInfoCommand, TellsOfBlobsAndSortKeys) {
  const QJsonArray blobs = Json({u"info"_s, CliRun::Data(u"blobs.Orvelle"_s)})[u"blobs"_s].toArray();
  ASSERT_EQ(blobs.size(), 4);
  EXPECT_EQ(blobs[1][u"name"_s].toString(), u"big.png"_s);
  EXPECT_EQ(blobs[1][u"width"_s].toInt(), 300);
  EXPECT_EQ(blobs[1][u"sample"_s].toInt(), 4);
  EXPECT_EQ(blobs[2][u"sampleOf"_s].toInt(), 3);
  EXPECT_EQ(blobs[2][u"references"_s].toInt(), 2);
  const QJsonObject sorted = Json({u"info"_s, CliRun::Data(u"sorted_up.Orvelle"_s)});
  EXPECT_TRUE(sorted[u"backgrounds"_s][0][u"keptSorted"_s].toBool());
  ASSERT_EQ(sorted[u"sortKeys"_s].toArray().size(), 1);
  EXPECT_FALSE(sorted[u"sortKeys"_s][0][u"parts"_s][0][u"descending"_s].toBool());
}

TEST(CVelumInfoCommand, TextHoldsTheSameFacts) {
  const QStringList lines = Lines(CliRun::Run({u"info"_s, CliRun::Data(u"blobs.Orvelle"_s)}));
  EXPECT_EQ(lines.value(0), u"Stack:        Blobs"_s);
  EXPECT_TRUE(lines.contains(u"Format:       binary"_s));
  EXPECT_TRUE(lines.contains(u"Cards:        4"_s));
  EXPECT_TRUE(lines.contains(u"Blobs:        4"_s));
  EXPECT_TRUE(lines.contains(u"    Photo                    Picture"_s)) << lines.join(u'\n').toStdString();
}

TEST(CVelumInfoCommand, TextTellsWhatIsSpecialAboutAField) {
  const QStringList lines = Lines(CliRun::Run({u"info"_s, CliRun::Sample()}));
  for (const QString& line :
       {u"    Clicks                   Integer  default '0'; script"_s,
        u"    Count                    Command  script"_s,
        u"    Page                     Text     script; DejaVu Serif, #302820; on #fffcf0"_s,
        u"  Sorted:     kept sorted"_s, u"  Colour:     #e2eef6"_s})
    EXPECT_TRUE(lines.contains(line)) << line.toStdString();
}

TEST(CVelumCheckCommand, SoundStacksGiveNoLine) {
  const QDir folder(CliRun::Data(QString()));
  const QStringList names = folder.entryList({u"*.Orvelle"_s});
  EXPECT_GT(names.size(), 10);
  for (const QString& name : names) {
    if (name == u"order_corrections.Orvelle"_s) continue;
    const TCliResult result = CliRun::Run({u"check"_s, folder.filePath(name)});
    EXPECT_EQ(result.iStatus, 0) << name.toStdString();
    EXPECT_EQ(result.iOut, QByteArray());
    EXPECT_EQ(result.iErr, QByteArray());
  }
}

TEST(CVelumCheckCommand, OrderCorrectionsAreToldAndNoProblem) {
  const TCliResult result = CliRun::Run({u"check"_s, CliRun::Data(u"order_corrections.Orvelle"_s)});
  EXPECT_EQ(result.iStatus, 0);
  EXPECT_EQ(result.iOut, QByteArray());
  EXPECT_TRUE(result.iErr.startsWith(
      "orvelles-cli: EMsgOrderCorrections: Caution: There were 2 card order corrections, "));
  EXPECT_EQ(Json({u"check"_s, CliRun::Data(u"order_corrections.Orvelle"_s)})[u"orderCorrections"_s].toInt(),
            2);
}

TEST(CVelumCheckCommand, ProblemsAreListedWithStatus1) {
  QByteArray bytes = Bytes(CliRun::Data(u"blobs.Orvelle"_s));
  // The reference count of the first blob, behind its 78 bytes of content: count, length, bytes.
  const qsizetype place = 1069 + 228 - 78 - 4 - 4;
  ASSERT_EQ(bytes[place], 1);
  bytes[place] = 7;
  const TempFolder folder;
  const QString path = folder.Write(u"count.Orvelle"_s, bytes);
  const TCliResult result = CliRun::Run({u"check"_s, path});
  EXPECT_EQ(result.iStatus, 1);
  EXPECT_EQ(result.iOut, QByteArray("blob 2: its reference count is 7, but 1 were found\n"));
  const TCliResult json = CliRun::Run({u"check"_s, u"--json"_s, path});
  EXPECT_EQ(json.iStatus, 1);
  const QJsonObject facts = QJsonDocument::fromJson(json.iOut).object();
  EXPECT_FALSE(facts[u"sound"_s].toBool(true));
  EXPECT_EQ(facts[u"problems"_s].toArray().size(), 1);
}

// Entries of the name index and of a key index that do not go with the cards, as other programs leave them.
TEST(CVelumCheckCommand, StaleIndexEntriesAreListedAndPutRightByASave) {
  const TempFolder folder;
  for (const bool binary : {true, false}) {
    Ref<CVelumStack> stack;
    Ref<CVelumViewState> view;
    CVelumModel::Install();
    CVelumStackFile(CliRun::Data(u"sorted_up.Orvelle"_s)).LoadStack(stack, view);
    stack->SetFlag(EStaBinary, binary);
    auto& names = const_cast<CVelumArray&>(stack->NameIndex());
    names.SetValAt(1, TVelumValue::OfInt(99));
    Ref<CVelumArray> keys;
    qint32 at = 0;
    ASSERT_TRUE(stack->GetFirstKeyIndex(keys, at));
    const Ref<CVelumCard> last = stack->GetCardById(keys->ValRef(keys->Count() - 1).Int());
    keys->SetValAt(keys->Count(), TVelumValue::OfInt(98));
    const QString path = folder.Path(u"stale.Orvelle"_s);
    CVelumStackFile(path).SaveStack(stack, view);
    const TCliResult result = CliRun::Run({u"check"_s, path});
    EXPECT_EQ(result.iStatus, 1);
    const QStringList lines = QString::fromUtf8(result.iOut).split(u'\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 4) << result.iOut.toStdString();
    EXPECT_EQ(lines[0],
              u"name index: '%1' stands for card 99, which does not exist"_s.arg(names.StrKeyAt(0)));
    EXPECT_TRUE(lines[1].endsWith(u" is missing in the name index"_s)) << lines[1].toStdString();
    EXPECT_TRUE(lines[2].startsWith(u"key index %1 of sort key '"_s.arg(keys->Id())));
    EXPECT_TRUE(lines[2].endsWith(u"stands for card 98, which does not exist"_s)) << lines[2].toStdString();
    EXPECT_TRUE(lines[3].startsWith(
        u"card %1 '%2': is missing in the key index "_s.arg(last->Id()).arg(last->Name())))
        << lines[3].toStdString();
    EXPECT_EQ(result.iErr, QByteArray()) << "no order correction";
    EXPECT_EQ(CliRun::Run({u"convert"_s, path, path}).iStatus, 0);
    const TCliResult saved = CliRun::Run({u"check"_s, path});
    EXPECT_EQ(saved.iStatus, 0);
    EXPECT_EQ(saved.iOut + saved.iErr, QByteArray());
  }
}

TEST(CVelumCheckCommand, LeavesTheFileAsItIs) {
  const TempFolder folder;
  const QByteArray bytes = Bytes(CliRun::Data(u"blobs.Orvelle"_s));
  const QString path = folder.Write(u"blobs.Orvelle"_s, bytes);
  for (const QStringList& call : {QStringList{u"check"_s, path}, QStringList{u"info"_s, path},
                                  QStringList{u"cards"_s, path}, QStringList{u"search"_s, path, u"x"_s}})
    EXPECT_EQ(CliRun::Run(call).iStatus, 0);
  EXPECT_EQ(folder.Read(u"blobs.Orvelle"_s), bytes);
  EXPECT_EQ(QDir(folder.Path()).entryList(QDir::Files), QStringList{u"blobs.Orvelle"_s});
}

TEST(CVelumConvertCommand, WritesTheSameStackByteForByte) {
  const TempFolder folder;
  const QString out = folder.Path(u"out.Orvelle"_s);
  const TCliResult result = CliRun::Run({u"convert"_s, CliRun::Data(u"blobs.Orvelle"_s), out});
  EXPECT_EQ(result.iStatus, 0) << result.iErr.toStdString();
  EXPECT_EQ(result.iOut + result.iErr, QByteArray());
  EXPECT_EQ(Bytes(out), Bytes(CliRun::Data(u"blobs.saveas"_s)));
  EXPECT_EQ(QDir(folder.Path()).entryList(QDir::Files), QStringList{u"out.Orvelle"_s});
}

TEST(CVelumConvertCommand, ReplacesAnExistingFileAndWorksInPlace) {
  const TempFolder folder;
  const QByteArray bytes = Bytes(CliRun::Data(u"blobs.Orvelle"_s));
  const QString path = folder.Write(u"blobs.Orvelle"_s, bytes);
  const QString other = folder.Write(u"other.Orvelle"_s, "something else");
  EXPECT_EQ(CliRun::Run({u"convert"_s, path, path, u"--format"_s, u"binary"_s}).iStatus, 0);
  EXPECT_EQ(CliRun::Run({u"check"_s, path}).iStatus, 0);
  EXPECT_EQ(CliRun::Run({u"convert"_s, path, other}).iStatus, 0);
  EXPECT_EQ(Bytes(other), Bytes(CliRun::Data(u"blobs.saveas"_s)));
}

TEST(CVelumConvertCommand, AFailedSaveLeavesNothingBehind) {
  const TempFolder folder;
  const QString out = folder.Path(u"none/out.Orvelle"_s);
  const TCliResult result = CliRun::Run({u"convert"_s, CliRun::Data(u"blobs.Orvelle"_s), out});
  EXPECT_EQ(result.iStatus, 1);
  EXPECT_TRUE(result.iErr.contains("there is no folder")) << result.iErr.toStdString();
  EXPECT_TRUE(QDir(folder.Path()).isEmpty());
}

TEST(CVelumConvertCommand, ToXmlAndBackIsTheSameFile) {
  const TempFolder folder;
  const QString xml = folder.Path(u"out.xml"_s);
  const QString back = folder.Path(u"back.Orvelle"_s);
  const QString in = CliRun::Data(u"one_card.Orvelle"_s);
  EXPECT_EQ(CliRun::Run({u"convert"_s, in, xml, u"--format"_s, u"xml"_s}).iStatus, 0);
  EXPECT_TRUE(
      folder.Read(u"out.xml"_s).startsWith("<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\r\n<VelumStack>"));
  EXPECT_EQ(CliRun::Run({u"convert"_s, xml, back, u"--format"_s, u"binary"_s}).iStatus, 0);
  EXPECT_EQ(folder.Read(u"back.Orvelle"_s), Bytes(in));
}

TEST(CVelumConvertCommand, AFailedLoadLeavesTheOutputAsItWas) {
  const TempFolder folder;
  const QString out = folder.Write(u"out.Orvelle"_s, "old");
  const QString bad = folder.Write(u"bad.Orvelle"_s, Bytes(CliRun::Data(u"blobs.Orvelle"_s)).left(900));
  EXPECT_EQ(CliRun::Run({u"convert"_s, bad, out}).iStatus, 1);
  EXPECT_EQ(folder.Read(u"out.Orvelle"_s), QByteArray("old"));
}

TEST(CVelumSearchCommand, PrintsCardBackgroundFieldAndValue) {
  const QString stack = CliRun::Data(u"multi_background.Orvelle"_s);
  EXPECT_EQ(Lines(CliRun::Run({u"search"_s, stack, u"V1"_s})),
            (QStringList{u"card 01\tSecond\tF0\tv1"_s, u"card 10\tThird\tF0\tv10"_s,
                         u"card 11\tFourth\tF0\tv11"_s, u"card 12\tFirst Background\tF0\tv12"_s}));
  EXPECT_EQ(Lines(CliRun::Run({u"search"_s, stack, u"2.5"_s})), QStringList{u"card 10\tThird\tF2\t2.5"_s});
  EXPECT_EQ(Lines(CliRun::Run({u"search"_s, stack, u"absent"_s})), QStringList{});
  EXPECT_EQ(Lines(CliRun::Run({u"search"_s, stack, QString()})).size(), 13);
}

TEST(CVelumSearchCommand, KeepsToOneLinePerCard) {
  const QString stack = CliRun::Data(u"all_controls.Orvelle"_s);
  EXPECT_EQ(Lines(CliRun::Run({u"search"_s, stack, u"line two"_s})),
            QStringList{u"full\tFirst Background\tText\tline one line two"_s});
  const QJsonArray hits = Json({u"search"_s, stack, u"line two"_s})[u"hits"_s].toArray();
  ASSERT_EQ(hits.size(), 1);
  EXPECT_EQ(hits[0][u"value"_s].toString(), u"line one\r\nline two"_s);
}

TEST(CVelumSearchCommand, ATextWithADashStandsBehindTwo) {
  const QString stack = CliRun::Data(u"all_controls.Orvelle"_s);
  EXPECT_EQ(Lines(CliRun::Run({u"search"_s, stack, u"--"_s, u"-2147483648"_s})),
            QStringList{u"full\tFirst Background\tInteger\t-2147483648"_s});
}

TEST(CVelumCardsCommand, PrintsTheLinesOfTheCardList) {
  const QString stack = CliRun::Data(u"multi_background.Orvelle"_s);
  const QStringList all = Lines(CliRun::Run({u"cards"_s, stack}));
  ASSERT_EQ(all.size(), 13);
  EXPECT_EQ(all.at(0), u"card 00\tv0"_s);
  EXPECT_EQ(all.at(2), u"card 02\tv2\t2\t0.5"_s);
}

TEST(CVelumCardsCommand, FollowsTheChosenBackground) {
  const QString stack = CliRun::Data(u"multi_background.Orvelle"_s);
  EXPECT_EQ(Lines(CliRun::Run({u"cards"_s, stack, u"--background"_s, u"Second"_s})),
            (QStringList{u"card 01\tv1\t1"_s, u"card 05\tv5\t5"_s, u"card 09\tv9\t9"_s}));
  // The third background does not list the names of its cards.
  EXPECT_EQ(Lines(CliRun::Run({u"cards"_s, stack, u"--background"_s, u"Third"_s})),
            (QStringList{u"v2\t2\t0.5"_s, u"v6\t6\t1.5"_s, u"v10\t10\t2.5"_s}));
}

TEST(CVelumCardsCommand, AnUnknownBackgroundIsAFailure) {
  const TCliResult result =
      CliRun::Run({u"cards"_s, CliRun::Data(u"multi_background.Orvelle"_s), u"--background"_s, u"Fifth"_s});
  EXPECT_EQ(result.iStatus, 1);
  EXPECT_EQ(result.iErr,
            QByteArray("orvelles-cli: EMsgBackgroundNotFound: The background 'Fifth' cannot be found.\n"));
}

TEST(CVelumCardsCommand, JsonHoldsTheValuesByField) {
  const QJsonArray cards = Json({u"cards"_s, CliRun::Data(u"multi_background.Orvelle"_s), u"--background"_s,
                                 u"Third"_s})[u"cards"_s]
                               .toArray();
  ASSERT_EQ(cards.size(), 3);
  EXPECT_EQ(cards[1][u"name"_s].toString(), u"card 06"_s);
  EXPECT_EQ(cards[1][u"values"_s][u"F2"_s].toString(), u"1.5"_s);
  // Of the fields, those of the card list.
  const QJsonArray countries =
      Json({u"cards"_s, CliRun::Sample(), u"--background"_s, u"Country"_s})[u"cards"_s].toArray();
  EXPECT_EQ(
      countries[0][u"values"_s].toObject().keys(),
      (QStringList{u"Capital"_s, u"Continent"_s, u"Independent"_s, u"People per km²"_s, u"Population"_s}));
}

TEST(Sample, IsSoundAndRich) {
  const TCliResult check = CliRun::Run({u"check"_s, CliRun::Sample()});
  EXPECT_EQ(check.iStatus, 0) << check.iOut.toStdString() << check.iErr.toStdString();
  const QJsonObject facts = Json({u"info"_s, CliRun::Sample()});
  EXPECT_GT(facts[u"cards"_s].toInt(), 300);
  EXPECT_EQ(facts[u"backgrounds"_s].toArray().size(), 7);
  EXPECT_EQ(facts[u"backgrounds"_s][1][u"cards"_s].toInt(), 195);
  EXPECT_TRUE(facts[u"backgrounds"_s][2][u"keptSorted"_s].toBool());
}

TEST(Sample, IsWhatItsProgramMakes) {
  const TempFolder folder;
  const QString out = folder.Path(u"Countries.Orvelle"_s);
  const TCliResult made = CliRun::RunProgram(QStringLiteral(ORVELLES_MAKE_SAMPLE),
                                             {TestTree::Source() + u"/samples/data"_s, out});
  EXPECT_EQ(made.iStatus, 0) << made.iErr.toStdString();
  EXPECT_TRUE(Bytes(out) == Bytes(CliRun::Sample())) << "samples/Countries.Orvelle is not up to date";
}

TEST(Sample, EveryBackgroundFitsTheCardWindow) {
  const TempFolder folder;
  for (const QString& card : {u"Start"_s, u"Workshop"_s, u"Guide"_s, u"Albania"_s, u"K2"_s, u"Nile"_s}) {
    const TCliResult result =
        CliRun::Run({u"render"_s, CliRun::Sample(), folder.Path(u"a.png"_s), u"--card"_s, card});
    EXPECT_EQ(result.iStatus, 0) << card.toStdString();
    EXPECT_FALSE(result.iErr.contains("EMsg")) << card.toStdString() << result.iErr.toStdString();
  }
}

TEST(Sample, LinksOfTheGuideLeadToCards) {
  CVelumModel::Install();
  Ref<CVelumStack> stack;
  Ref<CVelumViewState> view;
  CVelumStackFile(CliRun::Sample()).LoadStack(stack, view);
  Ref<CVelumControlSet> guide;
  ASSERT_TRUE(stack->GetBackgroundByName(u"Guide"_s, guide));
  Ref<CVelumCard> page;
  qint32 index = 0;
  qsizetype links = 0;
  CVelumWikiTextBox box;
  for (bool found = stack->GetFirstCardInBackground(guide->Id(), page, index); found;
       found = stack->GetNextCardInBackground(guide->Id(), page, index)) {
    box.SetStr(page->GetControlVal(guide->ControlAt(0)->Id(), false).Str());
    for (const TWikiLink& link : box.Links()) {
      ++links;
      Ref<CVelumCard> card;
      EXPECT_TRUE(link.iTarget.startsWith(u"select:"_s) || stack->GetCard(link.iTarget, card))
          << link.iTarget.toStdString();
    }
  }
  EXPECT_GT(links, 20);
}

TEST(Sample, LinksOfTheGuideRunItsScript) {
  const TCliResult result =
      CliRun::Run({u"run"_s, CliRun::Sample(), u"select"_s, u"--card"_s, u"Pages that act"_s, u"--field"_s,
                   u"Page"_s, u"--param"_s, u"Mountain"_s});
  EXPECT_EQ(result.iStatus, 0) << result.iErr.toStdString();
}

TEST(Sample, MountainsStandByHeight) {
  const QStringList lines =
      Lines(CliRun::Run({u"cards"_s, CliRun::Sample(), u"--background"_s, u"Mountain"_s}));
  EXPECT_TRUE(lines.value(0).startsWith(u"Mount Everest\t8849\t"_s));
  int before = 9000;
  for (const QString& line : lines) {
    const int metres = line.split(u'\t').value(1).toInt();
    EXPECT_LE(metres, before) << line.toStdString();
    before = metres;
  }
}

} // namespace
