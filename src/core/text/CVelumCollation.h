// Comparison of texts in the user's locale, and collation keys.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringView>

namespace CVelumCollation {

// The characters that a collation key leaves out; all lie below 256.
inline constexpr char16_t gKeySkipChars[] = {
    u' ', u'"', u'`', u'\u00A7', u'+', u'|', u'\u00A6', u'@',  u'*',      u'#', u'%', u'&',
    u'/', u'(', u')', u'=',      u'?', u'^', u'~',      u'\'', u'\u00A8', u'!', u'[', u']',
    u'{', u'}', u',', u'.',      u'-', u';', u':',      u'_',  u'<',      u'>', u'\\'};

// Makes the collator anew for a locale name such as "de_DE" (empty: the user's; a C or POSIX locale gets
// the ICU root order). Called at start and by tests.
void Init(const QString& aLocale = {});
// Case-insensitive, locale-sensitive: negative, 0 or positive. Punctuation and blanks count.
[[nodiscard]] int Compare(QStringView aA, QStringView aB);
// aStr without trailing blanks and without the characters of gKeySkipChars.
[[nodiscard]] QString CollationKey(QStringView aStr);
// Compare(CollationKey(aA), CollationKey(aB)) without making the keys.
[[nodiscard]] int CompareKeys(QStringView aA, QStringView aB);
// Appends bytes that compare, byte for byte, as Compare compares the texts; the last one is 0. For a sort of
// many texts, where each is looked at often.
void AppendSortKey(QByteArray& aBytes, QStringView aStr);
// Ordinal comparison: -1, 0 or 1.
[[nodiscard]] int CompareBin(QStringView aA, QStringView aB);

// A key reduced once, for a binary search against many.
class CSought {
public:
  explicit CSought(QStringView aKey) : iReduced(CollationKey(aKey)) {}
  // As CompareKeys(sought, aOther).
  [[nodiscard]] int CompareTo(QStringView aOther) const;

private:
  QString iReduced;
};

} // namespace CVelumCollation
