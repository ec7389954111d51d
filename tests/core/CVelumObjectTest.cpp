#include "core/CVelumObject.h"

#include <gtest/gtest.h>

namespace {

class CBase : public CVelumObject {
public:
  [[nodiscard]] QString ObjDescr() const override { return {}; }
};
class CDerived final : public CBase {};

// A reference to a base does not become one to what the object may be.
static_assert(std::is_convertible_v<Ref<CDerived>, Ref<CVelumObject>>);
static_assert(!std::is_convertible_v<Ref<CBase>, Ref<CDerived>>);
static_assert(!std::is_constructible_v<Ref<CDerived>, const Ref<CBase>&>);
static_assert(!std::is_constructible_v<Ref<CDerived>, Ref<CVelumObject>>);

TEST(CVelumObject, ReferencesToABaseCountTheSameObject) {
  const Ref<CDerived> derived = MakeRef<CDerived>();
  {
    const Ref<CBase> base = derived;
    EXPECT_EQ(base.Get(), derived.Get());
    EXPECT_EQ(derived->Refs(), 2);
  }
  EXPECT_EQ(derived->Refs(), 1);
}

} // namespace
