#include "exchange/CVelumCsvReports.h"

#include "core/CVelumFieldTypes.h"
#include "core/CVelumObject.h"

#include <QJsonArray>
#include <QLocale>
#include <algorithm>

namespace {

constexpr qsizetype EShownColumns = 30;

QString ColumnText(const TCsvReportColumn& aColumn) {
  QString text = aColumn.iName + u' ' + CVelumCsvReports::TypeName(aColumn.iType);
  QStringList extra;
  if (aColumn.iEmpty > 0) extra.append(QLocale(QLocale::English).toString(aColumn.iEmpty) + u" empty"_s);
  if (aColumn.iChanged > 0)
    extra.append(QLocale(QLocale::English).toString(aColumn.iChanged) + u" changed"_s);
  if (!extra.isEmpty()) text += u" ("_s + extra.join(u", "_s) + u')';
  return text;
}

QString ColumnsLine(const QList<TCsvReportColumn>& aColumns) {
  QStringList texts;
  for (qsizetype i = 0; i < std::min(aColumns.size(), EShownColumns); ++i)
    texts.append(ColumnText(aColumns.at(i)));
  if (aColumns.size() > EShownColumns) texts.append(u"and %1 more"_s.arg(aColumns.size() - EShownColumns));
  return CVelumCsvReports::Number(aColumns.size(), u"column"_s, u"columns"_s) + u": "_s + texts.join(u"; "_s);
}

QString OutsideLine(const QList<TCsvReportColumn>& aColumns) {
  QStringList names;
  for (const TCsvReportColumn& column : aColumns)
    if (column.iOutside) names.append(column.iName);
  if (names.isEmpty()) return {};
  return u"not visible in the card view, which has no place for them: "_s + CVelumCsvReports::NameList(names);
}

QJsonObject ColumnJson(const TCsvReportColumn& aColumn) {
  return {{u"name"_s, aColumn.iName},
          {u"type"_s, CVelumCsvReports::TypeName(aColumn.iType)},
          {u"empty"_s, aColumn.iEmpty},
          {u"changed"_s, aColumn.iChanged},
          {u"inCardView"_s, !aColumn.iOutside}};
}

QJsonArray FaultsJson(const CVelumCsvFaults& aFaults) {
  QJsonArray faults;
  for (const TCsvFault& fault : aFaults.All())
    faults.append(QJsonObject{{u"what"_s, CVelumCsvFaultTexts::What(fault)},
                              {u"consequence"_s, CVelumCsvFaultTexts::Consequence(fault)},
                              {u"count"_s, fault.iCount},
                              {u"line"_s, fault.iLine},
                              {u"column"_s, fault.iColumn}});
  return faults;
}

QJsonArray CellsJson(const TCsvReport& aReport) {
  QJsonArray cells;
  for (const TCsvReportCell& cell : aReport.iCells)
    cells.append(QJsonObject{{u"line"_s, cell.iLine},
                             {u"column"_s, cell.iColumn + 1},
                             {u"text"_s, cell.iText},
                             {u"shown"_s, cell.iShown}});
  return cells;
}

} // namespace

QString CVelumCsvReports::TypeName(qint32 aType) {
  return CVelumFieldTypes::Of(aType).iName.toString();
}

QString CVelumCsvReports::DelimName(QChar aDelim) {
  if (aDelim == u',') return u"comma"_s;
  if (aDelim == u';') return u"semicolon"_s;
  if (aDelim == u'\t') return u"tab"_s;
  if (aDelim == u'|') return u"bar"_s;
  return u"delimiter "_s + aDelim;
}

QString CVelumCsvReports::NameList(const QStringList& aNames) {
  QString text = aNames.mid(0, EShownColumns).join(u", "_s);
  if (aNames.size() > EShownColumns) text += u" and %1 more"_s.arg(aNames.size() - EShownColumns);
  return text;
}

QString CVelumCsvReports::Number(qint64 aCount, const QString& aOne, const QString& aMany) {
  return QLocale(QLocale::English).toString(aCount) + u' ' + (aCount == 1 ? aOne : aMany);
}

QStringList CVelumCsvReports::FaultLines(const CVelumCsvFaults& aFaults) {
  QStringList lines;
  for (const TCsvFault& fault : aFaults.All())
    lines.append(CVelumCsvFaultTexts::Place(fault) + u": "_s + CVelumCsvFaultTexts::What(fault) + u"; "_s +
                 CVelumCsvFaultTexts::Consequence(fault));
  return lines;
}

QString CVelumCsvReports::SortedLine(const CVelumControlSet& aBackground) {
  return u"%1 keeps its cards sorted, so they are in that order"_s.arg(aBackground.Name());
}

QStringList CVelumCsvReports::Lines(const TCsvReport& aReport) {
  QStringList lines;
  QString first = Number(aReport.iRecords, u"card"_s, u"cards"_s);
  if (!aReport.iBackground.isEmpty()) first += u" into '%1'"_s.arg(aReport.iBackground);
  if (aReport.iReplaced > 0) first += u", in place of "_s + Number(aReport.iReplaced, u"card"_s, u"cards"_s);
  lines.append(first + u"; "_s + aReport.iLayout);
  lines.append(ColumnsLine(aReport.iColumns));
  if (const QString outside = OutsideLine(aReport.iColumns); !outside.isEmpty()) lines.append(outside);
  lines.append(aReport.iNotes);
  lines.append(FaultLines(aReport.iFaults));
  if (aReport.iChanged > 0)
    lines.append(Number(aReport.iChanged, u"cell shows"_s, u"cells show"_s) +
                 u" another text than the file"_s);
  if (!aReport.iSortedBy.isEmpty()) lines.append(u"sorted by %1: keep sorted?"_s.arg(aReport.iSortedBy));
  return lines;
}

QJsonObject CVelumCsvReports::ToJson(const TCsvReport& aReport) {
  QJsonArray columns;
  for (const TCsvReportColumn& column : aReport.iColumns) columns.append(ColumnJson(column));
  QJsonObject json{{u"way"_s, aReport.iClassic ? u"classic"_s : u"exact"_s},
                   {u"records"_s, aReport.iRecords},
                   {u"layout"_s, aReport.iLayout},
                   {u"columns"_s, columns},
                   {u"notes"_s, QJsonArray::fromStringList(aReport.iNotes)},
                   {u"faults"_s, FaultsJson(aReport.iFaults)},
                   {u"changedCells"_s, aReport.iChanged},
                   {u"cells"_s, CellsJson(aReport)}};
  if (!aReport.iBackground.isEmpty()) {
    json.insert(u"background"_s, aReport.iBackground);
    json.insert(u"replaced"_s, aReport.iReplaced);
  }
  if (!aReport.iSortedBy.isEmpty()) json.insert(u"sortedBy"_s, aReport.iSortedBy);
  return json;
}
