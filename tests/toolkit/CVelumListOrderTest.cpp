#include "toolkit/CVelumListOrder.h"

#include "core/CVelumObject.h"
#include "core/text/CVelumCollation.h"
#include "support/PrintQt.h"

#include <QStringList>
#include <gtest/gtest.h>
#include <limits>

namespace {

// Lines of one column; what begins with '#' is the number behind it.
class Lines final : public CVelumLineSource {
public:
  explicit Lines(QStringList aLines) : iLines(std::move(aLines)) { CVelumCollation::Init(u"en_US"_s); }
  [[nodiscard]] int NumLines() const override { return static_cast<int>(iLines.size()); }
  [[nodiscard]] QString Part(int aLine, int) const override { return iLines.value(aLine); }
  [[nodiscard]] TVelumLineKey SortKey(int aLine, int) const override {
    const QString text = iLines.value(aLine);
    if (text == u"#nan"_s) return {true, std::numeric_limits<double>::quiet_NaN(), {}};
    return text.startsWith(u'#') ? TVelumLineKey{true, text.sliced(1).toDouble(), {}}
                                 : TVelumLineKey{false, 0, text};
  }
  [[nodiscard]] QStringList Sorted(bool aDescending = false) const {
    QStringList sorted;
    for (const int line : CVelumListOrder::Sorted(*this, NumLines(), 0, aDescending))
      sorted.append(iLines[line]);
    return sorted;
  }

private:
  QStringList iLines;
};

TEST(CVelumListOrder, TextsAsTheLanguageHasThem) {
  EXPECT_EQ(Lines({u"Zug"_s, u"\u00C4rger"_s, u"apfel"_s, u"Berg"_s, u"a-b"_s}).Sorted(),
            (QStringList{u"a-b"_s, u"apfel"_s, u"\u00C4rger"_s, u"Berg"_s, u"Zug"_s}));
}

TEST(CVelumListOrder, NumbersFirstAsTheyDifferAndEmptyTextsLast) {
  const Lines lines({u"x"_s, {}, u"#10"_s, u"#9"_s, u"#-1.5"_s, u"7"_s});
  EXPECT_EQ(lines.Sorted(), (QStringList{u"#-1.5"_s, u"#9"_s, u"#10"_s, u"7"_s, u"x"_s, {}}));
  EXPECT_EQ(lines.Sorted(true), (QStringList{{}, u"x"_s, u"7"_s, u"#10"_s, u"#9"_s, u"#-1.5"_s}));
}

TEST(CVelumListOrder, EqualLinesKeepTheirOrderBothWays) {
  // Cases do not differ.
  const Lines lines({u"B"_s, u"a"_s, u"b"_s, u"A"_s, u"#1"_s, u"#1.0"_s});
  EXPECT_EQ(lines.Sorted(), (QStringList{u"#1"_s, u"#1.0"_s, u"a"_s, u"A"_s, u"B"_s, u"b"_s}));
  EXPECT_EQ(lines.Sorted(true), (QStringList{u"B"_s, u"b"_s, u"a"_s, u"A"_s, u"#1"_s, u"#1.0"_s}));
}

TEST(CVelumListOrder, WhatIsNoNumberComparesWithNone) {
  EXPECT_EQ(Lines({u"#nan"_s, u"#2"_s, u"#nan"_s, u"#1"_s, {}}).Sorted(),
            (QStringList{u"#1"_s, u"#2"_s, u"#nan"_s, u"#nan"_s, {}}));
}

TEST(CVelumListOrder, TheSameAsComparingTheTexts) {
  const QString letters = u"aAb B-\u00E4\u00DF\u4E2D\u0301z9"_s;
  QStringList texts;
  quint32 seed = 1;
  for (int i = 0; i < 2000; ++i) {
    QString text;
    for (quint32 n = 1 + i % 12; n > 0; --n) {
      seed = seed * 1664525 + 1013904223;
      text += letters[(seed >> 16) % letters.size()];
    }
    texts.append(text);
  }
  const QStringList sorted = Lines(texts).Sorted();
  for (int i = 1; i < sorted.size(); ++i)
    EXPECT_LE(CVelumCollation::Compare(sorted[i - 1], sorted[i]), 0) << sorted[i - 1].toStdString();
}

TEST(CVelumListOrder, NoLines) {
  EXPECT_TRUE(Lines({}).Sorted().isEmpty());
}

} // namespace
