#include "model/order/CVelumCardOrder.h"

#include "core/CVelumChecked.h"
#include "core/CVelumLib.h"
#include "core/file/CVelumFile.h"
#include "core/text/CVelumXmlParser.h"
#include "core/text/CVelumXmlWriter.h"

#include <algorithm>
#include <bit>

namespace {
constexpr int EBlockMax = 512;
constexpr qint32 EGroup = 64;
constexpr quint64 EAllBits = ~quint64(0);
constexpr quint8 ENoBit = 64;
constexpr int EArrayTypeId = 5;
constexpr int EArrayGen = 3;
} // namespace

struct CVelumCardOrder::TBlock {
  TBlock() = default;
  // With room for aCount cards and no more.
  explicit TBlock(qint32 aCount) {
    iIds.reserve(size_t(aCount));
    iNums.reserve(size_t(aCount));
  }

  std::vector<qint32> iIds;
  // Empty while the numbers follow from iBase: iStep * (iBase + index + 1).
  std::vector<qint32> iNums;
  qint32 iBase = 0;
  qint32 iStep = 0;
  qint32 iNo = 0; // index of this block

  [[nodiscard]] qint32 Count() const { return static_cast<qint32>(iIds.size()); }
  [[nodiscard]] qint32 Num(qint32 aIndex) const {
    return iNums.empty() ? iStep * (iBase + aIndex + 1) : iNums[size_t(aIndex)];
  }
  void WorkOut() {
    if (!iNums.empty() || iIds.empty()) return;
    std::vector<qint32> nums(iIds.size());
    for (qint32 i = 0; i < Count(); ++i) nums[size_t(i)] = Num(i);
    iNums = std::move(nums);
  }
  [[nodiscard]] qint32 IndexOf(qint32 aId) const {
    const auto it = std::find(iIds.begin(), iIds.end(), aId);
    return it == iIds.end() ? -1 : static_cast<qint32>(it - iIds.begin());
  }
};

// Walks go from one position to the next, mostly within a block.
inline CVelumCardOrder::TPlace CVelumCardOrder::Locate(qint32 aPos) const {
  const auto index = static_cast<quint32>(aPos) - static_cast<quint32>(iMemoStart);
  if (iMemo && index < iMemo->iIds.size()) return {iMemo, static_cast<qint32>(index)};
  return Search(aPos);
}

CVelumCardOrder::CVelumCardOrder() = default;
CVelumCardOrder::~CVelumCardOrder() = default;

QString CVelumCardOrder::ObjDescr() const {
  return u"CVelumArray max="_s + QString::number(iCount) + u", alloc="_s + QString::number(iAlloc);
}

qint32 CVelumCardOrder::IdAt(qint32 aPos) const {
  const TPlace place = Locate(aPos);
  return place.iBlock->iIds[size_t(place.iIndex)];
}

std::span<const qint32> CVelumCardOrder::IdsFrom(qint32 aPos) const {
  const TPlace place = Locate(aPos);
  return std::span<const qint32>(place.iBlock->iIds).subspan(size_t(place.iIndex));
}

qint32 CVelumCardOrder::NumAt(qint32 aPos) const {
  const TPlace place = Locate(aPos);
  return place.iBlock->Num(place.iIndex);
}

qint32 CVelumCardOrder::PosOf(qint32 aId) const {
  if (aId < 0 || size_t(aId) >= iHome.size() || !iHome[size_t(aId)]) return -1;
  const TBlock& block = *iHome[size_t(aId)];
  const qint32 index = block.IndexOf(aId);
  return index < 0 ? -1 : StartOf(block.iNo) + index;
}

qint32 CVelumCardOrder::NumOf(qint32 aId) const {
  if (aId < 0 || size_t(aId) >= iHome.size() || !iHome[size_t(aId)]) return ENoInt;
  const TBlock& block = *iHome[size_t(aId)];
  const qint32 index = block.IndexOf(aId);
  return index < 0 ? ENoInt : block.Num(index);
}

std::vector<qint32> CVelumCardOrder::NumsById() const {
  std::vector<qint32> nums(iHome.size(), ENoInt);
  for (const auto& block : iBlocks)
    for (qint32 i = 0; i < block->Count(); ++i)
      if (const auto id = static_cast<size_t>(block->iIds[size_t(i)]); id < nums.size())
        nums[id] = block->Num(i);
  return nums;
}

void CVelumCardOrder::InsertAt(qint32 aPos, qint32 aId, qint32 aNum, quint64 aBit) {
  static_cast<void>(CVelumChecked::Index(aPos, iCount + 1));
  iChanged = true;
  Grow(1);
  if (aPos == iCount) {
    Append(aId, aNum);
    SetBit(aId, aBit);
    Mark(iBlocks.back()->iNo, aBit);
    return;
  }
  auto [block, index] = Locate(aPos);
  if (block->Count() >= EBlockMax) {
    Split(*block);
    const TPlace place = Locate(aPos);
    block = place.iBlock;
    index = place.iIndex;
  }
  block->WorkOut();
  block->iIds.insert(block->iIds.begin() + index, aId);
  block->iNums.insert(block->iNums.begin() + index, aNum);
  Mark(block->iNo, aBit);
  ++iCount;
  AddToTree(block->iNo, 1);
  SetHome(aId, block);
  SetBit(aId, aBit);
}

void CVelumCardOrder::RemoveAt(qint32 aPos) {
  const TPlace place = Locate(aPos);
  TBlock& block = *place.iBlock;
  iChanged = true;
  block.WorkOut();
  const qint32 id = block.iIds[size_t(place.iIndex)];
  block.iIds.erase(block.iIds.begin() + place.iIndex);
  block.iNums.erase(block.iNums.begin() + place.iIndex);
  --iCount;
  if (id >= 0 && size_t(id) < iHome.size() && iHome[size_t(id)] == &block && block.IndexOf(id) < 0)
    iHome[size_t(id)] = nullptr;
  if (block.iIds.empty())
    DropBlock(block);
  else
    AddToTree(block.iNo, -1);
}

void CVelumCardOrder::Renumber(qint32 aStep) {
  static_cast<void>(CVelumChecked::Mul(aStep, iCount));
  iChanged = true;
  qint32 base = 0;
  for (const auto& block : iBlocks) {
    block->iNums.clear();
    block->iBase = base;
    block->iStep = aStep;
    base += block->Count();
  }
}

void CVelumCardOrder::SetIdAt(qint32 aPos, qint32 aId) {
  const TPlace place = Locate(aPos);
  iChanged = true;
  place.iBlock->iIds[size_t(place.iIndex)] = aId;
  SetHome(aId, place.iBlock);
  Mark(place.iBlock->iNo, BitsOf(*place.iBlock));
}

void CVelumCardOrder::Assign(const std::vector<qint32>& aIds, const std::vector<quint64>& aBits,
                             qint32 aStep) {
  Clear();
  iId = iSortKeyId = ENoInt;
  iFlags = EArrIntKey;
  iAllocStep = 50;
  iAlloc = 10;
  for (size_t i = 0; i < aIds.size(); ++i) {
    Grow(1);
    Append(aIds[i], 0);
    Mark(iBlocks.back()->iNo, aBits[i]);
    SetBit(aIds[i], aBits[i]);
  }
  Renumber(aStep);
}

void CVelumCardOrder::Move(qint32 aFrom, qint32 aNum, qint32 aTo, qint32 aStep) {
  std::vector<qint32> ids;
  for (const auto& block : iBlocks) ids.insert(ids.end(), block->iIds.begin(), block->iIds.end());
  static_cast<void>(CVelumChecked::Index(aFrom, iCount));
  static_cast<void>(CVelumChecked::Index(aNum, iCount - aFrom + 1));
  static_cast<void>(CVelumChecked::Index(aTo, iCount + 1));
  const auto from = ids.begin() + aFrom;
  if (aTo < aFrom)
    std::rotate(ids.begin() + aTo, from, from + aNum);
  else
    std::rotate(from, from + aNum, ids.begin() + aTo);
  Grow(aNum);
  const std::vector<quint8> bitNo = std::move(iBitNo);
  Clear();
  for (const qint32 id : ids) Append(id, 0);
  iBitNo = bitNo;
  for (const auto& block : iBlocks) Mark(block->iNo, BitsOf(*block));
  Renumber(aStep);
}

CVelumCardOrder::TState CVelumCardOrder::State() const {
  TState state{{}, {}, iId, iFlags, iAllocStep, iAlloc, iSortKeyId};
  state.iIds.reserve(size_t(iCount));
  state.iNums.reserve(size_t(iCount));
  for (const auto& block : iBlocks)
    for (qint32 i = 0; i < block->Count(); ++i) {
      state.iIds.push_back(block->iIds[size_t(i)]);
      state.iNums.push_back(block->Num(i));
    }
  return state;
}

void CVelumCardOrder::Restore(const TState& aState, const std::vector<quint64>& aBits) {
  Clear();
  for (size_t i = 0; i < aState.iIds.size(); ++i) {
    Append(aState.iIds[i], aState.iNums[i]);
    Mark(iBlocks.back()->iNo, aBits[i]);
    SetBit(aState.iIds[i], aBits[i]);
  }
  iId = aState.iId;
  iFlags = aState.iFlags;
  iAllocStep = aState.iAllocStep;
  iAlloc = aState.iAlloc;
  iSortKeyId = aState.iSortKeyId;
}

void CVelumCardOrder::RestoreAlloc(qint32 aAlloc) {
  iAlloc = std::max(aAlloc, iCount);
}

void CVelumCardOrder::Clear() {
  iBlocks.clear();
  iBits.clear();
  iGroups.clear();
  iTree.clear();
  iHome.clear();
  iBitNo.clear();
  iMemo = nullptr;
  iMemoStart = iCount = 0;
  iChanged = true;
}

void CVelumCardOrder::AddBit(qint32 aId, quint64 aBit) {
  if (aId < 0 || size_t(aId) >= iHome.size() || !iHome[size_t(aId)]) return;
  Mark(iHome[size_t(aId)]->iNo, aBit);
  SetBit(aId, aBit);
}

void CVelumCardOrder::ClearBits() {
  std::fill(iBits.begin(), iBits.end(), 0);
  std::fill(iGroups.begin(), iGroups.end(), 0);
}

void CVelumCardOrder::RenewPlaces() {
  for (const auto& block : iBlocks) {
    for (const qint32 id : block->iIds) SetHome(id, block.get());
    Mark(block->iNo, BitsOf(*block));
  }
}

qint32 CVelumCardOrder::SkipForward(qint32 aPos, quint64 aBit) const {
  if (aPos < 0) aPos = 0;
  if (aPos >= iCount) return iCount;
  const qint32 here = Locate(aPos).iBlock->iNo;
  const qint32 no = BlockFrom(here, aBit);
  if (no == here) return aPos;
  return size_t(no) < iBlocks.size() ? StartOf(no) : iCount;
}

qint32 CVelumCardOrder::SkipBackward(qint32 aPos, quint64 aBit) const {
  if (aPos >= iCount) aPos = iCount - 1;
  if (aPos < 0) return -1;
  const qint32 here = Locate(aPos).iBlock->iNo;
  const qint32 no = BlockUpTo(here, aBit);
  if (no == here) return aPos;
  return no < 0 ? -1 : StartOf(no) + iBlocks[size_t(no)]->Count() - 1;
}

void CVelumCardOrder::Mark(qint32 aBlockNo, quint64 aBit) {
  iBits[size_t(aBlockNo)] |= aBit;
  iGroups[size_t(aBlockNo / EGroup)] |= aBit;
}

void CVelumCardOrder::RebuildGroups() {
  iGroups.assign(iBits.size() / EGroup + 1, 0);
  for (size_t no = 0; no < iBits.size(); ++no) iGroups[no / EGroup] |= iBits[no];
}

// The first block from aBlockNo on with aBit, or the number of blocks.
qint32 CVelumCardOrder::BlockFrom(qint32 aBlockNo, quint64 aBit) const {
  const qint32 num = static_cast<qint32>(iBlocks.size());
  qint32 no = aBlockNo;
  while (no < num && !(iBits[size_t(no)] & aBit)) {
    ++no;
    while (no < num && no % EGroup == 0 && !(iGroups[size_t(no / EGroup)] & aBit)) no += EGroup;
  }
  return std::min(no, num);
}

// The last block up to aBlockNo with aBit, or -1.
qint32 CVelumCardOrder::BlockUpTo(qint32 aBlockNo, quint64 aBit) const {
  qint32 no = aBlockNo;
  while (no >= 0 && !(iBits[size_t(no)] & aBit)) {
    --no;
    while (no >= 0 && no % EGroup == EGroup - 1 && !(iGroups[size_t(no / EGroup)] & aBit)) no -= EGroup;
  }
  return no;
}

Ref<CVelumArray> CVelumCardOrder::ToArray() const {
  auto array = MakeRef<CVelumArray>(EArrIntKey, EValInt);
  TVelumElem elem;
  array->BeginBulk(iCount);
  for (const auto& block : iBlocks)
    for (qint32 i = 0; i < block->Count(); ++i) {
      elem.iIntKey = block->Num(i);
      elem.iVal = TVelumValue::OfInt(block->iIds[size_t(i)]);
      array->AppendBulk(elem);
    }
  array->EndBulk();
  array->SetChanged(iChanged);
  return array;
}

// Blocks and the tree.

CVelumCardOrder::TPlace CVelumCardOrder::Search(qint32 aPos) const {
  static_cast<void>(CVelumChecked::Index(aPos, iCount));
  qint32 no = 0;
  qint32 rest = aPos;
  const qint32 size = static_cast<qint32>(iTree.size()) - 1;
  for (qint32 step = std::bit_floor(quint32(size)); step > 0; step /= 2)
    if (no + step <= size && iTree[size_t(no + step)] <= rest) {
      no += step;
      rest -= iTree[size_t(no)];
    }
  iMemo = iBlocks[size_t(no)].get();
  iMemoStart = aPos - rest;
  return {iMemo, rest};
}

qint32 CVelumCardOrder::StartOf(qint32 aBlockNo) const {
  qint32 sum = 0;
  for (qint32 i = aBlockNo; i > 0; i -= i & -i) sum += iTree[size_t(i)];
  return sum;
}

void CVelumCardOrder::AddToTree(qint32 aBlockNo, qint32 aDelta) {
  for (size_t i = size_t(aBlockNo) + 1; i < iTree.size(); i += i & (~i + 1)) iTree[i] += aDelta;
  if (iMemo && aBlockNo < iMemo->iNo) iMemoStart += aDelta;
}

// After blocks came or went.
void CVelumCardOrder::RebuildTree() {
  iTree.assign(iBlocks.size() + 1, 0);
  for (size_t i = 1; i < iTree.size(); ++i) {
    TBlock& block = *iBlocks[i - 1];
    block.iNo = static_cast<qint32>(i) - 1;
    iTree[i] += block.Count();
    const size_t next = i + (i & (~i + 1));
    if (next < iTree.size()) iTree[next] += iTree[i];
  }
  iMemo = nullptr;
  RebuildGroups();
}

void CVelumCardOrder::Split(TBlock& aBlock) {
  aBlock.WorkOut();
  auto second = std::make_unique<TBlock>();
  const auto half = aBlock.Count() / 2;
  second->iIds.assign(aBlock.iIds.begin() + half, aBlock.iIds.end());
  second->iNums.assign(aBlock.iNums.begin() + half, aBlock.iNums.end());
  aBlock.iIds.resize(size_t(half));
  aBlock.iNums.resize(size_t(half));
  for (const qint32 id : second->iIds) SetHome(id, second.get());
  iBits[size_t(aBlock.iNo)] = BitsOf(aBlock);
  iBits.insert(iBits.begin() + aBlock.iNo + 1, BitsOf(*second));
  iBlocks.insert(iBlocks.begin() + aBlock.iNo + 1, std::move(second));
  RebuildTree();
}

void CVelumCardOrder::DropBlock(TBlock& aBlock) {
  iBits.erase(iBits.begin() + aBlock.iNo);
  iBlocks.erase(iBlocks.begin() + aBlock.iNo);
  RebuildTree();
}

void CVelumCardOrder::Append(qint32 aId, qint32 aNum) {
  if (iBlocks.empty() || iBlocks.back()->Count() >= EBlockMax) {
    iBlocks.push_back(std::make_unique<TBlock>());
    iBits.push_back(0);
    // The node of a new last block covers blocks before it.
    const qint32 no = static_cast<qint32>(iBlocks.size()) - 1;
    iBlocks.back()->iNo = no;
    if (size_t(no / EGroup) >= iGroups.size()) iGroups.push_back(0);
    if (iTree.empty()) iTree.push_back(0);
    iTree.push_back(StartOf(no) - StartOf((no + 1) & no));
  }
  TBlock& block = *iBlocks.back();
  block.WorkOut();
  block.iIds.push_back(aId);
  block.iNums.push_back(aNum);
  ++iCount;
  AddToTree(block.iNo, 1);
  SetHome(aId, &block);
}

void CVelumCardOrder::SetHome(qint32 aId, TBlock* aBlock) {
  if (aId < 0 || aId >= iIdBound) return;
  if (size_t(aId) >= iHome.size()) iHome.resize(std::max(size_t(aId) + 1, iHome.size() * 3 / 2));
  iHome[size_t(aId)] = aBlock;
}

void CVelumCardOrder::SetBit(qint32 aId, quint64 aBit) {
  if (aId < 0 || aId >= iIdBound) return;
  if (size_t(aId) >= iBitNo.size()) iBitNo.resize(std::max(size_t(aId) + 1, iBitNo.size() * 3 / 2), ENoBit);
  iBitNo[size_t(aId)] = static_cast<quint8>(std::countr_zero(aBit));
}

quint64 CVelumCardOrder::BitsOf(const TBlock& aBlock) const {
  quint64 bits = 0;
  for (const qint32 id : aBlock.iIds) {
    const quint8 no = id >= 0 && size_t(id) < iBitNo.size() ? iBitNo[size_t(id)] : ENoBit;
    bits |= no < ENoBit ? quint64(1) << no : EAllBits;
  }
  return bits;
}

// The capacity that an array would have after aNum more elements.
void CVelumCardOrder::Grow(qint32 aNum) {
  const qint32 need = CVelumChecked::Add(iCount, aNum);
  if (need > iAlloc) iAlloc = CVelumChecked::Add(need, iAllocStep);
}

// On file.

void CVelumCardOrder::Internalize(CVelumFile& aFile) {
  auto array = MakeRef<CVelumArray>();
  array->Internalize(aFile);
  const bool keyedByInt = (array->Flags() & (EArrStrKey | EArrIntKey)) == EArrIntKey;
  CVelumLib::CheckRead(aFile, keyedByInt && array->Type() == EValInt, &aFile,
                       u"CVelumCardOrder.Internalize"_s, u"flags"_s);
  Adopt(*array);
}

void CVelumCardOrder::InternalizeXml(CVelumXmlParser& aParser) {
  auto array = MakeRef<CVelumArray>();
  array->InternalizeXml(aParser);
  const bool keyedByInt = (array->Flags() & (EArrStrKey | EArrIntKey)) == EArrIntKey;
  CVelumError::ThrowBadStruct(keyedByInt && array->Type() == EValInt, this,
                              u"CVelumCardOrder.InternalizeXml"_s, u"flags"_s);
  Adopt(*array);
}

void CVelumCardOrder::ExternalizeXml(CVelumXmlWriter& aWriter) {
  CVelumArray::BeginXml(aWriter, {iId, iFlags, EValInt, iAllocStep, iAlloc, iCount, iSortKeyId});
  for (const auto& block : iBlocks)
    for (qint32 i = 0; i < block->Count(); ++i) {
      aWriter.BeginElem(u"Elem"_s);
      aWriter.AddIntAttr(u"intKey"_s, block->Num(i));
      aWriter.AddShortAttr(u"type"_s, EValInt);
      aWriter.AddIntAttr(u"int"_s, block->iIds[size_t(i)]);
      aWriter.BeginStruct();
      aWriter.EndElem(u"Elem"_s);
    }
  aWriter.EndElem(u"Array"_s);
}

void CVelumCardOrder::Adopt(const CVelumArray& aArray) {
  Clear();
  iId = aArray.Id();
  iFlags = aArray.Flags();
  iAllocStep = aArray.AllocStep();
  iAlloc = aArray.Alloc();
  iSortKeyId = aArray.SortKeyId();
  if (iIdBound < EMaxId) iHome.resize(size_t(iIdBound));
  for (qint32 i = 0; i < aArray.Count(); ++i) {
    if (i % EBlockMax == 0)
      iBlocks.push_back(std::make_unique<TBlock>(std::min(EBlockMax, aArray.Count() - i)));
    const TVelumValue& val = aArray.ValRef(i);
    TBlock& block = *iBlocks.back();
    block.iIds.push_back(val.Type() == EValInt ? val.Int() : ENoInt);
    block.iNums.push_back(aArray.IntKeyAt(i));
    SetHome(block.iIds.back(), &block);
  }
  iCount = aArray.Count();
  iBits.assign(iBlocks.size(), EAllBits);
  RebuildTree();
  iChanged = false;
}

void CVelumCardOrder::Externalize(CVelumFile& aFile) {
  CVelumLib::WriteBinObjStart(aFile, EArrayTypeId, EArrayGen);
  aFile.WriteInt(iId);
  aFile.WriteInt(iFlags);
  aFile.WriteShort(EValInt);
  aFile.WriteInt(iAllocStep);
  aFile.WriteInt(iAlloc);
  aFile.WriteInt(iCount);
  aFile.WriteInt(iSortKeyId);
  for (const auto& block : iBlocks)
    for (qint32 i = 0; i < block->Count(); ++i) {
      aFile.WriteInt(block->Num(i));
      aFile.WriteShort(EValInt);
      aFile.WriteInt(block->iIds[size_t(i)]);
    }
}

qint64 CVelumCardOrder::ExtLen() const {
  return 4 + 4 + 4 + 2 + 4 + 4 + 4 + 4 + qint64(iCount) * 10;
}
