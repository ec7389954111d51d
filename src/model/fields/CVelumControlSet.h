// A background: the list of field and command definitions of its cards.
#pragma once

#include "model/fields/CVelumControl.h"

// Flags of a background, as they stand in files.
enum ECse : qint32 {
  ECseCardNameInList = 1,
  ECseKeepCardsSorted = 2,
  ECseShowWallPaper = 4,
  ECseTileWallPaper = 8,
  ECseShowCardName = 16,
  ECseScrollable = 32,
  ECseDenseLayout = 64,
};

struct TChildAllocs;

class CVelumControlSet final : public CVelumScripted {
public:
  CVelumControlSet();
  CVelumControlSet(const QString& aName, qint32 aId);
  ~CVelumControlSet() override;

  [[nodiscard]] QString ObjDescr() const override;
  [[nodiscard]] TDocAddress Address() const override { return {EDocBackground, iId}; }
  [[nodiscard]] const QString& Descr() const { return iDescr; }
  void SetDescr(const QString& aDescr);
  [[nodiscard]] qint32 NumControls() const { return iSet->Count(); }
  [[nodiscard]] qint32 KeyIndexId() const { return iKeyIndexId; }
  void SetKeyIndexId(qint32 aId);
  // The key index of a kept-sorted background, looked up in the stack that owns it.
  [[nodiscard]] Ref<CVelumArray> KeyIndex();
  [[nodiscard]] qint32 WallPaperId() const { return iWallPaperId; }
  void SetWallPaperId(qint32 aId);
  // The stack that owns this background, or null. Not counted; the stack clears it when it goes.
  [[nodiscard]] CVelumStack* Stack() const { return iStack; }
  void SetStack(CVelumStack* aStack) { iStack = aStack; }
  // A number that grows whenever the cards' computed lists of this background went stale: cards that were
  // computed at a lower stamp are dirty.
  [[nodiscard]] quint32 ListStamp() const { return iListStamp; }
  void RaiseListStamp() { ++iListStamp; }
  // Cards of this background in the stack's order index; kept by the stack.
  [[nodiscard]] qint32 NumCards() const { return iNumCards; }
  void SetNumCards(qint32 aNum) { iNumCards = aNum; }

  [[nodiscard]] bool GetFirstControl(Ref<CVelumControl>& aControl, qint32& aIndex) const;
  [[nodiscard]] bool GetNextControl(Ref<CVelumControl>& aControl, qint32& aIndex) const;
  [[nodiscard]] bool GetControl(qint32 aId, Ref<CVelumControl>& aControl) const;
  [[nodiscard]] bool GetControlByName(const QString& aName, Ref<CVelumControl>& aControl) const;
  // The first control with any bit of aMask.
  [[nodiscard]] bool GetControlByFlag(qint32 aMask, Ref<CVelumControl>& aControl) const;
  [[nodiscard]] bool GetControlByNum(qint32 aNum, Ref<CVelumControl>& aControl) const;
  // Whether a control is a card list.
  [[nodiscard]] bool WithCardList() const;
  // What the last load found wrong with the index of the ids, which it then built anew; empty if nothing.
  [[nodiscard]] const QString& LoadProblem() const { return iLoadProblem; }
  // Hot paths: the control at a display position / of an id, uncounted; null when there is none.
  [[nodiscard]] CVelumControl* ControlAt(qint32 aIndex) const;
  [[nodiscard]] CVelumControl* FindControl(qint32 aId) const;
  // aBeforeId ENoInt appends.
  void AddControl(const Ref<CVelumControl>& aControl, qint32 aBeforeId);
  void DeleteControl(qint32 aId);
  [[nodiscard]] bool Changed() const override;
  void SetChanged(bool aChanged) override;

  void Internalize(CVelumFile& aFile) override;
  void Externalize(CVelumFile& aFile) override;
  [[nodiscard]] qint64 ExtLen() const override;
  [[nodiscard]] QStringView XmlTag() const override { return u"ControlSet"; }
  void InternalizeXml(CVelumXmlParser& aParser) override;
  void ExternalizeXml(CVelumXmlWriter& aWriter) override;

private:
  friend class CVelumReplay; // raw access for changes

  void RecordControl(bool aAdded, CVelumControl& aControl, qint32 aPlace, const TChildAllocs& aAllocs) const;
  void CheckLoaded();
  void SetOwners(CVelumControlSet* aOwner);
  void CheckSet() const;
  [[nodiscard]] qint32 DropEmptySlots();
  [[nodiscard]] bool IdIndexAgrees() const;
  void RebuildIdIndex();

  QString iDescr;
  Ref<CVelumArray> iSet;     // controls in display order
  Ref<CVelumArray> iIdIndex; // control id to index in iSet
  qint32 iKeyIndexId = ENoInt;
  Ref<CVelumArray> iKeyIndex;
  qint32 iWallPaperId = ENoInt;
  CVelumStack* iStack = nullptr;
  quint32 iListStamp = 1;
  qint32 iNumCards = 0;
  QString iLoadProblem;
};
