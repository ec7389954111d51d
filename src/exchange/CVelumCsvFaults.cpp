#include "exchange/CVelumCsvFaults.h"

#include "core/CVelumObject.h"

#include <QLocale>
#include <algorithm>

namespace {

constexpr size_t EShown = 40; // bytes of the text at the place

// The beginning of a text on one line.
QString Excerpt(std::string_view aText) {
  size_t len = std::min(aText.size(), EShown);
  while (len > 0 && len < aText.size() && (static_cast<unsigned char>(aText[len]) & 0xC0) == 0x80) --len;
  QString text = QString::fromUtf8(aText.data(), static_cast<qsizetype>(len));
  for (QChar& c : text)
    if (c < u' ') c = u' ';
  return len < aText.size() ? text + u"..."_s : text;
}

// "1 cell", "2,000 cells".
QString Number(qint64 aCount, const QString& aOne, const QString& aMany) {
  return QLocale(QLocale::English).toString(aCount) + u' ' + (aCount == 1 ? aOne : aMany);
}

QString Cells(qint64 aCount) {
  return Number(aCount, u"cell"_s, u"cells"_s);
}

} // namespace

void CVelumCsvFaults::Note(ECsvFault aKind, qint64 aLine, qint64 aColumn, std::string_view aText,
                           qint64 aCount) {
  const auto known = std::find_if(iFaults.begin(), iFaults.end(),
                                  [aKind](const TCsvFault& aFault) { return aFault.iKind == aKind; });
  if (known == iFaults.end())
    iFaults.push_back({aKind, aCount, aLine, aColumn, Excerpt(aText)});
  else
    known->iCount += aCount;
}

void CVelumCsvFaults::Add(const CVelumCsvFaults& aOther) {
  for (const TCsvFault& fault : aOther.iFaults) {
    const auto known = std::find_if(iFaults.begin(), iFaults.end(),
                                    [&](const TCsvFault& aFault) { return aFault.iKind == fault.iKind; });
    if (known == iFaults.end())
      iFaults.push_back(fault);
    else
      known->iCount += fault.iCount;
  }
}

qint64 CVelumCsvFaults::Count(ECsvFault aKind) const {
  for (const TCsvFault& fault : iFaults)
    if (fault.iKind == aKind) return fault.iCount;
  return 0;
}

QString CVelumCsvFaultTexts::Place(const TCsvFault& aFault) {
  if (aFault.iColumn == 0) return u"line %1"_s.arg(aFault.iLine);
  return u"line %1, column %2"_s.arg(aFault.iLine).arg(aFault.iColumn);
}

QString CVelumCsvFaultTexts::What(const TCsvFault& aFault) {
  switch (aFault.iKind) {
  case ECsvFault::BadBytes:
    return u"bytes that the encoding does not have"_s;
  case ECsvFault::Unclosed:
    return u"a quote that is never closed"_s;
  case ECsvFault::StrayQuote:
    return u"a quote in the middle of a cell: %1"_s.arg(aFault.iText);
  case ECsvFault::ZeroChar:
    return u"a zero byte"_s;
  case ECsvFault::TooLong:
    return u"a cell of more than 15,000 characters"_s;
  case ECsvFault::ManyColumns:
    return u"more than 1,000 columns"_s;
  case ECsvFault::Surplus:
    return u"more cells than columns"_s;
  case ECsvFault::NoField:
    return u"a column without a field: %1"_s.arg(aFault.iText);
  case ECsvFault::NotOfType:
    return u"a cell that does not fit the type of its column: %1"_s.arg(aFault.iText);
  }
  return {};
}

QString CVelumCsvFaultTexts::Consequence(const TCsvFault& aFault) {
  const qint64 count = aFault.iCount;
  switch (aFault.iKind) {
  case ECsvFault::BadBytes:
    return Number(count, u"byte has"_s, u"bytes have"_s) + u" no meaning"_s;
  case ECsvFault::Unclosed:
    return u"the record and all that follows is left out"_s;
  case ECsvFault::StrayQuote:
    return Cells(count) + u" with such quotes kept as they stand"_s;
  case ECsvFault::ZeroChar:
    return u"zero bytes in "_s + Cells(count) + u" left out"_s;
  case ECsvFault::TooLong:
  case ECsvFault::NotOfType:
  case ECsvFault::Surplus:
    return Cells(count) + u" left out"_s;
  case ECsvFault::ManyColumns:
    return Cells(count) + u" beyond column 1,000 left out"_s;
  case ECsvFault::NoField:
    return Number(count, u"column"_s, u"columns"_s) + u" left out"_s;
  }
  return {};
}
