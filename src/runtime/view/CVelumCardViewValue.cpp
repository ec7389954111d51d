// The part of CVelumCardView that shows and takes values.
#include "core/CVelumChecked.h"
#include "core/CVelumEntry.h"
#include "core/CVelumValue.h"
#include "runtime/CVelumPictureLib.h"
#include "runtime/lists/CVelumListBox.h"
#include "runtime/view/CVelumCardView.h"
#include "runtime/view/CVelumGenForm.h"
#include "toolkit/CVelumBaseCheckBox.h"
#include "toolkit/CVelumBaseComboBox.h"
#include "toolkit/CVelumBaseLabel.h"
#include "toolkit/CVelumBasePictureBox.h"
#include "toolkit/CVelumBaseRichTextBox.h"

#include <QScopedValueRollback>

namespace {

const QString gSet = u"SetBaseControlVal"_s;
const QString gGet = u"GetBaseControlVal"_s;

CVelumBaseControl* BaseOf(const CVelumControl& aControl) {
  return qobject_cast<CVelumBaseControl*>(aControl.BaseControl());
}

// The text of a value that must be one; an undefined value counts as the empty text.
QString TextOf(const CVelumControl& aControl, const TVelumValue& aVal, const QString& aDetail) {
  if (aVal.Type() == EValUndef) return {};
  CVelumError::AssertObj(aVal.Type() == EValStr, &aControl, gSet, aDetail);
  return aVal.Str();
}

// A text that cannot be shown with its links is shown as it is stored, and the failure goes on.
void ShowWikiText(const CVelumControl& aControl, CVelumBaseRichTextBox& aBox, const QString& aText) {
  const Ref<CVelumWikiTextBoxBase> wiki = aControl.WikiTextBox();
  try {
    CVelumChecked::Deref(wiki).SetStr(aText);
  } catch (...) {
    aBox.SetText(aText);
    throw;
  }
  aBox.SetRtf(wiki->TextStr(), [wiki](int aPos, QString& aTarget) { return wiki->GetLink(aPos, aTarget); });
}

void ShowCheckBox(const CVelumControl& aControl, CVelumBaseCheckBox& aBox, const TVelumValue& aVal,
                  bool& aShowing) {
  const QScopedValueRollback showing(aShowing, true);
  if (aVal.Type() != EValUndef)
    CVelumError::AssertObj(aVal.Type() == EValBoolean, &aControl, gSet, u"aVal.iType"_s);
  aBox.SetValue(aVal.Boolean() ? 1 : 0);
}

TVelumValue CheckBoxVal(const CVelumControl& aControl, const CVelumBaseCheckBox& aBox) {
  CVelumError::AssertObj(aBox.Value() == 0 || aBox.Value() == 1, &aControl, gGet, u"GetBaseControlVal 01"_s);
  return TVelumValue::OfBoolean(aBox.Value() == 1);
}

// The list box of a control that is shown by a combo box; null when it has none.
CVelumListBox* ComboListOf(const CVelumControl& aControl) {
  const Ref<CVelumListBoxBase> box = aControl.ListBox();
  return box && box->LisType() == ELisCombo ? dynamic_cast<CVelumListBox*>(box.Get()) : nullptr;
}

// The text part of a combo box: a text, or a number.
QString ComboText(const CVelumControl& aControl, const TVelumValue& aVal) {
  if (aControl.ConType() == EConText) return TextOf(aControl, aVal, u"Partner str"_s);
  return CVelumValue::ValToExtText(aVal, aControl.FieldInfo());
}

void ShowComboText(CVelumListBox& aList, const QString& aText) {
  if (aText.isEmpty())
    aList.SetEmpty();
  else
    aList.SetComboText(aText);
}

// Numbers of a combo box are taken as numbers, which is all that their fields can store.
TVelumValue ComboVal(const CVelumControl& aControl, const CVelumBaseControl& aBase) {
  if (aControl.ConType() == EConList) return TVelumValue::OfStr(aControl.GetList());
  if (aControl.ConType() == EConText) return TVelumValue::OfStr(aBase.Text());
  return CVelumValue::ExtTextToVal(aBase.Text(), aControl.FieldInfo());
}

// Whether ShowValues shows the value of a field.
bool IsShown(const CVelumControl& aControl) {
  return aControl.Flag(EConComboList) || (aControl.ConType() != EConCommand && aControl.InCardView());
}

} // namespace

void CVelumCardView::ShowValues(CVelumCard& aCard, const CVelumBaseControl* aKeep) {
  const Ref<CVelumControlSet> set = aCard.Background();
  if (!set) return;
  if (set->Flag(ECseShowCardName) && iLayout.CardNameLabel()) iLayout.CardNameLabel()->SetText(aCard.Name());
  for (qint32 i = 0; i < set->NumControls(); ++i) {
    const Ref<CVelumControl> control = set->ControlAt(i);
    if (!control || !IsShown(*control) || (aKeep && control->BaseControl() == aKeep)) continue;
    SetBaseControlVal(*control, aCard.GetControlVal(control->Id(), false), aCard);
  }
}

void CVelumCardView::ShowBoundValues(CVelumCard& aCard) {
  if (iLayout.CardNameLabel()) iLayout.CardNameLabel()->SetText(aCard.Name());
  for (int i = 0; i < iLayout.NumControls(); ++i) {
    const Ref<CVelumControl> control = iLayout.ControlAt(i);
    if (!control->BaseControl() || !IsShown(*control)) continue;
    try {
      SetBaseControlVal(*control, aCard.GetControlVal(control->Id(), false), aCard);
    } catch (...) {
      // One field that cannot be shown does not leave another card's values in those behind it.
      CVelumError::CatchError(u"ShowBoundValues"_s);
    }
  }
}

void CVelumCardView::SetBaseControlVal(CVelumControl& aControl, const TVelumValue& aVal, CVelumCard& aCard) {
  CVelumBaseControl* base = BaseOf(aControl);
  AssertShown(base, aControl, u"SetBaseControlVal baseControl"_s);
  if (!base) return;
  if (aControl.Flag(EConCardName) && iLayout.CardNameLabel())
    iLayout.CardNameLabel()->SetText(CVelumValue::ValToExtText(aVal, aControl.FieldInfo()));
  switch (aControl.BaseType()) {
  case EBaseTextBox:
    base->SetText(CVelumValue::ValToExtText(aVal, aControl.FieldInfo()));
    break;
  case EBaseRichTextBox:
    ShowRichText(aControl, aVal);
    break;
  case EBaseComboBox:
    ShowCombo(aControl, aVal, aCard);
    break;
  case EBaseCheckBox:
    ShowCheckBox(aControl, static_cast<CVelumBaseCheckBox&>(*base), aVal, ViewForm().iShowing);
    break;
  case EBaseButton:
    break;
  case EBaseListView:
    aControl.SetList(aCard.Stack(), TextOf(aControl, aVal, u"aVal.iType"_s), aControl.Flag(EConCardList));
    break;
  case EBasePictureBox:
    ShowPicture(aControl, static_cast<CVelumBasePictureBox&>(*base), aVal);
    break;
  default:
    CVelumError::AssertObj(false, &aControl, gSet, u"SetBaseControlVal iBaseType"_s);
  }
}

void CVelumCardView::AssertShown(bool aCond, const CVelumControl& aControl, const QString& aText) {
  if (aCond || iAsked.contains(aControl.Id())) return;
  iAsked.insert(aControl.Id());
  CVelumError::AssertObj(false, &aControl, gSet, aText);
}

void CVelumCardView::ShowRichText(const CVelumControl& aControl, const TVelumValue& aVal) {
  AssertShown(aVal.Type() == EValUndef || aVal.Type() == EValStr, aControl, u"aVal.iType"_s);
  auto& box = static_cast<CVelumBaseRichTextBox&>(*BaseOf(aControl));
  const QString text = CVelumValue::ValToExtText(aVal, aControl.FieldInfo());
  if (aControl.Flag(EConWikiText))
    ShowWikiText(aControl, box, text);
  else
    box.SetText(text);
}

void CVelumCardView::ShowPicture(const CVelumControl& aControl, CVelumBasePictureBox& aBox,
                                 const TVelumValue& aVal) {
  if (aVal.Type() != EValUndef)
    CVelumError::AssertObj(aVal.Type() == EValBlobId, &aControl, gSet, u"EValBlobId"_s);
  const Ref<CVelumBlobStore> store = iStack->BlobStore();
  if (store) CVelumLib::ShowPictureBlob(*store, aBox, aVal.Type() == EValUndef ? ENoInt : aVal.Int());
}

void CVelumCardView::ShowCombo(CVelumControl& aControl, const TVelumValue& aVal, CVelumCard& aCard) {
  const Ref<CVelumControlSet> set = aCard.Background();
  Ref<CVelumControl> partner;
  const bool found = set && set->GetControl(aControl.PartnerId(), partner);
  CVelumError::AssertObj(found, &aControl, gSet, u"SetBaseControlVal partner"_s);
  const bool isList = aControl.ConType() == EConList;
  CVelumListBox* list = found ? ComboListOf(isList ? aControl : *partner) : nullptr;
  if (!list) {
    // Without a list the text stands alone.
    if (!isList) BaseOf(aControl)->SetText(CVelumValue::ValToExtText(aVal, aControl.FieldInfo()));
    return;
  }
  if (isList) {
    aControl.SetList(aCard.Stack(), TextOf(aControl, aVal, u"aVal.iType"_s),
                     aControl.Flag(EConCardList) && !aControl.Flag(EConComboList));
    ShowComboText(*list, ComboText(*partner, aCard.GetControlVal(partner->Id(), false)));
  } else if (list->NumLines() > 0) {
    // While the list is empty, the text comes with it.
    ShowComboText(*list, ComboText(aControl, aVal));
  }
}

bool CVelumCardView::EntryIsWhole(const CVelumControl& aControl) const {
  const CVelumBaseControl* base = BaseOf(aControl);
  const bool typed =
      base && aControl.ConType() != EConList &&
      (base->Kind() == EBaseTextBox || base->Kind() == EBaseRichTextBox || base->Kind() == EBaseComboBox);
  return !typed || CVelumEntry::IsWhole(base->Text(), aControl.FieldInfo());
}

bool CVelumCardView::EntryIsOf(const CVelumControl& aControl, const TVelumValue& aVal) const {
  const CVelumBaseControl* base = BaseOf(aControl);
  return base && base->Text() == CVelumValue::ValToExtText(aVal, aControl.FieldInfo());
}

TVelumValue CVelumCardView::GetBaseControlVal(const CVelumControl& aControl) const {
  const CVelumBaseControl* base = BaseOf(aControl);
  if (!base) return TVelumValue::OfStr({});
  switch (aControl.BaseType()) {
  case EBaseTextBox:
  case EBaseRichTextBox:
    return CVelumValue::ExtTextToVal(base->Text(), aControl.FieldInfo());
  case EBaseComboBox:
    return ComboVal(aControl, *base);
  case EBaseCheckBox:
    return CheckBoxVal(aControl, static_cast<const CVelumBaseCheckBox&>(*base));
  case EBaseListView:
    return TVelumValue::OfStr(aControl.GetList());
  case EBaseButton:
  case EBasePictureBox:
    return {};
  default:
    CVelumError::AssertObj(false, &aControl, gGet, u"GetBaseControlVal iBaseType"_s);
    return {};
  }
}
