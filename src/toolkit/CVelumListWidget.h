// A list with columns.
#pragma once

#include "toolkit/CVelumLineSource.h"

#include <QStringList>
#include <QTableView>

class CVelumListModel;

// Shows the lines of a source. A click on a column's title sorts the display, a second one the other way
// round, a third one gives the source's order back. Typing jumps to the next line that begins so. Home and
// End go to the first and last line. Who comes in by key finds a line selected. Ctrl+C copies the selected
// lines as they are seen, columns parted by tabs.
class CVelumListWidget : public QTableView {
  Q_OBJECT

public:
  explicit CVelumListWidget(QWidget* aParent = nullptr);

  // The widget asks it until another one, or null, is set.
  void SetSource(const CVelumLineSource* aSource);
  [[nodiscard]] const CVelumLineSource* Source() const { return iSource; }
  // The source's lines have become others; nothing is selected then. The display stays sorted, unless there
  // are very many lines.
  void Reload();
  void LineChanged(int aLine);
  void LinesAdded(int aFrom);
  // Widths in twips. Columns that are defined once more as they were keep what the user made of them. All
  // titles empty: the titles are not shown.
  void DefineColumns(const QStringList& aTitles, const QList<float>& aWidths);
  // Twips that columns can share without need for a scroll bar.
  [[nodiscard]] float UsableWidth() const;
  // Whether several lines can be selected; one at first.
  void SetMultiSelect(bool aOn);

  // The line with the selection, by the source's count; of several the one used last. -1 for none.
  [[nodiscard]] int SelLine() const;
  // In the order in which they are seen.
  [[nodiscard]] QList<int> SelLines() const;
  // Selects one line and makes it visible; -1 selects none.
  void SetSelLine(int aLine);
  // Whether the display is sorted by a column.
  [[nodiscard]] bool DisplaySorted() const;
  // Sorts the display, or with -1 gives the source's order back.
  void SortDisplay(int aColumn, Qt::SortOrder aOrder);
  // The line seen at the top, and its setting; -1 when there is none.
  [[nodiscard]] int TopRow() const;
  void SetTopRow(int aRow);
  // What stands in a cell.
  [[nodiscard]] QString CellText(int aRow, int aColumn) const;
  // The selected lines as text.
  [[nodiscard]] QString SelText() const;

  // Jumps to the next line whose first column begins with what was typed.
  void keyboardSearch(const QString& aText) override;

Q_SIGNALS:
  // A line was clicked.
  void ItemClick();
  // A line was double-clicked, or the return key was hit on it.
  void ItemDblClick();
  void SelChanged();
  // The display was sorted, or not any more.
  void SortChanged();
  void Resized();

protected:
  void keyPressEvent(QKeyEvent* aEvent) override;
  void focusInEvent(QFocusEvent* aEvent) override;
  QModelIndex moveCursor(CursorAction aAction, Qt::KeyboardModifiers aModifiers) override;
  void resizeEvent(QResizeEvent* aEvent) override;
  void changeEvent(QEvent* aEvent) override;
  void selectionChanged(const QItemSelection& aSelected, const QItemSelection& aDeselected) override;

private:
  void TitleClick(int aColumn);
  void SetRowHeight();
  // Without a scroll bar to the sides where it would lie over the only line.
  void SetBar();

  CVelumListModel* iModel;
  const CVelumLineSource* iSource = nullptr;
  QStringList iTitles;
  QList<float> iWidths;
  int iSortColumn = -1;
  Qt::SortOrder iSortOrder = Qt::AscendingOrder;
  QString iTyped; // for the jump
  qint64 iTypedAt = 0;
};
