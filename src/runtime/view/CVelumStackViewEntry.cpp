// The part of CVelumStackView that keeps what is being typed: entries that are no value of their field, and
// whatever stands in the field that has the focus while the window is laid out anew.
#include "core/CVelumEntry.h"
#include "core/CVelumFieldTypes.h"
#include "core/CVelumValue.h"
#include "core/text/CVelumLocale.h"
#include "runtime/view/CVelumGenForm.h"
#include "runtime/view/CVelumStackView.h"

#include <QScopedValueRollback>

namespace {

// A value as this desktop writes it.
QString Example(EVal aValType) {
  switch (aValType) {
  case EValInt:
    return u"1234"_s;
  case EValReal:
    return CVelumLocale::Real(1234.5, 1, true);
  case EValDate:
    return CVelumLocale::ShortDate(CVelumValue::Today());
  default:
    return CVelumLocale::LongTime(0.75);
  }
}

QString WhatItIsNot(EVal aValType) {
  switch (aValType) {
  case EValInt:
    return CVelumGenForm::tr("\"%1\" is no whole number that this field can hold, such as %2.");
  case EValReal:
    return CVelumGenForm::tr("\"%1\" is no number as they are written here, such as %2.");
  case EValDate:
    return CVelumGenForm::tr("\"%1\" is no date as they are written here, such as %2.");
  default:
    return CVelumGenForm::tr("\"%1\" is no time as they are written here, such as %2.");
  }
}

QString NoteText(const CVelumControl& aControl, const QString& aEntry) {
  constexpr qsizetype most = 40;
  const QString entry = aEntry.size() > most ? aEntry.first(most) + u"..."_s : aEntry;
  const EVal type = CVelumFieldTypes::Of(aControl.ConType()).iValType;
  return WhatItIsNot(type).arg(entry.simplified(), Example(type)) + u' ' +
         CVelumGenForm::tr("Esc brings back what was there.");
}

} // namespace

// The field that has the focus, if what was typed into it is no value of it.
Ref<CVelumControl> CVelumStackView::UnreadControl() const {
  if (!iCurObjChanged || !iCurObj || !iCurCard || !Bound(iCurObj)) return nullptr;
  Ref<CVelumControl> control = iCardView->VelumControl(iCurObj);
  // The field may have been deleted meanwhile.
  if (control->Flag(EConReadOnly) || iCurCard->ControlById(control->Id()) != control) return nullptr;
  // What is shown for the stored value may be typed back, whatever it looks like.
  const bool fine = iCardView->EntryIsWhole(*control) ||
                    iCardView->EntryIsOf(*control, iCurCard->GetControlVal(control->Id(), false));
  return fine ? nullptr : control;
}

bool CVelumStackView::RefuseEntry() {
  const Ref<CVelumControl> control = UnreadControl();
  if (!control) return false;
  CVelumBaseControl* base = iCurObj;
  base->ShowNote(NoteText(*control, base->Text()));
  // Whatever has the focus by now may be just getting it.
  const auto takeFocus = [base] {
    if (!gStackView || gStackView->CurObj() != base || !gStackView->UnreadControl()) return;
    gStackView->SetFocusToCardView();
    base->SetFocus();
  };
  QMetaObject::invokeMethod(base, takeFocus, Qt::QueuedConnection);
  return true;
}

bool CVelumStackView::TakeBackEntry() {
  const Ref<CVelumControl> control = UnreadControl();
  if (!control) return false;
  iCurObjChanged = false;
  iCurObj->HideNote();
  ShowStored(*control);
  return true;
}

// What is kept over a new layout.
struct CVelumStackView::TKept {
  Ref<CVelumControl> iControl; // the field with the focus
  int iCursor = 0;
  bool iUnread = false; // with an entry that cannot be taken
  QString iEntry;
  QString iNote;
};

CVelumStackView::TKept CVelumStackView::KeepEntry() const {
  TKept kept;
  const Ref<CVelumControl> unread = UnreadControl();
  kept.iUnread = unread != nullptr;
  kept.iControl = unread ? unread : iCardView->FocusControl();
  if (!iCurObj) return kept;
  kept.iCursor = iCurObj->Cursor();
  kept.iEntry = iCurObj->Text();
  kept.iNote = iCurObj->Note();
  return kept;
}

void CVelumStackView::RestoreEntry(const TKept& aKept) {
  auto* base = aKept.iControl ? qobject_cast<CVelumBaseControl*>(aKept.iControl->BaseControl()) : nullptr;
  if (!Bound(base)) return;
  if (aKept.iUnread) {
    const QScopedValueRollback noChange(iNoChange, true);
    base->SetText(aKept.iEntry);
    iCurObj = base;
    iCurObjChanged = true;
    if (!aKept.iNote.isEmpty()) base->ShowNote(aKept.iNote);
  }
  if (base == iCurObj) base->SetCursor(aKept.iCursor);
}

void CVelumStackView::Relayout() {
  TakeLines();
  if (iCurObjChanged && !UnreadControl()) ValidateCurControl();
  if (!iCurCard) return;
  const TKept kept = KeepEntry();
  ForgetFocus();
  iCardView->ResetCurSet();
  ShowCurCard();
  FocusCurrent();
  RestoreEntry(kept);
}
