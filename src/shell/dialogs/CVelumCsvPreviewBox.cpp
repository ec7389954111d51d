#include "shell/dialogs/CVelumCsvPreviewBox.h"

#include "core/CVelumFieldTypes.h"

#include <QCoreApplication>
#include <QHeaderView>
#include <QLocale>
#include <QPalette>

namespace {

constexpr int EMaxColumn = 240;      // pixels
constexpr int EMeasuredColumns = 60; // of more the widths would take too long to measure
constexpr int EMeasuredRows = 30;

QString Tr(const char* aText) {
  return QCoreApplication::translate("CVelumCsvPreviewBox", aText);
}

// Readable on light and dark desktops.
void Mark(QTableWidgetItem& aItem, ECsvFit aFit) {
  if (aFit == ECsvFit::Same) return;
  QFont font = aItem.font();
  font.setBold(true);
  font.setStrikeOut(aFit == ECsvFit::Refused);
  aItem.setFont(font);
  aItem.setBackground(aFit == ECsvFit::Refused ? QColor(0xE0, 0x60, 0x60) : QColor(0xF0, 0xC0, 0x40));
  aItem.setForeground(Qt::black);
  aItem.setToolTip(aFit == ECsvFit::Refused ? Tr("No value of this type: left out")
                                            : Tr("Would show another text than the file"));
}

} // namespace

void CVelumCsvPreviewBox::Fill(QTableWidget& aBox, const QStringList& aTitles,
                               const QList<QStringList>& aRows, const TFitOf& aFitOf) {
  const int column = aBox.currentColumn();
  aBox.setUpdatesEnabled(false);
  aBox.clear();
  aBox.setRowCount(static_cast<int>(aRows.size()));
  aBox.setColumnCount(static_cast<int>(aTitles.size()));
  aBox.setHorizontalHeaderLabels(aTitles);
  for (int row = 0; row < aBox.rowCount(); ++row)
    for (int i = 0; i < qMin(aBox.columnCount(), static_cast<int>(aRows.at(row).size())); ++i) {
      auto* item = new QTableWidgetItem(aRows.at(row).at(i));
      if (aFitOf) Mark(*item, aFitOf(row, i));
      aBox.setItem(row, i, item);
    }
  aBox.horizontalHeader()->setMaximumSectionSize(EMaxColumn);
  aBox.horizontalHeader()->setResizeContentsPrecision(EMeasuredRows);
  if (aBox.columnCount() <= EMeasuredColumns) aBox.resizeColumnsToContents();
  if (aBox.columnCount() > 0 && aBox.rowCount() > 0)
    aBox.setCurrentCell(0, qBound(0, column, aBox.columnCount() - 1));
  aBox.setUpdatesEnabled(true);
}

QString CVelumCsvPreviewBox::Title(const QString& aName, qint32 aType, qint64 aChanged) {
  return aName + u'\n' + TypeNames().value(aType) + Counts(aChanged, 0);
}

QString CVelumCsvPreviewBox::Counts(qint64 aChanged, qint64 aLeftOut) {
  QString text;
  if (aChanged > 0) text += u'\n' + Tr("%1 change").arg(QLocale().toString(aChanged));
  if (aLeftOut > 0) text += u'\n' + Tr("%1 left out").arg(QLocale().toString(aLeftOut));
  return text;
}

QStringList CVelumCsvPreviewBox::TypeNames() {
  QStringList names;
  for (const TVelumFieldType& type : CVelumFieldTypes::gRows)
    if (type.iInCsv) names.append(type.iChoice.toString());
  return names;
}
