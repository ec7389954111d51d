// The single typed value of the system.
#pragma once

#include "core/CVelumConst.h"
#include "core/CVelumObject.h"

#include <cstring>
#include <new>

// A tagged value of 32 bytes. Only the slot of the tag means anything; reading another slot gives that
// slot's zero (empty text, 0, false, nothing). Setting a slot sets the tag that owns it.
class TVelumValue {
public:
  TVelumValue() {}
  TVelumValue(const TVelumValue& aOther) {
    if (aOther.IsCounted()) {
      CopyFrom(aOther);
    } else {
      iSlot.CopyPlain(aOther.iSlot);
      iType = aOther.iType;
    }
  }
  TVelumValue(TVelumValue&& aOther) noexcept { MoveFrom(aOther); }
  TVelumValue& operator=(const TVelumValue& aOther) {
    if (this != &aOther) {
      TVelumValue copy(aOther);
      Drop();
      MoveFrom(copy);
    }
    return *this;
  }
  TVelumValue& operator=(TVelumValue&& aOther) noexcept {
    if (this != &aOther) {
      Drop();
      MoveFrom(aOther);
    }
    return *this;
  }
  ~TVelumValue() { Drop(); }

  [[nodiscard]] static TVelumValue OfStr(QString aStr) {
    TVelumValue val;
    new (&val.iSlot.iStr) QString(std::move(aStr));
    val.iType = EValStr;
    return val;
  }
  [[nodiscard]] static TVelumValue OfInt(qint32 aInt) {
    TVelumValue val;
    val.iSlot.iInt = aInt;
    val.iType = EValInt;
    return val;
  }
  [[nodiscard]] static TVelumValue OfReal(double aReal) {
    TVelumValue val;
    val.iSlot.iReal = aReal;
    val.iType = EValReal;
    return val;
  }
  [[nodiscard]] static TVelumValue OfDate(double aDate) {
    TVelumValue val = OfReal(aDate);
    val.iType = EValDate;
    return val;
  }
  [[nodiscard]] static TVelumValue OfTime(double aTime) {
    TVelumValue val = OfReal(aTime);
    val.iType = EValTime;
    return val;
  }
  [[nodiscard]] static TVelumValue OfBoolean(bool aBoolean) {
    TVelumValue val = OfInt(aBoolean ? 1 : 0);
    val.iType = EValBoolean;
    return val;
  }
  [[nodiscard]] static TVelumValue OfBlobId(qint32 aId) {
    TVelumValue val = OfInt(aId);
    val.iType = EValBlobId;
    return val;
  }
  [[nodiscard]] static TVelumValue OfPair(qint32 aInt0, qint32 aInt1) {
    TVelumValue val;
    val.iSlot.iPair[0] = aInt0;
    val.iSlot.iPair[1] = aInt1;
    val.iType = EValIntPair;
    return val;
  }
  // aTag is 100 to 105.
  [[nodiscard]] static TVelumValue OfObj(int aTag, const Ref<CVelumStored>& aObj);
  // A value of any tag, known or not, with the slot at its zero.
  [[nodiscard]] static TVelumValue OfType(int aTag);

  [[nodiscard]] int Type() const { return iType; }
  [[nodiscard]] const QString& Str() const;
  [[nodiscard]] qint32 Int() const { return iType == EValInt || iType == EValBlobId ? iSlot.iInt : 0; }
  [[nodiscard]] double Real() const { return iType == EValReal ? iSlot.iReal : 0.0; }
  // Whole days since 30 December 1899.
  [[nodiscard]] double Date() const { return iType == EValDate ? iSlot.iReal : 0.0; }
  // Fraction of a day (a converted text may carry days too).
  [[nodiscard]] double Time() const { return iType == EValTime ? iSlot.iReal : 0.0; }
  [[nodiscard]] bool Boolean() const { return iType == EValBoolean && iSlot.iInt != 0; }
  [[nodiscard]] CVelumStored* Obj() const { return IsObjType() ? iSlot.iObj : nullptr; }
  [[nodiscard]] qint32 Int0() const { return iType == EValIntPair ? iSlot.iPair[0] : 0; }
  [[nodiscard]] qint32 Int1() const { return iType == EValIntPair ? iSlot.iPair[1] : 0; }
  // Replaces the number of an integer in place; nothing for any other tag.
  void ReplaceInt(qint32 aInt) {
    if (iType == EValInt) iSlot.iInt = aInt;
  }
  // Replaces an object by one of the same tag, and gives back the old one; nothing for any other tag.
  template <class T> void SwapObj(Ref<T>& aObj) {
    if (!IsObjType()) return;
    CVelumStored* old = std::exchange(iSlot.iObj, aObj.Detach());
    aObj = Ref<T>::Adopt(static_cast<T*>(old));
  }
  // Appends to a text in place; nothing for any other tag.
  void AppendStr(QStringView aStr) {
    if (iType == EValStr) iSlot.iStr += aStr;
  }
  [[nodiscard]] bool IsObjType() const { return iType >= EValCard && iType <= EValBlob; }

private:
  // Whether the slot needs more than its bytes.
  [[nodiscard]] bool IsCounted() const { return iType == EValStr || IsObjType(); }
  // For a text or an object.
  void CopyFrom(const TVelumValue& aOther);
  // Takes the slot and leaves aOther undefined. A text may be moved by its bytes (Qt calls it relocatable).
  void MoveFrom(TVelumValue& aOther) noexcept {
    std::memcpy(static_cast<void*>(&iSlot), static_cast<const void*>(&aOther.iSlot), sizeof(TSlot));
    iType = std::exchange(aOther.iType, qint16{EValUndef});
  }
  // Gives up what the slot holds, and leaves the value undefined.
  void Drop() {
    if (IsCounted()) DropCounted();
    iType = EValUndef;
  }
  void DropCounted();

  union TSlot {
    TSlot() : iReal(0.0) {}
    ~TSlot() {}
    // All slots but the text; an 8-byte copy covers each of them.
    void CopyPlain(const TSlot& aOther) {
      std::memcpy(static_cast<void*>(this), static_cast<const void*>(&aOther), sizeof(double));
    }
    QString iStr;
    qint32 iInt;
    qint32 iPair[2];
    double iReal;
    CVelumStored* iObj; // counted by TVelumValue
  } iSlot;
  qint16 iType = EValUndef;
};

static_assert(sizeof(TVelumValue) <= 32);
