// The XML form of the blob store: everything in the cache, nothing on file.
#include "core/text/CVelumXmlParser.h"
#include "core/text/CVelumXmlWriter.h"
#include "model/blobs/CVelumBlobStore.h"

namespace {

constexpr qint16 EGen = 0;
constexpr qint16 EOtherGen = 3; // of some writers

// Every blob under its own id, each id with its blob, and no places on file.
bool TablesAgree(const CVelumArray& aIndex, const CVelumArray& aPosTab, const CVelumArray& aCache) {
  bool agree = aPosTab.Count() == 0 && aIndex.Count() == aCache.Count();
  for (qint32 i = 0; agree && i < aIndex.Count(); ++i) {
    const auto* blob = dynamic_cast<const CVelumBlob*>(aCache.ValRef(i).Obj());
    agree = aIndex.IntKeyAt(i) == aCache.IntKeyAt(i) && blob && blob->Id() == aCache.IntKeyAt(i) &&
            aIndex.ValRef(i).Type() == EValInt && aIndex.ValRef(i).Int() == ENoInt &&
            (i == 0 || aIndex.IntKeyAt(i - 1) < aIndex.IntKeyAt(i));
  }
  return agree;
}

} // namespace

void CVelumBlobStore::InternalizeXml(CVelumXmlParser& aParser) {
  aParser.ReadStructAttr(*this);
  const qint16 gen = aParser.ShortAttr(u"gen"_s);
  CVelumError::AssertObj(gen == EGen || gen == EOtherGen, this, u"InternalizeXml"_s, u"gen"_s);
  iStartPos = aParser.IntAttr(u"startPos"_s);
  iFlags = aParser.CountAttr(u"flags"_s);
  iIndex = MakeRef<CVelumArray>();
  aParser.ReadChild(*iIndex, *this, u"InternalizeXml iIdIndex"_s);
  iPosTab = MakeRef<CVelumArray>();
  aParser.ReadChild(*iPosTab, *this, u"InternalizeXml iPosTab"_s);
  iCache = MakeRef<CVelumArray>();
  aParser.ReadChild(*iCache, *this, u"InternalizeXml iBlob"_s);
  aParser.ReadTheNext(u"BlobStore"_s, true);
  CheckXmlTables();
  // Whatever a damaged flag says, nothing is on file.
  iFlags = (iFlags | EBstRamBased) & ~EBstFileBased;
  IncDynRefCounts();
  iChanged = false;
  CheckConsistency();
}

void CVelumBlobStore::CheckXmlTables() const {
  constexpr qint32 EKeys = EArrStrKey | EArrIntKey;
  const bool kinds = (iIndex->Flags() & EKeys) == EArrIntKey && iIndex->Type() == EValInt &&
                     (iPosTab->Flags() & EKeys) == 0 && iPosTab->Type() == EValIntPair &&
                     (iCache->Flags() & EKeys) == EArrIntKey && iCache->Type() == EValBlob;
  CVelumError::ThrowBadStruct(kinds && TablesAgree(*iIndex, *iPosTab, *iCache), this,
                              u"CVelumBlobStore.InternalizeXml"_s, u"tables"_s);
}

void CVelumBlobStore::ExternalizeXml(CVelumXmlWriter& aWriter) {
  CVelumError::AssertObj(Flag(EBstRamBased), this, u"ExternalizeXml"_s, u"EBstRamBased"_s);
  aWriter.BeginElem(u"BlobStore"_s);
  aWriter.AddShortAttr(u"gen"_s, EGen);
  aWriter.AddIntAttr(u"startPos"_s, iStartPos);
  aWriter.AddIntAttr(u"flags"_s, iFlags);
  aWriter.BeginStruct();
  iIndex->ExternalizeXml(aWriter);
  iPosTab->ExternalizeXml(aWriter);
  iCache->ExternalizeXml(aWriter);
  aWriter.EndElem(u"BlobStore"_s);
}
