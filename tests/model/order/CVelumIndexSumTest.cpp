#include "model/order/CVelumIndexSum.h"

#include "core/CVelumObject.h"

#include <QStringList>
#include <gtest/gtest.h>

namespace {

CVelumIndexSum SumOf(const QList<std::pair<QString, qint32>>& aPairs) {
  CVelumIndexSum sum;
  for (const auto& [key, id] : aPairs) sum.Add(key, id);
  return sum;
}

TEST(CVelumIndexSum, TheOrderDoesNotCount) {
  EXPECT_EQ(SumOf({}), CVelumIndexSum());
  EXPECT_EQ(SumOf({{u"a"_s, 1}, {u"b"_s, 2}, {u"a"_s, 3}}), SumOf({{u"a"_s, 3}, {u"a"_s, 1}, {u"b"_s, 2}}));
}

TEST(CVelumIndexSum, WhateverDiffersCounts) {
  const auto one = SumOf({{u"a"_s, 1}, {u"b"_s, 2}});
  EXPECT_FALSE(SumOf({{u"a"_s, 2}, {u"b"_s, 1}}) == one) << "the cards changed places";
  EXPECT_FALSE(SumOf({{u"a"_s, 1}}) == one);
  EXPECT_FALSE(SumOf({{u"a"_s, 1}, {u"b"_s, 2}, {u"b"_s, 2}}) == one);
  EXPECT_FALSE(SumOf({{u"a"_s, 1}, {u"B"_s, 2}}) == one);
  // Every letter of keys of every length, and an end that looks like a letter.
  for (int len = 1; len < 40; ++len) {
    const QString key(len, u'x');
    for (int at = 0; at < len; ++at) {
      QString other = key;
      other[at] = u'y';
      EXPECT_FALSE(SumOf({{key, 7}}) == SumOf({{other, 7}})) << len << ' ' << at;
    }
    EXPECT_FALSE(SumOf({{key, 7}}) == SumOf({{key + QChar(u'\0'), 7}})) << len;
    EXPECT_FALSE(SumOf({{key, 7}}) == SumOf({{key, 8}})) << len;
  }
}

} // namespace
