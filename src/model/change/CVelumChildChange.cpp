#include "model/change/CVelumChildChange.h"

#include "model/change/CVelumPictureStash.h"
#include "model/change/CVelumReplay.h"

using namespace CVelumChangeIo;

CVelumChildChange::~CVelumChildChange() {
  if (iStash) iStash->Drop();
}

void CVelumChildChange::Stow(CVelumPictureStash& aStash, bool aInDocument) {
  if (iKind != EChildBlob || !iChild) return;
  if (!aInDocument) {
    iStashPos = aStash.Put(*iChild);
    if (iStashPos < 0) return;
    iStash = &aStash;
  }
  iChild = nullptr;
}

void CVelumChildChange::Unstow() {
  if (!iStash) return;
  iChild = iStash->Get(iStashPos, iId);
  std::exchange(iStash, nullptr)->Drop();
}

bool CVelumChildChange::Replay(CVelumReplay& aReplay, bool aAdd, TChildAllocs aAllocs) {
  Unstow();
  return aAdd ? aReplay.AddChild(*this, aAllocs) : aReplay.RemoveChild(*this, aAllocs);
}

qint64 CVelumChildChange::Cost() const {
  return static_cast<qint64>(sizeof(*this)) + (iChild ? iChild->ExtLen() : 0);
}

void CVelumChildChange::WriteBody(CVelumFile& aFile) const {
  aFile.WriteByte(iKind);
  aFile.WriteBoolean(iAdded);
  for (const qint32 num : {iOwnerId, iId, iAfterId, iAllocs.iObjs, iAllocs.iIds}) aFile.WriteInt(num);
  Require(static_cast<bool>(iChild), u"child"_s);
  CVelumReplay::WriteChild(aFile, iKind, *iChild);
}

void CVelumChildChange::ReadBody(CVelumFile& aFile) {
  bool eof = false;
  const quint8 kind = aFile.ReadByte(eof);
  Require(kind <= EChildBlob, u"child kind"_s);
  iKind = static_cast<EChild>(kind);
  iAdded = aFile.ReadBoolean();
  for (qint32* num : {&iOwnerId, &iId, &iAfterId, &iAllocs.iObjs, &iAllocs.iIds}) *num = aFile.ReadInt();
  iChild = CVelumReplay::ReadChild(aFile, iKind, iId);
}
