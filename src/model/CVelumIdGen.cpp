#include "model/CVelumIdGen.h"

#include "core/CVelumLib.h"
#include "core/file/CVelumFile.h"
#include "core/text/CVelumXmlParser.h"
#include "core/text/CVelumXmlWriter.h"
#include "model/change/CVelumRecorder.h"

namespace {
constexpr int ETypeId = 6;
}

qint32 CVelumIdGen::NextId() {
  // ENoInt itself can be no id: it means "unset" wherever ids are kept.
  if (iNextId >= ENoInt) CVelumError::RaiseHost(EHostOverflow);
  const qint32 id = iNextId;
  CVelumRecord::Store(*this, EMemberNextId, iNextId, id + 1, iChanged);
  return id;
}

void CVelumIdGen::Internalize(CVelumFile& aFile) {
  static_cast<void>(CVelumLib::ReadBinObjStart(aFile, ETypeId, 0, 0));
  iNextId = aFile.ReadInt();
  iChanged = false;
}

void CVelumIdGen::Externalize(CVelumFile& aFile) {
  CVelumLib::WriteBinObjStart(aFile, ETypeId, 0);
  aFile.WriteInt(iNextId);
}

qint64 CVelumIdGen::ExtLen() const {
  return 4 + 4;
}

void CVelumIdGen::InternalizeXml(CVelumXmlParser& aParser) {
  aParser.ReadAttrTerm();
  iNextId = aParser.CountAttr(u"nextId"_s);
  iChanged = false;
}

void CVelumIdGen::ExternalizeXml(CVelumXmlWriter& aWriter) {
  aWriter.BeginElem(u"IdGen"_s);
  aWriter.AddIntAttr(u"nextId"_s, iNextId);
  aWriter.EndEmptyElem();
}
