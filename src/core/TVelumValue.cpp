#include "core/TVelumValue.h"

TVelumValue TVelumValue::OfObj(int aTag, const Ref<CVelumStored>& aObj) {
  Q_ASSERT(aTag >= EValCard && aTag <= EValBlob);
  TVelumValue val;
  val.iSlot.iObj = aObj.Get();
  val.iType = static_cast<qint16>(aTag);
  if (val.iSlot.iObj) val.iSlot.iObj->AddRef();
  return val;
}

TVelumValue TVelumValue::OfType(int aTag) {
  const auto tag = static_cast<qint16>(aTag);
  if (tag == EValStr) return OfStr({});
  TVelumValue val;
  if (tag >= EValCard && tag <= EValBlob) val.iSlot.iObj = nullptr;
  val.iType = tag;
  return val;
}

const QString& TVelumValue::Str() const {
  static const QString empty;
  return iType == EValStr ? iSlot.iStr : empty;
}

void TVelumValue::CopyFrom(const TVelumValue& aOther) {
  if (aOther.iType == EValStr) {
    new (&iSlot.iStr) QString(aOther.iSlot.iStr);
  } else {
    iSlot.iObj = aOther.iSlot.iObj;
    if (iSlot.iObj) iSlot.iObj->AddRef();
  }
  iType = aOther.iType;
}

void TVelumValue::DropCounted() {
  if (iType == EValStr) {
    iSlot.iStr.~QString();
    return;
  }
  CVelumStored* obj = std::exchange(iSlot.iObj, nullptr);
  if (obj) obj->DropRef();
}
