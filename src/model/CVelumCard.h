// One record of a stack: the values of its background's fields that differ from "unset".
#pragma once

#include "model/CVelumControlSet.h"

class CVelumCard final : public CVelumScripted {
public:
  CVelumCard();
  CVelumCard(const QString& aName, const Ref<CVelumControlSet>& aBackground);

  [[nodiscard]] QString ObjDescr() const override;
  // Does not touch the name index: renaming a card of a stack goes through CVelumStack::RenameCard.
  void SetName(const QString& aName) override;
  [[nodiscard]] qint32 OrderNum() const { return iOrderNum; }
  void SetOrderNum(qint32 aNum);
  // Owner, or null; not counted.
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
  [[nodiscard]] CVelumArray& Value() const { return *iValue; }
  // Nothing without a stack.
  [[nodiscard]] Ref<CVelumControlSet> Background() const;
  void SetBackground(const Ref<CVelumControlSet>& aBackground);
  [[nodiscard]] qint32 BackgroundId() const { return iBackgroundId; }
  [[nodiscard]] Ref<CVelumControl> ControlById(qint32 aId) const;
  void UpdateCardLists();
  // Whether the card holds a value of its own for this control.
  [[nodiscard]] bool ControlValDef(qint32 aId) const;
  void DeleteControlVal(qint32 aId);
  void InitVal(const Ref<CVelumControl>& aControl);
  void InitAllVal();
  [[nodiscard]] bool Changed() const override;
  void SetChanged(bool aChanged) override;

  // The card's own value, else the control's default; with aWithZero an undefined result becomes the zero.
  [[nodiscard]] TVelumValue GetControlVal(qint32 aId, bool aWithZero);
  // The change hub: blob counts, key indexes, order, name, dependent lists, dates.
  void SetControlVal(qint32 aId, const TVelumValue& aVal);

  void Internalize(CVelumFile& aFile) override;
  void Externalize(CVelumFile& aFile) override;
  [[nodiscard]] qint64 ExtLen() const override;

private:
  qint32 iOrderNum = ENoInt;
  qint32 iBackgroundId = ENoInt;
  CVelumStack* iStack = nullptr;
  Ref<CVelumArray> iValue;
  quint32 iListStamp = 0; // ListStamp of the background when the lists were computed
  bool iDirty = false;
  // As yyyymmdd and hhmmss, the form of the file.
  qint32 iCreDate = ENoInt;
  qint32 iCreTime = ENoInt;
  qint32 iModDate = ENoInt;
  qint32 iModTime = ENoInt;
};
