#include "persist/CVelumViewState.h"

#include "core/CVelumChecked.h"
#include "core/CVelumFile.h"
#include "core/CVelumLib.h"

namespace {
constexpr int ETypeId = 4;
constexpr int EGen = 0;
} // namespace

CVelumViewState::CVelumViewState()
    : iCardViewRect(MakeRef<CVelumRect>()), iCardListRect(MakeRef<CVelumRect>()) {}

CVelumViewState::CVelumViewState(QString aName) : CVelumViewState() {
  iName = std::move(aName);
}

void CVelumViewState::Internalize(CVelumFile& aFile) {
  static_cast<void>(CVelumLib::ReadBinObjStart(aFile, ETypeId, EGen, EGen));
  iName = aFile.ReadStr();
  iCardViewOpen = aFile.ReadBoolean();
  iCardViewRect = MakeRef<CVelumRect>();
  iCardViewRect->Internalize(aFile);
  iCardListOpen = aFile.ReadBoolean();
  iCardListRect = MakeRef<CVelumRect>();
  iCardListRect->Internalize(aFile);
}

void CVelumViewState::Externalize(CVelumFile& aFile) {
  CVelumLib::WriteBinObjStart(aFile, ETypeId, EGen);
  aFile.WriteStr(iName);
  aFile.WriteBoolean(iCardViewOpen);
  CVelumChecked::Deref(iCardViewRect).Externalize(aFile);
  aFile.WriteBoolean(iCardListOpen);
  CVelumChecked::Deref(iCardListRect).Externalize(aFile);
}

qint64 CVelumViewState::ExtLen() const {
  return 4 + CVelumFile::ExtStrLen(iName) + 2 + iCardViewRect->ExtLen() + 2 + iCardListRect->ExtLen();
}
