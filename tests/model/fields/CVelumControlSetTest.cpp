#include "model/fields/CVelumControlSet.h"

#include "model/ModelTest.h"

using namespace ModelTest;

namespace {

Ref<CVelumControl> NewControl(qint32 aId, const QString& aName = u"c"_s) {
  return MakeRef<CVelumControl>(aId, aName, EConText);
}

// The ids in display order, checked against the index on the way.
QList<qint32> Ids(const CVelumControlSet& aSet) {
  QList<qint32> ids;
  Ref<CVelumControl> control;
  qint32 index = 0;
  for (bool found = aSet.GetFirstControl(control, index); found;
       found = aSet.GetNextControl(control, index)) {
    EXPECT_EQ(aSet.FindControl(control->Id()), control.Get());
    EXPECT_EQ(aSet.ControlAt(static_cast<qint32>(ids.size())), control.Get());
    ids.append(control->Id());
  }
  EXPECT_EQ(aSet.NumControls(), ids.size());
  return ids;
}

TEST(CVelumControlSet, ConstructSetsTheDefaults) {
  const CVelumControlSet set(u"Towns"_s, 3);
  EXPECT_EQ(set.Name(), u"Towns"_s);
  EXPECT_EQ(set.Id(), 3);
  EXPECT_EQ(set.Flags(), 17);
  EXPECT_EQ(set.Descr(), QString());
  EXPECT_EQ(set.KeyIndexId(), ENoInt);
  EXPECT_EQ(set.WallPaperId(), ENoInt);
  EXPECT_EQ(set.BackColor(), ENoInt);
  EXPECT_FALSE(set.Script());
  EXPECT_FALSE(set.Font());
  EXPECT_EQ(set.NumControls(), 0);
  EXPECT_TRUE(set.Changed());
  EXPECT_EQ(set.ObjDescr(), u"CVelumControlSet name=Towns"_s);
}

TEST(CVelumControlSet, SettersMarkChanged) {
  CVelumControlSet set(u"s"_s, 0);
  const auto check = [&set](auto aSet) {
    set.SetChanged(false);
    EXPECT_FALSE(set.Changed());
    aSet();
    EXPECT_TRUE(set.Changed());
  };
  check([&] { set.SetName(u"n"_s); });
  check([&] { set.SetDescr(u"d"_s); });
  check([&] { set.SetId(5); });
  check([&] { set.SetFlags(2); });
  check([&] { set.SetFlag(ECseScrollable, true); });
  check([&] { set.SetKeyIndexId(6); });
  check([&] { set.SetWallPaperId(7); });
  check([&] { set.SetBackColor(8); });
  check([&] { set.SetScriptSource(u"s"_s); });
  check([&] { set.SetScript(MakeRef<CVelumArray>(EArrStrKey, EValStr)); });
  check([&] { set.SetFont(MakeRef<CVelumFont>()); });
  check([&] { set.AddControl(NewControl(1), ENoInt); });
  check([&] { set.ControlAt(0)->SetLabel(u"l"_s); });
  check([&] { set.Font()->SetFlags(1); });
  check([&] { set.DeleteControl(1); });
  EXPECT_EQ(set.Descr(), u"d"_s);
  EXPECT_EQ(set.KeyIndexId(), 6);
  EXPECT_EQ(set.WallPaperId(), 7);
}

TEST(CVelumControlSet, RunTimeStateDoesNotMarkChanged) {
  CVelumControlSet set(u"s"_s, 0);
  set.SetChanged(false);
  const quint32 stamp = set.ListStamp();
  set.RaiseListStamp();
  set.SetNumCards(4);
  set.SetStack(nullptr);
  EXPECT_EQ(set.ListStamp(), stamp + 1);
  EXPECT_EQ(set.NumCards(), 4);
  EXPECT_FALSE(set.Changed());
}

TEST(CVelumControlSet, SetFlagSubtractsOnlyIfABitIsSet) {
  CVelumControlSet set(u"s"_s, 0);
  set.SetChanged(false);
  set.SetFlag(ECseScrollable, false);
  EXPECT_EQ(set.Flags(), 17);
  EXPECT_FALSE(set.Changed());
  set.SetFlag(ECseShowCardName, false);
  EXPECT_EQ(set.Flags(), 1);
  EXPECT_TRUE(set.Flag(3));
  EXPECT_FALSE(set.Flag(2));
  // A mask of several bits is subtracted as a number.
  set.SetFlag(3, false);
  EXPECT_EQ(set.Flags(), -2);
}

TEST(CVelumControlSet, AddControlAppendsAndInserts) {
  CVelumControlSet set(u"s"_s, 0);
  set.AddControl(NewControl(10), ENoInt);
  set.AddControl(NewControl(5), ENoInt);
  EXPECT_EQ(Ids(set), QList<qint32>({10, 5}));
  set.AddControl(NewControl(7), 5);
  EXPECT_EQ(Ids(set), QList<qint32>({10, 7, 5}));
  set.AddControl(NewControl(20), 10);
  EXPECT_EQ(Ids(set), QList<qint32>({20, 10, 7, 5}));
}

TEST(CVelumControlSet, AddControlAsserts) {
  CVelumControlSet set(u"s"_s, 0);
  set.AddControl(NewControl(1), ENoInt);
  EXPECT_EQ(AssertText([&] { set.AddControl(NewControl(1), ENoInt); }), u"AddControl unique id"_s);
  EXPECT_EQ(AssertText([&] { set.AddControl(NewControl(2), 9); }), u"AddControl beforeId found, 9"_s);
  EXPECT_EQ(Ids(set), QList<qint32>({1}));
  EXPECT_EQ(RaisedOverruled([&] { set.AddControl(NewControl(2), 9); }), -1);
  EXPECT_EQ(Ids(set), QList<qint32>({1, 2}));
  EXPECT_EQ(Raised([&] { set.AddControl(nullptr, ENoInt); }), EHostObjectNotSet);
}

TEST(CVelumControlSet, DuplicateIdOverruledStaysSafe) {
  CVelumControlSet set(u"s"_s, 0);
  set.AddControl(NewControl(1), ENoInt);
  static_cast<void>(RaisedOverruled([&] { set.AddControl(NewControl(1), 1); }));
  for (qint32 i = 0; i < set.NumControls(); ++i) EXPECT_NE(set.ControlAt(i), nullptr);
  static_cast<void>(RaisedOverruled([&] { set.DeleteControl(1); }));
  static_cast<void>(RaisedOverruled([&] { set.DeleteControl(1); }));
  EXPECT_EQ(set.FindControl(1), nullptr);
}

TEST(CVelumControlSet, DeleteControlClosesTheGap) {
  CVelumControlSet set(u"s"_s, 0);
  for (const qint32 id : {1, 2, 3, 4}) set.AddControl(NewControl(id), ENoInt);
  set.DeleteControl(2);
  EXPECT_EQ(Ids(set), QList<qint32>({1, 3, 4}));
  EXPECT_EQ(set.FindControl(2), nullptr);
  set.DeleteControl(4);
  set.DeleteControl(1);
  EXPECT_EQ(Ids(set), QList<qint32>({3}));
  EXPECT_EQ(AssertText([&] { set.DeleteControl(1); }), u"DeleteControl found"_s);
  EXPECT_EQ(RaisedOverruled([&] { set.DeleteControl(1); }), -1);
  EXPECT_EQ(Ids(set), QList<qint32>({3}));
}

TEST(CVelumControlSet, Lookups) {
  CVelumControlSet set(u"s"_s, 0);
  set.AddControl(NewControl(1, u"Town"_s), ENoInt);
  set.AddControl(NewControl(2, u"town"_s), ENoInt);
  set.AddControl(NewControl(3, u"town"_s), ENoInt);
  set.ControlAt(1)->SetFlag(EConCardName, true);
  set.ControlAt(2)->SetFlag(EConCardName | EConReadOnly, true);
  Ref<CVelumControl> control;
  EXPECT_TRUE(set.GetControl(2, control));
  EXPECT_EQ(control->Id(), 2);
  EXPECT_FALSE(set.GetControl(9, control));
  EXPECT_FALSE(control);
  EXPECT_TRUE(set.GetControlByName(u"town"_s, control));
  EXPECT_EQ(control->Id(), 2);
  EXPECT_FALSE(set.GetControlByName(u"TOWN"_s, control));
  EXPECT_FALSE(control);
  EXPECT_TRUE(set.GetControlByFlag(EConCardName | EConPhoneNumber, control));
  EXPECT_EQ(control->Id(), 2);
  EXPECT_FALSE(set.GetControlByFlag(EConPhoneNumber, control));
  EXPECT_TRUE(set.GetControlByNum(2, control));
  EXPECT_EQ(control->Id(), 3);
  EXPECT_FALSE(set.GetControlByNum(3, control));
  EXPECT_FALSE(set.GetControlByNum(-1, control));
  EXPECT_FALSE(set.WithCardList());
  set.ControlAt(0)->SetFlag(EConCardList, true);
  EXPECT_TRUE(set.WithCardList());
}

TEST(CVelumControlSet, GetControlChecksTheId) {
  CVelumControlSet set(u"s"_s, 0);
  set.AddControl(NewControl(1), ENoInt);
  set.ControlAt(0)->SetId(8);
  Ref<CVelumControl> control;
  EXPECT_EQ(AssertText([&] { static_cast<void>(set.GetControl(1, control)); }), u"GetControl GetId"_s);
}

TEST(CVelumControlSet, KeyIndexIsLookedUpInTheOwnStack) {
  TSampleStack sample;
  EXPECT_EQ(AssertText([&] { static_cast<void>(sample.iFirst->KeyIndex()); }), u"ECseKeepCardsSorted"_s);
  EXPECT_EQ(gLastError.iProc, u"GetKeyIndex"_s);
  sample.iFirst->SetFlag(ECseKeepCardsSorted, true);
  EXPECT_EQ(AssertText([&] { static_cast<void>(sample.iFirst->KeyIndex()); }), u"id set"_s);
  const auto key = MakeRef<CVelumSortKey>(sample.iStack->IdGen().NextId(), u"k"_s, sample.iFirst->Id());
  key->AddKeyPart(EConText, sample.iTown->Id(), EWayAscending, 10);
  sample.iStack->AddSortKey(key);
  sample.iStack->NewIndexForSortKey(key);
  ASSERT_TRUE(sample.iFirst->KeyIndex());
  EXPECT_EQ(sample.iFirst->KeyIndex()->Id(), sample.iFirst->KeyIndexId());
  const Ref<CVelumArray> first = sample.iFirst->KeyIndex();
  sample.iStack->NewIndexForSortKey(key);
  EXPECT_FALSE(sample.iFirst->KeyIndex() == first);
}

void PutSet(Bytes& aBytes, const QList<qint32>& aIds, const QList<QPair<qint32, qint32>>& aIndex,
            qint32 aSetFlags = 0, int aSetType = EValControl, qint32 aIndexFlags = EArrIntKey,
            int aIndexType = EValInt) {
  aBytes.Common(2, 3, u"S"_s, 4, 17).Str(u"d"_s).Int(9);
  aBytes.Array(aSetFlags, aSetType, static_cast<qint32>(aIds.size()));
  for (const qint32 id : aIds) {
    if (aSetFlags & EArrIntKey) aBytes.Int(id);
    aBytes.Short(aSetType);
    if (aSetType != EValControl) {
      aBytes.Int(id);
      continue;
    }
    aBytes.Short(id == ENoInt ? 0 : 1);
    if (id != ENoInt) aBytes.Raw(Stored(*NewControl(id)));
  }
  aBytes.Array(aIndexFlags, aIndexType, static_cast<qint32>(aIndex.size()));
  for (const auto& [id, place] : aIndex) {
    if (aIndexFlags & EArrIntKey) aBytes.Int(id);
    aBytes.Short(EValInt).Int(place);
  }
  aBytes.Int(11);
}

// What a load of such a background ends in: -1 or the error's number.
template <class... Args> qint32 LoadSet(CVelumControlSet& aSet, Args... aArgs) {
  CVelumModel::Install();
  Bytes bytes;
  PutSet(bytes, aArgs...);
  return Raised([&] { Load(aSet, bytes); });
}

TEST(CVelumControlSet, ReadsWhatItStores) {
  Bytes bytes;
  PutSet(bytes, {7, 5}, {{5, 1}, {7, 0}});
  CVelumControlSet set;
  CVelumModel::Install();
  Load(set, bytes);
  EXPECT_FALSE(set.Changed());
  EXPECT_EQ(set.Name(), u"S"_s);
  EXPECT_EQ(set.Id(), 4);
  EXPECT_EQ(set.Flags(), 17);
  EXPECT_EQ(set.Descr(), u"d"_s);
  EXPECT_EQ(set.WallPaperId(), 9);
  EXPECT_EQ(set.KeyIndexId(), 11);
  EXPECT_EQ(Ids(set), QList<qint32>({7, 5}));
  EXPECT_EQ(Stored(set), QByteArray(bytes));
  EXPECT_EQ(set.ExtLen(), QByteArray(bytes).size());
  EXPECT_EQ(Raised([&] { Load(set, Bytes().Short(2).Short(2)); }), 1001);
  EXPECT_EQ(Raised([&] { Load(set, Bytes().Short(2).Short(4)); }), 1002);
}

using TIndex = QList<QPair<qint32, qint32>>;

TEST(CVelumControlSet, EmptySlotsOfOtherWritersAreLeftOut) {
  CVelumControlSet set;
  ASSERT_EQ(LoadSet(set, QList<qint32>{7, ENoInt, 5, ENoInt}, TIndex{{5, 2}, {7, 0}}), -1);
  EXPECT_EQ(Ids(set), QList<qint32>({7, 5}));
  EXPECT_EQ(set.LoadProblem(), QString());
  EXPECT_FALSE(set.Changed());
  EXPECT_EQ(LoadSet(set, QList<qint32>{7, ENoInt, 7}, TIndex{{7, 0}}), 1006);
}

TEST(CVelumControlSet, AnIndexThatDisagreesIsBuiltAnewAndToldOf) {
  const QList<qint32> ids{7, 5};
  const QList<TIndex> indexes = {
      {{5, 1}},                 // too few
      {{5, 1}, {7, 0}, {9, 0}}, // too many
      {{5, 0}, {7, 1}},         // another control's place
      {{5, 2}, {7, 0}},         // behind the end
      {{5, -1}, {7, 0}},        // before the start
      {{7, 0}, {5, 1}},         // not ascending
      {{7, 0}, {7, 0}},         // twice
      {{6, 1}, {7, 0}},         // an unknown id
  };
  for (const TIndex& index : indexes) {
    CVelumControlSet set;
    ASSERT_EQ(LoadSet(set, ids, index), -1);
    EXPECT_EQ(Ids(set), ids);
    EXPECT_EQ(set.LoadProblem(), u"CVelumControlSet name=S: the index of the field ids was wrong"_s);
    EXPECT_FALSE(set.Changed());
  }
  CVelumControlSet set;
  for (const qint32 flags : {0, 1, 3, 18}) {
    ASSERT_EQ(LoadSet(set, QList<qint32>{7}, TIndex{}, 0, EValControl, flags), -1) << flags;
    EXPECT_EQ(Ids(set), QList<qint32>({7}));
    EXPECT_NE(set.LoadProblem(), QString());
  }
  ASSERT_EQ(LoadSet(set, QList<qint32>{7}, TIndex{}, 0, EValControl, 2, EValStr), -1);
  EXPECT_EQ(Ids(set), QList<qint32>({7}));
  ASSERT_EQ(LoadSet(set, ids, TIndex{{5, 1}, {7, 0}}), -1);
  EXPECT_EQ(set.LoadProblem(), QString());
}

TEST(CVelumControlSet, EqualIdsAreABadStructure) {
  CVelumControlSet set;
  EXPECT_EQ(LoadSet(set, QList<qint32>{7, 7}, TIndex{{7, 0}, {7, 1}}), 1006);
  EXPECT_EQ(gLastError.iP1, u"CVelumControlSet.Internalize: Set id"_s);
}

TEST(CVelumControlSet, ArraysOfAnotherMakeAreABadStructure) {
  CVelumControlSet set;
  const TIndex none;
  EXPECT_EQ(LoadSet(set, QList<qint32>{}, none, 0, EValControl), -1);
  EXPECT_EQ(LoadSet(set, QList<qint32>{}, none, 0, EValCard), 1006);
  EXPECT_EQ(LoadSet(set, QList<qint32>{3}, TIndex{{3, 0}}, 0, EValInt), 1006);
  for (const qint32 flags : {1, 2, 16})
    EXPECT_EQ(LoadSet(set, QList<qint32>{}, none, flags, EValControl), 1006) << flags;
}

} // namespace
