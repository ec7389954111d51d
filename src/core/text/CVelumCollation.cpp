#include "core/text/CVelumCollation.h"

#include "core/CVelumError.h"

#include <QLocale>
#include <QVarLengthArray>
#include <array>
#include <memory>
#include <unicode/ucol.h>

namespace {

// Names and key strings normally fit; longer texts go to the heap.
using TBuffer = QVarLengthArray<char16_t, 256>;

struct CClose {
  void operator()(UCollator* aCollator) const { ucol_close(aCollator); }
};
std::unique_ptr<UCollator, CClose> sCollator;

// For each character below 256, whether a key keeps it; a byte each, which is looked up faster than a bit.
constexpr std::array<quint8, 256> KeptChars() {
  std::array<quint8, 256> kept{};
  for (quint8& keep : kept) keep = 1;
  for (const char16_t c : CVelumCollation::gKeySkipChars) kept[c] = 0;
  return kept;
}
constexpr std::array<quint8, 256> EKept = KeptChars();

// Trailing blanks go with all the other blanks. No branch in the loop: names are short, and where they have
// their blanks cannot be guessed.
void Reduce(QStringView aText, TBuffer& aBuffer) {
  aBuffer.resize(aText.size());
  char16_t* to = aBuffer.data();
  for (const char16_t *from = aText.utf16(), *end = from + aText.size(); from != end; ++from) {
    const char16_t c = *from;
    *to = c;
    to += EKept[c < 256 ? c : 0];
  }
  aBuffer.resize(to - aBuffer.data());
}

QStringView ViewOf(const TBuffer& aBuffer) {
  return {aBuffer.data(), aBuffer.size()};
}

const UCollator* Collator() {
  if (!sCollator) CVelumCollation::Init();
  return sCollator.get();
}

} // namespace

void CVelumCollation::Init(const QString& aLocale) {
  QString name = aLocale.isEmpty() ? QLocale::system().collation().name() : aLocale;
  // The root order: ICU takes the empty name for it.
  if (name == u"C"_s || name.startsWith(u"C."_s) || name == u"POSIX"_s) name.clear();
  UErrorCode status = U_ZERO_ERROR;
  std::unique_ptr<UCollator, CClose> collator(ucol_open(name.toLatin1().constData(), &status));
  if (U_FAILURE(status)) CVelumError::RaiseHost(EHostBadCall, u"collation for "_s + name);
  ucol_setStrength(collator.get(), UCOL_SECONDARY);
  // Some locales skip punctuation by themselves.
  ucol_setAttribute(collator.get(), UCOL_ALTERNATE_HANDLING, UCOL_NON_IGNORABLE, &status);
  if (U_FAILURE(status)) CVelumError::RaiseHost(EHostBadCall, u"collation for "_s + name);
  sCollator = std::move(collator);
}

int CVelumCollation::Compare(QStringView aA, QStringView aB) {
  const auto length = [](QStringView aText) { return static_cast<int32_t>(aText.size()); };
  return ucol_strcoll(Collator(), aA.utf16(), length(aA), aB.utf16(), length(aB));
}

void CVelumCollation::AppendSortKey(QByteArray& aBytes, QStringView aStr) {
  const qsizetype from = aBytes.size();
  // Room for a name; what needs more says so.
  qsizetype room = 3 * aStr.size() + 16;
  for (;;) {
    aBytes.resize(from + room);
    const int32_t length =
        ucol_getSortKey(Collator(), aStr.utf16(), static_cast<int32_t>(aStr.size()),
                        reinterpret_cast<uint8_t*>(aBytes.data() + from), static_cast<int32_t>(room));
    if (length <= 0) CVelumError::RaiseHost(EHostBadCall, u"sort key"_s);
    const bool fits = length <= room;
    room = length;
    if (fits) break;
  }
  aBytes.resize(from + room);
}

QString CVelumCollation::CollationKey(QStringView aStr) {
  TBuffer buffer;
  Reduce(aStr, buffer);
  return ViewOf(buffer).toString();
}

int CVelumCollation::CompareKeys(QStringView aA, QStringView aB) {
  TBuffer a;
  TBuffer b;
  Reduce(aA, a);
  Reduce(aB, b);
  return Compare(ViewOf(a), ViewOf(b));
}

int CVelumCollation::CompareBin(QStringView aA, QStringView aB) {
  const int order = aA.compare(aB);
  return (order > 0) - (order < 0);
}

int CVelumCollation::CSought::CompareTo(QStringView aOther) const {
  TBuffer other;
  Reduce(aOther, other);
  return Compare(iReduced, ViewOf(other));
}
