// One record of a stack: the values of its background's fields that differ from "unset".
#pragma once

#include "model/fields/CVelumControlSet.h"

class CVelumCard final : public CVelumScripted {
public:
  // Allocated only: for Internalize.
  CVelumCard();
  CVelumCard(const QString& aName, const Ref<CVelumControlSet>& aBackground);

  [[nodiscard]] QString ObjDescr() const override;
  [[nodiscard]] TDocAddress Address() const override { return {EDocCard, iId}; }
  // Does not touch the name index: renaming a card of a stack goes through CVelumStack::RenameCard.
  void SetName(const QString& aName) override;
  // The card's number in the order of its stack; ENoInt until added.
  [[nodiscard]] qint32 OrderNum() const;
  // For loaders; the number of a card that stands in the order of a stack does not change by it.
  void SetOrderNum(qint32 aNum);
  // Owner, or null; not counted. The stack clears it when the card or the stack goes.
  [[nodiscard]] CVelumStack* Stack() const { return iStack; }
  void SetStack(CVelumStack* aStack) { iStack = aStack; }
  // Whether the computed lists of this card are stale.
  [[nodiscard]] bool Dirty() const;
  void SetDirty(bool aDirty);
  // Days; the setters do not mark the card changed (they exist for loaders and importers).
  [[nodiscard]] double CreDate() const;
  [[nodiscard]] double CreTime() const;
  [[nodiscard]] double ModDate() const;
  [[nodiscard]] double ModTime() const;
  void SetCreDate(double aDate);
  void SetCreTime(double aTime);
  void SetModDate(double aDate);
  void SetModTime(double aTime);
  // Control id to value.
  [[nodiscard]] const CVelumArray& Value() const { return iValue; }
  // The same to be filled, of a card that stands in no stack yet; host error 5 of another one.
  [[nodiscard]] CVelumArray& NewValues();
  // Another text in place of one that a list field has, which is computed: a file holds less than memory.
  // aChanged is the mark of the values afterwards.
  void SetComputedText(qint32 aControlId, const QString& aText, bool aChanged);
  // Nothing without a stack.
  [[nodiscard]] Ref<CVelumControlSet> Background() const;
  void SetBackground(const Ref<CVelumControlSet>& aBackground);
  [[nodiscard]] qint32 BackgroundId() const { return iBackgroundId; }
  // Nothing when not found.
  [[nodiscard]] Ref<CVelumControl> ControlById(qint32 aId) const;
  // Computes the card list fields anew.
  void UpdateCardLists();
  // Whether the card holds a value of its own for this control.
  [[nodiscard]] bool ControlValDef(qint32 aId) const;
  void DeleteControlVal(qint32 aId);
  // Gives a new card its first value of a field: the default, else the zero of the type.
  void InitVal(const Ref<CVelumControl>& aControl);
  void InitAllVal();
  [[nodiscard]] bool Changed() const override;
  void SetChanged(bool aChanged) override;

  // The card's own value (which may be an undefined one), else the control's default; with aWithZero an
  // undefined default becomes the zero of the type.
  [[nodiscard]] TVelumValue GetControlVal(qint32 aId, bool aWithZero);
  // The own value, where reading it needs nothing to be computed; else null. Valid until the card changes.
  [[nodiscard]] const TVelumValue* Settled(qint32 aId) const;
  // The change hub: blob counts, key indexes, order, name, dependent lists, dates. An undefined value for a
  // field without a value of its own changes nothing.
  void SetControlVal(qint32 aId, const TVelumValue& aVal);
  // The same for a control that is known to be one of the card's background.
  void SetControlVal(const CVelumControl& aControl, const TVelumValue& aVal);

  void Internalize(CVelumFile& aFile) override;
  void Externalize(CVelumFile& aFile) override;
  [[nodiscard]] qint64 ExtLen() const override;
  [[nodiscard]] QStringView XmlTag() const override { return u"Card"; }
  void InternalizeXml(CVelumXmlParser& aParser) override;
  void ExternalizeXml(CVelumXmlWriter& aWriter) override;

private:
  friend class CVelumReplay; // raw access for changes
  friend class CVelumStack;  // shares the text of its name index, and knows the order number

  [[nodiscard]] CVelumControlSet* FindBackground() const;
  [[nodiscard]] TVelumValue DefaultVal(qint32 aId, bool aWithZero) const;
  [[nodiscard]] TVelumValue InitialText(const CVelumControl& aControl);
  [[nodiscard]] TVelumValue InitialVal(const CVelumControl& aControl);
  [[nodiscard]] bool StoreVal(qint32 aId, const TVelumValue& aVal);
  void CountBlob(const TVelumValue& aVal, bool aUp);
  void RecordVal(qint32 aId, const TVelumValue* aOld, const TVelumValue* aNew, qint32 aAlloc) const;
  void DropVal(qint32 aId);
  void DropBlobs();
  void UpdateCardList(CVelumControl& aControl);
  [[nodiscard]] bool ValuesAscend() const;
  void SortValues();
  void TakeDefaultList(CVelumControl& aControl);
  void Touch();

  // Rare states in one byte.
  enum EState : quint8 {
    EDirty = 1,
    EUpdating = 2,
    EUnsorted = 4, // the values on file were not in order
  };

  quint8 iState = 0;
  qint32 iOrderNum = ENoInt;
  qint32 iBackgroundId = ENoInt;
  // ListStamp of the background when the lists were computed; that of a new background at first.
  quint32 iListStamp = 1;
  CVelumStack* iStack = nullptr;
  mutable CVelumArray iValue; // a part of the card, and referred to by nobody else
  // As yyyymmdd and hhmmss, the form of the file.
  qint32 iCreDate = ENoInt;
  qint32 iCreTime = ENoInt;
  qint32 iModDate = ENoInt;
  qint32 iModTime = ENoInt;
};
