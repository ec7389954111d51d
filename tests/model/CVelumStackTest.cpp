#include "model/CVelumStack.h"

#include "model/ModelTest.h"
#include "support/RawValues.h"

using namespace ModelTest;

namespace {

QString Names(const CVelumStack& aStack) {
  QStringList names;
  Ref<CVelumCard> card;
  for (qint32 i = 0; aStack.GetNextCard(card, i);) names.append(card->Name());
  return names.join(u' ');
}

TEST(CVelumStack, NewStackHasOneBackgroundAndNoCard) {
  const Ref<CVelumStack> stack = MakeRef<CVelumStack>(u"New"_s);
  EXPECT_EQ(stack->ObjDescr(), u"CVelumStack name=New"_s);
  EXPECT_EQ(stack->NumCards(), 0);
  ASSERT_EQ(stack->NumBackgrounds(), 1);
  Ref<CVelumControlSet> background;
  qint32 index = 0;
  ASSERT_TRUE(stack->GetFirstBackground(background, index));
  EXPECT_EQ(background->Name(), u"First Background"_s);
  EXPECT_EQ(background->Id(), 0);
  EXPECT_EQ(background->Stack(), stack.Get());
  EXPECT_FALSE(stack->GetNextBackground(background, index));
  EXPECT_EQ(stack->IdGen().NextId(), 1);
  EXPECT_EQ(stack->BackColor(), ENoInt);
  EXPECT_EQ(stack->OrderCorrections(), 0);
  EXPECT_TRUE(stack->Changed());
  ASSERT_TRUE(stack->BlobStore());
  EXPECT_TRUE(stack->BlobStore()->Flag(EBstRamBased));
  EXPECT_FALSE(stack->ChangeInfo().iCardChanged);
}

TEST(CVelumStack, BlobStoreFillsAnEmptySlotOnly) {
  const Ref<CVelumStack> stack = MakeRef<CVelumStack>(u"s"_s);
  const auto store = MakeRef<CVelumBlobStore>(EBstRamBased);
  EXPECT_EQ(AssertText([&] { stack->SetBlobStore(store); }), u"nothing"_s);
  EXPECT_EQ(gLastError.iProc, u"LetBlobStore"_s);
  const Ref<CVelumStack> bare = MakeRef<CVelumStack>();
  EXPECT_EQ(AssertText([&] { bare->SetBlobStore(store); }), QString());
  EXPECT_EQ(bare->BlobStore(), store);
}

TEST(CVelumStack, BackgroundsAreFoundByIdAndExactName) {
  TSampleStack bed;
  EXPECT_EQ(bed.iStack->Background(bed.iSecond->Id()), bed.iSecond);
  EXPECT_FALSE(bed.iStack->Background(77));
  Ref<CVelumControlSet> found;
  EXPECT_TRUE(bed.iStack->GetBackgroundByName(u"Second"_s, found));
  EXPECT_EQ(found, bed.iSecond);
  EXPECT_FALSE(bed.iStack->GetBackgroundByName(u"second"_s, found));
  EXPECT_FALSE(found);
}

TEST(CVelumStack, SortKeysAndKeyIndexesAssertWhenMissing) {
  TSampleStack bed;
  EXPECT_EQ(AssertText([&] { static_cast<void>(bed.iStack->SortKey(44)); }), u"SortKey found 44"_s);
  EXPECT_EQ(AssertText([&] { static_cast<void>(bed.iStack->KeyIndex(45)); }), u"KeyIndex found 45"_s);
  const auto bare = MakeRef<CVelumArray>(EArrStrKey | EArrSortKey, EValInt);
  EXPECT_EQ(AssertText([&] { bed.iStack->AddKeyIndex(bare); }), u"aKeyIndex sortKey defined"_s);
  EXPECT_EQ(gLastError.iProc, u"AddKeyIndex"_s);

  const auto key = MakeRef<CVelumSortKey>(44, u"By"_s, 0);
  bed.iStack->AddSortKey(key);
  EXPECT_EQ(bed.iStack->SortKey(44), key);
  Ref<CVelumSortKey> found;
  EXPECT_TRUE(bed.iStack->GetSortKeyByName(u"By"_s, found));
  EXPECT_FALSE(bed.iStack->GetSortKeyByName(u"by"_s, found));
  bare->SetSortKey(key);
  bare->SetId(45);
  bed.iStack->AddKeyIndex(bare);
  EXPECT_EQ(bed.iStack->KeyIndex(45), bare);
  Ref<CVelumArray> index;
  qint32 cursor = 0;
  EXPECT_TRUE(bed.iStack->GetFirstKeyIndex(index, cursor));
  EXPECT_FALSE(bed.iStack->GetNextKeyIndex(index, cursor));
  bed.iStack->DeleteKeyIndex(45);
  bed.iStack->DeleteSortKey(44);
  EXPECT_FALSE(bed.iStack->GetFirstSortKey(found, cursor));
  EXPECT_FALSE(bed.iStack->GetFirstKeyIndex(index, cursor));
}

TEST(CVelumStack, AddCardGivesIdStackAndPlaces) {
  TSampleStack bed;
  const auto card = MakeRef<CVelumCard>(u"Ann"_s, bed.iFirst);
  EXPECT_EQ(card->Id(), ENoInt);
  EXPECT_EQ(card->OrderNum(), ENoInt);
  bed.iStack->ResetChangeInfo();
  bed.iStack->AddCard(card, nullptr, true);
  EXPECT_EQ(card->Id(), 0);
  EXPECT_EQ(card->OrderNum(), 100);
  EXPECT_EQ(card->Stack(), bed.iStack.Get());
  EXPECT_EQ(bed.iStack->NumCards(), 1);
  EXPECT_EQ(bed.iStack->NumBackgroundCards(bed.iFirst->Id()), 1);
  Ref<CVelumCard> found;
  EXPECT_TRUE(bed.iStack->GetCard(u"Ann"_s, found));
  EXPECT_EQ(found, card);
  EXPECT_FALSE(bed.iStack->GetCard(u"ann"_s, found));
  EXPECT_FALSE(found);
  EXPECT_TRUE(bed.iStack->ChangeInfo().iCardListChanged);
  EXPECT_TRUE(card->ControlValDef(bed.iSize->Id())) << "with defaults";
  EXPECT_FALSE(bed.AddCard(bed.iFirst, u"Bob"_s)->ControlValDef(bed.iSize->Id()));
}

TEST(CVelumStack, ACardIsNotAddedTwiceNorWithoutItsBackground) {
  TSampleStack bed;
  const Ref<CVelumCard> card = bed.AddCard(bed.iFirst, u"Ann"_s);
  EXPECT_EQ(Raised([&] { bed.iStack->AddCard(card, nullptr, false); }), EHostBadCall);
  const auto foreign = MakeRef<CVelumControlSet>(u"Foreign"_s, 999);
  EXPECT_EQ(Raised([&] { bed.iStack->AddCard(MakeRef<CVelumCard>(u"x"_s, foreign), nullptr, false); }),
            EHostObjectNotSet);
  EXPECT_EQ(Raised([&] { bed.iStack->AddCard(nullptr, nullptr, false); }), EHostObjectNotSet);
  EXPECT_EQ(bed.iStack->NumCards(), 1);
  EXPECT_EQ(bed.iStack->Cards().Count(), 1);
}

TEST(CVelumStack, ACardThatCannotBeAddedLeavesNothingBehind) {
  TSampleStack bed;
  const auto key = MakeRef<CVelumSortKey>(bed.iStack->IdGen().NextId(), u"Key"_s, bed.iFirst->Id());
  bed.iStack->AddSortKey(key);
  bed.iFirst->SetFlag(ECseKeepCardsSorted, true);
  bed.iStack->NewIndexForSortKey(key);
  bed.AddCard(bed.iFirst, u"Ann"_s);
  key->AddKeyPart(EConText, 4711, EWayAscending, 10); // a field that is not there
  const auto card = MakeRef<CVelumCard>(u"Bob"_s, bed.iFirst);
  EXPECT_EQ(AssertText([&] { bed.iStack->AddCard(card, nullptr, false); }), u"background control"_s);
  EXPECT_FALSE(card->Stack());
  EXPECT_EQ(bed.iStack->NumCards(), 1);
  EXPECT_EQ(bed.iStack->Cards().Count(), 1);
  EXPECT_EQ(bed.iStack->NumBackgroundCards(bed.iFirst->Id()), 1);
  EXPECT_EQ(bed.iFirst->KeyIndex()->Count(), 1);
  EXPECT_EQ(bed.iStack->NameIndex().Count(), 1);
  card->SetBackground(bed.iSecond);
  bed.iStack->AddCard(card, nullptr, false);
  EXPECT_EQ(card->Id(), 1);
}

TEST(CVelumStack, LastIdIsGivenAgain) {
  TSampleStack bed;
  bed.AddCard(bed.iFirst, u"a"_s);
  const Ref<CVelumCard> b = bed.AddCard(bed.iFirst, u"b"_s);
  const Ref<CVelumCard> c = bed.AddCard(bed.iFirst, u"c"_s);
  bed.iStack->DeleteCard(b);
  EXPECT_FALSE(bed.iStack->GetCardById(1));
  EXPECT_EQ(bed.AddCard(bed.iFirst, u"d"_s)->Id(), 3) << "a slot in the middle stays free";
  bed.iStack->DeleteCard(bed.iStack->GetCardById(3));
  bed.iStack->DeleteCard(c);
  EXPECT_EQ(bed.AddCard(bed.iFirst, u"e"_s)->Id(), 1);
}

TEST(CVelumStack, DeletedCardIsOnItsOwn) {
  TSampleStack bed;
  const Ref<CVelumCard> card = bed.AddCard(bed.iFirst, u"a"_s);
  bed.iStack->DeleteCard(card);
  EXPECT_EQ(card->Stack(), nullptr);
  EXPECT_FALSE(card->Background());
  EXPECT_EQ(bed.iStack->NumCards(), 0);
  EXPECT_EQ(bed.iFirst->NumCards(), 0);
  EXPECT_EQ(AssertText([&] { bed.iStack->DeleteCard(card); }), u"DeleteCard stack"_s);
  EXPECT_EQ(RaisedOverruled([&] { bed.iStack->DeleteCard(card); }), -1);
  EXPECT_EQ(bed.iStack->NumCards(), 0);
}

TEST(CVelumStack, DeletingACardLeavesTheEntryOfAnotherOfItsName) {
  TSampleStack bed;
  const Ref<CVelumCard> first = bed.AddCard(bed.iFirst, u"Ann"_s);
  const Ref<CVelumCard> second = bed.AddCard(bed.iFirst, u"Ann"_s);
  EXPECT_EQ(bed.iStack->NameIndex().Count(), 2);
  TVelumElem elem;
  qint32 next = 0;
  ASSERT_TRUE(bed.iStack->NameIndex().ReadByStrKey(u"Ann"_s, elem, next));
  const bool firstGoes = elem.iVal.Int() == first->Id();
  bed.iStack->DeleteCard(firstGoes ? second : first);
  ASSERT_EQ(bed.iStack->NameIndex().Count(), 1);
  Ref<CVelumCard> found;
  EXPECT_TRUE(bed.iStack->GetCard(u"Ann"_s, found));
  EXPECT_EQ(found, firstGoes ? first : second);
  bed.iStack->DeleteCard(firstGoes ? first : second);
  EXPECT_EQ(bed.iStack->NameIndex().Count(), 0);
}

TEST(CVelumStack, DeleteAllCardsLeavesTheBackgrounds) {
  TSampleStack bed;
  for (int i = 0; i < 1500; ++i) bed.AddCard(i % 2 ? bed.iFirst : bed.iSecond, u"c"_s);
  bed.iStack->ResetChangeInfo();
  bed.iStack->DeleteAllCards();
  EXPECT_EQ(bed.iStack->NumCards(), 0);
  EXPECT_EQ(bed.iStack->Cards().Count(), 0);
  EXPECT_EQ(bed.iStack->NameIndex().Count(), 0);
  EXPECT_EQ(bed.iFirst->NumCards() + bed.iSecond->NumCards(), 0);
  EXPECT_EQ(bed.iStack->NumBackgrounds(), 2);
  EXPECT_TRUE(bed.iStack->ChangeInfo().iCardListChanged);
}

TEST(CVelumStack, RenameCardMovesTheName) {
  TSampleStack bed;
  const Ref<CVelumCard> card = bed.AddCard(bed.iFirst, u"Ann"_s);
  bed.iStack->RenameCard(card, u"Bea"_s);
  Ref<CVelumCard> found;
  EXPECT_FALSE(bed.iStack->GetCard(u"Ann"_s, found));
  EXPECT_TRUE(bed.iStack->GetCard(u"Bea"_s, found));
  EXPECT_EQ(found, card);
  const auto loose = MakeRef<CVelumCard>(u"x"_s, bed.iFirst);
  EXPECT_EQ(AssertText([&] { bed.iStack->RenameCard(loose, u"y"_s); }), u"RenameCard stack"_s);
}

TEST(CVelumStack, RenameCardMovesTheEntryOfThatCard) {
  TSampleStack bed;
  QList<Ref<CVelumCard>> cards;
  for (int i = 0; i < 5; ++i) cards.append(bed.AddCard(bed.iFirst, u"Ann"_s));
  for (int i = 0; i < 4; ++i) {
    bed.iStack->RenameCard(cards[i], u"Bob %1"_s.arg(i));
    Ref<CVelumCard> found;
    ASSERT_TRUE(bed.iStack->GetCard(u"Ann"_s, found));
    EXPECT_EQ(found->Name(), u"Ann"_s);
    ASSERT_TRUE(bed.iStack->GetCard(u"Bob %1"_s.arg(i), found));
    EXPECT_EQ(found, cards[i]);
  }
  EXPECT_EQ(bed.iStack->NameIndex().Count(), 5);
}

TEST(CVelumStack, RenameCardWritesTheNameField) {
  TSampleStack bed;
  bed.iNote->SetFlag(EConCardName, true);
  const Ref<CVelumCard> card = bed.AddCard(bed.iFirst, u"Ann"_s);
  bed.iStack->RenameCard(card, u"Bea"_s);
  EXPECT_EQ(card->GetControlVal(bed.iNote->Id(), false).Str(), u"Bea"_s);
  EXPECT_EQ(card->Name(), u"Bea"_s);
}

// Name and value agree for every type, by the form in which the user sees the value.
TEST(CVelumStack, RenameCardAndNameFieldAgreeForEveryType) {
  TSampleStack bed;
  bed.iSize->SetFlag(EConCardName, true);
  const Ref<CVelumCard> card = bed.AddCard(bed.iFirst, u"Ann"_s);
  bed.iStack->RenameCard(card, u"007"_s);
  EXPECT_EQ(card->GetControlVal(bed.iSize->Id(), false).Int(), 7);
  EXPECT_EQ(card->Name(), u"7"_s);
  Ref<CVelumCard> found;
  EXPECT_TRUE(bed.iStack->GetCard(u"7"_s, found));
  EXPECT_FALSE(bed.iStack->GetCard(u"007"_s, found));

  const Ref<CVelumControl> day = bed.AddField(bed.iSecond, u"Day"_s, EConDate);
  day->SetFlag(EConCardName, true);
  const Ref<CVelumCard> dated = bed.AddCard(bed.iSecond, u"x"_s);
  dated->SetControlVal(day->Id(), TVelumValue::OfDate(43890));
  EXPECT_EQ(dated->GetControlVal(day->Id(), false).Date(), 43890);
  bed.iStack->RenameCard(dated, dated->Name());
  EXPECT_EQ(dated->GetControlVal(day->Id(), false).Date(), 43890);
}

TEST(CVelumStack, DeleteBackgroundTakesCardsKeysAndIndexes) {
  TSampleStack bed;
  const auto key = MakeRef<CVelumSortKey>(bed.iStack->IdGen().NextId(), u"By"_s, bed.iFirst->Id());
  key->AddKeyPart(EConText, bed.iTown->Id(), EWayAscending, 10);
  bed.iStack->AddSortKey(key);
  const auto other = MakeRef<CVelumSortKey>(bed.iStack->IdGen().NextId(), u"Other"_s, bed.iSecond->Id());
  bed.iStack->AddSortKey(other);
  for (int i = 0; i < 6; ++i) bed.AddCard(i % 2 ? bed.iFirst : bed.iSecond, QString::number(i));
  bed.iFirst->SetFlag(ECseKeepCardsSorted, true);
  bed.iStack->NewIndexForSortKey(key);

  bed.iStack->DeleteBackground(bed.iFirst, true);
  EXPECT_EQ(Names(*bed.iStack), u"0 2 4"_s);
  EXPECT_EQ(bed.iStack->KeyIndex(bed.iFirst->KeyIndexId())->Count(), 0);
  EXPECT_EQ(bed.iStack->NumBackgrounds(), 2);

  bed.iStack->DeleteBackground(bed.iFirst, false);
  EXPECT_EQ(bed.iStack->NumBackgrounds(), 1);
  EXPECT_EQ(bed.iFirst->Stack(), nullptr);
  Ref<CVelumSortKey> found;
  EXPECT_FALSE(bed.iStack->GetSortKeyByName(u"By"_s, found));
  EXPECT_TRUE(bed.iStack->GetSortKeyByName(u"Other"_s, found));
  Ref<CVelumArray> index;
  qint32 cursor = 0;
  EXPECT_FALSE(bed.iStack->GetFirstKeyIndex(index, cursor));
  EXPECT_EQ(AssertText([&] { bed.iStack->DeleteBackground(bed.iFirst, false); }),
            u"DeleteBackground aBackground of stack"_s);
  EXPECT_EQ(gLastError.iProc, u"DeleteBackground"_s);
}

TEST(CVelumStack, DeletingABackgroundReleasesItsWallpaper) {
  TSampleStack bed;
  const Ref<CVelumBlobStore> store = bed.iStack->BlobStore();
  for (const qint32 id : {501, 502}) {
    const auto blob = MakeRef<CVelumBlob>(id);
    blob->SetBytes("x");
    store->AddBlob(blob);
  }
  for (const Ref<CVelumControlSet>& background : {bed.iFirst, bed.iSecond}) {
    store->AddReference(501);
    background->SetWallPaperId(501);
  }
  bed.iStack->DeleteBackground(bed.iFirst, true);
  EXPECT_EQ(store->ReadBlob(501, false)->RefCount(), 2) << "the background stays, and its wallpaper with it";
  bed.iStack->DeleteBackground(bed.iFirst, false);
  EXPECT_EQ(store->ReadBlob(501, false)->RefCount(), 1);
  bed.iStack->DeleteBackground(bed.iSecond, false);
  EXPECT_FALSE(store->HasBlob(501));
  EXPECT_TRUE(store->HasBlob(502));
}

TEST(CVelumStack, ABackgroundWhoseWallpaperIsNotThereCanBeDeleted) {
  TSampleStack bed;
  bed.iSecond->SetWallPaperId(4711);
  EXPECT_EQ(AssertText([&] { bed.iStack->DeleteBackground(bed.iSecond, false); }), QString());
  EXPECT_EQ(bed.iStack->NumBackgrounds(), 1);
}

TEST(CVelumStack, DeleteControlTakesTheValues) {
  TSampleStack bed;
  const Ref<CVelumCard> card = bed.AddCard(bed.iFirst, u"a"_s);
  card->SetControlVal(bed.iTown->Id(), TVelumValue::OfStr(u"Bern"_s));
  const qint32 id = bed.iTown->Id();
  bed.iStack->DeleteControl(id, bed.iFirst);
  EXPECT_FALSE(card->ControlValDef(id));
  EXPECT_EQ(bed.iFirst->NumControls(), 3);
}

TEST(CVelumStack, ChangeCardCountsCardsThatDiffer) {
  TSampleStack bed;
  const Ref<CVelumCard> a = bed.AddCard(bed.iFirst, u"a"_s);
  const Ref<CVelumCard> b = bed.AddCard(bed.iFirst, u"b"_s);
  bed.iStack->ResetChangeInfo();
  bed.iStack->ChangeCard(*a);
  bed.iStack->ChangeCard(*a);
  EXPECT_EQ(bed.iStack->ChangeInfo().iNumCardsChanged, 1);
  bed.iStack->ChangeCard(*b);
  bed.iStack->ChangeCard(*a);
  EXPECT_EQ(bed.iStack->ChangeInfo().iNumCardsChanged, 3);
  EXPECT_EQ(bed.iStack->ChangeInfo().iLastChangedCard, a);
  EXPECT_TRUE(bed.iStack->ChangeInfo().iCardChanged);
  bed.iStack->ResetChangeInfo();
  EXPECT_FALSE(bed.iStack->ChangeInfo().iCardChanged);
  EXPECT_FALSE(bed.iStack->ChangeInfo().iLastChangedCard);
  for (int i = 0; i < 40000; ++i) bed.iStack->ChangeCard(i % 2 ? *a : *b);
  EXPECT_EQ(bed.iStack->ChangeInfo().iNumCardsChanged, 32767) << "the count stays at its most";
}

TEST(CVelumStack, ChangedAsksAllThatItOwns) {
  TSampleStack bed;
  const auto key = MakeRef<CVelumSortKey>(bed.iStack->IdGen().NextId(), u"By"_s, bed.iFirst->Id());
  bed.iStack->AddSortKey(key);
  bed.iFirst->SetFlag(ECseKeepCardsSorted, true);
  bed.iStack->NewIndexForSortKey(key);
  bed.iStack->SetListFont(MakeRef<CVelumFont>());
  bed.iStack->SetFont(MakeRef<CVelumFont>());
  const Ref<CVelumCard> card = bed.AddCard(bed.iFirst, u"a"_s);
  bed.iStack->SetChanged(false);
  ASSERT_FALSE(bed.iStack->Changed());

  const auto expectChanged = [&](const char* aWhat) {
    EXPECT_TRUE(bed.iStack->Changed()) << aWhat;
    bed.iStack->SetChanged(false);
    EXPECT_FALSE(bed.iStack->Changed()) << aWhat;
  };
  bed.iTown->SetLabel(u"l"_s);
  expectChanged("background");
  key->SetName(u"k"_s);
  expectChanged("sort key");
  bed.iStack->MoveCard(card, nullptr);
  expectChanged("order");
  bed.iStack->KeyIndex(bed.iFirst->KeyIndexId())->SetChanged(true);
  expectChanged("key index");
  static_cast<void>(bed.iStack->IdGen().NextId());
  expectChanged("id generator");
  RawValues(*card).SetChanged(true);
  expectChanged("card");
  bed.iStack->BlobStore()->SetChanged(true);
  expectChanged("blob store");
  bed.iStack->Font()->SetFlags(1);
  expectChanged("font");
  bed.iStack->ListFont()->SetFlags(1);
  expectChanged("list font");
  bed.iStack->SetScript(MakeRef<CVelumArray>(EArrStrKey, EValStr));
  expectChanged("script");
  bed.iStack->SetDescr(u"d"_s);
  card->SetFlags(1);
  bed.iStack->ResetChanged();
  expectChanged("a card, after the stack's own mark alone was cleared");
}

TEST(CVelumStack, ControlDynFlagsFollowCardListsAndKeys) {
  TSampleStack bed;
  const auto key = MakeRef<CVelumSortKey>(bed.iStack->IdGen().NextId(), u"By"_s, bed.iFirst->Id());
  key->AddKeyPart(EConDate, bed.iSince->Id(), EWayAscending, 8);
  bed.iStack->AddSortKey(key);
  bed.iSize->SetDynFlags(15);
  bed.iStack->SetControlDynFlags();
  EXPECT_EQ(bed.iKey->DynFlags(), EDynRefControl);
  EXPECT_EQ(bed.iTown->DynFlags(), EDynSelControl);
  EXPECT_EQ(bed.iNote->DynFlags(), EDynListCol);
  EXPECT_EQ(bed.iSize->DynFlags(), EDynListCol);
  EXPECT_EQ(bed.iSince->DynFlags(), EDynKeyPart);
  EXPECT_EQ(bed.iAll->DynFlags(), 0);

  bed.iSome->SetFlag(EConCardList, false);
  bed.iStack->SetControlDynFlags();
  EXPECT_EQ(bed.iTown->DynFlags(), 0);
  key->AddKeyPart(EConText, 4711, EWayAscending, 8);
  EXPECT_EQ(AssertText([&] { bed.iStack->SetControlDynFlags(); }), u"key part control found"_s);
  EXPECT_EQ(gLastError.iProc, u"SetDynFlags"_s);
  EXPECT_EQ(RaisedOverruled([&] { bed.iStack->SetControlDynFlags(); }), -1);
}

TEST(CVelumStack, DynFlagsSurviveReferencesToNothing) {
  TSampleStack bed;
  bed.iSome->SetRefControlId(4711);
  bed.iSome->SetSelControlId(4712);
  bed.iStack->SetControlDynFlags();
  bed.iSome->SetSelBackgroundId(4713);
  bed.iStack->SetControlDynFlags();
  EXPECT_EQ(bed.iTown->DynFlags(), 0);
}

TEST(CVelumStack, FindBySelControlFindsTheList) {
  TSampleStack bed;
  Ref<CVelumControl> control;
  Ref<CVelumControlSet> background;
  EXPECT_TRUE(bed.iStack->FindBySelControl(*bed.iTown, control, background));
  EXPECT_EQ(control, bed.iSome);
  EXPECT_EQ(background, bed.iSecond);
  EXPECT_FALSE(bed.iStack->FindBySelControl(*bed.iNote, control, background));
  EXPECT_FALSE(control);
  EXPECT_FALSE(background);
}

TEST(CVelumStack, CardListsOfABackgroundGoDirtyTogether) {
  TSampleStack bed;
  const Ref<CVelumCard> plain = bed.AddCard(bed.iFirst, u"p"_s);
  const Ref<CVelumCard> a = bed.AddCard(bed.iSecond, u"a"_s);
  const Ref<CVelumCard> b = bed.AddCard(bed.iSecond, u"b"_s);
  a->UpdateCardLists();
  b->UpdateCardLists();
  EXPECT_FALSE(a->Dirty());
  bed.iStack->ResetChangeInfo();
  bed.iStack->SetCardListsDirty(bed.iFirst);
  EXPECT_FALSE(a->Dirty()) << "the first background has no list";
  EXPECT_FALSE(bed.iStack->ChangeInfo().iCardChanged);
  bed.iStack->SetCardListsDirty(nullptr);
  EXPECT_TRUE(a->Dirty());
  EXPECT_TRUE(b->Dirty());
  EXPECT_FALSE(plain->Dirty());
  EXPECT_EQ(bed.iStack->ChangeInfo().iNumCardsChanged, 2);
  EXPECT_EQ(bed.iStack->ChangeInfo().iLastChangedCard, b);
  bed.iStack->SetCardListsDirty(bed.iSecond);
  EXPECT_EQ(bed.iStack->ChangeInfo().iNumCardsChanged, 4) << "a differs from b, and b from a";
  bed.iStack->DeleteCard(b);
  bed.iStack->ResetChangeInfo();
  bed.iStack->SetCardListsDirty(nullptr);
  bed.iStack->SetCardListsDirty(nullptr);
  EXPECT_EQ(bed.iStack->ChangeInfo().iNumCardsChanged, 1) << "the only one is the same each time";
}

TEST(CVelumStack, AnAddedCardOfAListingBackgroundIsDirty) {
  TSampleStack bed;
  EXPECT_TRUE(bed.AddCard(bed.iSecond, u"a"_s)->Dirty());
  EXPECT_FALSE(bed.AddCard(bed.iFirst, u"b"_s)->Dirty());
}

TEST(CVelumStack, PrepareForSaveLeavesNoStaleList) {
  TSampleStack bed;
  const Ref<CVelumCard> town = bed.AddCard(bed.iFirst, u"Aare"_s);
  town->SetControlVal(bed.iTown->Id(), TVelumValue::OfStr(u"Bern"_s));
  town->SetControlVal(bed.iSize->Id(), TVelumValue::OfInt(5));
  const Ref<CVelumCard> list = bed.AddCard(bed.iSecond, u"l"_s);
  list->SetControlVal(bed.iKey->Id(), TVelumValue::OfStr(u"Bern"_s));
  EXPECT_TRUE(list->Dirty());
  bed.iStack->PrepareForSave();
  EXPECT_FALSE(list->Dirty());
  EXPECT_EQ(list->GetControlVal(bed.iSome->Id(), false).Str(), u"0\t\t5"_s);
  EXPECT_EQ(bed.iAll->DefaultVal(), u"0\tAare"_s);
  EXPECT_FALSE(list->ControlValDef(bed.iAll->Id()));
}

TEST(CVelumStack, OwnerLinksAreClearedWhenTheStackGoes) {
  Ref<CVelumCard> card;
  Ref<CVelumControlSet> background;
  {
    TSampleStack bed;
    card = bed.AddCard(bed.iFirst, u"a"_s);
    background = bed.iFirst;
  }
  EXPECT_EQ(card->Stack(), nullptr);
  EXPECT_EQ(background->Stack(), nullptr);
  EXPECT_FALSE(card->Background());
  EXPECT_EQ(AssertText([&] { card->SetControlVal(1, TVelumValue()); }), u"Background def"_s);
}

TEST(CVelumStack, AdjustVisCharTakesSizesFromTheContent) {
  TSampleStack bed;
  const Ref<CVelumCard> card = bed.AddCard(bed.iFirst, u"a"_s);
  const auto fit = [&](int aLen) {
    bed.iTown->SetListVisChar(ENoShort);
    card->SetControlVal(bed.iTown->Id(), TVelumValue::OfStr(QString(aLen, u'x')));
    bed.iStack->AdjustVisChar();
    return QList<int>{bed.iTown->VisChar(), bed.iTown->VisLines(), bed.iTown->TrueListVisChar()};
  };
  EXPECT_EQ(fit(0), (QList<int>{2, 1, ENoShort}));
  EXPECT_EQ(fit(5), (QList<int>{7, 1, ENoShort}));
  EXPECT_EQ(fit(6), (QList<int>{8, 1, ENoShort}));
  EXPECT_EQ(fit(7), (QList<int>{7, 1, ENoShort}));
  EXPECT_EQ(fit(20), (QList<int>{20, 1, ENoShort}));
  EXPECT_EQ(fit(21), (QList<int>{21, 1, 20}));
  EXPECT_EQ(fit(29), (QList<int>{29, 1, 20}));
  EXPECT_EQ(fit(30), (QList<int>{30, 1, 20}));
  EXPECT_EQ(fit(31), (QList<int>{30, 2, 20}));
  EXPECT_EQ(fit(33), (QList<int>{30, 2, 20}));
  EXPECT_EQ(fit(60), (QList<int>{30, 2, 20}));
  EXPECT_EQ(fit(61), (QList<int>{30, 3, 20}));
  EXPECT_EQ(fit(200), (QList<int>{30, 4, 20}));
}

} // namespace
