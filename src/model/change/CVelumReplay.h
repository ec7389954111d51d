// Raw access to a document, for changes that are made again or taken back: writes just what it is told, and
// runs nothing of what follows from a change when a user makes it.
#pragma once

#include "model/CVelumStack.h"
#include "model/change/CVelumChildChange.h"
#include "model/change/CVelumKeyChange.h"
#include "model/change/CVelumOrderChange.h"
#include "model/change/TDocAddress.h"

class CVelumRecorder;

// What a replay touched: what the views need to know.
struct TReplayed {
  bool iStructure = false;    // backgrounds, fields, the stack itself
  bool iValues = false;       // values of cards, their names, fonts and scripts
  bool iCards = false;        // cards came or went
  bool iSortKeys = false;     // sort keys
  bool iOrder = false;        // the order of cards that stay
  qint32 iCardId = ENoInt;    // a card that was touched last, and still is there
  qint32 iControlId = ENoInt; // a field whose value was touched last
};

// Every operation tells whether the document was as the change expects it; if not, it changed nothing.
// Nothing is recorded while one lives. aAlloc, wherever it stands, is the capacity to be restored, or ENoInt.
class CVelumReplay {
public:
  explicit CVelumReplay(CVelumStack& aStack);
  ~CVelumReplay();
  CVelumReplay(const CVelumReplay&) = delete;
  CVelumReplay& operator=(const CVelumReplay&) = delete;

  [[nodiscard]] bool SetMember(TDocAddress aObj, EMember aMember, const TMemberVal& aOld,
                               const TMemberVal& aNew);
  // Null stands for no value.
  [[nodiscard]] bool SetValue(qint32 aCardId, qint32 aControlId, const TVelumValue* aOld,
                              const TVelumValue* aNew, qint32 aAlloc);
  void SetMoment(qint32 aCardId, qint32 aDate, qint32 aTime);
  [[nodiscard]] bool AddKey(qint32 aIndexId, qint32 aPlace, const QString& aKey, qint32 aCardId,
                            qint32 aAlloc);
  [[nodiscard]] bool RemoveKey(qint32 aIndexId, qint32 aPlace, const QString& aKey, qint32 aCardId,
                               qint32 aAlloc);
  [[nodiscard]] bool AddKeys(qint32 aIndexId, const std::vector<TKeyEntry>& aEntries, qint32 aAlloc);
  [[nodiscard]] bool RemoveKeys(qint32 aIndexId, const std::vector<TKeyEntry>& aEntries, qint32 aAlloc);
  [[nodiscard]] bool AddToOrder(qint32 aCardId, qint32 aAfterId, qint32 aNum, qint32 aAlloc);
  [[nodiscard]] bool RemoveFromOrder(qint32 aCardId, qint32 aAfterId, qint32 aNum, qint32 aAlloc);
  [[nodiscard]] bool SetOrder(const CVelumCardOrder::TState& aOld, const CVelumCardOrder::TState& aNew);
  // aCount: slots of the table afterwards, or ENoInt for what follows from the id.
  [[nodiscard]] bool PutCard(const Ref<CVelumCard>& aCard, qint32 aId, qint32 aCount, qint32 aAlloc);
  // aCard becomes the card that stood there, which is another object if the change was read from bytes.
  [[nodiscard]] bool TakeCard(qint32 aId, Ref<CVelumCard>& aCard, qint32 aCount, qint32 aAlloc);
  // The cards from aFirst on go down by aGap ids, of a table of aCount slots; and up again.
  [[nodiscard]] bool CloseGap(qint32 aFirst, qint32 aGap, qint32 aCount);
  [[nodiscard]] bool OpenGap(qint32 aFirst, qint32 aGap, qint32 aCount, qint32 aAlloc);
  [[nodiscard]] bool AddChild(const CVelumChildChange& aChange, TChildAllocs aAllocs);
  [[nodiscard]] bool RemoveChild(CVelumChildChange& aChange, TChildAllocs aAllocs);

  // Whether the table of cards, an index or the order has the size and the capacity that a change found.
  [[nodiscard]] bool FitsCards(qint32 aCount, qint32 aAlloc) const;
  [[nodiscard]] bool FitsIndex(qint32 aIndexId, qint32 aAlloc) const;
  [[nodiscard]] bool FitsOrder(qint32 aAlloc) const;

  // To be called when all is replayed: what is computed from the document goes stale, the flags of fields are
  // set anew. Returns what was touched.
  TReplayed Finish();

  // The object of an address in a stack; null when there is none.
  [[nodiscard]] static CVelumObject* Find(CVelumStack& aStack, TDocAddress aObj);
  // The parts of a sort key as the value of a member.
  [[nodiscard]] static QByteArray PartsOf(const CVelumSortKey& aKey);
  // Stored forms of what changes hold.
  static void WriteCard(CVelumFile& aFile, CVelumCard& aCard);
  [[nodiscard]] static Ref<CVelumCard> ReadCard(CVelumFile& aFile);
  static void WriteChild(CVelumFile& aFile, EChild aKind, CVelumStored& aChild);
  [[nodiscard]] static Ref<CVelumStored> ReadChild(CVelumFile& aFile, EChild aKind, qint32 aId);

private:
  [[nodiscard]] CVelumArray* Index(qint32 aIndexId) const;
  [[nodiscard]] CVelumArray* Collection(EChild aKind) const;
  [[nodiscard]] bool AddControl(const CVelumChildChange& aChange, TChildAllocs aAllocs);
  [[nodiscard]] bool RemoveControl(CVelumChildChange& aChange, TChildAllocs aAllocs);
  [[nodiscard]] bool AddBlob(const CVelumChildChange& aChange);
  [[nodiscard]] bool RemoveBlob(CVelumChildChange& aChange);
  void PadCards(qint32 aCount);
  [[nodiscard]] bool IsGap(qint32 aFrom, qint32 aEnd) const;
  void NoteChild(EChild aKind);
  void NoteMember(TDocAddress aObj, EMember aMember);
  void NoteValue(CVelumCard& aCard, qint32 aControlId);
  // Give aTake the slot of a member; false if the class has none of that name.
  template <class TTake> static bool AtScripted(CVelumScripted& aObj, EMember aMember, TTake aTake);
  template <class TTake> static bool AtControl(CVelumControl& aObj, EMember aMember, TTake aTake);
  template <class TTake> static bool AtBackground(CVelumControlSet& aObj, EMember aMember, TTake aTake);
  template <class TTake> static bool AtCard(CVelumCard& aObj, EMember aMember, TTake aTake);
  template <class TTake> static bool AtStack(CVelumStack& aObj, EMember aMember, TTake aTake);
  template <class TTake> static bool AtBlob(CVelumBlob& aObj, EMember aMember, TTake aTake);
  static void WriteBlob(CVelumFile& aFile, CVelumBlob& aBlob);
  [[nodiscard]] static Ref<CVelumBlob> ReadBlob(CVelumFile& aFile, qint32 aId);
  [[nodiscard]] static bool SetParts(CVelumSortKey& aKey, const QByteArray& aParts);
  [[nodiscard]] static bool ExchangeKey(CVelumSortKey& aKey, EMember aMember, const TMemberVal& aOld,
                                        const TMemberVal& aNew);
  [[nodiscard]] static bool ExchangeControl(CVelumControl& aControl, EMember aMember, const TMemberVal& aOld,
                                            const TMemberVal& aNew);
  [[nodiscard]] static TMemberVal ValueOf(CVelumCard& aCard, EMember aMember);
  [[nodiscard]] bool ExchangeCard(CVelumCard& aCard, EMember aMember, const TMemberVal& aOld,
                                  const TMemberVal& aNew);
  [[nodiscard]] bool ExchangeBlob(qint32 aId, EMember aMember, const TMemberVal& aOld,
                                  const TMemberVal& aNew);

  CVelumStack& iStack;
  CVelumRecorder* iRecorder; // what listened before
  TReplayed iDone;
};
