#include "core/text/CVelumTextPool.h"

#include "core/CVelumConst.h"
#include "core/CVelumObject.h"
#include "support/PrintQt.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <vector>

namespace {

QString TakeText(CVelumTextPool& aPool, const QString& aText) {
  char16_t* chars = nullptr;
  const QString text = aPool.Take(aText.size(), chars);
  std::copy_n(aText.utf16(), aText.size(), reinterpret_cast<ushort*>(chars));
  return text;
}

TEST(CVelumTextPool, TextsStandSideBySide) {
  CVelumTextPool pool;
  const QString a = TakeText(pool, u"first"_s);
  const QString b = TakeText(pool, u"second"_s);
  EXPECT_EQ(a, u"first"_s);
  EXPECT_EQ(b, u"second"_s);
  EXPECT_EQ(b.utf16() - a.utf16(), 6) << "with a zero between them";
  EXPECT_EQ(a.utf16()[5], 0);
  EXPECT_EQ(b.utf16()[6], 0);
}

TEST(CVelumTextPool, TextsOutliveThePoolAndEachOther) {
  std::vector<QString> texts;
  {
    CVelumTextPool pool;
    for (int i = 0; i < 20000; ++i) texts.push_back(TakeText(pool, u"text %1"_s.arg(i)));
  }
  for (size_t i = 0; i < texts.size(); i += 2) texts[i].clear();
  const QString copy = texts[9999];
  for (size_t i = 0; i < 9999; ++i) texts[i].clear();
  for (size_t i = 10001; i < texts.size(); i += 2) ASSERT_EQ(texts[i], u"text %1"_s.arg(i));
  EXPECT_EQ(copy, u"text 9999"_s);
}

TEST(CVelumTextPool, AChangedTextLeavesTheOthersAlone) {
  CVelumTextPool pool;
  QString a = TakeText(pool, u"abc"_s);
  const QString b = TakeText(pool, u"def"_s);
  a[0] = u'x';
  a += u"much longer than it was before, so that it would run into the next one"_s;
  EXPECT_TRUE(a.startsWith(u"xbcmuch"_s));
  EXPECT_EQ(b, u"def"_s);
  EXPECT_EQ(TakeText(pool, u"ghi"_s), u"ghi"_s);
  EXPECT_EQ(b, u"def"_s);
}

TEST(CVelumTextPool, TheLastTextOfABlockMayGrowInIt) {
  QString a;
  {
    CVelumTextPool pool;
    static_cast<void>(TakeText(pool, u"gone"_s));
    a = TakeText(pool, u"abc"_s);
  }
  a += QString(5000, u'y');
  a.prepend(u'x');
  a.squeeze();
  EXPECT_EQ(a, u"xabc"_s + QString(5000, u'y'));
}

TEST(CVelumTextPool, LongTextsHaveMemoryOfTheirOwn) {
  CVelumTextPool pool;
  const QString a = TakeText(pool, u"a"_s);
  const QString longOne = TakeText(pool, QString(15000, u'z'));
  const QString b = TakeText(pool, u"b"_s);
  EXPECT_EQ(longOne, QString(15000, u'z'));
  EXPECT_EQ(b.utf16() - a.utf16(), 2);
}

} // namespace
