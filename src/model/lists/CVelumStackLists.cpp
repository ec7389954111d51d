// What changes of cards mean for the lists that are computed from them, and other work over all cards.
#include "core/CVelumChecked.h"
#include "core/CVelumValue.h"
#include "core/text/CVelumLocale.h"
#include "model/CVelumStack.h"

#include <QScopeGuard>
#include <algorithm>
#include <limits>
#include <utility>

namespace {
constexpr int EMaxListUpdates = 20;
constexpr qint16 EMaxListVisChar = 20;
constexpr qint16 EMaxVisChar = 30;
constexpr qint16 EMaxVisLines = 4;

// Display width and lines of a control whose longest value has aLen characters.
void SetVisSize(CVelumControl& aControl, qint64 aLen) {
  qint64 len = aLen < 7 ? aLen + 2 : aLen;
  if (len > EMaxVisChar) len = (len + 4) / 5 * 5;
  if (len > EMaxListVisChar) aControl.SetListVisChar(EMaxListVisChar);
  const bool oneLine = len < EMaxVisChar;
  aControl.SetVisChar(oneLine ? static_cast<qint16>(len) : EMaxVisChar);
  const qint64 lines = (len + EMaxVisChar - 1) / EMaxVisChar;
  aControl.SetVisLines(oneLine ? qint16{1} : static_cast<qint16>(std::min<qint64>(lines, EMaxVisLines)));
}
} // namespace

void CVelumStack::SetControlDynFlags() {
  NewListBasis();
  iCardFinder.Clear();
  Ref<CVelumControlSet> background;
  for (qint32 i = 0; GetNextBackground(background, i);)
    for (qint32 c = 0; c < background->NumControls(); ++c)
      if (CVelumControl* control = background->ControlAt(c)) control->SetDynFlags(0);
  for (qint32 i = 0; GetNextBackground(background, i);)
    for (qint32 c = 0; c < background->NumControls(); ++c)
      if (const CVelumControl* control = background->ControlAt(c); control && control->Flag(EConCardList))
        FlagCardListRefs(*background, *control);
  Ref<CVelumSortKey> key;
  for (qint32 i = 0; GetNextSortKey(key, i);) {
    TVelumKeyPart part;
    for (qint32 p = 0; key->GetNextKeyPart(part, p);) {
      background = Background(key->BackgroundId());
      CVelumControl* control = background ? background->FindControl(part.iControlId) : nullptr;
      CVelumError::AssertObj(control, this, u"SetDynFlags"_s, u"key part control found"_s);
      if (control) control->SetDynFlag(EDynKeyPart, true);
    }
  }
}

// So that the first edit after a load does not have to walk all cards.
void CVelumStack::BuildCardFinder() {
  Ref<CVelumControlSet> background;
  for (qint32 i = 0; GetNextBackground(background, i);)
    for (qint32 c = 0; c < background->NumControls(); ++c)
      if (const CVelumControl* control = background->ControlAt(c);
          control && control->DynFlag(EDynSelControl) && !control->Flag(EConCardList))
        iCardFinder.Build(*this, background->Id(), control->Id(), iListBasis);
}

// Flags the controls to which a card list refers.
void CVelumStack::FlagCardListRefs(const CVelumControlSet& aBackground, const CVelumControl& aControl) {
  const auto flag = [](const CVelumControlSet* aSet, qint32 aId, qint32 aMask) {
    if (!aSet || aId == ENoInt) return;
    if (CVelumControl* control = aSet->FindControl(aId)) control->SetDynFlag(aMask, true);
  };
  flag(&aBackground, aControl.RefControlId(), EDynRefControl);
  const CVelumControlSet* selBackground = FindBackground(aControl.SelBackgroundId());
  flag(selBackground, aControl.SelControlId(), EDynSelControl);
  for (qint32 i = 0; i < aControl.NumListCols(); ++i)
    flag(selBackground, aControl.ListCol()->IntNum(i), EDynListCol);
}

bool CVelumStack::FindBySelControl(const CVelumControl& aControl, Ref<CVelumControl>& aFoundControl,
                                   Ref<CVelumControlSet>& aBackground) const {
  for (qint32 i = 0; GetNextBackground(aBackground, i);)
    for (qint32 c = 0; c < aBackground->NumControls(); ++c) {
      aFoundControl = aBackground->ControlAt(c);
      if (aFoundControl && aFoundControl->SelControlId() == aControl.Id()) return true;
    }
  aFoundControl = nullptr;
  aBackground = nullptr;
  return false;
}

void CVelumStack::SetCardListsDirty(const Ref<CVelumControlSet>& aBackground) {
  if (iListUpdates > 0) {
    iListsStale = true;
    return;
  }
  NewListBasis();
  Ref<CVelumControlSet> background;
  for (qint32 i = 0; GetNextBackground(background, i);) {
    if ((aBackground && !(aBackground == background)) || !background->WithCardList()) continue;
    background->RaiseListStamp();
    ReportAllChanged(*background);
  }
}

// As ChangeCard for each card of the background in order. Which card is the last one is found out when
// somebody asks: this happens with each card that is added.
void CVelumStack::ReportAllChanged(const CVelumControlSet& aBackground) {
  if (aBackground.NumCards() == 0) return;
  const qint32 again = FirstIsLastChanged(aBackground) ? 1 : 0;
  const qint32 num = iChangeInfo.iNumCardsChanged + aBackground.NumCards() - again;
  const qint32 most = std::numeric_limits<qint16>::max();
  iChangeInfo.iCardChanged = true;
  iChangeInfo.iNumCardsChanged = static_cast<qint16>(std::min(num, most));
  iChangeInfo.iLastChangedCard = nullptr;
  iLastChangedIn = aBackground.Id();
}

bool CVelumStack::FirstIsLastChanged(const CVelumControlSet& aBackground) const {
  if (iLastChangedIn != ENoInt) return iLastChangedIn == aBackground.Id() && aBackground.NumCards() == 1;
  const Ref<CVelumCard>& last = iChangeInfo.iLastChangedCard;
  if (!last || last->BackgroundId() != aBackground.Id()) return false;
  Ref<CVelumCard> first;
  qint32 index = 0;
  return GetFirstCardInBackground(aBackground.Id(), first, index) && first == last;
}

bool CVelumStack::IsLastChanged(const CVelumCard& aCard) const {
  if (iLastChangedIn == ENoInt) return iChangeInfo.iLastChangedCard == &aCard;
  return aCard.BackgroundId() == iLastChangedIn && ChangeInfo().iLastChangedCard == &aCard;
}

TVelumChangeInfo CVelumStack::ChangeInfo() const {
  TVelumChangeInfo info = iChangeInfo;
  if (iLastChangedIn != ENoInt)
    static_cast<void>(GetLastCardInBackground(iLastChangedIn, info.iLastChangedCard));
  return info;
}

void CVelumStack::ResetChangeInfo() {
  iChangeInfo = {};
  iLastChangedIn = ENoInt;
}

bool CVelumStack::EnterListUpdate() {
  if (iListUpdates >= EMaxListUpdates) return false;
  ++iListUpdates;
  return true;
}

void CVelumStack::LeaveListUpdate() {
  if (--iListUpdates > 0) return;
  const std::vector<Ref<CVelumCard>> computed = std::exchange(iListRun, {});
  if (!std::exchange(iListsStale, false)) return;
  SetCardListsDirty(nullptr);
  for (const Ref<CVelumCard>& card : computed) card->SetDirty(false);
}

void CVelumStack::PrepareForSave() {
  static_cast<void>(EnterListUpdate());
  const auto leave = qScopeGuard([this] { LeaveListUpdate(); });
  Ref<CVelumControlSet> background;
  for (qint32 i = 0; GetNextBackground(background, i);) {
    if (!background->WithCardList()) continue;
    Ref<CVelumCard> card;
    for (qint32 at = 0; GetNextCardInBackground(background->Id(), card, at);)
      if (card->Dirty()) card->UpdateCardLists();
  }
}

namespace {

// The longest external texts of a field. A value is only written out where it could beat the longest one.
class CLongest {
public:
  explicit CLongest(const CVelumControl& aControl)
      : iId(aControl.Id()), iInfo(aControl.FieldInfo()), iMost(MostOf(aControl.ConType())),
        iIsCardList(aControl.Flag(EConCardList)) {}
  [[nodiscard]] qint32 Id() const { return iId; }
  // Whether the value is computed when it is asked for.
  [[nodiscard]] bool IsCardList() const { return iIsCardList; }
  [[nodiscard]] qint64 Length() const { return iLength; }
  void Take(const TVelumValue& aVal) {
    if (aVal.Type() == EValStr)
      iLength = std::max<qint64>(iLength, aVal.Str().size());
    else if (iLength < iMost)
      iLength = std::max<qint64>(iLength, CVelumValue::ValToExtText(aVal, iInfo).size());
  }

private:
  // Days, months, hours, minutes and seconds of two digits, a year of four: no date or time is longer.
  [[nodiscard]] static qint64 MostOf(qint32 aType) {
    const double afternoon = CVelumValue::IntToTime(221010);
    const double morning = CVelumValue::IntToTime(101010);
    if (aType == EConDate) return CVelumLocale::ShortDate(CVelumValue::IntToDate(20001212)).size();
    if (aType == EConTime)
      return std::max(CVelumLocale::LongTime(afternoon).size(), CVelumLocale::LongTime(morning).size());
    return std::numeric_limits<qint64>::max();
  }

  qint32 iId;
  TVelumFieldInfo iInfo;
  qint64 iMost;
  bool iIsCardList;
  qint64 iLength = 0;
};

} // namespace

void CVelumStack::AdjustVisChar() {
  Ref<CVelumControlSet> background;
  for (qint32 i = 0; GetNextBackground(background, i);) {
    std::vector<CLongest> longest;
    for (qint32 c = 0; c < background->NumControls(); ++c)
      longest.emplace_back(CVelumChecked::Deref(background->ControlAt(c)));
    Ref<CVelumCard> card;
    for (qint32 at = 0; GetNextCardInBackground(background->Id(), card, at);) {
      const CVelumArray& values = card->Value();
      qint32 next = 0; // values and fields mostly come in the same order
      for (CLongest& field : longest) {
        const bool own = next < values.Count() && values.IntKeyAt(next) == field.Id() && !field.IsCardList();
        if (own)
          field.Take(values.ValRef(next++));
        else
          field.Take(card->GetControlVal(field.Id(), false));
      }
    }
    for (size_t c = 0; c < longest.size(); ++c)
      SetVisSize(*background->ControlAt(static_cast<qint32>(c)), longest[c].Length());
  }
}
