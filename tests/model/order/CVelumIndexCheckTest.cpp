#include "model/order/CVelumIndexCheck.h"

#include "core/text/CVelumLocale.h"
#include "model/SortedBed.h"

using namespace ModelTest;

namespace {

struct TCheckBed : TSortedBed {
  TCheckBed() {
    CVelumLocale::Init(u"en_US"_s);
    for (const QString& town : {u"a"_s, u"B"_s, u"c"_s}) Town(town);
  }
  [[nodiscard]] CVelumArray& NameIndex() const { return const_cast<CVelumArray&>(iStack->NameIndex()); }
  [[nodiscard]] QStringList Keys(qsizetype aMost) const {
    return CVelumIndexCheck(*iStack, aMost).Keys(*iFirst->KeyIndex(), *iBy);
  }
};

TEST(CVelumIndexCheck, FindsNothingInASoundStack) {
  const TCheckBed bed;
  CVelumIndexCheck check(*bed.iStack, 10);
  EXPECT_EQ(check.Order() + check.Names() + bed.Keys(10), QStringList());
}

TEST(CVelumIndexCheck, FindsNamesInAnotherOrder) {
  const TCheckBed bed;
  const qint32 flags = bed.NameIndex().Flags();
  bed.NameIndex().SetFlags(flags & ~EArrExactCase);
  bed.NameIndex().EnsureSorted();
  bed.NameIndex().SetFlags(flags);
  EXPECT_EQ(CVelumIndexCheck(*bed.iStack, 10).Names(), QStringList{u"name index: 'B' stands behind 'a'"_s});
}

TEST(CVelumIndexCheck, FindsKeysInAnotherOrder) {
  const TCheckBed bed;
  bed.iBy->Clear();
  bed.iBy->AddKeyPart(EConText, bed.iTown->Id(), EWayDescending, 10);
  const CVelumArray& index = *bed.iFirst->KeyIndex();
  const QString text = u"key index %1 of sort key 'By town': '%2' stands behind '%3'"_s;
  const QStringList problems = bed.Keys(10);
  ASSERT_EQ(problems.size(), 2);
  for (qint32 i = 0; i < 2; ++i)
    EXPECT_EQ(problems[i], text.arg(index.Id()).arg(index.StrKeyAt(i + 1), index.StrKeyAt(i)));
}

TEST(CVelumIndexCheck, MakesNotMoreLinesThanWanted) {
  const TCheckBed bed;
  for (qint32 i = 1; i <= 3; ++i) bed.NameIndex().SetValAt(i, TVelumValue::OfInt(50 + i));
  EXPECT_EQ(CVelumIndexCheck(*bed.iStack, 10).Names().size(), 6) << "three unknown, and three missing";
  EXPECT_EQ(CVelumIndexCheck(*bed.iStack, 4).Names().size(), 4);
}

TEST(CVelumIndexCheck, TellsOfAnEntryWithoutACard) {
  const TCheckBed bed;
  EXPECT_EQ(CVelumIndexCheck::IdAt(bed.NameIndex(), 0), bed.NameIndex().ValRef(0).Int());
  EXPECT_EQ(CVelumIndexCheck::CardText(*bed.iStack->GetCardById(1)), u"card 1 'B'"_s);
}

} // namespace
