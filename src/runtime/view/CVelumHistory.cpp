#include "runtime/view/CVelumHistory.h"

#include "core/CVelumError.h"

#include <algorithm>

void CVelumHistory::Add(const Ref<CVelumCard>& aCard) {
  if (iHistLen > 0 && At(static_cast<qint16>(iHistLen - 1)) == aCard) return;
  if (iHistLen >= 1) {
    iHistLen = static_cast<qint16>(iHistIndex + 1);
    std::fill(iHistory.begin() + iHistLen, iHistory.end(), nullptr);
  }
  if (iHistLen == EMaxLen) {
    std::move(iHistory.begin() + 1, iHistory.begin() + EMaxLen, iHistory.begin());
    iHistLen = EMaxLen - 1;
  }
  iHistory[static_cast<size_t>(iHistLen)] = aCard;
  iHistIndex = iHistLen++;
  CVelumError::Assert(iHistIndex < iHistLen, u"iHistIndex"_s);
}

bool CVelumHistory::Prev(const Ref<CVelumCard>& aCur, Ref<CVelumCard>& aCard) {
  aCard = nullptr;
  if (iHistLen == 0 || iHistIndex == 0) return false;
  --iHistIndex;
  if (At(iHistIndex) == aCur && iHistIndex > 0) --iHistIndex;
  aCard = At(iHistIndex);
  return true;
}

bool CVelumHistory::Next(const Ref<CVelumCard>& aCur, Ref<CVelumCard>& aCard) {
  aCard = nullptr;
  if (iHistLen == 0 || iHistIndex >= iHistLen - 1) return false;
  ++iHistIndex;
  if (At(iHistIndex) == aCur && iHistIndex < iHistLen - 1) ++iHistIndex;
  aCard = At(iHistIndex);
  return true;
}

bool CVelumHistory::HasPrev(const Ref<CVelumCard>& aCur) const {
  bool found = false;
  for (qint16 i = 0; !found && i < std::min(iHistIndex, iHistLen); ++i) found = At(i) != aCur;
  return found;
}

bool CVelumHistory::HasNext(const Ref<CVelumCard>& aCur) const {
  bool found = false;
  for (int i = iHistIndex + 1; !found && i < iHistLen; ++i) found = At(static_cast<qint16>(i)) != aCur;
  return found;
}

void CVelumHistory::Remove(const CVelumCard& aCard) {
  for (qint16 i = static_cast<qint16>(iHistLen - 1); i >= 0; --i)
    if (iHistory[static_cast<size_t>(i)] == &aCard) RemoveAt(i);
}

void CVelumHistory::RemoveBackground(qint32 aBackgroundId) {
  for (qint16 i = static_cast<qint16>(iHistLen - 1); i >= 0; --i)
    if (iHistory[static_cast<size_t>(i)]->BackgroundId() == aBackgroundId) RemoveAt(i);
}

void CVelumHistory::RemoveAt(qint16 aIndex) {
  if (aIndex <= iHistIndex && iHistIndex >= 1) --iHistIndex;
  std::move(iHistory.begin() + aIndex + 1, iHistory.begin() + iHistLen, iHistory.begin() + aIndex);
  --iHistLen;
  iHistory[static_cast<size_t>(iHistLen)] = nullptr;
}

void CVelumHistory::Empty() {
  // The entries go too: they would lead to cards that are gone.
  iHistory.fill(nullptr);
  iHistLen = 0;
  iHistIndex = ENoShort;
}

Ref<CVelumCard> CVelumHistory::At(qint16 aIndex) const {
  if (aIndex < 0 || aIndex >= iHistLen) return nullptr;
  return iHistory[static_cast<size_t>(aIndex)];
}
