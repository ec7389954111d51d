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
  NoteColumns();
  if (iScan->NumShort() > 0)
    iReport.iNotes.append(u"%1 fewer cells than there are columns, the first in line %2"_s
                              .arg(Number(iScan->NumShort(), u"record has"_s, u"records have"_s))
                              .arg(iScan->FirstShort()));
  if (iScan->NumBlank() > 0)
    iReport.iNotes.append(Number(iScan->NumBlank(), u"line"_s, u"lines"_s) +
                          u" with nothing on them left out"_s);
}

void CVelumCsvExact::NoteColumns() {
  for (int i = 0; i < iScan->NumColumns(); ++i) {
    const TCsvPlanColumn& column = iPlan[static_cast<size_t>(i)];
    TCsvReportColumn entry;
    entry.iName = column.iName;
    entry.iType = column.iForm.iType;
    entry.iEmpty = iScan->NumEmpty(i);
    entry.iChanged = iCheck->NumChanged(i);
    NoteColumn(i, entry);
    iReport.iColumns.append(entry);
  }
}

void CVelumCsvExact::NoteColumn(int aColumn, TCsvReportColumn& aEntry) {
  const CVelumCsvColumn& found = iScan->Column(aColumn);
  const TCsvPlanColumn& column = iPlan[static_cast<size_t>(aColumn)];
  const QString& name = column.iName;
  if (iLayout.iHeaderLine && column.iHeader != name)
    iReport.iNotes.append(u"column %1 is called %2"_s.arg(aColumn + 1).arg(name));
  if (found.IsAmbiguous() && aEntry.iType == EConText)
    iReport.iNotes.append(
        u"%1 stays Text: the %2 could part thousands (as Integer) or decimals (as Real)"_s.arg(
            name, SeparatorName(found.FormFor(EConReal).iDecimal)));
  if (found.IsOrderAssumed() && aEntry.iType == EConDate)
    iReport.iNotes.append(u"%1: no date tells day from month; the %2 first, as the locale has it"_s.arg(
        name, column.iForm.iOrder == ECsvOrder::DayMonth ? u"day"_s : u"month"_s));
  if (column.iForm.iGroup != 0 && (aEntry.iType == EConInteger || aEntry.iType == EConReal))
    iReport.iNotes.append(u"%1: %2 part thousands"_s.arg(name, SeparatorName(column.iForm.iGroup)));
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
  if (aBackground.Flag(ECseKeepCardsSorted))
    iReport.iNotes.append(u"%1 keeps its cards sorted, so they are in that order"_s.arg(aBackground.Name()));
}

void CVelumCsvExact::NoteOutside(const CVelumControlSet& aBackground) {
  const QList<qint32> outside = CVelumCsvPool::TakeOut(aBackground);
  for (size_t i = 0; i < iPlan.size(); ++i)
    iReport.iColumns[static_cast<qsizetype>(i)].iOutside = outside.contains(iPlan[i].iField);
}
