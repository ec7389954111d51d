#include "toolkit/CVelumListModel.h"

#include "core/CVelumObject.h"
#include "toolkit/CVelumListOrder.h"

#include <algorithm>

void CVelumListModel::SetSource(const CVelumLineSource* aSource) {
  iSource = aSource;
  Reload();
}

void CVelumListModel::SetTitles(const QStringList& aTitles) {
  beginResetModel();
  iTitles = aTitles;
  if (iColumn >= iTitles.size()) iColumn = -1;
  if (!Sorted()) {
    iLines.clear();
    iRows.clear();
  }
  endResetModel();
}

void CVelumListModel::Reload() {
  beginResetModel();
  iNumLines = iSource ? iSource->NumLines() : 0;
  MakeOrder();
  endResetModel();
}

void CVelumListModel::LineChanged(int aLine) {
  const int row = RowOf(aLine);
  if (row >= 0) Q_EMIT dataChanged(index(row, 0), index(row, std::max(0, columnCount() - 1)));
}

void CVelumListModel::LinesAdded(int aFrom) {
  const int num = iSource ? iSource->NumLines() : 0;
  if (Sorted() || aFrom != iNumLines || num <= aFrom) return Reload();
  beginInsertRows({}, aFrom, num - 1);
  iNumLines = num;
  endInsertRows();
}

void CVelumListModel::SortBy(int aColumn, Qt::SortOrder aOrder) {
  Q_EMIT layoutAboutToBeChanged();
  const QModelIndexList from = persistentIndexList();
  std::vector<int> lines;
  for (const QModelIndex& index : from) lines.push_back(LineOf(index.row()));
  iColumn = aColumn < iTitles.size() ? aColumn : -1;
  iOrder = aOrder;
  MakeOrder();
  QModelIndexList to;
  for (size_t i = 0; i < lines.size(); ++i)
    to.append(index(RowOf(lines[i]), from[static_cast<qsizetype>(i)].column()));
  changePersistentIndexList(from, to);
  Q_EMIT layoutChanged();
}

void CVelumListModel::MakeOrder() {
  iLines.clear();
  iRows.clear();
  if (!Sorted() || !iSource) return;
  iLines = CVelumListOrder::Sorted(*iSource, iNumLines, iColumn, iOrder == Qt::DescendingOrder);
  const size_t num = iLines.size();
  iRows.resize(num);
  for (size_t row = 0; row < num; ++row) iRows[static_cast<size_t>(iLines[row])] = static_cast<int>(row);
}

int CVelumListModel::RowOf(int aLine) const {
  if (aLine < 0 || aLine >= iNumLines) return -1;
  return iRows.empty() ? aLine : iRows[static_cast<size_t>(aLine)];
}

int CVelumListModel::LineOf(int aRow) const {
  if (aRow < 0 || aRow >= iNumLines) return -1;
  return iLines.empty() ? aRow : iLines[static_cast<size_t>(aRow)];
}

QString CVelumListModel::CellText(int aRow, int aColumn) const {
  const int line = LineOf(aRow);
  if (line < 0 || !iSource || line >= iSource->NumLines()) return {};
  QString text = iSource->Part(line, aColumn);
  const auto isControl = [](QChar aChar) { return aChar < u' '; };
  if (std::none_of(text.cbegin(), text.cend(), isControl)) return text;
  text.replace(u"\r\n"_s, u" "_s);
  for (const QChar c : {u'\n', u'\r', u'\t'}) text.replace(c, u' ');
  return text;
}

int CVelumListModel::rowCount(const QModelIndex& aParent) const {
  return aParent.isValid() ? 0 : iNumLines;
}

int CVelumListModel::columnCount(const QModelIndex& aParent) const {
  return aParent.isValid() ? 0 : static_cast<int>(iTitles.size());
}

QVariant CVelumListModel::data(const QModelIndex& aIndex, int aRole) const {
  if (aRole != Qt::DisplayRole || !aIndex.isValid()) return {};
  return CellText(aIndex.row(), aIndex.column());
}

QVariant CVelumListModel::headerData(int aSection, Qt::Orientation aOrientation, int aRole) const {
  if (aOrientation != Qt::Horizontal || aRole != Qt::DisplayRole) return {};
  return iTitles.value(aSection);
}
