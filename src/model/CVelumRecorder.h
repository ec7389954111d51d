// The one place through which every change of the model passes.
#pragma once

#include "core/array/CVelumArray.h"

// Listens to changes of the model. Undo, redo and recovery will hang on it.
class CVelumRecorder {
public:
  virtual ~CVelumRecorder() = default;
  // A member of an object got another value. Members of kinds that no value can hold are told by their
  // text (arrays, fonts: ObjDescr).
  virtual void MemberSet(const CVelumObject& aObj, const char* aMember, const TVelumValue& aOld,
                         const TVelumValue& aNew) = 0;
  // aChild entered or left the collection aMember of aOwner, at the place (index or key) aPlace.
  virtual void Added(const CVelumObject& aOwner, const char* aMember, const CVelumObject& aChild,
                     qint32 aPlace) = 0;
  virtual void Removed(const CVelumObject& aOwner, const char* aMember, const CVelumObject& aChild,
                       qint32 aPlace) = 0;
  // A card got another value of its own for a field; null stands for none.
  virtual void CardVal(const CVelumObject& aCard, qint32 aControlId, const TVelumValue* aOld,
                       const TVelumValue* aNew) {
    static_cast<void>(aControlId);
    MemberSet(aCard, "Value", aOld ? *aOld : TVelumValue(), aNew ? *aNew : TVelumValue());
  }
  // The card order was rebuilt as a whole (sort, renumbering, block move).
  virtual void OrderRebuilt(const CVelumObject& aStack) = 0;
};

namespace CVelumRecord {

// The installed recorder, or null: with nobody listening nothing else is done.
inline CVelumRecorder* gRecorder = nullptr;

[[nodiscard]] inline TVelumValue ToRecord(const QString& aVal) {
  return TVelumValue::OfStr(aVal);
}
[[nodiscard]] inline TVelumValue ToRecord(qint32 aVal) {
  return TVelumValue::OfInt(aVal);
}
[[nodiscard]] inline TVelumValue ToRecord(qint16 aVal) {
  return TVelumValue::OfInt(aVal);
}
[[nodiscard]] inline TVelumValue ToRecord(double aVal) {
  return TVelumValue::OfReal(aVal);
}
[[nodiscard]] inline TVelumValue ToRecord(float aVal) {
  return TVelumValue::OfReal(static_cast<double>(aVal));
}
[[nodiscard]] inline TVelumValue ToRecord(bool aVal) {
  return TVelumValue::OfBoolean(aVal);
}
template <class T> [[nodiscard]] TVelumValue ToRecord(const Ref<T>& aVal) {
  return aVal ? TVelumValue::OfStr(aVal->ObjDescr()) : TVelumValue();
}

// Stores a member and records the change; the caller marks its object changed.
template <class T> void Store(const CVelumObject& aObj, const char* aMember, T& aSlot, T aNew) {
  if (gRecorder) gRecorder->MemberSet(aObj, aMember, ToRecord(aSlot), ToRecord(aNew));
  aSlot = std::move(aNew);
}
// The same, and sets the mark: what most setters are made of.
template <class T>
void Store(const CVelumObject& aObj, const char* aMember, T& aSlot, T aNew, bool& aChanged) {
  Store(aObj, aMember, aSlot, std::move(aNew));
  aChanged = true;
}

// aChild entered the collection aMember of aOwner.
inline void Added(const CVelumObject& aOwner, const char* aMember, const CVelumObject& aChild,
                  qint32 aPlace) {
  if (gRecorder) gRecorder->Added(aOwner, aMember, aChild, aPlace);
}
// aChild is about to leave it.
inline void Removed(const CVelumObject& aOwner, const char* aMember, const CVelumObject& aChild,
                    qint32 aPlace) {
  if (gRecorder) gRecorder->Removed(aOwner, aMember, aChild, aPlace);
}
inline void CardVal(const CVelumObject& aCard, qint32 aControlId, const TVelumValue* aOld,
                    const TVelumValue* aNew) {
  if (gRecorder) gRecorder->CardVal(aCard, aControlId, aOld, aNew);
}
inline void OrderRebuilt(const CVelumObject& aStack) {
  if (gRecorder) gRecorder->OrderRebuilt(aStack);
}

} // namespace CVelumRecord
