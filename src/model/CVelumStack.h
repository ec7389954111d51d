// The document: backgrounds, cards, sort keys, key indexes, blobs, and the order and name indexes.
#pragma once

#include "model/CVelumCard.h"
#include "model/CVelumIdGen.h"
#include "model/CVelumModel.h"
#include "model/blobs/CVelumBlobStore.h"
#include "model/lists/CVelumCardFinder.h"
#include "model/order/CVelumCardOrder.h"
#include "model/order/CVelumIndexSum.h"
#include "model/order/CVelumSortKey.h"

enum EChild : quint8;

#include <QStringList>
#include <limits>

// Flags of a stack, as they stand in files.
enum ESta : qint32 { EStaBinary = 1, EStaOpenFullScreen = 2, EStaOpenLandscape = 4 };

// What happened to cards since the last reset; read by the views.
struct TVelumChangeInfo {
  bool iCardChanged = false;
  bool iCardListChanged = false;
  qint16 iNumCardsChanged = 0;
  Ref<CVelumCard> iLastChangedCard;
};

// The only class that changes its containers; it keeps them mutually consistent. Knows no view.
// Every change is recorded (CVelumRecorder).
class CVelumStack final : public CVelumScripted {
public:
  // Allocated only: for Internalize.
  CVelumStack();
  // One background, "First Background", and no card.
  explicit CVelumStack(const QString& aName);
  ~CVelumStack() override;

  [[nodiscard]] QString ObjDescr() const override;
  [[nodiscard]] TDocAddress Address() const override { return {EDocStack, ENoInt}; }
  [[nodiscard]] const QString& Descr() const { return iDescr; }
  void SetDescr(const QString& aDescr);
  [[nodiscard]] const QString& Filename() const { return iFilename; }
  void SetFilename(const QString& aFilename);
  [[nodiscard]] Ref<CVelumFont> ListFont() const { return iListFont; }
  void SetListFont(const Ref<CVelumFont>& aFont);
  [[nodiscard]] qint32 NumCards() const { return iOrder.Count(); }
  [[nodiscard]] CVelumIdGen& IdGen() const { return *iIdGen; }
  [[nodiscard]] Ref<CVelumBlobStore> BlobStore() const { return iBlobStore; }
  // Only an empty slot may be filled: asserts "nothing".
  void SetBlobStore(const Ref<CVelumBlobStore>& aStore);
  [[nodiscard]] bool Changed() const override;
  void SetChanged(bool aChanged) override;
  // Clears the stack's own mark alone.
  void ResetChanged();
  [[nodiscard]] qint32 OrderCorrections() const { return iOrderCorrections; }
  [[nodiscard]] TVelumChangeInfo ChangeInfo() const;
  void ResetChangeInfo();

  void AddBackground(const Ref<CVelumControlSet>& aBackground);
  // Nothing when not found.
  [[nodiscard]] Ref<CVelumControlSet> Background(qint32 aId) const;
  // The same uncounted, for hot paths; null when not found.
  [[nodiscard]] CVelumControlSet* FindBackground(qint32 aId) const;
  [[nodiscard]] bool GetFirstBackground(Ref<CVelumControlSet>& aBackground, qint32& aIndex) const;
  [[nodiscard]] bool GetNextBackground(Ref<CVelumControlSet>& aBackground, qint32& aIndex) const;
  [[nodiscard]] bool GetBackgroundByName(const QString& aName, Ref<CVelumControlSet>& aBackground) const;
  [[nodiscard]] qint32 NumBackgrounds() const { return iBackground->Count(); }
  [[nodiscard]] Ref<CVelumSortKey> SortKey(qint32 aId) const;
  [[nodiscard]] bool GetFirstSortKey(Ref<CVelumSortKey>& aKey, qint32& aIndex) const;
  [[nodiscard]] bool GetNextSortKey(Ref<CVelumSortKey>& aKey, qint32& aIndex) const;
  [[nodiscard]] bool GetSortKeyByName(const QString& aName, Ref<CVelumSortKey>& aKey) const;
  void AddSortKey(const Ref<CVelumSortKey>& aKey);
  void DeleteSortKey(qint32 aId);
  [[nodiscard]] Ref<CVelumArray> KeyIndex(qint32 aId) const;
  [[nodiscard]] bool GetFirstKeyIndex(Ref<CVelumArray>& aIndex, qint32& aCursor) const;
  [[nodiscard]] bool GetNextKeyIndex(Ref<CVelumArray>& aIndex, qint32& aCursor) const;
  void AddKeyIndex(const Ref<CVelumArray>& aKeyIndex);
  void DeleteKeyIndex(qint32 aId);

  // aBeforeCard nothing appends.
  void AddCard(const Ref<CVelumCard>& aCard, const Ref<CVelumCard>& aBeforeCard, bool aWithDefaults);
  void DeleteCard(const Ref<CVelumCard>& aCard);
  void DeleteAllCards();
  // The cards of a background whose ids are below aEnd.
  void DeleteCardsOf(const CVelumControlSet& aBackground, qint32 aEnd = std::numeric_limits<qint32>::max());
  void RenameCard(const Ref<CVelumCard>& aCard, const QString& aName);
  void MoveCard(const Ref<CVelumCard>& aCard, const Ref<CVelumCard>& aBeforeCard);
  void MoveAllCardsOfBackground(const Ref<CVelumControlSet>& aBackground, const Ref<CVelumCard>& aBeforeCard);
  void DeleteBackground(const Ref<CVelumControlSet>& aBackground, bool aOnlyCards);
  void Sort(const Ref<CVelumControlSet>& aBackground, const Ref<CVelumSortKey>& aSortKey,
            const Ref<CVelumCard>& aBeforeCard, bool aUseKeyIndex);
  void NewIndexForSortKey(const Ref<CVelumSortKey>& aSortKey);
  void ChangeCard(const CVelumCard& aCard);
  void DeleteControl(qint32 aId, const Ref<CVelumControlSet>& aBackground);

  [[nodiscard]] bool GetCard(const QString& aName, Ref<CVelumCard>& aCard) const;
  [[nodiscard]] bool GetFirstCard(Ref<CVelumCard>& aCard, qint32& aIndex) const;
  [[nodiscard]] bool GetNextCard(Ref<CVelumCard>& aCard, qint32& aIndex) const;
  // Position in the order, from 0.
  [[nodiscard]] qint32 GetCardIndex(const CVelumCard& aCard, qint32& aNumCards) const;
  [[nodiscard]] bool GetCardByNum(qint32 aNum, Ref<CVelumCard>& aCard) const;
  // Nothing for a free slot or an id beyond the last.
  [[nodiscard]] Ref<CVelumCard> GetCardById(qint32 aId) const;
  // The same uncounted, for hot paths; null when there is none.
  [[nodiscard]] CVelumCard* FindCard(qint32 aId) const;
  [[nodiscard]] bool GetFirstCardInBackground(qint32 aBackgroundId, Ref<CVelumCard>& aCard,
                                              qint32& aIndex) const;
  [[nodiscard]] bool GetNextCardInBackground(qint32 aBackgroundId, Ref<CVelumCard>& aCard,
                                             qint32& aIndex) const;
  [[nodiscard]] bool GetLastCardInBackground(qint32 aBackgroundId, Ref<CVelumCard>& aCard) const;
  [[nodiscard]] qint32 NumBackgroundCards(qint32 aBackgroundId) const;
  [[nodiscard]] bool OrderFirst(Ref<CVelumCard>& aCard) const;
  [[nodiscard]] bool OrderLast(Ref<CVelumCard>& aCard) const;
  [[nodiscard]] bool OrderNext(const CVelumCard& aCur, Ref<CVelumCard>& aNext) const;
  [[nodiscard]] bool OrderPrev(const CVelumCard& aCur, Ref<CVelumCard>& aPrev) const;
  void AdjustCardPos(const Ref<CVelumCard>& aCard, bool aIsNew, const QString& aKey);
  void AdjustVisChar();

  void SetControlDynFlags();
  [[nodiscard]] bool FindBySelControl(const CVelumControl& aControl, Ref<CVelumControl>& aFoundControl,
                                      Ref<CVelumControlSet>& aBackground) const;
  // aBackground nothing: all.
  void SetCardListsDirty(const Ref<CVelumControlSet>& aBackground);
  // A number that changes whenever a list that is computed from cards could become another one.
  [[nodiscard]] quint32 ListBasis() const { return iListBasis; }
  // The cards of a computed list (see CVelumCardFinder::Find).
  [[nodiscard]] CVelumCardFinder::TCards FindCards(qint32 aBackgroundId, qint32 aControlId,
                                                   const TVelumValue& aVal) {
    return iCardFinder.Find(*this, aBackgroundId, aControlId, aVal, iListBasis);
  }
  // Brings all computed lists up to date.
  void PrepareForSave();

  // Bulk adding, for imports: the names and keys of cards that are added enter the indexes at the end, all at
  // once. In between they are not found by name; their values can be set. The numbers of the order are those
  // of a fresh numbering if a kept-sorted background got cards.
  void BeginBulk(qint32 aExpected);
  void EndBulk();
  // Cards that were added, from the id aFirst on, take over the free ids in front of them, so that cards that
  // replace others again and again do not make the stack grow. Nobody may know them by their ids yet. Nothing
  // happens where one of them has a key of its own.
  void CloseGap(qint32 aFirst);

  // What the last load found wrong with the indexes, a line each (at most 100, and one that says that there
  // are more). Entries of names and keys that differed from what the cards give have been made anew.
  [[nodiscard]] const QStringList& LoadProblems() const { return iLoadProblems; }

  // Read access to the indexes, for checks.
  [[nodiscard]] const CVelumArray& Cards() const { return *iCard; }
  [[nodiscard]] const CVelumArray& OrderIndex() const;
  [[nodiscard]] const CVelumCardOrder& CardOrder() const { return iOrder; }
  [[nodiscard]] const CVelumArray& NameIndex() const { return *iNameIndex; }

  void Internalize(CVelumFile& aFile) override;
  void Externalize(CVelumFile& aFile) override;
  [[nodiscard]] qint64 ExtLen() const override;
  [[nodiscard]] QStringView XmlTag() const override { return u"Stack"; }
  void InternalizeXml(CVelumXmlParser& aParser) override;
  void ExternalizeXml(CVelumXmlWriter& aWriter) override;

private:
  friend class CVelumCard;    // the change hub
  friend class CVelumReplay;  // raw access for changes
  friend class CVelumControl; // tells what keys depend on

  // Of a key index, what the cards of its background give.
  struct TKeySum {
    CVelumArray* iIndex;
    const CVelumSortKey* iKey;
    const CVelumControlSet* iBackground;
    CVelumIndexSum iCards;
  };
  // Taken while a stack is loaded.
  struct TIndexSums {
    CVelumIndexSum iNames;
    std::vector<TKeySum> iKeys;
    QString iText; // a key that is being built
  };
  static constexpr qsizetype EMaxProblems = 100;

  // Asks for the memory of the cards that a walk comes to next. aIds begin with the card before aIndex.
  void FetchAhead(std::span<const qint32> aIds, qint32 aIndex) const;
  // Parts of CVelumCard::SetControlVal.
  [[nodiscard]] qint32 OrderNumOf(const CVelumCard& aCard) const;
  void BackgroundSet(CVelumCard& aCard, qint32 aOldId);
  void StoreKeys(CVelumCard& aCard, qint32 aControlId);
  void ReplaceKeys(CVelumCard& aCard, qint32 aControlId, CVelumControlSet& aBackground);
  void TakeName(CVelumCard& aCard, const QString& aName);
  // The keys that a field is part of are made anew, for all cards at once: what its missing values stand for
  // has changed.
  void RenewKeysOf(qint32 aControlId);
  // The same when the field has got another type, by which its values compare.
  void ControlTypeSet(qint32 aControlId, qint32 aConType);
  // Lists that are computed from lists nest; false when too deep. What goes stale meanwhile does so when the
  // outermost update is left, and the cards that were computed in it stay clean: lists that select each other
  // would otherwise be computed without end.
  [[nodiscard]] bool EnterListUpdate();
  void LeaveListUpdate();

  void MakeContainers();
  void RecordChild(bool aAdded, EChild aKind, qint32 aId, CVelumStored& aChild, qint32 aAlloc) const;
  [[nodiscard]] CVelumSortKey* SortKeyAt(qint32 aIndex) const;
  [[nodiscard]] CVelumArray* KeyIndexAt(qint32 aIndex) const;
  [[nodiscard]] bool HasKeysFrom(qint32 aFirst) const;
  void MoveCardIds(qint32 aFrom, qint32 aEnd, qint32 aBy);
  [[nodiscard]] bool InBulk(const CVelumCard& aCard) const { return aCard.Id() >= iBulkStart; }

  [[nodiscard]] qint32 PlaceCard(const Ref<CVelumCard>& aCard);
  void TakeOut(CVelumCard& aCard, CVelumControlSet& aBackground);
  void DeleteCards(const std::vector<Ref<CVelumCard>>& aCards);
  // Entries of the name index or of a key index, recorded.
  qint32 AddEntry(CVelumArray& aIndex, const QString& aKey, qint32 aCardId);
  void RemoveEntry(CVelumArray& aIndex, qint32 aAt);
  void RemoveEntriesOf(CVelumArray& aIndex, const std::vector<bool>& aCards);
  // The id by which changes name an index of this stack (ENoInt: the name index); false for another array.
  [[nodiscard]] bool IsIndex(const CVelumArray& aIndex, qint32& aId) const;
  void RecordCard(bool aAdded, CVelumCard& aCard, qint32 aCount, qint32 aAlloc) const;
  // Records all entries of the range as one change; those of cards below aFirstCard are left out. aAlloc: the
  // capacity before (added) or after (removed).
  void RecordEntries(bool aAdded, const CVelumArray& aIndex, qint32 aFrom, qint32 aEnd, qint32 aFirstCard,
                     qint32 aAlloc) const;
  void DropHalfAdded(CVelumCard& aCard, CVelumControlSet& aBackground, bool aByKey);
  void AddName(const CVelumCard& aCard);
  void RemoveName(const CVelumCard& aCard);
  [[nodiscard]] qint32 EntryOf(const CVelumCard& aCard);
  [[nodiscard]] qint32 EntryAmongEquals(qint32 aFrom, qint32 aEnd, qint32 aId);
  void WriteNameField(CVelumCard& aCard);
  void DropEntry(CVelumArray& aIndex, const QString& aKey, qint32 aId);
  void AddKey(CVelumCard& aCard, CVelumControlSet& aBackground);
  void RemoveKey(CVelumCard& aCard, CVelumControlSet& aBackground);
  // Whether the cards of a background stand in the order of the index.
  [[nodiscard]] static bool IsKeptBy(const CVelumControlSet& aBackground, const CVelumArray& aIndex);
  void FillKeys(CVelumArray& aIndex, const CVelumSortKey& aKey);
  [[nodiscard]] bool FollowKeys(const CVelumControlSet& aBackground, const CVelumArray& aIndex);
  [[nodiscard]] Ref<CVelumCard> FirstOfKept(const Ref<CVelumCard>& aCard) const;
  [[nodiscard]] Ref<CVelumCard> KnownBefore(const Ref<CVelumCard>& aBeforeCard,
                                            const CVelumCard& aCard) const;
  void InsertCardOrder(const Ref<CVelumCard>& aCard, const Ref<CVelumCard>& aBeforeCard);
  [[nodiscard]] qint32 NumBefore(qint32 aPos);
  void RemoveCardOrder(const CVelumCard& aCard);
  void RecordOrder() const;
  void RenumberOrderIndex(qint32 aStep);
  void PlaceByKey(const Ref<CVelumCard>& aCard, bool aIsNew, const CVelumArray& aKeyIndex, qint32 aIndex);
  [[nodiscard]] Ref<CVelumCard> NextByKey(const CVelumArray& aKeyIndex, qint32 aIndex) const;
  void SetOrder(const std::vector<qint32>& aIds);
  void SortIntoIndex(CVelumArray& aIndex, const CVelumSortKey& aKey, qint32 aBackgroundId);
  void CheckOrderIndex(const TIndexSums& aSums);
  void RenewStaleKeys(const TKeySum& aSum);
  void CheckOrderIndexFor(CVelumControlSet& aBackground);
  void SwapForCorrection(qint32 aSlot, const CVelumCard& aCard1);
  void ReportAllChanged(const CVelumControlSet& aBackground);
  [[nodiscard]] bool FirstIsLastChanged(const CVelumControlSet& aBackground) const;
  [[nodiscard]] bool IsLastChanged(const CVelumCard& aCard) const;
  void BuildCardFinder();
  void DeleteKeysOf(qint32 aBackgroundId);
  void FlagCardListRefs(const CVelumControlSet& aBackground, const CVelumControl& aControl);
  void BulkNames(qint32 aStart);
  [[nodiscard]] bool BulkKeys(CVelumControlSet& aBackground, qint32 aStart);
  void BulkOrder(qint32 aStart);

  void InternalizeArrays(CVelumFile& aFile);
  void InternalizeArraysXml(CVelumXmlParser& aParser);
  void CheckArrays() const;
  void LinkLoaded();
  void LinkBackgrounds();
  void LinkCards(TIndexSums& aSums);
  void MendCard(CVelumCard& aCard, qint32 aId, qint32 aNum);
  [[nodiscard]] std::vector<qint32> LinkOrder();
  void LinkKeys();
  [[nodiscard]] TIndexSums BeginSums() const;
  static void SumUp(CVelumCard& aCard, TIndexSums& aSums);
  void MendNames(const TIndexSums& aSums);
  void NoteProblem(const QString& aText);
  void NoteProblems(const QStringList& aTexts);
  void NewListBasis() { ++iListBasis; }

  QString iDescr;
  QString iFilename;
  Ref<CVelumArray> iCard;
  CVelumCardOrder iOrder;
  std::vector<qint32> iNumsById; // of the order, while the cards are written
  Ref<CVelumArray> iNameIndex;
  Ref<CVelumArray> iBackground;
  Ref<CVelumArray> iSortKey;
  Ref<CVelumArray> iKeyIndex;
  Ref<CVelumIdGen> iIdGen;
  Ref<CVelumBlobStore> iBlobStore;
  Ref<CVelumFont> iListFont;
  TVelumChangeInfo iChangeInfo;
  qint32 iLastChangedIn =
      ENoInt; // the last changed card is the last one of this background; ENoInt: iChangeInfo
  qint32 iOrderCorrections = 0;
  static constexpr qint32 EBulkOff = std::numeric_limits<qint32>::max();
  qint32 iBulkStart = EBulkOff; // id of the first card added in bulk mode
  int iListUpdates = 0;
  std::vector<Ref<CVelumCard>> iListRun; // cards whose lists were computed in the outermost update
  bool iListsStale = false;              // SetCardListsDirty was called in it
  quint32 iListBasis = 1;
  CVelumCardFinder iCardFinder;
  QStringList iLoadProblems;
  mutable Ref<CVelumArray> iOrderView; // what OrderIndex handed out
};

// The open stack; nothing when none is.
extern Ref<CVelumStack> gStack;
