// The one container of the program.
#pragma once

#include "core/CVelumSeams.h"
#include "core/array/CVelumArrayStore.h"

#include <functional>

// Mode bits of CVelumArray, as they stand in files.
enum EArr : qint32 {
  EArrStrKey = 1,     // keyed and sorted by iStrKey
  EArrIntKey = 2,     // keyed and sorted by iIntKey
  EArrSortKey = 4,    // order of iStrKey comes from the sort key; together with EArrStrKey
  EArrDuplicates = 8, // equal keys are allowed
  EArrMixed = 16,     // elements may have different types
  EArrExactCase = 32, // iStrKey is compared by code units
};

// One element as it is handed in and out; storage inside the array is more compact.
struct TVelumElem {
  QString iStrKey;
  qint32 iIntKey = ENoInt;
  TVelumValue iVal;
};

// A growable vector that is optionally kept sorted by a key, with binary search on it, and that writes
// itself to a file. Indices run from 0 to Count() - 1; misuse ends in the assertions named at each
// operation, and when those are overruled in host error 9.
class CVelumArray final : public CVelumStored {
public:
  // An array that has only been allocated: for Internalize.
  CVelumArray();
  // Construct: flags EArr..., element type EVal....
  CVelumArray(qint32 aFlags, qint32 aType);
  ~CVelumArray() override;

  [[nodiscard]] QString ObjDescr() const override;
  [[nodiscard]] qint32 Id() const { return iId; }
  void SetId(qint32 aId);
  [[nodiscard]] qint32 Flags() const { return iFlags; }
  // Does not sort anew.
  void SetFlags(qint32 aFlags);
  [[nodiscard]] qint32 Type() const { return iType; }
  [[nodiscard]] qint32 Count() const { return iMax; }
  [[nodiscard]] qint32 Alloc() const { return iAlloc; }
  [[nodiscard]] qint32 AllocStep() const { return iAllocStep; }
  [[nodiscard]] bool Changed() const override;
  void SetChanged(bool aChanged) override;
  // The array's own mark, elements left out.
  [[nodiscard]] bool OwnChanged() const { return iChanged; }

  // Unkeyed arrays of one type: value at an index.
  [[nodiscard]] QString Str(qint32 aIndex) const;
  void SetStr(qint32 aIndex, const QString& aStr);
  [[nodiscard]] qint32 IntNum(qint32 aIndex) const;
  void SetIntNum(qint32 aIndex, qint32 aInt);
  [[nodiscard]] Ref<CVelumStored> Obj(qint32 aIndex) const;
  void SetObj(qint32 aIndex, const Ref<CVelumStored>& aObj);

  [[nodiscard]] qint32 SortKeyId() const { return iSortKeyId; }
  void SetSortKeyId(qint32 aId);
  void SetSortKey(const Ref<CVelumKeyOrder>& aKey);
  // The key of SortKeyId as the owner found it after a load: the key lives in the stack that owns the array.
  // Does not mark the array changed.
  void ResolveSortKey(const Ref<CVelumKeyOrder>& aKey);
  // Nothing when the array has no sort key, or when it has not been resolved.
  [[nodiscard]] Ref<CVelumKeyOrder> SortKey() const;

  // Linear scans from index 0. aIndex is Count() when not found.
  [[nodiscard]] bool GetStrIndex(const QString& aStr, qint32& aIndex) const;
  [[nodiscard]] bool GetIntIndex(qint32 aInt, qint32& aIndex) const;
  [[nodiscard]] bool GetObjIndex(const CVelumStored* aObj, qint32& aIndex) const;

  // Objects of an unkeyed array stay behind until their slots are overwritten; so do those that DeleteAt and
  // SetToLastObj cut off.
  void Clear();
  void DeleteAt(qint32 aIndex, qint32 aNum = 1);
  // Moves a block to stand before aTo, which lies outside the block; keyed arrays must renumber.
  void Move(qint32 aFrom, qint32 aNum, qint32 aTo, bool aRenumber, qint32 aStep);
  // Cuts off the empty slots behind the last object, and lowers the capacity that is written to the file.
  void SetToLastObj();
  void DeleteStrKey(const QString& aKey);
  void DeleteIntKey(qint32 aKey);
  // Adds aDelta to every integer value >= aFrom that is set. Does not mark the array changed.
  void AdjustInt(qint32 aFrom, qint32 aDelta);
  [[nodiscard]] bool ReadStr(const QString& aKey, QString& aStr, qint32& aNext) const;
  void SetFirst(qint32& aIndex) const { aIndex = 0; }
  void SetLast(qint32& aIndex) const { aIndex = iMax; }
  // The keys become aStep, 2 * aStep, ... in their present order; as strings right-aligned in the width of
  // the first key, and cut on the left. Host error 6 when the last number does not fit 32 bits.
  void RenumberStrKey(qint32 aStep);
  void RenumberIntKey(qint32 aStep);
  // Exchanges all members and elements.
  void Swap(CVelumArray& aOther) noexcept;
  // Sorts an unkeyed array of strings in collation order.
  void Sort();

  void Internalize(CVelumFile& aFile) override;
  void Externalize(CVelumFile& aFile) override;
  // Asserts for an array of blobs, which is never stored.
  [[nodiscard]] qint64 ExtLen() const override;
  [[nodiscard]] QStringView XmlTag() const override { return u"Array"; }
  void InternalizeXml(CVelumXmlParser& aParser) override;
  void ExternalizeXml(CVelumXmlWriter& aWriter) override;

  // The members that stand in front of the elements.
  struct TXmlHead {
    qint32 iId;
    qint32 iFlags;
    qint16 iType;
    qint32 iAllocStep;
    qint32 iAlloc;
    qint32 iMax;
    qint32 iSortKeyId;
  };
  // Start of an array in XML, for what is written like one.
  static void BeginXml(CVelumXmlWriter& aWriter, const TXmlHead& aHead);

  // A blank element for this array.
  void InitElem(TVelumElem& aElem) const;
  // Returns the index.
  qint32 CreateStrKey(const TVelumElem& aElem);
  void CreateIntKey(const TVelumElem& aElem);
  void CreateAt(const TVelumElem& aElem, qint32 aIndex);
  // Appends; returns the index.
  qint32 CreateAtEnd(const TVelumElem& aElem);
  // Binary search. Found: copies the element, aNext is its index + 1. Else a blank element.
  [[nodiscard]] bool ReadByStrKey(const QString& aKey, TVelumElem& aElem, qint32& aNext) const;
  [[nodiscard]] bool ReadByIntKey(qint32 aKey, TVelumElem& aElem, qint32& aNext) const;
  void ReadByIndex(qint32 aIndex, TVelumElem& aElem) const;
  [[nodiscard]] bool ReadNext(TVelumElem& aElem, qint32& aIndex) const;
  [[nodiscard]] bool ReadPrev(TVelumElem& aElem, qint32& aIndex) const;
  // Replaces the value of element aNext - 1, the one that the last read delivered.
  void SetValAt(qint32 aNext, const TVelumValue& aVal);
  // The aNum-th element (from 0) that has an object, counting up to the capacity.
  [[nodiscard]] bool ReadObjByNum(qint32 aNum, TVelumElem& aElem, qint32& aIndex);

  // Cheap views for hot paths: no copies, bounds checked, host error 9 beyond Count().
  [[nodiscard]] const TVelumValue& ValRef(qint32 aIndex) const { return CellRef(aIndex).Val(); }
  [[nodiscard]] qint32 IntKeyAt(qint32 aIndex) const { return CellRef(aIndex).iIntKey; }
  [[nodiscard]] const QString& StrKeyAt(qint32 aIndex) const;
  // Index of an integer key by binary search, or -1.
  [[nodiscard]] qint32 FindIntKey(qint32 aKey) const;

  // Bulk load of keyed arrays: elements are appended as they come, and EndBulk sorts once. Nothing may be
  // looked up in between. The order among equal keys is free.
  void BeginBulk(qint32 aExpected);
  void AppendBulk(const TVelumElem& aElem);
  void EndBulk();
  // For changes that are taken back, which know where an element stood: inserts it there without a search,
  // and sets the capacity that files show (never below the count).
  void PutBack(qint32 aIndex, const TVelumElem& aElem);
  void RestoreAlloc(qint32 aAlloc);
  // Where an element of that key stands, or would stand.
  [[nodiscard]] qint32 PlaceOfIntKey(qint32 aKey) const;
  // Called by the owner after Internalize, when the sort key can be resolved: re-sorts a string-keyed array
  // whose elements are out of the local order. Internalize does it itself for arrays without a sort key.
  // Leaves the changed mark as it was.
  void EnsureSorted();

private:
  // A larger capacity on file is taken for damage.
  static constexpr qint32 EMaxAlloc = 50000000;
  // Arrays in objects in arrays ... that are being read; a stack has 4, and what has more than 20 is damaged.
  class CNesting {
  public:
    explicit CNesting(const CVelumArray& aArray);
    ~CNesting() { --gDepth; }
    CNesting(const CNesting&) = delete;
    CNesting& operator=(const CNesting&) = delete;

  private:
    inline static int gDepth = 0;
  };
  // What few arrays have.
  struct TRare {
    Ref<CVelumKeyOrder> iSortKey;
    qint32 iObjCacheNum = ENoInt; // the last object that ReadObjByNum found, ENoInt when none ...
    qint32 iObjCacheIndex = 0;    // ... and its index
  };

  [[nodiscard]] bool WithStrKey() const { return (iFlags & EArrStrKey) != 0; }
  [[nodiscard]] bool WithIntKey() const { return (iFlags & EArrIntKey) != 0; }
  [[nodiscard]] bool WithKey() const { return (iFlags & (EArrStrKey | EArrIntKey)) != 0; }
  [[nodiscard]] bool WithSortKey() const { return (iFlags & EArrSortKey) != 0; }
  [[nodiscard]] bool Mixed() const { return (iFlags & EArrMixed) != 0; }
  [[nodiscard]] bool WithObj() const { return iType >= EValCard || Mixed(); }
  // Whether an element may hold an object.
  [[nodiscard]] bool HoldsObj() const { return iType >= EValCard || iMixedObj; }
  void NoteObj(const TVelumValue& aVal) { iMixedObj = iMixedObj || aVal.IsObjType(); }
  // Whether slots from Count() on keep what they held: only there can it be seen (ReadObjByNum).
  [[nodiscard]] bool KeepsStale() const { return WithObj() && !WithKey(); }

  // Assertion with, and without, this array as its object.
  void Check(bool aCond, const char16_t* aProc, const char16_t* aText) const;
  static void Check(bool aCond, const char16_t* aText);
  // An index below aLimit; host error 9 otherwise.
  [[nodiscard]] static qint32 Checked(qint32 aIndex, qint32 aLimit);
  [[nodiscard]] TVelumCell& CellAt(qint32 aIndex) const;
  void Touch();
  TRare& Rare();

  // The binary search. aCompare(i) compares the sought key with that of element i.
  template <class TCompare> [[nodiscard]] bool Locate(const TCompare& aCompare, qint32& aIndex) const;
  [[nodiscard]] bool LocateStr(const QString& aKey, qint32& aIndex) const;
  // The same for string keys, where aCompare compares with a key.
  template <class TCompare> [[nodiscard]] bool LocateKey(const TCompare& aCompare, qint32& aIndex) const;
  [[nodiscard]] bool LocateInt(qint32 aKey, qint32& aIndex) const;
  // Two string keys in the array's own order: negative, 0 or positive.
  [[nodiscard]] int CompareKeys(const QString& aA, const QString& aB) const;

  // Two elements by their keys.
  [[nodiscard]] int CompareElems(qint32 aA, qint32 aB) const;

  void CopyOut(qint32 aIndex, TVelumElem& aElem) const;
  qint32 Create(const TVelumElem& aElem, qint32 aIndex);
  [[nodiscard]] qint32 PlaceFor(const TVelumElem& aElem, qint32 aIndex) const;
  void CheckType(const TVelumElem& aElem) const;
  void CheckSlots(const TVelumElem& aElem) const;
  void Grow(qint32 aNum);
  void InsertAt(qint32 aIndex, TVelumCell&& aCell, QString&& aKey);
  void OpenGap(qint32 aIndex, qint32 aNum);
  void MoveStale(qint32 aFrom, qint32 aNum, qint32 aTo);
  void ApplyShape();
  void SortBy(const std::function<int(qint32, qint32)>& aCompare);

  [[nodiscard]] qint32 CountThatFits(CVelumFile& aFile, qint32 aCount) const;
  void ReadElems(CVelumFile& aFile, qint32 aCount);
  [[nodiscard]] static Ref<CVelumStored> ReadObj(CVelumFile& aFile, int aTag);
  [[nodiscard]] TVelumValue ReadVal(CVelumFile& aFile);
  void WriteVal(CVelumFile& aFile, const TVelumValue& aVal) const;
  [[nodiscard]] qint64 ValLen(const TVelumValue& aVal) const;
  void ReadElemXml(CVelumXmlParser& aParser);
  [[nodiscard]] TVelumValue ReadValXml(CVelumXmlParser& aParser);
  [[nodiscard]] Ref<CVelumStored> ReadObjXml(CVelumXmlParser& aParser, int aTag);
  [[nodiscard]] const TVelumCell& CellRef(qint32 aIndex) const {
    if (static_cast<quint32>(aIndex) >= static_cast<quint32>(iMax)) RaiseIndex();
    return iStore.Cell(aIndex);
  }
  [[noreturn]] static void RaiseIndex();
  void WriteValXml(CVelumXmlWriter& aWriter, const TVelumValue& aVal) const;
  static void WriteObjXml(CVelumXmlWriter& aWriter, const TVelumValue& aVal);

  qint32 iId = ENoInt;
  qint32 iFlags = 0;
  qint16 iType = EValUndef;
  bool iChanged = true;
  bool iBulk : 1 = false;
  bool iMixedObj : 1 = false; // an element of a mixed array has been an object
  qint32 iAllocStep = 50;
  qint32 iAlloc = 10;
  qint32 iMax = 0;
  qint32 iSortKeyId = ENoInt;
  std::unique_ptr<TRare> iRare;
  CVelumArrayStore iStore; // may hold more than iMax elements when it keeps stale ones
};
