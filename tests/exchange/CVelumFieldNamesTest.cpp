#include "exchange/CVelumFieldNames.h"

#include "core/CVelumObject.h"
#include "support/PrintQt.h"

#include <QSet>
#include <gtest/gtest.h>

namespace {

using CVelumImports::NumberEqualNames;

TEST(CVelumFieldNames, DifferentNamesStay) {
  EXPECT_EQ(NumberEqualNames({}), QStringList());
  EXPECT_EQ(NumberEqualNames({u"a"_s, u"A"_s, u""_s, u" a"_s}),
            QStringList({u"a"_s, u"A"_s, u""_s, u" a"_s}));
}

TEST(CVelumFieldNames, EqualOnesGetANumberThatIsFree) {
  EXPECT_EQ(NumberEqualNames({u"a"_s, u"b"_s, u"a"_s, u"a"_s}),
            QStringList({u"a"_s, u"b"_s, u"a 2"_s, u"a 3"_s}));
  EXPECT_EQ(NumberEqualNames({u"a"_s, u"a"_s, u"a 2"_s, u"a 2"_s}),
            QStringList({u"a"_s, u"a 3"_s, u"a 2"_s, u"a 2 2"_s}));
}

TEST(CVelumFieldNames, SeveralWithoutATextAreNamedByTheirPlace) {
  EXPECT_EQ(NumberEqualNames({u""_s, u"x"_s, u""_s, u"Field 3"_s, u""_s}),
            QStringList({u""_s, u"x"_s, u"Field 3 2"_s, u"Field 3"_s, u"Field 5"_s}));
}

TEST(CVelumFieldNames, ManyEqualOnesTakeNoQuadraticTime) {
  constexpr int count = 50000;
  QStringList names;
  for (int i = 0; i < count; ++i) names.append(u"a"_s);
  names = NumberEqualNames(names);
  EXPECT_EQ(names.last(), u"a 50000"_s);
  EXPECT_EQ(QSet<QString>(names.begin(), names.end()).size(), count);
}

} // namespace
