// What CVelumCsvExact has found and done, as a report.
#include "exchange/CVelumCsvExact.h"
#include "exchange/CVelumCsvPool.h"

namespace {

using namespace CVelumCsvReports;

QString EncodingName(ECsvEncoding aEncoding) {
  switch (aEncoding) {
  case ECsvEncoding::Utf8:
    return u"UTF-8"_s;
  case ECsvEncoding::Utf16Le:
  case ECsvEncoding::Utf16Be:
    return u"UTF-16"_s;
  case ECsvEncoding::Windows1252:
    return u"Windows 1252"_s;
  }
  return {};
}

QString Why(CVelumCsvColumn::EWhyText aWhy) {
  switch (aWhy) {
  case CVelumCsvColumn::EWhyText::ZeroFirst:
    return u"as zeros in front would go"_s;
  case CVelumCsvColumn::EWhyText::Big:
    return u"as whole numbers hold 32 bits"_s;
  case CVelumCsvColumn::EWhyText::ManyDigits:
    return u"as numbers keep 15 digits"_s;
  case CVelumCsvColumn::EWhyText::None:
    break;
  }
  return {};
}

QString SeparatorName(char aSeparator) {
  return aSeparator == ',' ? u"commas"_s : u"points"_s;
}

} // namespace

void CVelumCsvExact::BeginReport() {
  iReport = {};
  iReport.iRecords = iScan->NumRecords();
  QStringList layout{EncodingName(iSource->Encoding()), DelimName(iLayout.iDelim),
                     iLayout.iHeaderLine ? u"with a header line"_s : u"without a header line"_s};
  if (iLayout.iSkipLines > 0)
    layout.append(Number(iLayout.iSkipLines, u"line skipped"_s, u"lines skipped"_s));
  iReport.iLayout = layout.join(u", "_s);
  iReport.iFaults = iFaults;
  iReport.iChanged = iCheck->AllChanged();
  iReport.iCells = iCheck->Cells();
  NoteBytes();
  NoteColumns();
  if (iScan->NumShort() > 0)
    iReport.iNotes.append(u"%1 fewer cells than there are columns, the first in line %2"_s
                              .arg(Number(iScan->NumShort(), u"record has"_s, u"records have"_s))
                              .arg(iScan->FirstShort()));
  if (iScan->NumBlank() > 0)
    iReport.iNotes.append(Number(iScan->NumBlank(), u"line"_s, u"lines"_s) +
                          u" with nothing on them left out"_s);
}

void CVelumCsvExact::NoteBytes() {
  const TCsvBadBytes& bad = iSource->BadBytes();
  if (bad.iMixed)
    iReport.iNotes.append(
        u"line %1: bytes that are not UTF-8, though other letters are; all was read as Windows 1252"_s.arg(
            bad.iLine));
  else if (bad.iCount > 0 && !bad.iReplaced)
    iReport.iNotes.append(u"line %1: bytes that mean nothing in Windows 1252"_s.arg(bad.iLine));
}

void CVelumCsvExact::NoteColumns() {
  iColumnNotes.clear();
  for (int i = 0; i < iScan->NumColumns(); ++i) {
    const TCsvPlanColumn& column = iPlan[static_cast<size_t>(i)];
    TCsvReportColumn entry;
    entry.iName = column.iName;
    entry.iType = column.iForm.iType;
    entry.iEmpty = iScan->NumEmpty(i);
    entry.iChanged = iCheck->NumChanged(i);
    NoteColumn(i, entry.iType);
    iReport.iColumns.append(entry);
  }
  for (const auto& [what, names] : iColumnNotes) iReport.iNotes.append(what + u": "_s + NameList(names));
}

// Columns of which the same is to be said are told in one line.
void CVelumCsvExact::NoteColumn(int aColumn, qint32 aType) {
  const CVelumCsvColumn& found = iScan->Column(aColumn);
  const TCsvPlanColumn& column = iPlan[static_cast<size_t>(aColumn)];
  if (iLayout.iHeaderLine && column.iHeader != column.iName)
    NoteOf(u"names that were empty or there already"_s, aColumn);
  if (aType == EConText) {
    if (found.IsAmbiguous())
      NoteOf(u"stay Text, as the %1 could part thousands (as Integer) or decimals (as Real)"_s.arg(
                 SeparatorName(found.FormFor(EConReal).iDecimal)),
             aColumn);
    if (const QString why = Why(found.WhyText()); !why.isEmpty()) NoteOf(u"stay Text, "_s + why, aColumn);
  }
  if (aType == EConDate && found.IsOrderAssumed())
    NoteOf(u"dates that do not tell day from month, read with the %1 first, as the locale has it"_s.arg(
               column.iForm.iOrder == ECsvOrder::DayMonth ? u"day"_s : u"month"_s),
           aColumn);
  if (column.iForm.iGroup != 0 && (aType == EConInteger || aType == EConReal))
    NoteOf(u"%1 part thousands"_s.arg(SeparatorName(column.iForm.iGroup)), aColumn);
}

void CVelumCsvExact::NoteOf(const QString& aWhat, int aColumn) {
  const QString& name = iPlan[static_cast<size_t>(aColumn)].iName;
  for (auto& [what, names] : iColumnNotes)
    if (what == aWhat) {
      names.append(name);
      return;
    }
  iColumnNotes.append({aWhat, {name}});
}

void CVelumCsvExact::NoteNames(const CVelumControlSet& aBackground) {
  Ref<CVelumControl> naming;
  const std::optional<int> column = CVelumCsvPlans::NameColumn(*iScan, iChoice);
  if (aBackground.GetControlByFlag(EConCardName, naming))
    iReport.iNotes.append(u"cards are named by %1"_s.arg(naming->Name()));
  else if (column)
    iReport.iNotes.append(u"cards are named by %1"_s.arg(iPlan[static_cast<size_t>(*column)].iName));
  else
    iReport.iNotes.append(u"cards are named by numbers"_s);
  if (aBackground.Flag(ECseKeepCardsSorted)) iReport.iNotes.append(SortedLine(aBackground));
}

void CVelumCsvExact::NoteOutside(const CVelumControlSet& aBackground) {
  const QList<qint32> outside = CVelumCsvPool::TakeOut(aBackground);
  for (size_t i = 0; i < iPlan.size(); ++i)
    iReport.iColumns[static_cast<qsizetype>(i)].iOutside = outside.contains(iPlan[i].iField);
}
