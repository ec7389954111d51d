#include "exchange/CVelumImports.h"

#include "core/CVelumValue.h"
#include "core/text/CVelumLocale.h"
#include "exchange/CVelumCsvKey.h"
#include "exchange/CVelumCsvPreview.h"
#include "exchange/CVelumCsvProposal.h"
#include "support/Assertions.h"
#include "support/PrintQt.h"
#include "support/Raised.h"
#include "support/ScriptedPresenter.h"
#include "support/TempFolder.h"

#include <QFile>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {

// Cancels at the first report of the progress that is not below iAt.
class CCancel final : public CVelumImportWatch {
public:
  explicit CCancel(int aAt) : iAt(aAt) {}
  [[nodiscard]] bool Progress(int aDone) override { return aDone < iAt; }

private:
  int iAt;
};

QByteArray Lines(int aFrom, int aTo, const QByteArray& aRest = {}, const QByteArray& aFront = {}) {
  QByteArray lines;
  for (int i = aFrom; i < aTo; ++i) lines += aFront + QByteArray::number(i) + aRest + "\n";
  return lines;
}

class CVelumImportsTest : public testing::Test {
protected:
  CVelumImportsTest() {
    CVelumModel::Install();
    CVelumMsg::InitMessages();
    CVelumLocale::Init(u"en_US"_s);
  }

  QString Csv(const QByteArray& aBytes) const { return iFolder.Write(u"a.csv"_s, aBytes); }
  // Imports into a new stack, which is then iNew.
  ECsvOutcome Import(const QByteArray& aBytes) {
    iNew = {};
    return CVelumImports::ImportCsv1(Csv(aBytes), iOptions, iWatch, iNew);
  }
  ECsvOutcome Fill(const QByteArray& aBytes, CVelumImportWatch& aWatch) {
    CVelumPlainStackHost host(iNew.iStack);
    return CVelumImports::ImportCsv1(Csv(aBytes), iOptions, aWatch, Set(), host);
  }
  [[nodiscard]] Ref<CVelumControlSet> Set() const {
    Ref<CVelumControlSet> set;
    qint32 index = 0;
    EXPECT_TRUE(iNew.iStack->GetFirstBackground(set, index));
    return set;
  }
  // The types of the fields.
  [[nodiscard]] QList<qint32> Types() const {
    QList<qint32> types;
    for (qint32 i = 0; i < Set()->NumControls(); ++i) types.append(Set()->ControlAt(i)->ConType());
    return types;
  }
  QList<qint32> TypesOf(const QByteArray& aBytes) {
    EXPECT_EQ(Import(aBytes), ECsvOutcome::Done);
    return Types();
  }
  // A line a card in order: its name, and its values in internal text; "-" for none.
  [[nodiscard]] QStringList Cards() const {
    QStringList lines;
    Ref<CVelumCard> card;
    for (qint32 i = 0; iNew.iStack->GetNextCard(card, i);) {
      QString line = card->Name();
      const Ref<CVelumControlSet> set = card->Background();
      for (qint32 c = 0; c < set->NumControls(); ++c) {
        const qint32 id = set->ControlAt(c)->Id();
        line += u'|';
        line += card->ControlValDef(id) ? CVelumValue::ValToIntText(card->GetControlVal(id, false)) : u"-"_s;
      }
      lines.append(line);
    }
    return lines;
  }

  TempFolder iFolder;
  ScriptedPresenter iPresenter;
  TCsvOptions iOptions;
  CVelumImportWatch iWatch;
  TNewStack iNew;
};

TEST_F(CVelumImportsTest, DetectsNumbersByTheirSeparators) {
  EXPECT_EQ(TypesOf("n\n1.234\n5.678\n"), QList<qint32>({EConInteger})) << "thousands";
  EXPECT_EQ(Cards().first(), u"1234|1234");
  EXPECT_EQ(TypesOf("n\n1.23\n4.567\n"), QList<qint32>({EConReal}));
  EXPECT_EQ(TypesOf("n\n\"1,5\"\n\"2,25\"\n"), QList<qint32>({EConReal}));
  EXPECT_EQ(Cards().last(), u"2.25|2.25");
  EXPECT_EQ(TypesOf("n\n\"1,234\"\n"), QList<qint32>({EConInteger}));
  EXPECT_EQ(TypesOf("n\n12\n13\n"), QList<qint32>({EConInteger}));
  // The sum decides: 4 + 2 digits behind two dots count as two groups of three.
  EXPECT_EQ(TypesOf("n\n1.2345\n1.23\n"), QList<qint32>({EConInteger}));
}

TEST_F(CVelumImportsTest, ProvesEachNumber) {
  EXPECT_EQ(TypesOf("n\n12\n\"\"\nabc\n"), QList<qint32>({EConText})) << "no capital, but no number";
  EXPECT_EQ(TypesOf("n\n12\nABC\n"), QList<qint32>({EConText}));
  EXPECT_EQ(TypesOf("n\n12\n3000000000\n"), QList<qint32>({EConText})) << "32 bits";
  EXPECT_EQ(TypesOf("n\n1.5\n1.2.3\n"), QList<qint32>({EConText}));
}

TEST_F(CVelumImportsTest, DetectsBooleansDatesAndTimes) {
  EXPECT_EQ(TypesOf("n\nT\nF\n"), QList<qint32>({EConBoolean}));
  EXPECT_EQ(TypesOf("n\nT\nX\n"), QList<qint32>({EConText}));
  EXPECT_EQ(TypesOf("n,m\nyes,1\nno,\"\"\n"), QList<qint32>({EConBoolean, EConInteger}));
  EXPECT_EQ(TypesOf("n\n1/2/2003\n12/31/2004\n"), QList<qint32>({EConDate}));
  EXPECT_EQ(TypesOf("n\n10:30\n22:15\n"), QList<qint32>({EConTime}));
  EXPECT_EQ(TypesOf("n\n1/2/2003\n1/2\n"), QList<qint32>({EConInteger})) << "a cell of under 5 characters";
  EXPECT_EQ(TypesOf("n,m\n1/2/2003,\"\"\n\"\",1\n"), QList<qint32>({EConDate, EConInteger}));
  EXPECT_EQ(TypesOf("n,m\n\"\",1\n\"\",2\n"), QList<qint32>({EConText, EConInteger})) << "only empty cells";
}

TEST_F(CVelumImportsTest, AShortRowIsNoEmptyCell) {
  EXPECT_EQ(TypesOf("a,b\nx,T\ny\n"), QList<qint32>({EConText, EConText}));
  EXPECT_EQ(Cards(), QStringList({u"x|x|T"_s, u"y|y|-"_s}));
}

TEST_F(CVelumImportsTest, WithoutTypesAllFieldsAreTexts) {
  iOptions.iDetectTypes = false;
  EXPECT_EQ(TypesOf("a,b\n 1 ,T\n"), QList<qint32>({EConText, EConText}));
  EXPECT_EQ(Cards(), QStringList({u"1|1|T"_s}));
}

TEST_F(CVelumImportsTest, TheUserMayNameTypes) {
  iOptions.iTypes[1] = EConText;
  iOptions.iTypes[2] = EConInteger;
  EXPECT_EQ(TypesOf("a,b,c\nx,007,12\ny,8,many\n"), QList<qint32>({EConText, EConText, EConInteger}));
  EXPECT_EQ(Cards(), QStringList({u"x|x|007|12"_s, u"y|y|8|0"_s}));
}

TEST_F(CVelumImportsTest, WithoutAHeaderLineFieldsAreNumbered) {
  iOptions.iHeaderLine = false;
  EXPECT_EQ(TypesOf("b,1\nc,2\n"), QList<qint32>({EConText, EConInteger}));
  EXPECT_EQ(Set()->ControlAt(1)->Name(), u"Field 2");
  EXPECT_EQ(Set()->ControlAt(1)->Label(), u"Field 2");
  EXPECT_EQ(Cards(), QStringList({u"b|b|1"_s, u"c|c|2"_s}));
}

TEST_F(CVelumImportsTest, AHeaderLineAloneGivesFieldsButNoCard) {
  EXPECT_EQ(TypesOf("a,b\n"), QList<qint32>({EConText, EConText}));
  EXPECT_EQ(iNew.iStack->NumCards(), 0);
}

TEST_F(CVelumImportsTest, TheStackIsNamedByThePathAndSavedAsBinary) {
  ASSERT_EQ(Import("a\n1\n"), ECsvOutcome::Done);
  EXPECT_EQ(iNew.iStack->Name(), iFolder.Path(u"a.csv"_s));
  EXPECT_EQ(iNew.iView->iName, iFolder.Path(u"a.csv"_s));
  EXPECT_TRUE(iNew.iStack->Flag(EStaBinary));
  EXPECT_TRUE(iNew.iStack->Filename().isEmpty());
  EXPECT_TRUE(iNew.iStack->Changed());
}

TEST_F(CVelumImportsTest, AnEmptyFileSaysSoAndGivesNothing) {
  EXPECT_EQ(Import(""), ECsvOutcome::Empty);
  EXPECT_EQ(iPresenter.LastMsg(), EMsgEmptyFile);
  EXPECT_EQ(iPresenter.Shown().last().iClass, EMsgExclamation);
  EXPECT_FALSE(iNew.iStack);
}

TEST_F(CVelumImportsTest, AFirstCellThatIsNeverClosedLeavesNoField) {
  EXPECT_EQ(Import("\"a\nb\n"), ECsvOutcome::Done);
  EXPECT_EQ(Set()->NumControls(), 0);
  EXPECT_EQ(iNew.iStack->NumCards(), 0);
}

TEST_F(CVelumImportsTest, SurplusItemsAreToldOnceWithTheirLines) {
  ASSERT_EQ(Import("a,b\n1,2,3\n1,2\n1,2,3,4\n"), ECsvOutcome::Done);
  EXPECT_EQ(iPresenter.Count(), 1);
  EXPECT_EQ(iPresenter.LastText(), CVelumMsg::Text(EMsgSurplusItems, u"2"_s));
}

TEST_F(CVelumImportsTest, AMissingFileIsAFailure) {
  EXPECT_EQ(Raised([&] {
              static_cast<void>(CVelumImports::ImportCsv1(iFolder.Path(u"none"_s), iOptions, iWatch, iNew));
            }),
            EMsgFileNotFound);
  EXPECT_FALSE(iNew.iStack);
}

TEST_F(CVelumImportsTest, NamesAreSuitableWhenNearlyAllDiffer) {
  const auto named = [&](const QByteArray& aBytes) {
    EXPECT_EQ(Import(aBytes), ECsvOutcome::Done);
    return Set()->ControlAt(0)->Flag(EConCardName);
  };
  EXPECT_TRUE(named("a,b\nx,1\ny,2\n"));
  EXPECT_FALSE(named("a,b\nx,1\nx,2\n"));
  EXPECT_FALSE(named("a,b\nx,1\n\"\",2\n")) << "an empty name";
  EXPECT_FALSE(named("a,b\nx,1\n\ny,2\n")) << "no name at all";
  EXPECT_FALSE(named(",b\nx,1\ny,2\n")) << "in the header line";
  EXPECT_TRUE(named("a,b\nx,1\nX,2\n")) << "equal means exactly equal";
  // 25 rows with the header line: one may occur twice.
  EXPECT_TRUE(named("a\n" + Lines(1, 24) + "1\n"));
  EXPECT_FALSE(named("a\n" + Lines(1, 23) + "1\n"));
  EXPECT_FALSE(named("a\n" + Lines(1, 23) + "1\n1\n"));
  iOptions.iTryCardName = false;
  EXPECT_FALSE(named("a,b\nx,1\ny,2\n"));
  EXPECT_EQ(Cards(), QStringList({u"1|x|1"_s, u"2|y|2"_s}));
}

TEST_F(CVelumImportsTest, CardsTakeTheirNamesAsWhenAValueIsSet) {
  // A name shows at most 8 decimals; the value keeps all of them.
  ASSERT_EQ(Import("a\n1234.5\n0.1234567891\n"), ECsvOutcome::Done);
  Ref<CVelumCard> card;
  ASSERT_TRUE(iNew.iStack->GetCard(u"1,234.5"_s, card));
  EXPECT_EQ(card->GetControlVal(Set()->ControlAt(0)->Id(), false).Real(), 1234.5);
  ASSERT_TRUE(iNew.iStack->GetCard(u"0.12345679"_s, card));
  EXPECT_EQ(card->GetControlVal(Set()->ControlAt(0)->Id(), false).Real(), 0.1234567891);
  // The same through the stack.
  card->SetControlVal(Set()->ControlAt(0)->Id(), TVelumValue::OfReal(0.9876543211));
  EXPECT_EQ(card->GetControlVal(Set()->ControlAt(0)->Id(), false).Real(), 0.9876543211);
}

TEST_F(CVelumImportsTest, OneCardIn25MayBeOutOfOrder) {
  const auto kept = [&](const QByteArray& aBytes) {
    EXPECT_EQ(Import(aBytes), ECsvOutcome::Done);
    return Set()->Flag(ECseKeepCardsSorted);
  };
  EXPECT_TRUE(kept("a,b\n1,x\n2,y\n10,z\n")) << "numbers are compared as such";
  EXPECT_TRUE(kept("a,b\n1,x\n1,y\n2,z\n"));
  EXPECT_FALSE(kept("a,b\n2,x\n1,y\n"));
  EXPECT_TRUE(kept("a,b\n" + Lines(1, 25, ",x") + "5,y\n")) << "25 cards";
  EXPECT_EQ(Cards().at(5), u"5|5|y") << "sorted anew";
  EXPECT_FALSE(kept("a,b\n" + Lines(1, 24, ",x") + "5,y\n")) << "24 cards";
  iOptions.iGuessKey = false;
  EXPECT_FALSE(kept("a,b\n1,x\n2,y\n"));
}

TEST_F(CVelumImportsTest, AFailedGuessOfTwoFieldsUsesUpItsIds) {
  ASSERT_EQ(Import("a,b\n2,x\n1,y\n"), ECsvOutcome::Done);
  EXPECT_EQ(iNew.iStack->IdGen().NextId(), 5) << "the background, two fields, two keys that did not fit";
}

TEST_F(CVelumImportsTest, AFieldOfTheKeyKeepsTheCardsSorted) {
  ASSERT_EQ(Import("a,b\n1,x\n2,y\n3,z\n"), ECsvOutcome::Done);
  Ref<CVelumCard> card;
  ASSERT_TRUE(iNew.iStack->GetCard(u"1"_s, card));
  card->SetControlVal(Set()->ControlAt(0)->Id(), TVelumValue::OfInt(9));
  EXPECT_EQ(Cards(), QStringList({u"2|2|y"_s, u"3|3|z"_s, u"9|9|x"_s}));
}

TEST_F(CVelumImportsTest, FillingReplacesTheCardsInTheirPlace) {
  iOptions.iGuessKey = false;
  iOptions.iTryCardName = false;
  ASSERT_EQ(Import("a,b\n1,x\n2,y\n"), ECsvOutcome::Done);
  auto other = MakeRef<CVelumControlSet>(u"Other"_s, iNew.iStack->IdGen().NextId());
  iNew.iStack->AddBackground(other);
  iNew.iStack->AddCard(MakeRef<CVelumCard>(u"behind"_s, other), nullptr, false);
  ASSERT_EQ(Fill("a,b\n7,u\n8,v\n9,w\n", iWatch), ECsvOutcome::Done);
  EXPECT_EQ(Cards(), QStringList({u"1|7|u"_s, u"2|8|v"_s, u"3|9|w"_s, u"behind"_s}));
  EXPECT_EQ(iNew.iStack->NumCards(), 4);
}

TEST_F(CVelumImportsTest, FillingASortedBackgroundKeepsItsOrder) {
  ASSERT_EQ(Import("a,b\n1,x\n2,y\n"), ECsvOutcome::Done);
  ASSERT_TRUE(Set()->Flag(ECseKeepCardsSorted));
  ASSERT_EQ(Fill("a,b\n9,u\n7,v\n8,w\n", iWatch), ECsvOutcome::Done);
  EXPECT_EQ(Cards(), QStringList({u"7|7|v"_s, u"8|8|w"_s, u"9|9|u"_s}));
  Ref<CVelumSortKey> key;
  qint32 index = 0;
  EXPECT_TRUE(iNew.iStack->GetFirstSortKey(key, index));
  EXPECT_FALSE(iNew.iStack->GetNextSortKey(key, index)) << "no second key";
}

TEST_F(CVelumImportsTest, AFieldOfAnotherTypeThanItsColumnTakesTheTextAsAnEntry) {
  iOptions.iDetectTypes = false;
  ASSERT_EQ(Import("a,b\nx,1\n"), ECsvOutcome::Done);
  iOptions.iDetectTypes = true;
  EXPECT_EQ(Fill("a,b\nu,02\nv,+3\n", iWatch), ECsvOutcome::Done) << "Integer into Text";
  EXPECT_EQ(Cards(), QStringList({u"u|u|02"_s, u"v|v|+3"_s}));
  EXPECT_EQ(Fill("a,b\nu,yes\nv,no\n", iWatch), ECsvOutcome::Done) << "Boolean into Text";
  EXPECT_EQ(Cards(), QStringList({u"u|u|yes"_s, u"v|v|no"_s}));
  ASSERT_EQ(Import("a,b\nx,1.5\n"), ECsvOutcome::Done);
  EXPECT_EQ(Fill("a,b\nu,2\nv,text\n", iWatch), ECsvOutcome::Done) << "Text into Real";
  EXPECT_EQ(Cards(), QStringList({u"u|u|2"_s, u"v|v|0"_s}));
}

TEST_F(CVelumImportsTest, EqualColumnNamesGetNumbers) {
  ASSERT_EQ(Import("n,a,a\nx,1,2\n"), ECsvOutcome::Done);
  EXPECT_EQ(Set()->ControlAt(1)->Name(), u"a"_s);
  EXPECT_EQ(Set()->ControlAt(2)->Name(), u"a 2"_s);
  EXPECT_EQ(Set()->ControlAt(2)->Label(), u"a 2"_s);
}

TEST_F(CVelumImportsTest, TheFirstItemTooManyIsShownWithItsPlace) {
  QByteArray line("0");
  for (int i = 1; i <= 20; ++i) line += "," + QByteArray::number(i);
  ASSERT_EQ(Import("a,b\n" + line + QByteArray(50, 'x') + "\n"), ECsvOutcome::Done);
  EXPECT_EQ(iPresenter.CountOf(EMsgTooManyItems), 1);
  const QString text = CVelumMsg::Text(EMsgTooManyItems, CVelumMsg::EUndefParam) +
                       u"\r\nLine 2, item 21: '20"_s + QString(38, u'x') + u"…'"_s;
  EXPECT_EQ(iPresenter.Shown().first().iText, text);
}

TEST_F(CVelumImportsTest, WhateverFailsLeavesTheStackAsItWas) {
  ASSERT_EQ(Import("a,b\nx,1\ny,2\n"), ECsvOutcome::Done);
  iNew.iStack->SetChanged(false);
  const QStringList before = Cards();
  EXPECT_EQ(Fill("", iWatch), ECsvOutcome::Empty);
  EXPECT_EQ(Raised([&] { static_cast<void>(Fill("a\n" + QByteArray(40000, 'x'), iWatch)); }), EHostOverflow);
  for (const int at : {1, 300, 400, 500, 600, 750}) {
    CCancel cancel(at);
    EXPECT_EQ(Fill("a,b\n" + Lines(0, 20000, ",1", "N"), cancel), ECsvOutcome::Cancelled) << at;
  }
  EXPECT_EQ(Cards(), before);
  EXPECT_FALSE(iNew.iStack->Changed());
  EXPECT_FALSE(iPresenter.CountOf(EMsgSurplusItems));
}

TEST_F(CVelumImportsTest, ACancelledNewStackIsNone) {
  for (const int at : {1, 300, 500, 700}) {
    CCancel cancel(at);
    const QString path = Csv("a,b\n" + Lines(0, 20000, ",1"));
    EXPECT_EQ(CVelumImports::ImportCsv1(path, iOptions, cancel, iNew), ECsvOutcome::Cancelled) << at;
    EXPECT_FALSE(iNew.iStack);
  }
}

TEST_F(CVelumImportsTest, WidthsFollowTheContent) {
  ASSERT_EQ(Import("a\nabcde\nabc\n"), ECsvOutcome::Done);
  EXPECT_EQ(Set()->ControlAt(0)->VisChar(), 7);
}

TEST_F(CVelumImportsTest, FieldsOfTheBackgroundDecideWithoutDetection) {
  ASSERT_EQ(Import("a,b,c\nx,1,1/2/2003\n"), ECsvOutcome::Done);
  iOptions.iDetectTypes = false;
  ASSERT_EQ(Fill("a,b,c\ny,12abc,never\n", iWatch), ECsvOutcome::Done);
  EXPECT_EQ(Cards(), QStringList({u"y|y|12|19800101"_s})) << "as when it is typed";
}

TEST_F(CVelumImportsTest, AFailureOfTheHostNamesTheImport) {
  EXPECT_EQ(Raised([&] { static_cast<void>(Import("a\n" + QByteArray(40000, 'x'))); }), EHostOverflow);
  EXPECT_EQ(CVelumError::GetErrorRecord().iProc, u"CVelumImports.ImportCsv1");
}

TEST_F(CVelumImportsTest, APipeIsNoFile) {
  const QString pipe = iFolder.Path(u"pipe"_s);
  ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
  EXPECT_EQ(Raised([&] { static_cast<void>(CVelumImports::ProposeCsv(pipe)); }), EHostPermissionDenied);
  EXPECT_EQ(Raised([&] { static_cast<void>(CVelumImports::ImportCsv1(pipe, iOptions, iWatch, iNew)); }),
            EHostPermissionDenied);
}

TEST_F(CVelumImportsTest, TheProposalNamesALineBeyondAllMeasure) {
  const QString path = Csv("a\n");
  ASSERT_TRUE(QFile::resize(path, qint64{1} << 30)); // takes no room on the disk
  try {
    static_cast<void>(CVelumImports::ProposeCsv(path));
    FAIL();
  } catch (const CVelumException& e) {
    EXPECT_EQ(e.Number(), EHostOutOfMemory);
    EXPECT_TRUE(e.Descr().contains(u"line 2"_s)) << e.what();
  }
}

TEST_F(CVelumImportsTest, ProposesByTheFirstLine) {
  const auto delim = [&](const QByteArray& aBytes) { return CVelumImports::ProposeCsv(Csv(aBytes)).iDelim; };
  EXPECT_EQ(delim("a;b;c,d\n"), u';');
  EXPECT_EQ(delim("a\tb\tc,d;e\n"), u'\t');
  EXPECT_EQ(delim("a,b\tc;d\n"), u',') << "a tie";
  EXPECT_EQ(delim("a;b\tc\n"), u',') << "a tie without commas";
  EXPECT_EQ(delim("abc\n1;2;3\n"), u',') << "only the first line counts";
  EXPECT_EQ(delim(""), u',');
}

TEST_F(CVelumImportsTest, ShowsTheFirstTenLines) {
  const TCsvProposal proposal = CVelumImports::ProposeCsv(Csv("a\tb\n" + Lines(1, 20)));
  EXPECT_EQ(proposal.iLines.size(), 10);
  EXPECT_EQ(proposal.iLines.first(), u"a<tab>b");
  EXPECT_EQ(CVelumImports::ProposeCsv(Csv(QByteArray(100000, 'x'))).iLines.first().size(), 32766);
}

TEST_F(CVelumImportsTest, ProposesUtf8WhereTheBytesAreThat) {
  const auto propose = [&](const QByteArray& aBytes) { return CVelumImports::ProposeCsv(Csv(aBytes)); };
  const TCsvProposal marked = propose("\xEF\xBB\xBF\xC3\xA9\n");
  EXPECT_EQ(marked.iCoding, ECodUtf8);
  EXPECT_EQ(marked.iLines, QStringList({u"\u00E9"_s}));
  const TCsvProposal plain = propose("abc\n");
  EXPECT_EQ(plain.BestCoding(), ECodLatin1);
  const TCsvProposal utf8 = propose("\xC3\xA9\n");
  EXPECT_EQ(utf8.iCoding, ECodLatin1) << "without a mark";
  EXPECT_EQ(utf8.BestCoding(), ECodUtf8);
  EXPECT_EQ(utf8.iLines, QStringList({u"\u00E9"_s}));
  EXPECT_EQ(propose("\xE9\n").BestCoding(), ECodLatin1);
  EXPECT_EQ(propose("\xC3\xA9\n\xE9\n").BestCoding(), ECodLatin1);
  EXPECT_EQ(propose("\xC3\xA9").BestCoding(), ECodUtf8) << "without a line end";
  EXPECT_EQ(propose("\xC3").BestCoding(), ECodLatin1) << "half a character";
  EXPECT_EQ(propose(Lines(0, 1000) + "\xC3\xA9\n").BestCoding(), ECodUtf8) << "wherever it stands";
  EXPECT_EQ(propose("\xC3\xA9\n" + Lines(0, 1000) + "\xE9\n").BestCoding(), ECodLatin1);
  // A character across the border of two blocks, at each of its places.
  for (int i = 0; i < 4; ++i) {
    const QByteArray before(1024 * 1024 - i, 'x');
    EXPECT_EQ(propose(before + "\xF0\x9F\x98\x80\n").BestCoding(), ECodUtf8) << i;
    EXPECT_EQ(propose(before + "\xF0\x9F\x98\n").BestCoding(), ECodLatin1) << i;
    EXPECT_EQ(propose(before + "\xF0\x9F\x98").BestCoding(), ECodLatin1) << i;
  }
}

TEST_F(CVelumImportsTest, PreviewsWithTheTypesOfManyLines) {
  const auto preview = [&](const QByteArray& aBytes) {
    return CVelumImports::PreviewCsv(Csv(aBytes), iOptions);
  };
  const TCsvPreview some = preview("a,b\n1,x\n2\n");
  EXPECT_EQ(some.iTitles, QStringList({u"a"_s, u"b"_s}));
  EXPECT_EQ(some.iTypes, QList<qint32>({EConInteger, EConText}));
  EXPECT_EQ(some.iRows, QList<QStringList>({{u"1"_s, u"x"_s}, {u"2"_s}}));
  EXPECT_TRUE(some.iWhole);
  EXPECT_TRUE(some.iChangedCells.isEmpty());
  const TCsvPreview changes = preview("zip,b\n5,x\n\"01\",y\n007,z\n");
  EXPECT_EQ(changes.iChanged, QList<qint64>({2, 0}));
  EXPECT_EQ(changes.iChangedCells, (QSet<std::pair<int, int>>{{1, 0}, {2, 0}}));
  const TCsvPreview many = preview("a\n" + Lines(0, 1000) + "ABC\n");
  EXPECT_EQ(many.iRows.size(), 100);
  EXPECT_EQ(many.iTypes, QList<qint32>({EConText})) << "the last line counts";
  EXPECT_FALSE(preview("a\n" + Lines(0, 20000) + "ABC\n").iWhole);
  EXPECT_TRUE(preview("").iTitles.isEmpty());
  EXPECT_EQ(iPresenter.Count(), 0);
}

} // namespace
