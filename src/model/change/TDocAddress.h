// How a change names what it is about: an object by kind and id, a member by its name, and a value whole.
#pragma once

#include "core/TVelumValue.h"

#include <QByteArray>
#include <variant>

// Kinds of objects of a document. The numbers stand in stored changes.
enum EDocObj : quint8 {
  EDocStack = 0,
  EDocBackground = 1,
  EDocControl = 2,
  EDocCard = 3,
  EDocSortKey = 4,
  EDocIdGen = 5,
  EDocBlob = 6,
};

// An object of a stack; the stack itself and its id generator have no id.
struct TDocAddress {
  EDocObj iKind = EDocStack;
  qint32 iId = ENoInt;
  friend bool operator==(const TDocAddress&, const TDocAddress&) = default;
};

// Members that a change can set. The numbers stand in stored changes: new ones go to the end.
enum EMember : quint8 {
  EMemberName = 0,
  EMemberId,
  EMemberFlags,
  EMemberScriptSource,
  EMemberScript,
  EMemberFont,
  EMemberBackColor,
  EMemberDescr,
  EMemberListFont,
  EMemberConType,
  EMemberVisLines,
  EMemberVisChar,
  EMemberMaxChar,
  EMemberDigits,
  EMemberListVisChar,
  EMemberLabel,
  EMemberDefaultVal,
  EMemberListColTitle,
  EMemberPartnerId,
  EMemberRefControlId,
  EMemberSelBackgroundId,
  EMemberSelControlId,
  EMemberListCol,
  EMemberStdCmd,
  EMemberDestCardId,
  EMemberKeyIndexId,
  EMemberWallPaperId,
  EMemberKeyParts,
  EMemberOrderNum,
  EMemberBackgroundId,
  EMemberCreDate,
  EMemberCreTime,
  EMemberModDate,
  EMemberModTime,
  EMemberNextId,
  EMemberBlobType,
  EMemberFilename,
  EMemberFileDate,
  EMemberFileTime,
  EMemberMimeType,
  EMemberOriginalId,
  EMemberSampleId,
  EMemberWidth,
  EMemberHeight,
  EMemberBytes,
  EMemberRefCount,
  EMemberEnd, // how many there are
};

// The value of a member. Objects are fonts and arrays, which nobody changes once they are set.
using TMemberVal = std::variant<std::monostate, qint32, double, QString, QByteArray, Ref<CVelumStored>>;

namespace CVelumMember {

[[nodiscard]] inline TMemberVal ToVal(qint32 aVal) {
  return aVal;
}
[[nodiscard]] inline TMemberVal ToVal(qint16 aVal) {
  return qint32{aVal};
}
[[nodiscard]] inline TMemberVal ToVal(double aVal) {
  return aVal;
}
[[nodiscard]] inline TMemberVal ToVal(const QString& aVal) {
  return aVal;
}
[[nodiscard]] inline TMemberVal ToVal(const QByteArray& aVal) {
  return aVal;
}
template <class T> [[nodiscard]] TMemberVal ToVal(const Ref<T>& aVal) {
  return Ref<CVelumStored>(aVal.Get());
}

// Sets a slot; false if the value is of another kind, or does not fit. The slot then stays.
[[nodiscard]] inline bool FromVal(const TMemberVal& aVal, qint32& aSlot) {
  const qint32* val = std::get_if<qint32>(&aVal);
  if (val) aSlot = *val;
  return val != nullptr;
}
[[nodiscard]] inline bool FromVal(const TMemberVal& aVal, qint16& aSlot) {
  const qint32* val = std::get_if<qint32>(&aVal);
  if (!val || *val != static_cast<qint16>(*val)) return false;
  aSlot = static_cast<qint16>(*val);
  return true;
}
template <class T> [[nodiscard]] bool FromSame(const TMemberVal& aVal, T& aSlot) {
  const T* val = std::get_if<T>(&aVal);
  if (val) aSlot = *val;
  return val != nullptr;
}
[[nodiscard]] inline bool FromVal(const TMemberVal& aVal, double& aSlot) {
  return FromSame(aVal, aSlot);
}
[[nodiscard]] inline bool FromVal(const TMemberVal& aVal, QString& aSlot) {
  return FromSame(aVal, aSlot);
}
[[nodiscard]] inline bool FromVal(const TMemberVal& aVal, QByteArray& aSlot) {
  return FromSame(aVal, aSlot);
}
// An object of another class than the slot's is refused.
template <class T> [[nodiscard]] bool FromVal(const TMemberVal& aVal, Ref<T>& aSlot) {
  const auto* val = std::get_if<Ref<CVelumStored>>(&aVal);
  if (!val) return false;
  T* obj = val->Get() ? dynamic_cast<T*>(val->Get()) : nullptr;
  if (val->Get() && !obj) return false;
  aSlot = obj;
  return true;
}

} // namespace CVelumMember
