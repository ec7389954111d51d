#include "core/TVelumValue.h"

TVelumValue TVelumValue::OfStr(QString aStr) {
  TVelumValue val;
  new (&val.iSlot.iStr) QString(std::move(aStr));
  val.iType = EValStr;
  return val;
}

TVelumValue TVelumValue::OfInt(qint32 aInt) {
  TVelumValue val;
  val.iSlot.iInt = aInt;
  val.iType = EValInt;
  return val;
}

TVelumValue TVelumValue::OfReal(double aReal) {
  TVelumValue val;
  val.iSlot.iReal = aReal;
  val.iType = EValReal;
  return val;
}

TVelumValue TVelumValue::OfDate(double aDate) {
  TVelumValue val = OfReal(aDate);
  val.iType = EValDate;
  return val;
}

TVelumValue TVelumValue::OfTime(double aTime) {
  TVelumValue val = OfReal(aTime);
  val.iType = EValTime;
  return val;
}

TVelumValue TVelumValue::OfBoolean(bool aBoolean) {
  TVelumValue val = OfInt(aBoolean ? 1 : 0);
  val.iType = EValBoolean;
  return val;
}

TVelumValue TVelumValue::OfBlobId(qint32 aId) {
  TVelumValue val = OfInt(aId);
  val.iType = EValBlobId;
  return val;
}

TVelumValue TVelumValue::OfPair(qint32 aInt0, qint32 aInt1) {
  TVelumValue val;
  val.iSlot.iPair[0] = aInt0;
  val.iSlot.iPair[1] = aInt1;
  val.iType = EValIntPair;
  return val;
}

TVelumValue TVelumValue::OfObj(int aTag, Ref<CVelumStored> aObj) {
  Q_ASSERT(aTag >= EValCard && aTag <= EValBlob);
  TVelumValue val = OfType(aTag);
  val.iSlot.iObj = aObj.Get();
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
