#include "model/change/CVelumMemberChange.h"

#include "core/array/CVelumArray.h"
#include "model/CVelumFont.h"
#include "model/change/CVelumReplay.h"

namespace {

using namespace CVelumChangeIo;

// What follows in bytes: the kinds of TMemberVal in their order, objects apart by their class.
enum EValForm : quint8 { ENothing, EInt, EReal, EText, EBytes, ENoObj, EFont, EArray };

void WriteObj(CVelumFile& aFile, CVelumStored* aObj) {
  if (!aObj) return aFile.WriteByte(ENoObj);
  aFile.WriteByte(dynamic_cast<CVelumFont*>(aObj) ? EFont : EArray);
  aObj->Externalize(aFile);
}

template <class T> TMemberVal ReadObj(CVelumFile& aFile) {
  auto obj = MakeRef<T>();
  obj->Internalize(aFile);
  obj->SetChanged(true);
  return Ref<CVelumStored>(obj.Get());
}

qint64 CostOfVal(const TMemberVal& aVal) {
  if (const auto* text = std::get_if<QString>(&aVal)) return CostOf(*text);
  if (const auto* bytes = std::get_if<QByteArray>(&aVal)) return bytes->size();
  const auto* obj = std::get_if<Ref<CVelumStored>>(&aVal);
  return obj && *obj ? (*obj)->ExtLen() * 2 : 0;
}

} // namespace

void CVelumChangeIo::WriteMember(CVelumFile& aFile, const TMemberVal& aVal) {
  if (const auto* num = std::get_if<qint32>(&aVal)) {
    aFile.WriteByte(EInt);
    aFile.WriteInt(*num);
  } else if (const auto* real = std::get_if<double>(&aVal)) {
    aFile.WriteByte(EReal);
    aFile.WriteReal(*real);
  } else if (const auto* text = std::get_if<QString>(&aVal)) {
    aFile.WriteByte(EText);
    WriteText(aFile, *text);
  } else if (const auto* bytes = std::get_if<QByteArray>(&aVal)) {
    aFile.WriteByte(EBytes);
    WriteBlock(aFile, *bytes);
  } else if (const auto* obj = std::get_if<Ref<CVelumStored>>(&aVal)) {
    WriteObj(aFile, obj->Get());
  } else {
    aFile.WriteByte(ENothing);
  }
}

TMemberVal CVelumChangeIo::ReadMember(CVelumFile& aFile) {
  bool eof = false;
  switch (aFile.ReadByte(eof)) {
  case ENothing:
    return {};
  case EInt:
    return aFile.ReadInt();
  case EReal:
    return aFile.ReadReal();
  case EText:
    return ReadText(aFile);
  case EBytes:
    return ReadBlock(aFile);
  case ENoObj:
    return Ref<CVelumStored>();
  case EFont:
    return ReadObj<CVelumFont>(aFile);
  case EArray:
    return ReadObj<CVelumArray>(aFile);
  default:
    Require(false, u"member value"_s);
    return {};
  }
}

bool CVelumMemberChange::Apply(CVelumReplay& aReplay) {
  return aReplay.SetMember(iObj, iMember, iOld, iNew);
}

bool CVelumMemberChange::Revert(CVelumReplay& aReplay) {
  return aReplay.SetMember(iObj, iMember, iNew, iOld);
}

qint64 CVelumMemberChange::Cost() const {
  return static_cast<qint64>(sizeof(*this)) + CostOfVal(iOld) + CostOfVal(iNew);
}

void CVelumMemberChange::WriteBody(CVelumFile& aFile) const {
  aFile.WriteByte(iObj.iKind);
  aFile.WriteInt(iObj.iId);
  aFile.WriteByte(iMember);
  WriteMember(aFile, iOld);
  WriteMember(aFile, iNew);
}

void CVelumMemberChange::ReadBody(CVelumFile& aFile) {
  bool eof = false;
  const quint8 kind = aFile.ReadByte(eof);
  Require(kind <= EDocBlob, u"kind"_s);
  iObj = {static_cast<EDocObj>(kind), aFile.ReadInt()};
  const quint8 member = aFile.ReadByte(eof);
  Require(member < EMemberEnd, u"member"_s);
  iMember = static_cast<EMember>(member);
  iOld = ReadMember(aFile);
  iNew = ReadMember(aFile);
}
