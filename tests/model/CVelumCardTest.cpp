#include "model/CVelumCard.h"

#include "core/CVelumValue.h"
#include "model/ModelTest.h"

#include "support/RawValues.h"
#include <cmath>

using namespace ModelTest;

namespace {

TVelumValue Str(const QString& aText) {
  return TVelumValue::OfStr(aText);
}
TVelumValue Int(qint32 aInt) {
  return TVelumValue::OfInt(aInt);
}

// A card whose modification lies in the past, so that a change shows.
struct TCardBed : TSampleStack {
  TCardBed() : iCard(AddCard(iFirst, u"Ann"_s)) { Settle(); }
  void Settle() const {
    iCard->SetModDate(ENoDate);
    iCard->SetModTime(0);
    iStack->SetChanged(false);
    iStack->ResetChangeInfo();
  }
  [[nodiscard]] bool Touched() const {
    const bool changed = iCard->Changed();
    EXPECT_EQ(changed, iCard->ModDate() != ENoDate);
    EXPECT_EQ(changed, iStack->ChangeInfo().iCardChanged);
    return changed;
  }
  [[nodiscard]] Ref<CVelumBlob> Blob() const {
    const auto blob = MakeRef<CVelumBlob>(iStack->IdGen().NextId());
    blob->SetBytes("picture");
    iStack->BlobStore()->AddBlob(blob);
    return blob;
  }
  Ref<CVelumCard> iCard;
};

TEST(CVelumCard, StartsWithTheClockAndNothingElse) {
  const TSampleStack bed;
  const double before = CVelumValue::Today();
  const CVelumCard card(u"Ann"_s, bed.iFirst);
  EXPECT_EQ(card.ObjDescr(), u"CVelumCard name=Ann"_s);
  EXPECT_EQ(card.Id(), ENoInt);
  EXPECT_EQ(card.OrderNum(), ENoInt);
  EXPECT_EQ(card.BackgroundId(), bed.iFirst->Id());
  EXPECT_EQ(card.Stack(), nullptr);
  EXPECT_FALSE(card.Background());
  EXPECT_TRUE(card.Changed());
  EXPECT_FALSE(card.Dirty());
  EXPECT_GE(card.CreDate(), before);
  EXPECT_EQ(card.ModDate(), card.CreDate());
  EXPECT_EQ(card.ModTime(), card.CreTime());
  EXPECT_EQ(card.Value().Flags(), EArrIntKey | EArrMixed);
  EXPECT_EQ(card.Value().Type(), EValStr);
  EXPECT_EQ(card.Value().Count(), 0);
}

TEST(CVelumCard, NeedsABackground) {
  EXPECT_EQ(AssertText([] { static_cast<void>(MakeRef<CVelumCard>(u"x"_s, nullptr)); }),
            u"Construct background set"_s);
  EXPECT_EQ(RaisedOverruled([] { static_cast<void>(MakeRef<CVelumCard>(u"x"_s, nullptr)); }),
            EHostObjectNotSet);
}

TEST(CVelumCard, DateSettersDoNotMark) {
  const TCardBed bed;
  bed.iCard->SetCreDate(40000);
  bed.iCard->SetCreTime(0.5);
  bed.iCard->SetModDate(40001);
  bed.iCard->SetModTime(0.25);
  EXPECT_FALSE(bed.iCard->Changed());
  EXPECT_EQ(bed.iCard->CreDate(), 40000);
  EXPECT_EQ(bed.iCard->CreTime(), 0.5);
  EXPECT_EQ(bed.iCard->ModDate(), 40001);
  EXPECT_EQ(bed.iCard->ModTime(), 0.25);
}

TEST(CVelumCard, NameReportsAndLeavesTheIndex) {
  const TCardBed bed;
  bed.iCard->SetName(u"Bea"_s);
  EXPECT_TRUE(bed.iCard->Changed());
  EXPECT_EQ(bed.iStack->ChangeInfo().iLastChangedCard, bed.iCard);
  Ref<CVelumCard> found;
  EXPECT_TRUE(bed.iStack->GetCard(u"Ann"_s, found));
}

TEST(CVelumCard, FlagsWorkAsOnABackground) {
  const TCardBed bed;
  bed.iCard->SetFlag(4, true);
  EXPECT_TRUE(bed.iCard->Flag(6));
  bed.iCard->SetFlag(8, false);
  EXPECT_EQ(bed.iCard->Flags(), 4);
}

TEST(CVelumCard, ChangedAsksValuesScriptAndFont) {
  const TCardBed bed;
  EXPECT_FALSE(bed.iCard->Changed());
  RawValues(*bed.iCard).SetChanged(true);
  EXPECT_TRUE(bed.iCard->Changed());
  bed.iCard->SetChanged(false);
  bed.iCard->SetFont(MakeRef<CVelumFont>());
  bed.iCard->SetScript(MakeRef<CVelumArray>(EArrStrKey, EValStr));
  bed.iCard->SetChanged(false);
  EXPECT_FALSE(bed.iCard->Changed());
  bed.iCard->Font()->SetFlags(1);
  EXPECT_TRUE(bed.iCard->Changed());
  bed.iCard->SetChanged(false);
  bed.iCard->Script()->SetChanged(true);
  EXPECT_TRUE(bed.iCard->Changed());
}

TEST(CVelumCard, ControlByIdOrNothing) {
  const TCardBed bed;
  EXPECT_EQ(bed.iCard->ControlById(bed.iTown->Id()), bed.iTown);
  EXPECT_FALSE(bed.iCard->ControlById(bed.iKey->Id()));
  EXPECT_FALSE(CVelumCard(u"x"_s, bed.iFirst).ControlById(bed.iTown->Id()));
}

// Reading.

TEST(CVelumCard, UnsetValuesReadAsTheDefault) {
  const TCardBed bed;
  EXPECT_EQ(bed.iCard->GetControlVal(bed.iSize->Id(), false).Type(), EValUndef);
  EXPECT_EQ(bed.iCard->GetControlVal(bed.iSize->Id(), true).Type(), EValInt);
  bed.iSize->SetDefaultVal(u"5"_s);
  EXPECT_EQ(bed.iCard->GetControlVal(bed.iSize->Id(), false).Int(), 5);
  bed.iSize->SetDefaultVal(u"6"_s);
  EXPECT_EQ(bed.iCard->GetControlVal(bed.iSize->Id(), false).Int(), 6);
  bed.iCard->SetControlVal(bed.iSize->Id(), Int(9));
  EXPECT_EQ(bed.iCard->GetControlVal(bed.iSize->Id(), false).Int(), 9);
  bed.iCard->DeleteControlVal(bed.iSize->Id());
  EXPECT_EQ(bed.iCard->GetControlVal(bed.iSize->Id(), false).Int(), 6);
}

TEST(CVelumCard, ABlankDefaultIsNone) {
  const TCardBed bed;
  bed.iSize->SetDefaultVal(u"  "_s);
  EXPECT_EQ(bed.iCard->GetControlVal(bed.iSize->Id(), false).Type(), EValUndef);
}

TEST(CVelumCard, AnUnsetDateWithZeroIsTheDayOfTheCard) {
  const TCardBed bed;
  bed.iCard->SetCreDate(40000);
  bed.iCard->SetCreTime(0.5);
  EXPECT_EQ(bed.iCard->GetControlVal(bed.iSince->Id(), true).Date(), 40000);
  const Ref<CVelumControl> time = bed.AddField(bed.iFirst, u"T"_s, EConTime);
  EXPECT_EQ(bed.iCard->GetControlVal(time->Id(), true).Time(), 0.5);
}

TEST(CVelumCard, CommandsAndPicturesWithoutValueAreUndefined) {
  const TCardBed bed;
  for (const qint32 type : {EConCommand, EConPicture}) {
    const Ref<CVelumControl> control = bed.AddField(bed.iFirst, u"C"_s, type);
    control->SetDefaultVal(u"x"_s);
    EXPECT_EQ(bed.iCard->GetControlVal(control->Id(), true).Type(), EValUndef);
  }
}

TEST(CVelumCard, ReadingAssertsBackgroundAndControl) {
  const TCardBed bed;
  EXPECT_EQ(AssertText([&] { static_cast<void>(bed.iCard->GetControlVal(4711, false)); }),
            u"background control"_s);
  EXPECT_EQ(gLastError.iProc, u"GetControlValue"_s);
  CVelumCard loose(u"x"_s, bed.iFirst);
  EXPECT_EQ(AssertText([&] { static_cast<void>(loose.GetControlVal(1, false)); }), u"background"_s);
  EXPECT_EQ(gLastError.iProc, u"GetControlVal"_s);
  EXPECT_EQ(RaisedOverruled([&] {
              EXPECT_EQ(loose.GetControlVal(1, true).Type(), EValUndef);
              EXPECT_EQ(bed.iCard->GetControlVal(4711, true).Type(), EValUndef);
            }),
            -1);
}

// The change hub.

TEST(CVelumCard, SettingAsserts) {
  const TCardBed bed;
  EXPECT_EQ(AssertText([&] { bed.iCard->SetControlVal(4711, Int(1)); }), u"Control found"_s);
  EXPECT_EQ(gLastError.iProc, u"SetControlVal"_s);
  EXPECT_EQ(AssertText([&] { bed.iCard->SetControlVal(bed.iTown->Id(), Int(1)); }), u"type"_s);
  CVelumCard loose(u"x"_s, bed.iFirst);
  EXPECT_EQ(AssertText([&] { loose.SetControlVal(bed.iTown->Id(), Str(u"a"_s)); }), u"Background def"_s);
  EXPECT_EQ(RaisedOverruled([&] { bed.iCard->SetControlVal(4711, Int(1)); }), EHostObjectNotSet);
  EXPECT_EQ(RaisedOverruled([&] { loose.SetControlVal(1, Int(1)); }), EHostObjectNotSet);
  EXPECT_FALSE(bed.Touched());
}

TEST(CVelumCard, UndefinedWithoutValueChangesNothing) {
  const TCardBed bed;
  bed.iCard->SetControlVal(bed.iTown->Id(), TVelumValue());
  EXPECT_FALSE(bed.Touched());
  EXPECT_FALSE(bed.iCard->ControlValDef(bed.iTown->Id()));
}

TEST(CVelumCard, UndefinedReplacesAValue) {
  const TCardBed bed;
  bed.iTown->SetDefaultVal(u"Bern"_s);
  bed.iCard->SetControlVal(bed.iTown->Id(), Str(u"Graz"_s));
  bed.iCard->SetControlVal(bed.iTown->Id(), TVelumValue());
  EXPECT_TRUE(bed.iCard->ControlValDef(bed.iTown->Id()));
  EXPECT_EQ(bed.iCard->GetControlVal(bed.iTown->Id(), true).Type(), EValUndef)
      << "its own value is the undefined one, not the default";
}

TEST(CVelumCard, TheSameValueStillCountsAsAChange) {
  const TCardBed bed;
  bed.iCard->SetControlVal(bed.iTown->Id(), Str(u"Graz"_s));
  bed.Settle();
  bed.iCard->SetControlVal(bed.iTown->Id(), Str(u"Graz"_s));
  EXPECT_TRUE(bed.Touched());
}

TEST(CVelumCard, DeletingAValueThatIsNotThereTouchesTheCard) {
  const TCardBed bed;
  bed.iCard->DeleteControlVal(bed.iTown->Id());
  EXPECT_TRUE(bed.Touched());
}

TEST(CVelumCard, BlobReferencesAreCounted) {
  const TCardBed bed;
  const Ref<CVelumControl> picture = bed.AddField(bed.iFirst, u"P"_s, EConPicture);
  const Ref<CVelumBlob> one = bed.Blob();
  const Ref<CVelumBlob> two = bed.Blob();
  one->IncDynRefCount();
  two->IncDynRefCount();
  const qint32 id = picture->Id();
  bed.iCard->SetControlVal(id, TVelumValue::OfBlobId(one->Id()));
  EXPECT_EQ(one->RefCount(), 1);
  bed.iCard->SetControlVal(id, TVelumValue::OfBlobId(one->Id()));
  EXPECT_EQ(one->RefCount(), 1) << "the same id";
  bed.iCard->SetControlVal(id, TVelumValue::OfBlobId(two->Id()));
  EXPECT_EQ(one->RefCount(), 0);
  EXPECT_EQ(two->RefCount(), 1);
  bed.iCard->SetControlVal(id, TVelumValue());
  EXPECT_EQ(two->RefCount(), 0);
  bed.iCard->SetControlVal(id, TVelumValue::OfBlobId(two->Id()));
  EXPECT_EQ(two->RefCount(), 1);
  bed.iStack->DeleteControl(id, bed.iFirst);
  EXPECT_EQ(two->RefCount(), 0);
}

TEST(CVelumCard, ABlobDiesWithItsLastReference) {
  const TCardBed bed;
  const Ref<CVelumControl> picture = bed.AddField(bed.iFirst, u"P"_s, EConPicture);
  const Ref<CVelumBlob> blob = bed.Blob();
  bed.iCard->SetControlVal(picture->Id(), TVelumValue::OfBlobId(blob->Id()));
  EXPECT_TRUE(bed.iStack->BlobStore()->HasBlob(blob->Id()));
  bed.iStack->DeleteCard(bed.iCard);
  EXPECT_FALSE(bed.iStack->BlobStore()->HasBlob(blob->Id()));
}

TEST(CVelumCard, ABlobThatIsNotThereCanBeReplaced) {
  const TCardBed bed;
  const Ref<CVelumControl> picture = bed.AddField(bed.iFirst, u"P"_s, EConPicture);
  bed.iCard->SetControlVal(picture->Id(), TVelumValue::OfBlobId(4711));
  EXPECT_EQ(Raised([&] { bed.iCard->SetControlVal(picture->Id(), TVelumValue()); }), -1);
}

TEST(CVelumCard, AChangeSetsDateAndTimeOfModification) {
  const TCardBed bed;
  const double before = CVelumValue::Now();
  bed.iCard->SetModTime(before < 0.5 ? 0.75 : 0.25);
  bed.iCard->SetControlVal(bed.iTown->Id(), Str(u"Bern"_s));
  EXPECT_GE(bed.iCard->ModDate(), CVelumValue::Today() - 1);
  EXPECT_LT(std::remainder(bed.iCard->ModTime() - before, 1.0), 0.01) << "the clock, also past midnight";
  EXPECT_GT(std::remainder(bed.iCard->ModTime() - before, 1.0), -1e-5);
}

TEST(CVelumCard, ANameFieldRenamesTheCard) {
  const TCardBed bed;
  bed.iTown->SetFlag(EConCardName, true);
  bed.iCard->SetControlVal(bed.iTown->Id(), Str(u"Bern"_s));
  EXPECT_EQ(bed.iCard->Name(), u"Bern"_s);
  EXPECT_EQ(bed.iCard->GetControlVal(bed.iTown->Id(), false).Str(), u"Bern"_s);
  Ref<CVelumCard> found;
  EXPECT_TRUE(bed.iStack->GetCard(u"Bern"_s, found));
  EXPECT_EQ(found, bed.iCard);
  EXPECT_FALSE(bed.iStack->GetCard(u"Ann"_s, found));
}

// The name is what the user sees of the value, which keeps all its digits.
TEST(CVelumCard, ANameFieldOfRealsKeepsItsDigits) {
  const TCardBed bed;
  const Ref<CVelumControl> real = bed.AddField(bed.iFirst, u"R"_s, EConReal);
  real->SetFlag(EConCardName, true);
  real->SetDigits(2);
  bed.iCard->SetControlVal(real->Id(), TVelumValue::OfReal(1.239));
  EXPECT_EQ(bed.iCard->Name(), u"1.24"_s);
  EXPECT_EQ(bed.iCard->GetControlVal(real->Id(), false).Real(), 1.239);
}

TEST(CVelumCard, ReferenceFieldMakesTheCardDirty) {
  TSampleStack bed;
  const Ref<CVelumCard> list = bed.AddCard(bed.iSecond, u"l"_s);
  list->UpdateCardLists();
  EXPECT_FALSE(list->Dirty());
  list->SetControlVal(bed.iKey->Id(), Str(u"Bern"_s));
  EXPECT_TRUE(list->Dirty());
}

TEST(CVelumCard, SelectingFieldsAndColumnsMakeListsDirty) {
  TSampleStack bed;
  const Ref<CVelumCard> town = bed.AddCard(bed.iFirst, u"t"_s);
  const Ref<CVelumCard> list = bed.AddCard(bed.iSecond, u"l"_s);
  for (const Ref<CVelumControl>& control : {bed.iTown, bed.iNote}) {
    list->UpdateCardLists();
    EXPECT_FALSE(list->Dirty());
    town->SetControlVal(control->Id(), Str(u"x"_s));
    EXPECT_TRUE(list->Dirty());
  }
  list->UpdateCardLists();
  town->SetControlVal(bed.iSince->Id(), TVelumValue::OfDate(40000));
  EXPECT_FALSE(list->Dirty()) << "neither";
}

TEST(CVelumCard, ListsAreComputedWhenRead) {
  TSampleStack bed;
  const Ref<CVelumCard> a = bed.AddCard(bed.iFirst, u"A"_s);
  a->SetControlVal(bed.iTown->Id(), Str(u"Bern"_s));
  a->SetControlVal(bed.iNote->Id(), Str(u"two\r\nlines"_s));
  const Ref<CVelumCard> list = bed.AddCard(bed.iSecond, u"l"_s);
  list->SetControlVal(bed.iKey->Id(), Str(u"Bern"_s));
  EXPECT_EQ(list->GetControlVal(bed.iSome->Id(), false).Str(), u"0\ttwo lines\t"_s);
  EXPECT_FALSE(list->Dirty());
  a->SetControlVal(bed.iTown->Id(), Str(u"Graz"_s));
  EXPECT_EQ(list->GetControlVal(bed.iSome->Id(), false).Type(), EValUndef);
  EXPECT_TRUE(list->ControlValDef(bed.iSome->Id()));
}

TEST(CVelumCard, AListWithoutReferenceIsTheSameOnAllCards) {
  TSampleStack bed;
  bed.AddCard(bed.iFirst, u"A"_s);
  const Ref<CVelumCard> list = bed.AddCard(bed.iSecond, u"l"_s);
  list->SetControlVal(bed.iAll->Id(), Str(u"own"_s));
  bed.iStack->SetChanged(false);
  list->SetDirty(true);
  EXPECT_EQ(list->GetControlVal(bed.iAll->Id(), false).Str(), u"0\tA"_s);
  EXPECT_FALSE(list->ControlValDef(bed.iAll->Id()));
  EXPECT_EQ(bed.iAll->DefaultVal(), u"0\tA"_s);
  EXPECT_TRUE(list->Changed());
}

TEST(CVelumCard, AListThatSelectsByItselfEnds) {
  TSampleStack bed;
  bed.iSome->SetRefControlId(bed.iSome->Id());
  bed.iStack->SetControlDynFlags();
  const Ref<CVelumCard> list = bed.AddCard(bed.iSecond, u"l"_s);
  EXPECT_EQ(Raised([&] { static_cast<void>(list->GetControlVal(bed.iSome->Id(), false)); }), -1);
}

// Lists computed from the lists of other cards, thousands of them, don't use up the call stack.
TEST(CVelumCard, ListsOfListsEnd) {
  TSampleStack bed;
  bed.iSome->SetSelBackgroundId(bed.iSecond->Id());
  bed.iSome->SetSelControlId(bed.iSome->Id());
  bed.iSome->SetListCol(nullptr);
  bed.iSecond->DeleteControl(bed.iAll->Id());
  bed.iStack->SetControlDynFlags();
  Ref<CVelumCard> card;
  for (int i = 0; i < 300; ++i) card = bed.AddCard(bed.iSecond, QString::number(i));
  EXPECT_EQ(Raised([&] { static_cast<void>(card->GetControlVal(bed.iSome->Id(), false)); }), -1);
}

// First values.

TEST(CVelumCard, InitialValues) {
  TCardBed bed;
  const Ref<CVelumControl> real = bed.AddField(bed.iFirst, u"R"_s, EConReal);
  const Ref<CVelumControl> time = bed.AddField(bed.iFirst, u"T"_s, EConTime);
  const Ref<CVelumControl> yes = bed.AddField(bed.iFirst, u"Y"_s, EConBoolean);
  const Ref<CVelumControl> none = bed.AddField(bed.iFirst, u"C"_s, EConCommand);
  const Ref<CVelumControl> list = bed.AddField(bed.iFirst, u"L"_s, EConList);
  const Ref<CVelumControl> picture = bed.AddField(bed.iFirst, u"P"_s, EConPicture);
  bed.iNote->SetDefaultVal(u"note"_s);
  const double today = CVelumValue::Today();
  bed.iCard->InitAllVal();
  const auto value = [&](const Ref<CVelumControl>& aControl) {
    return bed.iCard->GetControlVal(aControl->Id(), false);
  };
  EXPECT_FALSE(bed.iCard->ControlValDef(bed.iTown->Id())) << "a text without default";
  EXPECT_EQ(value(bed.iNote).Str(), u"note"_s);
  EXPECT_EQ(value(bed.iSize).Type(), EValInt);
  EXPECT_EQ(value(real).Type(), EValReal);
  EXPECT_GE(value(bed.iSince).Date(), today);
  EXPECT_EQ(value(time).Type(), EValTime);
  EXPECT_EQ(value(yes).Type(), EValBoolean);
  EXPECT_FALSE(value(yes).Boolean());
  for (const Ref<CVelumControl>& control : {none, list, picture})
    EXPECT_FALSE(bed.iCard->ControlValDef(control->Id()));
  const auto odd = MakeRef<CVelumControl>(4711, u"O"_s, 9);
  EXPECT_EQ(AssertText([&] { bed.iCard->InitVal(odd); }), u"conType"_s);
  EXPECT_EQ(gLastError.iProc, u"InitVal"_s);
}

TEST(CVelumCard, AComboTextTakesTheFirstLineOfItsList) {
  TCardBed bed;
  const Ref<CVelumControl> list = bed.AddField(bed.iFirst, u"List for Town"_s, EConList);
  list->SetFlag(EConComboList, true);
  bed.iTown->SetFlag(EConComboText, true);
  bed.iTown->SetPartnerId(list->Id());
  bed.iCard->InitVal(bed.iTown);
  EXPECT_FALSE(bed.iCard->ControlValDef(bed.iTown->Id())) << "an empty list gives none";
  list->SetDefaultVal(u"Bern\r\nGraz"_s);
  bed.iCard->InitVal(bed.iTown);
  EXPECT_EQ(bed.iCard->GetControlVal(bed.iTown->Id(), false).Str(), u"Bern"_s);
  list->SetDefaultVal(u"Only"_s);
  bed.iCard->InitVal(bed.iTown);
  EXPECT_EQ(bed.iCard->GetControlVal(bed.iTown->Id(), false).Str(), u"Only"_s);
}

// On file.

TEST(CVelumCard, BytesAreThoseOfTheFormat) {
  const TSampleStack bed;
  CVelumCard card(u"Ann"_s, bed.iFirst);
  card.SetId(3);
  card.SetFlags(1);
  card.SetOrderNum(700);
  card.SetCreDate(40000);
  card.SetCreTime(0.5);
  card.SetModDate(40001);
  card.SetModTime(0.25);
  Bytes expected;
  expected.Common(1, 1, u"Ann"_s, 3, 1);
  expected.Int(700).Int(bed.iFirst->Id()).Int(20090706).Int(120000).Int(20090707).Int(60000);
  expected.Array(EArrIntKey | EArrMixed, EValStr, 0);
  EXPECT_EQ(Stored(card), QByteArray(expected));
  EXPECT_EQ(card.ExtLen(), QByteArray(expected).size());
  CVelumCard read;
  Load(read, expected);
  EXPECT_FALSE(read.Changed());
  EXPECT_EQ(read.OrderNum(), 700);
  EXPECT_EQ(read.CreDate(), 40000);
  EXPECT_EQ(Stored(read), QByteArray(expected));
}

// Numbers that are no dates are read by the calendar, and saved as the dates that they mean.
TEST(CVelumCard, OddDatesAreReadByTheCalendar) {
  const auto written = [](qint32 aDate, qint32 aTime) {
    Bytes bytes;
    bytes.Common(1, 1, u"A"_s, 0, 0).Int(100).Int(0).Int(aDate).Int(aTime).Int(aDate).Int(aTime);
    bytes.Array(EArrIntKey | EArrMixed, EValStr, 0);
    CVelumCard card;
    Load(card, bytes);
    return QList<int>{CVelumValue::DateToInt(card.CreDate()), CVelumValue::TimeToInt(card.CreTime()),
                      CVelumValue::DateToInt(card.ModDate()), CVelumValue::TimeToInt(card.ModTime())};
  };
  EXPECT_EQ(written(ENoInt, ENoInt), (QList<int>{19800101, 0, 19800101, 0}));
  EXPECT_EQ(written(20031301, 126000), (QList<int>{20040101, 130000, 20040101, 130000}));
  EXPECT_EQ(written(20040231, 235959), (QList<int>{20040302, 235959, 20040302, 235959}));
}

TEST(CVelumCard, ValuesMustBeKeyedByControl) {
  Bytes bytes;
  bytes.Common(1, 1, u"A"_s, 0, 0).Int(100).Int(0).Int(ENoInt).Int(0).Int(ENoInt).Int(0);
  bytes.Array(EArrMixed, EValStr, 0);
  CVelumCard card;
  EXPECT_EQ(Raised([&] { Load(card, bytes); }), 1006);
}

TEST(CVelumCard, ValuesOfAllTypesCanBeSetWhateverTheFileSays) {
  Bytes bytes;
  bytes.Common(1, 1, u"A"_s, 0, 0).Int(100).Int(0).Int(ENoInt).Int(0).Int(ENoInt).Int(0);
  bytes.Array(EArrIntKey, EValStr, 0);
  CVelumCard card;
  Load(card, bytes);
  EXPECT_EQ(card.Value().Flags(), EArrIntKey | EArrMixed);
  EXPECT_FALSE(card.Changed());
}

TEST(CVelumCard, StaysSmall) {
  EXPECT_LE(sizeof(CVelumCard), 168U) << "with its array of values";
}

} // namespace
