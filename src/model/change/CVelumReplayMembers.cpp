// Where the members of each class stand that a change can set.
#include "core/CVelumChecked.h"
#include "model/change/CVelumMemberChange.h"
#include "model/change/CVelumReplay.h"
#include "model/order/CVelumSortKey.h"

#include <QDataStream>
#include <QIODevice>

namespace {

// Whether two values are the same; objects by what they would write.
QByteArray StoredForm(CVelumStored& aObj) {
  const Ref<CVelumFile> file = CVelumChangeIo::NewMemoryFile();
  aObj.Externalize(*file);
  file->SeekPos(0);
  return file->ReadRawBytes(file->Size());
}

bool SameObj(const Ref<CVelumStored>& aA, const Ref<CVelumStored>& aB) {
  if (aA == aB) return true;
  return aA && aB && aA->ExtLen() == aB->ExtLen() && StoredForm(*aA) == StoredForm(*aB);
}

bool SameVal(const TMemberVal& aA, const TMemberVal& aB) {
  const auto* a = std::get_if<Ref<CVelumStored>>(&aA);
  const auto* b = std::get_if<Ref<CVelumStored>>(&aB);
  return a && b ? SameObj(*a, *b) : aA == aB;
}

// Reads a slot, and sets it where it holds what is expected.
class CExchange {
public:
  CExchange(const TMemberVal& aOld, const TMemberVal& aNew) : iOld(aOld), iNew(aNew) {}
  template <class T> bool operator()(T& aSlot) const {
    return SameVal(CVelumMember::ToVal(aSlot), iOld) && CVelumMember::FromVal(iNew, aSlot);
  }

private:
  const TMemberVal& iOld;
  const TMemberVal& iNew;
};

} // namespace

// What stands in several classes: a table row each, so that a reader sees where a member is kept.
#define ORVELLES_MEMBER(aMember, aSlot)                                                                      \
  case aMember:                                                                                              \
    return aTake(aSlot)

template <class TTake> bool CVelumReplay::AtScripted(CVelumScripted& aObj, EMember aMember, TTake aTake) {
  switch (aMember) {
    ORVELLES_MEMBER(EMemberName, aObj.iName);
    ORVELLES_MEMBER(EMemberId, aObj.iId);
    ORVELLES_MEMBER(EMemberFlags, aObj.iFlags);
    ORVELLES_MEMBER(EMemberScriptSource, aObj.Extras().iScriptSource);
    ORVELLES_MEMBER(EMemberScript, aObj.Extras().iScript);
    ORVELLES_MEMBER(EMemberFont, aObj.Extras().iFont);
    ORVELLES_MEMBER(EMemberBackColor, aObj.iBackColor);
  default:
    return false;
  }
}

template <class TTake> bool CVelumReplay::AtControl(CVelumControl& aObj, EMember aMember, TTake aTake) {
  switch (aMember) {
    ORVELLES_MEMBER(EMemberConType, aObj.iConType);
    ORVELLES_MEMBER(EMemberVisLines, aObj.iVisLines);
    ORVELLES_MEMBER(EMemberVisChar, aObj.iVisChar);
    ORVELLES_MEMBER(EMemberMaxChar, aObj.iMaxChar);
    ORVELLES_MEMBER(EMemberDigits, aObj.iDigits);
    ORVELLES_MEMBER(EMemberListVisChar, aObj.iListVisChar);
    ORVELLES_MEMBER(EMemberDescr, aObj.iDescr);
    ORVELLES_MEMBER(EMemberLabel, aObj.iLabel);
    ORVELLES_MEMBER(EMemberDefaultVal, aObj.iDefaultVal);
    ORVELLES_MEMBER(EMemberListColTitle, aObj.iListColTitle);
    ORVELLES_MEMBER(EMemberPartnerId, aObj.iPartnerId);
    ORVELLES_MEMBER(EMemberRefControlId, aObj.iRefControlId);
    ORVELLES_MEMBER(EMemberSelBackgroundId, aObj.iSelBackgroundId);
    ORVELLES_MEMBER(EMemberSelControlId, aObj.iSelControlId);
    ORVELLES_MEMBER(EMemberListCol, aObj.iListCol);
    ORVELLES_MEMBER(EMemberStdCmd, aObj.iStdCmd);
    ORVELLES_MEMBER(EMemberDestCardId, aObj.iDestCardId);
  default:
    return AtScripted(aObj, aMember, aTake);
  }
}

template <class TTake> bool CVelumReplay::AtBackground(CVelumControlSet& aObj, EMember aMember, TTake aTake) {
  switch (aMember) {
    ORVELLES_MEMBER(EMemberDescr, aObj.iDescr);
    ORVELLES_MEMBER(EMemberKeyIndexId, aObj.iKeyIndexId);
    ORVELLES_MEMBER(EMemberWallPaperId, aObj.iWallPaperId);
  default:
    return AtScripted(aObj, aMember, aTake);
  }
}

template <class TTake> bool CVelumReplay::AtCard(CVelumCard& aObj, EMember aMember, TTake aTake) {
  switch (aMember) {
    ORVELLES_MEMBER(EMemberOrderNum, aObj.iOrderNum);
    ORVELLES_MEMBER(EMemberBackgroundId, aObj.iBackgroundId);
    ORVELLES_MEMBER(EMemberCreDate, aObj.iCreDate);
    ORVELLES_MEMBER(EMemberCreTime, aObj.iCreTime);
    ORVELLES_MEMBER(EMemberModDate, aObj.iModDate);
    ORVELLES_MEMBER(EMemberModTime, aObj.iModTime);
  default:
    return AtScripted(aObj, aMember, aTake);
  }
}

template <class TTake> bool CVelumReplay::AtStack(CVelumStack& aObj, EMember aMember, TTake aTake) {
  switch (aMember) {
    ORVELLES_MEMBER(EMemberDescr, aObj.iDescr);
    ORVELLES_MEMBER(EMemberListFont, aObj.iListFont);
  default:
    return AtScripted(aObj, aMember, aTake);
  }
}

template <class TTake> bool CVelumReplay::AtBlob(CVelumBlob& aObj, EMember aMember, TTake aTake) {
  switch (aMember) {
    ORVELLES_MEMBER(EMemberBlobType, aObj.iBlobType);
    ORVELLES_MEMBER(EMemberName, aObj.iName);
    ORVELLES_MEMBER(EMemberFilename, aObj.iFilename);
    ORVELLES_MEMBER(EMemberCreDate, aObj.iCreDate);
    ORVELLES_MEMBER(EMemberCreTime, aObj.iCreTime);
    ORVELLES_MEMBER(EMemberFileDate, aObj.iFileDate);
    ORVELLES_MEMBER(EMemberFileTime, aObj.iFileTime);
    ORVELLES_MEMBER(EMemberMimeType, aObj.iMimeType);
    ORVELLES_MEMBER(EMemberOriginalId, aObj.iOriginalId);
    ORVELLES_MEMBER(EMemberSampleId, aObj.iSampleId);
    ORVELLES_MEMBER(EMemberWidth, aObj.iWidth);
    ORVELLES_MEMBER(EMemberHeight, aObj.iHeight);
    ORVELLES_MEMBER(EMemberBytes, aObj.iBytes);
    ORVELLES_MEMBER(EMemberRefCount, aObj.iRefCount);
  default:
    return false;
  }
}

#undef ORVELLES_MEMBER

namespace {
constexpr EMember EBlobMembers[] = {EMemberBlobType,   EMemberName,     EMemberFilename, EMemberCreDate,
                                    EMemberCreTime,    EMemberFileDate, EMemberFileTime, EMemberMimeType,
                                    EMemberOriginalId, EMemberSampleId, EMemberWidth,    EMemberHeight,
                                    EMemberBytes,      EMemberRefCount};
} // namespace

// Its own form cannot hold a picture without content.
void CVelumReplay::WriteBlob(CVelumFile& aFile, CVelumBlob& aBlob) {
  for (const EMember member : EBlobMembers)
    AtBlob(aBlob, member, [&](auto& aSlot) {
      CVelumChangeIo::WriteMember(aFile, CVelumMember::ToVal(aSlot));
      return true;
    });
}

Ref<CVelumBlob> CVelumReplay::ReadBlob(CVelumFile& aFile, qint32 aId) {
  auto blob = MakeRef<CVelumBlob>(aId);
  for (const EMember member : EBlobMembers) {
    const TMemberVal val = CVelumChangeIo::ReadMember(aFile);
    const bool ok = AtBlob(*blob, member, [&](auto& aSlot) { return CVelumMember::FromVal(val, aSlot); });
    CVelumChangeIo::Require(ok, u"blob"_s);
  }
  return blob;
}

// Parts of a sort key as bytes: five numbers each.
QByteArray CVelumReplay::PartsOf(const CVelumSortKey& aKey) {
  QByteArray parts;
  QDataStream out(&parts, QIODevice::WriteOnly);
  for (qint32 i = 0; i < aKey.iNumKeyPart; ++i) {
    const TVelumKeyPart& part = aKey.iKeyPart[i];
    out << part.iType << part.iControlId << part.iWay << part.iLen << part.iPos;
  }
  return parts;
}

bool CVelumReplay::SetParts(CVelumSortKey& aKey, const QByteArray& aParts) {
  constexpr qsizetype each = 3 * 4 + 2 * 2;
  const qsizetype count = aParts.size() / each;
  if (aParts.size() % each != 0 || count > CVelumSortKey::EMaxParts) return false;
  QDataStream in(aParts);
  for (qsizetype i = 0; i < count; ++i) {
    TVelumKeyPart& part = aKey.iKeyPart[i];
    in >> part.iType >> part.iControlId >> part.iWay >> part.iLen >> part.iPos;
  }
  aKey.iNumKeyPart = static_cast<qint32>(count);
  return true;
}

bool CVelumReplay::ExchangeKey(CVelumSortKey& aKey, EMember aMember, const TMemberVal& aOld,
                               const TMemberVal& aNew) {
  aKey.iChanged = true;
  if (aMember == EMemberName) return CExchange(aOld, aNew)(aKey.iName);
  const auto* parts = std::get_if<QByteArray>(&aNew);
  return aMember == EMemberKeyParts && parts && SameVal(PartsOf(aKey), aOld) && SetParts(aKey, *parts);
}

bool CVelumReplay::ExchangeControl(CVelumControl& aControl, EMember aMember, const TMemberVal& aOld,
                                   const TMemberVal& aNew) {
  const int lisType = aControl.LisType();
  if (!AtControl(aControl, aMember, CExchange(aOld, aNew))) return false;
  aControl.iChanged = true;
  if (aMember == EMemberDefaultVal) aControl.iListBasis = 0;
  aControl.DropStaleBoxes(lisType);
  return true;
}

TMemberVal CVelumReplay::ValueOf(CVelumCard& aCard, EMember aMember) {
  TMemberVal val;
  AtCard(aCard, aMember, [&val](auto& aSlot) {
    val = CVelumMember::ToVal(aSlot);
    return true;
  });
  return val;
}

bool CVelumReplay::ExchangeCard(CVelumCard& aCard, EMember aMember, const TMemberVal& aOld,
                                const TMemberVal& aNew) {
  const qint32 background = aCard.iBackgroundId;
  // Computing a list moves the date of its card, which is no change: the date is set whatever it is.
  const bool free = aMember == EMemberModDate || aMember == EMemberModTime;
  if (!AtCard(aCard, aMember, CExchange(free ? ValueOf(aCard, aMember) : aOld, aNew))) return false;
  aCard.iChanged = true;
  if (aMember == EMemberBackgroundId) iStack.BackgroundSet(aCard, background);
  if (aMember == EMemberCreDate || aMember == EMemberCreTime) iStack.iCardFinder.Note(aCard, ENoInt);
  iStack.ChangeCard(aCard);
  return true;
}

bool CVelumReplay::ExchangeBlob(qint32 aId, EMember aMember, const TMemberVal& aOld, const TMemberVal& aNew) {
  const Ref<CVelumBlobStore> store = iStack.BlobStore();
  if (!store || !store->HasBlob(aId)) return false;
  const Ref<CVelumBlob> blob = store->ReadBlob(aId, false);
  if (!AtBlob(*blob, aMember, CExchange(aOld, aNew))) return false;
  blob->iChanged = true;
  return true;
}

bool CVelumReplay::SetMember(TDocAddress aObj, EMember aMember, const TMemberVal& aOld,
                             const TMemberVal& aNew) {
  const CExchange exchange(aOld, aNew);
  bool done = false;
  switch (aObj.iKind) {
  case EDocStack:
    done = AtStack(iStack, aMember, exchange);
    iStack.iChanged = true;
    break;
  case EDocBackground:
    if (CVelumControlSet* background = iStack.FindBackground(aObj.iId)) {
      done = AtBackground(*background, aMember, exchange);
      background->iChanged = true;
      background->iKeyIndex = nullptr;
    }
    break;
  case EDocControl:
    if (auto* control = static_cast<CVelumControl*>(Find(iStack, aObj)))
      done = ExchangeControl(*control, aMember, aOld, aNew);
    break;
  case EDocCard:
    if (CVelumCard* card = iStack.FindCard(aObj.iId)) done = ExchangeCard(*card, aMember, aOld, aNew);
    break;
  case EDocSortKey:
    if (auto* key = static_cast<CVelumSortKey*>(Find(iStack, aObj)))
      done = ExchangeKey(*key, aMember, aOld, aNew);
    break;
  case EDocIdGen:
    done = aMember == EMemberNextId && exchange(iStack.iIdGen->iNextId);
    iStack.iIdGen->iChanged = true;
    break;
  case EDocBlob:
    done = ExchangeBlob(aObj.iId, aMember, aOld, aNew);
    break;
  }
  if (done) NoteMember(aObj, aMember);
  return done;
}

void CVelumReplay::NoteMember(TDocAddress aObj, EMember aMember) {
  switch (aObj.iKind) {
  case EDocCard:
    iDone.iValues = true;
    iDone.iCardId = aObj.iId;
    iDone.iCards = iDone.iCards || aMember == EMemberBackgroundId;
    break;
  case EDocSortKey:
    iDone.iSortKeys = true;
    break;
  case EDocIdGen:
  case EDocBlob:
    break;
  default:
    iDone.iStructure = true;
  }
}
