#include "runtime/view/CVelumCardLayout.h"

#include "core/CVelumChecked.h"
#include "core/CVelumFieldTypes.h"
#include "core/CVelumSeams.h"
#include "model/CVelumModelLib.h"
#include "runtime/CVelumIcons.h"
#include "runtime/CVelumRuntimeLib.h"
#include "runtime/view/CVelumFrameHost.h"
#include "runtime/view/CVelumGenForm.h"
#include "toolkit/CVelumBaseButton.h"
#include "toolkit/CVelumBaseCheckBox.h"
#include "toolkit/CVelumBaseComboBox.h"
#include "toolkit/CVelumBaseLabel.h"
#include "toolkit/CVelumBaseLine.h"
#include "toolkit/CVelumBaseListView.h"
#include "toolkit/CVelumBasePictureBox.h"
#include "toolkit/CVelumBaseRichTextBox.h"
#include "toolkit/CVelumBaseTextBox.h"

#include <algorithm>
#include <limits>

namespace {

constexpr float EButtonHeight = 375.0F;
// The next place in a row of buttons where there is none yet: a button never fits there.
constexpr float ENoRow = std::numeric_limits<float>::infinity();

// Picture of a standard command; empty for one that has none.
QString StdCmdPicture(qint16 aCmd) {
  switch (aCmd) {
  case EStdFirstCard:
    return u"FirstCard"_s;
  case EStdPrevCard:
    return u"PrevCard"_s;
  case EStdNextCard:
    return u"NextCard"_s;
  case EStdLastCard:
    return u"LastCard"_s;
  case EStdBackInHistory:
    return u"BackInHistory"_s;
  case EStdForwInHistory:
    return u"ForwInHistory"_s;
  case EStdShowCardList:
    return u"ShowCardList"_s;
  case EStdSelectCard:
    return u"SelectCard"_s;
  default:
    return {};
  }
}

qint16 EffVisLines(const CVelumControl& aControl) {
  return aControl.Flag(EConMaxHeight) ? qint16{1} : aControl.VisLines();
}

// Whether the first pass counts the label of a field for the label column.
bool HasLabel(const CVelumControl& aControl) {
  return !aControl.Flag(EConComboList) && aControl.InCardView() && aControl.ConType() != EConCommand &&
         !aControl.Label().isEmpty();
}

float AvgWidth(const CVelumControl& aControl) {
  return static_cast<float>(aControl.VisChar()) * CVelumSeams::Metrics().iAvgCharWidth;
}

// Lists and pictures: a line more than is asked for, and the padding of two fields.
float BlockHeight(const CVelumControl& aControl) {
  const TVelumMetrics& metrics = CVelumSeams::Metrics();
  return metrics.iCharHeight * static_cast<float>(EffVisLines(aControl) + 1) + 2 * metrics.iLabelWidth;
}

// What a field is called by those who hear the screen.
const QString& SpokenName(const CVelumControl& aControl) {
  return aControl.Label().isEmpty() ? aControl.Name() : aControl.Label();
}

} // namespace

qint32 CVelumCardLayout::BackColorOf(const CVelumCard& aCard) {
  if (aCard.BackColor() != ENoInt) return aCard.BackColor();
  const Ref<CVelumControlSet> set = aCard.Background();
  if (set && set->BackColor() != ENoInt) return set->BackColor();
  return aCard.Stack() ? aCard.Stack()->BackColor() : ENoInt;
}

Ref<CVelumControl> CVelumCardLayout::ControlAt(int aIndex) const {
  return aIndex >= 0 && aIndex < iNumControls ? iControls[static_cast<size_t>(aIndex)] : nullptr;
}

void CVelumCardLayout::Unbind() {
  const auto release = [](const Ref<CVelumControl>& aControl) {
    aControl->SetBaseControl(nullptr, ENoShort);
    aControl->SetBaseLabel(nullptr);
  };
  std::for_each(iControls.begin(), iControls.begin() + iNumControls, release);
  std::for_each(iPartners.begin(), iPartners.end(), release);
  iControls.fill(nullptr);
  iPartners.clear();
  iNumControls = 0;
  iCardNameLabel = nullptr;
}

void CVelumCardLayout::Build(CVelumGenForm& aForm, const Ref<CVelumCard>& aCard,
                             const Ref<CVelumControlSet>& aSet) {
  iForm = &aForm;
  Start(aSet);
  MeasureLabels(*aCard, *aSet);
  if (aSet->Flag(ECseShowCardName)) PlaceHeader(*aCard);
  PlaceControls(*aCard, *aSet);
  SpreadFreeHeight(*aSet);
}

void CVelumCardLayout::Start(const Ref<CVelumControlSet>& aSet) {
  const TVelumMetrics& metrics = CVelumSeams::Metrics();
  iGap = aSet->Flag(ECseDenseLayout) ? metrics.iCardMarginY : metrics.iCardMarginX;
  iNumBase.fill(0);
  iLabelGap.fill(iGap);
  iNextY = {iGap, iForm->ClientHeight() - iGap, 0};
  iValueLeft = iGap;
  iRowNextX.fill(ENoRow);
  iLastConType.fill(ENoShort);
  iNumMaxHeight = 0;
}

void CVelumCardLayout::MeasureLabels(CVelumCard& aCard, const CVelumControlSet& aSet) {
  // Any label will do, for none is shown yet; the layout takes this one first and sets it anew.
  auto* scratch =
      dynamic_cast<CVelumBaseLabel*>(iForm->FindControl(CVelumGenForm::Prefix(EBaseLabel) + u'0'));
  if (!scratch) CVelumError::RaiseHost(EHostObjectNotSet);
  for (qint32 i = 0; i < aSet.NumControls(); ++i) {
    const CVelumControl* control = aSet.ControlAt(i);
    if (!control || !HasLabel(*control)) continue;
    scratch->SetText(control->Label());
    iValueLeft = std::max(iValueLeft, Metrics(*scratch, aCard, nullptr).iCharWidth + iLabelGap[0] + iGap);
  }
  iValueLeft = std::min(iValueLeft, iForm->ClientWidth() / 2 - iGap);
  iValueMaxWidth = iForm->ClientWidth() - iValueLeft - iGap;
}

void CVelumCardLayout::PlaceHeader(CVelumCard& aCard) {
  auto& label = Next<CVelumBaseLabel>(EBaseLabel);
  iCardNameLabel = &label;
  label.SetText(CVelumGenForm::tr("Card Name"));
  label.SetNudge(0);
  const float height = Metrics(label, aCard, nullptr).iLineHeight;
  label.SetPlace(iLabelGap[0], iNextY[0]);
  label.SetSize(iForm->OuterWidth(), height);
  label.SetBackColor(iForm->BackColor());
  label.SetEnabled(true);
  label.SetVisible(true);
  CVelumBaseControl* progress = iForm->FindControl(u"fProgress"_s);
  CVelumBaseControl* box = iForm->FindControl(u"fProgressBox"_s);
  progress->SetSize(0, progress->Height());
  progress->SetVisible(true);
  box->SetPlace(iForm->OuterWidth() - box->Width() - iGap, iNextY[0]);
  box->SetVisible(true);
  iNextY[0] += height + iGap;
  auto& line = Next<CVelumBaseLine>(EBaseLine);
  line.SetEnds(0, iForm->OuterWidth(), iNextY[0]);
  line.SetVisible(true);
  iNextY[0] += iGap;
}

void CVelumCardLayout::PlaceControls(CVelumCard& aCard, CVelumControlSet& aSet) {
  qint16 tab = 0;
  for (qint32 i = 0; i < aSet.NumControls(); ++i) {
    const Ref<CVelumControl> control = aSet.ControlAt(i);
    if (!control || control->Flag(EConComboList) || !control->InCardView()) continue;
    AssignBaseControl(aCard, aSet, control);
    SetTabNumber(*control, tab);
  }
}

void CVelumCardLayout::SetTabNumber(const CVelumControl& aControl, qint16& aNumber) {
  auto* base = qobject_cast<CVelumBaseControl*>(aControl.BaseControl());
  if (!base) {
    // A command that stands in the menu alone has its presence there.
    if (aControl.ConType() == EConCommand && aControl.Flag(EConInMenu)) return;
    CVelumError::RaiseHost(EHostObjectNotSet, u"\"%1\" has no place on the card"_s.arg(aControl.Name()));
  }
  base->SetTabIndex(aNumber++);
}

void CVelumCardLayout::AssignBaseControl(CVelumCard& aCard, CVelumControlSet& aSet,
                                         const Ref<CVelumControl>& aControl) {
  const bool fromBottom = aControl->Flag(EConFromBottom);
  TPlace place{aCard, aSet, *aControl, fromBottom ? size_t{1} : size_t{0}, fromBottom ? -1.0F : 0.0F, 0.0F};
  iDir = fromBottom ? -1.0F : 1.0F;
  iControls[static_cast<size_t>(CVelumChecked::Index(iNumControls, EMaxControls))] = aControl;
  ++iNumControls;
  if (aControl->Flag(EConMaxHeight)) ++iNumMaxHeight;
  if (aControl->ConType() == EConCommand) {
    if (aControl->Flag(EConAsButton)) PlaceButton(place);
  } else {
    PlaceLabel(place);
    PlaceValue(place);
    iNextY[place.iDir] += (place.iHeight + iGap) * iDir;
    // A command that stands only in the menu may come before the next button and counts as the last one.
    iRowNextX[place.iDir] = ENoRow;
  }
  iLastConType[place.iDir] = aControl->ConType();
}

void CVelumCardLayout::PlaceLabel(TPlace& aPlace) {
  auto& label = Next<CVelumBaseLabel>(EBaseLabel);
  Activate(aPlace.iControl, label);
  label.SetText(aPlace.iControl.Label());
  const TFieldMetrics metrics = Metrics(label, aPlace.iCard, nullptr);
  label.SetSize(metrics.iCharWidth, metrics.iLineHeight);
  label.SetPlace(std::max(iValueLeft - metrics.iCharWidth - iLabelGap[aPlace.iDir], iGap),
                 iNextY[aPlace.iDir] + aPlace.iSign * metrics.iLineHeight + 2);
  // To the eye it stands on the line of the value's text, which is padded by half as much on each side.
  label.SetNudge(iDir * CVelumSeams::Metrics().iLabelWidth / 2);
  label.SetBackColor(iForm->BackColor());
  aPlace.iControl.SetBaseLabel(&label);
}

void CVelumCardLayout::PlaceValue(TPlace& aPlace) {
  switch (CVelumFieldTypes::Of(aPlace.iControl.ConType()).iWidget) {
  case EFieldText:
    PlaceText(aPlace);
    break;
  case EFieldCheckBox:
    PlaceCheckBox(aPlace);
    break;
  case EFieldList:
    PlaceList(aPlace);
    break;
  case EFieldPicture:
    PlacePicture(aPlace);
    break;
  default:
    CVelumError::Assert(false, u"AssignBaseControl conType"_s);
  }
  if (auto* base = qobject_cast<CVelumBaseControl*>(aPlace.iControl.BaseControl()))
    base->Widget()->setAccessibleName(SpokenName(aPlace.iControl));
}

void CVelumCardLayout::PlaceText(TPlace& aPlace) {
  const CVelumControl& control = aPlace.iControl;
  if (control.Flag(EConComboText))
    PlaceCombo(aPlace);
  else if (control.Flag(EConWikiText | EConMaxHeight) || control.VisLines() > 1)
    PlaceRichTextBox(aPlace);
  else
    PlaceTextBox(aPlace);
}

void CVelumCardLayout::PlaceCombo(TPlace& aPlace) {
  CVelumControl& control = aPlace.iControl;
  auto& combo = Next<CVelumBaseComboBox>(EBaseComboBox);
  Activate(control, combo);
  Metrics(combo, aPlace.iCard, &control);
  combo.SetBackColor(control.BackColor());
  combo.SetMaxChar(control.MaxChar());
  PutAtValue(aPlace, combo, ClampWidth(AvgWidth(control) + CVelumSeams::Metrics().iFieldGapX),
             combo.NaturalHeight());
  Bind(control, combo);
  Ref<CVelumControl> partner;
  const bool found = aPlace.iSet.GetControl(control.PartnerId(), partner);
  CVelumError::Assert(found, u"AssignBaseControl partner"_s);
  if (!found || !partner) return;
  iPartners.append(partner);
  Bind(*partner, combo);
  if (partner->ListBox()) partner->ListBox()->Show();
}

void CVelumCardLayout::PlaceRichTextBox(TPlace& aPlace) {
  auto& box = Next<CVelumBaseRichTextBox>(EBaseRichTextBox);
  Activate(aPlace.iControl, box);
  box.SetLocked(aPlace.iControl.Flag(EConWikiText));
  PlaceTextLines(aPlace, box, EffVisLines(aPlace.iControl));
}

void CVelumCardLayout::PlaceTextBox(TPlace& aPlace) {
  CVelumError::Assert(aPlace.iControl.VisLines() == 1, u"AssignBaseControl TextBox 1"_s);
  auto& box = Next<CVelumBaseTextBox>(EBaseTextBox);
  Activate(aPlace.iControl, box);
  PlaceTextLines(aPlace, box, 1);
}

void CVelumCardLayout::PlaceTextLines(TPlace& aPlace, CVelumBaseControl& aBox, int aLines) {
  CVelumControl& control = aPlace.iControl;
  const TFieldMetrics metrics = Metrics(aBox, aPlace.iCard, &control);
  aBox.SetBackColor(control.BackColor());
  aBox.SetMaxChar(control.MaxChar());
  PutAtValue(aPlace, aBox,
             ClampWidth(static_cast<float>(control.VisChar()) * metrics.iCharWidth +
                        CVelumSeams::Metrics().iFieldGapX),
             static_cast<float>(aLines) * metrics.iLineHeight + CVelumSeams::Metrics().iLabelWidth);
  Bind(control, aBox);
}

void CVelumCardLayout::PlaceCheckBox(TPlace& aPlace) {
  auto& box = Next<CVelumBaseCheckBox>(EBaseCheckBox);
  Activate(aPlace.iControl, box);
  box.SetText(QString());
  PutAtValue(aPlace, box, box.Width(),
             CVelumSeams::Metrics().iLabelWidth + CVelumSeams::Metrics().iCharHeight);
  box.SetBackColor(iForm->BackColor());
  Bind(aPlace.iControl, box);
}

void CVelumCardLayout::PlaceList(TPlace& aPlace) {
  CVelumControl& control = aPlace.iControl;
  auto& list = Next<CVelumBaseListView>(EBaseListView);
  Activate(control, list);
  Metrics(list, aPlace.iCard, &control);
  list.SetBackColor(control.BackColor());
  PutAtValue(aPlace, list, ClampWidth(AvgWidth(control) + CVelumSeams::Metrics().iFieldGapY),
             BlockHeight(control));
  Bind(control, list);
  if (const Ref<CVelumListBoxBase> box = control.ListBox())
    box->SetFont(CVelumLib::EvalFont(aPlace.iCard, &control));
}

void CVelumCardLayout::PlacePicture(TPlace& aPlace) {
  CVelumControl& control = aPlace.iControl;
  auto& box = Next<CVelumBasePictureBox>(EBasePictureBox);
  Activate(control, box);
  // The place comes from the height that the box has by now; a picture from the bottom is meant to lie there.
  box.SetPlace(iValueLeft, iNextY[aPlace.iDir] + aPlace.iSign * box.Height());
  aPlace.iHeight = BlockHeight(control);
  box.SetSize(ClampWidth(AvgWidth(control) + CVelumSeams::Metrics().iFieldGapX), aPlace.iHeight);
  Bind(control, box);
  box.SetBackColor(control.BackColor());
}

void CVelumCardLayout::PlaceButton(TPlace& aPlace) {
  CVelumControl& control = aPlace.iControl;
  const size_t dir = aPlace.iDir;
  auto& button = Next<CVelumBaseButton>(EBaseButton);
  Activate(control, button);
  SetButtonFace(button, control);
  const float width = ButtonWidth(button, control);
  const float height =
      std::max(EButtonHeight, iMeasure.TextHeight(u"A"_s) + CVelumSeams::Metrics().iLabelWidth);
  button.SetSize(width, height);
  const bool newRow =
      iLastConType[dir] != EConCommand || width + iRowNextX[dir] > iForm->ClientWidth() - iGap;
  if (newRow) {
    button.SetPlace(iGap, iNextY[dir] + aPlace.iSign * height);
    iNextY[dir] += (height + iGap) * iDir;
  } else {
    button.SetPlace(iRowNextX[dir], iRowTop[dir]);
  }
  Bind(control, button);
  iRowNextX[dir] = button.Left() + width + iGap;
  iRowTop[dir] = button.Top();
  button.SetBackColor(control.BackColor());
}

void CVelumCardLayout::SetButtonFace(CVelumBaseButton& aButton, const CVelumControl& aControl) {
  // The caption is measured in the font measured last, so it is shown in that font.
  aButton.SetFont(iMeasure.Font());
  aButton.Widget()->setAccessibleName(SpokenName(aControl));
  if (!aControl.Flag(EConPictButton) || !aControl.Flag(EConStdCmd)) {
    aButton.SetText(aControl.Label());
    aButton.SetPicture({}, {});
    return;
  }
  const QString picture = StdCmdPicture(aControl.StdCmd());
  CVelumError::Assert(!picture.isEmpty(), u"AssignBaseControl pict stdCmd"_s);
  aButton.SetText({});
  aButton.SetPicture(gFrameHost ? gFrameHost->ToolbarIcon(picture) : CVelumIcons::Icon(picture),
                     aControl.Label());
}

float CVelumCardLayout::ButtonWidth(const CVelumBaseButton& aButton, const CVelumControl& aControl) const {
  const float text = aControl.VisChar() == ENoShort ? iMeasure.TextWidth(aButton.Text()) : AvgWidth(aControl);
  return 2 * CVelumSeams::Metrics().iFieldGapX + text;
}

void CVelumCardLayout::SpreadFreeHeight(const CVelumControlSet& aSet) {
  if (iNumMaxHeight == 0) return;
  const float free = iNextY[1] - iNextY[0];
  if (CVelumSeams::Metrics().iCharHeight > free) return;
  const float share = free / static_cast<float>(iNumMaxHeight);
  float shift = 0;
  for (qint32 i = 0; i < aSet.NumControls(); ++i) {
    const CVelumControl* control = aSet.ControlAt(i);
    // The list of a combo box shares its place, which moves with the text part.
    if (!control || control->Flag(EConComboList)) continue;
    auto* base = qobject_cast<CVelumBaseControl*>(control->BaseControl());
    if (control->InCardView() && !control->Flag(EConFromBottom) && shift > 0) {
      if (base) base->SetTop(base->Top() + shift);
      auto* label = qobject_cast<CVelumBaseControl*>(control->BaseLabel());
      if (label && label != base) label->SetTop(label->Top() + shift);
    }
    if (control->Flag(EConMaxHeight)) {
      CVelumBaseControl& grown = CVelumChecked::Deref(base);
      grown.SetHeight(grown.Height() + share);
      shift += share;
    }
  }
}

template <class T> T& CVelumCardLayout::Next(EBase aKind) {
  const QString name = CVelumGenForm::Prefix(aKind) + QString::number(iNumBase[static_cast<size_t>(aKind)]);
  ++iNumBase[static_cast<size_t>(aKind)];
  auto* base = dynamic_cast<T*>(iForm->FindControl(name));
  if (!base) CVelumError::RaiseHost(EHostObjectNotSet, name);
  return *base;
}

void CVelumCardLayout::Bind(CVelumControl& aControl, CVelumBaseControl& aBase) {
  aControl.SetBaseControl(&aBase, aBase.Kind());
}

void CVelumCardLayout::Activate(const CVelumControl& aControl, CVelumBaseControl& aBase) {
  aBase.SetVisible(true);
  aBase.SetEnabled(!aControl.Flag(EConDisabled));
}

void CVelumCardLayout::PutAtValue(TPlace& aPlace, CVelumBaseControl& aBase, float aWidth, float aHeight) {
  aBase.SetSize(aWidth, aHeight);
  aBase.SetPlace(iValueLeft, iNextY[aPlace.iDir] + aPlace.iSign * aHeight);
  aPlace.iHeight = aHeight;
}

CVelumCardLayout::TFieldMetrics CVelumCardLayout::Metrics(CVelumBaseControl& aBase, CVelumCard& aCard,
                                                          const CVelumControl* aControl) {
  const Ref<CVelumFont> font = CVelumLib::EvalFont(aCard, aControl);
  const QFont toolkitFont = CVelumLib::MakeToolkitFont(*font, false);
  aBase.SetFont(toolkitFont);
  aBase.SetForeColor(font->ForeColor());
  if (aControl && aControl->Flag(EConWikiText) && aControl->WikiTextBox())
    aControl->WikiTextBox()->SetFont(font);
  iMeasure.SetFont(toolkitFont);
  return {iMeasure.TextHeight(u"A"_s),
          aBase.Kind() == EBaseLabel ? iMeasure.TextWidth(aBase.Text()) : iMeasure.AvgCharWidth()};
}

float CVelumCardLayout::ClampWidth(float aWidth) const {
  return std::min(aWidth, iValueMaxWidth);
}
