// The model of a list widget: a line source, seen in the source's order or sorted by a column.
#pragma once

#include "toolkit/CVelumLineSource.h"

#include <QAbstractTableModel>
#include <QStringList>
#include <vector>

// Rows are what is seen, lines what the source counts; they differ only while the display is sorted. Sorting
// changes nothing but the display.
class CVelumListModel final : public QAbstractTableModel {
  Q_OBJECT

public:
  using QAbstractTableModel::QAbstractTableModel;

  // aSource may be null, and outlives its use here.
  void SetSource(const CVelumLineSource* aSource);
  void SetTitles(const QStringList& aTitles);
  [[nodiscard]] const QStringList& Titles() const { return iTitles; }
  // The source's lines have become others. A sorted display is sorted anew.
  void Reload();
  void LineChanged(int aLine);
  // Lines from aFrom to the end are new.
  void LinesAdded(int aFrom);
  // Sorts the display by a column; a negative one gives the source's order back.
  void SortBy(int aColumn, Qt::SortOrder aOrder);
  [[nodiscard]] bool Sorted() const { return iColumn >= 0; }

  // -1 where there is none.
  [[nodiscard]] int RowOf(int aLine) const;
  [[nodiscard]] int LineOf(int aRow) const;
  // The text of a cell on one line.
  [[nodiscard]] QString CellText(int aRow, int aColumn) const;

  [[nodiscard]] int rowCount(const QModelIndex& aParent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& aParent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& aIndex, int aRole) const override;
  [[nodiscard]] QVariant headerData(int aSection, Qt::Orientation aOrientation, int aRole) const override;

private:
  void MakeOrder();

  const CVelumLineSource* iSource = nullptr;
  int iNumLines = 0;
  QStringList iTitles;
  int iColumn = -1; // by which the display is sorted
  Qt::SortOrder iOrder = Qt::AscendingOrder;
  std::vector<int> iLines; // line of each row, and row of each line; empty while the display is not sorted
  std::vector<int> iRows;
};
