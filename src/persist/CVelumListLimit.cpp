#include "persist/CVelumListLimit.h"

#include "model/change/CVelumRecorder.h"

#include <functional>
#include <utility>

namespace {

const QString ELineEnd = u"\r\n"_s;

using TEachList = std::function<void(CVelumControlSet&, CVelumControl&)>;

// All fields that compute a list of cards.
void ForEachList(CVelumStack& aStack, const TEachList& aDo) {
  Ref<CVelumControlSet> background;
  qint32 at = 0;
  for (bool more = aStack.GetFirstBackground(background, at); more;
       more = aStack.GetNextBackground(background, at)) {
    if (!background->WithCardList()) continue;
    for (qint32 i = 0; i < background->NumControls(); ++i) {
      CVelumControl* control = background->ControlAt(i);
      if (control && control->Flag(EConCardList)) aDo(*background, *control);
    }
  }
}

void ForEachCard(CVelumStack& aStack, qint32 aBackgroundId, const std::function<void(CVelumCard&)>& aDo) {
  Ref<CVelumCard> card;
  qint32 at = 0;
  for (bool more = aStack.GetFirstCardInBackground(aBackgroundId, card, at); more;
       more = aStack.GetNextCardInBackground(aBackgroundId, card, at))
    aDo(*card);
}

// The card's own text for a field, or nothing.
QString OwnText(const CVelumCard& aCard, qint32 aControlId) {
  const CVelumArray& values = aCard.Value();
  qint32 at = values.FindIntKey(aControlId);
  return at < 0 ? QString() : values.ValRef(at).Str();
}

} // namespace

QString CVelumListCut::CutText(const QString& aList) {
  if (aList.size() <= EMaxStoredText) return aList;
  qsizetype end = aList.lastIndexOf(ELineEnd, EMaxStoredText - ELineEnd.size());
  return end < 0 ? ELineEnd : aList.left(end + ELineEnd.size());
}

CVelumListCut::CVelumListCut(CVelumStack& aStack) {
  CVelumRecord::CUnrecorded unrecorded;
  ForEachList(aStack, [&](CVelumControlSet& aBackground, CVelumControl& aControl) {
    CutDefault(aControl);
    ForEachCard(aStack, aBackground.Id(), [&](CVelumCard& aCard) { CutValue(aCard, aControl.Id()); });
  });
}

void CVelumListCut::CutDefault(CVelumControl& aControl) {
  QString text = aControl.DefaultVal();
  if (text.size() <= EMaxStoredText) return;
  iDefaults.append({Ref<CVelumControl>(&aControl), text, aControl.Changed()});
  aControl.SetDefaultVal(CutText(text));
}

void CVelumListCut::CutValue(CVelumCard& aCard, qint32 aControlId) {
  QString text = OwnText(aCard, aControlId);
  if (text.size() <= EMaxStoredText) return;
  bool changed = aCard.Value().OwnChanged();
  iValues.append({Ref<CVelumCard>(&aCard), aControlId, text, changed});
  aCard.SetComputedText(aControlId, CutText(text), changed);
}

CVelumListCut::~CVelumListCut() {
  CVelumRecord::CUnrecorded unrecorded;
  for (const TDefault& d : iDefaults) {
    d.iControl->SetDefaultVal(d.iText);
    if (!d.iChanged) d.iControl->SetChanged(false);
  }
  for (const TValue& v : iValues) v.iCard->SetComputedText(v.iControlId, v.iText, v.iChanged);
}

void CVelumListCut::MarkCutLists(CVelumStack& aStack) {
  ForEachList(aStack, [&](CVelumControlSet& aBackground, CVelumControl& aControl) {
    if (aControl.DefaultVal().endsWith(ELineEnd)) aStack.SetCardListsDirty(&aBackground);
    ForEachCard(aStack, aBackground.Id(), [&](CVelumCard& aCard) {
      if (OwnText(aCard, aControl.Id()).endsWith(ELineEnd)) aCard.SetDirty(true);
    });
  });
}
