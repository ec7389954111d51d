// CVelumArray beside a naive array, through long random sequences of all operations.
#include "core/ArrayHelpers.h"
#include "core/NaiveArray.h"

#include <random>

namespace {

struct TCase {
  qint32 iFlags;
  qint32 iType;
  int iMaxCount; // the arrays are kept below
  int iKeyRange; // few different keys make many duplicates
  int iSteps;
};

std::ostream& operator<<(std::ostream& aOut, const TCase& aCase) {
  return aOut << "flags " << aCase.iFlags << " type " << aCase.iType << " up to " << aCase.iMaxCount;
}

class CVelumArrayRandomTest : public testing::TestWithParam<TCase> {
protected:
  void SetUp() override {
    CVelumCollation::Init(u"en_US"_s);
    iPresenter.SetDefaultAnswer(true);
    if (P().iFlags & EArrSortKey) iArray->ResolveSortKey(iOrder);
  }

  [[nodiscard]] static const TCase& P() { return GetParam(); }
  [[nodiscard]] qint32 Below(qint32 aLimit) {
    return std::uniform_int_distribution<qint32>(0, std::max(aLimit, 1) - 1)(iRandom);
  }
  [[nodiscard]] qint32 SomeIndex() { return Below(iNaive.iMax + 1); }

  [[nodiscard]] QString RandomKey() {
    static const QList<QString> marks{{}, u"."_s, u" "_s, u"-"_s};
    const qint32 num = Below(P().iKeyRange);
    QString key = QString::number(num * 7 % P().iKeyRange).rightJustified(4, u'0');
    if (Below(2)) key.prepend(Below(2) ? u'a' : u'A');
    return key + marks.at(Below(4));
  }

  [[nodiscard]] TVelumValue RandomVal() {
    qint32 type = P().iType;
    if (P().iFlags & EArrMixed) type = QList<qint32>{EValInt, EValStr, EValReal, EValCard}.at(Below(4));
    switch (type) {
    case EValStr:
      return TVelumValue::OfStr(RandomKey());
    case EValReal:
      return TVelumValue::OfReal(Below(1000) / 8.0);
    case EValCard:
      return TVelumValue::OfObj(EValCard, Below(3) ? Ref<CVelumStored>(new MarkedObj(Below(1000))) : nullptr);
    default:
      return TVelumValue::OfInt(Below(100000));
    }
  }

  [[nodiscard]] TVelumElem RandomElem() {
    TVelumElem elem;
    iArray->InitElem(elem);
    elem.iVal = RandomVal();
    if (P().iFlags & EArrStrKey) elem.iStrKey = RandomKey();
    if (P().iFlags & EArrIntKey) elem.iIntKey = Below(P().iKeyRange);
    return elem;
  }

  void Create() {
    if (iNaive.iMax >= P().iMaxCount) return Delete();
    const TVelumElem elem = RandomElem();
    const qint32 index = iNaive.WithKey() || Below(2) ? ENoInt : SomeIndex();
    qint32 found = 0;
    if (iNaive.WithKey() && !(P().iFlags & EArrDuplicates) && iNaive.Locate(elem, found)) return;
    iNaive.Create(elem, index);
    iArray->CreateAt(elem, index);
  }

  void Delete() {
    if (iNaive.iMax == 0) return;
    const qint32 index = Below(iNaive.iMax);
    const qint32 num = Below(Below(20) ? 3 : iNaive.iMax - index + 1);
    const qint32 some = std::min(num, iNaive.iMax - index);
    iNaive.DeleteAt(index, some);
    iArray->DeleteAt(index, some);
  }

  void DeleteKey() {
    const TVelumElem elem = RandomElem();
    qint32 index = 0;
    if (!iNaive.WithKey() || !iNaive.Locate(elem, index)) return;
    iNaive.DeleteAt(index, 1);
    if (P().iFlags & EArrStrKey)
      iArray->DeleteStrKey(elem.iStrKey);
    else
      iArray->DeleteIntKey(elem.iIntKey);
  }

  void Move() {
    const qint32 from = SomeIndex();
    const qint32 num = Below(iNaive.iMax - from + 1);
    const qint32 to = Below(2) ? Below(from + 1) : from + num + Below(iNaive.iMax - from - num + 1);
    const bool renumber = iNaive.WithKey();
    if (renumber && (P().iFlags & EArrStrKey)) return; // would put the string keys out of order
    iNaive.Move(from, num, to, renumber ? 10 : 0);
    iArray->Move(from, num, to, renumber, 10);
  }

  void SetVal() {
    if (iNaive.iMax == 0) return;
    const qint32 index = Below(iNaive.iMax);
    const TVelumValue val = RandomVal();
    iNaive.At(index).iVal = val;
    iArray->SetValAt(index + 1, val);
  }

  void CutOrClear() {
    if (Below(4) == 0) {
      iNaive.iMax = 0;
      iArray->Clear();
    } else if (iNaive.WithObj()) {
      iNaive.SetToLastObj();
      iArray->SetToLastObj();
    }
  }

  void SortOrBulk() {
    if (!iNaive.WithKey() && P().iType == EValStr) {
      iNaive.Sort([](const TVelumElem& aA, const TVelumElem& aB) {
        return CVelumCollation::CompareKeys(aA.iVal.Str(), aB.iVal.Str()) > 0;
      });
      iArray->Sort();
    } else if (iNaive.WithKey() && !(P().iFlags & EArrDuplicates) && iNaive.iMax < P().iMaxCount) {
      iArray->BeginBulk(50);
      for (int i = 0; i < 50; ++i) {
        const TVelumElem elem = RandomElem();
        qint32 found = 0;
        if (iNaive.Locate(elem, found)) continue;
        iNaive.Create(elem, ENoInt);
        iArray->AppendBulk(elem);
      }
      iArray->EndBulk();
    }
  }

  void Lookup() {
    const TVelumElem key = RandomElem();
    TVelumElem elem;
    qint32 index = 0;
    qint32 next = -1;
    if (iNaive.WithKey()) {
      const bool found = iNaive.Locate(key, index);
      EXPECT_EQ(P().iFlags & EArrStrKey ? iArray->ReadByStrKey(key.iStrKey, elem, next)
                                        : iArray->ReadByIntKey(key.iIntKey, elem, next),
                found);
      EXPECT_EQ(next, found ? index + 1 : -1);
    }
    if (!iNaive.WithObj() || iNaive.WithKey()) return; // elsewhere nothing stale is kept
    const qint32 num = Below(20);
    const bool found = iNaive.ReadObjByNum(num, index);
    EXPECT_EQ(iArray->ReadObjByNum(num, elem, next), found);
    if (found) {
      EXPECT_EQ(next, index);
      EXPECT_EQ(elem.iVal.Obj(), iNaive.At(index).iVal.Obj());
    }
  }

  static void ExpectSame(const TVelumElem& aA, const TVelumElem& aB, qint32 aIndex) {
    ASSERT_EQ(aA.iStrKey, aB.iStrKey) << aIndex;
    ASSERT_EQ(aA.iIntKey, aB.iIntKey) << aIndex;
    ASSERT_EQ(aA.iVal.Type(), aB.iVal.Type()) << aIndex;
    ASSERT_EQ(aA.iVal.Str(), aB.iVal.Str()) << aIndex;
    ASSERT_EQ(aA.iVal.Int(), aB.iVal.Int()) << aIndex;
    ASSERT_EQ(aA.iVal.Real(), aB.iVal.Real()) << aIndex;
    ASSERT_EQ(aA.iVal.Obj(), aB.iVal.Obj()) << aIndex;
  }

  void Compare() const {
    ASSERT_EQ(iArray->Count(), iNaive.iMax);
    ASSERT_EQ(iArray->Alloc(), iNaive.iAlloc);
    TVelumElem elem;
    qint32 index = 0;
    for (qint32 i = 0; i < iNaive.iMax; ++i) {
      ASSERT_TRUE(iArray->ReadNext(elem, index));
      ExpectSame(elem, iNaive.At(i), i);
    }
    while (index > 0) {
      ASSERT_TRUE(iArray->ReadPrev(elem, index));
      ExpectSame(elem, iNaive.At(index), index);
    }
  }

  void Step() {
    const int kind = Below(100);
    if (kind < 50)
      Create();
    else if (kind < 60)
      Delete();
    else if (kind < 65)
      DeleteKey();
    else if (kind < 67)
      Move();
    else if (kind < 75)
      SetVal();
    else if (kind < 77 && Below(10) == 0)
      CutOrClear();
    else if (kind < 79)
      SortOrBulk();
    else
      Lookup();
  }

  std::mt19937 iRandom{20240229};
  ScriptedPresenter iPresenter; // moves in arrays of mixed keys may ask nothing
  Ref<CVelumKeyOrder> iOrder{new ReverseOrder};
  NaiveArray iNaive{GetParam().iFlags, GetParam().iType, iOrder.Get()};
  Ref<CVelumArray> iArray{new CVelumArray(GetParam().iFlags, GetParam().iType)};
};

TEST_P(CVelumArrayRandomTest, BehavesAsDescribed) {
  for (int step = 0; step < P().iSteps; ++step) {
    Step();
    ASSERT_EQ(iPresenter.Count(), 0);
    Compare();
    if (HasFatalFailure()) FAIL() << "step " << step;
  }
  Compare();
}

class CVelumLargeArrayTest : public CVelumArrayRandomTest {};

TEST_P(CVelumLargeArrayTest, BehavesAsDescribed) {
  for (int step = 0; step < P().iSteps; ++step) {
    Step();
    if (step % 500 == 0) Compare();
    if (HasFatalFailure()) FAIL() << "step " << step;
  }
  Compare();
}

// Large arrays grow first, so that blocks split, shrink and join.
TEST_P(CVelumLargeArrayTest, ShrinksToNothing) {
  for (int num = 0; num < 4000 && iNaive.iMax < 1800; ++num) Create();
  Compare();
  while (iNaive.iMax > 0 && !HasFatalFailure()) {
    for (int i = 0; i < 300; ++i) Below(4) ? Delete() : Create();
    Lookup();
    Compare();
  }
}

constexpr qint32 EDup = EArrDuplicates;

INSTANTIATE_TEST_SUITE_P(
    All, CVelumArrayRandomTest,
    testing::Values(TCase{0, EValInt, 40, 10, 2000}, TCase{0, EValStr, 40, 10, 2000},
                    TCase{0, EValCard, 40, 10, 3000}, TCase{EArrMixed, EValUndef, 40, 10, 3000},
                    TCase{EArrMixed | EArrIntKey, EValUndef, 40, 100, 2000},
                    TCase{EArrIntKey, EValInt, 40, 60, 2000}, TCase{EArrIntKey | EDup, EValInt, 40, 8, 2000},
                    TCase{EArrStrKey, EValInt, 40, 60, 2000}, TCase{EArrStrKey | EDup, EValStr, 40, 8, 2000},
                    TCase{EArrStrKey | EArrExactCase, EValInt, 40, 60, 2000},
                    TCase{EArrStrKey | EArrExactCase | EDup, EValInt, 40, 8, 2000},
                    TCase{EArrStrKey | EArrSortKey, EValInt, 40, 60, 2000},
                    TCase{EArrStrKey | EArrSortKey | EDup, EValInt, 40, 8, 2000},
                    TCase{EArrStrKey | EArrIntKey | EDup, EValInt, 40, 8, 2000}));

INSTANTIATE_TEST_SUITE_P(All, CVelumLargeArrayTest,
                         testing::Values(TCase{0, EValInt, 2000, 10, 5000},
                                         TCase{0, EValCard, 2000, 10, 5000},
                                         TCase{EArrIntKey, EValInt, 2000, 5000, 5000},
                                         TCase{EArrIntKey | EDup, EValInt, 2000, 30, 5000},
                                         TCase{EArrStrKey | EArrExactCase | EDup, EValInt, 2000, 30, 5000},
                                         TCase{EArrStrKey, EValInt, 2000, 5000, 5000},
                                         TCase{EArrStrKey | EDup, EValStr, 2000, 30, 5000},
                                         TCase{EArrStrKey | EArrSortKey | EDup, EValInt, 2000, 30, 5000}));

} // namespace
