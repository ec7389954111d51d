// The document: backgrounds, cards, sort keys, key indexes, blobs, and the order and name indexes.
#pragma once

#include "model/CVelumBlobStore.h"
#include "model/CVelumCard.h"
#include "model/CVelumIdGen.h"
#include "model/CVelumSortKey.h"

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
  [[nodiscard]] const QString& Descr() const { return iDescr; }
  void SetDescr(const QString& aDescr);
  [[nodiscard]] const QString& Filename() const { return iFilename; }
  void SetFilename(const QString& aFilename);
  [[nodiscard]] Ref<CVelumFont> ListFont() const { return iListFont; }
  void SetListFont(const Ref<CVelumFont>& aFont);
  [[nodiscard]] qint32 NumCards() const { return iOrderIndex->Count(); }
  [[nodiscard]] CVelumIdGen& IdGen() const { return *iIdGen; }
  [[nodiscard]] Ref<CVelumBlobStore> BlobStore() const { return iBlobStore; }
  // Only an empty slot may be filled: asserts "nothing".
  void SetBlobStore(const Ref<CVelumBlobStore>& aStore);
  [[nodiscard]] bool Changed() const override;
  void SetChanged(bool aChanged) override;
  // Clears the stack's own mark alone.
  void ResetChanged();
  [[nodiscard]] qint32 OrderCorrections() const { return iOrderCorrections; }
  [[nodiscard]] TVelumChangeInfo ChangeInfo() const { return iChangeInfo; }
  void ResetChangeInfo();

  void AddBackground(const Ref<CVelumControlSet>& aBackground);
  // Nothing when not found.
  [[nodiscard]] Ref<CVelumControlSet> Background(qint32 aId) const;
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
  void PrepareForSave();

  // Bulk adding, for imports: cards are appended without touching the indexes, which are built once at the
  // end. Nothing may be looked up in between.
  void BeginBulk(qint32 aExpected);
  void EndBulk();

  // Read access to the indexes, for checks.
  [[nodiscard]] const CVelumArray& Cards() const { return *iCard; }
  [[nodiscard]] const CVelumArray& OrderIndex() const { return *iOrderIndex; }
  [[nodiscard]] const CVelumArray& NameIndex() const { return *iNameIndex; }

  void Internalize(CVelumFile& aFile) override;
  void Externalize(CVelumFile& aFile) override;
  [[nodiscard]] qint64 ExtLen() const override;

private:
  void InsertCardOrder(const Ref<CVelumCard>& aCard, const Ref<CVelumCard>& aBeforeCard);
  void RenumberOrderIndex(qint32 aStep);
  void CheckOrderIndex();
  void CheckOrderIndexFor(const Ref<CVelumControlSet>& aBackground);

  QString iDescr;
  QString iFilename;
  Ref<CVelumArray> iCard;
  Ref<CVelumArray> iOrderIndex;
  Ref<CVelumArray> iNameIndex;
  Ref<CVelumArray> iBackground;
  Ref<CVelumArray> iSortKey;
  Ref<CVelumArray> iKeyIndex;
  Ref<CVelumIdGen> iIdGen;
  Ref<CVelumBlobStore> iBlobStore;
  Ref<CVelumFont> iListFont;
  TVelumChangeInfo iChangeInfo;
  qint32 iOrderCorrections = 0;
};

// The open stack; nothing when none is.
extern Ref<CVelumStack> gStack;

namespace CVelumModel {
// Installs the object factory of the model (CVelumSeams). Called once at start.
void Install();
} // namespace CVelumModel
