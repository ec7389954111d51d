#include "model/order/CVelumSortKey.h"

#include "core/text/CVelumLocale.h"
#include "model/ModelTest.h"
#include "support/RawValues.h"

#include <algorithm>
#include <cmath>

using namespace ModelTest;

namespace {

// A sort key over the sample's first background.
struct TKeyed : TSampleStack {
  TKeyed() : iKeyOf(MakeRef<CVelumSortKey>(iStack->IdGen().NextId(), u"Key"_s, iFirst->Id())) {
    iStack->AddSortKey(iKeyOf);
  }
  void Part(const Ref<CVelumControl>& aControl, qint32 aWay, qint16 aLen) {
    iKeyOf->AddKeyPart(aControl->ConType(), aControl->Id(), aWay, aLen);
    iStack->SetControlDynFlags();
  }
  [[nodiscard]] int Compare(const Ref<CVelumCard>& aA, const Ref<CVelumCard>& aB) const {
    return iKeyOf->Compare(iKeyOf->BuildKey(*aA), iKeyOf->BuildKey(*aB));
  }
  Ref<CVelumCard> Card(const TVelumValue& aTown, const TVelumValue& aSize) {
    const Ref<CVelumCard> card = AddCard(iFirst, u"c"_s);
    if (aTown.Type()) card->SetControlVal(iTown->Id(), aTown);
    if (aSize.Type()) card->SetControlVal(iSize->Id(), aSize);
    return card;
  }

  Ref<CVelumSortKey> iKeyOf;
};

TVelumValue Str(const QString& aText) {
  return TVelumValue::OfStr(aText);
}
TVelumValue Int(qint32 aInt) {
  return TVelumValue::OfInt(aInt);
}

TEST(CVelumSortKey, StartsEmptyAndChanged) {
  const CVelumSortKey key(7, u"By town"_s, 3);
  EXPECT_EQ(key.ObjDescr(), u"CVelumSortKey name=By town,id=7"_s);
  EXPECT_EQ(key.BackgroundId(), 3);
  EXPECT_EQ(key.NumKeyParts(), 0);
  EXPECT_TRUE(key.Changed());
}

TEST(CVelumSortKey, PartsFollowEachOther) {
  CVelumSortKey key(7, u"k"_s, 3);
  key.SetChanged(false);
  key.AddKeyPart(EConText, 11, EWayAscending, 30);
  EXPECT_TRUE(key.Changed());
  key.AddKeyPart(EConInteger, 12, EWayDescending, 11);
  key.AddKeyPart(EConDate, 13, EWayAscending, 8);
  TVelumKeyPart part;
  qint32 index = 0;
  ASSERT_TRUE(key.GetFirstKeyPart(part, index));
  EXPECT_EQ(part.iPos, 0);
  ASSERT_TRUE(key.GetNextKeyPart(part, index));
  EXPECT_EQ(part.iPos, 30);
  EXPECT_EQ(part.iWay, EWayDescending);
  EXPECT_EQ(part.iControlId, 12);
  ASSERT_TRUE(key.GetNextKeyPart(part, index));
  EXPECT_EQ(part.iPos, 41);
  EXPECT_FALSE(key.GetNextKeyPart(part, index));
  EXPECT_TRUE(key.ControlOccurs(13));
  EXPECT_FALSE(key.ControlOccurs(14));
  key.SetChanged(false);
  key.Clear();
  EXPECT_TRUE(key.Changed());
  EXPECT_EQ(key.NumKeyParts(), 0);
  EXPECT_FALSE(key.ControlOccurs(13));
}

TEST(CVelumSortKey, ASeventhPartFails) {
  CVelumSortKey key(7, u"k"_s, 3);
  for (int i = 0; i < 6; ++i) key.AddKeyPart(EConText, i, EWayAscending, 5);
  EXPECT_EQ(Raised([&] { key.AddKeyPart(EConText, 6, EWayAscending, 5); }), EHostIndex);
  EXPECT_EQ(key.NumKeyParts(), 6);
}

TEST(CVelumSortKey, KeyIsPartsInUpperCaseAndTheId) {
  TKeyed bed;
  bed.Part(bed.iTown, EWayAscending, 5);
  bed.Part(bed.iSize, EWayAscending, 11);
  const Ref<CVelumCard> card = bed.Card(Str(u"stra\u00dfe"_s), Int(-42));
  EXPECT_EQ(bed.iKeyOf->BuildKey(*card), u"STRA\u00df-42                 0"_s);
  const Ref<CVelumCard> empty = bed.Card({}, {});
  EXPECT_EQ(bed.iKeyOf->BuildKey(*empty), u"                         1"_s);
}

// Texts of keys know no locale.
TEST(CVelumSortKey, KeyUsesTheInternalText) {
  CVelumLocale::Init(u"de_DE"_s);
  TKeyed bed;
  const Ref<CVelumControl> real = bed.AddField(bed.iFirst, u"R"_s, EConReal);
  const Ref<CVelumControl> yes = bed.AddField(bed.iFirst, u"Y"_s, EConBoolean);
  bed.Part(real, EWayAscending, 6);
  bed.Part(bed.iSince, EWayAscending, 8);
  bed.Part(yes, EWayAscending, 2);
  const Ref<CVelumCard> card = bed.Card({}, {});
  card->SetControlVal(real->Id(), TVelumValue::OfReal(1.5));
  card->SetControlVal(bed.iSince->Id(), TVelumValue::OfDate(ENoDate));
  card->SetControlVal(yes->Id(), TVelumValue::OfBoolean(true));
  EXPECT_EQ(bed.iKeyOf->BuildKey(*card), u"1.5   19800101-1         0"_s);
  CVelumLocale::Init(u"en_US"_s);
}

TEST(CVelumSortKey, DefaultsCountAsValues) {
  TKeyed bed;
  bed.Part(bed.iTown, EWayAscending, 6);
  bed.iTown->SetDefaultVal(u"Bern"_s);
  EXPECT_EQ(bed.iKeyOf->BuildKey(*bed.Card({}, {})), u"BERN           0"_s);
}

TEST(CVelumSortKey, KeyOfAnotherBackgroundAsserts) {
  TKeyed bed;
  const Ref<CVelumCard> card = bed.AddCard(bed.iSecond, u"x"_s);
  EXPECT_EQ(AssertText([&] { static_cast<void>(bed.iKeyOf->BuildKey(*card)); }), u"background"_s);
  EXPECT_EQ(gLastError.iProc, u"BuildKey"_s);
}

TEST(CVelumSortKey, SameValuesGoByIdWhateverTheWay) {
  TKeyed bed;
  bed.Part(bed.iTown, EWayDescending, 10);
  const Ref<CVelumCard> a = bed.Card(Str(u"Bern"_s), {});
  const Ref<CVelumCard> b = bed.Card(Str(u"Bern"_s), {});
  EXPECT_NE(bed.iKeyOf->BuildKey(*a), bed.iKeyOf->BuildKey(*b));
  EXPECT_EQ(bed.Compare(a, b), 0);
  EXPECT_EQ(bed.Compare(b, a), 2);
  EXPECT_EQ(bed.Compare(a, a), 1);
}

TEST(CVelumSortKey, IdsOfDifferentLengthGoByTheirBlanks) {
  CVelumSortKey key(1, u"k"_s, 0);
  EXPECT_EQ(key.Compare(u"         9"_s, u"        10"_s), 0);
  EXPECT_EQ(key.Compare(u"        10"_s, u"         9"_s), 2);
}

TEST(CVelumSortKey, OnlyTheWidthCounts) {
  TKeyed bed;
  bed.Part(bed.iTown, EWayAscending, 3);
  const Ref<CVelumCard> a = bed.Card(Str(u"Berz"_s), {});
  const Ref<CVelumCard> b = bed.Card(Str(u"Bera"_s), {});
  EXPECT_EQ(bed.Compare(a, b), 0);
}

TEST(CVelumSortKey, CaseAndPunctuationDoNotDecide) {
  TKeyed bed;
  bed.Part(bed.iTown, EWayAscending, 10);
  const Ref<CVelumCard> a = bed.Card(Str(u"dr. WHO"_s), {});
  const Ref<CVelumCard> b = bed.Card(Str(u"Dr Who"_s), {});
  EXPECT_EQ(bed.Compare(a, b), 0);
  EXPECT_EQ(bed.Compare(b, a), 2);
}

TEST(CVelumSortKey, NumbersCompareAsNumbers) {
  TKeyed bed;
  bed.Part(bed.iSize, EWayAscending, 11);
  const Ref<CVelumCard> nine = bed.Card({}, Int(9));
  const Ref<CVelumCard> ten = bed.Card({}, Int(10));
  const Ref<CVelumCard> minus = bed.Card({}, Int(-10));
  const Ref<CVelumCard> undefined = bed.Card({}, {});
  const Ref<CVelumCard> zero = bed.Card({}, Int(0));
  EXPECT_EQ(bed.Compare(nine, ten), 0);
  EXPECT_EQ(bed.Compare(minus, nine), 0);
  EXPECT_EQ(bed.Compare(undefined, zero), 0) << "equal, so the ids decide";
  EXPECT_EQ(bed.Compare(undefined, minus), 2);
}

TEST(CVelumSortKey, RealsCompareWithFraction) {
  CVelumSortKey real(1, u"k"_s, 0);
  real.AddKeyPart(EConReal, 1, EWayAscending, 5);
  EXPECT_EQ(real.Compare(u"1.2           0"_s, u"1.3           0"_s), 0);
  CVelumSortKey whole(1, u"k"_s, 0);
  whole.AddKeyPart(EConInteger, 1, EWayAscending, 5);
  EXPECT_EQ(whole.Compare(u"1.2           0"_s, u"1.3           0"_s), 1);
}

// A part that is cut keeps its exponent.
TEST(CVelumSortKey, RealsOfAllMagnitudesKeepTheirOrder) {
  TKeyed bed;
  const Ref<CVelumControl> real = bed.AddField(bed.iFirst, u"R"_s, EConReal);
  bed.Part(real, EWayAscending, 15);
  std::vector<double> reals = {0, 0.5, 1.23456789012e-05, 1.23456789012345e+25, 2.5e+20, 1.234567890123456};
  for (int exponent = -308; exponent <= 308; ++exponent)
    for (const double digits : {1.0, 1.23456789012345, 9.87654321098765})
      if (exponent < 308 || digits < 1.7) reals.push_back(digits * std::pow(10.0, exponent));
  for (size_t i = reals.size(); i-- > 0;) reals.push_back(-reals[i]);
  std::sort(reals.begin(), reals.end());
  QString last;
  for (const double number : reals) {
    const Ref<CVelumCard> card = bed.AddCard(bed.iFirst, u"c"_s);
    card->SetControlVal(real->Id(), TVelumValue::OfReal(number));
    const QString key = bed.iKeyOf->BuildKey(*card);
    ASSERT_EQ(key.size(), 25);
    if (!last.isEmpty()) {
      ASSERT_EQ(bed.iKeyOf->Compare(last, key), 0) << number;
    }
    last = key;
  }
}

TEST(CVelumSortKey, TextsThatAreNoKeysOfNumbersCompare) {
  CVelumSortKey key(1, u"k"_s, 0);
  key.AddKeyPart(EConReal, 1, EWayAscending, 6);
  EXPECT_EQ(key.Compare(u"1E999          0"_s, u"1E300          1"_s), 2);
  EXPECT_EQ(key.Compare(u"-1E999         0"_s, u"-1E300         1"_s), 0);
}

TEST(CVelumSortKey, PairsHaveNoText) {
  TKeyed bed;
  bed.Part(bed.iTown, EWayAscending, 3);
  const Ref<CVelumCard> card = bed.Card({}, {});
  TVelumElem elem;
  card->Value().InitElem(elem);
  elem.iIntKey = bed.iTown->Id();
  elem.iVal = TVelumValue::OfPair(1, 2);
  RawValues(*card).CreateIntKey(elem);
  EXPECT_EQ(bed.iKeyOf->BuildKey(*card), u"            0"_s);
}

TEST(CVelumSortKey, AFieldOfAnotherTypeComparesByIt) {
  CVelumSortKey key(1, u"k"_s, 0);
  key.AddKeyPart(EConText, 1, EWayAscending, 3);
  key.AddKeyPart(EConText, 2, EWayAscending, 3);
  key.SetChanged(false);
  key.SetControlType(3, EConInteger);
  key.SetControlType(2, EConList);
  EXPECT_FALSE(key.Changed());
  key.SetControlType(2, EConInteger);
  EXPECT_TRUE(key.Changed());
  TVelumKeyPart part;
  qint32 at = 0;
  ASSERT_TRUE(key.GetNextKeyPart(part, at));
  EXPECT_EQ(part.iType, EConText);
  ASSERT_TRUE(key.GetNextKeyPart(part, at));
  EXPECT_EQ(part.iType, EConInteger);
}

TEST(CVelumSortKey, KeysAreOnlyBuiltWithAllFields) {
  TKeyed bed;
  EXPECT_FALSE(bed.iKeyOf->CanBuild(nullptr));
  EXPECT_TRUE(bed.iKeyOf->CanBuild(bed.iFirst.Get())) << "no field at all";
  bed.Part(bed.iTown, EWayAscending, 3);
  EXPECT_TRUE(bed.iKeyOf->CanBuild(bed.iFirst.Get()));
  EXPECT_FALSE(bed.iKeyOf->CanBuild(bed.iSecond.Get()));
  bed.iTown->SetConType(9);
  EXPECT_FALSE(bed.iKeyOf->CanBuild(bed.iFirst.Get()));
}

TEST(CVelumSortKey, NumbersBeyondIntegersDoNotFail) {
  CVelumSortKey key(1, u"k"_s, 0);
  key.AddKeyPart(EConInteger, 1, EWayAscending, 12);
  EXPECT_EQ(key.Compare(u"999999999999         0"_s, u"999999999998         0"_s), 2);
}

TEST(CVelumSortKey, DescendingTurnsOnePartOnly) {
  TKeyed bed;
  bed.Part(bed.iSize, EWayDescending, 11);
  bed.Part(bed.iTown, EWayAscending, 10);
  const Ref<CVelumCard> a = bed.Card(Str(u"a"_s), Int(1));
  const Ref<CVelumCard> b = bed.Card(Str(u"b"_s), Int(1));
  const Ref<CVelumCard> two = bed.Card(Str(u"z"_s), Int(2));
  EXPECT_EQ(bed.Compare(two, a), 0);
  EXPECT_EQ(bed.Compare(a, b), 0);
}

TEST(CVelumSortKey, TrueSortsBeforeFalse) {
  TKeyed bed;
  const Ref<CVelumControl> yes = bed.AddField(bed.iFirst, u"Y"_s, EConBoolean);
  bed.Part(yes, EWayAscending, 2);
  const Ref<CVelumCard> no = bed.Card({}, {});
  no->SetControlVal(yes->Id(), TVelumValue::OfBoolean(false));
  const Ref<CVelumCard> true1 = bed.Card({}, {});
  true1->SetControlVal(yes->Id(), TVelumValue::OfBoolean(true));
  EXPECT_EQ(bed.Compare(true1, no), 0);
}

TEST(CVelumSortKey, UnknownTypeAsserts) {
  CVelumSortKey key(1, u"k"_s, 0);
  key.AddKeyPart(EConList, 1, EWayAscending, 2);
  EXPECT_EQ(AssertText([&] { static_cast<void>(key.Compare(u"a         0"_s, u"b         0"_s)); }),
            u"type 6"_s);
  EXPECT_EQ(gLastError.iProc, u"Compare"_s);
  EXPECT_EQ(RaisedOverruled([&] { static_cast<void>(key.Compare(u"a         0"_s, u"b         0"_s)); }), -1);
}

TEST(CVelumSortKey, ShortAndOddKeysAreSafe) {
  CVelumSortKey key(1, u"k"_s, 0);
  key.AddKeyPart(EConText, 1, EWayAscending, 30);
  key.AddKeyPart(EConInteger, 1, EWayAscending, 11);
  EXPECT_EQ(key.Compare({}, {}), 1);
  EXPECT_EQ(key.Compare(u"A"_s, {}), 2);
}

TEST(CVelumSortKey, BytesAreThoseOfTheFormat) {
  CVelumSortKey key(7, u"By"_s, 3);
  key.AddKeyPart(EConText, 11, EWayDescending, 30);
  key.SetStoredKey(u"scratch"_s);
  Bytes expected;
  expected.Short(9).Short(0).Int(7).Str(u"By"_s).Int(3).Short(1);
  expected.Short(0).Int(11).Short(1).Short(30).Short(0);
  EXPECT_EQ(Stored(key), QByteArray(expected));
  EXPECT_EQ(key.ExtLen(), QByteArray(expected).size());
  CVelumSortKey read;
  Load(read, expected);
  EXPECT_FALSE(read.Changed());
  EXPECT_TRUE(read.StoredKey().isEmpty());
  EXPECT_EQ(Stored(read), QByteArray(expected));
}

TEST(CVelumSortKey, SevenPartsOnFileAreAnErrorOfBounds) {
  Bytes bytes;
  bytes.Short(9).Short(0).Int(7).Str(u"By"_s).Int(3).Short(7);
  for (int i = 0; i < 7; ++i) bytes.Short(0).Int(11).Short(1).Short(30).Short(0);
  CVelumSortKey key;
  EXPECT_EQ(Raised([&] { Load(key, bytes); }), EHostIndex);
}

// Positions and widths of a damaged file.
TEST(CVelumSortKey, NegativeWidthsAreSafe) {
  TKeyed bed;
  Bytes bytes;
  bytes.Short(9).Short(0).Int(7).Str(u"By"_s).Int(bed.iFirst->Id()).Short(1);
  bytes.Short(0).Int(bed.iTown->Id()).Short(1).Short(-5).Short(-9);
  CVelumSortKey key;
  Load(key, bytes);
  const Ref<CVelumCard> card = bed.Card(Str(u"Bern"_s), {});
  const QString text = key.BuildKey(*card);
  EXPECT_EQ(text, u"         0"_s);
  EXPECT_EQ(key.Compare(text, text), 1);
}

} // namespace
